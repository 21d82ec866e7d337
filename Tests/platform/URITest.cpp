#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libteskTools/URI.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/Reports.h"
#include "support/ScriptedMemory.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

struct URIDelete {
    void operator()(vxURI* anURI) const { vxURI_Delete(anURI); }
};
using URIPtr = std::unique_ptr<vxURI, URIDelete>;
using Parts = std::vector<std::pair<std::string, std::string>>;

std::string Taken(char* aText) {
    const std::string theText = aText == nullptr ? "(null)" : aText;
    free(aText);
    return theText;
}

Parts PartsOf(const URIPtr& anURI) {
    Parts theParts;
    char* theName = nullptr;
    char* theValue = nullptr;
    for (size_t i = 0; vxURI_GetQueryPartAt(anURI.get(), i, &theName, &theValue); ++i) {
        std::string theTakenName = Taken(theName);
        theParts.emplace_back(theTakenName, Taken(theValue));
    }
    EXPECT_EQ(theParts.size(), vxURI_GetQueryPartCount(anURI.get()));
    return theParts;
}

Parts QueryParts(const std::string& aQuery) {
    return PartsOf(URIPtr(vxURI_NewFromPath(("/?" + aQuery).c_str(), true)));
}

std::string DecodedPath(const char* aPath) {
    return URIPtr(vxURI_NewFromPath(aPath, true))->mPath;
}

TEST(URITest, APathIsFollowedByQueryAndFragment) {
    const struct {
        const char* mText;
        const char* mPath;
        const char* mQuery;
        const char* mFragment;
    } kRows[] = {
        {"/a/b", "/a/b", nullptr, nullptr},
        {"/a?b=c", "/a", "b=c", nullptr},
        {"/a#f", "/a", nullptr, "f"},
        {"/a?b#f", "/a", "b", "f"},
        {"/a#f?b", "/a", nullptr, "f?b"},
        {"/a?b?c#d#e", "/a", "b?c", "d#e"},
        {"/a?", "/a", "", nullptr},
        {"/a#", "/a", nullptr, ""},
        {"", "", nullptr, nullptr},
        {"?b", "", "b", nullptr},
        {"a:b@c//d", "a:b@c//d", nullptr, nullptr},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        const URIPtr theURI(vxURI_NewFromPath(theRow.mText, true));
        EXPECT_STREQ(theURI->mPath, theRow.mPath);
        EXPECT_STREQ(theURI->mQuery, theRow.mQuery);
        EXPECT_STREQ(theURI->mFragment, theRow.mFragment);
        EXPECT_EQ(theURI->mScheme, nullptr);
        EXPECT_EQ(theURI->mHostName, nullptr);
        EXPECT_EQ(theURI->mUserInfo, nullptr);
        EXPECT_EQ(theURI->mPort, 0);
    }
}

TEST(URITest, ANullTextGivesARecordWithoutAPath) {
    for (vxURI* theText : {vxURI_NewFromPath(nullptr, true), vxURI_New(nullptr, true)}) {
        const URIPtr theURI(theText);
        ASSERT_NE(theURI, nullptr);
        EXPECT_EQ(theURI->mPath, nullptr);
        EXPECT_THAT(PartsOf(theURI), IsEmpty());
    }
}

TEST(URITest, PercentEscapesAreDecodedOnceAndMalformedOnesStandForThemselves) {
    const struct {
        const char* mText;
        const char* mDecoded;
    } kRows[] = {
        {"/%41", "/A"},           {"/%7e%7E", "/~~"},
        {"/%c3%A9", "/\xC3\xA9"}, {"/%FF%01", "/\xFF\x01"},
        {"/%2541", "/%41"},       {"/%3F%23", "/?#"},
        {"/%2F", "//"},           {"/a+b", "/a+b"},
        {"/%00", "/%00"},         {"/%", "/%"},
        {"/%4", "/%4"},           {"/%4g", "/%4g"},
        {"/%g4", "/%g4"},         {"/%%41", "/%A"},
        {"/%4%41", "/%4A"},       {"/% 41", "/% 41"},
        {"/%@0%`0", "/%@0%`0"},   {"/%0x", "/%0x"},
        {"/%-1", "/%-1"},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        EXPECT_EQ(DecodedPath(theRow.mText), theRow.mDecoded);
        EXPECT_STREQ(URIPtr(vxURI_NewFromPath(theRow.mText, false))->mPath, theRow.mText);
    }
}

