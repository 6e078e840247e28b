// Loading, editing, saving and the column profile on real account sets with the demo ledger, in a file and
// on a server.

#include "center/frame/frm_vi_center.h"
#include "host/components/components.h"
#include "tests/center/grid_fixture.h"
#include "tests/host/demo_set.h"
#include "tests/lanes/set_lane.h"

namespace vicenter::center {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EmbeddedGrid : public testing::Test {
  protected:
    EmbeddedGrid() { Open(); }

    // A new window on the same account set, as the next opening shows it.
    void Open() {
        window_ = std::make_unique<frmVICenter>(view_, nullptr);
        window_->Load();
    }
    EntryGrid& Grid() { return window_->Grid(); }
    std::string Text(int row, int gridColumn) { return std::string(Grid().Text(row, gridColumn)); }
    void Select(const std::string& templateName) {
        for (const TreeNode& node : window_->Nodes()) {
            if (node.text == templateName) {
                window_->Tree().NodeClick(node.key);
                return;
            }
        }
        FAIL() << "no template " << templateName;
    }
    // Types a text and leaves the cell.
    void Type(int row, int gridColumn, const std::string& text) {
        window_->Cells().MoveActiveCell({row, gridColumn});
        ASSERT_EQ(window_->Cells().CommitText({row, gridColumn}, text), TextVerdict::Taken) << text;
        window_->Cells().MoveActiveCell({row, gridColumn == kColumnCount ? 1 : gridColumn + 1});
    }
    Texts Snapshot() {
        Texts rows;
        for (int row = 1; row <= window_->RowCount(); ++row) {
            std::string line;
            for (int c = 1; c <= kColumnCount; ++c) {
                const bool red = Grid().Look(row, c).foreColor == color::kRed;
                line += DisplayText(c, Text(row, c)) + (red ? "!" : "") + "|";
            }
            rows.push_back(line);
        }
        return rows;
    }
    std::vector<std::string> RedCells() {
        std::vector<std::string> red;
        for (int row = 1; row <= window_->RowCount(); ++row) {
            for (int c = 1; c <= kColumnCount; ++c) {
                if (Grid().Look(row, c).foreColor == color::kRed)
                    red.push_back(std::to_string(row) + "," + std::to_string(c));
            }
        }
        return red;
    }

    host::test::TestFolder folder_;
    automation::ClassRegistry::Restore restore_;
    host::HostSessionRef session_ =
        host::RegisterHostComponents({lanes::ConnectTextOf(host::test::CopySet(folder_)), 1});
    fakes::FakeSurroundings surroundings_;
    NotingView view_;
    std::unique_ptr<frmVICenter> window_;
};

}  // namespace

TEST_F(EmbeddedGrid, TheStandardTemplateIsLoadedWithSoundCodes) {
    EXPECT_EQ(window_->TemplateName(), "标准模板");
    EXPECT_EQ(window_->RowCount(), 6);
    EXPECT_EQ(Text(1, column::kNo), "1");
    EXPECT_EQ(Text(1, column::kExplanation), "提取备用金");
    EXPECT_EQ(Text(1, column::kDirection), "借");
    EXPECT_EQ(Text(1, column::kAccountNumber), "1001");
    EXPECT_EQ(Text(1, column::kAccountName), "库存现金");
    EXPECT_EQ(Text(1, column::kFileCount), "");
    EXPECT_EQ(Text(1, column::kAmount), "5000");
    EXPECT_EQ(Text(2, column::kDirection), "贷");
    EXPECT_EQ(Text(2, column::kSettleName), "现金支票");
    EXPECT_THAT(RedCells(), IsEmpty());
    EXPECT_THAT(surroundings_.messageBoxes->Texts(), IsEmpty());
}

TEST_F(EmbeddedGrid, TypedCodesAreResolvedAgainstTheLedger) {
    Select("日常费用");
    const int row = window_->RowCount() + 1;
    Type(row, column::kNo, "9");
    Type(row, column::kExplanation, "007");
    EXPECT_EQ(Text(row, column::kExplanation), "提取备用金");
    EXPECT_EQ(Text(row, column::kAccountNumber), "1001");
    EXPECT_EQ(Text(row, column::kAccountName), "库存现金");
    Type(row, column::kAccountNumber, "1002.02");
    EXPECT_EQ(Text(row, column::kAccountName), "中国银行美元户");
    Type(row, column::kSettleName, "JF02");
    EXPECT_EQ(Text(row, column::kSettleName), "转账支票");
    EXPECT_NE(Text(row, column::kSettleId), "");
    Type(row, column::kCurrencyName, "USD");
    EXPECT_EQ(Text(row, column::kCurrencyName), "美元");
    EXPECT_EQ(Text(row, column::kCurrencyId), "2");
    EXPECT_THAT(RedCells(), IsEmpty());
}

