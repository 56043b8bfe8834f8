// Element rules of the operators, and the shape rule that applies them to a pair of operands. The templates
// serve every kind whose elements lie dense in one buffer.
#pragma once

#include <cmath>

#include "engine/errors.h"
#include "numerics/fill.h"
#include "operators/families.h"

namespace vesko {

// ---- Element rules. Reals follow IEEE; 32-bit integers wrap; integer quotients truncate toward zero and
// integer remainders take the sign of the dividend. Integer divisors have been tested for 0 before.
struct Sum {
    static double apply(double a, double b) { return a + b; }
    static int32_t apply(int32_t a, int32_t b) {
        return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
    }
};
struct Sub {
    static double apply(double a, double b) { return a - b; }
    static int32_t apply(int32_t a, int32_t b) {
        return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
    }
};
struct Mpy {
    static double apply(double a, double b) { return a * b; }
    static int32_t apply(int32_t a, int32_t b) {
        return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
    }
};
// The smallest integer divided by -1 wraps to itself, with remainder 0: the processor would fault on it.
struct Dvd {
    static double apply(double a, double b) { return a / b; }
    static int32_t apply(int32_t a, int32_t b) { return b == -1 ? Sub::apply(0, a) : a / b; }
};
struct Mod {
    // Whole operands of 32 bits, the ones that programs count with, divide as integers: the same result,
    // sooner.
    static double apply(double a, double b) {
        constexpr double limit = 4294967296.0;
        if (a >= 0 && a < limit && b >= 1 && b < limit) {
            const uint32_t m = static_cast<uint32_t>(a), n = static_cast<uint32_t>(b);
            if (m == a && n == b) return std::signbit(a) ? a : m % n;
        }
        return std::fmod(a, b);
    }
    static int32_t apply(int32_t a, int32_t b) { return b == -1 ? 0 : a % b; }
};

template <class Op>
constexpr bool divides = std::is_same_v<Op, Dvd> || std::is_same_v<Op, Mod>;

template <class T>
inline void refuseZeroDivisor(const T *divisors, uint32_t n, PcNode *node) {
    for (uint32_t i = 0; i < n; i++)
        if (divisors[i] == 0) error_divide_by_zero(node);
}

// ---- Loops. The result may lie exactly on an operand.
template <class Op, class C, class A, class B>
inline void loopVV(const A *x, const B *y, C *z, uint32_t n) {
    const bool fresh = static_cast<const void *>(x) != z && static_cast<const void *>(y) != z;
    fillElements(z, n, fresh,
                 [x, y](uint32_t i) { return Op::apply(static_cast<C>(x[i]), static_cast<C>(y[i])); });
}
template <class Op, class C, class A, class B>
inline void loopSV(A x, const B *y, C *z, uint32_t n) {
    const C s = static_cast<C>(x);
    const bool fresh = static_cast<const void *>(y) != z;
    fillElements(z, n, fresh, [s, y](uint32_t i) { return Op::apply(s, static_cast<C>(y[i])); });
}
template <class Op, class C, class A, class B>
inline void loopVS(const A *x, B y, C *z, uint32_t n) {
    const C s = static_cast<C>(y);
    const bool fresh = static_cast<const void *>(x) != z;
    fillElements(z, n, fresh, [x, s](uint32_t i) { return Op::apply(static_cast<C>(x[i]), s); });
}

// ---- The shape rule: equal shapes; a column applied to each column of a wider operand, a row to each row of
// a higher one; a column and a row of one length as flat lists in the shape of the left one (no outer
// product).
enum class Fit : uint8_t { Flat, LeftColumn, RightColumn, LeftRow, RightRow, None };

inline Fit fitOf(const Matrix *a, const Matrix *b) {
    if (a->nrows == b->nrows) {
        if (a->ncols == b->ncols) return Fit::Flat;
        if (a->ncols == 1) return Fit::LeftColumn;
        if (b->ncols == 1) return Fit::RightColumn;
    } else if (a->ncols == b->ncols) {
        if (a->nrows == 1) return Fit::LeftRow;
        if (b->nrows == 1) return Fit::RightRow;
    } else if (a->length == b->length &&
               ((a->ncols == 1 && b->nrows == 1) || (a->nrows == 1 && b->ncols == 1))) {
        return Fit::Flat;
    }
    return Fit::None;
}

// The operand that has the shape of the result.
inline Matrix *shapeGiver(Fit fit, Matrix *a, Matrix *b) {
    return fit == Fit::LeftColumn || fit == Fit::LeftRow ? b : a;
}

// z has the shape of the shape giver, `rows` by `cols`.
template <class Op, class C, class A, class B>
void applyFit(Fit fit, const A *x, const B *y, C *z, uint32_t rows, uint32_t cols) {
    if (fit == Fit::Flat) return loopVV<Op>(x, y, z, rows * cols);
    for (uint32_t i = 0; i < rows; i++, z += cols) {
        const size_t at = size_t{i} * cols;
        if (fit == Fit::LeftColumn)
            loopSV<Op>(x[i], y + at, z, cols);
        else if (fit == Fit::RightColumn)
            loopVS<Op>(x + at, y[i], z, cols);
        else if (fit == Fit::LeftRow)
            loopVV<Op>(x, y + at, z, cols);
        else
            loopVV<Op>(x + at, y, z, cols);
    }
}

template <class Op, L1 L, L1 R>
Matrix *elementwise(Matrix *a, Matrix *b, PcNode *node) {
    using C = Common<Element<L>, Element<R>>;
    const auto *x = elementsOf<Element<L>>(a);
    const auto *y = elementsOf<Element<R>>(b);
    if constexpr (divides<Op> && std::is_same_v<C, int32_t>) refuseZeroDivisor(y, b->length, node);
    if constexpr (is_scalar<L> && is_scalar<R>) {
        return newScalar<C>(Op::apply(static_cast<C>(*x), static_cast<C>(*y)));
    } else if constexpr (is_scalar<L>) {
        Matrix *r = newPlainMat<C>(b->nrows, b->ncols);
        loopSV<Op>(*x, y, elementsOf<C>(r), b->length);
        return r;
    } else if constexpr (is_scalar<R>) {
        Matrix *r = newPlainMat<C>(a->nrows, a->ncols);
        loopVS<Op>(x, *y, elementsOf<C>(r), a->length);
        return r;
    } else {
        const Fit fit = fitOf(a, b);
        if (fit == Fit::None) error_size_nomatch(node);
        const Matrix *shape = shapeGiver(fit, a, b);
        Matrix *r = newPlainMat<C>(shape->nrows, shape->ncols);
        applyFit<Op>(fit, x, y, elementsOf<C>(r), shape->nrows, shape->ncols);
        return r;
    }
}

}  // namespace vesko