TEST(URITest, EveryEscapeOfTwoDigitsIsItsByte) {
    for (int i = 1; i < 256; ++i) {
        for (const char* theDigits : {"0123456789abcdef", "0123456789ABCDEF"}) {
            const char theText[] = {'%', theDigits[i / 16], theDigits[i % 16], '\0'};
            EXPECT_EQ(DecodedPath(theText), std::string(1, static_cast<char>(i))) << theText;
        }
    }
}

TEST(URITest, AnEscapeThatTheQueryCutsIsNone) {
    const URIPtr theURI(vxURI_NewFromPath("/%4?1=%4&1=%&%41", true));
    EXPECT_STREQ(theURI->mPath, "/%4");
    EXPECT_THAT(PartsOf(theURI), ElementsAre(Pair("1", "%4"), Pair("1", "%"), Pair("A", "")));
}

TEST(URITest, QueriesAreWrittenAsFormsWriteThem) {
    const struct {
        const char* mQuery;
        Parts mParts;
    } kRows[] = {
        {"", {}},
        {"&", {}},
        {"&&&", {}},
        {"a=1", {{"a", "1"}}},
        {"a=1&b=2", {{"a", "1"}, {"b", "2"}}},
        {"a=1&&b=2&", {{"a", "1"}, {"b", "2"}}},
        {"&a", {{"a", ""}}},
        {"a", {{"a", ""}}},
        {"a=", {{"a", ""}}},
        {"=1", {{"", "1"}}},
        {"=", {{"", ""}}},
        {"a=b=c", {{"a", "b=c"}}},
        {"a+b=c+d", {{"a b", "c d"}}},
        {"a%2Bb=%26%3D", {{"a+b", "&="}}},
        {"a%3Db=c", {{"a=b", "c"}}},
        {"a=%00", {{"a", "%00"}}},
        {"a=%zz%", {{"a", "%zz%"}}},
        {"a=1;b=2", {{"a", "1;b=2"}}},
        {"a=1&a=2", {{"a", "1"}, {"a", "2"}}},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mQuery);
        EXPECT_EQ(QueryParts(theRow.mQuery), theRow.mParts);
    }
}

TEST(URITest, TheFirstOfEqualNamesCounts) {
    const URIPtr theURI(vxURI_NewFromPath("/?a=1&a=2&A=3", true));
    EXPECT_EQ(Taken(vxURI_GetQueryPart(theURI.get(), "a")), "1");
    EXPECT_EQ(Taken(vxURI_GetQueryPart(theURI.get(), "A")), "3");
    EXPECT_EQ(vxURI_GetQueryPart(theURI.get(), "b"), nullptr);
    EXPECT_EQ(vxURI_GetQueryPart(theURI.get(), ""), nullptr);
    EXPECT_EQ(vxURI_GetQueryPart(theURI.get(), nullptr), nullptr);
    EXPECT_TRUE(vxURI_HasQueryPart(theURI.get(), "a"));
    EXPECT_FALSE(vxURI_HasQueryPart(theURI.get(), "b"));
    EXPECT_FALSE(vxURI_HasQueryPart(theURI.get(), nullptr));
}

TEST(URITest, APlaceBeyondTheLastPartLeavesTheTargetsAlone) {
    const URIPtr theURI(vxURI_NewFromPath("/?a=1", true));
    char theMark = 'x';
    char* theName = &theMark;
    char* theValue = &theMark;
    EXPECT_FALSE(vxURI_GetQueryPartAt(theURI.get(), 1, &theName, &theValue));
    EXPECT_EQ(theName, &theMark);
    EXPECT_EQ(theValue, &theMark);
}

