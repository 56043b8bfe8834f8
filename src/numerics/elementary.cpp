// Elementary functions on the raw parts of numbers: the C library's complex functions under our names.
#include "numerics/elementary.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace vesko {

using Z = std::complex<double>;

// ---- Complex numbers

static Z reciprocal(Z z) { return 1.0 / z; }

// Far from the real axis the tangent is a constant and its reciprocal exact.
static Z cubeRoot(Z z) {
    if (z.imag() == 0 && z.real() >= 0) return {std::cbrt(z.real()), z.imag()};
    return std::polar(std::cbrt(std::abs(z)), std::arg(z) / 3);
}

static Z direction(Z z) { return z == 0.0 ? z : z / std::abs(z); }

static Z scaled(Z z, double factor) { return {z.real() * factor, z.imag() * factor}; }

#define DEFINE(name, value)                                            \
    void cmpl_##name(double are, double aim, double &re, double &im) { \
        const Z z(are, aim), w = value;                                \
        re = w.real();                                                 \
        im = w.imag();                                                 \
    }
DEFINE(log, std::log(z))
DEFINE(log10, scaled(std::log(z), std::numbers::log10e))
DEFINE(log2, scaled(std::log(z), std::numbers::log2e))
DEFINE(exp, std::exp(z))
DEFINE(sin, std::sin(z))
DEFINE(cos, std::cos(z))
DEFINE(tan, std::tan(z))
DEFINE(cot, reciprocal(std::tan(z)))
DEFINE(sec, reciprocal(std::cos(z)))
DEFINE(csc, reciprocal(std::sin(z)))
DEFINE(asin, std::asin(z))
DEFINE(acos, std::acos(z))
DEFINE(atan, std::atan(z))
DEFINE(sinh, std::sinh(z))
DEFINE(cosh, std::cosh(z))
DEFINE(tanh, std::tanh(z))
DEFINE(asinh, std::asinh(z))
DEFINE(acosh, std::acosh(z))
DEFINE(atanh, std::atanh(z))
DEFINE(cbrt, cubeRoot(z))
DEFINE(sign, direction(z))
#undef DEFINE

double cmpl_arg(double re, double im) { return std::atan2(im, re); }

// ---- Reals

// A logarithm of any real: the magnitude's, and on the negative side a turn.
static void logOf(double log_of_magnitude, bool positive, double turn, double &re, double &im) {
    re = log_of_magnitude;
    im = positive ? 0.0 : turn;
}
void real_log(double x, double &re, double &im) {
    logOf(std::log(std::fabs(x)), x >= 0, quarter_turn, re, im);
}
void real_log10(double x, double &re, double &im) {
    logOf(std::log10(std::fabs(x)), x >= 0, quarter_turn * std::numbers::log10e, re, im);
}
void real_log2(double x, double &re, double &im) {
    logOf(std::log2(std::fabs(x)), x >= 0, quarter_turn * std::numbers::log2e, re, im);
}

void real_sqrt(double x, double &re, double &im) {
    re = x < 0 ? 0.0 : std::sqrt(x);
    im = x < 0 ? std::sqrt(-x) : 0.0;
}

#define DEFINE(name, stays_real)                               \
    void real_##name(double x, double &re, double &im) {       \
        if (!(stays_real)) return cmpl_##name(x, 0.0, re, im); \
        re = std::name(x);                                     \
        im = 0.0;                                              \
    }
DEFINE(asin, !(std::fabs(x) > 1))
DEFINE(acos, !(std::fabs(x) > 1))
DEFINE(acosh, !(x < 1))
DEFINE(atanh, !(std::fabs(x) > 1))
#undef DEFINE

double real_arg(double x) { return std::atan2(0.0, x); }

}  // namespace vesko
