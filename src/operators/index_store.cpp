// Indexed write: growth, conversion of the value to the target's elements, and one scattering loop for each
// element type.
#include "operators/index_store.h"

#include "engine/assign.h"
#include "engine/errors.h"
#include "numerics/dense.h"
#include "operators/dispatch.h"
#include "operators/growth.h"
#include "operators/index.h"
#include "operators/index_source.h"
#include "values/elements.h"

namespace vesko {

namespace {

// ---- Sizes

[[noreturn]] void refuseSize(const IndexedPlaces &where, PcNode *node) {
    switch (where.form) {
        case IndexForm::Flat: error_refasgn_size_nomatch(node);
        case IndexForm::Block: error_refasgn2_size_nomatch(node);
        default: error_refasgnm_size_nomatch(node);
    }
}

bool fits(const Matrix *value, const IndexedPlaces &where) {
    if (value->length == 1) return true;
    if (where.form != IndexForm::Block) return value->length == where.count();
    const bool text = value->l2type == L2::TX;  // whose ncols counts the terminator
    return value->nrows == where.rows.length && (text ? value->length : value->ncols) == where.cols.length;
}

void checkSize(const Matrix *value, const IndexedPlaces &where, PcNode *node) {
    const uint32_t rows = where.rows.length, cols = where.cols.length;
    if (where.form == IndexForm::Pairs && rows != cols && rows != 1 && cols != 1) refuseSize(where, node);
    if (!fits(value, where)) refuseSize(where, node);
}

// ---- The loops

template <class T>
void scatter(T *to, uint32_t ncols, const IndexedPlaces &where, const Source<T> &source) {
    where.walk(ncols, [=](uint32_t k, uint32_t place) { to[place] = source(k); });
}

// ---- Growth

// The shape that has the largest place. A flat index adds rows, or lengthens a row.
Matrix *growToPlaces(Matrix *&slot, const IndexedPlaces &where) {
    const Matrix *m = slot;
    uint32_t rows = m->nrows, cols = m->ncols;
    if (where.form == IndexForm::Flat) {
        if (where.max_row <= m->length) return slot;
        if (rows == 1)
            cols = where.max_row;
        else
            rows = (where.max_row - 1) / cols + 1;
    } else {
        if (where.max_row <= rows && where.max_col <= cols) return slot;
        if (where.max_row > rows) rows = where.max_row;
        if (where.max_col > cols) cols = where.max_col;
    }
    return growMat(slot, rows, cols);
}

// ---- One kind of target each. The value is numeric, real-like for all but the complex target, or a string,
// and its size fits.

template <class T>
Matrix *storeElements(Matrix *&slot, const IndexedPlaces &where, const Matrix *value) {
    Source<T> source;
    openSource(source, value);
    Matrix *m = growToPlaces(slot, where);
    scatter(elementsOf<T>(m), m->ncols, where, source);
    closeSource(source);
    return m;
}

// A bit keeps the low bit of what is stored.
Matrix *storeBits(Matrix *&slot, const IndexedPlaces &where, const Matrix *value) {
    Source<uint8_t> source;
    openSource(source, value);
    Matrix *m = growToPlaces(slot, where);
    where.walk(m->ncols, [&, to = m->bytes()](uint32_t k, uint32_t place) { to[place] = source(k) & 1; });
    closeSource(source);
    return m;
}

void storePart(Matrix *&part, const IndexedPlaces &where, const Matrix *value) {
    Source<double> source;
    openSource(source, value);
    Matrix *m = unshare(part);
    scatter(m->rdata, m->ncols, where, source);
    closeSource(source);
}

Matrix *storeComplex(Matrix *&slot, const IndexedPlaces &where, Matrix *value) {
    Matrix *m = growToPlaces(slot, where);
    storePart(m->entries()[0], where, isComplex(value->l2type) ? value->re() : value);
    storePart(m->entries()[1], where, isComplex(value->l2type) ? value->im() : theFalseMat());
    return m;
}

// No character of a string is 0.
Matrix *storeText(Matrix *&slot, const IndexedPlaces &where, const Matrix *value, PcNode *node) {
    if (where.form != IndexForm::Flat) error_undef_opr2(node);
    Source<uint8_t> source;
    openSource(source, value);
    for (uint32_t k = 0; k < value->length; k++)
        if (source(k) == 0) error_zero_string_character(node);
    Matrix *m = txmAddLen(slot, where.max_row > slot->length ? where.max_row : slot->length);
    scatter(m->bytes(), m->ncols, where, source);
    closeSource(source);
    return m;
}

// ---- Triangular and symmetric targets: they keep their structure as long as every place allows it.

bool inTriangle(L2 kind, uint32_t row, uint32_t col) {
    return kind == L2::SYMM || (kind == L2::UPPER ? row <= col : row >= col);
}

bool keepsStructure(const Matrix *m, const IndexedPlaces &where) {
    const uint32_t n = m->nrows;
    if (where.form == IndexForm::Flat ? where.max_row > m->length : where.max_row > n || where.max_col > n)
        return false;
    bool keeps = true;
    where.walk(n, [&, kind = m->l2type](uint32_t, uint32_t place) {
        keeps &= inTriangle(kind, place / n, place % n);
    });
    return keeps;
}

// An element of a symmetric matrix is stored on both sides of the diagonal.
Matrix *storeSymmetric(Matrix *m, const IndexedPlaces &where, const Matrix *value) {
    Source<double> source;
    openSource(source, value);
    where.walk(m->ncols, [&, to = m->rdata, n = m->ncols](uint32_t k, uint32_t place) {
        to[place] = to[place % n * n + place / n] = source(k);
    });
    closeSource(source);
    return m;
}

Matrix *storeStructured(Matrix *&slot, const IndexedPlaces &where, const Matrix *value) {
    Matrix *m = slot;
    if (!keepsStructure(m, where)) {
        strip_pm(m);
        return storeElements<double>(slot, where, value);
    }
    reset_pm(m);
    return m->l2type == L2::SYMM ? storeSymmetric(m, where, value)
                                 : storeElements<double>(slot, where, value);
}

// ---- Any target

// All zeros, in the shape that has the largest place.
Matrix *newTargetLike(const Matrix *value, const IndexedPlaces &where) {
    if (value->l2type == L2::TX) return newStrMatCopy("");
    const bool flat = where.form == IndexForm::Flat;
    return newZerosOfKind(value->l2type, flat ? 1 : where.max_row, flat ? where.max_row : where.max_col);
}

using PlainStore = Matrix *(*)(Matrix *&slot, const IndexedPlaces &where, const Matrix *value);

// A real-like target turns complex for a complex value, and not before.
template <PlainStore store>
Matrix *storeRealLike(Matrix *&slot, const IndexedPlaces &where, Matrix *value) {
    if (!isComplex(value->l2type)) return store(slot, where, value);
    replaceMat(slot, convToCM(slot));
    return storeComplex(slot, where, value);
}

Matrix *storeIntoOther(Matrix *&slot, const IndexedPlaces &where, Matrix *value, PcNode *node);

// The value ladder: kinds without plain elements are stored as reals.
template <class Store>
Matrix *withPlainValue(const IndexedPlaces &where, Matrix *value, PcNode *node, Store store) {
    if (value->l2type == L2::NUL) refuseSize(where, node);
    if (!isNumeric(value->l2type) && value->l2type != L2::TX) error_undef_opr2(node);
    checkSize(value, where, node);
    if (!isRealLike(value->l2type) || hasPlainElements(value->l2type)) return store(value);
    Matrix *real = convToDb(value);
    Matrix *result = store(real);
    releaseMat(real);
    return result;
}

template <PlainStore store>
Matrix *refAsgnPlain(Matrix *&slot, const IndexedPlaces &where, Matrix *value, PcNode *node) {
    return withPlainValue(where, value, node,
                          [&](Matrix *plain) { return storeRealLike<store>(slot, where, plain); });
}

Matrix *refAsgnPF(Matrix *&slot, const IndexedPlaces &where, Matrix *value, PcNode *node) {
    return withPlainValue(where, value, node,
                          [&](Matrix *plain) { return storeIntoOther(slot, where, plain, node); });
}

// An even spaced vector loses its form at the first write, factors are stale after it, and an empty target
// takes the kind of the value.
Matrix *storeIntoOther(Matrix *&slot, const IndexedPlaces &where, Matrix *value, PcNode *node) {
    switch (slot->l2type) {
        case L2::RNG: replaceMat(slot, convToDb(slot)); return refAsgn(slot, where, value, node);
        case L2::PM: strip_pm(slot); return refAsgn(slot, where, value, node);
        case L2::NUL: replaceMat(slot, newTargetLike(value, where)); return refAsgn(slot, where, value, node);
        case L2::BY: return storeRealLike<storeElements<uint8_t>>(slot, where, value);
        case L2::BI: return storeRealLike<storeBits>(slot, where, value);
        case L2::UPPER:
        case L2::LOWER:
        case L2::SYMM: return storeRealLike<storeStructured>(slot, where, value);
        case L2::CS:
        case L2::CM: return storeComplex(slot, where, value);
        case L2::TX:
            if (isComplex(value->l2type)) error_fail_conv_to_string(node, getdatatypestr(value->l2type));
            return storeText(slot, where, value, node);
        case L2::BAND: error_not_built(node, "band matrices");
        case L2::SPARSE: error_not_built(node, "sparse matrices");
        case L2::BIGINT: error_not_built(node, "big integers");
        case L2::MPF: error_not_built(node, "multi-precision floats");
        default: error_undef_opr2(node);
    }
}

}  // namespace

const StoreFn refAsgnFun[n_families] = {
    refAsgnPlain<storeElements<double>>,
    refAsgnPlain<storeElements<double>>,
    refAsgnPlain<storeElements<int32_t>>,
    refAsgnPlain<storeElements<int32_t>>,
    refAsgnPF,
};

// ---- One number in one place

namespace {

bool isQuickTarget(const Matrix *m, const Matrix *value) {
    return (m->l1type == L1::RM || m->l1type == L1::IM) && m->nlinks() < 2 &&
           (value->l1type == L1::RS || value->l1type == L1::IS);
}

void storeScalar(Matrix *m, uint32_t i, const Matrix *value) {
    const bool real = value->l1type == L1::RS;
    if (m->l1type == L1::RM)
        m->rdata[i] = real ? value->rdata[0] : value->ints()[0];
    else
        m->ints()[i] = real ? truncToInt(value->rdata[0]) : value->ints()[0];
}

}  // namespace

bool quickStore(Matrix *&slot, const Matrix *index, const Matrix *value) {
    Matrix *m = slot;
    uint32_t i;
    if (!isQuickTarget(m, value)) return false;
    if (!quickIndex(index, m->length, i)) {
        if (!quickIndex(index, INT32_MAX, i)) return false;
        if (m->nrows == 1)
            m = growMat(slot, 1, i + 1);
        else if (m->ncols == 1)
            m = growMat(slot, i + 1, 1);
        else
            return false;
    }
    storeScalar(m, i, value);
    return true;
}

bool quickStore2(Matrix *&slot, const Matrix *row, const Matrix *col, const Matrix *value) {
    Matrix *m = slot;
    uint32_t i, j;
    if (!isQuickTarget(m, value) || !quickIndex(row, m->nrows, i) || !quickIndex(col, m->ncols, j))
        return false;
    storeScalar(m, i * m->ncols + j, value);
    return true;
}

}  // namespace vesko
