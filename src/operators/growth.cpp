// Growth of matrices, strings and lists. One plan for every element type: room for the new length, either the
// record's own or another one's, and then the tail; only more columns move the elements.
#include "operators/growth.h"

#include <cassert>
#include <cstring>

#include "engine/assign.h"
#include "engine/interrupt.h"
#include "values/convert.h"
#include "values/elements.h"
#include "values/memory.h"

namespace vesko {

namespace {

constexpr uint8_t big_class = 10;

// ---- Where the elements of a kind lie, and how its records are made.

struct Reals {
    using Element = double;
    static double *at(const Matrix *m) { return m->rdata; }
    static size_t capacity(const Matrix *m) { return m->cap; }
    static Matrix *make(uint32_t rows, uint32_t cols) {
        return allocRealMat(checkedLength(rows, cols), rows, cols);
    }
    static Matrix *extend(Matrix *m, size_t n) { return realloc_big_real_mat(m, n); }
    static constexpr auto copyCorner = copyRealMat;
};

template <class T>
struct General {
    using Element = T;
    static T *at(const Matrix *m) { return static_cast<T *>(m->vdata); }
    static size_t capacity(const Matrix *m) { return m->cap / sizeof(T); }
    static Matrix *extend(Matrix *m, size_t n) { return realloc_big_gmat(m, n * sizeof(T)); }
};
struct Ints : General<int32_t> {
    static constexpr auto make = newIntMat;
    static constexpr auto copyCorner = copyIM;
};
struct Bytes : General<uint8_t> {
    static constexpr auto make = newByteMat;
    static constexpr auto copyCorner = copyBM;
};
struct Bits : Bytes {
    static constexpr auto make = newBinaryMat;
};
struct Text : General<char> {
    static Matrix *make(uint32_t, uint32_t size) { return newStrMat(size); }
};
struct Entries : General<Matrix *> {
    static Matrix *make(uint32_t, uint32_t capacity) { return newVListMat(capacity); }
};

void setShape(Matrix *m, uint32_t rows, uint32_t cols) {
    m->nrows = rows;
    m->ncols = cols;
    m->length = rows * cols;
}

// `room` becomes what m is: tags, shape and the first n elements.
template <class K>
Matrix *takeOver(Matrix *room, const Matrix *m, size_t n) {
    std::memcpy(static_cast<void *>(K::at(room)), K::at(m), n * sizeof(typename K::Element));
    room->l1type = m->l1type;
    room->l2type = m->l2type;
    room->nrows = m->nrows;
    room->ncols = m->ncols;
    room->length = m->length;
    return room;
}

// A record that holds what m holds and has room for n elements: m, or a temporary. The first `used` elements
// are kept.
template <class K>
Matrix *roomFor(Matrix *m, uint32_t n, size_t used) {
    if (K::capacity(m) >= n) return m;
    if (m->libidx == big_class) {
        Matrix *room = K::extend(m, n);
        return room == m ? m : takeOver<K>(room, m, used);
    }
    return takeOver<K>(K::make(1, n), m, used);
}

Matrix *storeRoom(Matrix *&slot, Matrix *room) { return room == slot ? room : replaceMat(slot, room); }

// ---- Dense kinds

// A scalar that got room for more is a matrix from here on.
void retagGrown(Matrix *m) {
    if (m->l1type == L1::PF) return;
    const bool real = m->l1type == L1::RS || m->l1type == L1::RM;
    m->l1type = real ? L1::RM : L1::IM;
    m->l2type = real ? L2::RM : L2::IM;
}

// The elements stay where they are and new ones follow: more rows, or a longer row.
template <class K>
void extendTail(Matrix *m, uint32_t rows, uint32_t cols) {
    const uint32_t n = rows * cols;
    assert(K::capacity(m) >= n && n >= m->length);
    std::memset(K::at(m) + m->length, 0, (n - m->length) * sizeof(typename K::Element));
    setShape(m, rows, cols);
    if (n > 1) retagGrown(m);
}

template <class K>
Matrix *roomForTail(Matrix *m, uint32_t rows, uint32_t cols) {
    return roomFor<K>(m, checkedLength(rows, cols), m->length);
}

template <class K>
Matrix *makeZeros(uint32_t rows, uint32_t cols) {
    Matrix *m = K::make(rows, cols);
    std::memset(K::at(m), 0, m->length * sizeof(typename K::Element));
    return m;
}

template <class K>
Matrix *withCorner(const Matrix *m, uint32_t rows, uint32_t cols) {
    Matrix *wide = makeZeros<K>(rows, cols);
    K::copyCorner(wide, m);
    return wide;
}

// Whether every element keeps its flat place in the wider shape.
bool keepsPlaces(const Matrix *m, uint32_t cols) { return cols == m->ncols || m->nrows == 1; }

template <class K>
Matrix *growDense(Matrix *&slot, uint32_t rows, uint32_t cols) {
    if (!keepsPlaces(slot, cols)) return replaceMat(slot, withCorner<K>(slot, rows, cols));
    Matrix *m = storeRoom(slot, roomForTail<K>(slot, rows, cols));
    extendTail<K>(m, rows, cols);
    return m;
}

// Both parts get their room before either changes its shape, so that refused memory leaves a whole value. A
// part with other holders is replaced by a copy.
Matrix *growComplex(Matrix *m, uint32_t rows, uint32_t cols) {
    Matrix *&re = m->entries()[0], *&im = m->entries()[1];
    if (keepsPlaces(m, cols)) {
        storeRoom(re, roomForTail<Reals>(unshare(re), rows, cols));
        storeRoom(im, roomForTail<Reals>(unshare(im), rows, cols));
        extendTail<Reals>(re, rows, cols);
        extendTail<Reals>(im, rows, cols);
    } else {
        Matrix *wide_re = withCorner<Reals>(re, rows, cols);
        Matrix *wide_im = withCorner<Reals>(im, rows, cols);
        replaceMat(re, wide_re);
        replaceMat(im, wide_im);
    }
    setShape(m, rows, cols);
    if (m->length > 1) m->l2type = L2::CM;
    return m;
}

}  // namespace

Matrix *growMat(Matrix *&slot, uint32_t rows, uint32_t cols) {
    assert(slot->nlinks() < 2 && rows >= slot->nrows && cols >= slot->ncols);
    switch (slot->l2type) {
        case L2::IM:
        case L2::IS: return growDense<Ints>(slot, rows, cols);
        case L2::RM:
        case L2::RS: return growDense<Reals>(slot, rows, cols);
        case L2::BY: return growDense<Bytes>(slot, rows, cols);
        case L2::BI: return growDense<Bits>(slot, rows, cols);
        default: assert(isComplex(slot->l2type));
    }
    return growComplex(slot, rows, cols);
}

Matrix *newZerosOfKind(L2 kind, uint32_t rows, uint32_t cols) {
    switch (kind) {
        case L2::IM:
        case L2::IS: return makeZeros<Ints>(rows, cols);
        case L2::BY: return makeZeros<Bytes>(rows, cols);
        case L2::BI: return makeZeros<Bits>(rows, cols);
        case L2::CS:
        case L2::CM: {
            Matrix *re = makeZeros<Reals>(rows, cols);
            return newCompMat(re, makeZeros<Reals>(rows, cols));
        }
        default: return makeZeros<Reals>(rows, cols);
    }
}

template <class K>
static Matrix *grownTemporary(Matrix *m, uint32_t rows, uint32_t cols) {
    Matrix *grown = cols == m->ncols ? roomForTail<K>(m, rows, cols) : withCorner<K>(m, rows, cols);
    if (cols == m->ncols) extendTail<K>(grown, rows, cols);
    if (grown != m) releaseMat(m);
    return grown;
}

Matrix *rmGetNewRow(Matrix *m, uint32_t rows) { return grownTemporary<Reals>(m, rows, m->ncols); }
Matrix *rmGetNewCol(Matrix *m, uint32_t cols) { return grownTemporary<Reals>(m, m->nrows, cols); }
Matrix *imGetNewRow(Matrix *m, uint32_t rows) { return grownTemporary<Ints>(m, rows, m->ncols); }

// ---- Strings

static void setTextLength(Matrix *m, uint32_t n) {
    m->text()[n] = 0;
    m->length = n;
    m->ncols = n + 1;
}

Matrix *txmAddLen(Matrix *&slot, uint32_t n) {
    const uint32_t old = slot->length;
    if (n <= old) return slot;
    Matrix *m = storeRoom(slot, roomFor<Text>(slot, checkedLength(uint64_t{n} + 1, 1), old + 1));
    std::memset(m->text() + old, ' ', n - old);
    setTextLength(m, n);
    return m;
}

Matrix *strmat_extend_cap(Matrix *m, size_t size_with_nul) {
    Matrix *room = roomFor<Text>(m, checkedLength(size_with_nul, 1), m->length + 1);
    if (room != m) releaseMat(m);
    return room;
}

// ---- Lists

// Interrupts wait: the entries move with their links, and must not be counted twice.
Matrix *vlGetNewLen(Matrix *&slot, uint32_t n) {
    Matrix *m = slot;
    assert(m->l2type == L2::VL && m->nlinks() < 2);
    if (n <= m->length) return m;
    holdInterrupt();
    Matrix *room = m;
    if (Entries::capacity(m) < n) {
        room = roomFor<Entries>(m, m->libidx == big_class ? n : checkedLength(n, 2), m->length);
        if (room != m) m->length = 0;
        room->ncols = static_cast<uint32_t>(Entries::capacity(room));
    }
    for (uint32_t k = room->length; k < n; k++) {
        room->entries()[k] = theEmptyMat();
        linkMat(theEmptyMat());
    }
    room->length = n;
    storeRoom(slot, room);
    freeInterrupt();
    return room;
}

}  // namespace vesko
