#include "vx/CStringTokenizer.h"

#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/Reports.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Tokens = std::vector<std::string>;

constexpr vxCStringTokenizerMode kModes[] = {
    kTokenizerMode_ReturnEmptyMiddleOnly, kTokenizerMode_ReturnEmptyAll,
    kTokenizerMode_ReturnDelimiters, kTokenizerMode_Strtok};

std::string StringOf(const vxCString& aText) {
    return std::string(aText.c_str(), aText.length());
}

Tokens TokensOf(vxCStringTokenizer& aTokenizer) {
    Tokens theTokens;
    while (aTokenizer.HasMoreTokens()) {
        theTokens.push_back(StringOf(aTokenizer.GetNextToken()));
    }
    return theTokens;
}

Tokens TokensOf(const char* aText, const char* aDelimiters, vxCStringTokenizerMode aMode) {
    vxCStringTokenizer theTokenizer(aText, aDelimiters, aMode);
    return TokensOf(theTokenizer);
}

// The steps of the walk, literally: consumed bytes are cut off the text.
class Model {
public:
    Model(const std::string& aText, const std::string& aDelimiters, vxCStringTokenizerMode aMode)
        : mText(aText), mDelimiters(aDelimiters), mMode(aMode), mfHasMore(!aText.empty()) {}

    bool HasMoreTokens() const {
        if (mText.find_first_not_of(mDelimiters) != std::string::npos) {
            return true;
        }
        if (mMode == kTokenizerMode_ReturnEmptyAll) {
            return mfHasMore;
        }
        return mMode == kTokenizerMode_ReturnEmptyMiddleOnly && mPos == 0 && mfHasMore;
    }

    std::string GetNextToken() {
        while (HasMoreTokens()) {
            const size_t thePlace = mText.find_first_of(mDelimiters);
            std::string theToken;
            if (thePlace == std::string::npos) {
                theToken = mText;
                mPos += mText.size();
                mText.clear();
                mfHasMore = false;
            } else {
                const bool fKeep = mMode == kTokenizerMode_ReturnDelimiters;
                theToken = mText.substr(0, thePlace + (fKeep ? 1 : 0));
                mText.erase(0, thePlace + 1);
                mPos += thePlace + 1;
            }
            if (mMode != kTokenizerMode_Strtok || !theToken.empty()) {
                return theToken;
            }
        }
        return "";
    }

    std::string mText;
    std::string mDelimiters;
    size_t mPos = 0;
    vxCStringTokenizerMode mMode;
    bool mfHasMore;
};

}  // namespace

TEST(CStringTokenizerTest, ModesDifferInTheirEmptyTokens) {
    struct Case {
        const char* mText;
        Tokens mMiddleOnly;
        Tokens mAll;
        Tokens mDelimiters;
        Tokens mStrtok;
    };
    const Case theCases[] = {
        {"a,,b,", {"a", "", "b"}, {"a", "", "b", ""}, {"a,", ",", "b,"}, {"a", "b"}},
        {"", {}, {}, {}, {}},
        {"a", {"a"}, {"a"}, {"a"}, {"a"}},
        {",", {""}, {"", ""}, {}, {}},
        {",,", {""}, {"", "", ""}, {}, {}},
        {"a,", {"a"}, {"a", ""}, {"a,"}, {"a"}},
        {",a", {"", "a"}, {"", "a"}, {",", "a"}, {"a"}},
        {"a,b", {"a", "b"}, {"a", "b"}, {"a,", "b"}, {"a", "b"}},
        {"a,,", {"a"}, {"a", "", ""}, {"a,"}, {"a"}},
        {",,a,,b,,",
         {"", "", "a", "", "b"},
         {"", "", "a", "", "b", "", ""},
         {",", ",", "a,", ",", "b,"},
         {"a", "b"}},
    };
    for (const Case& theCase : theCases) {
        SCOPED_TRACE(theCase.mText);
        EXPECT_EQ(TokensOf(theCase.mText, ",", kTokenizerMode_ReturnEmptyMiddleOnly),
                  theCase.mMiddleOnly);
        EXPECT_EQ(TokensOf(theCase.mText, ",", kTokenizerMode_ReturnEmptyAll), theCase.mAll);
        EXPECT_EQ(TokensOf(theCase.mText, ",", kTokenizerMode_ReturnDelimiters),
                  theCase.mDelimiters);
        EXPECT_EQ(TokensOf(theCase.mText, ",", kTokenizerMode_Strtok), theCase.mStrtok);
    }
}

TEST(CStringTokenizerTest, NumbersOfTheModesAreFixed) {
    EXPECT_EQ(kTokenizerMode_NotInitialized, -1);
    EXPECT_EQ(kTokenizerMode_Default, 0);
    EXPECT_EQ(kTokenizerMode_ReturnEmptyMiddleOnly, 1);
    EXPECT_EQ(kTokenizerMode_ReturnEmptyAll, 2);
    EXPECT_EQ(kTokenizerMode_ReturnDelimiters, 3);
    EXPECT_EQ(kTokenizerMode_Strtok, 4);
    EXPECT_STREQ(kvxCStringTokenizer_DefaultDelimiters, " \t\r\n");
}

