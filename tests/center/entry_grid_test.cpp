#include "center/grid/entry_grid.h"

#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kManyRows = 100000;

class Notes : public GridRecorder {
  public:
    void TextReplaced(int row, int gridColumn, std::string_view before, TextVerdict) override {
        entries.push_back("text " + std::to_string(row) + "," + std::to_string(gridColumn) + " was " +
                          std::string(before));
    }
    void RowsInserted(int first, int count) override {
        entries.push_back("inserted " + std::to_string(first) + " " + std::to_string(count));
    }
    void RowsRemoved(int first, std::vector<GridRowPtr> rows) override {
        entries.push_back("removed " + std::to_string(first) + " " + std::to_string(rows.size()));
        removed = std::move(rows);
    }
    Texts entries;
    std::vector<GridRowPtr> removed;
};

std::array<std::string, kColumnCount> RowOf(const std::string& first) {
    std::array<std::string, kColumnCount> texts;
    texts.front() = first;
    texts.back() = "备注";
    return texts;
}

}  // namespace

TEST(EntryGridRows, AFreshGridHasAHundredBlankRowsAndNoActiveCell) {
    const EntryGrid grid;
    EXPECT_EQ(grid.RowTotal(), 100);
    for (int row = 1; row <= 100; ++row)
        EXPECT_TRUE(grid.IsBlankRow(row));
    EXPECT_EQ(grid.ActiveCell(), (CellAddress{0, 0}));
    EXPECT_EQ(grid.HeaderHeight(), 450);
    EXPECT_EQ(grid.RowHeight(), 285);
}

TEST(EntryGridRows, InsertedRowsMoveThoseBelowDown) {
    EntryGrid grid;
    grid.SetText(1, 2, "a");
    grid.SetText(2, 2, "b");
    grid.InsertRows(2, 3);
    EXPECT_EQ(grid.RowTotal(), 103);
    EXPECT_EQ(grid.Text(1, 2), "a");
    EXPECT_TRUE(grid.IsBlankRow(2));
    EXPECT_TRUE(grid.IsBlankRow(4));
    EXPECT_EQ(grid.Text(5, 2), "b");
}

TEST(EntryGridRows, RemovedRowsMoveThoseBelowUpWithTheirColours) {
    EntryGrid grid;
    grid.SetText(1, 2, "a");
    grid.SetText(3, 2, "c");
    grid.SetForeColor({3, 2, 3, 2}, color::kRed);
    grid.RemoveRows(1, 2);
    EXPECT_EQ(grid.RowTotal(), 98);
    EXPECT_EQ(grid.Text(1, 2), "c");
    EXPECT_EQ(grid.Look(1, 2).foreColor, color::kRed);
}

TEST(EntryGridRows, InsertingAndRemovingOutsideTheGridDoesNothing) {
    EntryGrid grid;
    grid.InsertRows(0, 1);
    grid.InsertRows(102, 1);
    grid.InsertRows(1, 0);
    grid.RemoveRows(0, 1);
    grid.RemoveRows(101, 1);
    grid.RemoveRows(5, 0);
    EXPECT_EQ(grid.RowTotal(), 100);
    grid.InsertRows(101, 1);
    EXPECT_EQ(grid.RowTotal(), 101);
    grid.RemoveRows(100, 50);
    EXPECT_EQ(grid.RowTotal(), 99);
}

TEST(EntryGridRows, TheTotalGrowsAndShrinksAtTheEnd) {
    EntryGrid grid;
    grid.SetText(100, 2, "last");
    grid.SetRowTotal(102);
    EXPECT_EQ(grid.RowTotal(), 102);
    EXPECT_EQ(grid.Text(100, 2), "last");
    grid.SetRowTotal(99);
    EXPECT_EQ(grid.RowTotal(), 99);
    EXPECT_EQ(grid.Text(100, 2), "");
    grid.SetRowTotal(-1);
    EXPECT_EQ(grid.RowTotal(), 99);
}

