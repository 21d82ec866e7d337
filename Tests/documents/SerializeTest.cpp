#include <gmock/gmock.h>
#include <libteskTools/PropertyList.h>
#include <vx/Serialize.h>

#include <cstdlib>
#include <limits>
#include <string>

#include "support/ExactText.h"
#include "support/OwnedList.h"
#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;
using vxtest::OwnedList;

namespace {

/// Writes down what it is sent, one word per event, and stops at one of them if told to.
class Recorder : public vxISerialize {
public:
    int MapBegin() override { return Add("{"); }
    int MapKey(const char* aKey, bool afQuote) override {
        return Add((afQuote ? "bare-key=" : "key=") + std::string(aKey));
    }
    int MapEnd() override { return Add("}"); }
    int ArrayBegin() override { return Add("["); }
    int ArrayItemSeparator() override { return Add(","); }
    int ArrayEnd() override { return Add("]"); }
    int String(const char* aText, bool afQuote) override {
        return Add((afQuote ? "bare-string=" : "string=") + std::string(aText));
    }
    int String(const wchar_t* aText, bool) override {
        return Add("wide=" + std::to_string(wcslen(aText)));
    }
    int Boolean(bool aValue) override { return Add(aValue ? "true" : "false"); }
    int U32(uint32_t aValue) override { return Add("U32=" + std::to_string(aValue)); }
    int S32(int32_t aValue) override { return Add("S32=" + std::to_string(aValue)); }
    int U64(uint64_t aValue) override { return Add("U64=" + std::to_string(aValue)); }
    int S64(int64_t aValue) override { return Add("S64=" + std::to_string(aValue)); }
    int Float(double aValue) override { return Add("Float=" + std::to_string(aValue)); }
    int Null() override { return Add("null"); }

