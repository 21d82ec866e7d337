#include "vx/StringList.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/Reports.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Items = std::vector<std::string>;

bool sfNoMemory = false;
std::vector<size_t> sSizes;  // what was allocated, in order

Items ItemsOf(const vxStringList& aList) {
    Items theItems;
    for (size_t i = 0; i < aList.GetCount(); ++i) {
        theItems.push_back(aList.GetAt(i));
    }
    return theItems;
}

std::string TextOf(const vxStringList& aList, char anEscape = 0) {
    return aList.GetString(anEscape).c_str();
}

vxStringList ListOf(const char* aText) {
    return vxStringList(aText, ',', 0);
}

// The rule of splitting, byte by byte on standard strings.
Items SplitModel(const std::string& aText, char aSeparator, char anEscape) {
    Items theItems;
    if (aText.empty()) {
        return theItems;
    }
    theItems.emplace_back();
    for (size_t i = 0; i < aText.size(); ++i) {
        if (aText[i] != aSeparator) {
            theItems.back() += aText[i];
        } else if (anEscape != 0 && i > 0 && aText[i - 1] == anEscape) {
            theItems.back().back() = aSeparator;
        } else {
            theItems.emplace_back();
        }
    }
    return theItems;
}

}  // namespace

// The allocation of the platform, which fails on demand.
extern "C" {
void* vxMalloc(size_t aSize) {
    sSizes.push_back(aSize);
    return sfNoMemory ? NULL : malloc(aSize + 1);
}
void* vxRealloc(void* aPtr, size_t aSize) {
    sSizes.push_back(aSize);
    return sfNoMemory ? NULL : realloc(aPtr, aSize + 1);
}
}

TEST(StringListTest, NewListIsEmptyWithABlankAsSeparator) {
    vxStringList theList;
    EXPECT_EQ(theList.GetCount(), 0u);
    EXPECT_STREQ(theList.GetString(0), "");

    theList.Add("a");
    theList.Add("b");
    EXPECT_STREQ(theList.GetString(0), "a b");
}

TEST(StringListTest, SplitsAtUnescapedSeparators) {
    struct Case {
        const char* mText;
        char mSeparator;
        char mEscape;
        Items mItems;
    };
    const Case theCases[] = {
        {NULL, ',', '\\', {}},
        {"", ',', '\\', {}},
        {"a", ',', '\\', {"a"}},
        {"a,b,c", ',', '\\', {"a", "b", "c"}},
        {",", ',', '\\', {"", ""}},
        {"a,,b", ',', '\\', {"a", "", "b"}},
        {"a,", ',', '\\', {"a", ""}},
        {",a", ',', '\\', {"", "a"}},
        {"a\\,b,c", ',', '\\', {"a,b", "c"}},
        {"\\,", ',', '\\', {","}},
        {"\\,\\,", ',', '\\', {",,"}},
        {"\\,,", ',', '\\', {",", ""}},
        {"a\\,b", ',', 0, {"a\\", "b"}},
        {"a\\b,\\", ',', '\\', {"a\\b", "\\"}},  // escape bytes that precede no separator stay
        {"a\\\\,b", ',', '\\', {"a\\,b"}},       // none protects another
        {"a;b,c", ';', 0, {"a", "b,c"}},
        {"a,,b", ',', ',', {"a", "", "b"}},  // an escape equal to the separator is none
        {"a b", ' ', '%', {"a", "b"}},
        {"a% b", ' ', '%', {"a b"}},
        {"\xFF,\x80", ',', 0, {"\xFF", "\x80"}},
        {"abc", '\0', 0, {"abc"}},
    };
    for (const Case& theCase : theCases) {
        SCOPED_TRACE(theCase.mText != NULL ? theCase.mText : "(null)");
        const vxStringList theList(theCase.mText, theCase.mSeparator, theCase.mEscape);
        EXPECT_EQ(ItemsOf(theList), theCase.mItems);
    }
}

TEST(StringListTest, SetReplacesItemsAndSeparator) {
    vxStringList theList("a,b", ',', 0);

    theList.Set("x;y;z", ';', 0);

    EXPECT_EQ(TextOf(theList), "x;y;z");
    theList.Set(NULL, ':', 0);
    EXPECT_EQ(theList.GetCount(), 0u);
    theList.Add("a");
    theList.Add("b");
    EXPECT_EQ(TextOf(theList), "a:b");
}