TEST(EntryGridRows, ClearingLeavesBlankRowsAndTheFirstCellActive) {
    EntryGrid grid;
    grid.SetText(7, 2, "a");
    grid.SetActiveCell({7, 2});
    grid.Clear(20);
    EXPECT_EQ(grid.RowTotal(), 20);
    EXPECT_TRUE(grid.IsBlankRow(7));
    EXPECT_EQ(grid.ActiveCell(), (CellAddress{1, 1}));
    grid.Clear(0);
    EXPECT_EQ(grid.ActiveCell(), (CellAddress{0, 0}));
}

TEST(EntryGridRows, TheActiveCellStaysInsideWhenItsRowIsRemovedAndObserversLearnOfIt) {
    EntryGrid grid;
    grid.SetActiveCell({100, 5});
    GridDiary diary(grid);
    grid.RemoveRows(91, 10);
    EXPECT_EQ(grid.ActiveCell(), (CellAddress{90, 5}));
    EXPECT_THAT(diary.Take(), ElementsAre("removing 91 10", "removed 91 10", "active 90 5"));
}

TEST(EntryGridRows, AHundredThousandBlankRowsCostAPointerEach) {
    EntryGrid grid;
    GridDiary diary(grid);
    grid.SetRowTotal(kManyRows);
    EXPECT_EQ(grid.RowTotal(), kManyRows);
    EXPECT_THAT(diary.Take(), ElementsAre("inserting 101 99900", "inserted 101 99900"));
    // Painting them in the usual colours gives none of them content of its own.
    grid.SetBackColor({1, 1, kManyRows, kColumnCount}, color::kWhite);
    grid.SetForeColor({1, 1, kManyRows, kColumnCount}, color::kBlack);
    EXPECT_THAT(diary.Take(), IsEmpty());
    grid.SetText(kManyRows, 2, "last");
    EXPECT_EQ(grid.Text(kManyRows, 2), "last");
    grid.InsertRows(1, 1);
    EXPECT_EQ(grid.Text(kManyRows + 1, 2), "last");
}

TEST(EntryGridTexts, ATextIsKeptAsItIs) {
    EntryGrid grid;
    EXPECT_TRUE(grid.SetText(1, column::kAccountNumber, "0012"));
    EXPECT_TRUE(grid.SetText(1, column::kAmount, "1.5000"));
    EXPECT_TRUE(grid.SetText(1, column::kExplanation, " 'quoted' | 😀 "));
    EXPECT_EQ(grid.Text(1, column::kAccountNumber), "0012");
    EXPECT_EQ(grid.Text(1, column::kAmount), "1.5000");
    EXPECT_EQ(grid.Text(1, column::kExplanation), " 'quoted' | 😀 ");
    EXPECT_FALSE(grid.IsBlankRow(1));
    grid.SetText(1, column::kAccountNumber, "");
    grid.SetText(1, column::kAmount, "");
    grid.SetText(1, column::kExplanation, "");
    EXPECT_TRUE(grid.IsBlankRow(1));
}

TEST(EntryGridTexts, ColumnOneTakesDigitsOnlyByAnyWayIn) {
    EntryGrid grid;
    EXPECT_TRUE(grid.SetText(1, 1, "12"));
    EXPECT_FALSE(grid.SetText(1, 1, "12a"));
    EXPECT_FALSE(grid.SetText(1, 1, "2147483648"));
    EXPECT_FALSE(grid.SetText(1, 4, "1;drop"));
    EXPECT_EQ(grid.Text(1, 1), "12");
    EXPECT_EQ(grid.Text(1, 4), "");
    grid.Put("Row", 1);
    grid.Put("Col", 1);
    grid.Put("Text", "x");
    EXPECT_EQ(grid.Text(1, 1), "12");
    grid.Call("SetText", {1, 1, "x"});
    EXPECT_EQ(grid.Text(1, 1), "12");
}