TEST(CStringTokenizerTest, DefaultModeSkipsEmptyTokensBetweenBlanksOnly) {
    struct Case {
        const char* mDelimiters;
        vxCStringTokenizerMode mMode;
    };
    constexpr Case kCases[] = {
        {" \t\r\n", kTokenizerMode_Strtok},
        {"", kTokenizerMode_Strtok},
        {" \v\f", kTokenizerMode_Strtok},
        {",", kTokenizerMode_ReturnEmptyMiddleOnly},
        {" ,", kTokenizerMode_ReturnEmptyMiddleOnly},
        {"\xA0", kTokenizerMode_ReturnEmptyMiddleOnly},
    };
    for (const Case& theCase : kCases) {
        SCOPED_TRACE(theCase.mDelimiters);
        EXPECT_EQ(vxCStringTokenizer("x", theCase.mDelimiters, kTokenizerMode_Default).GetMode(),
                  theCase.mMode);
    }
}

TEST(CStringTokenizerTest, BlanksAreTheDelimitersByDefault) {
    vxCStringTokenizer theTokenizer("  x \t\r\n y ");

    EXPECT_EQ(theTokenizer.GetMode(), kTokenizerMode_Strtok);
    EXPECT_THAT(TokensOf(theTokenizer), ElementsAre("x", "y"));
}

TEST(CStringTokenizerTest, WithoutDelimitersTheTextIsOneToken) {
    EXPECT_THAT(TokensOf("a b", "", kTokenizerMode_Default), ElementsAre("a b"));
}

TEST(CStringTokenizerTest, AnyByteOfTheSetIsADelimiter) {
    EXPECT_THAT(TokensOf("a;b,c\xFF"
                         "d",
                         ",;\xFF", kTokenizerMode_Default),
                ElementsAre("a", "b", "c", "d"));
}

TEST(CStringTokenizerTest, NullBytesAreBytes) {
    vxCStringTokenizer theTokenizer(vxCString("a\0b,c", 5), ",");
    EXPECT_THAT(TokensOf(theTokenizer), ElementsAre(std::string("a\0b", 3), "c"));

    theTokenizer.SetString(vxCString("a\0b,c", 5), vxCString("\0", 1));
    EXPECT_THAT(TokensOf(theTokenizer), ElementsAre("a", "b,c"));
}

TEST(CStringTokenizerTest, PositionAndRestAdvanceWithTheTokens) {
    vxCStringTokenizer theTokenizer("ab,,c,", ",", kTokenizerMode_ReturnEmptyAll);
    struct Case {
        const char* mToken;
        size_t mPosition;
        const char* mRest;
    };
    constexpr Case kCases[] = {{"ab", 3, ",c,"}, {"", 4, "c,"}, {"c", 6, ""}, {"", 6, ""}};

    EXPECT_EQ(theTokenizer.GetPosition(), 0u);
    EXPECT_STREQ(theTokenizer.GetString(), "ab,,c,");
    for (const Case& theCase : kCases) {
        ASSERT_TRUE(theTokenizer.HasMoreTokens());
        EXPECT_STREQ(theTokenizer.GetNextToken(), theCase.mToken);
        EXPECT_EQ(theTokenizer.GetPosition(), theCase.mPosition);
        EXPECT_STREQ(theTokenizer.GetString(), theCase.mRest);
    }
    EXPECT_FALSE(theTokenizer.HasMoreTokens());
    EXPECT_STREQ(theTokenizer.GetNextToken(), "");
    EXPECT_EQ(theTokenizer.GetPosition(), 6u);
}

TEST(CStringTokenizerTest, ReinitStartsOverWithTheSameDelimiters) {
    vxCStringTokenizer theTokenizer("a,b", ",");
    theTokenizer.GetNextToken();

    theTokenizer.Reinit("c,d");

    EXPECT_EQ(theTokenizer.GetPosition(), 0u);
    EXPECT_THAT(TokensOf(theTokenizer), ElementsAre("c", "d"));
    theTokenizer.Reinit("");
    EXPECT_FALSE(theTokenizer.HasMoreTokens());
}

TEST(CStringTokenizerTest, CountingMakesTheRestTheWholeText) {
    vxCStringTokenizer theTokenizer("a,b,,c", ",");
    EXPECT_EQ(theTokenizer.CountTokens(), 4u);
    EXPECT_EQ(theTokenizer.GetPosition(), 0u);

    theTokenizer.GetNextToken();
    EXPECT_EQ(theTokenizer.GetPosition(), 2u);
    EXPECT_EQ(theTokenizer.CountTokens(), 3u);
    EXPECT_EQ(theTokenizer.GetPosition(), 0u);
    EXPECT_THAT(TokensOf(theTokenizer), ElementsAre("b", "", "c"));
    EXPECT_EQ(theTokenizer.CountTokens(), 0u);
}

