#include "center/editing/block_editing.h"

#include "center/editing/fault_text.h"
#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class BlockEditingTest : public GridTest {
  protected:
    void ShowAll() {
        for (int c = 1; c <= kColumnCount; ++c)
            Grid().SetColumnHidden(c, false);
    }
    static Texts Refused(const PasteResult& result) {
        Texts texts;
        for (const RefusedCell& cell : result.refused) {
            texts.push_back(std::to_string(cell.cell.row) + "," + std::to_string(cell.cell.column) + " " +
                            cell.text + ": " + cell.reason);
        }
        return texts;
    }

    GridEditing editing_{state_};
    int edited_ = 0;
    BlockEditing blocks_{state_, [this] { ++edited_; }};
};

}  // namespace

// --- copying

TEST_F(BlockEditingTest, CopyingTakesTheShownColumnsAsTheyAre) {
    UseRows(2);
    Grid().SetText(1, 4, "77");
    Grid().SetText(1, 5, "0012");
    Grid().SetText(1, 20, "5.5000");
    EXPECT_EQ(blocks_.Copy({1, 1, 2, 7}).value_or(CopiedBlock("none")).text,
              "1\t\t\t0012\t\t\r\n2\t\t\t\t\t\r\n");
    Grid().SetColumnHidden(20, false);
    EXPECT_EQ(blocks_.Copy({1, 19, 1, 21}).value_or(CopiedBlock("none")).text, "5.5000\t\r\n");
}

TEST_F(BlockEditingTest, CopyingStaysWithinTheGrid) {
    Grid().SetRowTotal(2);
    Grid().SetText(2, 21, "x");
    EXPECT_EQ(blocks_.Copy({0, 20, 99, 99}).value_or(CopiedBlock("none")).text, "\r\nx\r\n");
    EXPECT_EQ(blocks_.Copy({}), std::nullopt);
}

// --- pasting

TEST_F(BlockEditingTest, APastedRowIsResolvedAsIfItHadBeenTyped) {
    ShowAll();
    const PasteResult result = blocks_.Paste(
        {1, 1}, "3\t1\t借\t\t1002\t\t2\t\t01\t00012\t\t\tUSD\t6.5\t100\t\t\t\t\t650.00\t备注\r\n");
    EXPECT_EQ(result.rows, 1);
    EXPECT_THAT(result.refused, IsEmpty());
    const Texts expected{"3", "提现", "借",  "2",   "1002", "银行存款", "2", "51", "支票",   "00012", "",
                         "2", "美元", "6.5", "100", "",     "",         "",  "",   "650.00", "备注"};
    // The account of the explanation has given way to the one that was pasted.
    for (int c = 1; c <= kColumnCount; ++c) {
        const std::string shown = c == 10 ? "00012" : expected[static_cast<std::size_t>(c - 1)];
        EXPECT_EQ(Text(1, c), shown) << c;
        EXPECT_EQ(Color(1, c), color::kBlack) << c;
    }
    EXPECT_EQ(state_.open.RowCount(), 1);
    EXPECT_TRUE(state_.open.IsDirty());
    EXPECT_EQ(edited_, 1);
}

TEST_F(BlockEditingTest, PastingFillsTheShownColumnsFromTheGivenOneOn) {
    // Column 4 is hidden: the block goes from 3 to 5.
    blocks_.Paste({1, 3}, "借\t1001");
    EXPECT_EQ(Text(1, 3), "借");
    EXPECT_EQ(Text(1, 5), "1001");
    EXPECT_EQ(Text(1, 6), "库存现金");
}

TEST_F(BlockEditingTest, ABlockWiderThanTheShownColumnsIsRefusedAndTheColumnsAreCounted) {
    const PasteResult result = blocks_.Paste({1, 21}, "备注\tmore\tand more\t\r\nx\ty\r\n");
    EXPECT_EQ(result.cells, 0);
    EXPECT_TRUE(Grid().IsBlankRow(1));
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_THAT(Messages()[0],
                testing::StartsWith("所粘贴的内容有 3 列，从此处起只显示 1 列，有 2 列没有位置，没有粘贴！"));
    EXPECT_FALSE(state_.open.IsDirty());
    // Empty columns at its right need no place.
    EXPECT_EQ(blocks_.Paste({1, 21}, "备注\t\t\r\n").cells, 1);
    EXPECT_EQ(Text(1, 21), "备注");
}