TEST(EntryGridTexts, OutsideTheGridThereIsTheEmptyTextAndNothingIsTaken) {
    EntryGrid grid;
    for (const CellAddress cell : {CellAddress{0, 1}, {101, 1}, {1, 0}, {1, 22}, {-1, -1}}) {
        EXPECT_EQ(grid.Text(cell.row, cell.column), "");
        EXPECT_FALSE(grid.SetText(cell.row, cell.column, "1"));
        EXPECT_EQ(grid.Look(cell.row, cell.column), CellLook{});
    }
}

TEST(EntryGridTexts, ATextMayBePartOfItsOwnRow) {
    EntryGrid grid;
    grid.SetText(1, 2, "abc");
    grid.SetText(1, 21, "xyz");
    grid.SetText(1, 2, grid.Text(1, 21));
    EXPECT_EQ(grid.Text(1, 2), "xyz");
    EXPECT_EQ(grid.Text(1, 21), "xyz");
}

TEST(EntryGridTexts, TheRecorderSeesEveryChangeOfContentAndNoFilling) {
    EntryGrid grid;
    Notes notes;
    grid.SetRecorder(&notes);
    grid.SetText(1, 2, "a");
    grid.SetText(1, 2, "b");
    grid.SetText(1, 2, "b");  // no change
    grid.FillRow(2, RowOf("7"));
    grid.InsertRows(1, 2);
    grid.RemoveRows(3, 1);
    EXPECT_THAT(notes.entries, ElementsAre("text 1,2 was ", "text 1,2 was a", "inserted 1 2", "removed 3 1"));
    ASSERT_EQ(notes.removed.size(), 1U);
    EXPECT_EQ(notes.removed.front()->Text(2), "b");
    EXPECT_EQ(grid.Recorder(), &notes);
}

TEST(EntryGridTexts, AFilledRowIsNeverRefused) {
    EntryGrid grid;
    grid.FillRow(1, RowOf("-5"));
    EXPECT_EQ(grid.Text(1, 1), "-5");
    EXPECT_EQ(grid.Text(1, 21), "备注");
    grid.FillRow(0, RowOf("1"));
    grid.FillRow(101, RowOf("1"));
    EXPECT_EQ(grid.RowTotal(), 100);
}

TEST(EntryGridTexts, RestoringPutsBackWhatAColumnWouldRefuse) {
    EntryGrid grid;
    grid.RestoreText(1, 1, "-5");
    EXPECT_EQ(grid.Text(1, 1), "-5");
}

TEST(EntryGridLooks, ColoursAreKeptCellByCell) {
    EntryGrid grid;
    grid.SetForeColor({2, 5, 3, 6}, color::kRed);
    EXPECT_EQ(grid.Look(2, 5).foreColor, color::kRed);
    EXPECT_EQ(grid.Look(3, 6).foreColor, color::kRed);
    EXPECT_EQ(grid.Look(2, 4).foreColor, color::kBlack);
    EXPECT_EQ(grid.Look(4, 5).foreColor, color::kBlack);
    EXPECT_EQ(grid.Look(2, 5).backColor, color::kWhite);
    grid.SetForeColor({2, 1, 2, 21}, color::kBlack);
    EXPECT_EQ(grid.Look(2, 5).foreColor, color::kBlack);
    EXPECT_EQ(grid.Look(3, 5).foreColor, color::kRed);
}

TEST(EntryGridLooks, AColourOnABlankRowLeavesItBlank) {
    EntryGrid grid;
    grid.SetBackColor({9, 1, 9, 21}, 0x123456);
    EXPECT_TRUE(grid.IsBlankRow(9));
    EXPECT_EQ(grid.Look(9, 21).backColor, 0x123456);
}

