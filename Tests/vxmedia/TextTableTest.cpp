#include "TextTable.h"

#include <gtest/gtest.h>

using vxmedia::TextTable;

namespace {

TEST(TextTableTest, ColumnsAreAsWideAsTheirWidestCell) {
    TextTable theTable("rlrl");
    theTable.AddRow({"ID", "NAME", "BYTES", "PATH"});
    theTable.AddRow({"1", "a", "12345678", "x y"});
    theTable.AddRow({"1000", "abcdef", "1", "z"});
    EXPECT_STREQ(theTable.GetText(),
                 "  ID  NAME       BYTES  PATH\n"
                 "   1  a       12345678  x y\n"
                 "1000  abcdef         1  z\n");
}

TEST(TextTableTest, WidthsCountCharacters) {
    TextTable theTable("ll");
    theTable.AddRow({"\u00E9\u4E2D", "a"});
    theTable.AddRow({"abc", "b"});
    EXPECT_STREQ(theTable.GetText(), "\u00E9\u4E2D   a\nabc  b\n");
}

TEST(TextTableTest, TheLastColumnIsPaddedOnlyOnTheLeft) {
    TextTable theLeft("rl");
    theLeft.AddRow({"1", "short"});
    theLeft.AddRow({"2", "much longer"});
    EXPECT_STREQ(theLeft.GetText(), "1  short\n2  much longer\n");
    TextTable theRight("lr");
    theRight.AddRow({"a", "1"});
    theRight.AddRow({"b", "100"});
    EXPECT_STREQ(theRight.GetText(), "a    1\nb  100\n");
}

TEST(TextTableTest, NoRowsGiveNoText) {
    EXPECT_STREQ(TextTable("lr").GetText(), "");
}

}  // namespace