TEST_F(BlockEditingTest, AFirstRowOfHeadersNamesTheColumnsHiddenOnesToo) {
    const PasteResult result = blocks_.Paste(
        {1, 7},
        "金额\t模板编号(*)\t科目代码\t科目名称(*)\t借/贷\r\n1,234.50\t3\t1001\t\t借\r\n5\t3\t1002\t\t贷\r\n");
    EXPECT_THAT(result.refused, IsEmpty());
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(Text(1, column::kAmount), "1234.50");
    EXPECT_EQ(Text(1, column::kNo), "3");
    EXPECT_EQ(Text(1, column::kAccountName), "库存现金");
    EXPECT_EQ(Text(2, column::kDirection), "贷");
    EXPECT_EQ(Text(2, column::kAccountId), "2");
    EXPECT_EQ(state_.open.RowCount(), 2);
}

TEST_F(BlockEditingTest, ARowThatOnlySoundsLikeHeadersIsARow) {
    blocks_.Paste({1, 21}, "备注");
    EXPECT_EQ(state_.open.RowCount(), 1);
    blocks_.Paste({1, 1}, "3\t摘要");
    EXPECT_EQ(Text(1, 2), "摘要");
}

TEST_F(BlockEditingTest, CodesKeepTheirLeadingZeros) {
    blocks_.Paste({1, 5}, "0101\r\n000777\r\n");
    EXPECT_EQ(Text(1, 5), "0101");
    EXPECT_EQ(Text(1, 6), "零一");
    EXPECT_EQ(Text(2, 5), "000777");
    EXPECT_EQ(Color(2, 5), color::kRed);
}

TEST_F(BlockEditingTest, RowsAreAddedAsNeededWithABlankOneBelow) {
    std::string text;
    for (int i = 1; i <= 150; ++i)
        text += std::to_string(i) + "\r\n";
    const PasteResult result = blocks_.Paste({1, 1}, text);
    EXPECT_EQ(result.rows, 150);
    EXPECT_EQ(state_.open.RowCount(), 150);
    EXPECT_EQ(Text(150, 1), "150");
    EXPECT_GT(Grid().RowTotal(), 150);
}

TEST_F(BlockEditingTest, PastingLeavesNoGap) {
    UseRows(1);
    EXPECT_EQ(blocks_.Paste({3, 1}, "1").rows, 0);
    EXPECT_THAT(Messages(), ElementsAre("请连续录入凭证模板分录！"));
    EXPECT_EQ(state_.open.RowCount(), 1);
    blocks_.Paste({2, 1}, "2\r\n\r\n3\r\n");
    EXPECT_EQ(Text(2, 1), "2");
    EXPECT_EQ(Text(3, 1), "3");
    EXPECT_EQ(state_.open.RowCount(), 3);
}

TEST_F(BlockEditingTest, WhatCannotBeTakenStaysInItsCellRedAndIsListedByRowAndColumn) {
    const PasteResult result = blocks_.Paste({1, 1}, "1\tit's\t借方\n2a\tb\t借\n3\tc\t贷");
    EXPECT_THAT(Refused(result), ElementsAre("1,2 it's: 不能包含单引号、竖线或控制字符",
                                             "1,3 借方: 只能选择“借”或“贷”", "2,1 2a: 只能录入数字"));
    EXPECT_EQ(Text(1, 1), "1");
    EXPECT_EQ(Text(1, 2), "it's");
    EXPECT_EQ(Text(1, 3), "借方");
    EXPECT_EQ(Text(2, 1), "2a");
    for (const CellAddress& cell : {CellAddress{1, 2}, {1, 3}, {2, 1}}) {
        EXPECT_EQ(Color(cell.row, cell.column), color::kRed);
        EXPECT_FALSE(FaultText(Grid(), cell).empty());
    }
    EXPECT_EQ(FaultText(Grid(), {2, 1}), "只能录入数字");
    EXPECT_EQ(Color(1, 1), color::kBlack);
    EXPECT_EQ(result.rows, 3);
    EXPECT_EQ(result.cells, 6);
    // Another text makes it good again, and taking the paste back takes everything back.
    blocks_.Paste({1, 2}, "its");
    EXPECT_EQ(Color(1, 2), color::kBlack);
    EXPECT_EQ(FaultText(Grid(), {1, 2}), "");
    editing_.Undo();
    EXPECT_EQ(Color(1, 2), color::kRed);
    EXPECT_EQ(Grid().Refusal(1, 2), TextVerdict::BadCharacter);
    editing_.Undo();
    EXPECT_TRUE(Grid().IsBlankRow(1));
    EXPECT_EQ(Grid().Refusal(1, 2), TextVerdict::Taken);
    editing_.Redo();
    EXPECT_EQ(Color(1, 2), color::kRed);
}

