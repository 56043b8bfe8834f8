// Functions made of functions: their records, and what they do when they are called.
#include "builtins/function_algebra.h"

#include "engine/errors.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"
#include "values/concat.h"
#include "values/convert.h"
#include "values/elements.h"
#include "values/memory.h"

namespace vesko {

// ---- Records

BfInput *sharedInput(uint32_t symbol, BfInput *next) {
    static Vector *made;
    if (!made) made = newVector(8);
    for (uint32_t k = 0; k < made->size; k++)
        if (BfInput *input = made->at<BfInput>(k); input->symbol == symbol && input->next == next)
            return input;
    BfInput *input = newBlock<BfInput>();
    linkMat(theEmptyMat());
    *input = {symbol, theEmptyMat(), next};
    addElement(made, input);
    return input;
}

// The fields op1, op2, ... of a function with n operands.
static Vector *operandNames(size_t n) {
    static Vector *names[4];
    if (names[n]) return names[n];
    Vector *made = newVector(static_cast<uint32_t>(n));
    for (const char *name : {"op1", "op2", "op3"})
        if (made->size < n) addElement(made, asEntry(findFieldIndexByStr(name)));
    return names[n] = made;
}

// The operands are linked when they have a holder: a refused request before that leaves no link behind.
Matrix *newGeneratedBf(const char *name, BfWorker worker, BfInput *inputs,
                       std::initializer_list<Matrix *> operands) {
    const uint32_t symbol = findSymbolIndex(name);
    Vector *const names = operandNames(operands.size());
    Vector *const values = newVector(static_cast<uint32_t>(operands.size()));
    Bfunc *bf = newBlock<Bfunc>();
    *bf = {};
    bf->name = symbol;
    bf->func = worker;
    bf->inputs = inputs;
    bf->parmNames = names;
    bf->parmValues = values;
    for (const BfInput *input = inputs; input; input = input->next) bf->nargs++;
    Matrix *m = newBfMat(bf);
    for (Matrix *operand : operands) appendMatVecEntry(values, operand);
    return m;
}

#define FUNCTION(constructor, name, worker)                                                          \
    Matrix *constructor(Matrix *op1, Matrix *op2) {                                                  \
        return newGeneratedBf(name, worker, sharedInput(findSymbolIndex("x"), nullptr), {op1, op2}); \
    }
#include "builtins/function_algebra.def"
#undef FUNCTION

// ---- Calls. What is called may change the variables that hold the function and its argument: the operands
// and the argument stay pinned, and the array of operands is not read again.

// The value of f(x, op1, op2).
template <class F>
static Matrix *withPinned(Matrix *x, Matrix **operands, F f) {
    guardStack();
    pinMat(x);
    Matrix *op1 = pinMat(operands[0]), *op2 = pinMat(operands[1]);
    Matrix *result = keepResult(f(op1, op2));
    for (int k = 0; k < 2; k++) unpinMat();
    unpinMat();
    return passResult(result);
}

template <Matrix *(*combine)(Matrix *, Matrix *, PcNode *)>
static Matrix *combineResults(Matrix *x, Matrix **operands, PcNode *node) {
    return withPinned(x, operands, [x, node](Matrix *op1, Matrix *op2) {
        Matrix *a = pinMat(getMatProduct(op1, x, node));
        Matrix *b = pinMat(getMatProduct(op2, x, node));
        Matrix *result = keepResult(combine(a, b, node));
        releaseMat(unpinMat());
        releaseMat(unpinMat());
        return passResult(result);
    });
}

Matrix *fplus_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return combineResults<getMatSum>(x, operands, node);
}
Matrix *fminus_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return combineResults<getMatSub>(x, operands, node);
}
Matrix *famu_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return combineResults<getMatProduct>(x, operands, node);
}
Matrix *fadv_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return combineResults<getMatSlash>(x, operands, node);
}
Matrix *fbsl_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return combineResults<getMatBsl>(x, operands, node);
}

// outer(f(x)), where what f gives may be one of the operands of outer.
template <class Outer>
static Matrix *applyTo(Matrix *inner, Outer outer) {
    pinMat(inner);
    Matrix *result = keepResult(outer(inner));
    releaseMat(unpinMat());
    return passResult(result);
}

Matrix *fcomp_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return withPinned(x, operands, [x, node](Matrix *op1, Matrix *op2) {
        return applyTo(getMatProduct(op2, x, node), [=](Matrix *y) { return getMatProduct(op1, y, node); });
    });
}

