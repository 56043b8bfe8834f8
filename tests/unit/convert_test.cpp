// Conversion, cloning and the reading of numbers, over every representation of a value.
#include "values/convert.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numeric>

#include "house.h"
#include "values/containers.h"
#include "values/elements.h"
#include "values/payload.h"

namespace vesko {
namespace {

using testing::ElementsAre;

class Converting : public House {};

Matrix *realRow(std::initializer_list<double> elements) {
    Matrix *m = allocRealMat(elements.size(), 1, elements.size());
    std::copy(elements.begin(), elements.end(), m->rdata);
    return m;
}

Matrix *byteRow(std::initializer_list<uint8_t> elements) {
    Matrix *m = newByteMat(1, elements.size());
    std::copy(elements.begin(), elements.end(), m->bytes());
    return m;
}

Matrix *textOf(const char *text) { return newStrMatCopy(text); }

std::string stringOf(const Matrix *m) { return std::string(m->text(), m->length); }

// 3, 5, 7 in every dense real-like kind.
std::vector<Matrix *> threeNumbers() {
    Matrix *ints = newIntMat(1, 3);
    for (int k = 0; k < 3; k++) ints->ints()[k] = 3 + 2 * k;
    return {realRow({3, 5, 7}), ints, newRngMat(1, 3, 3, 2), byteRow({3, 5, 7})};
}

TEST_F(Converting, EveryDenseKindBecomesTheSameNumbers) {
    for (Matrix *m : threeNumbers()) {
        Matrix *real = convToDb(m), *ints = convToIntMat(m), *complex = convToCM(m);
        EXPECT_TRUE(real->l2type == L2::RM && ints->l2type == L2::IM && complex->l2type == L2::CM);
        for (int k = 0; k < 3; k++) {
            EXPECT_EQ(real->rdata[k], 3 + 2.0 * k);
            EXPECT_EQ(ints->ints()[k], 3 + 2 * k);
            EXPECT_EQ(complex->re()->rdata[k], 3 + 2.0 * k);
            EXPECT_EQ(complex->im()->rdata[k], 0);
        }
    }
}

TEST_F(Converting, OneElementBecomesAScalar) {
    EXPECT_EQ(convToDb(newByteScalarMat(4))->l2type, L2::RS);
    EXPECT_EQ(convToIntMat(newRealScalarMat(4))->l2type, L2::IS);
    EXPECT_EQ(convToCM(newByteScalarMat(4))->l2type, L2::CS);
}

TEST_F(Converting, StructuredStorageIsReadAsItLies) {
    Matrix *upper = newUpperMat(2);
    upper->rdata[1] = 5;
    Matrix *real = convToDb(upper);
    EXPECT_EQ(real->l2type, L2::RM);
    EXPECT_EQ(real->rdata[1], 5);
    EXPECT_ABORT(convToIntMat(upper));
}

TEST_F(Converting, RealsAreTruncatedAndSaturateOrWrap) {
    Matrix *ints = convToIntMat(realRow({2.9, -2.9, 1e300, -1e300, std::nan("")}));
    Matrix *bytes = convToByteMat(realRow({255.9, 256, 300, -1}));
    Matrix *bits = convToBinaryMat(realRow({0, 0.5, -3, 0.0}));
    EXPECT_THAT(std::vector(ints->ints(), ints->ints() + 5), ElementsAre(2, -2, INT32_MAX, INT32_MIN, 0));
    EXPECT_THAT(std::vector(bytes->bytes(), bytes->bytes() + 4), ElementsAre(255, 0, 44, 255));
    EXPECT_THAT(std::vector(bits->bytes(), bits->bytes() + 4), ElementsAre(0, 1, 1, 0));
}

TEST_F(Converting, BytesAndBitsComeFromRealsAndTextsOnly) {
    Matrix *bytes = convToByteMat(textOf("ab"));
    EXPECT_EQ(bytes->nrows, 1u);
    EXPECT_EQ(bytes->bytes()[1], 'b');
    EXPECT_ABORT(convToByteMat(newIntScalarMat(1)));
    EXPECT_ABORT(convToBinaryMat(newCompScalarMat(1, 1)));
}

TEST_F(Converting, MaskedBytesBecomeBits) {
    Matrix *m = byteRow({2, 3, 255});
    by_to_bi(m);
    EXPECT_EQ(m->l2type, L2::BI);
    EXPECT_EQ(m->bytes()[0], 0);
    EXPECT_EQ(m->bytes()[2], 1);
}

TEST_F(Converting, TextsAreScannedFromTheirStart) {
    EXPECT_EQ(convToDb(textOf(" 2.5e1x"))->rdata[0], 25);
    EXPECT_EQ(convToIntMat(textOf("12abc"))->ints()[0], 12);
    EXPECT_EQ(convToIntMat(textOf("99999999999"))->ints()[0], INT32_MAX);
    EXPECT_ABORT(convToDb(textOf("abc")));
    EXPECT_ABORT(convToIntMat(textOf("")));
}

TEST_F(Converting, WhatIsNoNumberIsRefused) {
    EXPECT_ABORT(convToDb(newListMat(2)));
    EXPECT_ABORT(convToDb(theEmptyMat()));
    EXPECT_ABORT(convToDb(newCompScalarMat(1, 2)));
    EXPECT_ABORT(convToCM(textOf("1")));
}

TEST_F(Converting, NumbersBecomeTexts) {
    EXPECT_EQ(stringOf(convToString(newIntScalarMat(INT32_MIN))), "-2147483648");
    EXPECT_EQ(stringOf(convToString(newRealScalarMat(-1.23456789e-300))), "-1.23457e-300");
    EXPECT_EQ(stringOf(convToString(byteRow({'a', 'b'}))), "ab");
    Matrix *bits = newBinaryMat(3, 1);
    std::fill_n(bits->bytes(), 3, 1);
    bits->bytes()[1] = 0;
    EXPECT_EQ(stringOf(convToString(bits)), "101");
}

TEST_F(Converting, WhatHasNoTextYieldsOneNulOrTheEmptyValue) {
    EXPECT_EQ(stringOf(convToString(newZerosMat(2, 2))), std::string(1, '\0'));
    EXPECT_EQ(stringOf(convToString(newByteMat(2, 2))), std::string(1, '\0'));
    EXPECT_EQ(convToString(newCompScalarMat(1, 2)), theEmptyMat());
    Matrix *text = textOf("same");
    EXPECT_EQ(convToString(text), text);
}

// ---- Numbers out of values

TEST_F(Converting, NumbersAreReadFromEveryKindOfOneElementAndFromNoOther) {
    double x;
    int32_t n;
    for (Matrix *m : {newRealScalarMat(7), newIntScalarMat(7), newByteScalarMat(7), newRngMat(1, 1, 7, 2)}) {
        EXPECT_TRUE(extract_RS(m, x) && x == 7);
        EXPECT_TRUE(extract_integer(m, n) && n == 7);
    }
    for (Matrix *m : {realRow({1, 2}), newCompScalarMat(1, 0), textOf("1"), theEmptyMat(), newListMat(1)})
        EXPECT_FALSE(extract_RS(m, x));
}

TEST_F(Converting, IntegersRefuseFractionsAndWhatDoesNotFit) {
    int32_t n;
    for (double x : {0.5, 2147483648.0, -2147483649.0, std::nan(""), double{INFINITY}})
        EXPECT_FALSE(extract_integer(newRealScalarMat(x), n));
    EXPECT_TRUE(extract_integer(newRealScalarMat(-2147483648.0), n) && n == INT32_MIN);
}

TEST_F(Converting, TwoNumbersComeFromVectorsAndLists) {
    double a, b;
    Matrix *list = newListMat(2);
    addListEntry(list, newRealScalarMat(3));
    addListEntry(list, newByteScalarMat(5));
    for (Matrix *m : {realRow({3, 5}), newRngMat(2, 1, 3, 2), byteRow({3, 5}), list})
        EXPECT_TRUE(extract_2_reals(m, a, b) && a == 3 && b == 5);
    EXPECT_FALSE(extract_2_reals(realRow({1, 2, 3}), a, b));
}

TEST_F(Converting, ComplexNumbersAreReadFromRealsToo) {
    double re, im;
    EXPECT_TRUE(extract_CS(newCompScalarMat(1, 2), re, im) && re == 1 && im == 2);
    EXPECT_TRUE(extract_CS(newIntScalarMat(4), re, im) && re == 4 && im == 0);
}

// ---- Clones

TEST_F(Converting, CloneOfATriangleIsPlain) {
    Matrix *upper = newUpperMat(3);
    upper->rdata[2] = 8;
    Matrix *clone = cloneMatrix(upper);
    EXPECT_EQ(clone->l1type, L1::RM);
    EXPECT_EQ(clone->l2type, L2::RM);
    EXPECT_EQ(clone->rdata[2], 8);
}

TEST_F(Converting, CloneOfAListSharesItsEntries) {
    Matrix *entry = newZerosMat(2, 2);
    Matrix *list = newVListMat(4);
    addListEntry(list, entry);
    Matrix *clone = cloneMatrix(list);
    EXPECT_EQ(clone->l2type, L2::VL);
    EXPECT_EQ(clone->entries()[0], entry);
    EXPECT_EQ(entry->nlinks(), 2u);
}

TEST_F(Converting, CloneOfATableSharesKeysAndValuesButNotTheDefault) {
    Matrix *table = newHashMat(1);
    Matrix *key = textOf("k"), *value = newZerosMat(2, 1);
    addHashData(table->table(), key, value);
    setDfltHashVal(table->table(), textOf("default"));
    Matrix *clone = cloneMatrix(table);
    EXPECT_EQ(findHashData(clone->table(), key), value);
    EXPECT_EQ(value->nlinks(), 2u);
    EXPECT_EQ(getDfltHashVal(clone->table()), theEmptyMat());
}

TEST_F(Converting, ImmutableKindsAreTheirOwnClones) {
    for (Matrix *m : {newItvMat(0, 1, 1, 1), theEmptyMat(), theCompleteMat(), theDneMat(), theRng0Mat()})
        EXPECT_EQ(cloneMatrix(m), m);
}

TEST_F(Converting, AnAutomatonIsNotCloned) {
    Matrix m = *theEmptyMat();
    m.l2type = L2::AUTOMATON;
    EXPECT_ABORT(cloneMatrix(&m));
}

TEST_F(Converting, MultidimensionalClonesKeepTheirExtents) {
    Vector *extents = newVector(3);
    for (uintptr_t n : {2, 1, 2}) addElement(extents, asEntry(n));
    Matrix *m = newRMDM_Mat(4, extents);
    for (int k = 0; k < 4; k++) m->rdata[k] = k;
    Matrix *clone = cloneMatrix(m);
    EXPECT_TRUE(sameDims(m, clone));
    EXPECT_EQ(clone->rdata[3], 3);
}

TEST_F(Converting, CornersKeepTheRestAndRowsCanBeReversed) {
    Matrix *large = newZerosMat(2, 3), *small = newZerosMat(2, 2);
    std::iota(small->rdata, small->rdata + 4, 1);
    copyRealMat(large, small);
    Matrix *reversed = cloneRM_rowreverse(small);
    EXPECT_THAT(std::vector(large->rdata, large->rdata + 6), ElementsAre(1, 2, 0, 3, 4, 0));
    EXPECT_THAT(std::vector(reversed->rdata, reversed->rdata + 4), ElementsAre(3, 4, 1, 2));
}

}  // namespace
}  // namespace vesko
