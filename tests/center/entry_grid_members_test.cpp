// The entry grid as hosts and dialogs drive it: late-bound, by the spread control's names.

#include "center/grid/entry_grid.h"
#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

class LateBoundGrid : public testing::Test {
  protected:
    void Select(int row, int gridColumn) {
        grid_->Put("Row", row);
        grid_->Put("Col", gridColumn);
    }
    void SelectBlock(int row, int gridColumn, int row2, int column2) {
        Select(row, gridColumn);
        grid_->Put("Row2", row2);
        grid_->Put("Col2", column2);
        grid_->Put("BlockMode", true);
    }
    std::int32_t Number(const char* name) { return grid_->Get(name).ToInt32(); }

    std::shared_ptr<EntryGrid> grid_ = std::make_shared<EntryGrid>();
};

}  // namespace

TEST_F(LateBoundGrid, IsASpread) {
    EXPECT_EQ(grid_->TypeName(), "vaSpread");
    EXPECT_EQ(Number("MaxRows"), 100);
    EXPECT_EQ(Number("MaxCols"), 21);
    EXPECT_THROW(grid_->Get("NoSuchMember"), automation::Error);
}

TEST_F(LateBoundGrid, TheTextOfTheSelectedCellIsReadAndWritten) {
    Select(3, 2);
    grid_->Put("Text", "提现");
    EXPECT_EQ(grid_->Text(3, 2), "提现");
    EXPECT_EQ(grid_->Get("text").ToText(), "提现");
    EXPECT_EQ(grid_->Get("Value").ToText(), "提现");
    Select(3, 20);
    grid_->Put("Value", 12.5);
    EXPECT_EQ(grid_->Text(3, 20), "12.5");
}

TEST_F(LateBoundGrid, RowAndColAreReadBackAsTheyWereSet) {
    SelectBlock(2, 3, 4, 5);
    EXPECT_EQ(Number("Row"), 2);
    EXPECT_EQ(Number("Col"), 3);
    EXPECT_EQ(Number("Row2"), 4);
    EXPECT_EQ(Number("Col2"), 5);
    EXPECT_TRUE(grid_->Get("BlockMode").ToBoolean());
    EXPECT_EQ(grid_->SelectedRange(), (CellRange{2, 3, 4, 5}));
    grid_->Put("BlockMode", false);
    EXPECT_EQ(grid_->SelectedRange(), (CellRange{2, 3, 2, 3}));
}

TEST_F(LateBoundGrid, ABlockMayBeGivenFromItsLastCell) {
    SelectBlock(4, 5, 2, 3);
    EXPECT_EQ(grid_->SelectedRange(), (CellRange{2, 3, 4, 5}));
}

TEST_F(LateBoundGrid, MinusOneStandsForAllRowsOrColumns) {
    Select(-1, 7);
    EXPECT_EQ(grid_->SelectedRange(), (CellRange{1, 7, 100, 7}));
    Select(5, -1);
    EXPECT_EQ(grid_->SelectedRange(), (CellRange{5, 1, 5, 21}));
    Select(-1, -1);
    EXPECT_EQ(grid_->SelectedRange(), (CellRange{1, 1, 100, 21}));
}

TEST_F(LateBoundGrid, ColoursAreWrittenToTheWholeBlock) {
    SelectBlock(2, 1, 3, 21);
    grid_->Put("BackColor", 0xB9F7FF);
    grid_->Put("ForeColor", 255);
    EXPECT_EQ(grid_->Look(2, 1).backColor, 0xB9F7FF);
    EXPECT_EQ(grid_->Look(3, 21).backColor, 0xB9F7FF);
    EXPECT_EQ(grid_->Look(3, 21).foreColor, 255);
    EXPECT_EQ(grid_->Look(4, 1).backColor, color::kWhite);
    EXPECT_EQ(Number("BackColor"), 0xB9F7FF);
    EXPECT_EQ(Number("ForeColor"), 255);
}

TEST_F(LateBoundGrid, TextIsWrittenToTheWholeBlockAndReadFromItsFirstCell) {
    SelectBlock(2, 21, 3, 21);
    grid_->Put("Text", "同");
    EXPECT_EQ(grid_->Text(2, 21), "同");
    EXPECT_EQ(grid_->Text(3, 21), "同");
    EXPECT_EQ(grid_->Get("Text").ToText(), "同");
}

TEST_F(LateBoundGrid, RowZeroIsTheHeader) {
    Select(0, 1);
    EXPECT_EQ(grid_->Get("Text").ToText(), "模板编号(*)");
    Select(0, 16);
    EXPECT_EQ(grid_->Get("Text").ToText(), "计量单位内码");
    grid_->Put("Text", "x");
    EXPECT_EQ(grid_->Get("Text").ToText(), "计量单位内码");
}