TEST_F(BlockEditingTest, NumbersComeInAsTheyAreMeantAndOthersStayAsTheyAre) {
    ShowAll();
    const PasteResult result =
        blocks_.Paste({1, 20}, "1,234.50\n-5\n1.23456\n1000000000\n¥5\n12.50\n(5.00)\n 7 \n2,5");
    EXPECT_EQ(result.refused.size(), 5U);
    const Texts expected{"1234.50", "-5", "1.23456", "1000000000", "5", "12.50", "(5.00)", "7", "2,5"};
    for (int row = 1; row <= 9; ++row)
        EXPECT_EQ(Text(row, 20), expected[static_cast<std::size_t>(row - 1)]);
    EXPECT_EQ(FaultText(Grid(), {7, 20}), "不能小于0");
    EXPECT_EQ(state_.open.RowCount(), 9);
}

TEST_F(BlockEditingTest, AnEndlessTextIsKeptOut) {
    const PasteResult result = blocks_.Paste({1, 2}, std::string(1000000, 'x'));
    ASSERT_EQ(result.refused.size(), 1U);
    EXPECT_FALSE(result.refused[0].kept);
    EXPECT_EQ(Text(1, 2), "");
    EXPECT_EQ(state_.open.RowCount(), 0);
}

TEST_F(BlockEditingTest, IdsFollowFromCodesAndAreRefusedWhenTheyDiffer) {
    ShowAll();
    const PasteResult same = blocks_.Paste({1, 4}, "1\t1001");
    EXPECT_THAT(same.refused, IsEmpty());
    const PasteResult other = blocks_.Paste({1, 4}, "99\t1001");
    EXPECT_THAT(Refused(other), ElementsAre("1,4 99: 该列由系统填写，不能录入"));
    EXPECT_EQ(Text(1, 4), "1");
}

TEST_F(BlockEditingTest, AnEmptyNameBesideACodeDoesNotClearTheRow) {
    blocks_.Paste({1, 5}, "1001\t");
    EXPECT_EQ(Text(1, 5), "1001");
    EXPECT_EQ(Text(1, 6), "库存现金");
    blocks_.Paste({1, 5}, "1002\t");
    EXPECT_EQ(Text(1, 6), "银行存款");
}

TEST_F(BlockEditingTest, EmptyCellsClearWhatWasThere) {
    blocks_.Paste({1, 1}, "1\ta\t借\t1001");
    blocks_.Paste({1, 2}, "\t\t");
    EXPECT_EQ(Text(1, 2), "");
    EXPECT_EQ(Text(1, 3), "");
    EXPECT_EQ(Text(1, 5), "");
    EXPECT_EQ(Text(1, 4), "");
    EXPECT_EQ(Text(1, 6), "");
    EXPECT_EQ(Text(1, 1), "1");
}

TEST_F(BlockEditingTest, CopiedRowsPasteAsTheyWere) {
    blocks_.Paste({1, 1}, "1\t提货\t借\t1001\r\n1\t提货\t贷\t1002\r\n");
    const std::string copied = blocks_.Copy({1, 1, 2, 21})->text;
    EXPECT_THAT(blocks_.Paste({3, 1}, copied).refused, IsEmpty());
    EXPECT_EQ(blocks_.Copy({3, 1, 4, 21}).value_or(CopiedBlock("none")).text, copied);
    EXPECT_EQ(Text(3, 4), "1");
    EXPECT_EQ(Text(4, 4), "2");
}

