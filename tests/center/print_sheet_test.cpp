#include "center/print/print_sheet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "center/print/voucher_sheet.h"

namespace vicenter::center {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr PageHeights kPage{100, 5};

// A ledger that knows no names.
std::string Codes(const EntryGrid& grid, int row) {
    return std::string(grid.Text(row, column::kItems));
}

BlockHeights Block(std::vector<double> rows) {
    return {10, std::move(rows), 10};
}

TEST(PrintPages, BlocksGoBelowEachOtherAsLongAsThereIsRoom) {
    const auto pages = LayOutPages({Block({10, 10}), Block({10, 10})}, kPage);
    EXPECT_THAT(pages,
                ElementsAre(ElementsAre(PrintPiece{0, 0, 2, true, true}, PrintPiece{1, 0, 2, true, true})));
}

TEST(PrintPages, ABlockThatDoesNotFitGoesOnTheNextPageWhole) {
    const auto pages = LayOutPages({Block({20, 20}), Block({20, 20}), Block({10})}, kPage);
    EXPECT_THAT(pages,
                ElementsAre(ElementsAre(PrintPiece{0, 0, 2, true, true}),
                            ElementsAre(PrintPiece{1, 0, 2, true, true}, PrintPiece{2, 0, 1, true, true})));
}

TEST(PrintPages, TheGapCountsToo) {
    // 50 and 50 would fit, the 5 between them do not.
    EXPECT_THAT(LayOutPages({Block({30}), Block({30})}, kPage), SizeIs(2));
    EXPECT_THAT(LayOutPages({Block({30}), Block({25})}, kPage), SizeIs(1));
}

TEST(PrintPages, ABlockHigherThanAPageIsPartedBetweenRowsAndItsSumsStayWithTheLast) {
    const auto pages = LayOutPages({Block({10}), Block({40, 40, 40, 40, 20}), Block({10})}, kPage);
    ASSERT_THAT(pages, SizeIs(4));
    EXPECT_THAT(pages[0], ElementsAre(PrintPiece{0, 0, 1, true, true}));
    EXPECT_THAT(pages[1], ElementsAre(PrintPiece{1, 0, 2, true, false}));
    EXPECT_THAT(pages[2], ElementsAre(PrintPiece{1, 2, 2, false, false}));
    // 10 of the caption, 20 of the row, 10 of the sums; the gap; 30 of the next block.
    EXPECT_THAT(pages[3], ElementsAre(PrintPiece{1, 4, 1, false, true}, PrintPiece{2, 0, 1, true, true}));
}

TEST(PrintPages, SumsNeverStandAloneOnAPage) {
    const auto pages = LayOutPages({Block({40, 45, 40})}, kPage);
    for (const PrintPage& page : pages) {
        for (const PrintPiece& piece : page)
            EXPECT_GT(piece.rows, 0U);
    }
    EXPECT_TRUE(pages.back().back().ends);
}

TEST(PrintPages, ARowHigherThanAPageStandsAloneAndNothingIsLost) {
    const auto pages = LayOutPages({Block({300, 10})}, kPage);
    EXPECT_THAT(pages, ElementsAre(ElementsAre(PrintPiece{0, 0, 1, true, false}),
                                   ElementsAre(PrintPiece{0, 1, 1, false, true})));
}

TEST(PrintPages, NothingToPrintIsAnEmptyPage) {
    EXPECT_THAT(LayOutPages({}, kPage), ElementsAre(IsEmpty()));
    EXPECT_THAT(LayOutPages({Block({})}, kPage), ElementsAre(ElementsAre(PrintPiece{0, 0, 0, true, true})));
}

class VoucherSheetTest : public ::testing::Test {
  protected:
    void Line(int row, const char* number, const char* side, const char* account, const char* amount) {
        if (grid.RowTotal() < row) grid.SetRowTotal(row);
        grid.SetText(row, column::kNo, number);
        grid.SetText(row, column::kExplanation, "购茶叶");
        grid.SetText(row, column::kDirection, side);
        grid.SetText(row, column::kAccountNumber, account);
        grid.SetText(row, column::kAmount, amount);
        rows = std::max(rows, row);
    }
    EntryGrid grid;
    int rows = 0;
};

TEST_F(VoucherSheetTest, EveryPatternIsABlockOfItsRowsInTheOrderOfTheirFirstLines) {
    Line(1, "2", "借", "1405", "10");
    Line(2, "1", "借", "1405", "7");
    Line(3, "02", "贷", "1002", "10");
    const std::vector<PrintBlock> blocks = VoucherBlocks(grid, rows, Codes);
    ASSERT_THAT(blocks, SizeIs(2));
    EXPECT_EQ(blocks[0].caption, "模板编号 2");
    EXPECT_THAT(blocks[0].rows, ElementsAre(ElementsAre("购茶叶", "1405", "", "10.00", ""),
                                            ElementsAre("购茶叶", "　　1002", "", "", "10.00")));
    EXPECT_THAT(blocks[0].foot, ElementsAre("合计", "", "", "10.00", "10.00"));
    EXPECT_THAT(blocks[0].notes, IsEmpty());
    EXPECT_EQ(blocks[1].caption, "模板编号 1");
    EXPECT_THAT(blocks[1].notes, ElementsAre("借贷不平，差额 7.00"));
}

TEST_F(VoucherSheetTest, WhatIsKeptOfALineStandsBesideIt) {
    Line(1, "1", "借", "1122", "");
    grid.SetText(1, column::kAccountName, "应收账款");
    grid.SetText(1, column::kItems, "C001,D02");
    grid.SetText(1, column::kSettleName, "支票");
    grid.SetText(1, column::kSettleNumber, "0017");
    grid.SetText(1, column::kCurrencyName, "美元");
    grid.SetText(1, column::kRate, "7.1");
    grid.SetText(1, column::kAmountFor, "1000");
    grid.SetText(1, column::kUnitName, "箱");
    grid.SetText(1, column::kQuantity, "5");
    grid.SetText(1, column::kRemark, "待核对");
    const PrintBlock block = VoucherBlock(grid, {1}, "1", Codes);
    EXPECT_EQ(block.rows[0][1], "1122 应收账款");
    EXPECT_THAT(block.rows[0][2], ::testing::HasSubstr("项目 C001,D02；结算 支票 0017；美元 汇率 7.1"));
    EXPECT_THAT(block.rows[0][2], ::testing::HasSubstr("原币 1,000.00；数量 5"));
    EXPECT_THAT(block.rows[0][2], ::testing::EndsWith("备注 待核对"));
    EXPECT_EQ(block.rows[0][3], "");
}

TEST_F(VoucherSheetTest, EveryRowHasATextForEveryColumn) {
    Line(1, "", "", "", "");
    for (const PrintBlock& block : VoucherBlocks(grid, rows, Codes)) {
        EXPECT_THAT(block.foot, SizeIs(SheetColumns().size()));
        for (const auto& row : block.rows)
            EXPECT_THAT(row, SizeIs(SheetColumns().size()));
    }
}

}  // namespace
}  // namespace vicenter::center