Matrix *fneg_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return withPinned(x, operands, [x, node](Matrix *op1, Matrix *) {
        return applyTo(getMatProduct(op1, x, node), [=](Matrix *y) { return getMatNeg(y, node); });
    });
}

// ---- Domains

Matrix *fintersect_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return withPinned(x, operands, [x, node](Matrix *op1, Matrix *op2) {
        return truthMat(memberOfSet(x, op1, node) && memberOfSet(x, op2, node));
    });
}

Matrix *funion_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return withPinned(x, operands, [x, node](Matrix *op1, Matrix *op2) {
        return truthMat(memberOfSet(x, op1, node) || memberOfSet(x, op2, node));
    });
}

Matrix *fsetdiff_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return withPinned(x, operands, [x, node](Matrix *op1, Matrix *op2) {
        return truthMat(memberOfSet(x, op1, node) && !memberOfSet(x, op2, node));
    });
}

// ---- Vectors and matrices of functions

// The result of one function, as a block of numbers: in the shape of the first one.
static Matrix *blockOf(Matrix *f, Matrix *x, const Matrix *first, PcNode *node) {
    Matrix *block = getMatProduct(f, x, node);
    if (!isNumeric(block->l2type)) error_mat_element_type(node, getdatatypestr(block->l2type));
    if (isRealLike(block->l2type) && !hasPlainElements(block->l2type)) block = convToDb(block);
    if (first && (block->nrows != first->nrows || block->ncols != first->ncols))
        error_mat_element_type(node, getdatatypestr(block->l2type));
    return block;
}

// Whole and byte results become real. `blocks` has one block at least.
static Matrix *joinBlocks(const Matrix *blocks, Stacking stacking, PcNode *node) {
    BlockKind kind = BlockKind::Real;
    uint64_t rows = 0, cols = 0;
    for (uint32_t k = 0; k < blocks->length; k++) {
        const Matrix *block = blocks->entries()[k];
        if (!isRealLike(block->l2type)) kind = BlockKind::Complex;
        rows += block->nrows;
        cols += block->ncols;
    }
    const Matrix *first = blocks->entries()[0];
    const bool vertical = stacking == Stacking::Vertical;
    return catBlocks(kind, blocks, vertical ? checkedLength(rows, 1) : first->nrows,
                     vertical ? first->ncols : checkedLength(cols, 1), stacking, node);
}

static Matrix *applyEach(const Matrix *functions, Matrix *x, Stacking stacking, PcNode *node) {
    Matrix *blocks = pinMat(newListMat(functions->length));
    for (uint32_t k = 0; k < functions->length; k++)
        addListEntry(blocks, blockOf(functions->entries()[k], x, k ? blocks->entries()[0] : nullptr, node));
    Matrix *result = joinBlocks(blocks, stacking, node);
    releaseMat(unpinMat());
    return result;
}

Matrix *funcvec_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return withPinned(x, operands, [x, node](Matrix *functions, Matrix *) {
        return applyEach(functions, x, Stacking::Vertical, node);
    });
}

static const Matrix *rowOfFunctions(const Matrix *f) {
    const bool is_row = f->l2type == L2::BF && f->builtin()->func == funcvec_bf;
    return is_row ? f->builtin()->parmValues->matAt(0) : nullptr;
}

static Matrix *applyRow(Matrix *f, Matrix *x, PcNode *node) {
    const Matrix *row = rowOfFunctions(f);
    return row ? applyEach(row, x, Stacking::Horizontal, node) : blockOf(f, x, nullptr, node);
}

Matrix *funcmat_bf(Matrix *x, Matrix **operands, PcNode *node) {
    return withPinned(x, operands, [x, node](Matrix *functions, Matrix *) {
        Matrix *rows = pinMat(newListMat(functions->length));
        for (uint32_t k = 0; k < functions->length; k++) {
            Matrix *row = applyRow(functions->entries()[k], x, node);
            addListEntry(rows, row);
            const uint32_t expected = rows->entries()[0]->ncols;
            if (row->ncols != expected) error_mat_building(node, row->ncols, expected);
        }
        Matrix *result = joinBlocks(rows, Stacking::Vertical, node);
        releaseMat(unpinMat());
        return result;
    });
}

Matrix *joinFunctions(Matrix *blocks) {
    for (uint32_t k = 0; k < blocks->length; k++)
        if (rowOfFunctions(blocks->entries()[k])) return newFMatBfMat(blocks);
    return newFVecBfMat(blocks);
}

}  // namespace vesko
