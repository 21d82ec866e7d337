#include "TerminalText.h"

#include <gtest/gtest.h>

#include <string>

using vxmedia::EscapeForTerminal;
using vxmedia::EscapeMode;

namespace {

std::string Escape(const std::string& aText, EscapeMode aMode = EscapeMode::Name) {
    return EscapeForTerminal(vxCString(aText.data(), aText.size()), aMode).c_str();
}

TEST(TerminalTextTest, OrdinaryTextIsKept) {
    EXPECT_EQ(Escape(""), "");
    EXPECT_EQ(Escape("a b %n %s ~"), "a b %n %s ~");
    EXPECT_EQ(Escape("\u00E9\u4E2D\U0001F3B5"), "\u00E9\u4E2D\U0001F3B5");
    EXPECT_EQ(Escape("\xC2\xA0\xEF\xBF\xBD\xF4\x8F\xBF\xBF"),
              "\xC2\xA0\xEF\xBF\xBD\xF4\x8F\xBF\xBF");
}

TEST(TerminalTextTest, ControlCharactersAreEscaped) {
    EXPECT_EQ(Escape("a\x1B[2Jb"), "a\\x1B[2Jb");
    EXPECT_EQ(Escape(std::string("\0\x1F\x7F", 3)), "\\x00\\x1F\\x7F");
    EXPECT_EQ(Escape("a\tb\nc\r"), "a\\x09b\\x0Ac\\x0D");
    EXPECT_EQ(Escape("\xC2\x80\xC2\x9F"), "\\xC2\\x80\\xC2\\x9F");
    EXPECT_EQ(
        Escape("\u200E\u202E\u2028\u2069\u061C\uFEFF"),
        "\\xE2\\x80\\x8E\\xE2\\x80\\xAE\\xE2\\x80\\xA8\\xE2\\x81\\xA9\\xD8\\x9C\\xEF\\xBB\\xBF");
}

TEST(TerminalTextTest, CodesThatAreNoCharactersAreEscaped) {
    EXPECT_EQ(Escape("\xEF\xBF\xBE\xEF\xBF\xBF"), "\\xEF\\xBF\\xBE\\xEF\\xBF\\xBF");
}

TEST(TerminalTextTest, JSONStaysJSON) {
    EXPECT_EQ(Escape("{\n\"a\": \"\\n\u00E9\u202E\x7F\uFFFF\"\n}", EscapeMode::JSON),
              "{\n\"a\": \"\\n\u00E9\\u202e\\u007f\\uffff\"\n}");
}

TEST(TerminalTextTest, BytesThatAreNoCharacterAreEscapedOneByOne) {
    EXPECT_EQ(Escape("\xFF"), "\\xFF");
    EXPECT_EQ(Escape("\x80x"), "\\x80x");
    EXPECT_EQ(Escape("\xC3"), "\\xC3");
    EXPECT_EQ(Escape("\xE4\xB8"), "\\xE4\\xB8");
    EXPECT_EQ(Escape("\xC3("), "\\xC3(");
    EXPECT_EQ(Escape("\xC0\xAF"), "\\xC0\\xAF");
    EXPECT_EQ(Escape("\xE0\x80\xAF"), "\\xE0\\x80\\xAF");
    EXPECT_EQ(Escape("\xED\xA0\x80"), "\\xED\\xA0\\x80");
    EXPECT_EQ(Escape("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80");
    EXPECT_EQ(Escape("\xF5\x80\x80\x80"), "\\xF5\\x80\\x80\\x80");
}

TEST(TerminalTextTest, ABackslashIsDoubledOnlyInNames) {
    EXPECT_EQ(Escape("a\\x1B"), "a\\\\x1B");
    EXPECT_EQ(Escape("a\\x1B", EscapeMode::Text), "a\\x1B");
    EXPECT_EQ(Escape("a\\n\n", EscapeMode::Lines), "a\\n\n");
    EXPECT_EQ(Escape("a\n", EscapeMode::Text), "a\\x0A");
    EXPECT_EQ(Escape("a\r\n", EscapeMode::Lines), "a\\x0D\n");
}

}  // namespace
