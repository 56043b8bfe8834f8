// Complex numbers as raw parts: arithmetic, and elementary functions whose result can be complex.
#include "numerics/complex_scalar.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace vesko {

// The larger part of the divisor is divided out first (Smith 1962).
Complex operator/(Complex a, Complex b) {
    if (b.im == 0) return {a.re / b.re, a.im / b.re};
    if (std::fabs(b.re) >= std::fabs(b.im)) {
        const double r = b.im / b.re, d = b.re + b.im * r;
        return {(a.re + a.im * r) / d, (a.im - a.re * r) / d};
    }
    const double r = b.re / b.im, d = b.re * r + b.im;
    return {(a.re * r + a.im) / d, (a.im * r - a.re) / d};
}

Complex cmplIntPow(Complex x, int n) {
    Complex power = {1, 0};
    for (unsigned left = n < 0 ? 0u - static_cast<unsigned>(n) : n; left; left >>= 1) {
        if (left & 1) power = power * x;
        if (left > 1) x = x * x;
    }
    return n < 0 ? Complex{1, 0} / power : power;
}

void real_real_pow(double a, double b, double &re, double &im) {
    if (!(a < 0.0) || b == std::floor(b)) {
        re = std::pow(a, b);
        im = 0.0;
        return;
    }
    const double r = std::exp(b * std::log(-a)), angle = std::numbers::pi * b;
    re = b == 0.5 ? 0.0 : r * std::cos(angle);
    im = b == 0.5 ? r : r * std::sin(angle);
}

static void fromPolar(double r, double angle, double &re, double &im) {
    re = r * std::cos(angle);
    im = r * std::sin(angle);
}

// A whole exponent of moderate size makes a chain of products, any other one goes by polar form.
void cmpl_real_pow(double are, double aim, double b, double &re, double &im) {
    constexpr double largest_chain = 1024;
    if (b == std::floor(b) && std::fabs(b) <= largest_chain) {
        const Complex power = cmplIntPow({are, aim}, static_cast<int>(b));
        re = power.re;
        im = power.im;
        return;
    }
    fromPolar(std::pow(std::hypot(are, aim), b), b * std::atan2(aim, are), re, im);
}

// Zero to a complex power is 0 if the real part of the exponent is positive, else undefined.
void cmpl_cmpl_pow(double are, double aim, double bre, double bim, double &re, double &im) {
    if (bim == 0) return cmpl_real_pow(are, aim, bre, re, im);
    if (are == 0 && aim == 0) {
        re = im = bre > 0 ? 0.0 : std::nan("");
        return;
    }
    const double log_r = std::log(std::hypot(are, aim)), angle = std::atan2(aim, are);
    fromPolar(std::exp(bre * log_r - bim * angle), bim * log_r + bre * angle, re, im);
}

void cmpl_sqrt(double are, double aim, double &re, double &im) {
    const std::complex<double> root = std::sqrt(std::complex<double>(are, aim));
    re = root.real();
    im = root.imag();
}

}  // namespace vesko