TEST(URITest, ANullRecordHasNoPartsAndNothingToChange) {
    EXPECT_EQ(vxURI_GetQueryPartCount(nullptr), 0U);
    EXPECT_FALSE(vxURI_HasQueryPart(nullptr, "a"));
    EXPECT_EQ(vxURI_GetQueryPart(nullptr, "a"), nullptr);
    char* theText = nullptr;
    EXPECT_FALSE(vxURI_GetQueryPartAt(nullptr, 0, &theText, &theText));
    EXPECT_EQ(vxURI_Clone(nullptr), nullptr);
    vxURI_TruncatePathBegin(nullptr, 1);
    vxURI_SetQueryFromPost(nullptr, "a=1", true, true);
    vxURI_Delete(nullptr);
}

TEST(URITest, AWholeURIIsTakenApart) {
    const struct {
        const char* mText;
        const char* mScheme;
        const char* mUserInfo;
        const char* mHostName;
        uint16_t mPort;
        const char* mPath;
    } kRows[] = {
        {"http://host", "http", nullptr, "host", 0, ""},
        {"http://host/", "http", nullptr, "host", 0, "/"},
        {"http://host:8080/a", "http", nullptr, "host", 8080, "/a"},
        {"http://host:65535/", "http", nullptr, "host", 65535, "/"},
        {"http://host:65536/", "http", nullptr, "host", 0, "/"},
        {"http://host:/", "http", nullptr, "host", 0, "/"},
        {"http://host:x/", "http", nullptr, "host", 0, "/"},
        {"a+b-c.1://u:p@host:1/x", "a+b-c.1", "u:p", "host", 1, "/x"},
        {"http://[::1]/x", "http", nullptr, "[::1]", 0, "/x"},
        {"http://[::1]:80/x", "http", nullptr, "[::1]", 80, "/x"},
        {"http://host/a@b:1", "http", nullptr, "host", 0, "/a@b:1"},
        {"file:///etc/x", "file", nullptr, "", 0, "/etc/x"},
        {"/a://b", nullptr, nullptr, nullptr, 0, "/a://b"},
        {"1a://b", nullptr, nullptr, nullptr, 0, "1a://b"},
        {"zaZA09://b", "zaZA09", nullptr, "b", 0, ""},
        {"AZ://b", "AZ", nullptr, "b", 0, ""},
        {"a@://b", nullptr, nullptr, nullptr, 0, "a@://b"},
        {"a[://b", nullptr, nullptr, nullptr, 0, "a[://b"},
        {"a`://b", nullptr, nullptr, nullptr, 0, "a`://b"},
        {"a{://b", nullptr, nullptr, nullptr, 0, "a{://b"},
        {"a/://b", nullptr, nullptr, nullptr, 0, "a/://b"},
        {"a:://b", nullptr, nullptr, nullptr, 0, "a:://b"},
        {"://b", nullptr, nullptr, nullptr, 0, "://b"},
        {"mail:x", nullptr, nullptr, nullptr, 0, "mail:x"},
    };
    for (const auto& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        const URIPtr theURI(vxURI_New(theRow.mText, true));
        EXPECT_STREQ(theURI->mScheme, theRow.mScheme);
        EXPECT_STREQ(theURI->mUserInfo, theRow.mUserInfo);
        EXPECT_STREQ(theURI->mHostName, theRow.mHostName);
        EXPECT_EQ(theURI->mPort, theRow.mPort);
        EXPECT_STREQ(theURI->mPath, theRow.mPath);
    }
}

