// Blocks, sharing, construction, access, write buffers.

#include "vx/CString.h"

#include <libteskTools/Memory.h>
#include <libvxLog/Log.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>
#include <utility>

#include "support/Allocations.h"
#include "support/Reports.h"
#include "support/Text.h"

using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using vxtest::Text;

namespace {

// The block of a string, which is its second member.
const vxCStringData& Block(const vxCString& aStr) {
    const vxCStringData* theBlock;
    memcpy(&theBlock, reinterpret_cast<const char*>(&aStr) + sizeof(char*), sizeof(theBlock));
    return *theBlock;
}

constexpr const char* kInvalid = "aCString.mCStringData->IsValid()";

}  // namespace

TEST(CStringTest, AStringIsATextPointerAndABlockPointer) {
    const vxCString theStr("abc");
    const char* theText;
    memcpy(&theText, &theStr, sizeof(theText));
    EXPECT_EQ(sizeof(vxCString), 2 * sizeof(void*));
    EXPECT_EQ(theText, theStr.c_str());
    EXPECT_FALSE(std::is_polymorphic<vxCString>::value);
    EXPECT_TRUE(std::is_standard_layout<vxCStringData>::value);
}

TEST(CStringTest, ConstantsHaveTheirValues) {
    EXPECT_EQ(vxCString::npos, static_cast<size_t>(-1));
    EXPECT_EQ(vxCString::kvxAllocatedString, static_cast<size_t>(-1));
    EXPECT_EQ(vxCString::kvxStaticString, static_cast<size_t>(-2));
    EXPECT_EQ(vxCString::kvxSpecialString, static_cast<size_t>(-2));
    EXPECT_EQ(vxCString::kvxEmpty, 1);
    EXPECT_EQ(vxCString::kvxKeep, 2);
    EXPECT_EQ(vxCString::kvxKeepValid, 4);
    EXPECT_EQ(vxCString::kvxKeepPrintable, 8);
}

TEST(CStringTest, SlackIsBetween4And19Bytes) {
    struct Row {
        size_t mLength, mCapacity;
    };
    constexpr Row kRows[] = {{1, 19},  {15, 19}, {16, 35}, {17, 35},    {31, 35},
                             {32, 51}, {47, 51}, {48, 67}, {1024, 1043}};
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mLength);
        EXPECT_EQ(theRow.mLength + vxxString_Extra(theRow.mLength), theRow.mCapacity);
        const vxCString theStr(std::string(theRow.mLength, 'x').c_str());
        EXPECT_EQ(Block(theStr).mAllocatedLength, theRow.mCapacity);
    }
}

TEST(CStringTest, AnOrdinaryBlockIsOneAllocationOfHeaderCapacityAndNul) {
    vxtest::Allocations theAllocations;
    const vxCString theStr("abc");
    EXPECT_EQ(theAllocations.Mallocs(), 1u);
    EXPECT_EQ(theAllocations.LastSize(), sizeof(vxCStringData) + 19 + 1);
    EXPECT_EQ(theStr.c_str(), reinterpret_cast<const char*>(&Block(theStr) + 1));
    EXPECT_EQ(Block(theStr).mRefCount, 1);
    EXPECT_EQ(Block(theStr).mStringLength, 3u);
}

TEST(CStringTest, EmptyStringsShareTheStaticBlockAndAllocateNothing) {
    vxtest::Allocations theAllocations;
    const vxCString theDefault;
    const vxCString theLiteral("");
    const vxCString theNull(static_cast<const char*>(nullptr));
    const vxCString theLength("abc", 0);
    const vxCString theCopy(theDefault);
    for (const vxCString* theStr : {&theDefault, &theLiteral, &theNull, &theLength, &theCopy}) {
        EXPECT_EQ(theStr->c_str(), vxEmptyCString);
        EXPECT_EQ(Block(*theStr).mRefCount, -1);
        EXPECT_TRUE(Block(*theStr).IsEmpty());
        EXPECT_EQ(Block(*theStr).mAllocatedLength, 0u);
        EXPECT_TRUE(theStr->IsEmpty());
        EXPECT_EQ(theStr->length(), 0u);
    }
    EXPECT_STREQ(vxEmptyCString, "");
    EXPECT_EQ(theAllocations.Mallocs(), 0u);
}

