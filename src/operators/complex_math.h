// Arithmetic and powers of complex numbers, given and answered as raw parts.
#pragma once

namespace vesko {

struct Complex {
    double re, im;
};

inline Complex operator*(Complex a, Complex b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
inline Complex operator*(Complex a, double s) { return {a.re * s, a.im * s}; }
Complex operator/(Complex a, Complex b);  // without needless overflow
Complex cmplIntPow(Complex x, int n);     // by squaring: exact where the products are

// Powers of a real or complex base; a negative real base has a complex power unless the exponent is whole.
void real_real_pow(double a, double b, double *re, double *im);
void real_cmpl_pow(double a, double bre, double bim, double *re, double *im);
void cmpl_real_pow(double are, double aim, double b, double *re, double *im);
void cmpl_cmpl_pow(double are, double aim, double bre, double bim, double *re, double *im);

}  // namespace vesko
