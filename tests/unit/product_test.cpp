// Matrix products: the fast kernels give the bits of the plain triple loop, at every shape.
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "house.h"
#include "numerics/kernels.h"

namespace vesko {
namespace {

class Products : public House {
protected:
    const unsigned seed = std::random_device{}();
    std::mt19937 random{seed};

    uint32_t size(uint32_t most) { return std::uniform_int_distribution<uint32_t>(1, most)(random); }

    template <class T>
    std::vector<T> elements(size_t n) {
        std::vector<T> v(n);
        for (T &x : v) {
            const double u = std::uniform_real_distribution<double>(-1, 1)(random);
            x = static_cast<T>(std::is_floating_point_v<T> ? std::ldexp(u, static_cast<int>(random() % 40))
                                                           : u * 2e9);
        }
        return v;
    }
};

template <class C, class Wide, class A, class B>
std::vector<C> tripleLoop(const std::vector<A> &a, const std::vector<B> &b, uint32_t m, uint32_t k,
                          uint32_t n) {
    std::vector<C> c(size_t{m} * n);
    for (uint32_t i = 0; i < m; i++)
        for (uint32_t j = 0; j < n; j++) {
            Wide sum = 0;
            for (uint32_t p = 0; p < k; p++)
                sum = sum + static_cast<Wide>(a[size_t{i} * k + p]) * static_cast<Wide>(b[size_t{p} * n + j]);
            c[size_t{i} * n + j] = static_cast<C>(sum);
        }
    return c;
}

template <class T>
bool sameBits(const std::vector<T> &x, const std::vector<T> &y) {
    return std::memcmp(x.data(), y.data(), x.size() * sizeof(T)) == 0;
}

template <auto kernel, class C, class Wide, class A, class B>
void expectTripleLoop(const std::vector<A> &a, const std::vector<B> &b, uint32_t m, uint32_t k, uint32_t n) {
    std::vector<C> c(size_t{m} * n);
    kernel(a.data(), b.data(), c.data(), m, k, n);
    EXPECT_TRUE(sameBits(c, tripleLoop<C, Wide>(a, b, m, k, n))) << m << " by " << k << " by " << n;
}

TEST_F(Products, RealProductsHaveTheBitsOfTheTripleLoop) {
    SCOPED_TRACE(seed);
    for (int round = 0; round < 60; round++) {
        const uint32_t m = size(round % 3 ? 30 : 120), k = size(round % 4 ? 40 : 600),
                       n = size(round % 5 ? 30 : 130);
        expectTripleLoop<matmul_dd, double, double>(elements<double>(m * k), elements<double>(k * n), m, k,
                                                    n);
    }
}

TEST_F(Products, ColumnsAndRowsHaveTheBitsOfTheTripleLoop) {
    SCOPED_TRACE(seed);
    for (int round = 0; round < 20; round++) {
        const uint32_t m = size(100), k = size(300);
        const auto a = elements<double>(m * k);
        expectTripleLoop<matmul_dd, double, double>(a, elements<double>(k), m, k, 1);
        expectTripleLoop<matmul_dd, double, double>(elements<double>(m), a, 1, m, k);
        expectTripleLoop<matmul_dd, double, double>(elements<double>(m), elements<double>(k), m, 1, k);
    }
}

TEST_F(Products, InfinitiesAndNansStayInTheirPlaces) {
    const uint32_t n = 21;
    std::vector<double> a(n * n, 1.0), b(n * n, 2.0), c(n * n);
    a[3 * n + 4] = std::numeric_limits<double>::infinity();
    b[20 * n + 20] = std::numeric_limits<double>::quiet_NaN();
    matmul_dd(a.data(), b.data(), c.data(), n, n, n);
    for (uint32_t i = 0; i < n; i++)
        for (uint32_t j = 0; j < n; j++) {
            EXPECT_EQ(std::isnan(c[i * n + j]), j == 20) << i << ", " << j;
            EXPECT_EQ(std::isinf(c[i * n + j]), i == 3 && j != 20) << i << ", " << j;
        }
}

TEST_F(Products, IntegerAndMixedProducts) {
    SCOPED_TRACE(seed);
    for (int round = 0; round < 20; round++) {
        const uint32_t m = size(20), k = size(20), n = size(20);
        const auto ia = elements<int32_t>(m * k), ib = elements<int32_t>(k * n);
        const auto da = elements<double>(m * k), db = elements<double>(k * n);
        expectTripleLoop<matmul_ii, int32_t, uint32_t>(ia, ib, m, k, n);
        expectTripleLoop<matmul_id, double, double>(ia, db, m, k, n);
        expectTripleLoop<matmul_di, double, double>(da, ib, m, k, n);
    }
}

TEST_F(Products, BytesWrapAndBitsCountModuloTwo) {
    SCOPED_TRACE(seed);
    const uint32_t m = size(20), k = size(300), n = size(20);
    std::vector<uint8_t> a(m * k), b(k * n), c(m * n);
    for (uint8_t &x : a) x = static_cast<uint8_t>(random());
    for (uint8_t &x : b) x = static_cast<uint8_t>(random());
    matmul_bb(a.data(), b.data(), c.data(), m, k, n);
    EXPECT_TRUE(sameBits(c, tripleLoop<uint8_t, uint32_t>(a, b, m, k, n)));
    for (uint8_t &x : a) x &= 1;
    for (uint8_t &x : b) x &= 1;
    matmul_nn(a.data(), b.data(), c.data(), m, k, n);
    auto expected = tripleLoop<uint8_t, uint32_t>(a, b, m, k, n);
    for (uint8_t &x : expected) x &= 1;
    EXPECT_TRUE(sameBits(c, expected));
}

TEST_F(Products, InPlaceProductsAgreeWithFreshOnes) {
    SCOPED_TRACE(seed);
    for (int round = 0; round < 20; round++) {
        const uint32_t m = size(40), k = size(40);
        auto a = elements<double>(m * k), b = elements<double>(k * k), c = elements<double>(k * m);
        std::vector<double> ab(m * k), bc(k * m), scratch(k);
        matmul_dd(a.data(), b.data(), ab.data(), m, k, k);
        matmul_dd(b.data(), c.data(), bc.data(), k, k, m);
        matmul_AEAB(a.data(), b.data(), m, k, scratch.data());
        matmul_BEAB(b.data(), c.data(), k, m, scratch.data());
        EXPECT_TRUE(sameBits(a, ab));
        EXPECT_TRUE(sameBits(c, bc));
    }
}

}  // namespace
}  // namespace vesko
