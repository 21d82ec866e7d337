#include <gtest/gtest.h>
#include <libteskTools/StringEscaper.h>

#include <cstdlib>
#include <string>

namespace {

std::string Escaped(const std::string& aBytes, char anEscape = '%') {
    char* theText = vxStringEscaper_EscapeBuffer(aBytes.data(), aBytes.size(),
                                                 kvxPropertListConvTable, anEscape);
    const std::string theResult = theText;
    free(theText);
    return theResult;
}

std::string Unescaped(const char* aText, char anEscape = '%') {
    size_t theSize = 99;
    void* theBytes = vxStringEscaper_UnescapeBuffer(aText, anEscape, &theSize);
    const std::string theResult(static_cast<char*>(theBytes), theSize);
    EXPECT_EQ(static_cast<char*>(theBytes)[theSize], '\0');
    free(theBytes);
    return theResult;
}

struct EscapeCase {
    std::string mBytes;
    const char* mText;
};

const EscapeCase kEscapeCases[] = {
    {"", ""},
    {"plain text, /&<>!", "plain text, /&<>!"},
    {"\x1f \x7e\x7f\x80\xff", "%1F ~%7F%80%FF"},
    {"!\"#&'([\\]", "!%22#&%27([%5C]"},
    {"100%", "100%25"},
    {std::string("a\0b", 3), "a%00b"},
    {"\n\t", "%0A%09"},
};

TEST(StringEscaperTest, BytesThatDoNotPrintAndQuotesAreEscaped) {
    for (const EscapeCase& theCase : kEscapeCases) {
        SCOPED_TRACE(theCase.mText);
        EXPECT_EQ(Escaped(theCase.mBytes), theCase.mText);
        EXPECT_EQ(Unescaped(theCase.mText), theCase.mBytes);
    }
}

TEST(StringEscaperTest, EveryByteComesBack) {
    std::string theBytes;
    for (int i = 0; i < 256; ++i) {
        theBytes += static_cast<char>(i);
    }
    const std::string theText = Escaped(theBytes);
    // 32 controls, 129 bytes from DEL up, two quotes, the backslash and the escape character.
    EXPECT_EQ(theText.size(), 256U + 2 * (32 + 129 + 3 + 1));
    EXPECT_EQ(Unescaped(theText.c_str()), theBytes);
}

TEST(StringEscaperTest, AnyCharacterCanBeTheEscape) {
    EXPECT_EQ(Escaped("a=b%", '='), "a=3Db%");
    EXPECT_EQ(Unescaped("a=3Db%25", '='), "a=b%25");
}

TEST(StringEscaperTest, TheTableDecidesButNulAndTheEscapeAreAlwaysEscaped) {
    const uint8_t theTable[256] = {0, 1};
    char* theText = vxStringEscaper_EscapeBuffer("\0\1\2%\"", 5, theTable, '%');
    EXPECT_STREQ(theText, "%00%01\x02%25\"");
    free(theText);
}

TEST(StringEscaperTest, NothingIsRefused) {
    EXPECT_EQ(Unescaped("%"), "%");
    EXPECT_EQ(Unescaped("%4"), "%4");
    EXPECT_EQ(Unescaped("%4g%g4"), "%4g%g4");
    EXPECT_EQ(Unescaped("%%41"), "%A");
    EXPECT_EQ(Unescaped("%2a%2A"), "**");
    EXPECT_EQ(Unescaped("\"\x01\xff"), "\"\x01\xff");
}

TEST(StringEscaperTest, NullGivesNull) {
    size_t theSize = 99;
    EXPECT_EQ(vxStringEscaper_UnescapeBuffer(NULL, '%', &theSize), nullptr);
    EXPECT_EQ(theSize, 0U);
    EXPECT_EQ(vxStringEscaper_EscapeBuffer(NULL, 0, kvxPropertListConvTable, '%'), nullptr);
    EXPECT_EQ(vxStringEscaper_EscapeBuffer("", 0, NULL, '%'), nullptr);
}

}  // namespace
