// Vectors: the law of capacities, growth, removal.
#include "house.h"
#include "values/containers.h"
#include "values/matrix.h"

namespace vesko {
namespace {

class Vectors : public House {};

uint32_t capacityFor(uint32_t n) {
    Vector *v = newVector(n);
    uint32_t cap = v->cap;
    freeVector(v, nullptr);
    return cap;
}

TEST_F(Vectors, CapacityIsThePowerOfTwoAtOrAboveTheSize) {
    EXPECT_EQ(capacityFor(0), 2u);
    EXPECT_EQ(capacityFor(2), 2u);
    EXPECT_EQ(capacityFor(3), 4u);
    EXPECT_EQ(capacityFor(4), 4u);
    EXPECT_EQ(capacityFor(5), 8u);
    EXPECT_EQ(capacityFor(32767), 32768u);
    EXPECT_EQ(capacityFor(32768), 32768u);
    EXPECT_EQ(capacityFor(40000), 40000u);
}

TEST_F(Vectors, GrowthKeepsTheAddressAndTheEntries) {
    Vector *v = newVector(8);
    for (uintptr_t i = 0; i < 9; i++) EXPECT_EQ(addElement(v, asEntry(i)), i);
    EXPECT_EQ(v->size, 9u);
    EXPECT_EQ(v->cap, 16u);
    for (uintptr_t i = 0; i < 9; i++) EXPECT_EQ(v->numberAt(i), i);
    freeVector(v, nullptr);
}

TEST_F(Vectors, FreedVectorServesTheNextOfItsClass) {
    Vector *v = newVector(5);
    addElement(v, v);
    freeVector(v, nullptr);
    Vector *again = newVector(8);
    EXPECT_EQ(again, v);
    EXPECT_EQ(again->size, 0u);
    freeVector(again, nullptr);
    freeVector(nullptr, nullptr);
}

TEST_F(Vectors, RemovalMovesTheLastEntryOrKeepsTheOrder) {
    Vector *v = newVector(4);
    for (uintptr_t i = 0; i < 4; i++) addElement(v, asEntry(i));
    removeElementAt(v, 0);
    EXPECT_EQ(v->numberAt(0), 3u);
    removeElement_order_preserved(v, 0);
    EXPECT_EQ(v->numberAt(0), 1u);
    EXPECT_EQ(v->numberAt(1), 2u);
    EXPECT_TRUE(removeElement(v, asEntry(2)));
    EXPECT_FALSE(removeElement(v, asEntry(7)));
    EXPECT_EQ(v->size, 1u);
    freeVector(v, nullptr);
}

TEST_F(Vectors, ExtendingABigVectorIsExact) {
    Vector *v = newVector(40000);
    addElement(v, asEntry(5));
    extendVectorBuffer(v, 50000, 1);
    EXPECT_EQ(v->cap, 50000u);
    EXPECT_EQ(v->numberAt(0), 5u);
    freeVector(v, nullptr);
    Vector *small = newVector(8);
    extendVectorBuffer(small, 7, 0);
    EXPECT_EQ(small->cap, 8u);
    extendVectorBuffer(small, 9, 0);
    EXPECT_EQ(small->cap, 16u);
    freeVector(small, nullptr);
}

TEST_F(Vectors, EntriesOfValuesHoldLinks) {
    Matrix *a = newRealScalarMat(1), *b = newRealScalarMat(2);
    linkMat(a);
    Vector *v = newVector(1);
    appendMatVecEntry(v, a);
    updateMatVecEntry(v, 0, b);
    EXPECT_EQ(a->nlinks(), 1u);
    EXPECT_EQ(b->nlinks(), 1u);
    updateMatVecEntry(v, 0, b);
    EXPECT_EQ(b->nlinks(), 1u);
    Matrix *list = makeTriMatVec(a, b, a);
    EXPECT_EQ(list->length, 3u);
    EXPECT_EQ(a->nlinks(), 3u);
    releaseMat(list);
    freeVector(v, releaseEntry);
    EXPECT_TRUE(isFree(b));
    ucReleaseMat(a);
}

}  // namespace
}  // namespace vesko
