// Search in values: one walk over the elements of each kind, one test for each kind of what is sought.
//
// What is sought is a value (an element must be equal to it), an interval, a set, or any other domain. The
// tests that ask a domain may run user code: the caller pins both values.
#pragma once

#include <cmath>

#include "engine/interrupt.h"
#include "operators/dispatch.h"
#include "operators/families.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

// A copy of x in which the elements that are sought have a new value; errors are those of `substitute`.
Matrix *substituteElements(Matrix *x, Matrix *old, Matrix *value, PcNode *node);

struct Number {
    double re, im;
};

// ---- Elements, from 0. value(k) is a temporary, or an entry of a list; number(k) serves comparison.

template <class T>
struct ArrayElements {
    using Stored = T;
    static constexpr bool numeric = true;
    const Matrix *m;
    const T *data;
    Number number(uint32_t k) const { return {static_cast<double>(data[k]), 0}; }
    Matrix *value(uint32_t k) const {
        if constexpr (std::is_same_v<T, uint8_t>)
            return m->l2type == L2::BI ? newBinaryScalarMat(data[k]) : newByteScalarMat(data[k]);
        else
            return newScalar(data[k]);
    }
};
struct RangeElements {
    static constexpr bool numeric = true;
    const Matrix *m;
    Number number(uint32_t k) const { return {m->first() + k * m->step(), 0}; }
    Matrix *value(uint32_t k) const { return newRealScalarMat(number(k).re); }
};
struct ComplexElements {
    static constexpr bool numeric = true;
    const Matrix *m;
    Number number(uint32_t k) const { return {m->re()->rdata[k], m->im()->rdata[k]}; }
    Matrix *value(uint32_t k) const { return newCompScalarMat(number(k).re, number(k).im); }
};
struct ListElements {
    static constexpr bool numeric = false;
    const Matrix *m;
    Matrix *value(uint32_t k) const { return m->entries()[k]; }
};

inline bool hasElements(const Matrix *m) {
    return hasPlainElements(m->l2type) || isComplex(m->l2type) || isList(m->l2type);
}

// f(elements) for the kind of m, which has elements.
template <class F>
void withElements(const Matrix *m, F f) {
    switch (m->l2type) {
        case L2::IS:
        case L2::IM: return f(ArrayElements<int32_t>{m, m->ints()});
        case L2::BY:
        case L2::BI: return f(ArrayElements<uint8_t>{m, m->bytes()});
        case L2::RNG: return f(RangeElements{m});
        case L2::CS:
        case L2::CM: return f(ComplexElements{m});
        case L2::LS:
        case L2::VL: return f(ListElements{m});
        default: return f(ArrayElements<double>{m, m->rdata});
    }
}

// ---- What is sought

// NaN is found, too.
inline bool isNumber(Number a, Number b) {
    const auto same = [](double x, double y) { return x == y || (std::isnan(x) && std::isnan(y)); };
    return same(a.re, b.re) && same(a.im, b.im);
}

// In one of the intervals of a union.
inline bool isInside(Number a, const Matrix *itv) {
    if (a.im != 0) return false;
    for (uint32_t i = 0; i < itv->nrows; i++) {
        const double *ends = itv->rdata + size_t{i} * itv->ncols;
        if ((ends[0] < a.re && a.re < ends[1]) || (a.re == ends[0] && ends[2] == 1.0) ||
            (a.re == ends[1] && ends[3] == 1.0))
            return true;
    }
    return false;
}

// Values with members of their own; everything else is sought as it is.
inline bool isDomain(const Matrix *m) {
    switch (m->l2type) {
        case L2::BY:
        case L2::BI: return m->length != 1;
        case L2::IM:
        case L2::RM:
        case L2::RNG:
        case L2::CM:
        case L2::LS:
        case L2::VL:
        case L2::UF:
        case L2::BF:
        case L2::ITV:
        case L2::FSET:
        case L2::COMPLETE:
        case L2::CLASS:
        case L2::COND:
        case L2::PTRSET:
        case L2::GV: return true;
        default: return false;
    }
}

// Calls found(k) for each of the n elements that matches(k) holds for, until it answers false.
template <class Matches, class Found>
void scanElements(uint32_t n, Matches matches, Found found) {
    for (uint32_t k = 0; k < n; k++)
        if (matches(k) && !found(k)) return;
}

// Calls found(k) for each element that is sought, in order, until it answers false.
template <class Elements, class Found>
void search(const Elements &x, Matrix *sought, PcNode *node, Found found) {
    const uint32_t n = x.m->length;
    Number number;
    if constexpr (x.numeric) {
        if (extract_CS(sought, number.re, number.im))
            return scanElements(
                n, [&](uint32_t k) { return isNumber(x.number(k), number); }, found);
        if (sought->l2type == L2::ITV && sought->nrows)
            return scanElements(
                n, [&](uint32_t k) { return isInside(x.number(k), sought); }, found);
    }
    const bool domain = isDomain(sought);
    const auto matches = [&](uint32_t k) {
        Matrix *value = x.value(k);
        const bool match = domain ? memberOfSet(value, sought, node) != 0 : are_equal(value, sought);
        releaseMat(value);
        return match;
    };
    scanElements(n, matches, found);
}

// The same for the elements that are true.
template <class Elements, class Found>
void searchTrue(const Elements &x, Found found) {
    const auto matches = [&](uint32_t k) {
        if constexpr (!x.numeric)
            return getMatLogVal(x.value(k));
        else
            return x.number(k).re != 0 || x.number(k).im != 0;
    };
    scanElements(x.m->length, matches, found);
}

}  // namespace vesko
