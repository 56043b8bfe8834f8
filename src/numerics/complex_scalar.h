// Complex numbers as raw parts: arithmetic, and elementary functions whose result can be complex.
#pragma once

namespace vesko {

struct Complex {
    double re, im;
};

inline Complex operator*(Complex a, Complex b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
Complex operator/(Complex a, Complex b);  // does not overflow needlessly; a real divisor divides the parts
Complex cmplIntPow(Complex x, int n);     // by squaring: exact where the products are

// a ^ b. A negative base with a fractional exponent takes the principal value; the real part of a square root
// is exactly 0.
void real_real_pow(double a, double b, double &re, double &im);
void cmpl_real_pow(double are, double aim, double b, double &re, double &im);
void cmpl_sqrt(double are, double aim, double &re, double &im);  // the root with real part 0 or above
void cmpl_cmpl_pow(double are, double aim, double bre, double bim, double &re, double &im);

}  // namespace vesko