    std::string mEvents;
    int mStopAt = -1;  // number of the event that is refused, from 0
    int mCount = 0;

private:
    int Add(const std::string& anEvent) {
        mEvents += (mEvents.empty() ? "" : " ") + anEvent;
        return mCount++ == mStopAt ? 77 : 0;
    }
};

std::string Written(vxPropertyList* aList, bool afHuman = false) {
    vxJSONFormatter theFormatter;
    theFormatter.SetHuman(afHuman);
    EXPECT_EQ(vxPropertyListFormatter::Serialize(aList, theFormatter), 0);
    return theFormatter.Result().c_str();
}

std::string Escaped(const char* aText, bool afStrict = true) {
    vxJSONFormatter theFormatter;
    theFormatter.SetStrict(afStrict);
    EXPECT_EQ(theFormatter.String(aText, true), 0);
    return theFormatter.Result().c_str();
}

std::string Repeated(const char* aText, int aCount) {
    std::string theResult;
    for (int i = 0; i < aCount; ++i) {
        theResult += aText;
    }
    return theResult;
}

// Writing

TEST(SerializeTest, AListOfOneNumberIsOneLineWithATrailingComma) {
    const OwnedList theList;
    vxPropertyList_Set_uint32(theList, "a", 5);
    EXPECT_EQ(Written(theList), "{\"a\":5,}");
    EXPECT_EQ(Written(theList, true), "\n{\n    \"a\": 5,\n}");
}

TEST(SerializeTest, AnEmptyListIsACommaInBraces) {
    const OwnedList theList;
    EXPECT_EQ(Written(theList), "{,}");
    EXPECT_EQ(Written(theList, true), "\n{,\n}");
    EXPECT_EQ(Written(NULL), "{,}");
}

TEST(SerializeTest, SeveralValuesHaveNoSeparator) {
    const OwnedList theList;
    vxProperty* theProperty = vxPropertyList_Add(theList, "a");
    vxProperty_Set_uint32(theProperty, 0, 1);
    vxProperty_Set_uint32(theProperty, 1, 2);
    vxPropertyList_Set_charPtr(theList, "b", "x");
    EXPECT_EQ(Written(theList), "{\"a\":[12],\"b\":\"x\",}");
    EXPECT_EQ(Written(theList, true), "\n{\n    \"a\": [12],\n    \"b\": \"x\",\n}");
}

TEST(SerializeTest, MapsIndentWhatTheyHold) {
    vxJSONFormatter theFormatter;
    theFormatter.SetHuman(true);
    theFormatter.SetIndent("\t");
    theFormatter.MapBegin();
    theFormatter.MapKey("a", false);
    theFormatter.MapBegin();
    theFormatter.MapKey("b", false);
    theFormatter.ArrayBegin();
    theFormatter.U32(1);
    theFormatter.ArrayItemSeparator();
    theFormatter.U32(2);
    theFormatter.ArrayEnd();
    theFormatter.MapEnd();
    theFormatter.MapKey("c", false);
    theFormatter.Null();
    theFormatter.MapEnd();
    EXPECT_STREQ(theFormatter.Result(),
                 "\n{\n\t\"a\": \n\t{\n\t\t\"b\": [1, 2],\n\t},\n\t\"c\": null,\n}");
}

TEST(SerializeTest, AKeyBehindAnEmptyMapHasItsComma) {
    vxJSONFormatter theFormatter;
    theFormatter.MapBegin();
    theFormatter.MapKey("a", false);
    theFormatter.MapBegin();
    theFormatter.MapEnd();
    theFormatter.MapKey("b", false);
    theFormatter.Boolean(true);
    theFormatter.MapEnd();
    EXPECT_STREQ(theFormatter.Result(), "{\"a\":{,},\"b\":true,}");
}

TEST(SerializeTest, TheQuoteFlagTakesQuotesAway) {
    vxJSONFormatter theFormatter;
    theFormatter.MapBegin();
    theFormatter.MapKey("a\"", true);
    theFormatter.String("b\n", true);
    theFormatter.MapKey("c\"", false);
    theFormatter.String("d\n", false);
    theFormatter.MapKey("e", false);
    theFormatter.Identifier("f");
    theFormatter.MapKey("g", false);
    theFormatter.String(L"h\"", true);
    theFormatter.MapEnd();
    EXPECT_STREQ(theFormatter.Result(), "{a\\\":b\\n,\"c\\\"\":\"d\\n\",\"e\":\"f\",\"g\":h\\\",}");
}

TEST(SerializeTest, ValuesHaveTheirFormats) {
    vxJSONFormatter theFormatter;
    theFormatter.ArrayBegin();
    theFormatter.Boolean(true);
    theFormatter.ArrayItemSeparator();
    theFormatter.Boolean(false);
    theFormatter.ArrayItemSeparator();
    theFormatter.Null();
    theFormatter.ArrayItemSeparator();
    theFormatter.U32(4294967295U);
    theFormatter.ArrayItemSeparator();
    theFormatter.S32(INT32_MIN);
    theFormatter.ArrayItemSeparator();
    theFormatter.U64(UINT64_MAX);
    theFormatter.ArrayItemSeparator();
    theFormatter.S64(INT64_MIN);
    theFormatter.ArrayItemSeparator();
    theFormatter.Float(-1.5);
    theFormatter.ArrayItemSeparator();
    theFormatter.String(L"\u20AC/", false);
    theFormatter.ArrayItemSeparator();
    theFormatter.String(static_cast<const char*>(NULL), false);
    theFormatter.ArrayItemSeparator();
    theFormatter.String(static_cast<const wchar_t*>(NULL), false);
    theFormatter.ArrayEnd();
    EXPECT_STREQ(theFormatter.Result(),
                 "[true,false,null,4294967295,-2147483648,18446744073709551615,"
                 "-9223372036854775808,-1.500000,\"\xE2\x82\xAC\\/\",\"\",\"\"]");
}

TEST(SerializeTest, RealNumbersHaveSixDecimalsWhateverTheirSize) {
    const struct {
        double mValue;
        std::string mText;
    } kCases[] = {
        {0.0, "0.000000"},
        {-0.0, "-0.000000"},
        {0.1, "0.100000"},
        {0.0000005, "0.000000"},
        {0.0000015, "0.000002"},
        {0.9999995, "1.000000"},
        {123456789.0625, "123456789.062500"},
        {9007199254740993.0, "9007199254740992.000000"},
        {std::numeric_limits<double>::infinity(), "inf"},
        {-std::numeric_limits<double>::infinity(), "-inf"},
        {std::numeric_limits<double>::quiet_NaN(), "nan"},
    };
    for (const auto& theCase : kCases) {
        SCOPED_TRACE(theCase.mText);
        vxJSONFormatter theFormatter;
        theFormatter.Float(theCase.mValue);
        EXPECT_EQ(theFormatter.Result().c_str(), theCase.mText);
    }
}

TEST(SerializeTest, TheLongestRealNumberIsWrittenWhole) {
    vxJSONFormatter theFormatter;
    theFormatter.Float(-1.7976931348623157e308);
    const std::string theText = theFormatter.Result().c_str();
    EXPECT_EQ(theText.length(), 317u);
    EXPECT_EQ(theText.substr(0, 18), "-17976931348623157");
    EXPECT_EQ(theText.substr(301), "124858368.000000");
}

TEST(SerializeTest, ControlsQuotesAndBackslashesAreEscapedAndSlashesInStrictText) {
    EXPECT_EQ(Escaped("a\tb\x01"), "a\\tb\\u0001");
    EXPECT_EQ(Escaped("\b\n\r\t\f\"\\"), "\\b\\n\\r\\t\\f\\\"\\\\");
    EXPECT_EQ(Escaped("\x0b\x1f \x7f\x80\xff"), "\\u000b\\u001f \x7f\x80\xff");
    EXPECT_EQ(Escaped("a/b'"), "a\\/b'");
    EXPECT_EQ(Escaped("a/b\"", false), "a/b\\\"");
}

TEST(SerializeTest, EscapeTellsWhetherThereWasAnythingToDo) {
    vxJSONFormatter theFormatter;
    vxCString theText;
    EXPECT_FALSE(theFormatter.Escape("", theText));
    EXPECT_STREQ(theText, "");
    EXPECT_FALSE(theFormatter.Escape("plain \xC3\xA9", theText));
    EXPECT_STREQ(theText, "plain \xC3\xA9");
    EXPECT_TRUE(theFormatter.Escape("/", theText));
    EXPECT_STREQ(theText, "\\/");
    theFormatter.SetStrict(false);
    EXPECT_FALSE(theFormatter.Escape("/", theText));
    EXPECT_FALSE(theFormatter.Escape(NULL, theText));
    EXPECT_STREQ(theText, "");
}

TEST(SerializeTest, ResetStartsOverAndKeepsTheLayout) {
    vxJSONFormatter theFormatter;
    theFormatter.SetHuman(true);
    theFormatter.MapBegin();
    const vxCString theOld = theFormatter.Result();
    theFormatter.Reset();
    EXPECT_STREQ(theFormatter.Result(), "");
    theFormatter.MapBegin();
    theFormatter.MapEnd();
    EXPECT_STREQ(theFormatter.Result(), "\n{,\n}");
    EXPECT_STREQ(theOld, "\n{");
}

TEST(SerializeTest, ResetForgetsThatAMapHasBegun) {
    vxJSONFormatter theFormatter;
    theFormatter.MapBegin();
    theFormatter.Reset();
    theFormatter.MapKey("a", false);
    EXPECT_STREQ(theFormatter.Result(), ",\"a\":");
}

TEST(SerializeTest, AMapThatEndsTwiceIsReportedWhereLinesAreLaidOut) {
    vxtest::Reports theReports;
    vxJSONFormatter theFormatter;
    theFormatter.MapEnd();
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
    theFormatter.Reset();
    theFormatter.SetHuman(true);
    theFormatter.MapEnd();
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mIndent >= 0"));
    EXPECT_STREQ(theFormatter.Result(), ",\n}");
}

TEST(SerializeTest, CopiesOfTheResultStayWhatTheyWere) {
    vxJSONFormatter theFormatter;
    theFormatter.String("one", true);
    const vxCString theCopy = theFormatter.Result();
    theFormatter.String("two", true);
    theFormatter.String(theFormatter.Result(), true);
    EXPECT_STREQ(theCopy, "one");
    EXPECT_STREQ(theFormatter.Result(), "onetwoonetwo");
}

TEST(SerializeTest, TheResultItselfMayBeWrittenAgain) {
    vxJSONFormatter theFormatter;
    std::string theExpected = "a\"b";
    theFormatter.String("a", true);
    theFormatter.String("\"b", true);
    theExpected = "a\\\"b";
    for (int i = 0; i < 10; ++i) {
        theFormatter.String(theFormatter.Result(), false);
        std::string theEscaped;
        for (const char theChar : theExpected) {
            theEscaped += theChar == '"' || theChar == '\\' ? "\\" : "";
            theEscaped += theChar;
        }
        theExpected += "\"" + theEscaped + "\"";
    }
    EXPECT_EQ(theFormatter.Result().c_str(), theExpected);
}

TEST(SerializeTest, TheResultItselfMayBeAKey) {
    for (const bool theIsHuman : {false, true}) {
        vxJSONFormatter theFormatter;
        theFormatter.SetHuman(theIsHuman);
        theFormatter.String("a", true);
        theFormatter.MapKey(theFormatter.Result(), true);
        const std::string theLong(300, 'b');  // more than the first room
        theFormatter.String(theLong.c_str(), true);
        theFormatter.MapKey(theFormatter.Result(), false);
        const std::string theFirst = theIsHuman ? "a,\na: " + theLong : "a,a:" + theLong;
        const std::string theKey = theIsHuman ? "a,\\na: " + theLong : theFirst;
        EXPECT_EQ(theFormatter.Result().c_str(),
                  theFirst + (theIsHuman ? ",\n\"" + theKey + "\": " : ",\"" + theKey + "\":"));
    }
}

TEST(SerializeTest, AskingForTheResultAfterEveryEventCostsLinearTime) {
    vxJSONFormatter theFormatter;
    for (int i = 0; i < 300000; ++i) {
        theFormatter.String("7", true);
        ASSERT_EQ(theFormatter.Result().length(), static_cast<size_t>(i) + 1);
    }
}

struct EscapeCase {
    char mByte;
    const char* mStrict;
    const char* mLax;
};

// What is escaped, and the neighbors of it that are not.
constexpr EscapeCase kEscapeCases[] = {
    {'"', "\\\"", "\\\""},
    {'\\', "\\\\", "\\\\"},
    {'/', "\\/", "/"},
    {'\n', "\\n", "\\n"},
    {'\x01', "\\u0001", "\\u0001"},
    {'\x1f', "\\u001f", "\\u001f"},
    {' ', " ", " "},
    {'!', "!", "!"},
    {'#', "#", "#"},
    {'.', ".", "."},
    {'[', "[", "["},
    {'\x7f', "\x7f", "\x7f"},
    {'\x80', "\x80", "\x80"},
    {'\xa2', "\xa2", "\xa2"},
    {'\xff', "\xff", "\xff"},
};

TEST(SerializeTest, EscapesAreFoundAtEveryPlaceOfTexts) {
    for (size_t theLength = 1; theLength <= 40; ++theLength) {
        for (size_t thePlace = 0; thePlace < theLength; ++thePlace) {
            for (const EscapeCase& theCase : kEscapeCases) {
                std::string theText(theLength, theLength % 2 == 0 ? 'x' : '\x9f');
                std::string theStrict = theText;
                std::string theLax = theText;
                theText[thePlace] = theCase.mByte;
                theStrict.replace(thePlace, 1, theCase.mStrict);
                theLax.replace(thePlace, 1, theCase.mLax);
                const vxtest::ExactText theSource(theText, (theLength + thePlace) % 8);
                ASSERT_EQ(Escaped(theSource), theStrict) << theText;
                ASSERT_EQ(Escaped(theSource, false), theLax) << theText;
            }
        }
    }
}

TEST(SerializeTest, LongTextsAreWrittenWhole) {
    vxJSONFormatter theFormatter;
    std::string theExpected;
    for (int i = 0; i < 200000; ++i) {
        theFormatter.U32(7);
        theFormatter.ArrayItemSeparator();
        theExpected += "7,";
    }
    EXPECT_EQ(theExpected, theFormatter.Result().c_str());
}

// Walking

/// One property with one value of every type.
void FillWithEveryType(vxPropertyList* aList) {
    vxProperty* theProperty = vxPropertyList_Add(aList, "a");
    vxPackedData* thePacked = vxPackedData_New("\x01%'x", 4);
    vxPackedData* theEmpty = vxPackedData_New("", 0);
    vxProperty_Set_Unknown(theProperty, 0);
    vxProperty_Set_uint32(theProperty, 1, 1);
    vxProperty_Set_double(theProperty, 2, 2.5);
    vxProperty_Set_voidPtr(theProperty, 3, aList);
    vxProperty_Set_uint64(theProperty, 4, 4);
    vxProperty_Set_size_t(theProperty, 5, 5);
    vxProperty_Set_charPtr(theProperty, 6, "text");
    vxProperty_Set_malloc(theProperty, 7, malloc(1));
    vxProperty_Set_packedData(theProperty, 8, thePacked);
    vxProperty_Set_packedData(theProperty, 9, theEmpty);
    vxProperty_Set_DLNAProtocolInfo(theProperty, 10, malloc(1));
    vxProperty_Set_wcharPtr(theProperty, 11, L"wide");
    vxPackedData_Delete(thePacked);
    vxPackedData_Delete(theEmpty);
}

TEST(SerializeTest, EveryTypeHasItsEventAndPackedDataAreTextToTheStaticWalker) {
    const OwnedList theList;
    FillWithEveryType(theList);
    Recorder theRecorder;
    EXPECT_EQ(vxPropertyListFormatter::Serialize(theList, theRecorder), 0);
    EXPECT_EQ(theRecorder.mEvents,
              "{ key=a [ null U32=1 Float=2.500000 null U64=4 null string=text null "
              "string=%01%25%27x string= null wide=4 ] }");
}

TEST(SerializeTest, PackedDataAreNullToTheOtherWalker) {
    const OwnedList theList;
    FillWithEveryType(theList);
    Recorder theRecorder;
    EXPECT_EQ(vxPropertyListSerializer().Serialize(theList, theRecorder), 0);
    EXPECT_EQ(theRecorder.mEvents,
              "{ key=a [ null U32=1 Float=2.500000 null U64=4 null string=text null "
              "null null null wide=4 ] }");
}

TEST(SerializeTest, APropertyWithoutValuesIsNull) {
    const OwnedList theList;
    vxPropertyList_Add(theList, "a");
    EXPECT_EQ(Written(theList), "{\"a\":null,}");
}

TEST(SerializeTest, AListAsAValueIsReportedAndNull) {
    vxtest::Reports theReports;
    const OwnedList theList;
    const OwnedList theInner;
    vxProperty_Set_propertyList(vxPropertyList_Add(theList, "a"), 0, theInner);
    EXPECT_EQ(Written(theList), "{\"a\":null,}");
    ASSERT_EQ(theReports.AssertionReports().size(), 1U);
    EXPECT_EQ(theReports.AssertionReports()[0].mCondition, "kvxDataType_propertyList");
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, testing::HasSubstr("Serialize.cpp"));
}

