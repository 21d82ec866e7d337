#include "vx/Color.h"

#include <array>
#include <cstdlib>
#include <string>

#include <gmock/gmock.h>

namespace {

using Parts = std::array<unsigned, 3>;

Parts PartsOf(const vxRGBColor& aColor) {
    return {aColor.mRed, aColor.mGreen, aColor.mBlue};
}

Parts PartsOf(const vxHSVColor& aColor) {
    return {aColor.mHue, aColor.mSaturation, aColor.mValue};
}

std::string TextOf(const vxCSVStringList& aList) {
    return aList.GetString('\\').c_str();
}

vxHSVColor HSVOf(const Parts& aParts) {
    vxHSVColor theColor;
    theColor.mHue = static_cast<uint16_t>(aParts[0]);
    theColor.mSaturation = static_cast<uint16_t>(aParts[1]);
    theColor.mValue = static_cast<uint16_t>(aParts[2]);
    return theColor;
}

}  // namespace

TEST(ColorTest, NewColorsAreBlack) {
    EXPECT_EQ(PartsOf(vxRGBColor()), (Parts{0, 0, 0}));
    EXPECT_EQ(PartsOf(vxHSVColor()), (Parts{0, 0, 0}));
}

TEST(ColorTest, EightBitPartsAreScaledBy257) {
    vxRGBColor theColor(1, 128, 255);
    EXPECT_EQ(PartsOf(theColor), (Parts{257, 32896, 65535}));
    theColor.SetRed(2);
    theColor.SetGreen(3);
    theColor.SetBlue(4);
    EXPECT_EQ(PartsOf(theColor), (Parts{514, 771, 1028}));
    theColor.SetRGB(0, 1, 0);
    EXPECT_EQ(PartsOf(theColor), (Parts{0, 257, 0}));
}

TEST(ColorTest, DegreesAreScaledBy100) {
    vxHSVColor theColor(359, 1, 255);
    EXPECT_EQ(PartsOf(theColor), (Parts{35900, 257, 65535}));
    theColor.SetHue(1);
    theColor.SetSaturation(2);
    theColor.SetValue(3);
    EXPECT_EQ(PartsOf(theColor), (Parts{100, 514, 771}));
    theColor.SetHSV(0, 0, 1);
    EXPECT_EQ(PartsOf(theColor), (Parts{0, 0, 257}));
    EXPECT_EQ(vxHSVColor(360, 0, 0).mHue, 36000u);  // only text is brought into the circle
}

TEST(ColorTest, ReadsRedGreenAndBlueFromText) {
    struct Case {
        const char* mText;
        Parts mParts;
    };
    constexpr Case kCases[] = {
        {"255,128,0", {65535, 32896, 0}},
        {"256,4294967295,1", {65535, 65535, 257}},
        {"1", {257, 0, 0}},
        {"", {0, 0, 0}},
        {"x,2,-3", {0, 514, 0}},
        {"1,2,3,4", {257, 514, 771}},
        {"4294967296,,1", {0, 0, 257}},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        EXPECT_EQ(PartsOf(vxRGBColor(vxCSVStringList(theCase.mText))), theCase.mParts);
    }
}

TEST(ColorTest, ReadsHueSaturationAndValueFromText) {
    struct Case {
        const char* mText;
        Parts mParts;
    };
    constexpr Case kCases[] = {
        {"400,300,10", {4000, 65535, 2570}},
        {"359,255,255", {35900, 65535, 65535}},
        {"360,1,2", {0, 257, 514}},
        {"720,1,2", {0, 257, 514}},
        {"4294967295", {25500, 0, 0}},
        {"x,y,3", {0, 0, 771}},
        {"", {0, 0, 0}},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        EXPECT_EQ(PartsOf(vxHSVColor(vxCSVStringList(theCase.mText))), theCase.mParts);
    }
}

TEST(ColorTest, WritesTheTopEightBits) {
    vxRGBColor theColor(1, 128, 255);
    EXPECT_EQ(TextOf(theColor.ToCSVString()), "1,128,255");
    theColor.mRed = 511;
    theColor.mGreen = 255;
    EXPECT_EQ(TextOf(theColor.ToCSVString()), "1,0,255");

    EXPECT_EQ(TextOf(vxHSVColor(40, 255, 10).ToCSVString()), "40,255,10");
    EXPECT_EQ(TextOf(HSVOf({35999, 511, 65535}).ToCSVString()), "359,1,255");
    EXPECT_EQ(TextOf(HSVOf({65535, 0, 256}).ToCSVString()), "655,0,1");
}

TEST(ColorTest, EveryEightBitPartReadsBackFromItsText) {
    for (unsigned i = 0; i <= 255; ++i) {
        const uint8_t thePart = static_cast<uint8_t>(i);
        const vxRGBColor theColor(thePart, thePart, thePart);
        EXPECT_EQ(PartsOf(vxRGBColor(theColor.ToCSVString())), PartsOf(theColor));
    }
}