TEST(URITest, AWholeURIHasQueryAndFragmentBehindHostOrPath) {
    const URIPtr theURI(vxURI_New("http://host?a=%41#f", false));
    EXPECT_STREQ(theURI->mHostName, "host");
    EXPECT_STREQ(theURI->mPath, "");
    EXPECT_STREQ(theURI->mQuery, "a=%41");
    EXPECT_STREQ(theURI->mFragment, "f");
    EXPECT_THAT(PartsOf(theURI), ElementsAre(Pair("a", "A")));
}

TEST(URITest, ACloneHasEverythingOfItsOwn) {
    URIPtr theURI(vxURI_New("http://u@host:1/p?a=1&=&b%3D=%26+#f", true));
    const URIPtr theClone(vxURI_Clone(theURI.get()));
    theURI.reset();
    EXPECT_STREQ(theClone->mScheme, "http");
    EXPECT_STREQ(theClone->mUserInfo, "u");
    EXPECT_STREQ(theClone->mHostName, "host");
    EXPECT_EQ(theClone->mPort, 1);
    EXPECT_STREQ(theClone->mPath, "/p");
    EXPECT_STREQ(theClone->mQuery, "a=1&=&b%3D=%26+");
    EXPECT_STREQ(theClone->mFragment, "f");
    EXPECT_THAT(PartsOf(theClone), ElementsAre(Pair("a", "1"), Pair("", ""), Pair("b=", "& ")));
}

TEST(URITest, ACloneLacksWhatTheOriginalLacks) {
    const URIPtr theURI(vxURI_NewFromPath(nullptr, true));
    const URIPtr theClone(vxURI_Clone(theURI.get()));
    EXPECT_EQ(theClone->mPath, nullptr);
    EXPECT_EQ(theClone->mQuery, nullptr);
    EXPECT_THAT(PartsOf(theClone), IsEmpty());
}

TEST(URITest, ThePathIsCutFromItsBeginning) {
    const URIPtr theURI(vxURI_NewFromPath("/items/42?a", true));
    vxURI_TruncatePathBegin(theURI.get(), 0);
    EXPECT_STREQ(theURI->mPath, "/items/42");
    vxURI_TruncatePathBegin(theURI.get(), 6);
    EXPECT_STREQ(theURI->mPath, "/42");
    vxURI_TruncatePathBegin(theURI.get(), 3);
    EXPECT_STREQ(theURI->mPath, "");
    vxURI_TruncatePathBegin(theURI.get(), 1);
    EXPECT_STREQ(theURI->mPath, "");
    const URIPtr theLong(vxURI_NewFromPath("/a", true));
    vxURI_TruncatePathBegin(theLong.get(), static_cast<size_t>(-1));
    EXPECT_STREQ(theLong->mPath, "");
    const URIPtr theNone(vxURI_NewFromPath(nullptr, true));
    vxURI_TruncatePathBegin(theNone.get(), 1);
    EXPECT_EQ(theNone->mPath, nullptr);
}

TEST(URITest, AFormBodyReplacesOrFollowsTheParts) {
    const URIPtr theURI(vxURI_NewFromPath("/?a=1", true));
    vxURI_SetQueryFromPost(theURI.get(), "b=x+y", false, true);
    EXPECT_THAT(PartsOf(theURI), ElementsAre(Pair("a", "1"), Pair("b", "x y")));
    vxURI_SetQueryFromPost(theURI.get(), "c=x+%2B", false, false);
    EXPECT_THAT(PartsOf(theURI), ElementsAre(Pair("a", "1"), Pair("b", "x y"), Pair("c", "x++")));
    vxURI_SetQueryFromPost(theURI.get(), "", false, true);
    EXPECT_EQ(vxURI_GetQueryPartCount(theURI.get()), 3U);
    vxURI_SetQueryFromPost(theURI.get(), "d", true, true);
    EXPECT_THAT(PartsOf(theURI), ElementsAre(Pair("d", "")));
    EXPECT_STREQ(theURI->mQuery, "a=1");
    vxURI_SetQueryFromPost(theURI.get(), nullptr, true, true);
    EXPECT_THAT(PartsOf(theURI), IsEmpty());
    vxURI_SetQueryFromPost(theURI.get(), "e=1", false, true);
    EXPECT_THAT(PartsOf(theURI), ElementsAre(Pair("e", "1")));
}

