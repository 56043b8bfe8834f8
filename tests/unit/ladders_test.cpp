// Operator ladders for the kinds that no program can make yet: structured storage, multidimensional values.
#include <vector>

#include "engine/frame.h"
#include "house.h"
#include "operators/dispatch.h"
#include "operators/ladders.h"
#include "values/containers.h"

namespace vesko {
namespace {

class Ladders : public House {
protected:
    static Matrix *real(uint32_t rows, uint32_t cols, const std::vector<double> &x) {
        Matrix *m = allocRealMat(rows * cols, rows, cols);
        std::copy(x.begin(), x.end(), m->rdata);
        return m;
    }
    // The elements 1, 2, 0 (or 2), 3 in the storage of the kind.
    static Matrix *structured(L2 kind) {
        const double corner = kind == L2::SYMM ? 2 : 0;
        Matrix *m = kind == L2::LOWER ? real(2, 2, {1, 0, 2, 3}) : real(2, 2, {1, 2, corner, 3});
        m->l1type = L1::PF;
        m->l2type = kind;
        return m;
    }
    static Vector *extents(std::initializer_list<uint32_t> list) {
        Vector *v = newVector(static_cast<uint32_t>(list.size()));
        for (uint32_t n : list) addElement(v, asEntry(n));
        return v;
    }
    static Matrix *rmdm(std::initializer_list<uint32_t> dims, const std::vector<double> &x) {
        Matrix *m = newRMDM_Mat(static_cast<uint32_t>(x.size()), extents(dims));
        std::copy(x.begin(), x.end(), m->rdata);
        return m;
    }
    static Matrix *cmdm(std::initializer_list<uint32_t> dims, const std::vector<double> &x) {
        Matrix *m = newCMDM_Mat(static_cast<uint32_t>(x.size() / 2), extents(dims));
        std::copy(x.begin(), x.end(), m->rdata);
        return m;
    }
    static std::vector<double> elements(const Matrix *m) {
        return {m->rdata, m->rdata + m->length * (m->l2type == L2::CMDM ? 2 : 1)};
    }
    static uint8_t codeOf(L2 left, L2 right) {
        return num_type_match_code[index(left) * n_match_kinds + index(right)];
    }
};

using Values = std::vector<double>;
constexpr L2 structured_kinds[] = {L2::UPPER, L2::LOWER, L2::SYMM, L2::PM};

TEST_F(Ladders, CodesOfPairs) {
    EXPECT_EQ(codeOf(L2::RNG, L2::RNG), 0);
    EXPECT_EQ(codeOf(L2::BI, L2::BI), 14);
    EXPECT_EQ(codeOf(L2::PM, L2::PM), 38);
    EXPECT_EQ(codeOf(L2::TX, L2::TX), 79);
    EXPECT_EQ(codeOf(L2::ITV, L2::ITV), 82);
    EXPECT_EQ(codeOf(L2::OBJ, L2::TX), 69);
    EXPECT_EQ(codeOf(L2::TX, L2::OBJ), no_match);
    EXPECT_EQ(codeOf(L2::RS, L2::RNG), no_match);
    EXPECT_EQ(matchCode(theEmptyMat(), structured(L2::PM)), no_match);
}

TEST_F(Ladders, SumOfOneStructureKeepsIt) {
    for (L2 kind : {L2::UPPER, L2::LOWER, L2::SYMM}) {
        Matrix *sum = getMatSum(structured(kind), structured(kind), nullptr);
        EXPECT_EQ(sum->l2type, kind);
        EXPECT_EQ(sum->rdata[3], 6.0);
        EXPECT_EQ(getMatSub(structured(kind), structured(kind), nullptr)->l2type, kind);
        EXPECT_EQ(getMatDmu(structured(kind), structured(kind), nullptr)->l2type, kind);
        EXPECT_EQ(getMatProduct(structured(kind), structured(kind), nullptr)->l2type, kind);
    }
}

TEST_F(Ladders, StructureIsLostBetweenKinds) {
    for (L2 a : structured_kinds)
        for (L2 b : structured_kinds) {
            if (a == b && a != L2::PM) continue;
            EXPECT_EQ(getMatSum(structured(a), structured(b), nullptr)->l2type, L2::RM);
            EXPECT_EQ(getMatProduct(structured(a), structured(b), nullptr)->l2type, L2::RM);
        }
}

TEST_F(Ladders, ScalarFillsATriangleButNotASymmetricMatrix) {
    Matrix *one = newRealScalarMat(1);
    EXPECT_EQ(getMatSum(structured(L2::UPPER), one, nullptr)->l2type, L2::RM);
    EXPECT_EQ(getMatSub(one, structured(L2::LOWER), nullptr)->l2type, L2::RM);
    EXPECT_EQ(getMatSum(structured(L2::SYMM), one, nullptr)->l2type, L2::SYMM);
    Matrix *difference = getMatSub(one, structured(L2::SYMM), nullptr);
    EXPECT_EQ(difference->l2type, L2::SYMM);
    EXPECT_EQ(elements(difference), (Values{0, -1, -1, -2}));
}

TEST_F(Ladders, ScalarFactorKeepsTheStructure) {
    for (L2 kind : {L2::UPPER, L2::LOWER, L2::SYMM}) {
        EXPECT_EQ(getMatProduct(structured(kind), newRealScalarMat(2), nullptr)->l2type, kind);
        EXPECT_EQ(getMatProduct(newIntScalarMat(2), structured(kind), nullptr)->l2type, kind);
        EXPECT_EQ(getMatSlash(structured(kind), newRealScalarMat(2), nullptr)->l2type, L2::RM);
    }
}

TEST_F(Ladders, StructuredOperandsCountLikeDenseOnes) {
    for (L2 kind : structured_kinds) {
        Matrix *tagged = structured(kind);
        Matrix *dense = real(2, 2, elements(tagged));
        Matrix *others[] = {real(2, 2, {5, 6, 7, 8}), newRealScalarMat(3), newIntScalarMat(2),
                            newRngMat(2, 2, 1, 1),    newByteMat(2, 2),    newCompScalarMat(1, 2)};
        for (unsigned k = 0; k < 4; k++) others[4]->bytes()[k] = static_cast<uint8_t>(k);
        for (Matrix *other : others)
            for (auto op : {getMatSum, getMatSub, getMatProduct, getMatDmu}) {
                EXPECT_TRUE(are_equal(op(tagged, other, nullptr), op(dense, other, nullptr)));
                EXPECT_TRUE(are_equal(op(other, tagged, nullptr), op(other, dense, nullptr)));
            }
        EXPECT_TRUE(are_equal(tagged, dense));
        EXPECT_TRUE(are_equal(getMatNeg(tagged, nullptr), getMatNeg(dense, nullptr)));
        EXPECT_TRUE(are_equal(getMatTrs(tagged, nullptr), getMatTrs(dense, nullptr)));
    }
}

TEST_F(Ladders, TransposeTurnsTriangles) {
    EXPECT_EQ(getMatTrs(structured(L2::UPPER), nullptr)->l2type, L2::LOWER);
    EXPECT_EQ(getMatTrs(structured(L2::LOWER), nullptr)->l2type, L2::UPPER);
    EXPECT_EQ(getMatTrs(structured(L2::SYMM), nullptr)->l2type, L2::SYMM);
    EXPECT_EQ(getMatTrs(structured(L2::PM), nullptr)->l2type, L2::RM);
}

TEST_F(Ladders, MultidimWithScalars) {
    Matrix *m = rmdm({2, 1, 2}, {1, 2, 3, 4});
    EXPECT_EQ(elements(getMatSum(m, newRealScalarMat(1), nullptr)), (Values{2, 3, 4, 5}));
    EXPECT_EQ(elements(getMatSub(newIntScalarMat(1), m, nullptr)), (Values{0, -1, -2, -3}));
    EXPECT_EQ(elements(getMatProduct(m, newByteScalarMat(2), nullptr)), (Values{2, 4, 6, 8}));
    EXPECT_EQ(elements(getMatSlash(m, newRealScalarMat(2), nullptr)), (Values{0.5, 1, 1.5, 2}));
    EXPECT_EQ(elements(getMatNeg(m, nullptr)), (Values{-1, -2, -3, -4}));
    Matrix *complex = getMatSum(m, newCompScalarMat(1, 2), nullptr);
    EXPECT_EQ(complex->l2type, L2::CMDM);
    EXPECT_EQ(elements(complex), (Values{2, 3, 4, 5, 2, 2, 2, 2}));
    EXPECT_EQ(complex->nrows, 3u);
}

TEST_F(Ladders, MultidimOfOneElementKeepsItsKind) {
    Matrix *sum = getMatSum(rmdm({1, 1, 1}, {5}), newRealScalarMat(1), nullptr);
    EXPECT_EQ(sum->l2type, L2::RMDM);
    EXPECT_EQ(elements(sum), (Values{6}));
}

TEST_F(Ladders, MultidimPairs) {
    Matrix *m = rmdm({2, 1, 2}, {1, 2, 3, 4});
    Matrix *c = cmdm({2, 1, 2}, {1, 1, 1, 1, 2, 2, 2, 2});
    EXPECT_EQ(elements(getMatSum(m, m, nullptr)), (Values{2, 4, 6, 8}));
    EXPECT_EQ(elements(getMatSub(m, c, nullptr)), (Values{0, 1, 2, 3, -2, -2, -2, -2}));
    EXPECT_EQ(elements(getMatDmu(m, m, nullptr)), (Values{1, 4, 9, 16}));
    EXPECT_EQ(getMatSum(c, c, nullptr)->l2type, L2::CMDM);
}

TEST_F(Ladders, MultidimRefusals) {
    Matrix *m = rmdm({2, 1, 2}, {1, 2, 3, 4});
    EXPECT_ABORT(getMatSum(m, rmdm({1, 2, 2}, {1, 2, 3, 4}), nullptr));
    EXPECT_ABORT(getMatSum(m, real(1, 2, {1, 2}), nullptr));
    EXPECT_ABORT(getMatProduct(m, m, nullptr));
}

TEST_F(Ladders, MultidimInPlace) {
    Variable *var = newVar(0, rmdm({2, 2, 1}, {1, 2, 3, 4}));
    Matrix *m = var->value;
    EXPECT_EQ(addPF_RS(m, newRealScalarMat(1), var, nullptr), m);
    EXPECT_EQ(addPF_PF(m, rmdm({2, 2, 1}, {1, 1, 1, 1}), var, nullptr), m);
    EXPECT_EQ(elements(m), (Values{3, 4, 5, 6}));
    EXPECT_EQ(divPF_IS(m, newIntScalarMat(2), var, nullptr), m);
    EXPECT_EQ(elements(m), (Values{1.5, 2, 2.5, 3}));
    Matrix *complex = addPF_PF(m, newCompScalarMat(0, 1), var, nullptr);
    EXPECT_EQ(var->value, complex);
    EXPECT_EQ(complex->l2type, L2::CMDM);
    freeVar(var);
}

TEST_F(Ladders, BitsCountModuloTwo) {
    Matrix *bits = newBinaryMat(1, 2);
    bits->bytes()[0] = 0;
    bits->bytes()[1] = 1;
    Matrix *one = newBinaryScalarMat(1);
    Matrix *sum = getMatSum(bits, one, nullptr);
    EXPECT_EQ(sum->l2type, L2::BI);
    EXPECT_EQ(sum->bytes()[0], 1);
    EXPECT_EQ(sum->bytes()[1], 0);
    EXPECT_TRUE(are_equal(getMatSub(bits, one, nullptr), sum));
    EXPECT_EQ(getMatSum(bits, newByteScalarMat(255), nullptr)->l2type, L2::BY);
    Matrix *column = newBinaryMat(2, 1);
    column->bytes()[0] = column->bytes()[1] = 1;
    EXPECT_EQ(getMatProduct(bits, column, nullptr)->bytes()[0], 1);
    EXPECT_EQ(getMatSum(bits, column, nullptr)->l2type, L2::RM);
}

TEST_F(Ladders, BinaryOneLeavesAHeldFactor) {
    Matrix *bits = newBinaryMat(1, 3);
    linkMat(bits);
    EXPECT_EQ(getMatProduct(newBinaryScalarMat(1), bits, nullptr), bits);
    EXPECT_EQ(getMatProduct(bits, newBinaryScalarMat(1), nullptr), bits);
    ucReleaseMat(bits);
}

}  // namespace
}  // namespace vesko
