#include <libteskTools/JSON.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cstring>
#include <random>

#include "platform/JSONTree.h"

namespace {

using vxtest::Parse;
using vxtest::Print;
using vxtest::Tree;
using namespace std::string_literals;

std::string Nested(size_t aLevels) {
    return std::string(aLevels, '[') + std::string(aLevels, ']');
}

TEST(JSONParseTest, EveryKindOfValueIsRead) {
    struct Row {
        const char* mText;
        unsigned mKind;
        const char* mRaw;
    };
    constexpr Row kRows[] = {
        {"null", kvxJSON_NULL, "null"},
        {"true", kvxJSON_True, "true"},
        {"false", kvxJSON_False, "false"},
        {"0", kvxJSON_Number, "0"},
        {"18446744073709551615", kvxJSON_Number, "18446744073709551615"},
        {"18446744073709551616", kvxJSON_Double, "1.8446744073709552e+19"},
        {"-0", kvxJSON_SignedNumber, "0"},
        {"-1", kvxJSON_SignedNumber, "-1"},
        {"-9223372036854775808", kvxJSON_SignedNumber, "-9223372036854775808"},
        {"-9223372036854775809", kvxJSON_Double, "-9223372036854775808"},
        {"100000000000000000000000", kvxJSON_Double, "1e+23"},
        {"1.5", kvxJSON_Double, "1.5"},
        {"1.0", kvxJSON_Double, "1"},
        {"-0.0", kvxJSON_Double, "-0.0"},
        {"1e2", kvxJSON_Double, "100"},
        {"1E+2", kvxJSON_Double, "100"},
        {"2.5e-3", kvxJSON_Double, "0.0025"},
        {"1e-400", kvxJSON_Double, "0"},
        {"-1e-400", kvxJSON_Double, "-0.0"},
        {"0e999999999999", kvxJSON_Double, "0"},
        {"0.00000000000000000000000000000000001e35", kvxJSON_Double, "1"},
        {"\"\"", kvxJSON_String, ""},
        {"\"a\"", kvxJSON_String, "a"},
        {"[]", kvxJSON_Array, "[]"},
        {"{}", kvxJSON_Object, "{}"},
        {" \t\r\n[ 1 , 2 ]\n", kvxJSON_Array, "[1,2]"},
        {"{ \"a\" : 1 }", kvxJSON_Object, "{\"a\":1}"},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        const Tree theTree = Parse(theRow.mText);
        EXPECT_NE(vxJSON_Is(theTree.get(), theRow.mKind), 0);
        EXPECT_EQ(vxJSON_Is(theTree.get(), ~theRow.mKind), 0);
        EXPECT_EQ(vxtest::Adopt(vxJSON_GetRawValue(theTree.get())), theRow.mRaw);
    }
}

TEST(JSONParseTest, EscapesAreDecoded) {
    struct Row {
        const char* mText;
        std::string mValue;
    };
    const Row kRows[] = {
        {"\"\\\"\\\\\\/\\b\\f\\n\\r\\t\"", "\"\\/\b\f\n\r\t"},
        {"\"\\u0041\\u00e9\\u00C9\"", "A\xC3\xA9\xC3\x89"},
        {"\"\\u07ff\\u0800\\uffff\"", "\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {"\"\\ud83d\\ude00\"", "\xF0\x9F\x98\x80"},
        {"\"\\uD800\\uDC00\\uDBFF\\uDFFF\"", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        {"\"0123456789abcdef\\n0123456789abcdef\"", "0123456789abcdef\n0123456789abcdef"},
        {"\"\x7F\"", "\x7F"},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        const Tree theTree = Parse(theRow.mText);
        ASSERT_NE(theTree, nullptr);
        EXPECT_EQ(vxJSON_GetValueString(theTree.get()), theRow.mValue);
    }
}

TEST(JSONParseTest, TheErrorIsTheFirstByteThatCannotFollow) {
    struct Row {
        std::string mText;
        size_t mPosition;
    };
    const Row kRows[] = {
        {"", 0},
        {"  ", 2},
        {"x", 0},
        {"trux", 3},
        {"tru", 3},
        {"nulll", 4},
        {"True", 0},
        {"1 2", 2},
        {"01", 1},
        {"-", 1},
        {"-a", 1},
        {"+1", 0},
        {"1.", 2},
        {"1.e5", 2},
        {".5", 0},
        {"1e", 2},
        {"1e+", 3},
        {"1e5.", 3},
        {"0x10", 1},
        {"1e400", 0},
        {"[-1e400]", 1},
        {"NaN", 0},
        {"[1,]", 3},
        {"[,1]", 1},
        {"[1 2]", 3},
        {"[1", 2},
        {"[1}", 2},
        {"]", 0},
        {"{", 1},
        {"{\"a\"", 4},
        {"{\"a\" 1}", 5},
        {"{\"a\":", 5},
        {"{\"a\":}", 5},
        {"{\"a\":1,}", 7},
        {"{a:1}", 1},
        {"{'a':1}", 1},
        {"{1:1}", 1},
        {"{\"a\":1]", 6},
        {"[1]]", 3},
        {"\"", 1},
        {"\"abc", 4},
        {"\"a\nb\"", 2},
        {"\"a\x01\"", 2},
        {"\"\\", 2},
        {"\"\\x\"", 2},
        {"\"\\u12G4\"", 5},
        {"\"\\u12", 5},
        {"\"ab\\uDC00\"", 3},
        {"\"ab\\uD800\"", 3},
        {"\"ab\\uD800\\n\"", 3},
        {"\"ab\\uD800\\u0041\"", 3},
        {"\"a\xFF\"", 2},
        {"\"a\x80\"", 2},
        {"\"\xC0\x80\"", 1},
        {"\"\xC3\"", 1},
        {"\"\xE0\x80\x80\"", 1},
        {"\"\xED\xA0\x80\"", 1},
        {"\"\xF0\x80\x80\x80\"", 1},
        {"\"\xF4\x90\x80\x80\"", 1},
        {"\"\xF5\x80\x80\x80\"", 1},
        {"\"\xE2\x82", 1},
        {"\xEF\xBB\xBF[]", 0},
        {"[1]//", 3},
        {"[1\x0B]", 2},
        {"[1"s + '\0' + "]", 2},
        {"\"a"s + '\0' + "\"", 2},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        const char* thePosition = nullptr;
        EXPECT_EQ(vxJSON_ParseSize(theRow.mText.data(), theRow.mText.size(), &thePosition),
                  nullptr);
        EXPECT_EQ(thePosition - theRow.mText.data(), static_cast<ptrdiff_t>(theRow.mPosition));
    }
}

TEST(JSONParseTest, ThePositionIsLeftAloneOnSuccessAndMayBeNull) {
    const char* thePosition = "untouched";
    const Tree theTree(vxJSON_Parse("[1]", &thePosition));
    EXPECT_STREQ(thePosition, "untouched");
    EXPECT_EQ(vxJSON_Parse("[", nullptr), nullptr);
    EXPECT_EQ(vxJSON_Parse(nullptr, &thePosition), nullptr);
    EXPECT_STREQ(thePosition, "");
}

TEST(JSONParseTest, AThousandLevelsAreReadAndOneMoreIsRefusedAtItsBracket) {
    EXPECT_NE(Parse(Nested(1000)), nullptr);
    const std::string theText = Nested(1001);
    const char* thePosition = nullptr;
    EXPECT_EQ(vxJSON_Parse(theText.c_str(), &thePosition), nullptr);
    EXPECT_EQ(thePosition - theText.c_str(), 1000);
}

TEST(JSONParseTest, ManyOpenBracketsAreRefusedAtOnce) {
    const std::string theText(1000000, '[');
    const char* thePosition = nullptr;
    EXPECT_EQ(vxJSON_Parse(theText.c_str(), &thePosition), nullptr);
    EXPECT_EQ(thePosition - theText.c_str(), 1000);
}

TEST(JSONParseTest, MembersKeepOrderAndDuplicates) {
    const Tree theTree = Parse("{\"b\":1,\"a\":2,\"b\":3,\"\":4}");
    EXPECT_EQ(Print(theTree), "{\"b\":1,\"a\":2,\"b\":3,\"\":4}");
    EXPECT_EQ(Print(vxJSON_GetObjectItem(theTree.get(), "b")), "1");
    EXPECT_EQ(Print(vxJSON_GetObjectItem(theTree.get(), "")), "4");
}

TEST(JSONParseTest, NulInsideTextIsKeptAndHiddenFromReaders) {
    const Tree theTree = Parse("{\"a\\u0000b\":\"x\\u0000y\"}");
    EXPECT_EQ(Print(theTree), "{\"a\\u0000b\":\"x\\u0000y\"}");
    EXPECT_EQ(vxJSON_GetObjectItem(theTree.get(), "a"), nullptr);
    const vxJSON_t* theMember = vxJSON_GetArrayItem(theTree.get(), 0);
    EXPECT_STREQ(vxJSON_GetName(theMember), "a");
    EXPECT_STREQ(vxJSON_GetValueString(theMember), "x");
}

TEST(JSONParseTest, AllLengthsOfTextCrossTheBlocksOfTheScanner) {
    for (size_t theLength = 0; theLength < 70; ++theLength) {
        for (const std::string& theEnd : {""s, "\\n"s, "\xC3\xA9"s, "\\u20ac"s}) {
            SCOPED_TRACE(testing::Message() << theLength << theEnd);
            const std::string theString = std::string(theLength, 'x') + theEnd;
            const Tree theTree = Parse("[\"" + theString + "\",{\"" + theString + "\":\"z\"}]");
            ASSERT_NE(theTree, nullptr);
            std::string theValue(theLength, 'x');
            theValue += theEnd == "\\n" ? "\n" : theEnd == "\\u20ac" ? "\xE2\x82\xAC" : theEnd;
            EXPECT_EQ(vxJSON_GetValueString(vxJSON_GetArrayItem(theTree.get(), 0)), theValue);
            const vxJSON_t* theObject = vxJSON_GetArrayItem(theTree.get(), 1);
            EXPECT_NE(vxJSON_GetObjectItem(theObject, theValue.c_str()), nullptr);
        }
    }
}

TEST(JSONParseTest, LargeTextsAndContainersAreRead) {
    const std::string theLong(100000, 'y');
    const Tree theString = Parse("{\"" + theLong + "\":[\"" + theLong + "\"]}");
    EXPECT_EQ(Print(theString), "{\"" + theLong + "\":[\"" + theLong + "\"]}");

    std::string theText = "[0";
    for (int i = 1; i < 70000; ++i) {
        theText += "," + std::to_string(i);
    }
    theText += "]";
    const Tree theArray = Parse(theText);
    EXPECT_EQ(vxJSON_GetArraySize(theArray.get()), 70000u);
    EXPECT_EQ(Print(vxJSON_GetArrayItem(theArray.get(), 65536)), "65536");
    EXPECT_EQ(Print(theArray), theText);
}

// ---- Beside another reader

nlohmann::json ReadByOther(const std::string& aText) {
    return nlohmann::json::parse(aText.begin(), aText.end(), nullptr, false);
}

bool SameValue(const vxJSON_t* aNode, const nlohmann::json& aOther) {
    uint64_t theUnsigned = 0;
    int64_t theSigned = 0;
    switch (aOther.type()) {
        case nlohmann::json::value_t::null:
            return vxJSON_Is(aNode, kvxJSON_NULL) != 0;
        case nlohmann::json::value_t::boolean:
            return vxJSON_Is(aNode, aOther.get<bool>() ? kvxJSON_True : kvxJSON_False) != 0;
        case nlohmann::json::value_t::string:
            return vxJSON_Is(aNode, kvxJSON_String) != 0 &&
                   aOther.get<std::string>().c_str() == std::string(vxJSON_GetValueString(aNode));
        case nlohmann::json::value_t::number_unsigned:
            return vxJSON_CheckUInt(aNode, UINT64_MAX, &theUnsigned) &&
                   theUnsigned == aOther.get<uint64_t>();
        case nlohmann::json::value_t::number_integer:
            return vxJSON_CheckInt(aNode, INT64_MIN, INT64_MAX, &theSigned) &&
                   theSigned == aOther.get<int64_t>();
        case nlohmann::json::value_t::number_float:
            return vxJSON_Is(aNode, kvxJSON_Double) != 0 &&
                   vxJSON_GetValueDouble(aNode) == aOther.get<double>();
        default:
            break;
    }
    // The other keeps one of several members of a name.
    if (aOther.is_array() && vxJSON_GetArraySize(aNode) != aOther.size()) {
        return false;
    }
    if (aOther.is_array()) {
        for (uint32_t i = 0; i < aOther.size(); ++i) {
            if (!SameValue(vxJSON_GetArrayItem(aNode, i), aOther[i])) {
                return false;
            }
        }
    }
    return vxJSON_Is(aNode, aOther.is_array() ? kvxJSON_Array : kvxJSON_Object) != 0;
}

TEST(JSONParseTest, AcceptsAndReadsWhatAnotherReaderDoes) {
    const std::string kTexts[] = {
        "{\"a\":[1,2.5,-3e2,\"x\\u00e9\\n\",true,false,null],\"b\":{\"c\":{}},\"d\":[]}",
        "[0,-0,0.1,1e-5,123456789012345678,-9223372036854775808,18446744073709551615,1E5]",
        "[\"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\",\"\\ud83d\\ude00\",\"\\\"\\\\\\/\"]",
        " { \"k\" : [ { \"l\" : [ [ ] ] } ] } ",
    };
    constexpr char kBytes[] = "{}[]:,\"\\/ \t\nabeflnrstu0123456789.+-E\x80\xC3\xE2\xFF\x01";
    std::mt19937 theRandom(20240229);
    int theAccepted = 0;
    for (int i = 0; i < 40000; ++i) {
        std::string theText = kTexts[theRandom() % std::size(kTexts)];
        for (size_t theEdits = theRandom() % 4; theEdits > 0; --theEdits) {
            const size_t thePosition = theRandom() % theText.size();
            const char theByte = kBytes[theRandom() % (sizeof(kBytes) - 1)];
            switch (theRandom() % 3) {
                case 0:
                    theText[thePosition] = theByte;
                    break;
                case 1:
                    theText.insert(thePosition, 1, theByte);
                    break;
                default:
                    theText.erase(thePosition, 1);
                    break;
            }
        }
        SCOPED_TRACE(theText);
        const Tree theTree = Parse(theText);
        const nlohmann::json theOther = ReadByOther(theText);
        ASSERT_EQ(theTree != nullptr, !theOther.is_discarded());
        if (theTree != nullptr) {
            ++theAccepted;
            ASSERT_TRUE(SameValue(theTree.get(), theOther));
        }
    }
    EXPECT_GT(theAccepted, 10000);
}

TEST(JSONParseTest, NumbersAreTheNearestDoubles) {
    std::mt19937_64 theRandom(20240301);
    for (int i = 0; i < 100000; ++i) {
        const double theScale = std::ldexp(1.0, static_cast<int>(theRandom() % 2100) - 1060);
        const double theValue = static_cast<double>(theRandom()) * theScale;
        char theText[80];
        const int thePrecision = static_cast<int>(theRandom() % 30);
        snprintf(theText, sizeof(theText), "%.*e", thePrecision, theValue);
        const double theExpected = strtod(theText, nullptr);
        const Tree theTree = Parse(theText);
        SCOPED_TRACE(theText);
        ASSERT_EQ(theTree != nullptr, std::isfinite(theExpected));
        if (theTree != nullptr) {
            ASSERT_EQ(vxJSON_GetValueDouble(theTree.get()), theExpected);
        }
    }
}

TEST(JSONParseTest, HardRoundingCasesAreExact) {
    constexpr const char* kTexts[] = {
        "9007199254740993.0",
        "9007199254740992.999999999999999999999999",
        "2.2250738585072011e-308",
        "2.2250738585072014e-308",
        "1.7976931348623157e308",
        "4.9406564584124654e-324",
        "2.4703282292062327e-324",
        "6.631236846766476e-316",
        "5e-324",
        "1448997445238699.0",
        "8.5e22",
        "1e23",
        "6929495644600919.5",
        "3.2378839133029012895883524125015321748630094e-319",
        "0.500000000000000166533453693773481063544750213623046875",
        "1090544144181609348671888949248.0",
    };
    for (const char* theText : kTexts) {
        SCOPED_TRACE(theText);
        const Tree theTree = Parse(theText);
        EXPECT_EQ(vxJSON_GetValueDouble(theTree.get()), strtod(theText, nullptr));
    }
}

}  // namespace