TEST(URITest, AFormBodyMayBeAPartOfTheRecord) {
    const URIPtr theURI(vxURI_NewFromPath("/?a=b%3D1%26c", true));
    vxURI_SetQueryFromPost(theURI.get(), theURI->mQueryParts[0].mValue, true, true);
    EXPECT_THAT(PartsOf(theURI), ElementsAre(Pair("b", "1"), Pair("c", "")));
}

TEST(URITest, ALongQueryIsReadWhole) {
    std::string theQuery;
    for (int i = 0; i < 100000; ++i) {
        theQuery += "&n" + std::to_string(i) + "&&";
    }
    const URIPtr theURI(vxURI_NewFromPath(("/?" + theQuery).c_str(), true));
    ASSERT_EQ(vxURI_GetQueryPartCount(theURI.get()), 100000U);
    EXPECT_STREQ(theURI->mQueryParts[99999].mName, "n99999");
}

TEST(URITest, WithoutMemoryThereIsNoRecordAndNoParts) {
    const URIPtr theURI(vxURI_NewFromPath("/?a=1", true));
    vxtest::Reports theReports;
    const vxtest::NoMemory theNoMemory;
    EXPECT_EQ(vxURI_NewFromPath("/?a=1", true), nullptr);
    EXPECT_EQ(vxURI_New("http://a/?a=1", true), nullptr);
    EXPECT_EQ(vxURI_Clone(theURI.get()), nullptr);
    vxURI_SetQueryFromPost(theURI.get(), "b=2", true, true);
    EXPECT_EQ(vxURI_GetQueryPartCount(theURI.get()), 0U);
    EXPECT_THAT(theReports.FatalErrors(), testing::Not(IsEmpty()));
}

// A plain reading of a query: what stands between the separators, escapes replaced.
std::string PlainDecode(const std::string& aText) {
    std::string theResult;
    for (size_t i = 0; i < aText.size(); ++i) {
        const std::string theDigits = aText.substr(i + 1, 2);
        const bool theEscape = aText[i] == '%' && theDigits.size() == 2 &&
                               isxdigit(theDigits[0]) != 0 && isxdigit(theDigits[1]) != 0 &&
                               theDigits != "00";
        if (theEscape) {
            theResult += static_cast<char>(std::stoi(theDigits, nullptr, 16));
            i += 2;
        } else {
            theResult += aText[i] == '+' ? ' ' : aText[i];
        }
    }
    return theResult;
}

TEST(URITest, RandomQueriesReadAsAPlainModelReadsThem) {
    uint32_t theState = 2024;
    const auto theNext = [&theState](uint32_t aLimit) {
        theState = theState * 1664525U + 1013904223U;
        return (theState >> 16) % aLimit;
    };
    for (int i = 0; i < 20000; ++i) {
        std::string theQuery;
        for (uint32_t theLength = theNext(16); theLength != 0; --theLength) {
            theQuery += "&&==+%%04aFz"[theNext(12)];
        }
        Parts theModel;
        for (size_t theStart = 0; theStart < theQuery.size();) {
            const size_t theStop = std::min(theQuery.find('&', theStart), theQuery.size());
            const std::string thePart = theQuery.substr(theStart, theStop - theStart);
            const size_t theEqual = thePart.find('=');
            if (!thePart.empty()) {
                theModel.emplace_back(
                    PlainDecode(thePart.substr(0, theEqual)),
                    theEqual == std::string::npos ? "" : PlainDecode(thePart.substr(theEqual + 1)));
            }
            theStart = theStop + 1;
        }
        EXPECT_EQ(QueryParts(theQuery), theModel) << theQuery;
    }
}

}  // namespace