TEST_F(LateBoundGrid, AColumnIsHiddenThroughItsNumberForAllRows) {
    Select(-1, 11);
    EXPECT_TRUE(grid_->Get("ColHidden").ToBoolean());
    grid_->Put("ColHidden", false);
    EXPECT_FALSE(grid_->Layout(11).hidden);
    grid_->Put("ColHidden", true);
    EXPECT_TRUE(grid_->Layout(11).hidden);
    Select(-1, 22);
    EXPECT_THROW(grid_->Put("ColHidden", true), automation::Error);
}

TEST_F(LateBoundGrid, WidthsAreIndexedByColumnAndMayBeFractional) {
    EXPECT_EQ(grid_->Get("ColWidth", {2}).ToDouble(), 2820);
    grid_->Put("ColWidth", {2}, 1234.5);
    EXPECT_EQ(grid_->Layout(2).width, 1234.5);
    EXPECT_THROW(grid_->Get("ColWidth", {0}), automation::Error);
    EXPECT_THROW(grid_->Put("ColWidth", {22}, 1), automation::Error);
}

TEST_F(LateBoundGrid, HeaderAndDataRowsHaveHeights) {
    EXPECT_EQ(grid_->Get("RowHeight", {0}).ToInt32(), 450);
    EXPECT_EQ(grid_->Get("RowHeight", {1}).ToInt32(), 285);
}

TEST_F(LateBoundGrid, ColumnsTellTheirLockLimitAndList) {
    Select(-1, 4);
    EXPECT_TRUE(grid_->Get("Lock").ToBoolean());
    Select(-1, 5);
    EXPECT_FALSE(grid_->Get("Lock").ToBoolean());
    EXPECT_EQ(Number("TypeMaxEditLen"), 80);
    EXPECT_EQ(grid_->Get("TypeComboBoxList").ToText(), "");
    Select(-1, 3);
    EXPECT_EQ(Number("TypeMaxEditLen"), 150);
    EXPECT_EQ(grid_->Get("TypeComboBoxList").ToText(), "  \t借\t贷");
}

TEST_F(LateBoundGrid, TheNumberOfRowsIsSetAndRowsAreInsertedAndDeleted) {
    grid_->Put("MaxRows", 5);
    EXPECT_EQ(grid_->RowTotal(), 5);
    grid_->SetText(2, 2, "b");
    grid_->Call("InsertRows", {2, 1});
    EXPECT_EQ(grid_->Text(3, 2), "b");
    grid_->Call("DeleteRows", {1, 2});
    EXPECT_EQ(grid_->Text(1, 2), "b");
    EXPECT_EQ(Number("MaxRows"), 4);
}

TEST_F(LateBoundGrid, TheActiveCellIsSetByColumnThenRow) {
    EXPECT_EQ(Number("ActiveRow"), 0);
    grid_->Call("SetActiveCell", {3, 7});
    EXPECT_EQ(grid_->ActiveCell(), (CellAddress{7, 3}));
    EXPECT_EQ(Number("ActiveRow"), 7);
    EXPECT_EQ(Number("ActiveCol"), 3);
    GridDiary diary(*grid_);
    grid_->Call("ShowCell", {3, 9});
    grid_->Call("ShowCell", {3, 9, 1});
    EXPECT_THAT(diary.Take(), testing::ElementsAre("scrolled 9 3", "scrolled 9 3"));
}

TEST_F(LateBoundGrid, GetTextAndSetTextTakeColumnThenRow) {
    grid_->Call("SetText", {2, 8, "付款"});
    EXPECT_EQ(grid_->Text(8, 2), "付款");
    Variant text;
    EXPECT_TRUE(grid_->Call("GetText", {2, 8, automation::Argument::ByReference(text)}).ToBoolean());
    EXPECT_EQ(text.ToText(), "付款");
    EXPECT_FALSE(grid_->Call("GetText", {2, 9, automation::Argument::ByReference(text)}).ToBoolean());
    EXPECT_EQ(text.ToText(), "");
}

TEST_F(LateBoundGrid, TheFontIsSetByNameAndSize) {
    grid_->Put("FontName", "宋体");
    grid_->Put("FontSize", 10.5);
    EXPECT_EQ(grid_->Font().name, "宋体");
    EXPECT_EQ(grid_->Font().size, 10.5);
    EXPECT_EQ(grid_->Get("FontName").ToText(), "宋体");
    EXPECT_EQ(grid_->Get("FontSize").ToDouble(), 10.5);
}

TEST_F(LateBoundGrid, RedrawingHoldsReportsBack) {
    GridDiary diary(*grid_);
    grid_->Put("ReDraw", false);
    EXPECT_FALSE(grid_->Get("ReDraw").ToBoolean());
    Select(1, 2);
    grid_->Put("Text", "a");
    EXPECT_THAT(diary.Take(), testing::IsEmpty());
    grid_->Put("ReDraw", true);
    EXPECT_THAT(diary.Take(), testing::ElementsAre("texts 1,2..1,2"));
}

}  // namespace vicenter::center