TEST(ColorTest, ConvertsToHueSaturationAndValue) {
    struct Case {
        vxRGBColor mColor;
        Parts mParts;
    };
    const Case theCases[] = {
        {{255, 0, 0}, {0, 65535, 65535}},       {{255, 255, 0}, {6000, 65535, 65535}},
        {{0, 255, 0}, {12000, 65535, 65535}},   {{0, 255, 255}, {18000, 65535, 65535}},
        {{0, 0, 255}, {24000, 65535, 65535}},   {{255, 0, 255}, {30000, 65535, 65535}},
        {{128, 128, 128}, {65535, 0, 32896}},   {{0, 0, 0}, {65535, 0, 0}},
        {{255, 255, 255}, {65535, 0, 65535}},   {{255, 128, 0}, {3012, 65535, 65535}},
        {{255, 0, 1}, {35976, 65535, 65535}},   {{200, 100, 100}, {0, 32768, 51400}},
        {{0, 255, 128}, {15012, 65535, 65535}}, {{128, 0, 255}, {27012, 65535, 65535}},
    };
    for (const Case& theCase : theCases) {
        SCOPED_TRACE(testing::PrintToString(PartsOf(theCase.mColor)));
        EXPECT_EQ(PartsOf(theCase.mColor.ToHSV()), theCase.mParts);
    }
}

TEST(ColorTest, HueJustBelowTheFullCircleRoundsUpToIt) {
    vxRGBColor theColor(255, 0, 0);
    theColor.mBlue = 6;
    EXPECT_EQ(PartsOf(theColor.ToHSV()), (Parts{35999, 65535, 65535}));
    theColor.mBlue = 5;
    EXPECT_EQ(PartsOf(theColor.ToHSV()), (Parts{36000, 65535, 65535}));
    EXPECT_EQ(PartsOf(theColor.ToHSV().ToRGB()), (Parts{65535, 0, 0}));
}

TEST(ColorTest, ConvertsToRedGreenAndBlue) {
    struct Case {
        Parts mHSV;
        Parts mRGB;
    };
    constexpr Case kCases[] = {
        {{0, 65535, 65535}, {65535, 0, 0}},         {{6000, 65535, 65535}, {65535, 65535, 0}},
        {{12000, 65535, 65535}, {0, 65535, 0}},     {{18000, 65535, 65535}, {0, 65535, 65535}},
        {{24000, 65535, 65535}, {0, 0, 65535}},     {{30000, 65535, 65535}, {65535, 0, 65535}},
        {{3000, 65535, 65535}, {65535, 32768, 0}},  {{9000, 65535, 65535}, {32768, 65535, 0}},
        {{15000, 65535, 65535}, {0, 65535, 32768}}, {{21000, 65535, 65535}, {0, 32768, 65535}},
        {{27000, 65535, 65535}, {32768, 0, 65535}}, {{33000, 65535, 65535}, {65535, 0, 32768}},
        {{35999, 65535, 65535}, {65535, 0, 11}},    {{36000, 65535, 65535}, {65535, 0, 0}},
        {{42000, 65535, 65535}, {65535, 65535, 0}}, {{65535, 0, 32896}, {32896, 32896, 32896}},
        {{65535, 65535, 65535}, {65535, 0, 0}},     {{1234, 65535, 0}, {0, 0, 0}},
        {{1234, 0, 65535}, {65535, 65535, 65535}},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(testing::PrintToString(theCase.mHSV));
        EXPECT_EQ(PartsOf(HSVOf(theCase.mHSV).ToRGB()), theCase.mRGB);
    }
}

TEST(ColorTest, TextHasTheTopEightBitsOfEachPart) {
    vxRGBColor theColor;
    theColor.mRed = 256;
    theColor.mGreen = 512;
    theColor.mBlue = 65280;
    EXPECT_STREQ(theColor.ToCSVString().GetString(0), "1,2,255");
    EXPECT_STREQ(HSVOf({35999, 256, 65280}).ToCSVString().GetString(0), "359,1,255");
}

// A hundredth of a degree is coarser than a step of a part.
TEST(ColorTest, ConvertingThereAndBackStaysWithinTheStepsOfTheHue) {
    for (unsigned i = 0; i < 65536; i += 37) {
        const vxRGBColor theColor(static_cast<uint8_t>(i), static_cast<uint8_t>(i / 7),
                                  static_cast<uint8_t>(i >> 8));
        const vxRGBColor theBack = theColor.ToHSV().ToRGB();
        for (size_t j = 0; j < 3; ++j) {
            const int theError =
                static_cast<int>(PartsOf(theBack)[j]) - static_cast<int>(PartsOf(theColor)[j]);
            ASSERT_LE(std::abs(theError), 6) << i;
        }
    }
}
