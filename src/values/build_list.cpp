// Lists, sets, hash tables and structures out of their literals, and the operators on lists and sets.
#include "builtins/function_algebra.h"
#include "console/command.h"
#include "engine/errors.h"
#include "engine/handlers.h"
#include "engine/interrupt.h"
#include "engine/pins.h"
#include "objects/object.h"
#include "operators/dispatch.h"
#include "values/containers.h"
#include "values/convert.h"
#include "values/payload.h"

namespace vesko {

// ---- Lists

static Matrix *evalEntries(Matrix *list, PcNode *node, uint32_t n) {
    for (uint32_t k = 0; k < n; k++) addListEntry(list, node->eval(k));
    return list;
}

Matrix *buildMatList(PcNode *node) {
    if (node->ncub == 0) return theEmptyMat();
    if (node->ncub == 1) return node->eval(0);
    return evalEntries(newListMat(node->ncub), node, node->ncub);
}

// The last child stands for the `~` of the literal.
Matrix *buildVList(PcNode *node) {
    if (node->ncub == 0) return theEmptyMat();
    return evalEntries(newVListMat(node->ncub), node, node->ncub - 1);
}

// A single value counts as a list of one entry.
Matrix *getListLength(PcNode *node) {
    Matrix *m = node->eval(0);
    Matrix *length = theTrueMat();
    if (isList(m->l2type))
        length = newRealScalarMat(m->length);
    else if (m->l2type == L2::NUL)
        length = newRealScalarMat(0);
    releaseMat(m);
    return length;
}

static uint32_t entryCount(const Matrix *m) {
    if (isList(m->l2type)) return m->length;
    return m->l2type == L2::NUL ? 0 : 1;
}

static void addEntries(Matrix *list, Matrix *m) {
    if (!isList(m->l2type)) {
        if (m->l2type != L2::NUL) addListEntry(list, m);
        return;
    }
    for (uint32_t i = 0; i < m->length; i++) addListEntry(list, m->entries()[i]);
}

static Matrix *joinLists(Matrix *a, Matrix *b) {
    const uint32_t n = checkedLength(uint64_t{entryCount(a)} + entryCount(b), 1);
    const bool grows = a->l2type == L2::VL || b->l2type == L2::VL;
    if (n == 0 && !grows) return theEmptyMat();
    Matrix *list = grows ? newVListMat(n) : newListMat(n);
    addEntries(list, a);
    addEntries(list, b);
    return list;
}

// Evaluates both children and applies `op`; releases them.
template <class Op>
static Matrix *applyBinary(PcNode *node, Op op) {
    Matrix *a = pinMat(node->eval(0));
    Matrix *b = pinMat(node->eval(1));
    Matrix *result = keepResult(op(a, b));
    releaseMat(unpinMat());
    releaseMat(unpinMat());
    return passResult(result);
}

Matrix *doListJoin(PcNode *node) { return applyBinary(node, joinLists); }

// ---- Sets

Matrix *buildMatSet(PcNode *node) {
    Matrix *set = newSetMat();
    for (uint32_t k = 0; k < node->ncub; k++) {
        Matrix *member = node->eval(k);
        addSetMember(set->table(), member);
        releaseMat(member);
    }
    return set;
}

static uint32_t mergeIntervals(double *array, uint32_t count, const Matrix *itv) {
    for (uint32_t i = 0; i < itv->nrows; i++) count = add_interval(count, array, itv->rdata + size_t{i} * 4);
    return count;
}

static Matrix *uniteIntervals(const Matrix *a, const Matrix *b) {
    const uint32_t room = a->nrows + b->nrows;
    Matrix *itv = allocItvMat(room);
    const uint32_t n = mergeIntervals(itv->rdata, mergeIntervals(itv->rdata, 0, b), a);
    itv->nrows = n;
    itv->length = 4 * n;
    return itv;
}

static bool both(const Matrix *a, const Matrix *b, L2 kind) { return a->l2type == kind && b->l2type == kind; }

Matrix *buildMatSetUnion(PcNode *node) {
    return applyBinary(node, [](Matrix *a, Matrix *b) {
        if (both(a, b, L2::FSET))
            return newPayloadMat(L2::FSET, [a, b] { return makeSetUnion(a->table(), b->table()); });
        if (both(a, b, L2::ITV)) return uniteIntervals(a, b);
        return newFUnionBfMat(a, b);
    });
}

Matrix *buildMatSetIntersection(PcNode *node) {
    return applyBinary(node, [](Matrix *a, Matrix *b) {
        if (both(a, b, L2::FSET))
            return newPayloadMat(L2::FSET, [a, b] { return makeSetIntersection(a->table(), b->table()); });
        return newFIntersectBfMat(a, b);
    });
}

// ---- Hash tables

static void addDefault(hashtable *table, PcNode *item) {
    if (item->ncub != 1) xAbort("Bug: in buildHashTable, A");
    Matrix *value = item->eval(0);
    setDfltHashVal(table, value);
}

// The value is evaluated before the key.
static void addItem(hashtable *table, PcNode *item) {
    if (item->ncub != 1 && item->ncub != 2) xAbort("Bug: in buildHashTable, B");
    Matrix *value = pinMat(item->ncub == 2 ? item->eval(1) : theEmptyMat());
    Matrix *key = item->eval(0);
    addHashData(table, key, value);
    releaseMat(key);
    releaseMat(unpinMat());
}

Matrix *buildHashTable(PcNode *node) {
    if (node->ncub == 0) return theEmptyMat();
    Matrix *m = newHashMat(node->ncub);
    for (uint32_t k = 0; k < node->ncub; k++) {
        PcNode *item = node->child(k);
        switch (item->kind) {
            case NodeKind::DfltHashAsgn: addDefault(m->table(), item); break;
            case NodeKind::HashItem: addItem(m->table(), item); break;
            default: xAbort("Bug: in buildHashTable, C");
        }
    }
    return m;
}

// ---- Structures

// The item `x = v in D` confines its field to D.
static void addField(Vector *fields, PcNode *item, PcNode *node) {
    PcNode *right = item->child(0);
    const bool typed = right->kind == NodeKind::In;
    Matrix *value = pinMat(typed ? right->eval(0) : right->exec(right));
    Matrix *domain = pinMat(typed ? right->eval(1) : theCompleteMat());
    if (typed && !memberOfSet(value, domain, node)) error_domain(node);
    addStructField(fields, item->value, value, domain);
    releaseMat(unpinMat());
    releaseMat(unpinMat());
}

Matrix *buildStruct(PcNode *node) {
    Matrix *object = newClassLessObject(node->ncub);
    for (uint32_t k = 0; k < node->ncub; k++) addField(objectOf(object)->vlfields, node->child(k), node);
    return object;
}

}  // namespace vesko
