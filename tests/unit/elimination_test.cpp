// Elimination and kept factors: solutions are judged by their residuals, over random shapes.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "house.h"
#include "numerics/dense.h"
#include "operators/dispatch.h"
#include "values/convert.h"
#include "values/matrix.h"

namespace vesko {
namespace {

class Elimination : public House {
protected:
    const unsigned seed = std::random_device{}();
    std::mt19937 random{seed};

    uint32_t size(uint32_t most) { return std::uniform_int_distribution<uint32_t>(1, most)(random); }

    // Entries of mixed magnitude in rows of mixed scale.
    Matrix *matrix(uint32_t rows, uint32_t cols) {
        Matrix *m = allocRealMat(rows * cols, rows, cols);
        for (uint32_t i = 0; i < rows; i++) {
            const int scale = static_cast<int>(random() % 20) - 10;
            for (uint32_t j = 0; j < cols; j++)
                m->rdata[i * cols + j] =
                    std::ldexp(std::uniform_real_distribution<double>(-1, 1)(random), scale);
        }
        return m;
    }
};

double norm(const Matrix *m) {
    double s = 0;
    for (uint32_t i = 0; i < m->length; i++) s = std::max(s, std::fabs(m->rdata[i]));
    return s;
}

// The largest error of a x = b, measured row by row against what the row sums from.
void expectSolves(const Matrix *a, const Matrix *x, const Matrix *b) {
    const uint32_t n = a->nrows, nrhs = b->ncols;
    ASSERT_EQ(x->nrows, a->ncols);
    ASSERT_EQ(x->ncols, nrhs);
    for (uint32_t i = 0; i < n; i++)
        for (uint32_t j = 0; j < nrhs; j++) {
            double sum = -b->rdata[i * nrhs + j], size = std::fabs(sum);
            for (uint32_t k = 0; k < n; k++) {
                const double term = a->rdata[i * n + k] * x->rdata[k * nrhs + j];
                sum += term;
                size += std::fabs(term);
            }
            const double row =
                *std::max_element(a->rdata + i * n, a->rdata + i * n + n,
                                  [](double p, double q) { return std::fabs(p) < std::fabs(q); });
            size += std::fabs(row) * norm(x);
            EXPECT_LE(std::fabs(sum), 64.0 * n * std::numeric_limits<double>::epsilon() * size)
                << n << " row " << i;
        }
}

TEST_F(Elimination, SolutionsHaveSmallResiduals) {
    SCOPED_TRACE(seed);
    for (int round = 0; round < 60; round++) {
        const uint32_t n = size(30), nrhs = round % 2 ? 1 : size(5);
        Matrix *a = matrix(n, n), *b = matrix(n, nrhs);
        Matrix *factors = cloneRM(a), *x = cloneRM(b);
        eliminate(factors, x);
        expectSolves(a, x, b);
    }
}

TEST_F(Elimination, KeptFactorsSolveFromBothSides) {
    SCOPED_TRACE(seed);
    for (int round = 0; round < 40; round++) {
        const uint32_t n = 1 + size(40), nrhs = size(5);
        // entries of one scale: partial pivoting does not scale the rows
        Matrix *a = newZerosMat(n, n);
        for (uint32_t i = 0; i < n * n; i++)
            a->rdata[i] = std::uniform_real_distribution<double>(-1, 1)(random);
        Matrix *b = matrix(n, nrhs), *c = matrix(nrhs, n);
        Matrix *plain = cloneRM(a);
        linkMat(a);
        lu_rm(a);
        EXPECT_EQ(a->l2type, L2::PM);
        expectSolves(plain, alusolve(a, b), b);
        expectSolves(getMatTrs(plain, nullptr), getMatTrs(plusolve_xAEb(a, c), nullptr),
                     getMatTrs(c, nullptr));
        strip_pm(a);
        EXPECT_EQ(a->l1type, L1::RM);
        EXPECT_EQ(a->l2type, L2::RM);
        EXPECT_EQ(a->vdata, nullptr);
        ucReleaseMat(a);
    }
}

TEST_F(Elimination, FactorsMultiplyToThePermutedMatrix) {
    SCOPED_TRACE(seed);
    for (int round = 0; round < 30; round++) {
        const uint32_t n = 1 + size(25);
        Matrix *a = matrix(n, n), *lu = cloneRM(a), *rows = newIntMat(n, 1);
        EXPECT_EQ(ludcmp(n, lu->rdata, rows->ints()), n);
        for (uint32_t i = 0; i < n; i++)
            for (uint32_t j = 0; j < n; j++) {
                double sum = 0;
                for (uint32_t k = 0; k <= std::min(i, j); k++)
                    sum += lu->rdata[i * n + k] * (k == j ? 1.0 : lu->rdata[k * n + j]);
                const double given = a->rdata[static_cast<uint32_t>(rows->ints()[i]) * n + j];
                EXPECT_NEAR(sum, given, 1e-12 * norm(a) * n);
            }
    }
}

TEST_F(Elimination, TheFirstOfEquallyGoodRowsIsThePivot) {
    double a[] = {1, 1, 2, 1}, b[] = {2, 3};
    EXPECT_EQ(gaussElim(2, a, b),
              0u);  // 1 / 1 and 2 / 2: relative to the row's largest entry the rows are equal
    EXPECT_EQ(b[0], 1.0);
    EXPECT_EQ(b[1], 1.0);
    double c[] = {0, 1, 2, 1}, d[] = {1, 3};
    EXPECT_EQ(gaussElim(2, c, d), 1u);
    EXPECT_EQ(d[0], 1.0);
}

TEST_F(Elimination, SingularSystemsAnswerWithoutAnError) {
    double a[] = {1, 2, 2, 4}, b[] = {1, 1};
    gaussElim(2, a, b);
    EXPECT_FALSE(std::isfinite(b[0]) && std::isfinite(b[1]));
    double c[] = {1, 2, 2, 4};
    int32_t rows[2];
    EXPECT_EQ(ludcmp(2, c, rows), 1u);
    double zero[] = {0, 0, 0, 0};  // what is divided by the first pivot is NaN, not 0
    EXPECT_EQ(ludcmp(2, zero, rows), 0u);
}

TEST_F(Elimination, DeterminantAndInverse) {
    SCOPED_TRACE(seed);
    for (int round = 0; round < 20; round++) {
        const uint32_t n = 1 + size(8);
        Matrix *a = newZerosMat(n, n), *lu, *rows = newIntMat(n, 1);
        for (uint32_t i = 0; i < n * n; i++)
            a->rdata[i] = std::uniform_real_distribution<double>(-1, 1)(random);
        lu = cloneRM(a);
        ludcmp(n, lu->rdata, rows->ints());
        double det = get_permutation_sign(rows->ints(), n);
        for (uint32_t i = 0; i < n; i++) det *= lu->rdata[i * n + i];
        EXPECT_NEAR(findDet(a), det, 1e-12 * n);
        expectSolves(a, inverseRM(a), theEleMat(n));
    }
}

TEST_F(Elimination, DivisionKeepsFactorsByTheRules) {
    const auto divisorAfter = [](uint32_t n, bool held, bool left) {
        Matrix *a = theEleMat(n), *b = newZerosMat(left ? n : 2, left ? 2 : n);
        if (held) linkMat(a);
        left ? getMatBsl(a, b, nullptr) : getMatSlash(b, a, nullptr);
        const L2 kind = a->l2type;
        held ? ucReleaseMat(a) : releaseMat(a);
        return kind;
    };
    EXPECT_EQ(divisorAfter(16, true, false), L2::RM);
    EXPECT_EQ(divisorAfter(17, true, false), L2::PM);
    EXPECT_EQ(divisorAfter(17, false, false), L2::PM);
    EXPECT_EQ(divisorAfter(8, true, true), L2::RM);
    EXPECT_EQ(divisorAfter(9, true, true), L2::PM);
    EXPECT_EQ(divisorAfter(9, false, true), L2::RM);
}

}  // namespace
}  // namespace vesko