TEST(StringListTest, SetAcceptsAnItemOfTheListItself) {
    vxStringList theList("a b;c", ';', 0);

    theList.Set(theList.GetAt(0), ' ', 0);

    EXPECT_THAT(ItemsOf(theList), ElementsAre("a", "b"));
}

TEST(StringListTest, ResetRemovesTheItemsAndKeepsTheSeparator) {
    vxStringList theList("a;b", ';', 0);

    theList.Reset();
    EXPECT_EQ(theList.GetCount(), 0u);

    theList.Add("c");
    theList.Add("d");
    EXPECT_EQ(TextOf(theList), "c;d");
}

TEST(StringListTest, CopiesAreIndependent) {
    vxStringList theList("a;b", ';', 0);
    vxStringList theCopy(theList);
    vxStringList theAssigned("x,y,z", ',', 0);
    theAssigned = theList;
    theList.Add("c");
    theList.RemoveAt(0);

    EXPECT_EQ(TextOf(theCopy), "a;b");
    EXPECT_EQ(TextOf(theAssigned), "a;b");
    EXPECT_EQ(TextOf(theList), "b;c");

    const vxStringList& theAlias = theList;
    theList = theAlias;
    EXPECT_EQ(TextOf(theList), "b;c");
    theList = vxStringList();
    EXPECT_EQ(theList.GetCount(), 0u);
}

TEST(StringListTest, IndexOutOfRangeGivesTheDefaultOrIsReported) {
    vxtest::Reports theReports;
    const vxStringList theList = ListOf("a,b");

    EXPECT_STREQ(theList.GetAt(1), "b");
    EXPECT_STREQ(theList.GetAt(1, "none"), "b");
    EXPECT_STREQ(theList.GetAt(2, "none"), "none");
    EXPECT_EQ(theList.GetAt(2, NULL), nullptr);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());

    EXPECT_STREQ(theList.GetAt(2), "");
    EXPECT_STREQ(vxStringList().GetAt(0), "");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("anIndex < mCount", "anIndex < mCount"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile,
                testing::EndsWith("Libs/Internal/vx/core/StringList.cpp"));
}

TEST(StringListTest, ItemsReadAsSignedNumbers) {
    const vxStringList theList = ListOf("12,-5,+7,2147483647,-2147483648,2147483648,x,1x, 1,");
    struct Case {
        size_t mIndex;
        int32_t mValue;
        bool mfOk;
    };
    constexpr Case kCases[] = {
        {0, 12, true},      {1, -5, true},  {2, 7, true},    {3, INT_MAX, true},
        {4, INT_MIN, true}, {5, 99, false}, {6, 99, false},  {7, 99, false},
        {8, 99, false},     {9, 99, false}, {10, 99, false},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mIndex);
        bool fOk = !theCase.mfOk;
        EXPECT_EQ(theList.GetAtInt32(theCase.mIndex, 99, &fOk), theCase.mValue);
        EXPECT_EQ(fOk, theCase.mfOk);
        EXPECT_EQ(theList.GetAtInt32(theCase.mIndex, 99, NULL), theCase.mValue);
    }
}

TEST(StringListTest, ItemsReadAsUnsignedNumbers) {
    const vxStringList theList = ListOf("12,4294967295,4294967296,-1,ff");
    struct Case {
        size_t mIndex;
        uint32_t mValue;
        bool mfOk;
    };
    constexpr Case kCases[] = {{0, 12, true},  {1, UINT_MAX, true}, {2, 99, false},
                               {3, 99, false}, {4, 99, false},      {5, 99, false}};
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mIndex);
        bool fOk = !theCase.mfOk;
        EXPECT_EQ(theList.GetAtUInt32(theCase.mIndex, 99, &fOk), theCase.mValue);
        EXPECT_EQ(fOk, theCase.mfOk);
    }
}

TEST(StringListTest, ItemsReadAsHexadecimalNumbers) {
    const vxStringList theList = ListOf("ff,FFFFFFFF,100000000,zz,0xff,10");
    struct Case {
        size_t mIndex;
        uint32_t mValue;
        bool mfOk;
    };
    constexpr Case kCases[] = {{0, 255, true}, {1, UINT_MAX, true}, {2, 9, false}, {3, 9, false},
                               {4, 9, false},  {5, 16, true},       {6, 9, false}};
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mIndex);
        bool fOk = !theCase.mfOk;
        EXPECT_EQ(theList.GetAtUInt32Hex(theCase.mIndex, 9, &fOk), theCase.mValue);
        EXPECT_EQ(fOk, theCase.mfOk);
    }
}

