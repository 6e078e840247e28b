// Blocks of cells as spreadsheets put them on the clipboard.

#include <gtest/gtest.h>

#include "center/editing/block_editing.h"

namespace vicenter::center {

TEST(BlockText, CellsStandBetweenTabsAndRowsBetweenLineBreaks) {
    EXPECT_EQ(ParseBlock("a\tb\r\nc\td\r\n"), (TextBlock{{"a", "b"}, {"c", "d"}}));
    EXPECT_EQ(ParseBlock("a\tb\nc\td"), (TextBlock{{"a", "b"}, {"c", "d"}}));
    EXPECT_EQ(ParseBlock("a\rb"), (TextBlock{{"a"}, {"b"}}));
}

TEST(BlockText, ABreakAtTheEndOpensNoRow) {
    EXPECT_EQ(ParseBlock("a\r\n"), (TextBlock{{"a"}}));
    EXPECT_EQ(ParseBlock("a\r\n\r\n"), (TextBlock{{"a"}, {""}}));
    EXPECT_EQ(ParseBlock(""), TextBlock{});
}

TEST(BlockText, EmptyCellsAreCellsToo) {
    EXPECT_EQ(ParseBlock("\t\ta\t\n\t"), (TextBlock{{"", "", "a", ""}, {"", ""}}));
}

TEST(BlockText, AQuotedCellMayHoldTabsBreaksAndQuotes) {
    EXPECT_EQ(ParseBlock("\"a\tb\"\tc"), (TextBlock{{"a\tb", "c"}}));
    EXPECT_EQ(ParseBlock("\"a\r\nb\"\r\nc"), (TextBlock{{"a\r\nb"}, {"c"}}));
    EXPECT_EQ(ParseBlock("\"say \"\"yes\"\"\"\tb"), (TextBlock{{"say \"yes\"", "b"}}));
    EXPECT_EQ(ParseBlock("\"\""), TextBlock{});
    EXPECT_EQ(ParseBlock("\"\"\ta"), (TextBlock{{"", "a"}}));
}

TEST(BlockText, AQuoteThatIsNoCellsQuoteIsOrdinary) {
    EXPECT_EQ(ParseBlock("5\" pipe\tb"), (TextBlock{{"5\" pipe", "b"}}));
    EXPECT_EQ(ParseBlock("\"open\tb"), (TextBlock{{"\"open", "b"}}));
    EXPECT_EQ(ParseBlock("\"a\"b\tc"), (TextBlock{{"\"a\"b", "c"}}));
    EXPECT_EQ(ParseBlock("\""), (TextBlock{{"\""}}));
    EXPECT_EQ(ParseBlock("\"\"\""), (TextBlock{{"\"\"\""}}));
    EXPECT_EQ(ParseBlock("a\t\""), (TextBlock{{"a", "\""}}));
}

TEST(BlockText, WritingQuotesOnlyWhatNeedsIt) {
    EXPECT_EQ(FormatBlock({{"a", "0012"}, {"", "5\" pipe"}}), "a\t0012\r\n\t5\" pipe\r\n");
    EXPECT_EQ(FormatBlock({{"a\tb", "c\nd", "\"e\""}}), "\"a\tb\"\t\"c\nd\"\t\"\"\"e\"\"\"\r\n");
    EXPECT_EQ(FormatBlock({}), "");
}

TEST(BlockText, WhatWasWrittenReadsBackTheSame) {
    const TextBlock block{{"a\tb", "\"", "", "c\r\nd"}, {"\"\"", "0012", "借", " "}};
    EXPECT_EQ(ParseBlock(FormatBlock(block)), block);
}

}  // namespace vicenter::center
