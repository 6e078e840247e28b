#include "center/grid/grid_row.h"

#include <gtest/gtest.h>

namespace vicenter::center {

TEST(GridRow, StartsBlankInTheUsualColours) {
    const GridRow row;
    EXPECT_TRUE(row.IsBlank());
    for (int c = 1; c <= kColumnCount; ++c) {
        EXPECT_EQ(row.Text(c), "");
        EXPECT_EQ(row.ForeColor(c), color::kBlack);
        EXPECT_EQ(row.BackColor(c), color::kWhite);
    }
}

TEST(GridRow, TextsOfAllColumnsStandSideBySide) {
    GridRow row;
    for (int c = kColumnCount; c >= 1; --c)
        row.SetText(c, "column " + std::to_string(c));
    for (int c = 1; c <= kColumnCount; ++c)
        EXPECT_EQ(row.Text(c), "column " + std::to_string(c));
}

TEST(GridRow, ATextGrowsAndShrinksWithoutTouchingItsNeighbours) {
    GridRow row;
    row.SetText(1, "1");
    row.SetText(2, "二");
    row.SetText(3, "three");
    row.SetText(2, "much longer than before");
    EXPECT_EQ(row.Text(1), "1");
    EXPECT_EQ(row.Text(2), "much longer than before");
    EXPECT_EQ(row.Text(3), "three");
    row.SetText(2, "");
    EXPECT_EQ(row.Text(2), "");
    EXPECT_EQ(row.Text(3), "three");
    row.SetText(1, "");
    row.SetText(3, "");
    EXPECT_TRUE(row.IsBlank());
}

TEST(GridRow, TextsMayBeSetAllAtOnce) {
    GridRow row;
    row.SetText(5, "old");
    std::array<std::string, kColumnCount> texts;
    texts[0] = "7";
    texts[20] = "备注";
    row.SetTexts(texts);
    EXPECT_EQ(row.Text(1), "7");
    EXPECT_EQ(row.Text(5), "");
    EXPECT_EQ(row.Text(21), "备注");
}

TEST(GridRow, PaintingTellsWhetherSomethingChanged) {
    GridRow row;
    EXPECT_FALSE(row.SetForeColor(3, color::kBlack));
    EXPECT_TRUE(row.SetForeColor(3, color::kRed));
    EXPECT_FALSE(row.SetForeColor(3, color::kRed));
    EXPECT_EQ(row.ForeColor(3), color::kRed);
    EXPECT_EQ(row.ForeColor(2), color::kBlack);
    EXPECT_TRUE(row.SetForeColor(3, color::kBlack));
    EXPECT_EQ(row.ForeColor(3), color::kBlack);
    EXPECT_TRUE(row.SetBackColor(3, 1));
    EXPECT_EQ(row.BackColor(3), 1);
    EXPECT_EQ(row.BackColor(4), color::kWhite);
}

TEST(GridRow, FaultsAreKeptCheckByCheck) {
    GridRow row;
    row.SetFault(1, true);
    row.SetFault(5, true);
    EXPECT_TRUE(row.HasFault(1));
    EXPECT_FALSE(row.HasFault(2));
    EXPECT_TRUE(row.HasFault(5));
    row.SetFault(1, false);
    EXPECT_FALSE(row.HasFault(1));
    EXPECT_TRUE(row.HasFault(5));
}

}  // namespace vicenter::center
