// The stored value as elements of the target's type.
#pragma once

#include "operators/families.h"
#include "values/elements.h"

namespace vesko {

// Elements in a row, or a single one for all places.
template <class T>
struct Source {
    const T *at;
    uint32_t stride;  // 0: one element for all
    T one;
    Matrix *scratch;  // holds converted elements, or null

    T operator()(uint32_t k) const { return at[size_t{k} * stride]; }
};

namespace detail {

inline Matrix *newElements(uint32_t n, double *) { return allocRealMat(n, 1, n); }
inline Matrix *newElements(uint32_t n, int32_t *) { return newIntMat(1, n); }
inline Matrix *newElements(uint32_t n, uint8_t *) { return newByteMat(1, n); }

inline bool holds(const Matrix *m, const double *) {
    const L2 t = m->l2type;
    return t == L2::RM || t == L2::RMDM || t == L2::UPPER || t == L2::LOWER || t == L2::SYMM || t == L2::PM;
}
inline bool holds(const Matrix *m, const int32_t *) { return m->l2type == L2::IM; }
inline bool holds(const Matrix *m, const uint8_t *) { return isByteKind(m->l2type) || m->l2type == L2::TX; }

template <class T>
void readElements(T *to, const Matrix *value) {
    if (value->l2type == L2::TX)
        convertRun(to, value->bytes(), value->length);
    else
        copyElements(to, value, 0, value->length);
}

}  // namespace detail

// The value is of a plain kind or a string; a multidimensional one serves as reals. The source refers to
// itself when it is a single element, so it is made where it stays.
template <class T>
void openSource(Source<T> &source, const Matrix *value) {
    T *const type = nullptr;
    source = {nullptr, value->length == 1 ? 0u : 1u, T{}, nullptr};
    if (detail::holds(value, type)) {
        source.at = elementsOf<T>(value);
    } else if (value->length == 1) {
        detail::readElements(&source.one, value);
        source.at = &source.one;
    } else {
        source.scratch = detail::newElements(value->length, type);
        detail::readElements(elementsOf<T>(source.scratch), value);
        source.at = elementsOf<T>(source.scratch);
    }
}

template <class T>
void closeSource(const Source<T> &source) {
    if (source.scratch) releaseMat(source.scratch);
}

}  // namespace vesko