TEST_F(BlockEditingTest, WithoutTheRightNothingIsPastedFilledOrDuplicated) {
    UseRows(2);
    edited_ = 0;
    state_.hasRight = false;
    EXPECT_EQ(blocks_.Paste({1, 1}, "9").rows, 0);
    blocks_.FillDown({1, 1, 2, 1});
    blocks_.DuplicateRows({1, 1});
    EXPECT_EQ(Text(1, 1), "1");
    EXPECT_EQ(Text(2, 1), "2");
    EXPECT_EQ(state_.open.RowCount(), 2);
    EXPECT_EQ(edited_, 0);
}

TEST_F(BlockEditingTest, NothingToPasteIsNoChange) {
    EXPECT_EQ(blocks_.Paste({1, 1}, "").rows, 0);
    EXPECT_EQ(blocks_.Paste({0, 0}, "1").rows, 0);
    EXPECT_FALSE(state_.open.IsDirty());
    EXPECT_FALSE(state_.open.Journal().CanUndo());
}

TEST_F(BlockEditingTest, TenThousandRowsAreOneStepOfUndoAndShowProgress) {
    constexpr int kRows = 10000;
    std::string text;
    for (int i = 1; i <= kRows; ++i)
        text += std::to_string(i) + "\t提货\t借\t1002\r\n";
    set_.Forget();
    GridDiary diary(Grid());
    EXPECT_EQ(blocks_.Paste({1, 1}, text).rows, kRows);
    EXPECT_EQ(state_.open.RowCount(), kRows);
    EXPECT_EQ(Text(kRows, 6), "银行存款");
    // Each different question once, whatever the number of rows.
    EXPECT_LE(set_.Statements().size(), 4U);
    EXPECT_LE(diary.Take().size(), 6U);

    ASSERT_EQ(view_.progress.size(), kRows / 500 + 1U);
    EXPECT_TRUE(view_.progress.front().visible);
    EXPECT_EQ(view_.progress.front().label, "正在粘贴，请稍后...");
    EXPECT_EQ(view_.progress[1].done, 500);
    EXPECT_EQ(view_.progress[1].all, kRows);
    EXPECT_FALSE(view_.progress.back().visible);

    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 0);
    EXPECT_TRUE(Grid().IsBlankRow(1));
    EXPECT_EQ(Grid().RowTotal(), 100);
    EXPECT_FALSE(state_.open.Journal().CanUndo());
    editing_.Redo();
    EXPECT_EQ(state_.open.RowCount(), kRows);
    EXPECT_EQ(Text(kRows, 5), "1002");
}

TEST_F(BlockEditingTest, AnErrorHalfWayTakesTheProgressAwayAndLeavesOneStep) {
    set_.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '7777'",
                Rows({"Unknown"}, {{Variant(1)}}));
    std::string text;
    for (int i = 1; i <= 600; ++i)
        text += i == 550 ? "1\ta\t借\t7777\r\n" : "1\ta\t借\t1001\r\n";
    EXPECT_THROW(blocks_.Paste({1, 1}, text), automation::Error);
    ASSERT_FALSE(view_.progress.empty());
    EXPECT_FALSE(view_.progress.back().visible);
    EXPECT_TRUE(Grid().ReDraw());
    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 0);
    EXPECT_FALSE(state_.open.Journal().CanUndo());
}

TEST_F(BlockEditingTest, AFewRowsShowNoProgress) {
    blocks_.Paste({1, 1}, "1\r\n2\r\n");
    EXPECT_THAT(view_.progress, IsEmpty());
}

// --- one value into all selected cells

TEST_F(BlockEditingTest, OneValueGoesIntoAllSelectedCells) {
    UseRows(3);
    const PasteResult result = blocks_.FillSelection({1, 5, 3, 5}, "1001");
    EXPECT_EQ(result.cells, 3);
    for (int row = 1; row <= 3; ++row)
        EXPECT_EQ(Text(row, 6), "库存现金");
    editing_.Undo();
    EXPECT_EQ(Text(1, 5), "");
    EXPECT_EQ(Text(3, 6), "");
    EXPECT_FALSE(state_.open.Journal().CanUndo());
}

