// Hash tables and sets: codes, order, the removal that sees only heads of chains.
#include "house.h"
#include "values/containers.h"
#include "values/matrix.h"

namespace vesko {
namespace {

class Hashes : public House {
protected:
    hashtable *t = newHashTable(1);
    void TearDown() override {
        freeHashTable(t);
        House::TearDown();
    }
};

uint32_t step(uint32_t h, uint32_t e) { return h * 31 + e; }

// Integers with one hash code, so that their keys share a chain.
Matrix *chainMate(int32_t k) { return newIntScalarMat(k * 67); }

TEST_F(Hashes, CodesOfIntegersCountElementsAndShape) {
    EXPECT_EQ(getMatHashCode(newIntScalarMat(5)), step(step(5, 1), 1));
    Matrix *m = newIntMat(1, 2);
    m->ints()[0] = -1;
    m->ints()[1] = 2;
    EXPECT_EQ(getMatHashCode(m), step(step(step(step(0, -1), 2), 1), 2));
}

TEST_F(Hashes, RealMatricesCountWholeParts) {
    Matrix *m = allocRealMat(2, 2, 1);
    m->rdata[0] = -2.75;
    m->rdata[1] = 0x1p40 + 3;
    EXPECT_EQ(getMatHashCode(m), step(step(step(step(0, -2), 3), 2), 1));
    m->rdata[0] = 1e300;
    m->rdata[1] = *theNanMat()->rdata;
    EXPECT_EQ(getMatHashCode(m), step(step(0, 2), 1));
}

TEST_F(Hashes, RealScalarsCountTheirBytes) {
    EXPECT_EQ(getMatHashCode(theNanMat()), 7815u);
    EXPECT_EQ(getMatHashCode(theFalseMat()), 0u);
    EXPECT_EQ(getMatHashCode(theTrueMat()), step(0xF0, 0x3F));
}

TEST_F(Hashes, TextsCountSignedCharacters) {
    EXPECT_EQ(getMatHashCode(newStrMatCopy("ab")), step('a', 'b'));
    EXPECT_EQ(getMatHashCode(newStrMatCopy("\xff")), static_cast<uint32_t>(-1));
}

TEST_F(Hashes, ListsCountEntriesAndLengthVariableOnesOnlyTheirKind) {
    Matrix *list = newListMat(1);
    addListEntry(list, newIntScalarMat(5));
    EXPECT_EQ(getMatHashCode(list), step(getMatHashCode(newIntScalarMat(5)), 1));
    Matrix *growing = newVListMat(1);
    addListEntry(growing, newIntScalarMat(5));
    EXPECT_EQ(getMatHashCode(growing), index(L2::VL));
    EXPECT_EQ(getMatHashCode(newPfMat()), index(L2::GV));
}

TEST_F(Hashes, RealAndIntegerOneAreTwoKeys) {
    addHashData(t, newRealScalarMat(1), theTrueMat());
    addHashData(t, newIntScalarMat(1), theFalseMat());
    EXPECT_EQ(t->count(), 2u);
    EXPECT_EQ(findHashData(t, newIntScalarMat(1)), theFalseMat());
}

TEST_F(Hashes, StoringAKeyAgainReplacesItsValue) {
    Matrix *old = newRealScalarMat(1);
    addHashData(t, newStrMatCopy("k"), old);
    addHashData(t, newStrMatCopy("k"), theTrueMat());
    EXPECT_EQ(t->count(), 1u);
    EXPECT_TRUE(isFree(old));
}

TEST_F(Hashes, MissYieldsTheDefault) {
    EXPECT_EQ(findHashData(t, newIntScalarMat(1)), theEmptyMat());
    setDfltHashVal(t, theTrueMat());
    EXPECT_EQ(findHashData(t, newIntScalarMat(1)), theTrueMat());
    hashtable *copy = copyHashTable(t);
    EXPECT_EQ(getDfltHashVal(copy), theEmptyMat());
    freeHashTable(copy);
}

TEST_F(Hashes, AddressOfAMissingKeyIsItsNewEmptyValue) {
    Matrix **place = findHashDataAddr(t, newIntScalarMat(4));
    EXPECT_EQ(*place, theEmptyMat());
    EXPECT_EQ(t->count(), 1u);
    EXPECT_EQ(findHashDataAddr(t, newIntScalarMat(4)), place);
}

TEST_F(Hashes, KeyDeeperInItsChainCannotBeRemoved) {
    addHashData(t, chainMate(1), theTrueMat());
    addHashData(t, chainMate(2), theTrueMat());
    EXPECT_FALSE(removeHashKey(t, chainMate(1)));
    EXPECT_EQ(t->count(), 2u);
    EXPECT_TRUE(removeHashKey(t, chainMate(2)));
    EXPECT_TRUE(removeHashKey(t, chainMate(1)));
    EXPECT_EQ(t->count(), 0u);
}

TEST_F(Hashes, NodeVectorGrowsInOrderAndTheLastTakesTheGap) {
    for (int32_t k = 0; k < 9; k++) addSetMember(t, newIntScalarMat(k));
    EXPECT_EQ(t->count(), 9u);
    for (int32_t k = 0; k < 9; k++) EXPECT_EQ(*setMemberAt(t, k)->ints(), k);
    EXPECT_TRUE(removeSetMember(t, newIntScalarMat(2)));
    EXPECT_EQ(*setMemberAt(t, 2)->ints(), 8);
    EXPECT_EQ(t->node(2)->index, 2u);
    EXPECT_TRUE(removeSetMember(t, newIntScalarMat(8)));
    EXPECT_EQ(t->count(), 7u);
}

xset *setOf(std::initializer_list<int32_t> members) {
    xset *s = newXSet();
    for (int32_t k : members) addSetMember(s, newIntScalarMat(k));
    return s;
}

std::vector<int32_t> membersOf(xset *s) {
    std::vector<int32_t> members;
    for (uint32_t i = 0; i < s->count(); i++) members.push_back(*setMemberAt(s, i)->ints());
    freeHashTable(s);
    return members;
}

TEST_F(Hashes, SetAlgebraKeepsTheOrderOfTheFirstSet) {
    xset *a = setOf({3, 1, 2}), *b = setOf({2, 4, 3});
    using Members = std::vector<int32_t>;
    EXPECT_EQ(membersOf(makeSetUnion(a, b)), (Members{3, 1, 2, 4}));
    EXPECT_EQ(membersOf(makeSetIntersection(a, b)), (Members{3, 2}));
    EXPECT_EQ(membersOf(makeSetDiff(a, b)), (Members{1}));
    EXPECT_FALSE(set_equal(a, b));
    xset *small = setOf({1, 3});
    EXPECT_TRUE(sub_set(small, a));
    EXPECT_TRUE(true_sub_set(small, a));
    EXPECT_TRUE(sub_set(a, a));
    EXPECT_FALSE(true_sub_set(a, a));
    for (xset *s : {a, b, small}) freeHashTable(s);
}

// ---- Stacks and queues

TEST_F(Hashes, StackGivesBackWhatItWasGivenAsATemporary) {
    xstack *s = newXstack();
    Matrix *a = newRealScalarMat(1);
    pushStack(s, a);
    pushStack(s, theTrueMat());
    EXPECT_EQ(popStack(s), theTrueMat());
    EXPECT_EQ(popStack(s), a);
    EXPECT_EQ(a->status, status_temporary);
    EXPECT_EQ(popStack(s), theEmptyMat());
    freeStack(s);
}

TEST_F(Hashes, QueueServesInOrderAndCountsItsTraffic) {
    xqueue *q = newQueue();
    Matrix *a = newRealScalarMat(1), *b = newRealScalarMat(2);
    queInput(q, a);
    queInput(q, b);
    xqueue *copy = copyQue(q);
    EXPECT_EQ(queOutput(q), a);
    EXPECT_EQ(queOutput(q), b);
    EXPECT_EQ(queOutput(q), theEmptyMat());
    EXPECT_EQ(q->count, 0u);
    EXPECT_EQ(q->traffic, 4u);
    EXPECT_EQ(q->last, nullptr);
    EXPECT_EQ(copy->count, 2u);
    freeQueue(copy);
    freeQueue(q);
}

}  // namespace
}  // namespace vesko
