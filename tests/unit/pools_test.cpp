// Record pools: classes, growth, order of reuse, and the sweep.
#include "values/pools.h"

#include <vector>

#include "house.h"

namespace vesko {
namespace {

class Pools : public House {};

TEST_F(Pools, ClassesHoldPowersOfFourOrTwo) {
    const std::pair<uint32_t, uint32_t> real[] = {{1, 0}, {2, 1},      {4, 1},
                                                  {5, 2}, {262144, 9}, {262145, big_class}};
    for (auto [size, found] : real) EXPECT_EQ(realClassOf(size), found) << size;
    const std::pair<uint32_t, uint32_t> general[] = {{0, 0},  {16, 0},   {17, 1},
                                                     {32, 1}, {8192, 9}, {8193, big_class}};
    for (auto [size, found] : general) EXPECT_EQ(generalClassOf(size), found) << size;
    EXPECT_EQ(allocRealMat(5, 1, 5)->cap, 16u);
}

#ifndef VESKO_CHECK
TEST_F(Pools, ScalarAndItsNumberShareACacheLine) {
    Matrix *m = newRealScalarMat(2.5);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(m) / 64, reinterpret_cast<uintptr_t>(m->rdata) / 64);
    EXPECT_EQ(*m->rdata, 2.5);
    Matrix *n = newIntScalarMat(7);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(n) / 64, reinterpret_cast<uintptr_t>(n->vdata) / 64);
}
#endif

TEST_F(Pools, LastReleasedIsFirstHandedOut) {
    Matrix *a = newRealScalarMat(1), *b = newRealScalarMat(2);
    releaseMat(a);
    releaseMat(b);
    EXPECT_EQ(newRealScalarMat(3), b);
    EXPECT_EQ(newRealScalarMat(4), a);
}

TEST_F(Pools, StructuredRecordGoesBackAsADenseOne) {
    Matrix *m = newUpperMat(3);
    EXPECT_EQ(m->l2type, L2::UPPER);
    releaseMat(m);
    Matrix *again = allocRealMat(9, 9, 1);
    EXPECT_EQ(again, m);
    EXPECT_EQ(again->l1type, L1::RM);
    EXPECT_EQ(again->l2type, L2::RM);
}

TEST_F(Pools, DryClassGrowsByHalf) {
    PoolClass &pool = real_pool[9];
    const uint32_t total = pool.total;
    for (uint32_t n = pool.freeCount(); n > 0; n--) allocRealMat(262144, 262144, 1);
    EXPECT_EQ(pool.freeCount(), 0u);
    EXPECT_EQ(pool.total, total);
    allocRealMat(262144, 262144, 1);
    EXPECT_EQ(pool.total, total + total / 2);
    EXPECT_EQ(pool.freeCount(), total / 2 - 1);
}

TEST_F(Pools, BigRecordKeepsItsLargerBuffer) {
    Matrix *m = allocRealMat(400000, 400000, 1);
    const uint32_t cap = m->cap;
    EXPECT_GE(cap, 400000u);
    releaseMat(m);
    Matrix *again = allocRealMat(262145, 262145, 1);
    EXPECT_EQ(again, m);
    EXPECT_EQ(again->cap, cap);
    EXPECT_EQ(again->length, 262145u);
}

TEST_F(Pools, ExtendingABigRecordDoublesItOrTakesAKeptOne) {
    Matrix *m = allocGMat(10000);
    EXPECT_EQ(realloc_big_gmat(m, 20000), m);
    EXPECT_EQ(m->cap, 40000u);
    Matrix *kept = allocGMat(100000);
    Matrix *top = allocGMat(9000);
    releaseMat(kept);
    releaseMat(top);
    EXPECT_EQ(realloc_big_gmat(m, 80000), kept);
    EXPECT_EQ(kept->status, status_temporary);
    EXPECT_EQ(allocGMat(9000), top);
}

TEST_F(Pools, LengthThatFitsNoRecordEndsTheCommand) {
    EXPECT_EQ(checkedLength(65536, 32767), 2147418112u);
    EXPECT_ABORT(checkedLength(65536, 32768));
    EXPECT_ABORT(allocRealMat(0, 0, 1));
    EXPECT_ABORT(checkedLength(0xFFFFFFFF, 0xFFFFFFFF));
}

TEST_F(Pools, TagsFollowFromSizes) {
    EXPECT_EQ(newIntMat(1, 1)->l2type, L2::IS);
    for (Matrix *m : {newIntMat(0, 5), newByteMat(0, 1), newStrMat(0), newListMat(0)})
        EXPECT_EQ(m, theEmptyMat());
    EXPECT_EQ(newVListMat(0)->ncols, 1u);
    EXPECT_EQ(newUpperMat(1)->l2type, L2::RS);
}

