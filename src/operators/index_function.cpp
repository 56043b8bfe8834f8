// Index brackets on functions, which bind parameters, and on objects; and the functions of a missing index.
#include "builtins/bfunc.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "operators/dispatch.h"
#include "operators/index.h"
#include "values/convert.h"
#include "values/memory.h"

namespace vesko {

// ---- Binding parameters

namespace {

const char *sourceOf(PcNode *node) { return pcnode2str(node)->text(); }

// A copy of the function with its public parameters set to the values.
Matrix *doUfRemake(Matrix *f, const Matrix *values, PcNode *node) {
    const int32_t n = f->func()->npublic;
    if (values->length != static_cast<uint32_t>(n))
        error_uf_remake(node, n, static_cast<int32_t>(values->length));
    Matrix *copy = copyUf(f);
    for (uint32_t k = 0; k < values->length; k++) {
        sfield *parm = copy->func()->parms->at<sfield>(k);
        Matrix *value = values->entries()[k];
        if (!memberOfSet(value, parm->domain, node)) error_uf_parm_domain(node, sourceOf(node->child(0)));
        replaceMat(parm->value, value);
    }
    return copy;
}

Vector *linkedVector(const Matrix *list) {
    Vector *v = newVector(list->length);
    for (uint32_t k = 0; k < list->length; k++) appendMatVecEntry(v, list->entries()[k]);
    return v;
}

Matrix *spawnBuiltin(Matrix *f, const Matrix *values, PcNode *node) {
    Bfunc *bf = f->builtin();
    if (!bf->parmNames && values->length == 1) error_undef_opr(node, f, NodeKind::Ref);
    const char *name = getSymbolName(bf->name);
    if (values->length != bf->nparms || !bf->maintainer) error_bf_spawn(node, name);
    Vector *parms = linkedVector(values);
    Bfunc *spawned = bf->maintainer(BfOperation::Spawn, bf, parms, nullptr, 0);
    if (!spawned) {
        freeVector(parms, releaseEntry);
        error_bf_spawn(node, name);
    }
    return newBfMat(spawned);
}

}  // namespace

Matrix *spawnFunction(Matrix *f, Matrix *values, PcNode *node) {
    return f->l2type == L2::UF ? doUfRemake(f, values, node) : spawnBuiltin(f, values, node);
}

Matrix *objectRef(Matrix *, Matrix *, PcNode *node) { error_not_built(node, "objects"); }

// ---- Functions of a missing index: built-ins that keep the matrix and, where one is given, the other index

namespace {

constexpr const char *entry_function_2 = "matentry2";

Matrix *entryFunction1(Matrix *x, Matrix **parms, PcNode *node) { return matRef(parms[0], x, node); }

// Two indices come as a list, or as a matrix of two numbers.
Matrix *entryFunction2(Matrix *x, Matrix **parms, PcNode *node) {
    double i, j;
    if (isList(x->l2type) && x->length == 2) return matRef2(parms[0], x->entries()[0], x->entries()[1], node);
    if (!extract_2_reals(x, i, j))
        error_bf_nargs(node, entry_function_2, isList(x->l2type) ? static_cast<int32_t>(x->length) : 1, 2);
    Matrix *row = newRealScalarMat(i), *col = newRealScalarMat(j);
    Matrix *result = matRef2(parms[0], row, col, node);
    releaseMat(row);
    releaseMat(col);
    return result;
}

Matrix *entryFunctionRows(Matrix *x, Matrix **parms, PcNode *node) {
    return matRef2(parms[0], x, parms[1], node);
}

Matrix *entryFunctionCols(Matrix *x, Matrix **parms, PcNode *node) {
    return matRef2(parms[0], parms[1], x, node);
}

BfInput *newInput(const char *name, BfInput *next) {
    auto *input = newBlock<BfInput>();
    *input = {findSymbolIndex(name), theEmptyMat(), next};
    return input;
}

// Inputs and names are shared by all functions of this making, and live as long as the process.
struct EntryFunctionNames {
    BfInput *inputs[2];  // of functions of one and of two indices
    Vector *parms[2];    // without and with a given index
};

const EntryFunctionNames &entryFunctionNames() {
    static EntryFunctionNames names;
    if (names.parms[1]) return names;
    names.inputs[0] = newInput("i", nullptr);
    names.inputs[1] = newInput("i", newInput("j", nullptr));
    const uintptr_t op1 = findFieldIndexByStr("op1"), op2 = findFieldIndexByStr("op2");
    Vector *both = newVector(2);
    names.parms[0] = newVector(1);
    addElement(names.parms[0], asEntry(op1));
    addElement(both, asEntry(op1));
    addElement(both, asEntry(op2));
    names.parms[1] = both;
    return names;
}

Matrix *newEntryFunction(const char *name, BfWorker worker, uint32_t nargs, Matrix *m, Matrix *index) {
    const EntryFunctionNames &names = entryFunctionNames();
    auto *bf = newBlock<Bfunc>();
    *bf = {findSymbolIndex(name),      false,       worker, nargs, names.inputs[nargs - 1], nullptr, 0,
           names.parms[index ? 1 : 0], newVector(2)};
    appendMatVecEntry(bf->parmValues, m);
    if (index) appendMatVecEntry(bf->parmValues, index);
    return newBfMat(bf);
}

bool isIndexable(const Matrix *m, NodeKind kind) {
    if (isNumeric(m->l2type)) return true;
    if (kind != NodeKind::EntryFun1) return false;
    return m->l2type == L2::TX || m->l2type == L2::FSET || m->l2type == L2::HASH;
}

Matrix *indexableOperand(PcNode *node) {
    Matrix *m = node->eval(0);
    if (!isIndexable(m, node->kind)) error_undef_opr(node, m, node->kind);
    return m;
}

Matrix *makeEntryFunction(PcNode *node, const char *name, BfWorker worker, uint32_t nargs) {
    return newEntryFunction(name, worker, nargs, indexableOperand(node), nullptr);
}

// `given` is the place of the index that the source has.
Matrix *makeHalfIndexed(PcNode *node, const char *name, BfWorker worker, uint32_t given) {
    Matrix *m = pinMat(indexableOperand(node));
    Matrix *index = node->child(1)->eval(given);
    Matrix *f = newEntryFunction(name, worker, 1, m, index);
    unpinMat();
    return f;
}

}  // namespace

Matrix *makeMatEntryFun1(PcNode *node) { return makeEntryFunction(node, "matentry", entryFunction1, 1); }
Matrix *makeMatEntryFun2(PcNode *node) {
    return makeEntryFunction(node, entry_function_2, entryFunction2, 2);
}
Matrix *makeMatEntryFunRows(PcNode *node) {
    return makeHalfIndexed(node, "matentryrows", entryFunctionRows, 1);
}
Matrix *makeMatEntryFunCols(PcNode *node) {
    return makeHalfIndexed(node, "matentrycolumns", entryFunctionCols, 0);
}

}  // namespace vesko