TEST(StringListTest, JoinsWithSeparatorAndEscape) {
    struct Case {
        Items mItems;
        char mEscape;
        const char* mText;
    };
    const Case theCases[] = {
        {{}, '\\', ""},
        {{""}, '\\', ""},
        {{"a"}, '\\', "a"},
        {{"a", "b"}, 0, "a,b"},
        {{"", ""}, '\\', ","},
        {{"a,b", "c"}, '\\', "a\\,b,c"},
        {{"a,b", "c"}, 0, "a,b,c"},
        {{",", ",,"}, '\\', "\\,,\\,\\,"},
        {{"\\", "x\\y"}, '\\', "\\,x\\y"},  // only separators are escaped
    };
    for (const Case& theCase : theCases) {
        SCOPED_TRACE(theCase.mText);
        vxStringList theList(NULL, ',', 0);
        for (const std::string& theItem : theCase.mItems) {
            theList.Add(theItem.c_str());
        }
        EXPECT_EQ(TextOf(theList, theCase.mEscape), theCase.mText);
    }
}

TEST(StringListTest, SplittingAndJoiningGivesTheFirstTextAgain) {
    const vxStringList theList("a\\,b,c", ',', '\\');

    EXPECT_THAT(ItemsOf(theList), ElementsAre("a,b", "c"));
    EXPECT_EQ(TextOf(theList, '\\'), "a\\,b,c");
}

TEST(StringListTest, JoinsWhatIsLeftAfterRemovals) {
    vxStringList theList = ListOf("a,b,c,d");
    theList.RemoveAt(1);
    EXPECT_EQ(TextOf(theList), "a,c,d");
    theList.RemoveAt(2);
    EXPECT_EQ(TextOf(theList), "a,c");
    theList.Add("e");
    EXPECT_EQ(TextOf(theList), "a,c,e");
    theList.Prepend("f");
    EXPECT_EQ(TextOf(theList, '\\'), "f,a,c,e");
    theList.RemoveAt(0);
    theList.RemoveAt(0);
    theList.RemoveAt(0);
    EXPECT_EQ(TextOf(theList), "e");
    theList.RemoveAt(0);
    EXPECT_EQ(TextOf(theList), "");
}

TEST(StringListTest, AddsAtTheEndAndInFront) {
    vxStringList theList(NULL, ',', 0);

    theList.Prepend("b");
    theList.Prepend("");
    theList.Add("c,d");
    theList.Add("");
    theList.Add(NULL);
    theList.Prepend(NULL);

    EXPECT_THAT(ItemsOf(theList), ElementsAre("", "", "b", "c,d", "", ""));
}

TEST(StringListTest, AddsItemsOfItsOwn) {
    vxStringList theList = ListOf("first,second,");

    for (int i = 0; i < 100; ++i) {
        theList.Add(theList.GetAt(1));
        theList.Prepend(theList.GetAt(theList.GetCount() - 1));
    }
    theList.Add(theList.GetAt(102));

    EXPECT_EQ(theList.GetCount(), 204u);
    EXPECT_STREQ(theList.GetAt(0), "first");
    EXPECT_STREQ(theList.GetAt(1), "second");
    EXPECT_STREQ(theList.GetAt(100), "first");
    EXPECT_STREQ(theList.GetAt(102), "");
    EXPECT_STREQ(theList.GetAt(201), "second");
    EXPECT_STREQ(theList.GetAt(202), "first");
    EXPECT_STREQ(theList.GetAt(203), "");
}

TEST(StringListTest, NumbersAreWrittenInDecimal) {
    vxStringList theList(NULL, ',', 0);

    theList.AddInt32(-2147483647 - 1);
    theList.AddInt32(0);
    theList.AddInt32(2147483647);
    theList.AddUInt32(0);
    theList.AddUInt32(4294967295u);

    EXPECT_EQ(TextOf(theList), "-2147483648,0,2147483647,0,4294967295");
    EXPECT_TRUE(theList.HasInt32(-2147483647 - 1));
    EXPECT_FALSE(theList.HasInt32(-1));
    EXPECT_TRUE(theList.HasUInt32(4294967295u));
    EXPECT_FALSE(theList.HasUInt32(1));
}