TEST(SerializeTest, TheFirstStatusEndsTheWalkAtEveryEvent) {
    const OwnedList theList;
    vxProperty* theProperty = vxPropertyList_Add(theList, "a");
    vxProperty_Set_uint32(theProperty, 0, 1);
    vxProperty_Set_uint32(theProperty, 1, 2);
    vxPropertyList_Add(theList, "b");
    for (int i = 0; i < 9; ++i) {
        SCOPED_TRACE(i);
        Recorder theRecorder;
        theRecorder.mStopAt = i;
        EXPECT_EQ(vxPropertyListSerializer().Serialize(theList, theRecorder), 77);
        EXPECT_EQ(theRecorder.mCount, i + 1);
    }
}

TEST(SerializeTest, AWalkerMayBeOverriddenAtEachOfItsSteps) {
    class Walker : public vxPropertyListSerializer {
    public:
        int Serialize(vxPropertyList* aList, vxISerialize& aSink) override {
            const int theResult = aSink.ArrayBegin();
            return theResult != 0 ? theResult : vxPropertyListSerializer::Serialize(aList, aSink);
        }
        int SerializeProperty(vxProperty* aProperty, vxISerialize& aSink) override {
            return std::string(vxProperty_GetName(aProperty)) == "hidden"
                       ? 0
                       : vxPropertyListSerializer::SerializeProperty(aProperty, aSink);
        }
        int SerializeData(vxData* aData, vxISerialize& aSink) override {
            return vxData_GetType(aData) == kvxDataType_uint32
                       ? aSink.Boolean(vxData_Get_uint32(aData) != 0)
                       : vxPropertyListSerializer::SerializeData(aData, aSink);
        }
    };
    const OwnedList theList;
    vxPropertyList_Set_uint32(theList, "a", 5);
    vxPropertyList_Set_uint32(theList, "hidden", 6);
    vxPropertyList_Set_charPtr(theList, "b", "x");
    Recorder theRecorder;
    Walker theWalker;
    vxPropertyListSerializer& theBase = theWalker;
    EXPECT_EQ(theBase.Serialize(theList, theRecorder), 0);
    EXPECT_EQ(theRecorder.mEvents, "[ { key=a true key=b string=x }");
}

