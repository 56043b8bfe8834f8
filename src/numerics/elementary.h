// Elementary functions on the raw parts of numbers. real_<name> takes any real, its answer is complex where
// that leaves the real line; cmpl_<name> takes a complex number and follows the C standard on branch cuts,
// signed zeros, infinities and NaN.
#pragma once

namespace vesko {

// Each is void cmpl_<name>(double are, double aim, double &re, double &im), the square root stands with the
// powers in complex_scalar.h.
#define VESKO_COMPLEX_FUNCTIONS(X) \
    X(log)                         \
    X(log10)                       \
    X(log2)                        \
    X(exp)                         \
    X(sin)                         \
    X(cos)                         \
    X(tan)                         \
    X(cot)                         \
    X(sec) X(csc) X(asin) X(acos) X(atan) X(sinh) X(cosh) X(tanh) X(asinh) X(acosh) X(atanh) X(cbrt) X(sign)

#define VESKO_DECLARE(name) void cmpl_##name(double are, double aim, double &re, double &im);
VESKO_COMPLEX_FUNCTIONS(VESKO_DECLARE)
#undef VESKO_DECLARE
double cmpl_arg(double re, double im);  // in [-pi, pi]

// A negative number has the logarithm of its magnitude with the imaginary part pi/2, a quarter turn: programs
// rely on it. To the bases 10 and 2 both parts are scaled.
constexpr double quarter_turn = 1.5707963267948966;
void real_log(double x, double &re, double &im);
void real_log10(double x, double &re, double &im);
void real_log2(double x, double &re, double &im);
void real_sqrt(double x, double &re, double &im);
// Beyond the real line's stretch these are the complex functions on the upper side of the cut.
void real_asin(double x, double &re, double &im);
void real_acos(double x, double &re, double &im);
void real_acosh(double x, double &re, double &im);
void real_atanh(double x, double &re, double &im);
double real_arg(double x);  // 0 or pi

}  // namespace vesko
