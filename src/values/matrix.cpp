// The constructors of values: records out of the pools, tagged and sized.
#include "values/matrix.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "console/command.h"
#include "engine/interrupt.h"
#include "values/containers.h"
#include "values/convert.h"
#include "values/memory.h"
#include "values/pools.h"

namespace vesko {

constexpr uint64_t max_length = 0x7FFFFFFF;  // what the integers of the language can count

uint32_t checkedLength(uint64_t rows, uint64_t cols) {
    uint64_t n;
    if (__builtin_mul_overflow(rows, cols, &n)) n = UINT64_MAX / sizeof(double);
    if (n > max_length) refuseMemory(n * sizeof(double));
    return static_cast<uint32_t>(n);
}

// ---- Big records

// The record on top of the stack gets a buffer of n units at least; its old contents are not kept.
static void makeRoomOnTop(PoolClass &pool, uint32_t n) {
    assert(pool.isBig());
    if (pool.nfree == 0) refillPool(pool);
    Matrix *m = pool.free_stack[pool.nfree - 1];
    unpoisonRecord(pool, m);
    if (m->cap >= n) return;
    const bool real = pool.unit == sizeof(double);
    holdInterrupt();
    m_free(real ? m->rdata : m->vdata, size_t{m->cap} * pool.unit);
    m->rdata = nullptr;
    m->vdata = nullptr;
    m->cap = 0;
    void *buffer = m_malloc(size_t{n} * pool.unit);
    if (real)
        m->rdata = static_cast<double *>(buffer);
    else
        m->vdata = buffer;
    m->cap = n;
    freeInterrupt();
}

static Matrix *takeRoom(PoolClass *pools, unsigned k, uint32_t n) {
    if (k == big_class) makeRoomOnTop(pools[k], n);
    return takeRecord(pools[k]);
}

// ---- Real records

Matrix *allocRealMat(uint32_t length, uint32_t rows, uint32_t cols) {
    if (length == 0) xAbort("length=0");
    Matrix *m = takeRoom(real_pool, realClassOf(length), length);
    m->nrows = rows;
    m->ncols = cols;
    m->length = length;
    return m;
}

Matrix *allocRealMat_ini(uint32_t length, uint32_t rows, uint32_t cols) {
    Matrix *m = allocRealMat(length, rows, cols);
    std::fill_n(m->rdata, length, 0.0);
    return m;
}

Matrix *newZerosMat(uint32_t rows, uint32_t cols) {
    return allocRealMat_ini(checkedLength(rows, cols), rows, cols);
}

Matrix *newRealScalarMat(double x) { return makeRealScalar(x); }

static Matrix *fillShape(double x, const Matrix *shape) {
    Matrix *m = allocRealMat(shape->length, shape->nrows, shape->ncols);
    std::fill_n(m->rdata, m->length, x);
    return m;
}

Matrix *RS_TO_RM(const Matrix *scalar, const Matrix *shape) { return fillShape(scalar->rdata[0], shape); }

Matrix *RS_TO_RM_NEG(const Matrix *scalar, const Matrix *shape) {
    return fillShape(-scalar->rdata[0], shape);
}

static Matrix *newStructuredMat(uint32_t n, L2 kind) {
    Matrix *m = newZerosMat(n, n);
    if (n < 2) return m;  // one element has no shape to speak of
    m->l1type = L1::PF;
    m->l2type = kind;
    return m;
}

Matrix *newUpperMat(uint32_t n) { return newStructuredMat(n, L2::UPPER); }
Matrix *newLowerMat(uint32_t n) { return newStructuredMat(n, L2::LOWER); }
Matrix *newSymmMat(uint32_t n) { return newStructuredMat(n, L2::SYMM); }

// ---- General records

Matrix *allocGMat(size_t bytes) {
    if (bytes > UINT32_MAX) refuseMemory(bytes);
    Matrix *m = takeRoom(general_pool, generalClassOf(bytes), static_cast<uint32_t>(bytes));
    m->rdata = nullptr;
    return m;
}

static Matrix *tagged(Matrix *m, L1 l1, L2 l2, uint32_t length, uint32_t rows, uint32_t cols) {
    m->nrows = rows;
    m->ncols = cols;
    m->length = length;
    m->l1type = l1;
    m->l2type = l2;
    return m;
}

Matrix *newIntMat(uint32_t rows, uint32_t cols) {
    const uint32_t n = checkedLength(rows, cols);
    if (n == 0) return theEmptyMat();
    Matrix *m = allocGMat(n * sizeof(int32_t));
    return n == 1 ? tagged(m, L1::IS, L2::IS, n, rows, cols) : tagged(m, L1::IM, L2::IM, n, rows, cols);
}

Matrix *newIntScalarMat(int32_t x) { return makeIntScalar(x); }

static Matrix *newBytes(uint32_t rows, uint32_t cols, L2 kind) {
    const uint32_t n = checkedLength(rows, cols);
    return n ? tagged(allocGMat(n), L1::PF, kind, n, rows, cols) : theEmptyMat();
}

static Matrix *newOneByte(uint8_t x, L2 kind) {
    Matrix *m = newBytes(1, 1, kind);
    *m->bytes() = x;
    return m;
}

Matrix *newByteMat(uint32_t rows, uint32_t cols) { return newBytes(rows, cols, L2::BY); }
Matrix *newBinaryMat(uint32_t rows, uint32_t cols) { return newBytes(rows, cols, L2::BI); }
Matrix *newByteScalarMat(uint8_t x) { return newOneByte(x, L2::BY); }
Matrix *newBinaryScalarMat(uint8_t x) { return newOneByte(x, L2::BI); }

// A kind whose doubles lie in the buffer of the general pool.
static Matrix *newDoublesMat(uint32_t n, L2 kind, uint32_t length, uint32_t rows, uint32_t cols) {
    Matrix *m = allocGMat(n * sizeof(double));
    m->rdata = static_cast<double *>(m->vdata);
    return tagged(m, L1::PF, kind, length, rows, cols);
}

Matrix *newRngMat(uint32_t rows, uint32_t cols, double first, double step) {
    Matrix *m = newDoublesMat(2, L2::RNG, checkedLength(rows, cols), rows, cols);
    m->rdata[0] = first;
    m->rdata[1] = step;
    return m;
}

constexpr uint32_t interval_fields = 4;  // lower, upper, lower flag, upper flag

Matrix *allocItvMat(uint32_t n) {
    const uint32_t length = checkedLength(n, interval_fields);
    return newDoublesMat(length, L2::ITV, length, n, interval_fields);
}

Matrix *newItvMat(double lower, double upper, double lower_flag, double upper_flag) {
    Matrix *m = allocItvMat(1);
    const double fields[interval_fields] = {lower, upper, lower_flag, upper_flag};
    std::copy_n(fields, interval_fields, m->rdata);
    return m;
}

// ---- Strings and lists

Matrix *newStrMat(uint32_t size_with_nul) {
    if (size_with_nul == 0) return theEmptyMat();
    Matrix *m = tagged(allocGMat(size_with_nul), L1::PF, L2::TX, size_with_nul - 1, 1, size_with_nul);
    m->text()[size_with_nul - 1] = 0;
    return m;
}

Matrix *newStrMatCopyN(const char *text, uint32_t length) {
    Matrix *m = newStrMat(checkedLength(uint64_t{length} + 1, 1));
    std::memcpy(m->text(), text, length);
    return m;
}

Matrix *newStrMatCopy(const char *text) { return newStrMatCopyN(text, checkedLength(std::strlen(text), 1)); }

static Matrix *newEntries(uint32_t capacity, L2 kind) {
    Matrix *m = allocGMat(size_t{capacity} * sizeof(Matrix *));
    return tagged(m, L1::PF, kind, 0, 0, capacity);
}

Matrix *newListMat(uint32_t capacity) { return capacity ? newEntries(capacity, L2::LS) : theEmptyMat(); }
Matrix *newVListMat(uint32_t capacity) { return newEntries(capacity ? capacity : 1, L2::VL); }

// ---- Records without a buffer

Matrix *newPfMat() {
    Matrix *m = takeRecord(plain_pool);
    m->rdata = nullptr;
    m->vdata = nullptr;
    return tagged(m, L1::PF, L2::GV, 0, 0, 1);
}

static Matrix *newFunctionMat(void *function, L2 kind) {
    Matrix *m = newPfMat();
    m->vdata = function;
    m->l2type = kind;
    return m;
}

Matrix *newUfMat(FuncRec *f) { return newFunctionMat(f, L2::UF); }
Matrix *newBfMat(Bfunc *f) { return newFunctionMat(f, L2::BF); }

Matrix *newGvMat(uint32_t global_index) { return tagged(newPfMat(), L1::PF, L2::GV, 0, global_index, 0); }

// ---- Complex values

// The parts have one shape and no other holder.
static Matrix *joinParts(Matrix *re, Matrix *im) {
    assert(re->length == im->length);
    Matrix *m = newPfMat();
    m->vdata = newMemBlock(2 * sizeof(Matrix *));
    m->entries()[0] = re;
    m->entries()[1] = im;
    linkMat(re);
    linkMat(im);
    return tagged(m, L1::PF, re->length == 1 ? L2::CS : L2::CM, re->length, re->nrows, re->ncols);
}

Matrix *allocCompMat(uint32_t length, uint32_t rows, uint32_t cols) {
    Matrix *re = allocRealMat(length, rows, cols);
    return joinParts(re, allocRealMat(length, rows, cols));
}

Matrix *newCompScalarMat(double re, double im) {
    Matrix *real = newRealScalarMat(re);
    return joinParts(real, newRealScalarMat(im));
}

static Matrix *expandScalar(Matrix *part, const Matrix *other) {
    Matrix *m = RS_TO_RM(part, other);
    releaseMat(part);
    return m;
}

static Matrix *ownPart(Matrix *part) { return part->isTemp() ? part : cloneRM(part); }

Matrix *newCompMat(Matrix *re, Matrix *im) {
    if (re->length == 1 && im->length != 1)
        re = expandScalar(re, im);
    else if (im->length == 1 && re->length != 1)
        im = expandScalar(im, re);
    if (re->nrows != im->nrows || re->ncols != im->ncols)
        xAbort("Error constructing complex matrix: real and imaginary parts don't match.");
    if (re == im) im = cloneRM(re);
    re = ownPart(re);
    return joinParts(re, ownPart(im));
}

// ---- Multidimensional matrices

static Matrix *newMultidim(uint32_t length, Vector *extents, L2 kind, uint32_t doubles_per_element) {
    Matrix *m = newPfMat();
    m->vdata = extents;
    tagged(m, L1::PF, kind, 0, extents->size, 0);  // owns the extents, should the elements be refused
    holdInterrupt();
    m->rdata = mallocArray<double>(size_t{length} * doubles_per_element);
    m->length = length;
    freeInterrupt();
    return m;
}

Matrix *newRMDM_Mat(uint32_t length, Vector *extents) { return newMultidim(length, extents, L2::RMDM, 1); }
Matrix *newCMDM_Mat(uint32_t length, Vector *extents) { return newMultidim(length, extents, L2::CMDM, 2); }

static Vector *copyExtents(const Matrix *m) {
    const Vector *from = static_cast<const Vector *>(m->vdata);
    Vector *extents = newVector(from->size);
    std::copy_n(from->data, from->size, extents->data);
    extents->size = from->size;
    return extents;
}

Matrix *dupRMDM(const Matrix *m) { return newRMDM_Mat(m->length, copyExtents(m)); }
Matrix *dupCMDM(const Matrix *m) { return newCMDM_Mat(m->length, copyExtents(m)); }

// ---- Extending big records

// A kept record with a buffer of n units, taken off the free stack from wherever it lies; or null.
static Matrix *takeKept(PoolClass &pool, size_t n) {
    for (uint32_t i = pool.nfree; i-- > 0;) {
        Matrix *m = pool.free_stack[i];
        unpoisonRecord(pool, m);
        if (m->status == status_free && m->cap >= n) {
            Matrix *last = pool.free_stack[pool.nfree - 1];
            pool.nfree--;  // before the store: an interrupt loses a record, and never doubles one
            orderStores();
            if (last != m) pool.free_stack[i] = last;
            markInUse(m);
            return m;
        }
        poisonRecord(pool, m);
    }
    return nullptr;
}

static uint32_t doubled(size_t n) {
    return static_cast<uint32_t>(std::min<uint64_t>(uint64_t{2} * n, UINT32_MAX));
}

static Matrix *growBigRecord(PoolClass &pool, Matrix *m, size_t n) {
    assert(m->libidx == big_class);
    if (n > UINT32_MAX) refuseMemory(n * pool.unit);
    holdInterrupt();
    Matrix *kept = takeKept(pool, n);
    if (!kept) {
        const uint32_t cap = doubled(n);
        const bool real = pool.unit == sizeof(double);
        void *buffer = real ? m->rdata : m->vdata;
        buffer = m_realloc(buffer, size_t{m->cap} * pool.unit, size_t{cap} * pool.unit);
        if (real)
            m->rdata = static_cast<double *>(buffer);
        else
            m->vdata = buffer;
        m->cap = cap;
        m->depth = depth;
        kept = m;
    }
    freeInterrupt();
    return kept;
}

Matrix *realloc_big_gmat(Matrix *m, size_t n) { return growBigRecord(general_pool[big_class], m, n); }
Matrix *realloc_big_real_mat(Matrix *m, size_t n) { return growBigRecord(real_pool[big_class], m, n); }

}  // namespace vesko