TEST(SerializeTest, TheListIsHeldDuringTheWalk) {
    class Dropper : public Recorder {
    public:
        explicit Dropper(vxPropertyList* aList) : mList(aList) {}
        int MapBegin() override {
            vxPropertyList_Delete(mList);
            return Recorder::MapBegin();
        }

    private:
        vxPropertyList* mList;
    };
    vxPropertyList* theList = vxPropertyList_New();
    vxPropertyList_Set_uint32(theList, "a", 5);
    Dropper theDropper(theList);
    EXPECT_EQ(vxPropertyListSerializer().Serialize(theList, theDropper), 0);
    EXPECT_EQ(theDropper.mEvents, "{ key=a U32=5 }");
}

// Reading

struct ReadCase {
    std::string mText;
    int mResult;
    const char* mEvents;
    int mLine;
    int mColumn;
};

void ExpectRead(const ReadCase& aCase) {
    SCOPED_TRACE(aCase.mText);
    Recorder theRecorder;
    int theLine = 0;
    int theColumn = 0;
    EXPECT_EQ(vxJSONFormatter::Parse(aCase.mText.c_str(), theRecorder, theLine, theColumn),
              aCase.mResult);
    EXPECT_EQ(theRecorder.mEvents, aCase.mEvents);
    EXPECT_EQ(theLine, aCase.mLine);
    EXPECT_EQ(theColumn, aCase.mColumn);
}