TEST(CStringTest, BlockPredicatesFollowTheCount) {
    vxCStringData theBlock = {1, 0, 19};
    EXPECT_FALSE(theBlock.IsEmpty());  // no text, but not the shared empty block
    EXPECT_FALSE(theBlock.IsShared());
    EXPECT_TRUE(theBlock.IsValid());
    theBlock.Lock();
    EXPECT_EQ(theBlock.mRefCount, 2);
    EXPECT_TRUE(theBlock.IsShared());
    theBlock.Validate(false);
    EXPECT_EQ(theBlock.mRefCount, 0);
    EXPECT_FALSE(theBlock.IsValid());
    theBlock.Validate(true);
    EXPECT_EQ(theBlock.mRefCount, 1);
    theBlock.mRefCount = -1;
    EXPECT_TRUE(theBlock.IsEmpty());
    EXPECT_TRUE(theBlock.IsValid());
    theBlock.Lock();
    EXPECT_EQ(theBlock.mRefCount, -1);
}

TEST(CStringTest, ConstructorsTakeTextsLengthsAndPositions) {
    EXPECT_EQ(Text(vxCString("abcdef")), "abcdef");
    EXPECT_EQ(Text(vxCString("abcdef", 3)), "abc");
    EXPECT_EQ(Text(vxCString("abcdef", 2, 3)), "cde");
    EXPECT_EQ(Text(vxCString("abcdef", 2, vxCString::npos)), "cdef");
    EXPECT_EQ(Text(vxCString("abcdef", 6, vxCString::npos)), "");
    EXPECT_EQ(Text(vxCString('x')), "x");
    EXPECT_EQ(Text(vxCString('\0')), std::string(1, '\0'));
    EXPECT_EQ(Text(vxCString("a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(Text(vxCString("a\0bc", 1, 3)), std::string("\0bc", 3));
}

TEST(CStringTest, APositionBeyondTheTextIsReportedAndGivesTheEmptyString) {
    vxtest::Reports theReports;
    const vxCString theStr("abc", 4, vxCString::npos);
    EXPECT_EQ(Text(theStr), "");
    ASSERT_THAT(theReports.Assertions(), ElementsAre("aPos <= strlen(aStr)"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, EndsWith("CString.cpp"));
}

TEST(CStringTest, ANullTextWithASizeIsLoggedOnceAndGivesTheEmptyString) {
    struct Row {
        size_t mPos, mLength;
        bool mLogged;
    };
    constexpr Row kRows[] = {{0, 5, true},  {0, 1, true},
                             {3, 0, true},  {3, vxCString::npos, true},
                             {0, 0, false}, {0, vxCString::npos, false}};
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(testing::Message() << theRow.mPos << ", " << theRow.mLength);
        vxtest::Reports theReports;
        const vxCString theStr(nullptr, theRow.mPos, theRow.mLength);
        EXPECT_EQ(Text(theStr), "");
        if (theRow.mPos > 0 && theRow.mLength == vxCString::npos) {
            EXPECT_THAT(theReports.Assertions(), ElementsAre("aPos <= strlen(aStr)"));
        } else {
            EXPECT_THAT(theReports.Assertions(), IsEmpty());
        }
        if (!theRow.mLogged) {
            EXPECT_THAT(theReports.LogTexts(), IsEmpty());
            continue;
        }
        ASSERT_THAT(theReports.LogTexts(),
                    ElementsAre("vxCString::InitWith: initialization from a nil string with a "
                                "non-empty size is deprecated\n"));
        EXPECT_EQ(theReports.Records()[0].mLevel, VXLOGLEVEL_DEBUG);
    }
}

TEST(CStringTest, InitWithReplacesTheText) {
    vxCString theStr("old");
    theStr.InitWith("abcdef", 1, 2);
    EXPECT_EQ(Text(theStr), "bc");
    theStr.InitWith(theStr.c_str(), 1, vxCString::npos);
    EXPECT_EQ(Text(theStr), "c");
    theStr.InitWith(nullptr, 0, vxCString::npos);
    EXPECT_EQ(Text(theStr), "");
}

TEST(CStringTest, ACopySharesTheBlock) {
    vxtest::Allocations theAllocations;
    const vxCString theFirst("abc");
    {
        const vxCString theSecond(theFirst);
        vxCString theThird;
        theThird = theSecond;
        EXPECT_EQ(theSecond.c_str(), theFirst.c_str());
        EXPECT_EQ(theThird.c_str(), theFirst.c_str());
        EXPECT_EQ(Block(theFirst).mRefCount, 3);
        EXPECT_EQ(theAllocations.Mallocs(), 1u);
    }
    EXPECT_EQ(Block(theFirst).mRefCount, 1);
}

TEST(CStringTest, AChangedCopyLeavesTheOtherAlone) {
    const vxCString theFirst("abc");
    vxCString theSecond(theFirst);
    theSecond += "def";
    EXPECT_EQ(Text(theFirst), "abc");
    EXPECT_EQ(Text(theSecond), "abcdef");
    EXPECT_EQ(Block(theFirst).mRefCount, 1);
    EXPECT_EQ(Block(theSecond).mRefCount, 1);
}

TEST(CStringTest, AssignmentToItselfOrToASharerChangesNothing) {
    vxCString theStr("abc");
    vxCString& theSame = theStr;
    theStr = theSame;
    EXPECT_EQ(Block(theStr).mRefCount, 1);
    vxCString theCopy(theStr);
    theCopy = theStr;
    EXPECT_EQ(Block(theStr).mRefCount, 2);
    theCopy = vxCString();
    EXPECT_EQ(theCopy.c_str(), vxEmptyCString);
    EXPECT_EQ(Text(theStr), "abc");
}

TEST(CStringTest, AssignedTextIsCopiedAndMayBeTheStringsOwn) {
    vxCString theStr("abcdef");
    theStr = theStr.c_str() + 2;
    EXPECT_EQ(Text(theStr), "cdef");
    theStr = static_cast<const char*>(nullptr);
    EXPECT_EQ(Text(theStr), "");
    theStr = 'x';
    EXPECT_EQ(Text(theStr), "x");
    theStr = "a longer text than the block has room for";
    EXPECT_EQ(Text(theStr), "a longer text than the block has room for");
    EXPECT_EQ(Block(theStr).mAllocatedLength, 51u);

    vxCString theShared(theStr);
    theShared = theShared.c_str() + 9;
    EXPECT_EQ(Text(theShared), "text than the block has room for");
    EXPECT_EQ(Text(theStr), "a longer text than the block has room for");

    vxCString theWrapped = vxCString("one ") + "two";
    theWrapped = theWrapped.c_str() + 4;
    EXPECT_EQ(Text(theWrapped), "two");
}

TEST(CStringTest, AssignmentReusesTheBlockOfASoleOwner) {
    vxCString theStr("abcdef");
    const char* theText = theStr.c_str();
    vxtest::Allocations theAllocations;
    theStr = "nineteen bytes here";
    EXPECT_EQ(theStr.c_str(), theText);
    EXPECT_EQ(theAllocations.Mallocs() + theAllocations.Reallocs(), 0u);
    theStr = "";
    EXPECT_EQ(theStr.c_str(), vxEmptyCString);
}

TEST(CStringTest, MovingTakesTheBlockAndLeavesTheEmptyString) {
    vxCString theSource("abc");
    const char* theText = theSource.c_str();
    vxCString theTarget(std::move(theSource));
    EXPECT_EQ(theTarget.c_str(), theText);
    EXPECT_EQ(Text(theSource), "");  // NOLINT(bugprone-use-after-move)
    vxCString theOther("other");
    theOther = std::move(theTarget);
    EXPECT_EQ(theOther.c_str(), theText);
    EXPECT_EQ(Text(theTarget), "");  // NOLINT(bugprone-use-after-move)
    vxCString& theSame = theOther;
    theOther = std::move(theSame);
    EXPECT_EQ(Text(theOther), "abc");
}

TEST(CStringTest, InitForgetsAndReinitReleases) {
    vxCString theStr("abc");
    vxCString theCopy(theStr);
    theCopy.Reinit();
    EXPECT_EQ(theCopy.c_str(), vxEmptyCString);
    EXPECT_EQ(Block(theStr).mRefCount, 1);

    vxCString theOther(theStr);
    theOther.Init();
    EXPECT_EQ(theOther.c_str(), vxEmptyCString);
    EXPECT_EQ(Block(theStr).mRefCount, 2);
    const_cast<vxCStringData&>(Block(theStr)).mRefCount = 1;
}

TEST(CStringTest, SwapExchangesTheBlocks) {
    vxCString theFirst("abc");
    vxCString theSecond;
    const char* theText = theFirst.c_str();
    theFirst.Swap(theSecond);
    EXPECT_EQ(theFirst.c_str(), vxEmptyCString);
    EXPECT_EQ(theSecond.c_str(), theText);
    EXPECT_EQ(Text(theSecond), "abc");
}

// Special blocks

TEST(CStringTest, AStaticTextIsWrappedWithoutACopy) {
    static const char kText[] = "static";
    vxtest::Allocations theAllocations;
    {
        const vxCString theStr = vxCString::FromStaticString(kText);
        EXPECT_EQ(theStr.c_str(), kText);
        EXPECT_EQ(theStr.length(), 6u);
        EXPECT_EQ(Block(theStr).mRefCount, 2);
        EXPECT_EQ(Block(theStr).mAllocatedLength, vxCString::kvxStaticString);
        EXPECT_EQ(theAllocations.Mallocs(), 1u);
        EXPECT_EQ(theAllocations.LastSize(), sizeof(vxCStringData) + sizeof(char*));
        const vxCString theCopy(theStr);
        EXPECT_EQ(Block(theStr).mRefCount, 3);
    }
    EXPECT_STREQ(kText, "static");
    EXPECT_EQ(vxCString::FromStaticString("").c_str(), vxEmptyCString);
    EXPECT_EQ(vxCString::FromStaticString(nullptr).c_str(), vxEmptyCString);
}

TEST(CStringTest, AnAllocatedTextIsAdoptedAndFreedWithItsLastString) {
    char* theText = vxStrdup("heap");
    {
        const vxCString theStr = vxCString::FromAllocatedString(theText);
        EXPECT_EQ(theStr.c_str(), theText);
        EXPECT_EQ(Block(theStr).mRefCount, 2);
        EXPECT_EQ(Block(theStr).mAllocatedLength, vxCString::kvxAllocatedString);
        const vxCString theCopy(theStr);
        EXPECT_EQ(Block(theStr).mRefCount, 3);
    }  // the address sanitizer sees whether it is freed, and only once
    EXPECT_EQ(vxCString::FromAllocatedString(vxStrdup("")).c_str(), vxEmptyCString);
    EXPECT_EQ(vxCString::FromAllocatedString(nullptr).c_str(), vxEmptyCString);
}

TEST(CStringTest, AWrappedTextIsCopiedBeforeEveryChange) {
    static const char kText[] = "static text";
    struct Row {
        const char* mName;
        void (*mChange)(vxCString&);
        const char* mResult;
    };
    const Row kRows[] = {
        {"+= char", [](vxCString& aStr) { aStr += '!'; }, "static text!"},
        {"+= text", [](vxCString& aStr) { aStr += "!!"; }, "static text!!"},
        {"insert", [](vxCString& aStr) { aStr.Insert(0, ">"); }, ">static text"},
        {"erase", [](vxCString& aStr) { aStr.Erase(0, 7); }, "text"},
        {"replace", [](vxCString& aStr) { aStr.Replace("t", "T", true); }, "sTaTic TexT"},
        {"pad", [](vxCString& aStr) { aStr.Pad(1, '.', true); }, "static text."},
        {"assign", [](vxCString& aStr) { aStr = "other"; }, "other"},
        {"printf", [](vxCString& aStr) { aStr.Printf("%d", 5); }, "5"},
        {"truncate", [](vxCString& aStr) { aStr.Truncate(6); }, "static"},
        {"pad in front", [](vxCString& aStr) { aStr.Pad(1, '.', false); }, ".static text"},
        {"write buffer", [](vxCString& aStr) { strcpy(vxCStringBuffer(aStr, 3), "new"); }, "new"},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mName);
        vxCString theStr = vxCString::FromStaticString(kText);
        theRow.mChange(theStr);
        EXPECT_EQ(Text(theStr), theRow.mResult);
        EXPECT_EQ(Block(theStr).mRefCount, 1);
        EXPECT_STREQ(kText, "static text");
    }
}

TEST(CStringTest, AWrappedTextIsCopiedBeforeItIsTrimmedOrMended) {
    static const char kText[] = " a\t\xFF ";
    struct Row {
        const char* mName;
        void (*mChange)(vxCString&);
        const char* mResult;
    };
    const Row kRows[] = {
        {"left", [](vxCString& aStr) { aStr.Trim(false); }, "a\t\xFF "},
        {"right", [](vxCString& aStr) { aStr.Trim(true); }, " a\t\xFF"},
        {"both", [](vxCString& aStr) { aStr.TrimLeftRight(); }, "a\t\xFF"},
        {"empty", [](vxCString& aStr) { aStr.ValidateUTF8(vxCString::kvxEmpty); }, ""},
        {"valid", [](vxCString& aStr) { aStr.ValidateUTF8(vxCString::kvxKeepValid); }, " a\t "},
        {"printable", [](vxCString& aStr) { aStr.ValidateUTF8(vxCString::kvxKeepPrintable); },
         " a\xFF "},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mName);
        vxCString theStr = vxCString::FromStaticString(kText);
        const vxCString theCopy(theStr);
        theRow.mChange(theStr);
        EXPECT_EQ(Text(theStr), theRow.mResult);
        EXPECT_EQ(theCopy.c_str(), kText);
        EXPECT_EQ(Block(theCopy).mRefCount, 2);
        EXPECT_STREQ(kText, " a\t\xFF ");
    }
}

TEST(CStringTest, ConcatenationAllocatesExactlyOnce) {
    const vxCString theLeft("abc");
    const vxCString theRight("defg");
    vxtest::Allocations theAllocations;
    const vxCString theSum = theLeft + theRight;
    EXPECT_EQ(Text(theSum), "abcdefg");
    EXPECT_EQ(theAllocations.Mallocs() + theAllocations.Reallocs(), 1u);
    EXPECT_EQ(theAllocations.LastSize(), sizeof(vxCStringData) + sizeof(char*) + 1 + 7 + 1);
    EXPECT_EQ(Block(theSum).mAllocatedLength, vxCString::kvxAllocatedString);
    EXPECT_EQ(Block(theSum).mRefCount, 2);
    EXPECT_EQ(Text(theLeft), "abc");
}

TEST(CStringTest, ConcatenationTakesStringsTextsAndBytes) {
    const vxCString theStr("b");
    const char* const theNull = nullptr;
    EXPECT_EQ(Text(theStr + theStr), "bb");
    EXPECT_EQ(Text(theStr + "c"), "bc");
    EXPECT_EQ(Text("a" + theStr), "ab");
    EXPECT_EQ(Text(theStr + 'c'), "bc");
    EXPECT_EQ(Text('a' + theStr), "ab");
    EXPECT_EQ(Text(theStr + theNull), "b");
    EXPECT_EQ(Text(theNull + theStr), "b");
    EXPECT_EQ((vxCString() + "").c_str(), vxEmptyCString);
    EXPECT_EQ(Text(vxCString("a\0", 2) + vxCString("\0b", 2)), std::string("a\0\0b", 4));
}

TEST(CStringTest, ALongSumAllocatesOnceForEachSign) {
    const vxCString theA("a");
    vxtest::Allocations theAllocations;
    const vxCString theSum = theA + "b" + 'c' + theA + "";
    EXPECT_EQ(Text(theSum), "abca");
    EXPECT_EQ(Block(theSum).mAllocatedLength, vxCString::kvxAllocatedString);
    EXPECT_EQ(Block(theSum).mRefCount, 2);
    EXPECT_EQ(theAllocations.Mallocs() + theAllocations.Reallocs(), 4u);
}

// Access

TEST(CStringTest, FirstAndLastByteOfTheEmptyStringAre0) {
    EXPECT_EQ(vxCString("abc").First(), 'a');
    EXPECT_EQ(vxCString("abc").Last(), 'c');
    EXPECT_EQ(vxCString().First(), '\0');
    EXPECT_EQ(vxCString().Last(), '\0');
    EXPECT_EQ(vxCString("x").Last(), 'x');
}

TEST(CStringTest, SetCharAtChangesEveryCopy) {
    vxCString theFirst("abc");
    vxCString theSecond(theFirst);
    EXPECT_TRUE(theSecond.SetCharAt('x', 1));
    EXPECT_EQ(Text(theFirst), "axc");
    EXPECT_EQ(Text(theSecond), "axc");
    EXPECT_EQ(theFirst.c_str(), theSecond.c_str());
}

TEST(CStringTest, SetCharAtOutsideTheTextIsFalse) {
    vxCString theStr("abc");
    EXPECT_FALSE(theStr.SetCharAt('x', 3));
    EXPECT_FALSE(theStr.SetCharAt('x', -1));
    EXPECT_TRUE(theStr.SetCharAt('x', 2));
    EXPECT_TRUE(theStr.SetCharAt('y', 0));
    EXPECT_EQ(Text(theStr), "ybx");
    vxCString theEmpty;
    EXPECT_FALSE(theEmpty.SetCharAt('x', 0));
}

// Write buffers

TEST(CStringTest, AWriteBufferBecomesTheTextUpToItsNul) {
    vxCString theStr("old text");
    char* theBuffer = theStr.GetWriteBuf(100);
    EXPECT_GE(Block(theStr).mAllocatedLength, 100u);
    EXPECT_EQ(Block(theStr).mRefCount, 0);
    memset(theBuffer, 'x', 100);
    theBuffer[100] = '\0';
    theStr.UngetWriteBuf();
    EXPECT_EQ(Text(theStr), std::string(100, 'x'));
    EXPECT_EQ(Block(theStr).mRefCount, 1);
}

TEST(CStringTest, AWriteBufferMayBeGivenBackWithALength) {
    vxCString theStr;
    char* theBuffer = theStr.GetWriteBuf(8);
    memcpy(theBuffer, "ab\0cdefg", 8);
    theStr.UngetWriteBuf(4);
    EXPECT_EQ(Text(theStr), std::string("ab\0c", 4));
    EXPECT_EQ(theStr.c_str()[4], '\0');
    theStr.GetWriteBuf(8);
    theStr.UngetWriteBuf(1000);
    EXPECT_EQ(theStr.length(), Block(theStr).mAllocatedLength);
}

TEST(CStringTest, AnUnwrittenNewBufferIsEmptyAndAFullOneIsCut) {
    vxCString theStr;
    theStr.GetWriteBuf(8);
    theStr.UngetWriteBuf();
    EXPECT_EQ(Text(theStr), "");
    memset(theStr.GetWriteBuf(19), 'x', 20);
    theStr.UngetWriteBuf();
    EXPECT_EQ(Text(theStr), std::string(19, 'x'));
}

TEST(CStringTest, AWriteBufferLeavesSharersAlone) {
    const vxCString theFirst("abc");
    vxCString theSecond(theFirst);
    strcpy(theSecond.GetWriteBuf(3), "xyz");
    theSecond.UngetWriteBuf();
    EXPECT_EQ(Text(theFirst), "abc");
    EXPECT_EQ(Text(theSecond), "xyz");
}

TEST(CStringTest, AWriteBufferUsesTheBlockOfASoleOwnerWhereItIsLargeEnough) {
    vxCString theStr("abc");
    const char* theText = theStr.c_str();
    vxtest::Allocations theAllocations;
    EXPECT_EQ(theStr.GetWriteBuf(19), theText);
    EXPECT_EQ(theStr.length(), 0u);
    theStr.UngetWriteBuf();
    EXPECT_EQ(Text(theStr), "abc");
    EXPECT_EQ(theAllocations.Mallocs() + theAllocations.Reallocs(), 0u);
    theStr.GetWriteBuf(20);
    theStr.UngetWriteBuf(0);
    EXPECT_EQ(theAllocations.Reallocs(), 1u);
    EXPECT_EQ(Block(theStr).mAllocatedLength, 35u);
}

TEST(CStringTest, CopiesOfAnOwnBlockWithoutTextAreTheSharedEmptyBlock) {
    vxCString theStr("abc");
    theStr.GetWriteBuf(3);
    theStr.UngetWriteBuf(0);
    ASSERT_EQ(Block(theStr).mRefCount, 1);
    ASSERT_TRUE(theStr.IsEmpty());
    vxtest::Allocations theAllocations;
    const vxCString theCopy(theStr);
    vxCString theOther("other");
    theOther = theStr;
    EXPECT_EQ(theCopy.c_str(), vxEmptyCString);
    EXPECT_EQ(theOther.c_str(), vxEmptyCString);
    EXPECT_EQ(Block(theStr).mRefCount, 1);
}

TEST(CStringTest, AScopedBufferGivesItselfBack) {
    vxCString theStr;
    {
        vxCStringBuffer theBuffer(theStr, 5);
        EXPECT_FALSE(Block(theStr).IsValid());
        strcpy(theBuffer, "hello");
    }
    EXPECT_EQ(Text(theStr), "hello");
}

TEST(CStringTest, AWriteBufferOfNoBytesIsReported) {
    vxtest::Reports theReports;
    vxCString theStr("abc");
    char* theBuffer = theStr.GetWriteBuf(0);
    EXPECT_THAT(theReports.Assertions(), ElementsAre("aLength != 0"));
    strcpy(theBuffer, "x");
    theStr.UngetWriteBuf();
    EXPECT_EQ(Text(theStr), "x");
}

TEST(CStringTest, ASecondWriteBufferIsReported) {
    vxtest::Reports theReports;
    vxCString theStr("abc");
    theStr.GetWriteBuf(3);
    strcpy(theStr.GetWriteBuf(3), "new");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("mCStringData->mRefCount == 1"));
    theStr.UngetWriteBuf();
    EXPECT_EQ(Text(theStr), "new");
}

