#include <libteskTools/JSON.h>

#include <gmock/gmock.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <random>

#include "platform/JSONTree.h"

namespace {

using vxtest::Adopt;
using vxtest::Parse;
using vxtest::Print;
using vxtest::Tree;

TEST(JSONPrintTest, IndentedTextHasOneItemPerLine) {
    const Tree theTree =
        Parse("{\"a\":[1,\"x\",[],{}],\"b\":{\"c\":null,\"d\":[true,false]},\"e\":-1.5}");
    EXPECT_EQ(Adopt(vxJSON_Print(theTree.get())),
              "{\n"
              "    \"a\": [\n"
              "        1,\n"
              "        \"x\",\n"
              "        [],\n"
              "        {}\n"
              "    ],\n"
              "    \"b\": {\n"
              "        \"c\": null,\n"
              "        \"d\": [\n"
              "            true,\n"
              "            false\n"
              "        ]\n"
              "    },\n"
              "    \"e\": -1.5\n"
              "}");
}

TEST(JSONPrintTest, ASubtreeIsPrintedWithoutItsName) {
    const Tree theTree = Parse("{\"a\":{\"b\":[1,2]},\"c\":3}");
    EXPECT_EQ(Print(vxJSON_GetObjectItem(theTree.get(), "a")), "{\"b\":[1,2]}");
    EXPECT_EQ(Adopt(vxJSON_Print(vxJSON_GetObjectItem(theTree.get(), "c"))), "3");
}

TEST(JSONPrintTest, NothingHasNoText) {
    EXPECT_EQ(vxJSON_Print(nullptr), nullptr);
    EXPECT_EQ(vxJSON_PrintUnformatted(nullptr), nullptr);
    EXPECT_EQ(vxJSON_GetRawValue(nullptr), nullptr);
}

TEST(JSONPrintTest, OnlyWhatMustBeIsEscaped) {
    const Tree theTree(vxJSON_CreateString("\"\\/\b\f\n\r\t\x01\x1F\x7F<>&'\xC3\xA9"));
    EXPECT_EQ(Print(theTree), "\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\x7F<>&'\xC3\xA9\"");
}

TEST(JSONPrintTest, AllLengthsOfTextAreEscapedAnywhere) {
    for (size_t theLength = 1; theLength < 40; ++theLength) {
        for (size_t i = 0; i < theLength; ++i) {
            std::string theText(theLength, 'x');
            theText[i] = '"';
            std::string theExpected(theLength, 'x');
            theExpected.replace(i, 1, "\\\"");
            const Tree theTree(vxJSON_CreateString(theText.c_str()));
            ASSERT_EQ(Print(theTree), "\"" + theExpected + "\"");
        }
    }
}

TEST(JSONPrintTest, MalformedBytesAreKeptInTheTreeAndDroppedFromText) {
    const Tree theTree(vxJSON_CreateObject());
    vxJSON_AddItemToObject(theTree.get(), "n\xFF", vxJSON_CreateString("a\xC3(\xE2\x82"));
    EXPECT_STREQ(vxJSON_GetValueString(vxJSON_GetObjectItem(theTree.get(), "n\xFF")),
                 "a\xC3(\xE2\x82");
    EXPECT_EQ(Print(theTree), "{\"n\":\"a(\"}");
    const Tree theClone(vxJSON_Clone(theTree.get()));
    EXPECT_EQ(Print(theClone), "{\"n\":\"a(\"}");
}

TEST(JSONPrintTest, NumbersAreLaidOutAsTheHeaderSays) {
    struct Row {
        double mValue;
        const char* mText;
    };
    const Row kRows[] = {
        {0.0, "0"},
        {-0.0, "-0.0"},
        {1.0, "1"},
        {-2.0, "-2"},
        {0.1, "0.1"},
        {100000.0, "100000"},
        {123.456, "123.456"},
        {1.0 / 3, "0.3333333333333333"},
        {0.000001, "0.000001"},
        {0.00000123, "0.00000123"},
        {0.0000001, "1e-7"},
        {1.5e-7, "1.5e-7"},
        {9007199254740993.0, "9007199254740992"},
        {1e20, "1e+20"},
        {123456789012345680000.0, "1.2345678901234568e+20"},
        {1.25e21, "1.25e+21"},
        {5e-324, "5e-324"},
        {2.2250738585072014e-308, "2.2250738585072014e-308"},
        {1.7976931348623157e308, "1.7976931348623157e+308"},
        {18446744073709551616.0, "1.8446744073709552e+19"},
        {18446744073709549568.0, "18446744073709549568"},
        {9223372036854775808.0, "9223372036854775808"},
        {std::numeric_limits<double>::infinity(), "null"},
        {-std::numeric_limits<double>::infinity(), "null"},
        {std::numeric_limits<double>::quiet_NaN(), "null"},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        const Tree theTree(vxJSON_CreateDouble(theRow.mValue));
        EXPECT_EQ(Print(theTree), theRow.mText);
    }
}

TEST(JSONPrintTest, IntegersArePrintedInFull) {
    uint64_t thePower = 1;
    for (int theDigits = 1; theDigits <= 19; ++theDigits, thePower *= 10) {
        const std::string theZeros(static_cast<size_t>(theDigits - 1), '0');
        const Tree theTree(vxJSON_CreateUInt64(thePower));
        EXPECT_EQ(Print(theTree), "1" + theZeros);
        const Tree theNines(vxJSON_CreateUInt64(thePower * 10 - 1));
        if (theDigits < 19) {
            EXPECT_EQ(Print(theNines), std::string(static_cast<size_t>(theDigits), '9'));
        }
    }
    EXPECT_EQ(Print(Tree(vxJSON_CreateUInt64(UINT64_MAX))), "18446744073709551615");
    EXPECT_EQ(Print(Tree(vxJSON_CreateInt64(INT64_MIN))), "-9223372036854775808");
    EXPECT_EQ(Print(Tree(vxJSON_CreateInt64(INT64_MAX))), "9223372036854775807");
    EXPECT_EQ(Print(Tree(vxJSON_CreateInt64(0))), "0");
}

/// The significant digits of a number's text, without zeros at either end.
std::string Significant(const std::string& aText) {
    std::string theDigits;
    for (const char theChar : aText.substr(0, aText.find('e'))) {
        if (theChar >= '0' && theChar <= '9') {
            theDigits += theChar;
        }
    }
    theDigits.erase(0, theDigits.find_first_not_of('0'));
    theDigits.erase(theDigits.find_last_not_of('0') + 1);
    return theDigits;
}

double RandomDouble(std::mt19937_64& aRandom, int anIndex) {
    uint64_t theBits = aRandom();
    if (anIndex % 3 == 0) {
        // What documents hold: a few digits on both sides of the point.
        return static_cast<double>(static_cast<int64_t>(theBits % 2000000)) / 1000.0;
    }
    if (anIndex % 3 == 1) {
        // Magnitudes for which the table of powers is enough.
        theBits = (theBits & 0x800FFFFFFFFFFFFFu) | ((1023 - 130 + aRandom() % 260) << 52);
    }
    double theValue;
    memcpy(&theValue, &theBits, sizeof(theValue));
    return std::isfinite(theValue) ? theValue : 0.5;
}

TEST(JSONPrintTest, DoublesHaveTheFewestDigitsAndReadBackEqual) {
    std::mt19937_64 theRandom(20240302);
    for (int i = 0; i < 100000; ++i) {
        const double theValue = RandomDouble(theRandom, i);
        const Tree theTree(vxJSON_CreateDouble(theValue));
        const std::string theText = Print(theTree);
        SCOPED_TRACE(theText);
        const Tree theCopy = Parse(theText);
        ASSERT_EQ(vxJSON_Compare(theTree.get(), theCopy.get()), 0);
        if (std::fabs(theValue) < 9007199254740992.0 || std::fabs(theValue) > 1.9e19) {
            char theBest[40];
            const auto theEnd = std::to_chars(theBest, theBest + sizeof(theBest), theValue,
                                              std::chars_format::scientific);
            ASSERT_EQ(Significant(theText), Significant(std::string(theBest, theEnd.ptr)));
        }
    }
}

TEST(JSONPrintTest, RawValuesAreTheBareText) {
    const Tree theTree = Parse("[\"a\\\"b\",5,-5,0.5,true,false,null,[1,{\"a\":2}],{}]");
    const char* const kTexts[] = {"a\"b",          "5", "-5", "0.5", "true", "false", "null",
                                  "[1,{\"a\":2}]", "{}"};
    for (uint32_t i = 0; i < std::size(kTexts); ++i) {
        EXPECT_EQ(Adopt(vxJSON_GetRawValue(vxJSON_GetArrayItem(theTree.get(), i))), kTexts[i]);
    }
}

}  // namespace
