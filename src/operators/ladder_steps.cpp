// Steps that serve many kinds: conversion to real, dense storage, lists, sets and tables as factors.
#include <cassert>

#include "builtins/regexp_match.h"
#include "engine/errors.h"
#include "engine/interrupt.h"
#include "operators/ladder.h"
#include "values/containers.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

BinaryFn tableEntry(Arith op, L1 left, L1 right) {
    static constexpr const BinaryFn *tables[n_ariths] = {sumfun, subfun, mpyfun, dvdfun, dmufun,
                                                         ddvfun, bslfun, dpwfun, modfun, powfun};
    return tables[index(op)][index(left) * n_families + index(right)];
}

Matrix *applyMade(Arith op, Matrix *x, Matrix *y, const Matrix *a, const Matrix *b, PcNode *node) {
    Matrix *result = keepResult(apply(op, x, y, node));
    if (x != a) releaseMat(x);
    if (y != b) releaseMat(y);
    return passResult(result);
}

bool pairUp(const Matrix *a, const Matrix *b, Pairing &p) {
    const bool left_alone = a->length == 1, right_alone = b->length == 1;
    const Fit fit = left_alone || right_alone ? Fit::Flat : fitOf(a, b);
    if (fit == Fit::None) return false;
    const bool right_shape = left_alone || fit == Fit::LeftColumn || fit == Fit::LeftRow;
    const Matrix *shape = right_shape ? b : a;
    const uint32_t width = shape->ncols;
    p = {shape->nrows, width, width, 1, width, 1};
    if (left_alone) p.a_row = p.a_col = 0;
    if (right_alone) p.b_row = p.b_col = 0;
    if (fit == Fit::LeftColumn) p.a_row = 1, p.a_col = 0;
    if (fit == Fit::RightColumn) p.b_row = 1, p.b_col = 0;
    if (fit == Fit::LeftRow) p.a_row = 0;
    if (fit == Fit::RightRow) p.b_row = 0;
    return true;
}

bool oneWholeNumber(const Matrix *m, int32_t &n) { return m->length == 1 && extract_integer(m, n); }

// ---- Refusals

Matrix *undefined(Arith, Matrix *, Matrix *, PcNode *node) { error_undef_opr2(node); }

Matrix *noQuotient(Arith, Matrix *a, Matrix *b, PcNode *node) {
    if (a->l1type == L1::PF && b->l1type == L1::PF) error_size_nomatch(node);
    error_undef_opr2(node);
}

void error_kind_not_built(PcNode *node, L2 kind) {
    switch (kind) {
        case L2::BAND: error_not_built(node, "band matrices");
        case L2::SPARSE: error_not_built(node, "sparse matrices");
        case L2::BIGINT: error_not_built(node, "big integers");
        default: assert(kind == L2::MPF); error_not_built(node, "multi-precision floats");
    }
}

Matrix *notBuilt(Arith, Matrix *a, Matrix *b, PcNode *node) {
    const bool left = isRealLike(a->l2type) && !hasPlainElements(a->l2type);
    error_kind_not_built(node, left ? a->l2type : b->l2type);
}

// ---- Real-like kinds

static bool convertsToReal(const Matrix *m) {
    return m->l1type == L1::PF && isRealLike(m->l2type) && !isDenseReal(m->l2type);
}

Matrix *asReals(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    Matrix *x = convertsToReal(a) ? convToDb(a) : a;
    Matrix *y = convertsToReal(b) ? convToDb(b) : b;
    assert(x != a || y != b);
    return applyMade(op, x, y, a, b, node);
}

static L1 denseFamily(const Matrix *m) { return m->l1type == L1::PF ? L1::RM : m->l1type; }
static bool isTagged(L2 t) { return t >= L2::UPPER && t <= L2::SYMM; }

// The tag that the result keeps, or RM. A sum with a scalar fills a triangle but leaves a symmetric matrix
// symmetric. The product of two symmetric matrices is tagged symmetric though it need not be.
static L2 keptTag(Arith op, const Matrix *a, const Matrix *b) {
    const L2 tag = isTagged(a->l2type) ? a->l2type : b->l2type;
    if (!isTagged(tag)) return L2::RM;
    const bool additive = op == Arith::Sum || op == Arith::Sub;
    if (!additive && op != Arith::Mpy && op != Arith::Dmu) return L2::RM;
    if (a->l2type == b->l2type) return tag;
    if (a->length != 1 && b->length != 1) return L2::RM;
    return op == Arith::Mpy || (additive && tag == L2::SYMM) ? tag : L2::RM;
}

Matrix *dense(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    const bool solves = (op == Arith::Dvd || op == Arith::Bsl) && a->length > 1;
    if (solves && isTagged(b->l2type)) error_not_built(node, "division by triangular and symmetric matrices");
    const L2 tag = keptTag(op, a, b);
    Matrix *result = tableEntry(op, denseFamily(a), denseFamily(b))(a, b, node);
    if (tag == L2::RM || result->l2type != L2::RM) return result;
    result->l1type = L1::PF;
    result->l2type = tag;
    return result;
}

// ---- Lists: entry by entry, in the kind of the list. The record is whole after each entry.

Matrix *overLists(Arith op, Matrix *a, Matrix *b, PcNode *node) {
    guardStack();
    const bool left = isList(a->l2type), right = isList(b->l2type);
    if (left && right && a->length != b->length) error_size_nomatch(node);
    const Matrix *shape = left ? a : b;
    Matrix *list = shape->l2type == L2::LS ? newListMat(shape->length) : newVListMat(shape->length);
    for (uint32_t k = 0; k < shape->length; k++)
        addListEntry(list, apply(op, left ? a->entries()[k] : a, right ? b->entries()[k] : b, node));
    return list;
}

// ---- Products without a meaning as arithmetic. A set times a value tells whether the value belongs to it.

static bool isDomainKind(L2 t) {
    return t == L2::ITV || t == L2::FSET || t == L2::COMPLETE || t == L2::CLASS || t == L2::COND ||
           t == L2::PTRSET;
}

// A pattern times a text is the first match.
static Matrix *matchPattern(const Matrix *pattern, const Matrix *text, PcNode *node) {
    if (!isCompiled(pattern)) error_regexp_compile(node);
    return regexp_match_one(pattern, textOf(text));
}

Matrix *productOfRest(Arith, Matrix *a, Matrix *b, PcNode *node) {
    if (isFunction(a->l2type)) return callFunction(a, b, node);
    if (isDomainKind(a->l2type)) return truthMat(memberOfSet(b, a, node) != 0);
    if (a->l2type == L2::HASH) return findHashData(a->table(), b);
    if (a->l2type == L2::REGEXP && b->l2type == L2::TX) return matchPattern(a, b, node);
    if (a->l1type == L1::PF && b->l1type == L1::PF) error_size_nomatch(node);
    error_undef_opr2(node);
}

}  // namespace vesko