TEST(StringListTest, NumbersAreComparedAsText) {
    const vxStringList theList = ListOf("007,+1");

    EXPECT_FALSE(theList.HasInt32(7));
    EXPECT_FALSE(theList.HasUInt32(1));
}

TEST(StringListTest, FindsTheFirstMatch) {
    const vxStringList theList = ListOf("Ab,ab,AB,ab,,\xC4");

    EXPECT_EQ(theList.IndexOf("ab", true), 1u);
    EXPECT_EQ(theList.IndexOf("ab", false), 0u);
    EXPECT_EQ(theList.IndexOf("AB", true), 2u);
    EXPECT_EQ(theList.IndexOf("a", false), vxCString::npos);
    EXPECT_EQ(theList.IndexOf("abc", false), vxStringList::npos);
    EXPECT_EQ(theList.IndexOf("", true), 4u);
    EXPECT_EQ(theList.IndexOf(NULL, false), 4u);
    EXPECT_EQ(theList.IndexOf("\xE4", false), vxCString::npos);  // only ASCII has cases
    EXPECT_TRUE(theList.Has("aB", false));
    EXPECT_FALSE(theList.Has("aB", true));
    EXPECT_EQ(ListOf("a@").IndexOf("a`", false), vxCString::npos);
    EXPECT_EQ(ListOf("[").IndexOf("{", false), vxCString::npos);
}

TEST(StringListTest, RemovesTheFirstExactMatch) {
    vxStringList theList = ListOf("a,B,b,b,5,05");

    EXPECT_TRUE(theList.Remove("b"));
    EXPECT_EQ(TextOf(theList), "a,B,b,5,05");
    EXPECT_FALSE(theList.Remove("A"));
    EXPECT_TRUE(theList.RemoveUInt32(5));
    EXPECT_FALSE(theList.RemoveUInt32(5));
    EXPECT_EQ(TextOf(theList), "a,B,b,05");
    EXPECT_TRUE(theList.RemoveAt(0));
    EXPECT_TRUE(theList.RemoveAt(2));
    EXPECT_FALSE(theList.RemoveAt(2));
    EXPECT_EQ(TextOf(theList), "B,b");
    EXPECT_FALSE(vxStringList().RemoveAt(0));
}

TEST(StringListTest, RemovesEveryEmptyItem) {
    vxStringList theList = ListOf(",,a,,,b,");
    theList.RemoveEmpty();
    EXPECT_THAT(ItemsOf(theList), ElementsAre("a", "b"));

    vxStringList theEmpties = ListOf(",,");
    theEmpties.RemoveEmpty();
    EXPECT_EQ(theEmpties.GetCount(), 0u);

    vxStringList theNone;
    theNone.RemoveEmpty();
    EXPECT_EQ(theNone.GetCount(), 0u);
}

TEST(StringListTest, MergesWithoutAndWithDuplicates) {
    struct Case {
        const char* mList;
        const char* mOther;
        bool mfCaseSensitive;
        bool mfAllowDuplicates;
        const char* mResult;
    };
    constexpr Case kCases[] = {
        {"a,b", "b,c,a,d", true, false, "a,b,c,d"},
        {"a,b", "B,c,C,c", true, false, "a,b,B,c,C"},
        {"a,b", "B,c,C,c", false, false, "a,b,c"},
        {"a,b", "b,c,a", true, true, "a,b,b,c,a"},
        {"a,b", "b,c,a", false, true, "a,b,b,c,a"},
        {"a,a", "a", true, false, "a,a"},
        {"", "x,x", true, false, "x"},
        {"x", "", true, false, "x"},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(testing::Message() << theCase.mList << " + " << theCase.mOther);
        vxStringList theList = ListOf(theCase.mList);
        theList.Merge(ListOf(theCase.mOther), theCase.mfCaseSensitive, theCase.mfAllowDuplicates);
        EXPECT_EQ(TextOf(theList), theCase.mResult);
    }
}

TEST(StringListTest, MergesWithItself) {
    vxStringList theList = ListOf("a,b");
    theList.Merge(theList, true, false);
    EXPECT_EQ(TextOf(theList), "a,b");
    theList.Merge(theList, true, true);
    EXPECT_EQ(TextOf(theList), "a,b,a,b");
}