TEST_F(Pools, ComplexPartsHaveOneShapeAndOneOwner) {
    Matrix *re = allocRealMat(2, 1, 2), *im = newRealScalarMat(3);
    re->rdata[0] = re->rdata[1] = 1;
    linkMat(re);
    Matrix *z = newCompMat(re, im);
    EXPECT_EQ(z->l2type, L2::CM);
    EXPECT_NE(z->re(), re);
    EXPECT_EQ(z->re()->nlinks(), 1u);
    EXPECT_EQ(z->im()->rdata[1], 3);
    ucReleaseMat(re);
    EXPECT_ABORT(newCompMat(allocRealMat(2, 1, 2), allocRealMat(2, 2, 1)));
}

// ---- Links

TEST_F(Pools, BracketKeepsATemporary) {
    Matrix *m = newRealScalarMat(1);
    keepResult(m);
    releaseMat(m);
    passResult(m);
    EXPECT_EQ(m->status, status_temporary);
}

TEST_F(Pools, SingletonsAreTwoEmptyRecordsAndOutliveReleases) {
    EXPECT_TRUE(ISEMPTY(theEmptyMat()));
    EXPECT_TRUE(ISEMPTY(theNullMat()));
    EXPECT_NE(theEmptyMat(), theNullMat());
    const uint32_t status = theTrueMat()->status;
    EXPECT_GE(status, status_singleton);
    releaseMat(theTrueMat());
    EXPECT_EQ(theTrueMat()->status, status);
    const uint32_t empty_status = theEmptyMat()->status;
    theEmptyMat()->status = status_temporary;
    ucReleaseMat(theEmptyMat());
    EXPECT_EQ(theEmptyMat()->status, status_singleton);
    theEmptyMat()->status = empty_status;
}

TEST_F(Pools, ListReleasesItsEntries) {
    Matrix *entry = newRealScalarMat(1), *list = newListMat(2);
    addListEntry(list, entry);
    addListEntry(list, entry);
    EXPECT_EQ(entry->nlinks(), 2u);
    linkMat(entry);
    releaseMat(list);
    EXPECT_EQ(entry->nlinks(), 1u);
    ucReleaseMat(entry);
}

TEST_F(Pools, DeepNestingIsReleasedWithinTheMachineStack) {
    Matrix *inner = newRealScalarMat(1);
    for (int i = 0; i < 1000000; i++) {
        Matrix *outer = newListMat(1);
        addListEntry(outer, inner);
        inner = outer;
    }
    cleanTempMats();
    PoolClass &pool = general_pool[0];
    const uint32_t total = pool.total, free = pool.freeCount();
    EXPECT_EQ(pool.nfree + pool.uncarved, free);
    EXPECT_GT(free + 1000, total);
}

// ---- The sweep

TEST_F(Pools, SweepReleasesTemporariesAlone) {
    Matrix *temporary = newRealScalarMat(1), *linked = newRealScalarMat(2);
    linkMat(linked);
    const uint32_t free = real_pool[0].freeCount();
    cleanTempMats();
    EXPECT_EQ(real_pool[0].freeCount(), free + 1);
    EXPECT_EQ(newRealScalarMat(3), temporary);
    EXPECT_EQ(linked->nlinks(), 1u);
    ucReleaseMat(linked);
}

TEST_F(Pools, SweepFindsWhatWasDetachedLongAfterItWasMade) {
    Matrix *m = newRealScalarMat(1);
    linkMat(m);
    cleanTempMats();
    const uint32_t free = real_pool[0].freeCount();
    detachMat(m);
    cleanTempMats();
    EXPECT_EQ(real_pool[0].freeCount(), free + 1);
}

TEST_F(Pools, SweepVisitsOnlyWhatWasHandedOut) {
    cleanTempMats();
    EXPECT_EQ(sweep_log_size, 0u);
    for (int i = 0; i < 100; i++) releaseMat(newRealScalarMat(i));
    EXPECT_EQ(sweep_log_size, 1u);
}

TEST_F(Pools, SweepFromADepthLeavesShallowerTemporaries) {
    Matrix *shallow = newRealScalarMat(1);
    depth = 3;
    newRealScalarMat(2);
    const uint32_t free = real_pool[0].freeCount();
    clearStackTempMats(2);
    depth = 0;
    EXPECT_EQ(real_pool[0].freeCount(), free + 1);
    EXPECT_EQ(shallow->status, status_temporary);
}

}  // namespace
}  // namespace vesko
