// Matrix products.
#include <algorithm>

#include "numerics/kernels.h"

namespace vesko {

// Row of the result, inner index, column: the inner loop runs along a row of b and of c.
template <class C, class A, class B, class Wide>
static void rowwise(const A *a, const B *b, C *c, uint32_t m, uint32_t k, uint32_t n) {
    std::fill_n(c, size_t{m} * n, C{0});
    for (uint32_t i = 0; i < m; i++, c += n)
        for (uint32_t p = 0; p < k; p++) {
            const Wide x = static_cast<Wide>(*a++);
            const B *row = b + size_t{p} * n;
            for (uint32_t j = 0; j < n; j++)
                c[j] = static_cast<C>(static_cast<Wide>(c[j]) + x * static_cast<Wide>(row[j]));
        }
}

// A column on the right: dot products of several rows run side by side, to hide the latency of the sums.
static void rowDots(const double *a, const double *b, double *c, uint32_t m, uint32_t k) {
    constexpr uint32_t together = 8;
    for (; m >= together; m -= together, a += size_t{k} * together, c += together) {
        double sum[together] = {};
        for (uint32_t p = 0; p < k; p++)
            for (uint32_t i = 0; i < together; i++) sum[i] += a[size_t{i} * k + p] * b[p];
        std::copy_n(sum, together, c);
    }
    for (; m; m--, a += k) *c++ = ddot(k, a, b);
}

// Below this count of products packing does not pay; nor does it for a few rows, each of which reads b once
// anyway.
constexpr uint64_t smallest_packed = 4096;
constexpr uint32_t fewest_packed_rows = 4;

void matmul_dd(const double *a, const double *b, double *c, uint32_t m, uint32_t k, uint32_t n) {
    if (n == 1)
        rowDots(a, b, c, m, k);
    else if (m >= fewest_packed_rows && uint64_t{m} * k * n >= smallest_packed)
        gemm(a, b, c, m, k, n);
    else
        rowwise<double, double, double, double>(a, b, c, m, k, n);
}
void matmul_di(const double *a, const int32_t *b, double *c, uint32_t m, uint32_t k, uint32_t n) {
    rowwise<double, double, int32_t, double>(a, b, c, m, k, n);
}
void matmul_id(const int32_t *a, const double *b, double *c, uint32_t m, uint32_t k, uint32_t n) {
    rowwise<double, int32_t, double, double>(a, b, c, m, k, n);
}
void matmul_ii(const int32_t *a, const int32_t *b, int32_t *c, uint32_t m, uint32_t k, uint32_t n) {
    rowwise<int32_t, int32_t, int32_t, uint32_t>(a, b, c, m, k, n);
}
void matmul_bb(const uint8_t *a, const uint8_t *b, uint8_t *c, uint32_t m, uint32_t k, uint32_t n) {
    rowwise<uint8_t, uint8_t, uint8_t, uint32_t>(a, b, c, m, k, n);
}

void matmul_nn(const uint8_t *a, const uint8_t *b, uint8_t *c, uint32_t m, uint32_t k, uint32_t n) {
    matmul_bb(a, b, c, m, k, n);
    const size_t length = size_t{m} * n;
    for (size_t i = 0; i < length; i++) c[i] &= 1;
}

void matmul_AEAB(double *a, const double *b, uint32_t m, uint32_t k, double *scratch) {
    for (uint32_t i = 0; i < m; i++, a += k) {
        std::copy_n(a, k, scratch);
        std::fill_n(a, k, 0.0);
        for (uint32_t p = 0; p < k; p++) daxpy(k, scratch[p], b + size_t{p} * k, a);
    }
}

void matmul_BEAB(const double *a, double *b, uint32_t k, uint32_t n, double *scratch) {
    for (uint32_t j = 0; j < n; j++) {
        for (uint32_t p = 0; p < k; p++) scratch[p] = b[size_t{p} * n + j];
        for (uint32_t i = 0; i < k; i++) b[size_t{i} * n + j] = ddot(k, a + size_t{i} * k, scratch);
    }
}

}  // namespace vesko
