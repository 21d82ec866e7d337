#include "vx/Rect.h"

#include <array>
#include <climits>

#include <gmock/gmock.h>

#include "support/Reports.h"

using testing::ElementsAre;

namespace {

using Edges = std::array<int, 4>;  // left, top, right, bottom

vxRect RectOf(const Edges& anEdges) {
    return vxRect(anEdges[0], anEdges[1], anEdges[2], anEdges[3]);
}

Edges EdgesOf(const vxRect& aRect) {
    return {aRect.Left(), aRect.Top(), aRect.Right(), aRect.Bottom()};
}

struct Case {
    Edges mRect;
    Edges mOther;
    Edges mResult;
};

}  // namespace

TEST(RectTest, NewRectangleIsEmptyAtTheOrigin) {
    EXPECT_EQ(EdgesOf(vxRect()), (Edges{0, 0, 0, 0}));
    EXPECT_TRUE(vxRect().IsEmpty());
    EXPECT_EQ(vxPoint().x, 0);
    EXPECT_EQ(vxPoint(3, 4).x, 3);
    EXPECT_EQ(vxPoint(3, 4).y, 4);
}

TEST(RectTest, EdgesAndSizes) {
    const vxRect theRect(1, 2, 11, 22);

    EXPECT_EQ(theRect.ul.x, 1);
    EXPECT_EQ(theRect.ul.y, 2);
    EXPECT_EQ(theRect.lr.x, 11);
    EXPECT_EQ(theRect.lr.y, 22);
    EXPECT_EQ(EdgesOf(theRect), (Edges{1, 2, 11, 22}));
    EXPECT_EQ(theRect.Width(), 10);
    EXPECT_EQ(theRect.Height(), 20);
}

TEST(RectTest, SizesOfExtremeRectanglesAreLimited) {
    EXPECT_EQ(vxRect(INT_MIN, 0, INT_MAX, 0).Width(), INT_MAX);
    EXPECT_EQ(vxRect(INT_MAX, 0, INT_MIN, 0).Width(), INT_MIN);
    EXPECT_EQ(vxRect(0, INT_MIN, 0, INT_MAX).Height(), INT_MAX);
    EXPECT_EQ(vxRect(0, -1, 0, INT_MAX - 1).Height(), INT_MAX);
    EXPECT_EQ(vxRect(5, 0, 2, 0).Width(), -3);
}

TEST(RectTest, OnlyEqualCornersAreEmpty) {
    EXPECT_TRUE(vxRect(5, 6, 5, 6).IsEmpty());
    EXPECT_FALSE(vxRect(5, 6, 5, 7).IsEmpty());
    EXPECT_FALSE(vxRect(5, 6, 6, 6).IsEmpty());
}

TEST(RectTest, EmptyMovesBothCornersToTheOrigin) {
    vxRect theRect(1, 2, 3, 4);

    theRect.Empty();

    EXPECT_EQ(EdgesOf(theRect), (Edges{0, 0, 0, 0}));
}

TEST(RectTest, IntersectKeepsTheCommonAreaOrEmpties) {
    struct IntersectCase {
        Case mCase;
        bool mfCommon;
    };
    constexpr IntersectCase kCases[] = {
        {{{0, 0, 10, 10}, {5, 5, 20, 20}, {5, 5, 10, 10}}, true},
        {{{0, 0, 10, 10}, {2, 3, 4, 5}, {2, 3, 4, 5}}, true},
        {{{2, 3, 4, 5}, {0, 0, 10, 10}, {2, 3, 4, 5}}, true},
        {{{0, 0, 10, 10}, {9, 9, 20, 20}, {9, 9, 10, 10}}, true},
        {{{0, 0, 10, 10}, {10, 0, 20, 10}, {0, 0, 0, 0}}, false},
        {{{0, 0, 10, 10}, {0, 10, 10, 20}, {0, 0, 0, 0}}, false},
        {{{0, 0, 10, 10}, {50, 50, 60, 60}, {0, 0, 0, 0}}, false},
        {{{1, 1, 1, 9}, {0, 0, 10, 10}, {0, 0, 0, 0}}, false},
        {{{INT_MIN, INT_MIN, INT_MAX, INT_MAX}, {-1, -1, 1, 1}, {-1, -1, 1, 1}}, true},
        {{{INT_MIN, 0, INT_MIN + 1, 1}, {INT_MAX - 1, 0, INT_MAX, 1}, {0, 0, 0, 0}}, false},
    };
    for (const IntersectCase& theCase : kCases) {
        SCOPED_TRACE(testing::PrintToString(theCase.mCase.mRect) + " " +
                     testing::PrintToString(theCase.mCase.mOther));
        vxRect theRect = RectOf(theCase.mCase.mRect);
        EXPECT_EQ(theRect.Intersect(RectOf(theCase.mCase.mOther)), theCase.mfCommon);
        EXPECT_EQ(EdgesOf(theRect), theCase.mCase.mResult);
    }
}

