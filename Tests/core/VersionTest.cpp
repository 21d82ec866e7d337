#include "vx/Version.h"

#include <gmock/gmock.h>

#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;

TEST(VersionTest, ReadsUpToThreeParts) {
    struct Case {
        const char* mText;
        uint32_t mMajor;
        uint32_t mMinor;
        uint32_t mRevision;
    };
    constexpr Case kCases[] = {
        {"1.2.3", 1, 2, 3},
        {"7", 7, 0, 0},
        {"x.5", 0, 5, 0},
        {"", 0, 0, 0},
        {"1.2", 1, 2, 0},
        {"1.2.3.4", 1, 2, 3},
        {"1.2.3.", 1, 2, 3},
        {"1.2.3x", 1, 2, 0},
        {"1..3", 1, 0, 3},
        {"...", 0, 0, 0},
        {" 1.2.3", 0, 2, 3},
        {"-1.2.3", 0, 2, 3},
        {"4294967295.4294967296.1", 4294967295u, 0, 1},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        const vxVersion theVersion(theCase.mText);
        EXPECT_EQ(theVersion.mMajor, theCase.mMajor);
        EXPECT_EQ(theVersion.mMinor, theCase.mMinor);
        EXPECT_EQ(theVersion.mRevision, theCase.mRevision);
    }
}

TEST(VersionTest, CopiesTheThreeParts) {
    const vxVersion theVersion("1.2.3");
    vxVersion theCopy(theVersion);
    EXPECT_STREQ(theCopy.ToString(3), "1.2.3");
    theCopy = vxVersion("4.5.6");
    EXPECT_STREQ(theCopy.ToString(3), "4.5.6");
    EXPECT_STREQ(theVersion.ToString(3), "1.2.3");
}

TEST(VersionTest, GreaterComparesTheFirstPartThatDiffers) {
    const vxVersion theVersion("1.2.3");
    EXPECT_TRUE(theVersion.IsGreater(1, 2, 2));
    EXPECT_FALSE(theVersion.IsGreater(1, 2, 3));
    EXPECT_FALSE(theVersion.IsGreater(1, 2, 4));
    EXPECT_TRUE(theVersion.IsGreater(1, 1, 9));
    EXPECT_FALSE(theVersion.IsGreater(1, 3, 0));
    EXPECT_TRUE(theVersion.IsGreater(0, 9, 9));
    EXPECT_FALSE(theVersion.IsGreater(2, 0, 0));
}

TEST(VersionTest, GreaterOrEqualComparesPartByPart) {
    const vxVersion theVersion("1.2.3");
    EXPECT_TRUE(theVersion.IsGreaterOrEqual(1, 2, 3));
    EXPECT_TRUE(theVersion.IsGreaterOrEqual(0, 0, 0));
    EXPECT_TRUE(theVersion.IsGreaterOrEqual(1, 2, 2));
    EXPECT_FALSE(theVersion.IsGreaterOrEqual(1, 2, 4));
    EXPECT_FALSE(theVersion.IsGreaterOrEqual(1, 3, 0));
    EXPECT_FALSE(theVersion.IsGreaterOrEqual(2, 0, 0));
    EXPECT_FALSE(vxVersion("2.0.0").IsGreaterOrEqual(1, 5, 3));
    EXPECT_FALSE(vxVersion("2.6.0").IsGreaterOrEqual(1, 5, 3));
}

TEST(VersionTest, WritesAsManyPartsAsAsked) {
    vxtest::Reports theReports;
    const vxVersion theVersion("4294967295.0.3");
    EXPECT_STREQ(theVersion.ToString(1), "4294967295");
    EXPECT_STREQ(theVersion.ToString(2), "4294967295.0");
    EXPECT_STREQ(theVersion.ToString(3), "4294967295.0.3");
    EXPECT_THAT(theReports.Assertions(), IsEmpty());

    EXPECT_STREQ(theVersion.ToString(0), "");
    EXPECT_STREQ(theVersion.ToString(4), "");
    EXPECT_STREQ(theVersion.ToString(-1), "");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("(aMaxPart <= 3) && (aMaxPart > 0)",
                                                     "(aMaxPart <= 3) && (aMaxPart > 0)",
                                                     "(aMaxPart <= 3) && (aMaxPart > 0)"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile,
                testing::EndsWith("Libs/Internal/vx/core/Version.cpp"));
}