TEST_F(EmbeddedGrid, ACodeOfTheWrongKindIsRedWithItsReason) {
    Select("日常费用");
    const int row = window_->RowCount() + 1;
    Type(row, column::kAccountNumber, "1002");
    EXPECT_EQ(window_->Cells().DescribeFault({row, column::kAccountNumber}), "不是明细科目，请选择明细科目");
    Type(row, column::kAccountNumber, "9999");
    EXPECT_EQ(window_->Cells().DescribeFault({row, column::kAccountNumber}), "科目代码不存在");
    Type(row, column::kAccountNumber, "1405.01");
    Type(row, column::kUnitName, "PCS");
    EXPECT_EQ(Text(row, column::kUnitName), "件");
    EXPECT_EQ(window_->Cells().DescribeFault({row, column::kUnitName}),
              "计量单位不属于科目的计量单位组，可用：克、千克、吨");
    Type(row, column::kUnitName, "KG");
    EXPECT_EQ(window_->Cells().DescribeFault({row, column::kUnitName}), "");
    EXPECT_THAT(RedCells(), IsEmpty());
}

TEST_F(EmbeddedGrid, WhatIsTypedSavedAndReloadedReadsTheSameDigitForDigit) {
    Select("日常费用");
    const int row = window_->RowCount() + 1;
    Type(row, column::kNo, "8");
    Type(row, column::kExplanation, "数字");
    Type(row, column::kDirection, "贷");
    Type(row, column::kAccountNumber, "1002.02");
    Type(row, column::kCurrencyName, "USD");
    Type(row, column::kRate, "7.1234567891");
    Type(row, column::kAmountFor, "999999998.1234");
    Type(row, column::kQuantity, "0.0001");
    Type(row, column::kPrice, "123456789.0123456789");
    Type(row, column::kAmount, "0.10");
    Type(row, column::kFileCount, "999999999");
    Type(row, column::kRemark, "0012 “备注” 😀");
    const Texts before = Snapshot();
    EXPECT_TRUE(window_->IsDirty());
    ASSERT_TRUE(window_->Save()) << testing::PrintToString(surroundings_.messageBoxes->Texts());
    EXPECT_FALSE(window_->IsDirty());
    EXPECT_EQ(Snapshot(), before);
    Open();
    Select("日常费用");
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(Text(row, column::kPrice), "123456789.0123456789");
}

TEST_F(EmbeddedGrid, APastedBlockSurvivesSavingAndUndoEndsThere) {
    Select("日常费用");
    const int first = window_->RowCount() + 1;
    const PasteResult result = window_->Cells().PasteBlock(
        {first, 1}, "7\t报销\t借\t5602.03\r\n7\t\t贷\t1001\r\n7\tx|y\t贷\t1001\r\n");
    EXPECT_EQ(result.rows, 3);
    ASSERT_EQ(result.refused.size(), 1U);
    EXPECT_EQ(result.refused[0].cell, (CellAddress{first + 2, 2}));
    EXPECT_TRUE(window_->Cells().CanUndo());
    EXPECT_FALSE(window_->Save()) << "what was refused is nowhere to be saved";
    EXPECT_EQ(surroundings_.messageBoxes->Texts().back(),
              "行" + std::to_string(first + 2) + " 摘要(*) 不能包含单引号、竖线或控制字符，请进行更正！");
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{first + 2, 2}));
    window_->Cells().CommitText({first + 2, 2}, "xy");
    const Texts before = Snapshot();
    ASSERT_TRUE(window_->Save());
    EXPECT_FALSE(window_->Cells().CanUndo());
    EXPECT_EQ(Snapshot(), before);
}

TEST_F(EmbeddedGrid, TheColumnProfileIsKeptFromOneOpeningToTheNext) {
    EXPECT_FALSE(Grid().Layout(column::kAmount).hidden) << "as the demo users have it";
    EXPECT_EQ(Grid().Layout(column::kExplanation).width, 2820);
    Grid().SetColumnHidden(column::kAmount, true);
    Grid().SetColumnHidden(column::kRemark, true);
    Grid().SetColumnWidth(column::kExplanation, 3333);
    window_->Unload();
    Open();
    EXPECT_TRUE(Grid().Layout(column::kAmount).hidden);
    EXPECT_TRUE(Grid().Layout(column::kRemark).hidden);
    EXPECT_EQ(Grid().Layout(column::kExplanation).width, 3333);
    EXPECT_THAT(surroundings_.messageBoxes->Texts(), IsEmpty());
}

}  // namespace vicenter::center