const ReadCase kGoodCases[] = {
    {"null", 0, "null", 1, 5},
    {"NuLL", 0, "null", 1, 5},
    {"true", 0, "true", 1, 5},
    {"TRUE", 0, "true", 1, 5},
    {"False", 0, "false", 1, 6},
    {"\"a\"", 0, "string=a", 1, 4},
    {"'a\"b'", 0, "string=a\"b", 1, 6},
    {"\"a'b\"", 0, "string=a'b", 1, 6},
    {"[]", 0, "[ ]", 1, 3},
    {"[1]", 0, "[ U32=1 ]", 1, 4},
    {"[1,[2,3],'a']", 0, "[ U32=1 , [ U32=2 , U32=3 ] , string=a ]", 1, 14},
    {"{}", 0, "{ }", 1, 3},
    {"{,}", 0, "{ }", 1, 4},
    {"{ , }", 0, "{ }", 1, 6},
    {"{\"a\":5}", 0, "{ key=a U32=5 }", 1, 8},
    {"{\"a\":5,}", 0, "{ key=a U32=5 }", 1, 9},
    {"{'a':{'b':null},'c':[true]}", 0, "{ key=a { key=b null } key=c [ true ] }", 1, 28},
    {" \t\r\n\v\f[ 1 , 2 ] \n", 0, "[ U32=1 , U32=2 ]", 3, 1},
    {"/* a */[/**/1/***/,//x\n2]// end", 0, "[ U32=1 , U32=2 ]", 2, 9},
    {"{/*a*/'a'/*b*/:/*c*/1/*d*/,/*e*/}/*f*/", 0, "{ key=a U32=1 }", 1, 39},
    {"1//\n", 0, "U32=1", 2, 1},
    {"[1,// x \r 2\n3]", 0, "[ U32=1 , U32=3 ]", 2, 3},
    {"/*/ */1", 0, "U32=1", 1, 8},
    {"/**//*//*/1", 0, "U32=1", 1, 12},
    {"1 //*\n", 0, "U32=1", 2, 1},
};

TEST(SerializeTest, ReadsValuesArraysObjectsAndComments) {
    for (const ReadCase& theCase : kGoodCases) {
        ExpectRead(theCase);
    }
}

const ReadCase kNumberCases[] = {
    {"0", 0, "U32=0", 1, 2},
    {"4294967295", 0, "U32=4294967295", 1, 11},
    {"4294967296", 0, "U64=4294967296", 1, 11},
    {"18446744073709551615", 0, "U64=18446744073709551615", 1, 21},
    {"18446744073709551616", 7, "", 1, 21},
    {"-0", 0, "S32=0", 1, 3},
    {"-1", 0, "S64=-1", 1, 3},
    {"-9223372036854775808", 0, "S64=-9223372036854775808", 1, 21},
    {"-9223372036854775809", 7, "", 1, 21},
    {"1.5", 0, "Float=1.500000", 1, 4},
    {"-1.5", 0, "Float=-1.500000", 1, 5},
    {"1e3", 0, "Float=1000.000000", 1, 4},
    {"1e+3", 0, "Float=1000.000000", 1, 5},
    {"25e-1", 0, "Float=2.500000", 1, 6},
    {"-.5", 0, "Float=-0.500000", 1, 4},
    {"1.", 0, "Float=1.000000", 1, 3},
    {"1.5.5", 0, "Float=1.500000", 1, 6},
    {"1-2", 0, "U32=1", 1, 4},
    {"1E3", 7, "", 1, 2},
    {"1.5E3", 7, "", 1, 4},
    {"-", 7, "", 1, 2},
    {"--1", 7, "", 1, 4},
    {"-+1", 7, "", 1, 4},
    {"-.", 7, "", 1, 3},
    {"1e", 7, "", 1, 3},
    {"1e-", 7, "", 1, 4},
    {"1e999", 7, "", 1, 6},
};

TEST(SerializeTest, NumbersAreSentByTheirRange) {
    for (const ReadCase& theCase : kNumberCases) {
        ExpectRead(theCase);
    }
}

const ReadCase kLongNumberCases[] = {
    {"999999999999999999", 0, "U64=999999999999999999", 1, 19},
    {"1000000000000000000", 0, "U64=1000000000000000000", 1, 20},
    {"-999999999999999999", 0, "S64=-999999999999999999", 1, 20},
    {"-9223372036854775808", 0, "S64=-9223372036854775808", 1, 21},
    {"0000000000000000000000005", 0, "U32=5", 1, 26},
    {"123456789012345678.5", 0, "Float=123456789012345680.000000", 1, 21},
    {"123E", 7, "", 1, 4},
    {"123456789012345678E", 7, "", 1, 19},
    {"12-3", 0, "U32=12", 1, 5},
};

TEST(SerializeTest, NumbersOfManyDigitsAreExact) {
    for (const ReadCase& theCase : kLongNumberCases) {
        ExpectRead(theCase);
    }
}

const ReadCase kStringCases[] = {
    {"\"\"", 0, "string=", 1, 3},
    {"\"eight by\"", 0, "string=eight by", 1, 11},
    {"'0123456789\\n0123\"56789'", 0, "string=0123456789\n0123\"56789", 1, 25},
    {"'\\\"\\\\\\/\\b\\n\\r\\t\\f'", 0, "string=\"\\/\b\n\r\t\f", 1, 19},
    {"'x\\u0041\\u007fy'", 0, "string=xA\x7fy", 1, 17},
    {"'\\u0080\\u07ff'", 0, "string=\xC2\x80\xDF\xBF", 1, 15},
    {"'\\u0800\\uFfFf'", 0, "string=\xE0\xA0\x80\xEF\xBF\xBF", 1, 15},
    {"'\\ud83c\\udfb5'", 0, "string=\xED\xA0\xBC\xED\xBE\xB5", 1, 15},
    {"'a\tb\nc'", 0, "string=a\tb\nc", 2, 3},
    {"'a\\u0000b'", 0, "string=a", 1, 11},
    {"{'\\u0061\\n':1}", 0, "{ key=a\n U32=1 }", 1, 15},
    {"'\\x'", 12, "", 1, 3},
    {"'\\''", 12, "", 1, 3},
    {"'\\u12g4'", 12, "", 1, 6},
    {"{'\\a':1}", 12, "{", 1, 4},
    {"'\\", 3, "", 1, 3},
    {"'\\u12", 3, "", 1, 6},
    {"'abc", 3, "", 1, 5},
};

TEST(SerializeTest, EscapesBecomeBytes) {
    for (const ReadCase& theCase : kStringCases) {
        ExpectRead(theCase);
    }
}

