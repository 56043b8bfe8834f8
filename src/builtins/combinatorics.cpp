// Whole numbers: binomial coefficients, factorials, common divisors and multiples.
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

#include "builtins/arguments.h"
#include "builtins/workers.h"
#include "engine/errors.h"
#include "operators/ladder.h"
#include "values/convert.h"
#include "values/elements.h"

namespace vesko {

static bool isWhole(double x) { return std::isfinite(x) && x == std::floor(x); }

// ---- Choosing k out of n

// Products in extended precision: exact up to 2^64, and past about a thousand factors infinite.
static double binomial(double n, double k) {
    if (k > n) return 0;
    k = std::min(k, n - k);
    long double product = 1;
    for (double i = 1; i <= k && !std::isinf(static_cast<double>(product)); i++)
        product = product * (n - k + i) / i;
    return static_cast<double>(std::round(product));
}

Matrix *choose_bf(Matrix *args, Matrix **, PcNode *node) {
    const RealPair pair = pairOfReals(args, node, "choose");
    if (!isWhole(pair.first) || pair.first < 0) error_bf_argk_domain(node, "choose", 0);
    if (!isWhole(pair.second) || pair.second < 0) error_bf_argk_domain(node, "choose", 1);
    return newRealScalarMat(binomial(pair.first, pair.second));
}

// ---- Factorials

constexpr unsigned n_factorials = 171;  // those of a double
static constexpr std::array<double, n_factorials> factorials = [] {
    std::array<double, n_factorials> table{};
    long double product = 1;
    for (unsigned n = 0; n < n_factorials; n++) {
        if (n) product *= n;
        table[n] = static_cast<double>(product);
    }
    return table;
}();

static double factorialOf(double n) {
    return n < n_factorials ? factorials[static_cast<unsigned>(n)] : HUGE_VAL;
}

// Element by element.
Matrix *factorial_bf(Matrix *x, Matrix **, PcNode *node) {
    if (!isRealLike(x->l2type)) refuseArgument(node, "factorial");
    if (!hasPlainElements(x->l2type)) error_kind_not_built(node, x->l2type);
    Matrix *y = convToDb(x);
    for (uint32_t i = 0; i < y->length; i++) {
        const double n = y->rdata[i];
        if (n < 0 || n != std::floor(n)) refuseArgument(node, "factorial");
        y->rdata[i] = factorialOf(n);
    }
    return y;
}

// ---- Divisors and multiples: integers among themselves, wrapping as they do, else reals

constexpr double largest_exact = 9007199254740992.0;  // 2^53

static std::pair<uint64_t, uint64_t> magnitudes(const RealPair &pair, PcNode *node, const char *builtin) {
    const double given[] = {pair.first, pair.second};
    for (int k = 0; k < 2; k++)
        if (!isWhole(given[k]) || std::fabs(given[k]) > largest_exact) error_bf_argk_domain(node, builtin, k);
    return {static_cast<uint64_t>(std::fabs(pair.first)), static_cast<uint64_t>(std::fabs(pair.second))};
}

Matrix *gcd_bf(Matrix *args, Matrix **, PcNode *node) {
    const RealPair pair = pairOfReals(args, node, "gcd");
    const auto [a, b] = magnitudes(pair, node, "gcd");
    const uint64_t divisor = std::gcd(a, b);
    return pair.integers ? newIntScalarMat(static_cast<int32_t>(divisor))
                         : newRealScalarMat(static_cast<double>(divisor));
}

Matrix *lcm_bf(Matrix *args, Matrix **, PcNode *node) {
    const RealPair pair = pairOfReals(args, node, "lcm");
    const auto [a, b] = magnitudes(pair, node, "lcm");
    const uint64_t factor = a == 0 || b == 0 ? 0 : a / std::gcd(a, b);
    return pair.integers ? newIntScalarMat(static_cast<int32_t>(factor * b))
                         : newRealScalarMat(static_cast<double>(factor) * static_cast<double>(b));
}

}  // namespace vesko
