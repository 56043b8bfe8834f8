// Cloning: deep copies of every kind that can be changed in place, and the copies into a corner of a larger
// matrix that growth needs.
#include <cassert>
#include <cstring>

#include "builtins/bfunc.h"
#include "console/command.h"
#include "engine/errors.h"
#include "engine/frame.h"
#include "engine/interrupt.h"
#include "objects/object.h"
#include "values/containers.h"
#include "values/convert.h"
#include "values/payload.h"

namespace vesko {

// ---- One kind each

Matrix *cloneRM(const Matrix *m) {
    Matrix *copy = allocRealMat(m->length, m->nrows, m->ncols);
    copyMat(copy, m);
    return copy;
}

Matrix *cloneRM_rowreverse(const Matrix *m) {
    Matrix *copy = allocRealMat(m->length, m->nrows, m->ncols);
    const uint32_t rows = m->nrows, cols = m->ncols;
    for (uint32_t i = 0; i < rows; i++)
        memcpy(copy->rdata + size_t{i} * cols, m->rdata + size_t{rows - 1 - i} * cols, cols * sizeof(double));
    return copy;
}

Matrix *cloneStrMat(const Matrix *m) { return newStrMatCopyN(m->text(), m->length); }

// Entries are shared by link: a store below copies what it touches.
static Matrix *linkEntries(Matrix *copy, const Matrix *list) {
    for (uint32_t i = 0; i < list->length; i++) addListEntry(copy, list->entries()[i]);
    return copy;
}

static uint32_t capacityFor(const Matrix *list) { return list->length ? list->length : 1; }

Matrix *cloneListMat(const Matrix *m) { return linkEntries(newListMat(capacityFor(m)), m); }

Matrix *cloneVListMat(const Matrix *m) { return linkEntries(newVListMat(capacityFor(m)), m); }

Matrix *cloneSetMat(const Matrix *m) {
    return newPayloadMat(L2::FSET, [m] { return copyHashTable(m->table()); });
}

static Matrix *cloneInts(const Matrix *m) {
    Matrix *copy = newIntMat(m->nrows, m->ncols);
    memcpy(copy->vdata, m->vdata, m->length * sizeof(int32_t));
    return copy;
}

static Matrix *cloneBytes(const Matrix *m) {
    Matrix *copy = m->l2type == L2::BY ? newByteMat(m->nrows, m->ncols) : newBinaryMat(m->nrows, m->ncols);
    memcpy(copy->vdata, m->vdata, m->length);
    return copy;
}

static Matrix *cloneComplex(const Matrix *m) {
    Matrix *copy = allocCompMat(m->length, m->nrows, m->ncols);
    copyMat(copy->re(), m->re());
    copyMat(copy->im(), m->im());
    return copy;
}

static Matrix *cloneMultidim(const Matrix *m) {
    const bool complex = m->l2type == L2::CMDM;
    Matrix *copy = complex ? dupCMDM(m) : dupRMDM(m);
    memcpy(copy->rdata, m->rdata, size_t{m->length} * (complex ? 2 : 1) * sizeof(double));
    return copy;
}

// ---- Any kind

Matrix *cloneMatrix(Matrix *m) {
    guardStack();
    switch (m->l2type) {
        case L2::IM:
        case L2::IS: return cloneInts(m);
        case L2::RNG: return newRngMat(m->nrows, m->ncols, m->first(), m->step());
        case L2::RM:
        case L2::RS:
        case L2::UPPER:
        case L2::LOWER:
        case L2::SYMM:
        case L2::PM: return cloneRM(m);  // structure and cached factors are not carried over
        case L2::BY:
        case L2::BI: return cloneBytes(m);
        case L2::BAND: error_not_built(nullptr, "band matrices");
        case L2::SPARSE: error_not_built(nullptr, "sparse matrices");
        case L2::BIGINT: error_not_built(nullptr, "big integers");
        case L2::MPF: error_not_built(nullptr, "multi-precision floats");
        case L2::CS:
        case L2::CM: return cloneComplex(m);
        case L2::LS: return cloneListMat(m);
        case L2::VL: return cloneVListMat(m);
        case L2::UF: return copyUf(m);
        case L2::BF: return newBfMat(cloneBfunc(m->builtin()));
        case L2::OBJ: return cloneObject(m);
        case L2::RMDM:
        case L2::CMDM: return cloneMultidim(m);
        case L2::TX: return cloneStrMat(m);
        case L2::FSET: return cloneSetMat(m);
        case L2::AUTOMATON: xAbort("place holder -- you can't see me");
        case L2::STACK:
            return newPayloadMat(L2::STACK, [m] { return copyStack(static_cast<xstack *>(m->vdata)); });
        case L2::QUEUE:
            return newPayloadMat(L2::QUEUE, [m] { return copyQue(static_cast<xqueue *>(m->vdata)); });
        case L2::HASH: return newPayloadMat(L2::HASH, [m] { return copyHashTable(m->table()); });
        case L2::GV:
        case L2::ODE: xAbort("error in clonemat");
        default: return m;  // immutable, or a reference to something shared
    }
}

// ---- Copies between records

void copyMat(Matrix *dst, const Matrix *src) {
    assert(dst->length >= src->length);
    memcpy(dst->rdata, src->rdata, size_t{src->length} * sizeof(double));
}

template <class T>
static void copyCorner(T *to, uint32_t to_cols, const T *from, uint32_t rows, uint32_t cols) {
    assert(to_cols >= cols);
    for (uint32_t i = 0; i < rows; i++, to += to_cols, from += cols) memcpy(to, from, cols * sizeof(T));
}

void copyRealMat(Matrix *dst, const Matrix *src) {
    copyCorner(dst->rdata, dst->ncols, src->rdata, src->nrows, src->ncols);
}

void copyIM(Matrix *dst, const Matrix *src) {
    copyCorner(dst->ints(), dst->ncols, src->ints(), src->nrows, src->ncols);
}

void copyBM(Matrix *dst, const Matrix *src) {
    copyCorner(dst->bytes(), dst->ncols, src->bytes(), src->nrows, src->ncols);
}

void copyCompMat(Matrix *dst, const Matrix *src) {
    copyRealMat(dst->re(), src->re());
    copyRealMat(dst->im(), src->im());
}

Matrix *theEleMat(uint32_t n) {
    Matrix *identity = newZerosMat(n, n);
    for (uint32_t i = 0; i < n; i++) identity->rdata[size_t{i} * n + i] = 1.0;
    return identity;
}

bool sameDims(const Matrix *a, const Matrix *b) {
    const auto *p = static_cast<const Vector *>(a->vdata), *q = static_cast<const Vector *>(b->vdata);
    if (p->size != q->size) return false;
    for (uint32_t i = 0; i < p->size; i++)
        if (p->numberAt(i) != q->numberAt(i)) return false;
    return true;
}

}  // namespace vesko