const ReadCase kBadCases[] = {
    {"", 1, "", 1, 1},
    {" \n ", 1, "", 2, 2},
    {"//x", 1, "", 1, 4},
    {"/* x", 1, "", 1, 5},
    {"/", 1, "", 1, 2},
    {"[", 3, "[", 1, 2},
    {"[1", 3, "[ U32=1", 1, 3},
    {"[1,", 3, "[ U32=1 ,", 1, 4},
    {"{", 3, "{", 1, 2},
    {"{,", 3, "{", 1, 3},
    {"{'a", 3, "{", 1, 4},
    {"{'a'", 3, "{ key=a", 1, 5},
    {"{'a':", 3, "{ key=a", 1, 6},
    {"{'a':1", 3, "{ key=a U32=1", 1, 7},
    {"{'a':1,", 3, "{ key=a U32=1", 1, 8},
    {"nul", 3, "", 1, 4},
    {"tru", 3, "", 1, 4},
    {"1/*", 3, "U32=1", 1, 4},
    {"1/", 3, "U32=1", 1, 3},
    {"x", 4, "", 1, 1},
    {"]", 4, "", 1, 1},
    {"+1", 4, "", 1, 1},
    {".5", 4, "", 1, 1},
    {"1 2", 4, "U32=1", 1, 3},
    {"nullx", 4, "null", 1, 5},
    {"[] ]", 4, "[ ]", 1, 4},
    {"[,1]", 4, "[", 1, 2},
    {"[1,,2]", 4, "[ U32=1 ,", 1, 4},
    {"{'a':}", 4, "{ key=a", 1, 6},
    {"nil", 5, "", 1, 2},
    {"N0ll", 5, "", 1, 2},
    {"trye", 6, "", 1, 3},
    {"fAlze", 6, "", 1, 4},
    {"[1,]", 8, "[ U32=1 ,", 1, 4},
    {"[1 2]", 8, "[ U32=1", 1, 4},
    {"[1}", 8, "[ U32=1", 1, 3},
    {"{a:1}", 9, "{", 1, 2},
    {"{1:1}", 9, "{", 1, 2},
    {"{,'a':1}", 9, "{", 1, 3},
    {"{,,}", 9, "{", 1, 3},
    {"{'a':1,,}", 9, "{ key=a U32=1", 1, 8},
    {"{'a' 1}", 10, "{ key=a", 1, 6},
    {"{'a'}", 10, "{ key=a", 1, 5},
    {"{'a':1 'b':2}", 11, "{ key=a U32=1", 1, 8},
    {"{'a':1]", 11, "{ key=a U32=1", 1, 7},
    {"/x", 13, "", 1, 2},
    {"[1,\n /\n2]", 13, "[ U32=1 ,", 2, 3},
};

TEST(SerializeTest, EveryMistakeHasItsResultAndPlace) {
    for (const ReadCase& theCase : kBadCases) {
        ExpectRead(theCase);
    }
}

TEST(SerializeTest, NullTextIsEmpty) {
    Recorder theRecorder;
    int theLine = 0;
    int theColumn = 0;
    EXPECT_EQ(vxJSONFormatter::Parse(NULL, theRecorder), 1);
    EXPECT_EQ(vxJSONFormatter::Parse(NULL, theRecorder, theLine, theColumn), 1);
    EXPECT_EQ(theLine, 1);
    EXPECT_EQ(theColumn, 1);
}

TEST(SerializeTest, NineteenLevelsAreReadAndTwentyAreTooDeep) {
    Recorder theRecorder;
    EXPECT_EQ(
        vxJSONFormatter::Parse((Repeated("[", 19) + "1" + Repeated("]", 19)).c_str(), theRecorder),
        0);
    EXPECT_EQ(theRecorder.mEvents, Repeated("[ ", 19) + "U32=1" + Repeated(" ]", 19));
    Recorder theDeep;
    EXPECT_EQ(vxJSONFormatter::Parse((Repeated("[", 20) + Repeated("]", 20)).c_str(), theDeep), 2);
    EXPECT_EQ(theDeep.mEvents, "[" + Repeated(" [", 18));
    const std::string theObjects = Repeated("{'a':", 19);
    EXPECT_EQ(vxJSONFormatter::Parse((theObjects + "1" + Repeated("}", 19)).c_str(), theDeep), 0);
    EXPECT_EQ(vxJSONFormatter::Parse((theObjects + "{}" + Repeated("}", 19)).c_str(), theDeep), 2);
}

TEST(SerializeTest, LevelsThatHaveEndedDoNotCount) {
    Recorder theRecorder;
    EXPECT_EQ(vxJSONFormatter::Parse(("[" + Repeated("[[]],", 100) + "1]").c_str(), theRecorder),
              0);
}

TEST(SerializeTest, AStatusOfTheSinkEndsReadingAtEveryEvent) {
    // The text and, for each event, the column behind what was refused.
    const char* theText = "{'a':[1,'b',true,null,-1,1.5,4294967296]}";
    constexpr int theColumns[] = {2,  5,  7,  8,  9,  12, 13, 17, 18,
                                  22, 23, 25, 26, 29, 30, 40, 41, 42};
    int theCount = 0;
    for (const int theExpected : theColumns) {
        SCOPED_TRACE(theCount);
        Recorder theRecorder;
        theRecorder.mStopAt = theCount++;
        int theLine = 0;
        int theColumn = 0;
        EXPECT_EQ(vxJSONFormatter::Parse(theText, theRecorder, theLine, theColumn), 77);
        EXPECT_EQ(theRecorder.mCount, theCount);
        EXPECT_EQ(theLine, 1);
        EXPECT_EQ(theColumn, theExpected);
    }
    Recorder theRecorder;
    EXPECT_EQ(vxJSONFormatter::Parse(theText, theRecorder), 0);
    EXPECT_EQ(theRecorder.mCount, theCount);
}

