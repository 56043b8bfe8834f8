// Reductions of lines of elements: sums, moments and extremes. A line is read element by element, so one
// kernel serves dense rows and columns of every element type, complex parts, and evenly spaced values that
// lie nowhere.
//
// NaN makes the result NaN, unless it is skipped; what a line has left then is all that counts.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace vesko {

// ---- Where elements come from

template <class T>
struct Dense {
    using Element = T;
    const T *x;
    T operator()(size_t i) const { return x[i]; }
    bool isNan(size_t i) const { return x[i] != x[i]; }
};
struct Spaced {
    using Element = double;
    double first, step;
    double operator()(size_t i) const { return first + static_cast<double>(i) * step; }
    bool isNan(size_t i) const { return std::isnan((*this)(i)); }
};
// One part of complex elements, which are NaN when either part is.
struct ComplexPart {
    using Element = double;
    const double *x, *other;
    double operator()(size_t i) const { return x[i]; }
    bool isNan(size_t i) const { return std::isnan(x[i]) || std::isnan(other[i]); }
};

template <class Source>
struct Line {
    using Element = typename Source::Element;
    static constexpr bool may_be_nan = std::numeric_limits<Element>::has_quiet_NaN;
    Source source;
    size_t start, stride;
    uint32_t n;

    Element operator()(uint32_t k) const { return source(start + k * stride); }
    bool skips(uint32_t k) const { return may_be_nan && source.isNan(start + k * stride); }
};

// f(x) for each element, or for each that is no NaN; answers their number.
template <class L, class F>
uint32_t eachElement(const L &line, bool skipnan, F f) {
    if (!skipnan || !L::may_be_nan) {
        for (uint32_t k = 0; k < line.n; k++) f(line(k));
        return line.n;
    }
    uint32_t n = 0;
    for (uint32_t k = 0; k < line.n; k++) {
        if (line.skips(k)) continue;
        f(line(k));
        n++;
    }
    return n;
}

// ---- Sums

// In halves down to short runs of eight sums side by side: fast, and nearly free of rounding errors. Runs
// below eight are summed in order.
inline double dasum(const double *x, size_t n) {
    constexpr size_t lanes = 8, short_run = 128;
    if (n > short_run) {
        const size_t half = n / 2 / lanes * lanes;
        return dasum(x, half) + dasum(x + half, n - half);
    }
    double lane[lanes] = {}, rest = 0;
    size_t i = 0;
    for (; i + lanes <= n; i += lanes)
        for (size_t k = 0; k < lanes; k++) lane[k] += x[i + k];
    for (; i < n; i++) rest += x[i];
    for (size_t step = lanes / 2; step > 0; step /= 2)
        for (size_t k = 0; k < step; k++) lane[k] += lane[k + step];
    return lane[0] + rest;
}

// The sum of a line as a double, and the number of elements in it.
template <class L>
double sumOf(const L &line, bool skipnan, uint32_t &n) {
    if constexpr (std::is_same_v<decltype(line.source), Dense<double>>) {
        n = line.n;
        if (!skipnan && line.stride == 1) return dasum(line.source.x + line.start, n);
    }
    double s = 0;
    n = eachElement(line, skipnan, [&s](auto x) { s += x; });
    return s;
}

// ---- The reductions. Each writes `width` results of type Result<T> for a line of elements T.

// Integers wrap, bytes add up as integers.
struct Sum {
    template <class T>
    struct Of {
        using Result = int32_t;
    };
    static constexpr unsigned width = 1;
    template <class T>
    using Result = typename Of<T>::Result;

    template <class L>
    static void apply(const L &line, bool skipnan, double *sum) {
        uint32_t n;
        *sum = sumOf(line, skipnan, n);
    }
    template <class L>
    static void apply(const L &line, bool, int32_t *sum) {
        uint32_t s = 0;
        for (uint32_t k = 0; k < line.n; k++) s += static_cast<uint32_t>(line(k));
        *sum = static_cast<int32_t>(s);
    }
};
template <>
struct Sum::Of<double> {
    using Result = double;
};

template <class L>
double meanOf(const L &line, bool skipnan, uint32_t &n) {
    const double s = sumOf(line, skipnan, n);
    return s / n;
}

struct Mean {
    static constexpr unsigned width = 1;
    template <class T>
    using Result = double;

    template <class L>
    static void apply(const L &line, bool skipnan, double *mean) {
        uint32_t n;
        *mean = meanOf(line, skipnan, n);
    }
};

// By n - 1, in two passes; 0 for one element.
struct Var {
    static constexpr unsigned width = 1;
    template <class T>
    using Result = double;

    template <class L>
    static void apply(const L &line, bool skipnan, double *var) {
        uint32_t n;
        const double mean = meanOf(line, skipnan, n);
        double s = 0;
        eachElement(line, skipnan, [&s, mean](auto x) { s += (x - mean) * (x - mean); });
        *var = n == 0 ? mean : s / (n == 1 ? 1.0 : n - 1.0);
    }
};

struct Stddev {
    static constexpr unsigned width = 1;
    template <class T>
    using Result = double;

    template <class L>
    static void apply(const L &line, bool skipnan, double *stddev) {
        Var::apply(line, skipnan, stddev);
        *stddev = std::sqrt(*stddev);
    }
};

// The extremes of a line: least, greatest, or both in that order.
template <bool least, bool greatest>
struct Extremes {
    static constexpr unsigned width = least + greatest;
    template <class T>
    using Result = T;

    template <class L, class T>
    static void apply(const L &line, bool skipnan, T *result) {
        T min{}, max{};
        bool any = false, nan = false;
        eachElement(line, skipnan, [&](T x) {
            nan |= x != x;
            if (!any || x < min) min = x;
            if (!any || x > max) max = x;
            any = true;
        });
        if (L::may_be_nan && (nan || !any)) min = max = std::numeric_limits<T>::quiet_NaN();
        if (least) result[0] = min;
        if (greatest) result[width - 1] = max;
    }
};
using Min = Extremes<true, false>;
using Max = Extremes<false, true>;
using Range = Extremes<true, true>;

}  // namespace vesko