TEST_F(BlockEditingTest, AValueThatNoSelectedCellTakesIsListedForEach) {
    UseRows(2);
    const PasteResult result = blocks_.FillSelection({1, 1, 2, 1}, "a");
    EXPECT_THAT(Refused(result), ElementsAre("1,1 a: 只能录入数字", "2,1 a: 只能录入数字"));
    EXPECT_EQ(Text(1, 1), "a");
    EXPECT_EQ(Color(2, 1), color::kRed);
}

// --- a column chosen by its header

TEST_F(BlockEditingTest, AWholeColumnIsFilledAsFarAsThereAreLines) {
    blocks_.Paste({1, 1}, "1\ta\r\n2\tb\r\n3\tc\r\n");
    const CellSelection column{1, 2, Grid().RowTotal(), 2};
    blocks_.FillDown(column);
    EXPECT_EQ(state_.open.RowCount(), 3);
    EXPECT_EQ(Text(3, 2), "a");
    EXPECT_TRUE(Grid().IsBlankRow(4));
    EXPECT_EQ(blocks_.Paste(column, "same").cells, 3);
    EXPECT_EQ(state_.open.RowCount(), 3);
    EXPECT_EQ(Text(3, 2), "same");
    EXPECT_TRUE(Grid().IsBlankRow(4));
    EXPECT_EQ(blocks_.Copy(column)->text, "same\r\nsame\r\nsame\r\n");
    EXPECT_THAT(Messages(), IsEmpty());
    // As far as the user went himself it still goes.
    blocks_.FillDown({1, 2, 5, 2});
    EXPECT_EQ(state_.open.RowCount(), 5);
}

TEST_F(BlockEditingTest, AWholeColumnOfNoLinesBeginsInTheFirstRow) {
    blocks_.FillDown({1, 2, Grid().RowTotal(), 2});
    EXPECT_EQ(state_.open.RowCount(), 0);
    blocks_.Paste({1, 2, Grid().RowTotal(), 2}, "same");
    EXPECT_EQ(state_.open.RowCount(), 1);
    EXPECT_EQ(Text(1, 2), "same");
}

// --- selections in pieces, whole rows and hidden columns

TEST_F(BlockEditingTest, OneValueGoesIntoTheSelectedPiecesOnly) {
    UseRows(5);
    blocks_.Paste(CellSelection({{2, 2, 2, 2}, {5, 2, 5, 2}}), "same\r\n");
    EXPECT_EQ(Text(2, 2), "same");
    EXPECT_EQ(Text(5, 2), "same");
    for (const int row : {1, 3, 4})
        EXPECT_EQ(Text(row, 2), "");
}

TEST_F(BlockEditingTest, ABlockIsNotPastedOverPieces) {
    UseRows(5);
    EXPECT_EQ(blocks_.Paste(CellSelection({{2, 2, 2, 2}, {5, 2, 5, 2}}), "a\tb").cells, 0);
    EXPECT_THAT(Messages(), ElementsAre("所选单元格不是一个完整的区域，请只选定一个单元格再粘贴！"));
    EXPECT_EQ(Text(2, 2), "");
}

TEST_F(BlockEditingTest, PiecesAreCopiedWhenTheyAreATable) {
    UseRows(5);
    EXPECT_EQ(blocks_.Copy(CellSelection({{2, 1, 2, 2}, {5, 1, 5, 2}}))->text, "2\t\r\n5\t\r\n");
    EXPECT_EQ(blocks_.Copy(CellSelection({{2, 1, 2, 1}, {5, 2, 5, 2}})), std::nullopt);
    EXPECT_THAT(Messages(), ElementsAre("所选单元格不是一个完整的区域，不能复制！"));
}

TEST_F(BlockEditingTest, OneCellIsCopiedWithoutALineEnd) {
    UseRows(1);
    EXPECT_EQ(blocks_.Copy({1, 1})->text, "1");
    EXPECT_EQ(blocks_.Copy({1, 1, 1, 2})->text, "1\t\r\n");
}

