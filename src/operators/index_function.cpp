// Index brackets on functions, which bind parameters, and on objects; and the functions of a missing index.
#include "builtins/bfunc.h"
#include "engine/calls.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/handlers.h"
#include "engine/pins.h"
#include "frontend/symbols.h"
#include "objects/object.h"
#include "operators/dispatch.h"
#include "operators/index.h"
#include "values/convert.h"

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

}  // namespace

Matrix *spawnFunction(Matrix *f, Matrix *values, PcNode *node) {
    return f->l2type == L2::UF ? doUfRemake(f, values, node) : spawnBf(f, values, node);
}

Matrix *objectRef(Matrix *object, Matrix *values, PcNode *node) {
    Matrix **at = values->entries();
    if (values->length > 2) error_undef_opr(node, object, NodeKind::RefMd);
    const uint32_t name = values->length == 1 ? FIELD_INDEX__IND : FIELD_INDEX__IND2;
    Matrix *member = findObjField(objectOf(object), name);
    if (!member) error_dne(node, getFieldName(name));
    return values->length == 1 ? callMemberFunc(member, at[0], object, node)
                               : callMemberFunc2(member, at[0], at[1], object, node);
}

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

// The record that all functions of one making are copies of: they share its names.
struct EntryFunction {
    const char *name;
    const char *inputs;
    BfWorker worker;
    uint32_t nparms;  // the matrix, and the given index if there is one
    Bfunc *bf;

    const Bfunc *prototype() {
        if (bf) return bf;
        Bfunc *made = make_Ni0p_bf(name, inputs, worker, nullptr);
        made->parmNames = newVector(nparms);
        addElement(made->parmNames, asEntry(findFieldIndexByStr("op1")));
        if (nparms > 1) addElement(made->parmNames, asEntry(findFieldIndexByStr("op2")));
        return bf = made;
    }
};

EntryFunction entry_1 = {"matentry", "i", entryFunction1, 1, nullptr};
EntryFunction entry_2 = {entry_function_2, "i j", entryFunction2, 1, nullptr};
EntryFunction entry_rows = {"matentryrows", "i", entryFunctionRows, 2, nullptr};
EntryFunction entry_columns = {"matentrycolumns", "j", entryFunctionCols, 2, nullptr};

Matrix *newEntryFunction(EntryFunction &making, Matrix *m, Matrix *index) {
    Matrix *function = newBfCopy(making.prototype(), making.nparms);
    Vector *values = function->builtin()->parmValues;
    appendMatVecEntry(values, m);
    if (index) appendMatVecEntry(values, index);
    return function;
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

// `given` is the place of the index that the source has.
Matrix *makeHalfIndexed(PcNode *node, EntryFunction &making, uint32_t given) {
    Matrix *m = pinMat(indexableOperand(node));
    Matrix *f = newEntryFunction(making, m, node->child(1)->eval(given));
    unpinMat();
    return f;
}

}  // namespace

Matrix *makeMatEntryFun1(PcNode *node) { return newEntryFunction(entry_1, indexableOperand(node), nullptr); }
Matrix *makeMatEntryFun2(PcNode *node) { return newEntryFunction(entry_2, indexableOperand(node), nullptr); }
Matrix *makeMatEntryFunRows(PcNode *node) { return makeHalfIndexed(node, entry_rows, 1); }
Matrix *makeMatEntryFunCols(PcNode *node) { return makeHalfIndexed(node, entry_columns, 0); }

}  // namespace vesko