TEST(EntryGridLooks, AFaultBelongsToTheCellsOfItsCheck) {
    EntryGrid grid;
    grid.SetFaultyCheck(1, 1, true);
    EXPECT_EQ(grid.FaultyCheck(1, column::kAccountNumber), 1);
    EXPECT_EQ(grid.FaultyCheck(1, column::kAccountName), 1);
    EXPECT_EQ(grid.FaultyCheck(1, column::kSettleName), 0);
    EXPECT_EQ(grid.FaultyCheck(1, column::kExplanation), 0);
    EXPECT_EQ(grid.FaultyCheck(2, column::kAccountNumber), 0);
    grid.SetFaultyCheck(1, 5, true);
    grid.SetFaultyCheck(1, 1, false);
    EXPECT_EQ(grid.FaultyCheck(1, column::kAccountNumber), 0);
    EXPECT_EQ(grid.FaultyCheck(1, column::kItems), 5);
}

TEST(EntryGridReports, EachChangeIsToldAtOnceWhileRedrawingIsOn) {
    EntryGrid grid;
    GridDiary diary(grid);
    grid.SetText(2, 3, "借");
    grid.SetForeColor({2, 3, 2, 3}, color::kRed);
    EXPECT_THAT(diary.Take(), ElementsAre("texts 2,3..2,3", "looks 2,3..2,3"));
    grid.SetText(2, 3, "借");
    grid.SetForeColor({2, 3, 2, 3}, color::kRed);
    EXPECT_THAT(diary.Take(), IsEmpty());
}

TEST(EntryGridReports, ChangesAreHeldBackAsOneRangeWhileRedrawingIsOff) {
    EntryGrid grid;
    GridDiary diary(grid);
    grid.SetReDraw(false);
    grid.SetText(2, 3, "借");
    grid.SetText(5, 1, "1");
    grid.SetForeColor({3, 5, 3, 6}, color::kRed);
    EXPECT_THAT(diary.Take(), IsEmpty());
    grid.SetReDraw(true);
    EXPECT_THAT(diary.Take(), ElementsAre("texts 2,1..5,3", "looks 3,5..3,6"));
}

TEST(EntryGridReports, ChangesHeldBackComeBeforeRowsMove) {
    EntryGrid grid;
    GridDiary diary(grid);
    grid.SetReDraw(false);
    grid.SetText(5, 2, "a");
    grid.InsertRows(1, 1);
    EXPECT_THAT(diary.Take(), ElementsAre("texts 5,2..5,2", "inserting 1 1", "inserted 1 1"));
}

TEST(EntryGridReports, LayoutFontAndCursorAreToldOnceEach) {
    EntryGrid grid;
    GridDiary diary(grid);
    grid.SetColumnWidth(2, 1234.5);
    grid.SetColumnWidth(2, 1234.5);
    grid.SetColumnHidden(2, true);
    grid.SetColumnHidden(2, true);
    grid.SetRowHeights(500, 300);
    grid.SetFont({"宋体", 12});
    grid.SetActiveCell({3, 4});
    grid.SetActiveCell({101, 1});
    grid.ScrollIntoView({3, 4});
    grid.Clear(10);
    EXPECT_THAT(diary.Take(), ElementsAre("columns 2 2", "columns 2 2", "heights", "font", "active 3 4",
                                          "scrolled 3 4", "resetting", "reset"));
}

TEST(EntryGridReports, AnObserverMayLeaveWhileItIsTold) {
    class Leaver : public GridObserver {
      public:
        explicit Leaver(EntryGrid& grid) : grid_(grid) { grid_.AddObserver(*this); }
        void TextsChanged(const CellRange&) override {
            ++told;
            grid_.RemoveObserver(*this);
        }
        int told = 0;

      private:
        EntryGrid& grid_;
    };
    EntryGrid grid;
    Leaver leaver(grid);
    grid.SetText(1, 2, "a");
    grid.SetText(1, 2, "b");
    EXPECT_EQ(leaver.told, 1);
}

TEST(EntryGridColumns, TheDirectionListIsTwoBlanksDebitAndCreditBetweenTabs) {
    EXPECT_EQ(kDirectionList, "  \t借\t贷");
}

}  // namespace vicenter::center
