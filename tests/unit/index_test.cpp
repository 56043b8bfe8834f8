// Indexed read and write of the kinds that a program cannot make yet: bits, triangular, symmetric and
// multidimensional matrices; and growth where records can be told apart.
#include "operators/index.h"

#include <numeric>

#include "engine/frame.h"
#include "engine/handlers.h"
#include "frontend/symbols.h"
#include "house.h"
#include "operators/growth.h"
#include "operators/index_store.h"
#include "values/containers.h"
#include "values/convert.h"

namespace vesko {
namespace {

class Indexing : public House {
protected:
    // A variable of the top level with a value of its own.
    uint32_t variable(Matrix *value) {
        const uint32_t k = cFindVarIndex(findSymbolIndex("indexed"));
        updVar(k, value);
        return k;
    }
};

PcNode *constant(Matrix *m) { return newMatPcNode(m, 1); }

PcNode *with(NodeKind kind, int32_t value, std::initializer_list<PcNode *> children) {
    PcNode *node = newPcNode(kind, value, static_cast<uint32_t>(children.size()), 1);
    uint32_t k = 0;
    for (PcNode *child : children) setPcCub(node, k++, child);
    return node;
}

PcNode *indices(std::initializer_list<Matrix *> values) {
    PcNode *node = newPcNode(NodeKind::Sequence, 3, static_cast<uint32_t>(values.size()), 1);
    uint32_t k = 0;
    for (Matrix *m : values) setPcCub(node, k++, constant(m));
    return node;
}

Matrix *run(PcNode *node) { return node->exec(node); }

// Reads, or stores into, an element of many indices.
PcNode *element(PcNode *of, std::initializer_list<Matrix *> at) {
    return with(at.size() > 3 ? NodeKind::RefMd : NodeKind::Ref3, 0, {of, indices(at)});
}
PcNode *named(uint32_t variable) { return with(NodeKind::Variable, int32_t(variable), {}); }
Matrix *store3(uint32_t variable, std::initializer_list<Matrix *> at, Matrix *value) {
    return run(with(NodeKind::Ref3Asgn, 0, {element(named(variable), at), constant(value)}));
}
Matrix *real(double x) { return newRealScalarMat(x); }
Matrix *range(uint32_t n) { return newRngMat(1, n, 1, 1); }

Matrix *bits(std::initializer_list<uint8_t> elements) {
    Matrix *m = newBinaryMat(1, elements.size());
    std::copy(elements.begin(), elements.end(), m->bytes());
    return m;
}

// 1, 2, 3, ... in the order of the elements.
Matrix *multidim(std::initializer_list<uint32_t> sizes) {
    Vector *extents = newVector(static_cast<uint32_t>(sizes.size()));
    uint32_t n = 1;
    for (uint32_t size : sizes) {
        addElement(extents, asEntry(size));
        n *= size;
    }
    Matrix *m = newRMDM_Mat(n, extents);
    std::iota(m->rdata, m->rdata + n, 1.0);
    return m;
}

Matrix *countingMatrix(uint32_t rows, uint32_t cols) {
    Matrix *m = allocRealMat(rows * cols, rows, cols);
    std::iota(m->rdata, m->rdata + m->length, 1.0);
    return m;
}

// ---- Bits

TEST_F(Indexing, OneBitStaysABitAndSeveralComeAsBytes) {
    Matrix *m = bits({1, 0, 1});
    EXPECT_EQ(matRef(m, real(1), nullptr)->l2type, L2::BI);
    Matrix *several = matRef(m, range(2), nullptr);
    EXPECT_EQ(several->l2type, L2::BY);
    EXPECT_EQ(several->bytes()[0], 1);
    EXPECT_EQ(several->bytes()[1], 0);
    EXPECT_EQ(matRef2(m, real(1), range(2), nullptr)->l2type, L2::BI);
}

TEST_F(Indexing, ABitKeepsTheLowBitOfWhatIsStored) {
    const uint32_t k = variable(bits({0, 0}));
    PcNode *place = with(NodeKind::Ref, 0, {named(k), constant(real(4))});
    Matrix *m = run(with(NodeKind::RefAsgn, 0, {place, constant(real(7.9))}));
    ASSERT_EQ(m->l2type, L2::BI);
    ASSERT_EQ(m->length, 4u);
    EXPECT_EQ(m->bytes()[3], 1);
    EXPECT_EQ(m->bytes()[2], 0);
    run(with(NodeKind::RefAsgn, 0, {place, constant(newIntScalarMat(6))}));
    EXPECT_EQ(getVarMat(k)->bytes()[3], 0);
}

// ---- Structure

struct StructuredStore {
    Matrix *(*make)(uint32_t n);
    L2 kind;
    uint32_t row, col;  // from 1
    bool keeps;
};

class Structured : public Indexing, public testing::WithParamInterface<StructuredStore> {};

TEST_P(Structured, AStoreKeepsTheStructureWhereItCan) {
    const StructuredStore &s = GetParam();
    const uint32_t k = variable(s.make(3));
    PcNode *place = with(NodeKind::Ref2, 0, {named(k), indices({real(s.row), real(s.col)})});
    Matrix *m = run(with(NodeKind::Ref2Asgn, 0, {place, constant(real(5))}));
    EXPECT_EQ(m->l2type, s.keeps ? s.kind : L2::RM);
    EXPECT_EQ(m->rdata[(s.row - 1) * m->ncols + s.col - 1], 5);
    if (s.keeps && s.kind == L2::SYMM) {
        EXPECT_EQ(m->rdata[(s.col - 1) * m->ncols + s.row - 1], 5);
    }
}

INSTANTIATE_TEST_SUITE_P(Places, Structured,
                         testing::Values(StructuredStore{newUpperMat, L2::UPPER, 1, 3, true},
                                         StructuredStore{newUpperMat, L2::UPPER, 3, 1, false},
                                         StructuredStore{newUpperMat, L2::UPPER, 1, 4, false},
                                         StructuredStore{newLowerMat, L2::LOWER, 3, 1, true},
                                         StructuredStore{newLowerMat, L2::LOWER, 1, 3, false},
                                         StructuredStore{newSymmMat, L2::SYMM, 1, 3, true},
                                         StructuredStore{newSymmMat, L2::SYMM, 4, 4, false}));

TEST_F(Indexing, ReadingDropsTheStructure) {
    Matrix *m = newUpperMat(3);
    m->rdata[1] = 7;
    Matrix *block = matRef2(m, range(2), range(2), nullptr);
    EXPECT_EQ(block->l2type, L2::RM);
    EXPECT_EQ(block->rdata[1], 7);
}

// ---- Multidimensional matrices

TEST_F(Indexing, RunningIndicesDecideOnTheKindOfTheRead) {
    PcNode *cube = constant(multidim({2, 3, 4})), *four = constant(multidim({2, 2, 3, 2}));
    Matrix *x = run(element(cube, {real(2), real(1), real(3)}));
    EXPECT_TRUE(x->l2type == L2::RS && x->rdata[0] == 15);
    Matrix *m = run(element(cube, {real(2), range(2), range(3)}));
    EXPECT_TRUE(m->l2type == L2::RM && m->nrows == 2 && m->ncols == 3);
    EXPECT_TRUE(m->rdata[0] == 13 && m->rdata[5] == 19);
    Matrix *md = run(element(four, {range(2), real(2), range(3), range(2)}));
    EXPECT_TRUE(md->l2type == L2::RMDM && md->length == 12 && md->rdata[0] == 7 && md->rdata[11] == 24);
    EXPECT_ABORT(run(element(cube, {real(3), real(1), real(1)})));
    EXPECT_ABORT(run(element(constant(multidim({2, 3})), {real(1), real(1), real(1)})));
}

TEST_F(Indexing, AMatrixIsStoredInASlice) {
    const uint32_t k = variable(multidim({2, 2, 3}));
    store3(k, {real(2), range(2), range(3)}, countingMatrix(2, 3));
    for (uint32_t e = 0; e < 6; e++) EXPECT_EQ(getVarMat(k)->rdata[6 + e], e + 1.0);
    EXPECT_EQ(getVarMat(k)->rdata[5], 6);
    EXPECT_ABORT(store3(k, {real(2), range(2), range(3)}, countingMatrix(3, 2)));
}

TEST_F(Indexing, AComplexNumberMakesAMultidimensionalMatrixComplex) {
    const uint32_t k = variable(multidim({2, 2, 2}));
    store3(k, {real(1), real(1), real(2)}, newCompScalarMat(3, 4));
    const Matrix *m = getVarMat(k);
    ASSERT_EQ(m->l2type, L2::CMDM);
    EXPECT_TRUE(m->rdata[1] == 3 && m->rdata[7] == 8 && m->rdata[8] == 0 && m->rdata[9] == 4);
}

TEST_F(Indexing, AnEmptyTargetGetsTheExtentsOfTheLargestIndices) {
    const uint32_t k = variable(theEmptyMat());
    store3(k, {real(2), real(1), real(3)}, real(9));
    const Matrix *m = getVarMat(k);
    ASSERT_TRUE(m->l2type == L2::RMDM && m->length == 6);
    EXPECT_TRUE(m->rdata[5] == 9 && m->rdata[0] == 0);
}

TEST_F(Indexing, ASharedMultidimensionalMatrixIsCopiedFirst) {
    Matrix *shared = multidim({2, 2, 2});
    linkMat(shared);
    const uint32_t k = variable(shared);
    store3(k, {real(1), real(1), real(1)}, real(50));
    EXPECT_EQ(shared->rdata[0], 1);
    EXPECT_EQ(getVarMat(k)->rdata[0], 50);
    ucReleaseMat(shared);
}

// ---- Parts of complex values

TEST_F(Indexing, APartWithAnotherHolderIsNotChanged) {
    Matrix *m = newCompMat(countingMatrix(1, 3), countingMatrix(1, 3));
    Matrix *re = m->re();
    linkMat(re);
    const uint32_t k = variable(m);
    PcNode *place = with(NodeKind::Ref, 0, {named(k), constant(real(1))});
    run(with(NodeKind::RefAsgn, 0, {place, constant(real(9))}));
    EXPECT_EQ(re->rdata[0], 1);
    EXPECT_EQ(getVarMat(k)->re()->rdata[0], 9);
    ucReleaseMat(re);
}

// ---- Growth

TEST_F(Indexing, ARowGrowsInItsRecordWhileTheBufferHasRoom) {
    Matrix *slot = countingMatrix(1, 5);
    linkMat(slot);
    Matrix *before = slot;
    growMat(slot, 1, 16);
    EXPECT_EQ(slot, before);
    EXPECT_EQ(slot->rdata[15], 0);
    growMat(slot, 1, 17);
    EXPECT_NE(slot, before);
    EXPECT_EQ(slot->rdata[4], 5);
    EXPECT_EQ(slot->rdata[16], 0);
    ucReleaseMat(slot);
}

TEST_F(Indexing, ABigVectorGrowsByItsOwnBuffer) {
    Matrix *slot = countingMatrix(1, 300000);
    linkMat(slot);
    growMat(slot, 1, 300001);
    const uint32_t cap = slot->cap;
    Matrix *record = slot;
    for (uint32_t n = 300002; n < 300100; n++) growMat(slot, 1, n);
    EXPECT_EQ(slot, record);
    EXPECT_EQ(slot->cap, cap);
    EXPECT_EQ(slot->rdata[299999], 300000);
    ucReleaseMat(slot);
}

TEST_F(Indexing, AGrownTemporaryReplacesTheOld) {
    Matrix *m = rmGetNewRow(countingMatrix(2, 3), 20);
    EXPECT_EQ(m->nrows, 20u);
    EXPECT_EQ(m->rdata[5], 6);
    EXPECT_EQ(m->rdata[6], 0);
    m = rmGetNewCol(m, 4);
    EXPECT_EQ(m->rdata[4], 4);
    EXPECT_EQ(m->rdata[3], 0);
}

// ---- The uniform view

TEST_F(Indexing, EveryRealLikeKindAnswersTheSameEntries) {
    Matrix *ints = convToIntMat(countingMatrix(2, 3)), *bytes = convToByteMat(countingMatrix(2, 3));
    for (Matrix *m : {countingMatrix(2, 3), ints, bytes, newRngMat(2, 3, 1, 1)}) {
        EXPECT_EQ(mat_entry_fun[index(m->l2type)](m, 4), 5);
        EXPECT_EQ(mat_entry2_fun[index(m->l2type)](m, 1, 1), 5);
    }
}

}  // namespace
}  // namespace vesko
