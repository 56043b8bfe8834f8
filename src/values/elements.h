// Elements of the dense kinds, read one by one or in runs as another element type. The converters, the block
// concatenators and the scalar readers are all made from copyElements.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <initializer_list>

#include "values/convert.h"
#include "values/matrix.h"

namespace vesko {

// Counts as values: an integer scalar, and a row of integers.
inline Matrix *newCount(uint32_t n) { return newIntScalarMat(static_cast<int32_t>(n)); }
inline Matrix *newCounts(std::initializer_list<uint32_t> counts) {
    Matrix *row = newIntMat(1, static_cast<uint32_t>(counts.size()));
    std::copy(counts.begin(), counts.end(), row->ints());
    return row;
}

// Element type of the binary kind, one byte of 0 or 1.
struct Bit {
    uint8_t value;
};

// Conversion of one element. Reals become integers by truncation; a byte keeps the low eight bits of what it
// is made of; a bit is 1 for everything but zero.
template <class To, class From>
To convertElement(From x);
template <>
inline double convertElement<double, double>(double x) {
    return x;
}
template <>
inline double convertElement<double, int32_t>(int32_t x) {
    return x;
}
template <>
inline double convertElement<double, uint8_t>(uint8_t x) {
    return x;
}
template <>
inline int32_t convertElement<int32_t, double>(double x) {
    return truncToInt(x);
}
template <>
inline int32_t convertElement<int32_t, int32_t>(int32_t x) {
    return x;
}
template <>
inline int32_t convertElement<int32_t, uint8_t>(uint8_t x) {
    return x;
}
template <>
inline uint8_t convertElement<uint8_t, double>(double x) {
    return static_cast<uint8_t>(truncToInt(x));
}
template <>
inline uint8_t convertElement<uint8_t, int32_t>(int32_t x) {
    return static_cast<uint8_t>(x);
}
template <>
inline uint8_t convertElement<uint8_t, uint8_t>(uint8_t x) {
    return x;
}
template <>
inline Bit convertElement<Bit, double>(double x) {
    return {x != 0};
}
template <>
inline Bit convertElement<Bit, int32_t>(int32_t x) {
    return {x != 0};
}
template <>
inline Bit convertElement<Bit, uint8_t>(uint8_t x) {
    return {x != 0};
}

template <class To, class From>
void convertRun(To *dst, const From *src, uint32_t n) {
    for (uint32_t i = 0; i < n; i++) dst[i] = convertElement<To>(src[i]);
}

// Kinds whose elements lie in a buffer, or follow from one, so that copyElements can read them.
constexpr bool isDenseReal(L2 t) {  // with or without structure
    return t == L2::RM || t == L2::RS || (t >= L2::UPPER && t <= L2::SYMM) || t == L2::PM;
}
constexpr bool isByteKind(L2 t) { return t == L2::BY || t == L2::BI; }
constexpr bool isComplex(L2 t) { return t == L2::CS || t == L2::CM; }
constexpr bool hasPlainElements(L2 t) { return isRealLike(t) && (t < L2::BAND || t == L2::PM); }

// Elements from .. from + n - 1 of a value of a plain kind, in row-major order.
template <class To>
void copyElements(To *dst, const Matrix *src, uint32_t from, uint32_t n) {
    assert(hasPlainElements(src->l2type) && from + n <= src->length);
    switch (src->l2type) {
        case L2::IM:
        case L2::IS: return convertRun(dst, src->ints() + from, n);
        case L2::BY:
        case L2::BI: return convertRun(dst, src->bytes() + from, n);
        case L2::RNG: {
            const double first = src->first(), step = src->step();
            for (uint32_t i = 0; i < n; i++) dst[i] = convertElement<To>(first + (from + i) * step);
            return;
        }
        default: return convertRun(dst, src->rdata + from, n);
    }
}

inline double elementOf(const Matrix *m, uint32_t i) {
    double x;
    copyElements(&x, m, i, 1);
    return x;
}

}  // namespace vesko