TEST_F(BlockEditingTest, WholeRowsMoveWithEverythingThatBelongsToThem) {
    ShowAll();
    blocks_.Paste({1, 1},
                  "1\t提货\t借\t\t1002\t\t2\t\t01\t00012\t\t\tUSD\t6.5\t100\t\t\t\t\t650.00\t备注\r\n2\r\n");
    blocks_.Paste({1, 15}, "-7");
    for (int c = 8; c <= 20; ++c)
        Grid().SetColumnHidden(c, true);
    Texts before;
    for (int c = 1; c <= kColumnCount; ++c)
        before.push_back(Text(1, c));
    const auto rows = CellSelection::Rows({{1, 1}});
    const std::optional<CopiedBlock> copied = blocks_.Copy(rows);
    ASSERT_TRUE(copied.has_value());
    editing_.ClearCells(rows);
    EXPECT_TRUE(Grid().IsBlankRow(1));
    const PasteResult result = blocks_.Paste({3, 4}, *copied);
    EXPECT_THAT(result.refused, IsEmpty());
    for (int c = 1; c <= kColumnCount; ++c)
        EXPECT_EQ(Text(3, c), before[static_cast<std::size_t>(c - 1)]) << c;
    EXPECT_EQ(Text(3, 8), "51");
    EXPECT_EQ(Color(3, 15), color::kRed) << "what was refused stays refused";
    EXPECT_EQ(Grid().Refusal(3, 15), TextVerdict::Negative);
    editing_.Undo();
    EXPECT_TRUE(Grid().IsBlankRow(3));
}

TEST_F(BlockEditingTest, WholeRowsAsATextFindTheirColumnsByHeadings) {
    ShowAll();
    blocks_.Paste({1, 1},
                  "1\t提货\t借\t\t1002\t\t2\t\t01\t00012\t\t\tUSD\t6.5\t100\t\t\t\t\t650.00\t备注\r\n2\r\n");
    for (int c = 8; c <= 20; ++c)
        Grid().SetColumnHidden(c, true);
    Texts before;
    for (int c = 1; c <= kColumnCount; ++c)
        before.push_back(Text(1, c));
    const std::optional<CopiedBlock> copied = blocks_.Copy(CellSelection::Rows({{1, 1}}));
    ASSERT_TRUE(copied.has_value());
    EXPECT_THAT(copied->text, ::testing::StartsWith("模板编号(*)\t摘要(*)\t"));
    EXPECT_EQ(copied->text.find("内码"), std::string::npos);
    // Without what is kept for this process: another one, or back from a spreadsheet.
    const PasteResult result = blocks_.Paste({3, 2}, CopiedBlock(copied->text));
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(result.refused, IsEmpty());
    for (int c = 1; c <= kColumnCount; ++c) {
        // As from any other program: a name comes without the id of this account set.
        if (Column(c).locked) continue;
        EXPECT_EQ(Text(3, c), before[static_cast<std::size_t>(c - 1)]) << c;
    }
    EXPECT_TRUE(Grid().IsBlankRow(4));
}

TEST_F(BlockEditingTest, FillingDownWorksOnEachPiece) {
    blocks_.Paste({1, 1}, "1\ta\r\n2\tb\r\n3\tc\r\n4\td\r\n5\te\r\n");
    blocks_.FillDown(CellSelection({{2, 2, 2, 2}, {4, 2, 5, 2}}));
    EXPECT_EQ(Text(2, 2), "a");
    EXPECT_EQ(Text(3, 2), "c");
    EXPECT_EQ(Text(4, 2), "d");
    EXPECT_EQ(Text(5, 2), "d");
}

TEST_F(BlockEditingTest, AllSelectedRowsAreDuplicated) {
    UseRows(5);
    blocks_.DuplicateRows(CellSelection({{1, 1, 2, 1}, {5, 2, 5, 2}}));
    const Texts expected{"1", "2", "1", "2", "3", "4", "5", "5"};
    for (int row = 1; row <= 8; ++row)
        EXPECT_EQ(Text(row, 1), expected[static_cast<std::size_t>(row - 1)]);
    EXPECT_EQ(state_.open.RowCount(), 8);
    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 5);
    EXPECT_FALSE(state_.open.Journal().CanUndo());
}

// --- filling down