TEST(CStringTest, GivingBackWhatWasNeverLentDoesNothing) {
    vxCString theEmpty;
    theEmpty.UngetWriteBuf();
    theEmpty.UngetWriteBuf(5);
    EXPECT_EQ(theEmpty.c_str(), vxEmptyCString);
    EXPECT_EQ(Block(theEmpty).mRefCount, -1);
    vxCString theStr("abc");
    theStr.UngetWriteBuf(1);
    EXPECT_EQ(Text(theStr), "abc");
}

TEST(CStringTest, CopyingWhileABufferIsOutIsReportedAndGivesTheEmptyString) {
    vxtest::Reports theReports;
    vxCString theStr("abc");
    vxCString theOther("other");
    const vxCString theText("abc");
    {
        vxCStringBuffer theBuffer(theStr, 3);
        const vxCString theCopy(theStr);
        theOther = theStr;
        EXPECT_EQ(theText.Find(theStr, 0), vxCString::npos);
        const vxCString theMoved(std::move(theStr));
        EXPECT_EQ(Text(theCopy), "");
        EXPECT_EQ(Text(theMoved), "");
        strcpy(theBuffer, "xyz");
    }
    EXPECT_THAT(theReports.Assertions(), ElementsAre(kInvalid, kInvalid, kInvalid, kInvalid));
    EXPECT_EQ(Text(theStr), "xyz");  // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(Text(theOther), "");
}