TEST(StringListTest, ComparesAsSetsOfEqualCount) {
    EXPECT_TRUE(ListOf("a,b").IsEqual(ListOf("b,a"), false));
    EXPECT_TRUE(ListOf("a,a").IsEqual(ListOf("a,b"), false));   // each item of the first is there
    EXPECT_FALSE(ListOf("a,b").IsEqual(ListOf("a,a"), false));  // but not the other way round
    EXPECT_FALSE(ListOf("a").IsEqual(ListOf("A"), false));
    EXPECT_FALSE(ListOf("a").IsEqual(ListOf("a,a"), false));
    EXPECT_TRUE(vxStringList().IsEqual(vxStringList(), true));
}

TEST(StringListTest, SeparatorsAreComparedOnRequest) {
    const vxStringList theOther("a;b", ';', 0);

    EXPECT_TRUE(ListOf("a,b").IsEqual(theOther, false));
    EXPECT_FALSE(ListOf("a,b").IsEqual(theOther, true));
    EXPECT_TRUE(ListOf("a,b").IsEqual(ListOf("a,b"), true));
}

TEST(StringListTest, DifferenceListsWhatWasAddedAndRemoved) {
    vxStringList theAdded("old;rest", ';', 0);
    vxStringList theRemoved("old", ';', 0);

    vxStringList::ComputeDiff(ListOf("a,b,c,b"), ListOf("d,c,B,d"), theAdded, theRemoved);

    EXPECT_EQ(TextOf(theAdded), "d;B;d");
    EXPECT_EQ(TextOf(theRemoved), "a;b;b");

    vxStringList::ComputeDiff(ListOf("a"), ListOf("a"), theAdded, theRemoved);
    EXPECT_EQ(theAdded.GetCount(), 0u);
    EXPECT_EQ(theRemoved.GetCount(), 0u);
}

TEST(StringListTest, DifferenceMayReplaceItsArguments) {
    vxStringList theOld = ListOf("a,b");
    vxStringList theNew = ListOf("b,c");

    vxStringList::ComputeDiff(theOld, theNew, theNew, theOld);

    EXPECT_EQ(TextOf(theNew), "c");
    EXPECT_EQ(TextOf(theOld), "a");
}

TEST(StringListTest, CommaIsTheSeparatorOfACSVList) {
    vxCSVStringList theEmpty;
    theEmpty.Add("a");
    theEmpty.Add("b");
    EXPECT_EQ(TextOf(theEmpty), "a,b");

    vxCSVStringList theEscaped('\\');
    EXPECT_EQ(theEscaped.GetCount(), 0u);
    theEscaped.Add("a,b");
    EXPECT_EQ(TextOf(theEscaped, '\\'), "a\\,b");

    EXPECT_THAT(ItemsOf(vxCSVStringList("a\\,b,c")), ElementsAre("a\\", "b", "c"));
    EXPECT_THAT(ItemsOf(vxCSVStringList("a\\,b,c", '\\')), ElementsAre("a,b", "c"));

    vxCSVStringList theOther("x");
    theOther.Set("a;b", ';', 0);
    EXPECT_THAT(ItemsOf(theOther), ElementsAre("a", "b"));
}

TEST(StringListTest, SplittingCostsTwoBlocksHoweverManyItemsThereAre) {
    const std::string theText(9999, ',');
    sSizes.clear();

    const vxStringList theList(theText.c_str(), ',', 0);

    EXPECT_EQ(theList.GetCount(), 10000u);
    EXPECT_THAT(sSizes, ElementsAre(10000, 10000 * sizeof(size_t)));
}

TEST(StringListTest, BlocksGrowByExactlyWhatIsNeeded) {
    vxStringList theList = ListOf("a,b");
    sSizes.clear();

    theList.Add("cd");
    theList.Prepend("e");

    EXPECT_THAT(sSizes, ElementsAre(7, 3 * sizeof(size_t), 9, 4 * sizeof(size_t)));
}

TEST(StringListTest, BytesInUseAreThoseAfterUnescaping) {
    vxStringList theList("a\\,b,c", ',', '\\');
    sSizes.clear();

    theList.Add("d");

    EXPECT_THAT(sSizes, ElementsAre(8, 3 * sizeof(size_t)));
}