TEST(SerializeTest, TextsOfEveryLengthEndAtTheirQuote) {
    for (size_t theLength = 0; theLength <= 40; ++theLength) {
        for (size_t thePlace = 0; thePlace <= theLength; ++thePlace) {
            for (const char theByte : {'"', '\'', '\\', '!', '#', '&', '(', '[', ']', '\xa2'}) {
                SCOPED_TRACE(testing::Message() << theLength << " " << thePlace << " " << theByte);
                const char theQuote = theByte == '"' ? '\'' : '"';
                std::string theText(theLength, theLength % 2 == 0 ? 'x' : '\x9f');
                std::string theJSON = theText;
                theText.insert(thePlace, 1, theByte);
                theJSON.insert(thePlace, theByte == '\\' ? "\\\\" : std::string(1, theByte));
                theJSON = theQuote + theJSON;
                Recorder theRecorder;
                const vxtest::ExactText theWhole(theJSON + theQuote, thePlace % 8);
                ASSERT_EQ(vxJSONFormatter::Parse(theWhole, theRecorder), 0);
                ASSERT_EQ(theRecorder.mEvents, "string=" + theText);
                const vxtest::ExactText theCut(theJSON, thePlace % 8);
                ASSERT_EQ(vxJSONFormatter::Parse(theCut, theRecorder), 3);
            }
        }
    }
}

TEST(SerializeTest, LongTextsAreReadInLinearTime) {
    const std::string theText = "['" + std::string(1 << 20, 'x') + "'" + Repeated(",1", 1 << 18) +
                                std::string(1 << 20, ' ') + "]";
    vxJSONFormatter theFormatter;
    EXPECT_EQ(vxJSONFormatter::Parse(theText.c_str(), theFormatter), 0);
    EXPECT_EQ(theFormatter.Result().length(), (1U << 20) + (1U << 19) + 4);
}

// Building lists

TEST(SerializeTest, EventsBecomePropertiesOfTheirTypes) {
    vxPropertyListFormatter theBuilder;
    EXPECT_EQ(vxJSONFormatter::Parse("{'u':5,'U':4294967296,'s':-1,'z':-0,'f':1.5,'t':'x','b':true,"
                                     "'c':false,'n':null,'a':[1,'y',[2]],'e':[]}",
                                     theBuilder),
              0);
    const OwnedList theList(theBuilder.TakePropertyList());
    const auto theFirst = [&theList](const char* aName) {
        return vxProperty_GetAt(vxPropertyList_Find(theList, aName), 0);
    };
    EXPECT_EQ(vxPropertyList_GetCount(theList), 11U);
    EXPECT_EQ(vxData_GetType(theFirst("u")), kvxDataType_uint32);
    EXPECT_EQ(vxData_Get_uint32(theFirst("u")), 5U);
    EXPECT_EQ(vxData_GetType(theFirst("U")), kvxDataType_uint64);
    EXPECT_EQ(vxData_Get_uint64(theFirst("U")), 4294967296U);
    EXPECT_EQ(vxData_GetType(theFirst("s")), kvxDataType_uint64);
    EXPECT_EQ(vxData_Get_uint64(theFirst("s")), 18446744073709551615U);
    EXPECT_EQ(vxData_GetType(theFirst("z")), kvxDataType_uint64);
    EXPECT_EQ(vxData_GetType(theFirst("f")), kvxDataType_double);
    EXPECT_EQ(vxData_Get_double(theFirst("f")), 1.5);
    EXPECT_STREQ(vxData_Get_charPtr(theFirst("t")), "x");
    EXPECT_EQ(vxData_GetType(theFirst("b")), kvxDataType_uint32);
    EXPECT_EQ(vxData_Get_uint32(theFirst("b")), 1U);
    EXPECT_EQ(vxData_GetType(theFirst("c")), kvxDataType_uint32);
    EXPECT_EQ(vxData_Get_uint32(theFirst("c")), 0U);
    EXPECT_EQ(vxData_GetType(theFirst("n")), kvxDataType_Unknown);
    EXPECT_NE(theFirst("n"), nullptr);
    vxProperty* theArray = vxPropertyList_Find(theList, "a");
    ASSERT_EQ(vxProperty_GetCount(theArray), 3U);
    EXPECT_STREQ(vxData_Get_charPtr(vxProperty_GetAt(theArray, 1)), "y");
    EXPECT_EQ(vxData_Get_uint32(vxProperty_GetAt(theArray, 2)), 2U);
    EXPECT_EQ(vxProperty_GetCount(vxPropertyList_Find(theList, "e")), 0U);
}

TEST(SerializeTest, OtherNumbersAndWideTextsGoTheSameWays) {
    vxPropertyListFormatter theBuilder;
    theBuilder.MapBegin();
    theBuilder.MapKey("a", false);
    EXPECT_EQ(theBuilder.S32(-2), 0);
    EXPECT_EQ(theBuilder.String(L"\u20AC", false), 0);
    EXPECT_EQ(theBuilder.Identifier("id"), 0);
    EXPECT_EQ(theBuilder.MapEnd(), 0);
    const OwnedList theList(theBuilder.TakePropertyList());
    vxProperty* theProperty = vxPropertyList_Find(theList, "a");
    EXPECT_EQ(vxData_Get_uint64(vxProperty_GetAt(theProperty, 0)), 18446744073709551614U);
    EXPECT_STREQ(vxData_Get_charPtr(vxProperty_GetAt(theProperty, 1)), "\xE2\x82\xAC");
    EXPECT_STREQ(vxData_Get_charPtr(vxProperty_GetAt(theProperty, 2)), "id");
}