TEST(CStringTest, AStringMayEndWhileItsBufferIsOut) {
    vxCString theStr("abc");
    theStr.GetWriteBuf(3);
}  // the address sanitizer sees that the block is freed

// Growth

TEST(CStringTest, AppendingByteByByteReallocatesOnceEvery16Bytes) {
    struct Row {
        size_t mLength, mCapacity;
    };
    constexpr Row kRows[] = {{1, 19},  {19, 19}, {20, 35}, {35, 35}, {36, 51},
                             {51, 51}, {52, 67}, {67, 67}, {68, 83}, {100, 115}};
    vxtest::Allocations theAllocations;
    vxCString theStr;
    size_t theRow = 0;
    for (size_t i = 1; i <= 100; i++) {
        theStr += static_cast<char>('a' + i % 26);
        if (theRow < std::size(kRows) && kRows[theRow].mLength == i) {
            EXPECT_EQ(Block(theStr).mAllocatedLength, kRows[theRow].mCapacity) << i;
            theRow++;
        }
    }
    EXPECT_EQ(theRow, std::size(kRows));
    EXPECT_EQ(theStr.length(), 100u);
    EXPECT_EQ(theAllocations.Mallocs(), 1u);
    EXPECT_EQ(theAllocations.Reallocs(), 6u);
}