TEST(StringListTest, BytesOfARemovedItemStayUntilTheNextSet) {
    vxStringList theList = ListOf("a,b");
    const char* theItem = theList.GetAt(1);
    sSizes.clear();

    theList.RemoveAt(0);
    EXPECT_EQ(theList.GetAt(0), theItem);
    EXPECT_THAT(sSizes, IsEmpty());
    theList.Add("cd");
    EXPECT_THAT(sSizes, ElementsAre(7, 2 * sizeof(size_t)));

    sSizes.clear();
    theList.Set("x", ',', 0);
    EXPECT_THAT(sSizes, ElementsAre(2, sizeof(size_t)));
}

// The string's own few bytes come beside the text.
TEST(StringListTest, JoinedTextIsBuiltOnceAndNotCopied) {
    const std::string theText = std::string(5000, 'x') + "\\," + std::string(5000, 'y') + ",z";
    const vxStringList theList(theText.c_str(), ',', '\\');
    const auto fIsText = [](size_t aSize) { return aSize > 1000; };
    for (const char theEscape : {'\0', '\\'}) {
        sSizes.clear();
        const vxCString theJoined = theList.GetString(theEscape);
        EXPECT_EQ(theJoined.length(), theEscape == '\0' ? 10003u : 10004u);
        EXPECT_EQ(std::count_if(sSizes.begin(), sSizes.end(), fIsText), 1);
    }
}

TEST(StringListTest, FailedAllocationLeavesTheListAlone) {
    vxStringList theList = ListOf("a,b");
    const vxStringList theOther = ListOf("e");
    sfNoMemory = true;

    theList.Add("c");
    theList.Prepend("d");
    theList.Merge(theOther, true, false);
    const vxCString theText = theList.GetString(0);
    const vxStringList theCopy(theList);
    sfNoMemory = false;

    EXPECT_STREQ(theText, "");
    EXPECT_EQ(theCopy.GetCount(), 0u);
    EXPECT_EQ(TextOf(theList), "a,b");
}

TEST(StringListTest, RandomTextsSplitAndJoinAsTheModel) {
    std::mt19937 theRandom(15);
    for (int i = 0; i < 20000; ++i) {
        std::string theText;
        for (size_t theLength = theRandom() % 12; theText.size() < theLength;) {
            theText += ",\\ab"[theRandom() % 4];
        }
        SCOPED_TRACE(theText);
        const char theEscape = theRandom() % 4 == 0 ? '\0' : '\\';
        const vxStringList theList(theText.c_str(), ',', theEscape);
        ASSERT_EQ(ItemsOf(theList), SplitModel(theText, ',', theEscape));
        ASSERT_EQ(TextOf(theList, theEscape), theText);
    }
}

TEST(StringListTest, RandomChangesAgreeWithAVector) {
    std::mt19937 theRandom(16);
    vxStringList theList(NULL, ',', 0);
    Items theModel;
    for (int i = 0; i < 20000; ++i) {
        const std::string theText(theRandom() % 4, static_cast<char>('a' + theRandom() % 3));
        const auto theFound = std::find(theModel.begin(), theModel.end(), theText);
        switch (theRandom() % 7) {
            case 0:
                theList.Add(theText.c_str());
                theModel.push_back(theText);
                break;
            case 1:
                theList.Prepend(theText.c_str());
                theModel.insert(theModel.begin(), theText);
                break;
            case 2:
            case 3:
                ASSERT_EQ(theList.Remove(theText.c_str()), theFound != theModel.end());
                if (theFound != theModel.end()) {
                    theModel.erase(theFound);
                }
                break;
            case 4:
                theList.RemoveEmpty();
                theModel.erase(std::remove(theModel.begin(), theModel.end(), ""), theModel.end());
                break;
            case 5:
                theList = vxStringList(theList);
                break;
            default:
                ASSERT_EQ(theList.Has(theText.c_str(), true), theFound != theModel.end());
                break;
        }
        ASSERT_EQ(ItemsOf(theList), theModel);
        std::string theJoined;
        for (size_t j = 0; j < theModel.size(); ++j) {
            theJoined += (j > 0 ? "," : "") + theModel[j];
        }
        ASSERT_EQ(TextOf(theList), theJoined);
    }
}