TEST(SerializeTest, NestedMapsAreListsAndFillingGoesOnBehindThem) {
    vxPropertyListFormatter theBuilder;
    EXPECT_EQ(vxJSONFormatter::Parse("{'a':[{'b':{'c':1}},2,{}],'d':3}", theBuilder), 0);
    const OwnedList theList(theBuilder.TakePropertyList());
    vxProperty* theArray = vxPropertyList_Find(theList, "a");
    ASSERT_EQ(vxProperty_GetCount(theArray), 3U);
    vxPropertyList* theInner = vxData_Get_propertyList(vxProperty_GetAt(theArray, 0));
    vxProperty* theB = vxPropertyList_Find(theInner, "b");
    uint32_t theValue = 0;
    EXPECT_TRUE(vxPropertyList_Get_uint32(vxData_Get_propertyList(vxProperty_GetAt(theB, 0)), "c",
                                          &theValue));
    EXPECT_EQ(theValue, 1U);
    EXPECT_EQ(vxData_Get_uint32(vxProperty_GetAt(theArray, 1)), 2U);
    EXPECT_EQ(vxPropertyList_GetCount(vxData_Get_propertyList(vxProperty_GetAt(theArray, 2))), 0U);
    EXPECT_TRUE(vxPropertyList_Get_uint32(theList, "d", &theValue));
    EXPECT_EQ(theValue, 3U);
}

TEST(SerializeTest, AKeyThatComesAgainReplacesTheValues) {
    vxPropertyListFormatter theBuilder;
    EXPECT_EQ(vxJSONFormatter::Parse("{'a':[1,2],'b':3,'a':'x'}", theBuilder), 0);
    const OwnedList theList(theBuilder.TakePropertyList());
    EXPECT_EQ(Written(theList), "{\"a\":\"x\",\"b\":3,}");
}

TEST(SerializeTest, WhatIsWrittenIsReadBack) {
    const OwnedList theList;
    vxPropertyList_Set_uint32(theList, "number", 5);
    vxPropertyList_Set_charPtr(theList, "text/", "a\"\\/\b\n\r\t\f\x01\xC3\xA9'");
    for (const bool theHuman : {false, true}) {
        const std::string theText = Written(theList, theHuman);
        vxPropertyListFormatter theBuilder;
        EXPECT_EQ(vxJSONFormatter::Parse(theText.c_str(), theBuilder), 0);
        const OwnedList theCopy(theBuilder.TakePropertyList());
        EXPECT_EQ(Written(theCopy, theHuman), theText);
        EXPECT_STREQ(vxPropertyList_Get_charPtr(theCopy, "text/"), "a\"\\/\b\n\r\t\f\x01\xC3\xA9'");
    }
}

TEST(SerializeTest, ValuesOutsideAPropertyAreRefused) {
    vxPropertyListFormatter theBuilder;
    EXPECT_EQ(theBuilder.U32(1), kvxSerialize_NoProperty);
    EXPECT_EQ(theBuilder.MapKey("a", false), kvxSerialize_NoProperty);
    EXPECT_EQ(theBuilder.MapEnd(), kvxSerialize_NoProperty);
    EXPECT_EQ(vxJSONFormatter::Parse("[1]", theBuilder), -1);
    EXPECT_EQ(theBuilder.TakePropertyList(), nullptr);
    EXPECT_EQ(vxJSONFormatter::Parse("[{'a':1},{}]", theBuilder), -1);
    const OwnedList theList(theBuilder.TakePropertyList());
    EXPECT_EQ(Written(theList), "{\"a\":1,}");
    EXPECT_EQ(theBuilder.TakePropertyList(), nullptr);
}

TEST(SerializeTest, ANestedMapRefusesValuesBeforeItsFirstKey) {
    vxPropertyListFormatter theBuilder;
    theBuilder.MapBegin();
    theBuilder.MapKey("a", false);
    EXPECT_EQ(theBuilder.U32(1), 0);
    EXPECT_EQ(theBuilder.MapBegin(), 0);
    EXPECT_EQ(theBuilder.U32(2), kvxSerialize_NoProperty);
    EXPECT_EQ(theBuilder.MapBegin(), kvxSerialize_NoProperty);
    EXPECT_EQ(theBuilder.MapEnd(), 0);
    EXPECT_EQ(theBuilder.U32(3), 0);
    const OwnedList theList(theBuilder.TakePropertyList());
    vxProperty* theProperty = vxPropertyList_Find(theList, "a");
    ASSERT_EQ(vxProperty_GetCount(theProperty), 3U);
    EXPECT_EQ(vxPropertyList_GetCount(vxData_Get_propertyList(vxProperty_GetAt(theProperty, 1))),
              0U);
    EXPECT_EQ(vxData_Get_uint32(vxProperty_GetAt(theProperty, 2)), 3U);
}

TEST(SerializeTest, AnUnfinishedListCanBeTakenFromTheOutside) {
    vxPropertyListFormatter theBuilder;
    EXPECT_EQ(vxJSONFormatter::Parse("{'a':1,'b':{'c':2", theBuilder), 3);
    const OwnedList theList(theBuilder.TakePropertyList());
    EXPECT_EQ(vxPropertyList_GetCount(theList), 2U);
    EXPECT_EQ(vxJSONFormatter::Parse("{'a':{'b':", theBuilder), 3);
    theBuilder.Reset();
    EXPECT_EQ(vxJSONFormatter::Parse("{}", theBuilder), 0);
    const OwnedList theEmpty(theBuilder.TakePropertyList());
    EXPECT_EQ(vxPropertyList_GetCount(theEmpty), 0U);
}

TEST(SerializeTest, EventsMayNestDeeperThanTheReader) {
    vxPropertyListFormatter theBuilder;
    theBuilder.MapBegin();
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(theBuilder.MapKey("a", false), 0);
        ASSERT_EQ(theBuilder.MapBegin(), 0);
    }
    for (int i = 0; i < 5001; ++i) {
        ASSERT_EQ(theBuilder.MapEnd(), 0);
    }
    EXPECT_EQ(theBuilder.MapKey("b", false), 0);
    EXPECT_EQ(theBuilder.U32(1), 0);
    const OwnedList theList(theBuilder.TakePropertyList());
    EXPECT_EQ(vxPropertyList_GetCount(theList), 2U);
}

}  // namespace