TEST_F(BlockEditingTest, FillingDownCopiesTheFirstRowOfTheSelection) {
    blocks_.Paste({1, 1}, "1\t提货\t借\t1001\r\n2\tb\t贷\t1002\r\n3\r\n");
    blocks_.FillDown({1, 2, 3, 5});
    for (int row = 2; row <= 3; ++row) {
        EXPECT_EQ(Text(row, 1), std::to_string(row));
        EXPECT_EQ(Text(row, 2), "提货");
        EXPECT_EQ(Text(row, 3), "借");
        EXPECT_EQ(Text(row, 5), "1001");
        // The hidden id and the name go along with the code.
        EXPECT_EQ(Text(row, 4), "1");
        EXPECT_EQ(Text(row, 6), "库存现金");
    }
}

TEST_F(BlockEditingTest, OneRowAloneTakesWhatStandsAbove) {
    blocks_.Paste({1, 1}, "1\t提货");
    blocks_.FillDown({2, 1, 2, 2});
    EXPECT_EQ(Text(2, 1), "1");
    EXPECT_EQ(Text(2, 2), "提货");
    EXPECT_EQ(state_.open.RowCount(), 2);
    edited_ = 0;
    blocks_.FillDown({1, 1, 1, 2});
    EXPECT_EQ(edited_, 0);
}

TEST_F(BlockEditingTest, FillingDownIsOneStepAndMarksTheRows) {
    blocks_.Paste({1, 5}, "9999");
    blocks_.FillDown({1, 5, 4, 5});
    EXPECT_EQ(state_.open.RowCount(), 4);
    EXPECT_EQ(Color(4, 5), color::kRed);
    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 1);
    EXPECT_TRUE(Grid().IsBlankRow(2));
}

TEST_F(BlockEditingTest, FillingDownToTheLastRowLeavesABlankOneBelow) {
    UseRows(2);
    const int total = Grid().RowTotal();
    blocks_.FillDown({2, 1, total, 1});
    EXPECT_EQ(state_.open.RowCount(), total);
    EXPECT_EQ(Grid().RowTotal(), total + 1);
    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 2);
    EXPECT_EQ(Grid().RowTotal(), total);
    editing_.Redo();
    EXPECT_EQ(state_.open.RowCount(), total);
    EXPECT_EQ(Grid().RowTotal(), total + 1);
}

TEST_F(BlockEditingTest, HiddenColumnsAreNotFilled) {
    UseRows(2);
    Grid().SetText(1, 10, "00012");
    blocks_.FillDown({1, 1, 2, 21});
    EXPECT_EQ(Text(2, 10), "");
    EXPECT_EQ(Text(2, 1), "1");
}

TEST_F(BlockEditingTest, FillingDownBelowTheRowsInUseNeedsARowAbove) {
    UseRows(1);
    blocks_.FillDown({3, 1, 5, 1});
    EXPECT_EQ(state_.open.RowCount(), 1);
    EXPECT_FALSE(state_.open.IsDirty());
}

// --- duplicating

TEST_F(BlockEditingTest, ADuplicateStandsBelowItsRowWithEverythingInIt) {
    ShowAll();
    blocks_.Paste({1, 1}, "1\t提货\t借\t\t1002\t\t\t\t01\t00012\r\n2\r\n");
    Grid().SetColumnHidden(10, true);
    Grid().SetActiveCell({1, 3});
    blocks_.DuplicateRows({1, 3});
    for (int c = 1; c <= kColumnCount; ++c)
        EXPECT_EQ(Text(2, c), Text(1, c)) << c;
    EXPECT_EQ(Text(2, 8), "51");
    EXPECT_EQ(Text(3, 1), "2");
    EXPECT_EQ(state_.open.RowCount(), 3);
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{2, 3}));
    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 2);
    EXPECT_EQ(Text(2, 1), "2");
}

TEST_F(BlockEditingTest, TheLastRowInUseIsDuplicatedToo) {
    UseRows(2);
    blocks_.DuplicateRows({2, 1});
    EXPECT_EQ(state_.open.RowCount(), 3);
    EXPECT_EQ(Text(3, 1), "2");
}

TEST_F(BlockEditingTest, ABlankRowBelowIsNotDuplicated) {
    UseRows(1);
    blocks_.DuplicateRows({2, 1});
    EXPECT_EQ(state_.open.RowCount(), 1);
    EXPECT_EQ(Grid().RowTotal(), 100);
}

}  // namespace vicenter::center