TEST(RectTest, UnionHoldsBothAndAnEmptyOneBecomesACopy) {
    constexpr Case kCases[] = {
        {{0, 0, 10, 10}, {5, 5, 20, 20}, {0, 0, 20, 20}},
        {{5, 6, 7, 8}, {-1, 7, 6, 7}, {-1, 6, 7, 8}},
        {{3, 3, 3, 3}, {5, 5, 6, 6}, {5, 5, 6, 6}},
        {{5, 5, 6, 6}, {0, 0, 0, 0}, {0, 0, 6, 6}},  // an empty other counts
        {{3, 3, 3, 4}, {5, 5, 6, 6}, {3, 3, 6, 6}},  // no width, but not empty
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(testing::PrintToString(theCase.mRect));
        vxRect theRect = RectOf(theCase.mRect);
        theRect.Union(RectOf(theCase.mOther));
        EXPECT_EQ(EdgesOf(theRect), theCase.mResult);
    }
}

TEST(RectTest, SubtractRemovesOnlyBandsThatReachAcross) {
    constexpr Case kCases[] = {
        {{0, 0, 100, 50}, {0, -5, 100, 5}, {0, 5, 100, 50}},
        {{0, 0, 100, 50}, {0, 0, 100, 5}, {0, 0, 100, 0}},  // top exactly on the top edge
        {{0, 0, 100, 50}, {0, 45, 100, 60}, {0, 0, 100, 45}},
        {{0, 0, 100, 50}, {0, 10, 100, 20}, {0, 0, 100, 10}},   // what is below is lost
        {{0, 0, 100, 50}, {-9, 50, 109, 60}, {0, 0, 100, 50}},  // on the bottom edge
        {{0, 0, 100, 50}, {0, -5, 100, 0}, {0, 0, 100, 50}},    // ends on the top edge
        {{0, 0, 100, 50}, {0, -5, 100, 50}, {0, 50, 100, 50}},
        {{0, 0, 100, 50}, {0, 51, 100, 60}, {0, 0, 100, 50}},
        {{0, 0, 100, 50}, {1, -5, 100, 5}, {0, 0, 100, 50}},  // one pixel short of the width
        {{0, 0, 100, 50}, {0, -5, 99, 5}, {0, 0, 100, 50}},
        {{0, 0, 100, 50}, {-5, 0, 5, 50}, {5, 0, 100, 50}},
        {{0, 0, 100, 50}, {0, 0, 5, 50}, {0, 0, 0, 50}},  // left exactly on the left edge
        {{0, 0, 100, 50}, {95, 0, 110, 50}, {0, 0, 95, 50}},
        {{0, 0, 100, 50}, {-5, 0, 5, 49}, {0, 0, 100, 50}},     // one pixel short of the height
        {{0, 0, 100, 50}, {-1, -1, 101, 51}, {0, 0, 100, 50}},  // covers all
        {{INT_MIN, INT_MIN, INT_MAX, INT_MAX},
         {INT_MIN, 0, INT_MAX, INT_MAX},
         {INT_MIN, INT_MIN, INT_MAX, 0}},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(testing::PrintToString(theCase.mOther));
        vxRect theRect = RectOf(theCase.mRect);
        theRect.Subtract(RectOf(theCase.mOther));
        EXPECT_EQ(EdgesOf(theRect), theCase.mResult);
    }
}

TEST(RectTest, SubtractingItselfLeavesNoHeight) {
    vxRect theRect(1, 2, 3, 4);

    theRect.Subtract(theRect);

    EXPECT_EQ(EdgesOf(theRect), (Edges{1, 2, 3, 2}));
}

TEST(RectTest, LogsItsEdges) {
    vxtest::Reports theReports;

    vxRect(1, -2, 3, 4).Log(VXLOGLEVEL_DEBUG, 300);

    EXPECT_THAT(theReports.LogTexts(), ElementsAre("(1, -2)-(3, 4)\n"));
    EXPECT_EQ(theReports.Records()[0].mModule, 300);
}
