// Powers of the plain families: scalars, square matrices to integer powers, and element by element.
#include <algorithm>
#include <cmath>

#include "numerics/complex_scalar.h"
#include "operators/elementwise.h"
#include "operators/plain.h"
#include "values/convert.h"

namespace vesko {

static bool isWhole(double x) { return x == std::floor(x); }

// Repeated wrapping product; squaring gives the same residue modulo 2^32 as one product a unit.
static int32_t integerPower(int32_t base, int32_t exponent) {
    uint32_t x = static_cast<uint32_t>(base), r = 1;
    for (auto n = static_cast<uint32_t>(exponent); n; n >>= 1, x *= x)
        if (n & 1) r *= x;
    return static_cast<int32_t>(r);
}

static Matrix *realPower(double a, double b) {
    if (!(a < 0.0) || isWhole(b)) return newRealScalarMat(std::pow(a, b));
    double re, im;
    real_real_pow(a, b, re, im);
    return newCompScalarMat(re, im);
}

Matrix *powRS_RS(Matrix *a, Matrix *b, PcNode *) { return realPower(*a->rdata, *b->rdata); }
Matrix *powRS_IS(Matrix *a, Matrix *b, PcNode *) { return newRealScalarMat(std::pow(*a->rdata, *b->ints())); }
Matrix *powIS_RS(Matrix *a, Matrix *b, PcNode *) { return realPower(*a->ints(), *b->rdata); }
Matrix *powIS_IS(Matrix *a, Matrix *b, PcNode *) {
    if (*b->ints() < 0) return realPower(*a->ints(), *b->ints());
    return newIntScalarMat(integerPower(*a->ints(), *b->ints()));
}

// ---- Square matrices to integer powers.
template <L1 L>
static Matrix *matrixPower(Matrix *m, int32_t n, PcNode *node) {
    if (!m->isSquare()) error_size_nomatch(node);
    return L == L1::RM ? matpow_d(m, n, node) : matpow_i(m, n, node);
}

template <L1 L, L1 R>
static Matrix *powerOfMatrix(Matrix *m, Matrix *exponent, PcNode *node) {
    if constexpr (R == L1::IS) return matrixPower<L>(m, *exponent->ints(), node);
    int32_t n;
    if (!extract_integer(exponent, n)) error_undef_opr2(node);
    return matrixPower<L>(m, n, node);
}

#define BIND(L, R)                                             \
    Matrix *pow##L##_##R(Matrix *a, Matrix *b, PcNode *node) { \
        return powerOfMatrix<L1::L, L1::R>(a, b, node);        \
    }
BIND(RM, RS)
BIND(RM, IS)
BIND(IM, RS)
BIND(IM, IS)
#undef BIND

// A matrix is no exponent.
#define BIND(L, R) \
    Matrix *pow##L##_##R(Matrix *, Matrix *, PcNode *node) { error_undef_opr2(node); }
BIND(RS, RM)
BIND(RS, IM)
BIND(RM, RM)
BIND(RM, IM)
BIND(IS, RM)
BIND(IS, IM)
BIND(IM, RM)
BIND(IM, IM)
#undef BIND

// ---- Element by element.
// What the least element tells: one NaN hides all the others.
struct Least {
    bool nan, negative;
};
static Least dMin(const Matrix *m) {
    const double *x = m->rdata;
    unsigned nan = 0, negative = 0;
    for (uint32_t i = 0; i < m->length; i++) {
        nan |= std::isnan(x[i]);
        negative |= x[i] < 0.0;
    }
    return {nan != 0, negative != 0};
}

struct Power {
    static double apply(double a, double b) { return std::pow(a, b); }
    static int32_t apply(int32_t a, int32_t b) { return integerPower(a, b); }
};

// Every element through the complex rule: parts of both operands are read with steps 0 or 1.
static Matrix *complexPowers(const Matrix *a, const Matrix *b) {
    const Matrix *shape = a->length == 1 ? b : a;
    const size_t a_step = a->length == 1 ? 0 : 1, b_step = b->length == 1 ? 0 : 1;
    Matrix *r = allocCompMat(shape->length, shape->nrows, shape->ncols);
    double *re = r->re()->rdata, *im = r->im()->rdata;
    for (size_t i = 0; i < shape->length; i++)
        real_real_pow(a->rdata[i * a_step], b->rdata[i * b_step], re[i], im[i]);
    return r;
}

// The kind of the whole result is decided once. For a scalar base the first exponent alone decides; programs
// rely on it.
template <L1 L, L1 R>
static bool needsComplex(const Matrix *b, Least least) {
    if (!least.negative) return false;
    return is_scalar<L> || is_scalar<R> ? !isWhole(*b->rdata) : !isIntMat(b);
}

// The commonest exponents without the general function: never less exact, and many times faster.
struct Square {
    static double apply(double x, double) { return x * x; }
};
struct Reciprocal {
    static double apply(double x, double) { return 1.0 / x; }
};
struct Root {
    static double apply(double x, double) { return std::sqrt(x) + 0.0; }  // the power of -0.0 is 0.0
};
static Matrix *powersOfMatrix(Matrix *a, Matrix *exponent, PcNode *node) {
    const double n = *exponent->rdata;
    if (n == 2.0) return elementwise<Square, L1::RM, L1::RS>(a, exponent, node);
    if (n == -1.0) return elementwise<Reciprocal, L1::RM, L1::RS>(a, exponent, node);
    if (n == 0.5) return elementwise<Root, L1::RM, L1::RS>(a, exponent, node);
    return elementwise<Power, L1::RM, L1::RS>(a, exponent, node);
}

template <L1 L, L1 R>
static Matrix *realPowers(Matrix *a, Matrix *b, PcNode *node) {
    const Least least = dMin(a);
    if (least.nan && !is_scalar<L>) return theNanMat();
    if (needsComplex<L, R>(b, least)) return complexPowers(a, b);
    if constexpr (L == L1::RM && R == L1::RS) return powersOfMatrix(a, b, node);
    return elementwise<Power, L, R>(a, b, node);
}

// Integers stay integers unless an exponent is negative.
template <L1 L, L1 R>
static Matrix *powers(Matrix *a, Matrix *b, PcNode *node) {
    if (!is_scalar<L> && !is_scalar<R> && !sameShape(a, b)) error_size_nomatch(node);
    constexpr bool left_int = std::is_same_v<Element<L>, int32_t>,
                   right_int = std::is_same_v<Element<R>, int32_t>;
    constexpr L1 left_real = is_scalar<L> ? L1::RS : L1::RM, right_real = is_scalar<R> ? L1::RS : L1::RM;
    if constexpr (left_int && right_int)
        if (std::all_of(b->ints(), b->ints() + b->length, [](int32_t n) { return n >= 0; }))
            return elementwise<Power, L, R>(a, b, node);
    Matrix *x = left_int ? convToDb(a) : a;
    Matrix *y = right_int ? convToDb(b) : b;
    Matrix *r = realPowers<left_real, right_real>(x, y, node);
    if (left_int) releaseMat(x);
    if (right_int) releaseMat(y);
    return r;
}

#define BIND(L, R) \
    Matrix *dpw##L##_##R(Matrix *a, Matrix *b, PcNode *node) { return powers<L1::L, L1::R>(a, b, node); }
BIND(RS, RM)
BIND(RS, IM)
BIND(RM, RS)
BIND(RM, RM)
BIND(RM, IS) BIND(RM, IM) BIND(IS, RM) BIND(IS, IM) BIND(IM, RS) BIND(IM, RM) BIND(IM, IS) BIND(IM, IM)
#undef BIND

}  // namespace vesko
