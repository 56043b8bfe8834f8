// Equality and order with a PF operand on either side. The answer is one truth for all elements.
#include <cstring>

#include "engine/interrupt.h"
#include "operators/ladder.h"
#include "operators/ladders.h"
#include "values/containers.h"
#include "values/convert.h"

namespace vesko {

namespace {

// ---- Real-like kinds: as reals, dense storage as it lies.

// The operand, or a real temporary made from it.
Matrix *realForm(Matrix *m) { return isDenseReal(m->l2type) || m->l1type != L1::PF ? m : convToDb(m); }
L1 realFamily(const Matrix *m) { return m->l1type == L1::PF ? L1::RM : m->l1type; }

bool compareAsReals(const TruthFn *table, Matrix *a, Matrix *b, PcNode *node) {
    Matrix *x = realForm(a), *y = realForm(b);
    const unsigned entry = index(realFamily(x)) * n_families + index(realFamily(y));
    const bool truth = table[entry](x, y, node);
    if (x != a) releaseMat(x);
    if (y != b) releaseMat(y);
    return truth;
}

bool equalRanges(const Matrix *a, const Matrix *b) {
    return sameShape(a, b) && a->first() == b->first() && a->step() == b->step();
}

bool equalBytes(const Matrix *a, const Matrix *b) {
    Pairing p;
    if (!sameShape(a, b) && a->length != 1 && b->length != 1) return false;
    pairUp(a, b, p);
    bool equal = true;
    eachPair(p, [&](size_t, size_t i, size_t j) { equal = equal && a->bytes()[i] == b->bytes()[j]; });
    return equal;
}

// ---- Complex values. A real value is equal to one without imaginary part.

bool hasImaginary(const Matrix *m) {
    const Matrix *im = m->im();
    for (uint32_t k = 0; k < im->length; k++)
        if (im->rdata[k] != 0) return true;
    return false;
}

bool equalParts(Matrix *a, Matrix *b) { return equfun[pairIndex(a, b)](a, b, nullptr); }

bool equalComplex(Matrix *a, Matrix *b) {
    if (isComplex(b->l2type)) return equalParts(a->re(), b->re()) && equalParts(a->im(), b->im());
    return isRealLike(b->l2type) && !hasImaginary(a) && compareAsReals(equfun, a->re(), b, nullptr);
}

// ---- Containers

bool equalLists(const Matrix *a, const Matrix *b) {
    guardStack();
    if (a->length != b->length) return false;
    for (uint32_t k = 0; k < a->length; k++)
        if (!are_equal(a->entries()[k], b->entries()[k])) return false;
    return true;
}

bool equalIntervals(const Matrix *a, const Matrix *b) {
    if (a->nrows != b->nrows) return false;
    for (uint32_t k = 0; k < a->length; k++)
        if (a->rdata[k] != b->rdata[k]) return false;
    return true;
}

// The first word of the block is the variable.
bool sameVariable(const Matrix *a, const Matrix *b) {
    return *static_cast<void **>(a->vdata) == *static_cast<void **>(b->vdata);
}

// Of two values that are not numbers. Kinds without a case are equal only as the same record.
bool equalOfKind(const Matrix *a, const Matrix *b) {
    if (isList(a->l2type)) return isList(b->l2type) && equalLists(a, b);
    if (a->l2type != b->l2type) return false;
    switch (a->l2type) {
        case L2::UF:
        case L2::BF:
        case L2::PTR: return a->vdata == b->vdata;
        case L2::TX: return strcmp(a->text(), b->text()) == 0;
        case L2::ITV: return equalIntervals(a, b);
        case L2::FSET: return set_equal(a->table(), b->table());
        case L2::NUL: return true;
        case L2::VARADDR: return sameVariable(a, b);
        default: return false;
    }
}

bool equal(Matrix *a, Matrix *b) {
    if (isComplex(a->l2type)) return equalComplex(a, b);
    if (isComplex(b->l2type)) return equalComplex(b, a);
    if (!isRealLike(a->l2type)) return equalOfKind(a, b);
    if (!isRealLike(b->l2type)) return false;
    if (a->l2type == L2::RNG && b->l2type == L2::RNG) return equalRanges(a, b);
    if (isByteKind(a->l2type) && isByteKind(b->l2type)) return equalBytes(a, b);
    return compareAsReals(equfun, a, b, nullptr);
}

// ---- Order: strings by their bytes, everything else as reals. What is no number fails in the conversion.

bool ordered(const TruthFn *table, bool or_equal, Matrix *a, Matrix *b, PcNode *node) {
    if (a->l2type != L2::TX || b->l2type != L2::TX) return compareAsReals(table, a, b, node);
    const int order = strcmp(a->text(), b->text());
    return order < 0 || (or_equal && order == 0);
}
bool les(Matrix *a, Matrix *b, PcNode *node) { return ordered(lesfun, false, a, b, node); }
bool leq(Matrix *a, Matrix *b, PcNode *node) { return ordered(leqfun, true, a, b, node); }
bool equ(Matrix *a, Matrix *b, PcNode *) { return equal(a, b); }

}  // namespace

#define X(op, L, R) \
    bool op##L##_##R(Matrix *left, Matrix *right, PcNode *node) { return op(left, right, node); }
PF_TRUTH_FUNCTIONS(X)
#undef X

}  // namespace vesko