TEST(CStringTokenizerTest, CountingARestOfDelimitersStartsAtItsFront) {
    vxCStringTokenizer theTokenizer("a,,", ",");
    theTokenizer.GetNextToken();
    EXPECT_FALSE(theTokenizer.HasMoreTokens());

    EXPECT_EQ(theTokenizer.CountTokens(), 1u);
    EXPECT_THAT(TokensOf(theTokenizer), ElementsAre(""));
}

TEST(CStringTokenizerTest, CountingDropsTheEmptyTokenBehindALastDelimiter) {
    vxCStringTokenizer theTokenizer("a,", ",", kTokenizerMode_ReturnEmptyAll);
    theTokenizer.GetNextToken();
    EXPECT_TRUE(theTokenizer.HasMoreTokens());

    EXPECT_EQ(theTokenizer.CountTokens(), 0u);
    EXPECT_FALSE(theTokenizer.HasMoreTokens());
}

TEST(CStringTokenizerTest, WithoutATextEveryUseIsReported) {
    vxtest::Reports theReports;
    vxCStringTokenizer theTokenizer;

    EXPECT_FALSE(theTokenizer.IsOk());
    EXPECT_EQ(theTokenizer.GetMode(), kTokenizerMode_NotInitialized);
    EXPECT_STREQ(theTokenizer.GetString(), "");
    EXPECT_EQ(theTokenizer.GetPosition(), 0u);
    EXPECT_THAT(theReports.Assertions(), IsEmpty());

    EXPECT_FALSE(theTokenizer.HasMoreTokens());
    EXPECT_STREQ(theTokenizer.GetNextToken(), "");
    EXPECT_EQ(theTokenizer.CountTokens(), 0u);
    theTokenizer.Reinit("a");
    EXPECT_STREQ(theTokenizer.GetString(), "");
    EXPECT_THAT(theReports.Assertions(), ElementsAre("IsOk()", "IsOk()", "IsOk()", "IsOk()"));
    EXPECT_THAT(theReports.AssertionReports()[0].mFile, HasSubstr("/CStringTokenizer."));

    theReports.Clear();
    theTokenizer.SetString("a b");
    theTokenizer.SetString("a b", " ", kTokenizerMode_NotInitialized);
    EXPECT_FALSE(theTokenizer.IsOk());
    EXPECT_FALSE(theTokenizer.HasMoreTokens());
    EXPECT_THAT(theReports.Assertions(), ElementsAre("IsOk()", "IsOk()"));

    theReports.Clear();
    theTokenizer.SetString("a b");
    EXPECT_TRUE(theTokenizer.IsOk());
    EXPECT_THAT(TokensOf(theTokenizer), ElementsAre("a", "b"));
    EXPECT_THAT(theReports.Assertions(), IsEmpty());
}

TEST(CStringTokenizerTest, TheTextItselfIsNotChanged) {
    vxCString theText("a,b");
    vxCStringTokenizer theTokenizer(theText, ",");
    theTokenizer.GetNextToken();
    EXPECT_STREQ(theText, "a,b");

    theText += ",c";
    EXPECT_THAT(TokensOf(theTokenizer), ElementsAre("b"));
}

// A walk that looked at the rest of the text for every token would take hours here.
TEST(CStringTokenizerTest, LongRunsOfDelimitersCostNoMoreThanTheirLength) {
    const std::string theRun(500000, ',');
    const std::string theText = theRun + "x" + theRun + "y" + theRun;
    for (const vxCStringTokenizerMode theMode : kModes) {
        SCOPED_TRACE(theMode);
        vxCStringTokenizer theTokenizer(vxCString(theText.c_str(), theText.size()), ",", theMode);
        size_t theCount = 0;
        for (; theTokenizer.HasMoreTokens(); ++theCount) {
            theTokenizer.GetNextToken();
        }
        EXPECT_EQ(theCount, theMode == kTokenizerMode_Strtok           ? 2u
                            : theMode == kTokenizerMode_ReturnEmptyAll ? 1500001u
                                                                       : 1000001u);
    }
}

TEST(CStringTokenizerTest, RandomTextsAgreeWithTheStepsTakenLiterally) {
    std::mt19937 theRandom(17);
    for (int i = 0; i < 20000; ++i) {
        std::string theText;
        for (size_t theLength = theRandom() % 10; theText.size() < theLength;) {
            theText += ",;ab"[theRandom() % 4];
        }
        const vxCStringTokenizerMode theMode = kModes[theRandom() % 4];
        const char* theDelimiters = theRandom() % 2 == 0 ? "," : ",;";
        SCOPED_TRACE(testing::Message() << theText << " mode " << theMode << " " << theDelimiters);
        vxCStringTokenizer theTokenizer(theText.c_str(), theDelimiters, theMode);
        Model theModel(theText, theDelimiters, theMode);
        for (int j = 0; j < 12; ++j) {
            ASSERT_EQ(theTokenizer.HasMoreTokens(), theModel.HasMoreTokens());
            ASSERT_EQ(StringOf(theTokenizer.GetNextToken()), theModel.GetNextToken());
            ASSERT_EQ(theTokenizer.GetPosition(), theModel.mPos);
            ASSERT_EQ(StringOf(theTokenizer.GetString()), theModel.mText);
        }
    }
}
