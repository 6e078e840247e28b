#include "center/grid/number_bands.h"

#include <memory>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vicenter::center {
namespace {

using ::testing::ElementsAre;

class NumberBandsTest : public ::testing::Test {
  protected:
    NumberBandsTest() { grid.SetRowTotal(8); }

    void Numbers(const std::vector<const char*>& numbers) {
        for (std::size_t i = 0; i < numbers.size(); ++i)
            grid.SetText(static_cast<int>(i) + 1, column::kNo, numbers[i]);
    }
    std::vector<int> Shaded() const {
        std::vector<int> rows;
        for (int row = 1; row <= grid.RowTotal(); ++row) {
            if (bands.IsShaded(row)) rows.push_back(row);
        }
        return rows;
    }

    EntryGrid grid;
    NumberBands bands{grid};
};

TEST_F(NumberBandsTest, EveryOtherNumberIsShadedHoweverManyRowsItHas) {
    Numbers({"1", "1", "1", "2", "3", "3"});
    EXPECT_THAT(Shaded(), ElementsAre(4));
    Numbers({"1", "1", "2", "2", "3", "4"});
    EXPECT_THAT(Shaded(), ElementsAre(3, 4, 6));
}

TEST_F(NumberBandsTest, RowsWithoutANumberAreNeverShadedAndChangeNoTurn) {
    Numbers({"", "1", "", "2", "", "3"});
    EXPECT_THAT(Shaded(), ElementsAre(4));
}

TEST_F(NumberBandsTest, LeadingZerosMakeNoOtherNumber) {
    Numbers({"1", "01", "001", "2"});
    EXPECT_THAT(Shaded(), ElementsAre(4));
    EXPECT_TRUE(bands.Repeats(2));
    EXPECT_FALSE(bands.IsFirst(2));
}

TEST_F(NumberBandsTest, ARuleGoesBetweenNumbersAndBelowTheLastOfThem) {
    Numbers({"1", "1", "2"});
    EXPECT_FALSE(bands.IsFirst(1));
    EXPECT_FALSE(bands.IsFirst(2));
    EXPECT_TRUE(bands.IsFirst(3));
    EXPECT_TRUE(bands.IsFirst(4));
    EXPECT_FALSE(bands.IsFirst(5));
}

TEST_F(NumberBandsTest, ANumberRepeatsWhereTheRowAboveHasIt) {
    Numbers({"1", "1", "2", "1"});
    EXPECT_FALSE(bands.Repeats(1));
    EXPECT_TRUE(bands.Repeats(2));
    EXPECT_FALSE(bands.Repeats(3));
    EXPECT_FALSE(bands.Repeats(4));
    EXPECT_FALSE(bands.Repeats(6));
}

TEST_F(NumberBandsTest, WhatChangesAboveChangesEveryTurnBelow) {
    Numbers({"1", "2", "3", "4"});
    ASSERT_THAT(Shaded(), ElementsAre(2, 4));
    grid.SetText(2, column::kNo, "1");
    EXPECT_THAT(Shaded(), ElementsAre(3));
    grid.InsertRows(1, 1);
    grid.SetText(1, column::kNo, "9");
    EXPECT_THAT(Shaded(), ElementsAre(2, 3, 5));
    grid.RemoveRows(1, 3);
    EXPECT_THAT(Shaded(), ElementsAre(2));
    grid.Clear(4);
    EXPECT_THAT(Shaded(), ElementsAre());
}

TEST_F(NumberBandsTest, OtherColumnsLeaveTheBandsAlone) {
    Numbers({"1", "2"});
    ASSERT_THAT(Shaded(), ElementsAre(2));
    grid.SetText(1, column::kExplanation, "购茶叶");
    EXPECT_THAT(Shaded(), ElementsAre(2));
}

TEST_F(NumberBandsTest, RowsOutsideTheGridAreNoBand) {
    EXPECT_FALSE(bands.IsShaded(0));
    EXPECT_FALSE(bands.IsShaded(9));
    EXPECT_FALSE(bands.IsFirst(0));
    EXPECT_FALSE(bands.Repeats(0));
}

}  // namespace
}  // namespace vicenter::center