TEST(CStringTest, InsertingUpToTheCapacityTakesTheNextOne) {
    vxCString theBelow("abc");
    theBelow.Insert(1, "0123456789ABCDE");
    EXPECT_EQ(Text(theBelow), "a0123456789ABCDEbc");
    EXPECT_EQ(Block(theBelow).mAllocatedLength, 19u);
    vxCString theFull("abc");
    theFull.Insert(1, "0123456789ABCDEF");
    EXPECT_EQ(Text(theFull), "a0123456789ABCDEFbc");
    EXPECT_EQ(Block(theFull).mAllocatedLength, 35u);
}

TEST(CStringTest, AWriteBufferLeavesTheSharedBlockToItsOtherSharers) {
    const vxCString theOther("abc");
    vxCString theStr(theOther);
    EXPECT_EQ(Block(theOther).mRefCount, 2);
    strcpy(theStr.GetWriteBuf(3), "xyz");
    EXPECT_EQ(Block(theOther).mRefCount, 1);
    theStr.UngetWriteBuf();
    EXPECT_EQ(Text(theStr), "xyz");
    EXPECT_EQ(Text(theOther), "abc");
}

TEST(CStringTest, AShrinkingTextGivesItsMemoryBack) {
    vxCString theStr(std::string(100, 'x').c_str());
    theStr.Truncate(3);
    EXPECT_EQ(Block(theStr).mAllocatedLength, 19u);
    theStr.Truncate(0);
    EXPECT_EQ(theStr.c_str(), vxEmptyCString);
}

