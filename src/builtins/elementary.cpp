// The elementary functions: one family, applied element by element to every numeric kind. Whether a real
// value has a complex answer is decided once, for the whole matrix.
#include <cmath>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "numerics/complex_scalar.h"
#include "numerics/elementary.h"
#include "numerics/fill.h"
#include "operators/ladder.h"
#include "values/convert.h"

namespace vesko {

// ---- Application. A function tells:
//   name
//   real(x)            the answer for a real
//   beyond(x)          only if there are such: the answer for x is not real
//   wide(x, re, im)    goes with it: the answer for any real
//   lone(x, re, im)    the same for a scalar, where that differs
//   complex(...)       the answer for a complex number: a number, or stored to re and im

template <class Fn>
constexpr bool leaves_reals = requires(const Fn f) {
    f.beyond(0.0);
};

template <class Fn>
static bool anyBeyond(const Fn &f, const double *x, uint32_t n) {
    for (uint32_t i = 0; i < n; i++)
        if (f.beyond(x[i]) || std::isnan(x[i])) return true;
    return false;
}

template <class Fn>
static Matrix *ofReal(const Fn &f, double x) {
    if constexpr (leaves_reals<Fn>) {
        if (f.beyond(x)) {
            double re, im;
            if constexpr (requires { f.lone(x, re, im); })
                f.lone(x, re, im);
            else
                f.wide(x, re, im);
            return newCompScalarMat(re, im);
        }
    }
    return newRealScalarMat(f.real(x));
}

template <class Fn>
static Matrix *wideAnswers(const Fn &f, const Matrix *x) {
    Matrix *y = allocCompMat(x->length, x->nrows, x->ncols);
    double *re = y->re()->rdata, *im = y->im()->rdata;
    for (uint32_t i = 0; i < x->length; i++) f.wide(x->rdata[i], re[i], im[i]);
    return y;
}

template <class Fn>
static Matrix *ofReals(const Fn &f, const Matrix *x) {
    if (x->length == 1) return ofReal(f, *x->rdata);
    if constexpr (leaves_reals<Fn>)
        if (anyBeyond(f, x->rdata, x->length)) return wideAnswers(f, x);
    Matrix *y = allocRealMat(x->length, x->nrows, x->ncols);
    fillElements(y->rdata, x->length, true, [&f, from = x->rdata](uint32_t i) { return f.real(from[i]); });
    return y;
}

template <class Fn>
static Matrix *ofComplex(const Fn &f, const Matrix *z) {
    const double *a = z->re()->rdata, *b = z->im()->rdata;
    if constexpr (requires { double{f.complex(0.0, 0.0)}; }) {
        Matrix *y = allocRealMat(z->length, z->nrows, z->ncols);
        for (uint32_t i = 0; i < z->length; i++) y->rdata[i] = f.complex(a[i], b[i]);
        return y;
    } else {
        Matrix *y = allocCompMat(z->length, z->nrows, z->ncols);
        double *re = y->re()->rdata, *im = y->im()->rdata;
        for (uint32_t i = 0; i < z->length; i++) f.complex(a[i], b[i], re[i], im[i]);
        return y;
    }
}

template <class Fn>
static Matrix *apply(const Fn &f, Matrix *x, PcNode *node) {
    if (isDenseReal(x->l2type)) return ofReals(f, x);
    if (isComplex(x->l2type)) return ofComplex(f, x);
    if (!isRealLike(x->l2type)) refuseArgument(node, f.name);
    if (x->l2type == L2::BIGINT || x->l2type == L2::MPF) error_kind_not_built(node, x->l2type);
    Matrix *real = convToDb(x);
    Matrix *y = ofReals(f, real);
    releaseMat(real);
    return y;
}

// ---- The functions. The value for a real is told of x, that for a complex number of its parts a and b.

#define FUNCTION(text, value, ...)                                      \
    namespace {                                                         \
    struct text##_fn {                                                  \
        static constexpr const char *name = #text;                      \
        static double real([[maybe_unused]] double x) { return value; } \
        __VA_ARGS__                                                     \
    };                                                                  \
    }                                                                   \
    Matrix *text##_bf(Matrix *x, Matrix **, PcNode *node) { return apply(text##_fn{}, x, node); }

#define COMPLEX(re_value, im_value)                                   \
    static void complex(double a, double b, double &re, double &im) { \
        re = re_value;                                                \
        im = im_value;                                                \
    }
