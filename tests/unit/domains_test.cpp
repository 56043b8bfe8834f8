// Membership in sets of pointers, positions of members, and the names of numbered domains.
#include "engine/domains.h"
#include "house.h"
#include "operators/dispatch.h"

namespace vesko {
namespace {

class Domains : public House {
protected:
    // A record that refers to another: a pointer, or a set of pointers.
    static Matrix *reference(L2 kind, Matrix *target, uint32_t length) {
        Matrix *m = newPfMat();
        m->l2type = kind;
        m->nrows = m->ncols = 1;
        m->length = length;
        linkMat(target);
        m->vdata = target;
        return m;
    }
    static Matrix *allowed() {
        Matrix *m = allocRealMat(3, 1, 3);
        for (unsigned k = 0; k < 3; k++) m->rdata[k] = k + 5;
        return m;
    }
};

TEST_F(Domains, PositionOfTheFirstMatch) {
    EXPECT_EQ(memberOfSet(newRealScalarMat(6), allowed(), nullptr), 2u);
    EXPECT_EQ(memberOfSet(newByteScalarMat(7), allowed(), nullptr), 3u);
    EXPECT_EQ(memberOfSet(newRealScalarMat(6.5), allowed(), nullptr), 0u);
}

TEST_F(Domains, PointersIntoASet) {
    Matrix *set = reference(L2::PTRSET, allowed(), 1);
    EXPECT_EQ(memberOfSet(reference(L2::PTR, newRealScalarMat(6), 1), set, nullptr), 2u);
    EXPECT_EQ(memberOfSet(reference(L2::PTR, newRealScalarMat(1), 1), set, nullptr), 0u);
    EXPECT_EQ(memberOfSet(newRealScalarMat(6), set, nullptr), 0u);
}

TEST_F(Domains, NullPointerBelongsToSetsOfLengthTwo) {
    EXPECT_EQ(memberOfSet(theEmptyMat(), reference(L2::PTRSET, allowed(), 1), nullptr), 0u);
    EXPECT_EQ(memberOfSet(theEmptyMat(), reference(L2::PTRSET, allowed(), 2), nullptr), 1u);
}

TEST_F(Domains, NamesOfNumberedDomains) {
    EXPECT_STREQ(domain_name_to_str(0), "numerical");
    EXPECT_STREQ(domain_name_to_str(1), domain_name_to_str(14));
    EXPECT_STREQ(domain_name_to_str(8), domain_name_to_str(9));
    EXPECT_STREQ(domain_name_to_str(13), "pointer");
    EXPECT_STREQ(domain_name_to_str(22), "vector of real numbers");
}

}  // namespace
}  // namespace vesko
