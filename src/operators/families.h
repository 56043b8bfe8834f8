// The four plain families of values: their element types, and how a result of a given shape is made.
#pragma once

#include <type_traits>

#include "values/matrix.h"

namespace vesko {

template <L1 F>
struct Family;
template <>
struct Family<L1::RS> {
    using Element = double;
    static constexpr bool scalar = true;
};
template <>
struct Family<L1::RM> {
    using Element = double;
    static constexpr bool scalar = false;
};
template <>
struct Family<L1::IS> {
    using Element = int32_t;
    static constexpr bool scalar = true;
};
template <>
struct Family<L1::IM> {
    using Element = int32_t;
    static constexpr bool scalar = false;
};
template <L1 F>
using Element = typename Family<F>::Element;
template <L1 F>
constexpr bool is_scalar = Family<F>::scalar;

// Integers stay integers among themselves; with a real they become real.
template <class A, class B>
using Common = std::conditional_t<std::is_same_v<A, double> || std::is_same_v<B, double>, double, int32_t>;

template <class T>
inline T *elementsOf(const Matrix *m) {
    if constexpr (std::is_same_v<T, double>)
        return m->rdata;
    else
        return static_cast<T *>(m->vdata);
}

template <class T>
inline Matrix *newScalar(T x) {
    if constexpr (std::is_same_v<T, double>)
        return newRealScalarMat(x);
    else
        return newIntScalarMat(x);
}

// Elements undefined. The sizes are not 0.
template <class T>
inline Matrix *newPlainMat(uint32_t rows, uint32_t cols) {
    if constexpr (std::is_same_v<T, double>)
        return allocRealMat(checkedLength(rows, cols), rows, cols);
    else
        return newIntMat(rows, cols);
}

inline bool sameShape(const Matrix *a, const Matrix *b) {
    return a->nrows == b->nrows && a->ncols == b->ncols;
}

// The four families, and the sixteen pairs of them, for binding a template's members to their names.
#define VESKO_PLAIN(X) X(RS) X(RM) X(IS) X(IM)
#define VESKO_PLAIN_PAIRS(X) \
    X(RS, RS)                \
    X(RS, RM)                \
    X(RS, IS)                \
    X(RS, IM)                \
    X(RM, RS)                \
    X(RM, RM)                \
    X(RM, IS) X(RM, IM) X(IS, RS) X(IS, RM) X(IS, IS) X(IS, IM) X(IM, RS) X(IM, RM) X(IM, IS) X(IM, IM)
#define VESKO_MATRIX_PAIRS(X) X(RM, RM) X(RM, IM) X(IM, RM) X(IM, IM)

}  // namespace vesko
