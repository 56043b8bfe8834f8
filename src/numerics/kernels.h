// Short routines on raw arrays: products, dot products, scaled sums. Letters tell element types: d double, i
// 32-bit integer, b byte, n binary (bytes of 0 or 1), z complex in two arrays. Integers and bytes wrap.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vesko {

// ---- Scaled sums and dot products, in order of the elements.
inline void daxpy(size_t n, double factor, const double *x, double *y) {
#pragma GCC ivdep
    for (size_t i = 0; i < n; i++) y[i] += factor * x[i];
}
inline double ddot(size_t n, const double *x, const double *y) {
    double s = 0.0;
    for (size_t i = 0; i < n; i++) s += x[i] * y[i];
    return s;
}

// ---- Matrix products, c (m by n) = a (m by k) * b (k by n), all row-major. Every element of c is summed
// from 0 in order of the inner index, products rounded before they are added: on every machine the same bits.
// c lies on neither operand.
void matmul_dd(const double *a, const double *b, double *c, uint32_t m, uint32_t k, uint32_t n);
void matmul_di(const double *a, const int32_t *b, double *c, uint32_t m, uint32_t k, uint32_t n);
void matmul_id(const int32_t *a, const double *b, double *c, uint32_t m, uint32_t k, uint32_t n);
void matmul_ii(const int32_t *a, const int32_t *b, int32_t *c, uint32_t m, uint32_t k, uint32_t n);
void gemm(const double *a, const double *b, double *c, uint32_t m, uint32_t k, uint32_t n);  // for large ones
void matmul_bb(const uint8_t *a, const uint8_t *b, uint8_t *c, uint32_t m, uint32_t k, uint32_t n);
void matmul_nn(const uint8_t *a, const uint8_t *b, uint8_t *c, uint32_t m, uint32_t k,
               uint32_t n);  // modulo 2

// ---- Products in the buffer of one factor; the other one is square. The scratch holds as many doubles as
// that one has rows.
void matmul_AEAB(double *a, const double *b, uint32_t m, uint32_t k, double *scratch);  // a (m by k) = a * b
void matmul_BEAB(const double *a, double *b, uint32_t k, uint32_t n, double *scratch);  // b (k by n) = a * b

}  // namespace vesko