// Failure

TEST(CStringTest, ALengthThatNoBlockCanHaveIsReportedAndLeavesTheString) {
    vxtest::Reports theReports;
    vxCString theStr("abc");
    theStr.Pad(0xFFFFFFF0, 'x', true);
    EXPECT_EQ(Text(theStr), "abc");
    theStr.ConcatSelf(vxCString::npos - 1, "abc", vxCString::npos);
    EXPECT_EQ(Text(theStr), "abc");
    theStr.Insert(0, "abc", vxCString::npos - 1);
    EXPECT_EQ(Text(theStr), "abc");
    EXPECT_EQ(theStr.GetWriteBuf(0xFFFFFFF0), nullptr);
    EXPECT_EQ(Text(theStr), "abc");
    EXPECT_EQ(Text(vxCString("abc", 0xFFFFFFF0)), "");
    EXPECT_THAT(theReports.Assertions(), testing::SizeIs(5));
    EXPECT_THAT(theReports.Assertions(),
                Each("aLength < (kvxuint32_max / sizeof(char)) - (sizeof(vxCStringData) + "
                     "vxxString_Extra(aLength) + 1)"));
}

TEST(CStringTest, WithoutMemoryAStringKeepsItsText) {
    struct Row {
        const char* mName;
        void (*mChange)(vxCString&);
    };
    const Row kRows[] = {
        {"+=", [](vxCString& aStr) { aStr += "0123456789012345678901234567890123456789"; }},
        {"insert", [](vxCString& aStr) { aStr.Insert(1, "01234567890123456789"); }},
        {"replace all", [](vxCString& aStr) { aStr.Replace("a", "x", true); }},
        {"pad", [](vxCString& aStr) { aStr.Pad(100, ' ', false); }},
        {"assign", [](vxCString& aStr) { aStr = "0123456789012345678901234567890123456789"; }},
        {"printf", [](vxCString& aStr) { aStr.Printf("%2000d", 1); }},
        {"write buffer", [](vxCString& aStr) { vxCStringBuffer theBuffer(aStr, 100); }},
    };
    for (const Row& theRow : kRows) {
        for (const bool theShared : {false, true}) {
            SCOPED_TRACE(testing::Message() << theRow.mName << (theShared ? ", shared" : ""));
            vxtest::Reports theReports;
            vxtest::Allocations theAllocations;
            vxCString theStr("abc");
            const vxCString theSharer = theShared ? theStr : vxCString();
            theAllocations.FailAfter(0);
            theRow.mChange(theStr);
            ASSERT_FALSE(theReports.FatalErrors().empty());
            EXPECT_EQ(theReports.FatalErrors()[0].mResource, "memory:malloc");
            // A lost write buffer may leave nothing, everything else the old text.
            EXPECT_THAT(Text(theStr), testing::AnyOf("abc", ""));
            EXPECT_THAT(Text(theSharer), testing::AnyOf("abc", ""));
        }
    }
}

TEST(CStringTest, WithoutMemoryNewStringsAreEmpty) {
    vxtest::Reports theReports;
    const vxCString theLeft("abc");
    vxtest::Allocations theAllocations;
    theAllocations.FailAfter(0);
    EXPECT_EQ(Text(vxCString("abc")), "");
    EXPECT_EQ(Text(theLeft + "x"), "");
    EXPECT_EQ(Text(theLeft.Upper()), "");
    EXPECT_EQ(Text(theLeft.TrimTo1Space()), "");
    EXPECT_EQ(Text(vxCString::FromStaticString("abc")), "");
    EXPECT_EQ(Text(vxCString::FromAllocatedString(strdup("abc"))), "");
    theAllocations.FailAfter(1);
    EXPECT_EQ(Text(theLeft + "x" + "y"), "");
}
