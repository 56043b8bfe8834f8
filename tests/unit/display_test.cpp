// Display of what a program cannot make or see on 80 columns.
#include "values/display.h"

#include "console/message.h"
#include "console/worksheet.h"
#include "house.h"
#include "objects/object.h"
#include "values/containers.h"
#include "values/convert.h"
#include "values/payload.h"

namespace vesko {
namespace {

class Display : public House {
protected:
    void TearDown() override {
        vscr.columns = 80;
        House::TearDown();
    }
};

// The lines that the display of m adds, without blanks at their ends.
std::vector<std::string> shown(Matrix *m) {
    xPrintLineBrk(false, 4);
    Vsline *before = vscr.current;
    EXPECT_EQ(dispMat(m), m);
    std::vector<std::string> lines;
    for (Vsline *line = before->next; line; line = line->next) {
        std::string text(line->text, line->length);
        text.erase(text.find_last_not_of(' ') + 1);
        lines.push_back(text);
    }
    return lines;
}

using Lines = std::vector<std::string>;

TEST_F(Display, NarrowScreenShowsOneElementAPage) {
    vscr.columns = 5;
    Matrix *m = newZerosMat(1, 2);
    m->rdata[1] = 7;
    const Lines expected = {"   Column 1 through column 1", "    0", "   Column 2 through column 2", "    7"};
    EXPECT_EQ(shown(m), expected);
    EXPECT_EQ(shown(newIntMat(1, 3)).size(), 6u);
    EXPECT_EQ(shown(convToCM(m)).size(), 4u);
}

TEST_F(Display, ThreeDimensionsAreSlicedOnTheFirst) {
    Vector *extents = newVector(3);
    for (uintptr_t n : {2, 1, 2}) addElement(extents, asEntry(n));
    Matrix *m = newRMDM_Mat(4, extents);
    for (int k = 0; k < 4; k++) m->rdata[k] = k;
    const Lines expected = {"   multidimensional real matrix with dims 2, 1, 2", "   [1, :, :]",
                            "    0            1", "   [2, :, :]", "    2            3"};
    EXPECT_EQ(shown(m), expected);
}

TEST_F(Display, OtherDimensionsHaveOneLine) {
    Vector *extents = newVector(4);
    for (int k = 0; k < 4; k++) addElement(extents, asEntry(1));
    EXPECT_EQ(shown(newRMDM_Mat(1, extents)), Lines{"   multidimensional matrix"});
    Vector *complex = newVector(1);
    addElement(complex, asEntry(2));
    EXPECT_EQ(shown(newCMDM_Mat(2, complex)), Lines{"   complex multidimensional matrix"});
}

TEST_F(Display, TailOfAWideLongRangeIsNotShown) {
    EXPECT_EQ(shown(newRngMat(31, 2, 1, 1)).size(), 28u);
    EXPECT_EQ(shown(newRngMat(30, 2, 1, 1)).size(), 30u);
}

TEST_F(Display, StructuredMatricesShowTheirStorage) {
    EXPECT_EQ(shown(newUpperMat(2)), (Lines{"    0            0", "    0            0"}));
}

TEST_F(Display, SilentKinds) {
    for (Matrix *m : {theNullMat(), theCompleteMat(), theRng0Mat(), newHashMat(1)})
        EXPECT_EQ(shown(m), Lines{});
    EXPECT_EQ(shown(theEmptyMat()), Lines{"   []"});
    EXPECT_EQ(shown(theDneMat()), Lines{"   DNE"});
}

TEST_F(Display, DepthIsLimitedAndTheLevelComesBack) {
    Matrix *list = newRealScalarMat(1);
    for (int k = 0; k < 1002; k++) {
        Matrix *outer = newListMat(1);
        addListEntry(outer, list);
        list = outer;
    }
    EXPECT_ABORT(dispMat(list));
    EXPECT_EQ(shown(newRealScalarMat(1)), Lines{"    1"});
}

TEST_F(Display, ScreenModeShowsNothing) {
    reset_cwmode(2);
    EXPECT_EQ(dispMat(newRealScalarMat(1)), theNullMat());
    reset_cwmode(0);
}

TEST_F(Display, SettingsAreReadBack) {
    setDispFormat('e');
    setDispNdigits(9);
    EXPECT_EQ(getDispFormat(), 'e');
    EXPECT_EQ(getDispNdigits(), 9u);
    EXPECT_EQ(getDispFormatScalar(), 'g');
    EXPECT_EQ(getDispNdigitsScalar(), 6u);
    initDisplayFormat();
    EXPECT_EQ(getDispNdigits(), 6u);
}

}  // namespace
}  // namespace vesko