#define ANALYTIC(text) \
    static void complex(double a, double b, double &re, double &im) { cmpl_##text(a, b, re, im); }
#define WIDE(text, is_beyond)                          \
    static bool beyond(double x) { return is_beyond; } \
    static void wide(double x, double &re, double &im) { real_##text(x, re, im); }

#define EVERYWHERE(text, value) FUNCTION(text, value, ANALYTIC(text))
#define WITHIN(text, is_beyond, value) FUNCTION(text, value, ANALYTIC(text) WIDE(text, is_beyond))
#define BY_PARTS(text, value) FUNCTION(text, value, COMPLEX(real(a), real(b)))
#define REAL_OF(text, value, of_parts) \
    FUNCTION(                          \
        text, value, static double complex(double a, double b) { return of_parts; })

WITHIN(sqrt, x < 0, std::sqrt(x))
WITHIN(log10, x < 0, std::log10(x))
WITHIN(log2, x < 0, std::log2(x))
WITHIN(asin, std::fabs(x) > 1, std::asin(x))
WITHIN(acos, std::fabs(x) > 1, std::acos(x))
WITHIN(acosh, x < 1, std::acosh(x))
WITHIN(atanh, std::fabs(x) > 1, std::atanh(x))

EVERYWHERE(exp, std::exp(x))
EVERYWHERE(sin, std::sin(x))
EVERYWHERE(cos, std::cos(x))
EVERYWHERE(tan, std::tan(x))
EVERYWHERE(cot, 1 / std::tan(x))
EVERYWHERE(sec, 1 / std::cos(x))
EVERYWHERE(csc, 1 / std::sin(x))
EVERYWHERE(atan, std::atan(x))
EVERYWHERE(sinh, std::sinh(x))
EVERYWHERE(cosh, std::cosh(x))
EVERYWHERE(tanh, std::tanh(x))
EVERYWHERE(asinh, std::asinh(x))
EVERYWHERE(cbrt, std::cbrt(x))
EVERYWHERE(sign, x > 0 ? 1.0 : x < 0 ? -1.0 : x + 0.0)

// Halves go away from zero: adding the number below a half carries exactly those that are not below.
constexpr double below_half = 0x1.fffffffffffffp-2;

BY_PARTS(ceil, std::ceil(x))
BY_PARTS(fix, std::trunc(x))
BY_PARTS(floor, std::floor(x))
BY_PARTS(round, std::trunc(x + std::copysign(below_half, x)))

REAL_OF(abs, std::fabs(x), std::hypot(a, b))
REAL_OF(arg, real_arg(x), cmpl_arg(a, b))
REAL_OF(real, x, (void(b), a))
REAL_OF(imag, 0.0, (void(a), b))

FUNCTION(conj, x, COMPLEX(a, -b))

// ---- Logarithms to any base

namespace {
struct log_fn {
    const char *name;
    double divisor;  // logarithm of the base

    double real(double x) const { return std::log(x) / divisor; }
    static bool beyond(double x) { return x < 0; }
    void wide(double x, double &re, double &im) const {
        real_log(x, re, im);
        re /= divisor;
        im /= divisor;
    }
    // A negative scalar keeps the quarter turn, whatever the base.
    void lone(double x, double &re, double &im) const {
        wide(x, re, im);
        im = quarter_turn;
    }
    void complex(double a, double b, double &re, double &im) const {
        cmpl_log(a, b, re, im);
        re /= divisor;
        im /= divisor;
    }
};
}  // namespace

Matrix *ln_bf(Matrix *x, Matrix **, PcNode *node) { return apply(log_fn{"ln", 1.0}, x, node); }

Matrix *log_bf(Matrix *x, Matrix **parms, PcNode *node) {
    double base;
    extract_RS(parms[0], base);
    return apply(log_fn{"log", std::log(base)}, x, node);
}

static bool isPositive(const Matrix *m) {
    double x;
    return extract_RS(m, x) && x > 0;
}
static bool isPositiveButOne(const Matrix *m) {
    double x;
    return extract_RS(m, x) && x > 0 && x != 1;
}

// A base of 1 is refused when the parameter is set, not when the function is spawned.
const BfParm log_parms[1] = {{"base", theNlogBaseMat, isPositive, isPositiveButOne}};

// ---- The angle of a point: two real scalars, or two real matrices of one length

Matrix *atan2_bf(Matrix *args, Matrix **, PcNode *node) {
    demandCount(args, 2, node, "atan2");
    const Matrix *y = args->entries()[0], *x = args->entries()[1];
    if (y->l2type != x->l2type || (y->l2type != L2::RS && y->l2type != L2::RM)) refuseArgument(node, "atan2");
    demandEqualLengths(y, x, node, "atan2");
    Matrix *angles = allocRealMat(y->length, y->nrows, y->ncols);
    for (uint32_t i = 0; i < y->length; i++) angles->rdata[i] = std::atan2(y->rdata[i], x->rdata[i]);
    return angles;
}

}  // namespace vesko
