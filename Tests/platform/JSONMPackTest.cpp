#include <gmock/gmock.h>
#include <libteskTools/JSON.h>
#include <libteskTools/Memory.h>

#include <cmath>
#include <random>

#include "platform/JSONTree.h"

namespace {

size_t sAllocated = 0;

}  // namespace

// Stands in front of the library's own and counts bytes.
extern "C" VX_API void* vxMalloc(size_t aSize) {
    sAllocated += aSize;
    return malloc(aSize);
}

namespace {

using vxtest::Decode;
using vxtest::Encode;
using vxtest::Parse;
using vxtest::Print;
using vxtest::Tree;
using namespace std::string_literals;

struct DeleteDictionary {
    void operator()(vxJSONMPackDictionary_t* aDictionary) const {
        vxJSONMPackDictionary_Delete(aDictionary);
    }
};
using Dictionary = std::unique_ptr<vxJSONMPackDictionary_t, DeleteDictionary>;

Dictionary NewDictionary(const std::vector<std::string>& aWords) {
    Dictionary theDictionary(vxJSONMPackDictionary_New());
    for (const std::string& theWord : aWords) {
        vxJSONMPackDictionary_AddString(theDictionary.get(), theWord.c_str());
    }
    return theDictionary;
}

std::string Items(size_t aCount, const std::string& anItem) {
    std::string theItems;
    for (size_t i = 0; i < aCount; ++i) {
        theItems += anItem;
    }
    return theItems;
}

std::string JSONItems(size_t aCount) {
    return "[" + Items(aCount - 1, "0,") + "0]";
}

TEST(JSONMPackTest, ValuesTakeTheirSmallestForm) {
    struct Row {
        std::string mText;
        std::string mBytes;
    };
    const Row kRows[] = {
        {"null", "\xC0"},
        {"false", "\xC2"},
        {"true", "\xC3"},
        {"0", "\0"s},
        {"127", "\x7F"},
        {"128", "\xCC\x80"},
        {"255", "\xCC\xFF"},
        {"256", "\xCD\x01\x00"s},
        {"65535", "\xCD\xFF\xFF"},
        {"65536", "\xCE\x00\x01\x00\x00"s},
        {"4294967295", "\xCE\xFF\xFF\xFF\xFF"},
        {"4294967296", "\xCF\x00\x00\x00\x01\x00\x00\x00\x00"s},
        {"18446744073709551615", "\xCF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
        {"-1", "\xFF"},
        {"-32", "\xE0"},
        {"-33", "\xD0\xDF"},
        {"-128", "\xD0\x80"},
        {"-129", "\xD1\xFF\x7F"},
        {"-32768", "\xD1\x80\x00"s},
        {"-32769", "\xD2\xFF\xFF\x7F\xFF"},
        {"-2147483648", "\xD2\x80\x00\x00\x00"s},
        {"-2147483649", "\xD3\xFF\xFF\xFF\xFF\x7F\xFF\xFF\xFF"},
        {"1.5", "\xCA\x3F\xC0\x00\x00"s},
        {"0.1", "\xCB\x3F\xB9\x99\x99\x99\x99\x99\x9A"},
        {"1e300", "\xCB\x7E\x37\xE4\x3C\x88\x00\x75\x9C"s},
        {"\"\"", "\xA0"},
        {"\"abc\"",
         "\xA3"
         "abc"},
        {"\"" + std::string(31, 'a') + "\"", "\xBF" + std::string(31, 'a')},
        {"\"" + std::string(32, 'a') + "\"", "\xD9\x20" + std::string(32, 'a')},
        {"\"" + std::string(256, 'a') + "\"", "\xDA\x01\x00"s + std::string(256, 'a')},
        {"\"" + std::string(65536, 'a') + "\"", "\xDB\x00\x01\x00\x00"s + std::string(65536, 'a')},
        {"[]", "\x90"},
        {JSONItems(15), "\x9F" + Items(15, "\0"s)},
        {JSONItems(16), "\xDC\x00\x10"s + Items(16, "\0"s)},
        {JSONItems(65535), "\xDC\xFF\xFF" + Items(65535, "\0"s)},
        {JSONItems(65536), "\xDD\x00\x01\x00\x00"s + Items(65536, "\0"s)},
        {"{}", "\x80"},
        {"{\"a\":1,\"b\":[2]}",
         "\x82\xA1"
         "a\x01\xA1"
         "b\x91\x02"},
        {"{" + Items(15, "\"a\":0,") + "\"a\":0}", "\xDE\x00\x10"s + Items(16,
                                                                           "\xA1"
                                                                           "a\0"s)},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mText.substr(0, 40));
        const Tree theTree = Parse(theRow.mText);
        EXPECT_EQ(Encode(theTree.get()), theRow.mBytes);
        const Tree theDecoded = Decode(theRow.mBytes);
        EXPECT_EQ(Print(theDecoded), Print(theTree));
        EXPECT_EQ(vxJSON_Compare(theDecoded.get(), theTree.get()), 0);
    }
}

TEST(JSONMPackTest, LongerFormsAreReadToo) {
    struct Row {
        std::string mBytes;
        const char* mText;
    };
    const Row kRows[] = {
        {"\xCC\x05", "5"},
        {"\xCF\x00\x00\x00\x00\x00\x00\x00\x05"s, "5"},
        {"\xD0\x05", "5"},
        {"\xD3\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "-1"},
        {"\xD9\x01x", "\"x\""},
        {"\xDB\x00\x00\x00\x01x"s, "\"x\""},
        {"\xDD\x00\x00\x00\x01\xC0"s, "[null]"},
        {"\xDF\x00\x00\x00\x01\xD9\x01x\xC0"s, "{\"x\":null}"},
        {"\xCA\x7F\x80\x00\x00"s, "null"},  // infinity is a number, which has no text
        {"\xCB\x40\x09\x21\xFB\x54\x44\x2D\x18"s, "3.141592653589793"},
    };
    for (const Row& theRow : kRows) {
        SCOPED_TRACE(theRow.mText);
        EXPECT_EQ(Print(Decode(theRow.mBytes)), theRow.mText);
    }
    EXPECT_NE(vxJSON_Is(Decode("\xD0\x05").get(), kvxJSON_Number), 0);
    EXPECT_NE(vxJSON_Is(Decode("\xCA\x7F\x80\x00\x00"s).get(), kvxJSON_Double), 0);
}

TEST(JSONMPackTest, WhatNoTreeCanHoldIsRefused) {
    const std::string kBytes[] = {
        "",
        "\xC1",           // never used
        "\xC4\x01x",      // binary
        "\xC7\x01\x05x",  // extension
        "\xD4\x01x",      // fixed extension
        "\xCC",           // numbers cut short
        "\xCD\x01",
        "\xCB\x00\x00\x00\x00\x00\x00\x00"s,
        "\xD3\x00"s,
        "\xA3"
        "ab",  // texts cut short
        "\xD9\x05"
        "abcd",
        "\xDA\x00"s,
        "\xDB\xFF\xFF\xFF\xFF"
        "abc",
        "\x92\x01",  // containers cut short
        "\xDC\xFF\xFF\x01",
        "\xDD\xFF\xFF\xFF\xFF\x01",
        "\x81\xA1"
        "a",
        "\x82\xA1"
        "a\x01",
        "\xDF\xFF\xFF\xFF\xFF\xA1"
        "a\x01",
        "\x81\x01\x01",  // a name that is a number, without a dictionary
        "\x81\xFF\x01",  // names of other types
        "\x81\xC0\x01",
        "\x81\xC3\x01",
        "\x81\x90\x01",
        "\x81\xCA\x00\x00\x00\x00\x01"s,
        "\xA1\xFF",  // no UTF-8
        "\x81\xA2\xC3(\x01",
        "\x01\x01",  // bytes behind the value
        "\x90\x90",
    };
    for (const std::string& theBytes : kBytes) {
        SCOPED_TRACE(testing::PrintToString(theBytes));
        EXPECT_EQ(Decode(theBytes), nullptr);
    }
    EXPECT_EQ(vxJSON_FromMPackSize(nullptr, 1, nullptr), nullptr);
    EXPECT_EQ(vxJSON_FromMPack(nullptr, nullptr), nullptr);
    EXPECT_EQ(vxJSON_ToMPack(nullptr, nullptr, nullptr), nullptr);
}

TEST(JSONMPackTest, EveryCutOfAMessageIsRefused) {
    const std::string theBytes =
        Encode(Parse("{\"a\":[1,300,70000,-5,-300,1.5,0.1,\"text\"],\"b\":{\"c\":null,\"d\":true}}")
                   .get());
    EXPECT_NE(Decode(theBytes), nullptr);
    for (size_t theSize = 0; theSize < theBytes.size(); ++theSize) {
        SCOPED_TRACE(theSize);
        EXPECT_EQ(Decode(theBytes.substr(0, theSize)), nullptr);
    }
}

TEST(JSONMPackTest, AThousandLevelsAreReadAndOneMoreIsRefused) {
    EXPECT_NE(Decode(std::string(999, '\x91') + "\x90"), nullptr);
    EXPECT_EQ(Decode(std::string(1000, '\x91') + "\x90"), nullptr);
    EXPECT_EQ(Decode(std::string(1000000, '\x91')), nullptr);
}

TEST(JSONMPackTest, ABufferWithoutLengthIsReadToTheEndOfItsValue) {
    const uint8_t kBytes[] = {0x82, 0xA1, 'a', 0x01, 0xA1, 'b', 0x92, 0xC0, 0xC3, 0xFF};
    const Tree theTree(vxJSON_FromMPack(kBytes, nullptr));
    EXPECT_EQ(Print(theTree), "{\"a\":1,\"b\":[null,true]}");
}

TEST(JSONMPackTest, TheSizeMayBeLeftOut) {
    const Tree theTree = Parse("5");
    uint8_t* theBytes = vxJSON_ToMPack(theTree.get(), nullptr, nullptr);
    EXPECT_EQ(theBytes[0], 5);
    free(theBytes);
}

TEST(JSONMPackTest, MalformedTextIsWrittenWithoutItsBadBytes) {
    const Tree theTree(
        vxJSON_CreateString("a\xFF"
                            "b"));
    EXPECT_EQ(Encode(theTree.get()),
              "\xA2"
              "ab");
}

// ---- Dictionary

TEST(JSONMPackTest, WordsAreNumberedInTheOrderInWhichTheyCome) {
    const Dictionary theDictionary = NewDictionary({"zero", "one", "zero", ""});
    EXPECT_EQ(vxJSONMPackDictionary_GetStringIndex(theDictionary.get(), "zero"), 0);
    EXPECT_EQ(vxJSONMPackDictionary_GetStringIndex(theDictionary.get(), "one"), 1);
    EXPECT_EQ(vxJSONMPackDictionary_GetStringIndex(theDictionary.get(), ""), 3);
    EXPECT_EQ(vxJSONMPackDictionary_GetStringIndex(theDictionary.get(), "One"), -1);
    EXPECT_EQ(vxJSONMPackDictionary_GetStringIndex(theDictionary.get(), nullptr), -1);
    EXPECT_EQ(vxJSONMPackDictionary_GetStringIndex(nullptr, "one"), -1);
    EXPECT_STREQ(vxJSONMPackDictionary_GetStringAtIndex(theDictionary.get(), 2), "zero");
    EXPECT_EQ(vxJSONMPackDictionary_GetStringAtIndex(theDictionary.get(), 4), nullptr);
    EXPECT_EQ(vxJSONMPackDictionary_GetStringAtIndex(theDictionary.get(), -1), nullptr);
    EXPECT_EQ(vxJSONMPackDictionary_GetStringAtIndex(nullptr, 0), nullptr);
    vxJSONMPackDictionary_AddString(nullptr, "x");
    vxJSONMPackDictionary_Delete(nullptr);
}

TEST(JSONMPackTest, NamesOfTheDictionaryAreWrittenAsTheirIndex) {
    const Dictionary theDictionary = NewDictionary({"a", "b"});
    const Tree theTree = Parse("{\"b\":\"b\",\"c\":{\"a\":1}}");
    const std::string theBytes = Encode(theTree.get(), theDictionary.get());
    EXPECT_EQ(theBytes,
              "\x82\x01\xA1"
              "b\xA1"
              "c\x81\x00\x01"s);
    EXPECT_EQ(Print(Decode(theBytes, theDictionary.get())), Print(theTree));
    EXPECT_EQ(Decode(theBytes), nullptr);
    EXPECT_EQ(Decode("\x81\x02\x01", theDictionary.get()), nullptr);
    EXPECT_EQ(Print(Decode("\x81\xCD\x00\x01\x01"s, theDictionary.get())), "{\"b\":1}");
}

TEST(JSONMPackTest, IndexesAbove127TakeMoreBytes) {
    std::vector<std::string> theWords;
    for (int i = 0; i < 300; ++i) {
        theWords.push_back("word" + std::to_string(i));
    }
    const Dictionary theDictionary = NewDictionary(theWords);
    const Tree theTree = Parse("{\"word127\":0,\"word128\":0,\"word299\":0}");
    const std::string theBytes = Encode(theTree.get(), theDictionary.get());
    EXPECT_EQ(theBytes, "\x83\x7F\x00\xCC\x80\x00\xCD\x01\x2B\x00"s);
    EXPECT_EQ(Print(Decode(theBytes, theDictionary.get())), Print(theTree));
}

TEST(JSONMPackTest, TreesOutliveTheirDictionary) {
    Dictionary theDictionary = NewDictionary({"a word that is longer than a node", "short"});
    const Tree theTree = Decode("\x82\x00\x01\x01\x02"s, theDictionary.get());
    theDictionary.reset();
    EXPECT_EQ(Print(theTree), "{\"a word that is longer than a node\":1,\"short\":2}");
    const Tree theClone(vxJSON_Clone(theTree.get()));
    vxJSON_t* theNode =
        vxJSON_DetachItemFromObject(theTree.get(), "a word that is longer than a node");
    vxJSON_SetName(theNode, "renamed");
    vxJSON_AddItemToObject(theTree.get(), vxJSON_GetName(theNode), theNode);
    EXPECT_EQ(Print(theTree), "{\"short\":2,\"renamed\":1}");
    EXPECT_EQ(Print(theClone), "{\"a word that is longer than a node\":1,\"short\":2}");
}

// ---- Memory

TEST(JSONMPackTest, TreesTakeSixteenBytesForOneOfInput) {
    const Dictionary theDictionary =
        NewDictionary({std::string(1000, 'w'), "elevenbytes", "twelve bytes", "\xFF"});
    struct Row {
        std::string mHead;
        std::string mItem;
    };
    const Row kRows[] = {
        {"\xDD\x00\x04\x00\x00"s, "\xC0"},          // nulls
        {"\xDD\x00\x04\x00\x00"s, "\x05"},          // small numbers
        {"\xDD\x00\x04\x00\x00"s, "\x90"},          // empty arrays
        {"\xDD\x00\x04\x00\x00"s, "\xA0"},          // empty texts
        {"\xDD\x00\x04\x00\x00"s, "\xA1x"},         // short texts
        {"\xDD\x00\x04\x00\x00"s, "\x91\xC0"},      // arrays of one
        {"\xDD\x00\x04\x00\x00"s, "\x81\xA0\xC0"},  // objects of one
        {"\xDF\x00\x04\x00\x00"s, "\xA0\xC0"},      // empty names
        {"\xDF\x00\x04\x00\x00"s, "\x00\xC0"s},     // long words
        {"\xDF\x00\x04\x00\x00"s, "\x01\xC0"},      // words at the edge
        {"\xDF\x00\x04\x00\x00"s, "\x02\xC0"},     {"\xDF\x00\x04\x00\x00"s, "\x03\xC0"},
    };
    for (const Row& theRow : kRows) {
        const std::string theBytes = theRow.mHead + Items(0x40000, theRow.mItem);
        SCOPED_TRACE(testing::PrintToString(theRow.mItem));
        sAllocated = 0;
        const Tree theTree = Decode(theBytes, theDictionary.get());
        EXPECT_LE(sAllocated, 16 * theBytes.size() + 16 * theBytes.size() / 100);
        EXPECT_EQ(vxJSON_GetArraySize(theTree.get()), 0x40000u);
    }
}

TEST(JSONMPackTest, LyingLengthsTakeNoMemory) {
    const std::string kHeads[] = {"\xDD\xFF\xFF\xFF\xFF", "\xDF\xFF\xFF\xFF\xFF",
                                  "\xDB\xFF\xFF\xFF\xFF", "\xDD\x00\xFF\xFF\xFF"s};
    for (const std::string& theHead : kHeads) {
        SCOPED_TRACE(testing::PrintToString(theHead));
        sAllocated = 0;
        EXPECT_EQ(Decode(theHead + Items(100, "\xC0")), nullptr);
        EXPECT_LE(sAllocated, 2048u);
    }
}

TEST(JSONMPackTest, RandomBytesAreReadOrRefusedWithinTheirMemory) {
    const Dictionary theDictionary = NewDictionary({"a", "a rather long word of many letters"});
    std::mt19937 theRandom(20240305);
    int theAccepted = 0;
    for (int i = 0; i < 100000; ++i) {
        std::string theBytes(theRandom() % 40, '\0');
        for (char& theByte : theBytes) {
            // Small containers and texts more often than chance would have them.
            constexpr unsigned char kCommon[] = {0x81, 0x82, 0x91, 0x92, 0xA1, 0x00, 0x01, 0xC0};
            const bool fCommon = theRandom() % 2 == 0;
            theByte = static_cast<char>(fCommon ? kCommon[theRandom() % 8] : theRandom() % 256);
        }
        sAllocated = 0;
        const Tree theTree = Decode(theBytes, theDictionary.get());
        ASSERT_LE(sAllocated, 16 * theBytes.size() + 256);
        if (theTree != nullptr) {
            ++theAccepted;
            const Tree theAgain =
                Decode(Encode(theTree.get(), theDictionary.get()), theDictionary.get());
            ASSERT_EQ(vxJSON_Compare(theTree.get(), theAgain.get()), 0);
        }
    }
    EXPECT_GT(theAccepted, 1000);
}

}  // namespace
