#include "center/editing/grid_editing.h"

#include "center/editing/fault_text.h"
#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

constexpr const char* kGap = "请连续录入凭证模板分录！";
constexpr const char* kTwoRows = "凭证模板分录不能小于2行，删除失败！";

using testing::ElementsAre;
using testing::IsEmpty;

class GridEditingTest : public GridTest {
  protected:
    // Types a text into a cell and leaves it for the next one.
    TextVerdict Type(int row, int gridColumn, const std::string& text) {
        Grid().SetActiveCell({row, gridColumn});
        const TextVerdict verdict = editing_.CommitText({row, gridColumn}, text);
        editing_.MoveActiveCell({row, gridColumn < kColumnCount ? gridColumn + 1 : 1});
        return verdict;
    }
    // The message is one box with one button, the information icon and the usual title.
    void ExpectMessage(const std::string& text) {
        ASSERT_EQ(surroundings_.messageBoxes->shown.size(), 1U);
        const fakes::ShownMessage& message = surroundings_.messageBoxes->shown.front();
        EXPECT_EQ(message.text, text);
        EXPECT_EQ(message.title, "信息提示");
        EXPECT_EQ(message.icon, system::MessageIcon::Information);
        EXPECT_EQ(message.buttons, system::MessageButtons::Ok);
    }

    GridEditing editing_{state_};
};

}  // namespace

// --- row count and dirty flag

TEST_F(GridEditingTest, ABlankRowCountsAsInUseOnceACellGetsContent) {
    EXPECT_EQ(state_.open.RowCount(), 0);
    EXPECT_EQ(editing_.CommitText({1, 21}, "备注"), TextVerdict::Taken);
    EXPECT_EQ(state_.open.RowCount(), 1);
    EXPECT_TRUE(state_.open.IsDirty());
    EXPECT_EQ(editing_.CommitText({1, 1}, "1"), TextVerdict::Taken);
    EXPECT_EQ(state_.open.RowCount(), 1);
    EXPECT_EQ(editing_.CommitText({2, 1}, "1"), TextVerdict::Taken);
    EXPECT_EQ(state_.open.RowCount(), 2);
}

TEST_F(GridEditingTest, TheLastRowThatIsEmptiedAgainIsNoLongerInUse) {
    Type(1, 2, "a");
    Type(1, 2, "");
    EXPECT_EQ(state_.open.RowCount(), 0);
    UseRows(3);
    Type(2, 1, "");
    EXPECT_EQ(state_.open.RowCount(), 3) << "a blank row between others stays a gap to be seen";
    Type(3, 1, "");
    EXPECT_EQ(state_.open.RowCount(), 1);
    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 3);
}

TEST_F(GridEditingTest, TheSameTextAgainIsNoChange) {
    UseRows(1);
    EXPECT_EQ(editing_.CommitText({1, 1}, "1"), TextVerdict::Taken);
    EXPECT_FALSE(state_.open.IsDirty());
    EXPECT_FALSE(state_.open.Journal().CanUndo());
}

TEST_F(GridEditingTest, ARefusedTextStaysInItsCellWithItsReasonAndGoesWithIt) {
    UseRows(1);
    EXPECT_EQ(editing_.CommitText({1, 4}, "1"), TextVerdict::Locked);
    EXPECT_EQ(Text(1, 4), "");
    EXPECT_FALSE(state_.open.IsDirty());
    EXPECT_EQ(Type(1, 20, "-9"), TextVerdict::Negative);
    EXPECT_EQ(Text(1, 20), "-9");
    EXPECT_EQ(Color(1, 20), color::kRed);
    EXPECT_EQ(FaultText(Grid(), {1, 20}), "不能小于0");
    EXPECT_EQ(Type(1, 20, "2,5"), TextVerdict::NotANumber);
    EXPECT_EQ(FaultText(Grid(), {1, 20}), "必须是不小于0的数字");
    EXPECT_EQ(FaultText(Grid(), {1, 19}), "");
    EXPECT_EQ(Type(1, 20, "25"), TextVerdict::Taken);
    EXPECT_EQ(Color(1, 20), color::kBlack);
    EXPECT_EQ(FaultText(Grid(), {1, 20}), "");
}

TEST_F(GridEditingTest, ARefusedCodeIsNotResolvedAndStaysRed) {
    Type(1, 5, "1001");
    EXPECT_EQ(Type(1, 5, "10'01"), TextVerdict::BadCharacter);
    EXPECT_EQ(Text(1, 5), "10'01");
    EXPECT_EQ(Color(1, 5), color::kRed);
    EXPECT_EQ(FaultText(Grid(), {1, 5}), "不能包含单引号、竖线或控制字符");
    Type(1, 5, "1001");
    EXPECT_EQ(Color(1, 5), color::kBlack);
}

TEST_F(GridEditingTest, CalculationsAreDoneWhenTheCellIsTaken) {
    Type(1, 20, "=100+200");
    EXPECT_EQ(Text(1, 20), "300");
    Type(1, 20, "860*3");
    EXPECT_EQ(Text(1, 20), "2580");
    EXPECT_EQ(Type(1, 20, "=860*"), TextVerdict::NoCalculation);
    EXPECT_EQ(Text(1, 20), "=860*");
    EXPECT_EQ(Color(1, 20), color::kRed);
}

TEST_F(GridEditingTest, ANumberOutsideTheLimitsIsShownAsSuchWhoeverPutItThere) {
    UseRows(1);
    Grid().SetText(1, 20, "-12.34");
    Grid().SetText(1, 7, "1500000000");
    CellChecks checks;
    MarkRow(Grid(), 1, checks);
    EXPECT_EQ(Color(1, 20), color::kRed);
    EXPECT_EQ(Color(1, 7), color::kRed);
    EXPECT_EQ(FaultText(Grid(), {1, 20}), "不能小于0");
    EXPECT_EQ(FaultText(Grid(), {1, 7}), "不能大于999999999");
}

TEST_F(GridEditingTest, WhoMayNotChangeTemplatesTypesNothing) {
    UseRows(2);
    state_.hasRight = false;
    EXPECT_EQ(editing_.CommitText({1, 2}, "a"), TextVerdict::Locked);
    editing_.ClearCells({1, 1, 2, 21});
    Grid().SetActiveCell({2, 2});
    EXPECT_FALSE(editing_.RepeatExplanation("."));
    EXPECT_EQ(Text(1, 1), "1");
    EXPECT_FALSE(state_.open.IsDirty());
}

TEST_F(GridEditingTest, WhoMayNotChangeTemplatesChangesNothingByMoving) {
    UseRows(1);
    Grid().SetText(1, 13, "USD");
    state_.open.Settle();
    state_.hasRight = false;
    Grid().SetActiveCell({1, 13});
    editing_.MoveActiveCell({1, 14});
    EXPECT_EQ(Text(1, 13), "USD");
    EXPECT_FALSE(state_.open.IsDirty());
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{1, 14}));
}

// --- leaving a cell

TEST_F(GridEditingTest, LeavingACellResolvesWhatWasTyped) {
    Type(1, 5, "1002");
    EXPECT_EQ(Text(1, 4), "2");
    EXPECT_EQ(Text(1, 6), "银行存款");
    EXPECT_EQ(Color(1, 5), color::kBlack);
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{1, 6}));
}

TEST_F(GridEditingTest, LeavingACellResolvesItWithoutTypingToo) {
    UseRows(1);
    Grid().SetText(1, 13, "USD");
    Grid().SetActiveCell({1, 13});
    editing_.MoveActiveCell({1, 1});
    EXPECT_EQ(Text(1, 13), "美元");
    EXPECT_EQ(Text(1, 12), "2");
}

TEST_F(GridEditingTest, TheCellThatWasLeftIsRedWhenItsCheckFailsAndBlackOtherwise) {
    Type(1, 5, "9999");
    EXPECT_EQ(Color(1, 5), color::kRed);
    EXPECT_EQ(Color(1, 6), color::kRed);
    Type(1, 5, "1001");
    EXPECT_EQ(Color(1, 5), color::kBlack);
    EXPECT_EQ(Color(1, 6), color::kBlack);
    Type(1, 9, "01");
    EXPECT_EQ(Text(1, 9), "支票");
    EXPECT_EQ(Color(1, 9), color::kRed);
    // With another account the settlement type becomes sound.
    Type(1, 5, "1002");
    EXPECT_EQ(Color(1, 9), color::kBlack);
}

TEST_F(GridEditingTest, AnExplanationThatBringsItsAccountMakesTheRowsOtherCellsSound) {
    set_.Answer(
        "on a.FAccountID = b.FAccountID where a.FNumber = '3'",
        Rows({"FExplanation", "FAccountID", "FNumber", "FName"}, {{"提款", Variant(2), "1002", "银行存款"}}));
    Type(1, 9, "01");
    EXPECT_EQ(Color(1, 9), color::kRed);  // no account yet
    Type(1, 2, "3");
    EXPECT_EQ(Text(1, 5), "1002");
    EXPECT_EQ(Color(1, 9), color::kBlack);
}

TEST_F(GridEditingTest, ACursorThatStaysLeavesNoCell) {
    Grid().SetActiveCell({1, 5});
    editing_.CommitText({1, 5}, "1001");
    editing_.MoveActiveCell({1, 5});
    EXPECT_EQ(Text(1, 6), "");
    editing_.MoveActiveCell({1, 7});
    EXPECT_EQ(Text(1, 6), "库存现金");
}

TEST_F(GridEditingTest, AnAccountCodeThatIsNotFoundKeepsTheOldIdAndName) {
    Type(1, 5, "1001");
    Type(1, 5, "9999");
    EXPECT_EQ(Text(1, 4), "1");
    EXPECT_EQ(Text(1, 6), "库存现金");
    EXPECT_EQ(Color(1, 6), color::kRed);
}

TEST_F(GridEditingTest, WithoutAnOpenTemplateNothingIsResolved) {
    state_.open.Become({}, {});
    Type(1, 5, "1001");
    EXPECT_EQ(Text(1, 6), "");
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

TEST_F(GridEditingTest, NothingIsLeftBeforeTheFirstCellWasActive) {
    editing_.MoveActiveCell({1, 3});
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{1, 3}));
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

TEST_F(GridEditingTest, FinishingTypingResolvesTheCellOnce) {
    Grid().SetActiveCell({1, 5});
    editing_.CommitText({1, 5}, "1001");
    EXPECT_EQ(Text(1, 6), "");
    editing_.FinishTyping();
    EXPECT_EQ(Text(1, 6), "库存现金");
    set_.Forget();
    editing_.FinishTyping();
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

// --- moving

TEST_F(GridEditingTest, MovingPastTheFirstBlankRowIsRefusedAndLandsThere) {
    UseRows(3);
    Grid().SetActiveCell({3, 2});
    GridDiary diary(Grid());
    editing_.MoveActiveCell({5, 7});
    ExpectMessage(kGap);
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{4, 7}));
    EXPECT_THAT(diary.Take(), ElementsAre("active 4 7", "scrolled 4 7"));
    EXPECT_FALSE(state_.open.IsDirty());
}

TEST_F(GridEditingTest, WhoMayNotChangeTemplatesLooksAnywhereWithoutAMessage) {
    UseRows(3);
    state_.hasRight = false;
    editing_.MoveActiveCell({50, 7});
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{50, 7}));
    EXPECT_EQ(Grid().RowTotal(), kFirstRowTotal);
}

TEST_F(GridEditingTest, TheFirstBlankRowIsWithinReach) {
    UseRows(3);
    editing_.MoveActiveCell({4, 1});
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{4, 1}));
}

TEST_F(GridEditingTest, ABlankRowStaysBelowTheRowsInUse) {
    Grid().SetRowTotal(4);
    UseRows(3);
    editing_.MoveActiveCell({1, 1});
    EXPECT_EQ(Grid().RowTotal(), 5);
    editing_.MoveActiveCell({1, 2});
    EXPECT_EQ(Grid().RowTotal(), 5);
    Type(4, 2, "a");
    EXPECT_EQ(Grid().RowTotal(), 6);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(GridEditingTest, WhatIsUndoneIsScrolledTo) {
    editing_.MoveActiveCell({1, 2});
    editing_.CommitText({1, 2}, "a");
    GridDiary diary(Grid());
    editing_.Undo();
    EXPECT_THAT(diary.Take(), ::testing::Contains("scrolled 1 2"));
    editing_.Redo();
    EXPECT_THAT(diary.Take(), ::testing::Contains("scrolled 1 2"));
}

TEST_F(GridEditingTest, TheSpareRowIsNoChangeAndNothingToUndo) {
    Grid().SetRowTotal(4);
    UseRows(3);
    editing_.MoveActiveCell({1, 1});
    EXPECT_FALSE(state_.open.IsDirty());
    EXPECT_FALSE(state_.open.Journal().CanUndo());
    EXPECT_EQ(Grid().Recorder(), &state_.open);
}

TEST_F(GridEditingTest, ATextBelowTheFirstBlankRowIsRefusedWithTheGapMessage) {
    UseRows(1);
    EXPECT_EQ(editing_.CommitText({3, 2}, "a"), TextVerdict::Locked);
    ExpectMessage(kGap);
    EXPECT_TRUE(Grid().IsBlankRow(3));
}

// --- two points

TEST_F(GridEditingTest, TwoPointsRepeatTheExplanationAbove) {
    UseRows(2);
    Grid().SetText(1, 2, "支付货款");
    Grid().SetActiveCell({2, 2});
    EXPECT_TRUE(editing_.RepeatExplanation("."));
    EXPECT_EQ(Text(2, 2), "支付货款");
    EXPECT_TRUE(state_.open.IsDirty());
}

TEST_F(GridEditingTest, TwoPointsDoNothingInRowOneInOtherColumnsOrBehindOtherTexts) {
    UseRows(2);
    Grid().SetText(1, 2, "支付货款");
    state_.open.Settle();
    Grid().SetActiveCell({1, 2});
    EXPECT_FALSE(editing_.RepeatExplanation("."));
    Grid().SetActiveCell({2, 5});
    EXPECT_FALSE(editing_.RepeatExplanation("."));
    Grid().SetActiveCell({2, 2});
    EXPECT_FALSE(editing_.RepeatExplanation("a"));
    EXPECT_FALSE(editing_.RepeatExplanation(""));
    EXPECT_FALSE(editing_.RepeatExplanation(".."));
    EXPECT_EQ(Text(2, 2), "");
    EXPECT_FALSE(state_.open.IsDirty());
}

// --- clearing

TEST_F(GridEditingTest, ClearingCellsEmptiesThemAndWhatDependsOnThem) {
    Type(1, 5, "1002");
    Type(1, 9, "01");
    Type(1, 2, "a");
    editing_.ClearCells({1, 5, 1, 5});
    EXPECT_EQ(Text(1, 4), "");
    EXPECT_EQ(Text(1, 5), "");
    EXPECT_EQ(Text(1, 6), "");
    EXPECT_EQ(Text(1, 9), "支票");
    EXPECT_EQ(Color(1, 9), color::kRed);
    EXPECT_EQ(Text(1, 2), "a");
    EXPECT_EQ(state_.open.RowCount(), 1);
}

TEST_F(GridEditingTest, ClearingNeverRemovesARowAndStaysWithinTheGrid) {
    UseRows(3);
    editing_.ClearCells({0, 0, 1000, 1000});
    EXPECT_EQ(state_.open.RowCount(), 0);
    EXPECT_EQ(Grid().RowTotal(), 100);
    for (int row = 1; row <= 3; ++row)
        EXPECT_TRUE(Grid().IsBlankRow(row));
    EXPECT_TRUE(state_.open.IsDirty());
    editing_.Undo();
    EXPECT_EQ(Text(3, 1), "3");
}

TEST_F(GridEditingTest, ClearingEmptyCellsIsNoChange) {
    UseRows(2);
    editing_.ClearCells({1, 2, 2, 21});
    EXPECT_FALSE(state_.open.IsDirty());
    EXPECT_FALSE(state_.open.Journal().CanUndo());
}

TEST_F(GridEditingTest, ClearingShownCellsLeavesTheHiddenOnesBetweenThem) {
    UseRows(2);
    Grid().SetText(1, 2, "a");
    Grid().SetText(1, 11, "D02");
    Grid().SetText(1, 20, "860");
    Grid().SetText(1, 21, "b");
    editing_.ClearCells({1, 1, 1, 21});
    EXPECT_EQ(Text(1, 2), "");
    EXPECT_EQ(Text(1, 21), "");
    EXPECT_EQ(Text(1, 11), "D02");
    EXPECT_EQ(Text(1, 20), "860");
    editing_.ClearCells(CellSelection::Rows({{1, 1}}));
    EXPECT_TRUE(Grid().IsBlankRow(1));
}

TEST_F(GridEditingTest, ClearingWorksOnThePiecesOnly) {
    UseRows(5);
    editing_.ClearCells(CellSelection({{2, 1, 2, 1}, {4, 1, 4, 1}}));
    EXPECT_EQ(Text(1, 1), "1");
    EXPECT_EQ(Text(2, 1), "");
    EXPECT_EQ(Text(3, 1), "3");
    EXPECT_EQ(Text(4, 1), "");
    editing_.Undo();
    EXPECT_EQ(Text(2, 1), "2");
    EXPECT_EQ(Text(4, 1), "4");
}

TEST_F(GridEditingTest, BuildingASelectionMayPassEveryRowWithoutAMessage) {
    UseRows(3);
    Grid().SetActiveCell({3, 2});
    editing_.MoveActiveCell({50, 2}, CursorMove::Selecting);
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{50, 2}));
    EXPECT_EQ(editing_.CommitText({50, 2}, "a"), TextVerdict::Locked);
    ExpectMessage(kGap);
}

// --- inserting

TEST_F(GridEditingTest, RowsInPiecesAreInsertedAboveAndDeletedEachForItself) {
    UseRows(5);
    editing_.DeleteRows(std::vector<RowRun>{{2, 2}, {5, 5}});
    EXPECT_EQ(state_.open.RowCount(), 3);
    for (const auto& [row, text] : {std::pair{1, "1"}, {2, "3"}, {3, "4"}})
        EXPECT_EQ(Text(row, 1), text);
    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 5);
    EXPECT_FALSE(state_.open.Journal().CanUndo());
    editing_.InsertRows(std::vector<RowRun>{{2, 2}, {4, 5}});
    const Texts expected{"1", "", "2", "3", "", "", "4", "5"};
    for (int row = 1; row <= 8; ++row)
        EXPECT_EQ(Text(row, 1), expected[static_cast<std::size_t>(row - 1)]);
    EXPECT_EQ(state_.open.RowCount(), 8);
}

TEST_F(GridEditingTest, InsertingNeedsARowInUseAndAnActiveRow) {
    editing_.InsertRow();
    UseRows(2);
    editing_.InsertRow();  // no active row yet
    EXPECT_EQ(Grid().RowTotal(), 100);
    EXPECT_EQ(state_.open.RowCount(), 2);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(GridEditingTest, InsertingWithinTheRowsInUseMovesThemDown) {
    UseRows(2);
    Grid().SetActiveCell({2, 3});
    GridDiary diary(Grid());
    editing_.InsertRow();
    EXPECT_EQ(state_.open.RowCount(), 3);
    EXPECT_TRUE(state_.open.IsDirty());
    EXPECT_EQ(Grid().RowTotal(), 101);
    EXPECT_EQ(Text(1, 1), "1");
    EXPECT_TRUE(Grid().IsBlankRow(2));
    EXPECT_EQ(Text(3, 1), "2");
    EXPECT_THAT(diary.Take(), ElementsAre("inserting 2 1", "inserted 2 1", "scrolled 2 3"));
}

TEST_F(GridEditingTest, InsertingAtTheFirstBlankRowChangesNeitherCountNorFlag) {
    UseRows(2);
    Grid().SetActiveCell({3, 1});
    editing_.InsertRow();
    EXPECT_EQ(state_.open.RowCount(), 2);
    EXPECT_FALSE(state_.open.IsDirty());
    EXPECT_EQ(Grid().RowTotal(), 101);
    editing_.Undo();
    EXPECT_EQ(Grid().RowTotal(), 100);
    EXPECT_FALSE(state_.open.IsDirty());
}

TEST_F(GridEditingTest, InsertingTwoRowsBelowTheLastIsRefusedWithTheGapMessage) {
    UseRows(2);
    Grid().SetActiveCell({4, 1});
    editing_.InsertRow();
    ExpectMessage(kGap);
    EXPECT_EQ(Grid().RowTotal(), 100);
    EXPECT_FALSE(state_.open.IsDirty());
}

TEST_F(GridEditingTest, SeveralRowsAreInsertedAsOneStep) {
    UseRows(2);
    editing_.InsertRows(1, 3);
    EXPECT_EQ(state_.open.RowCount(), 5);
    EXPECT_EQ(Text(4, 1), "1");
    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 2);
    EXPECT_EQ(Text(1, 1), "1");
    EXPECT_EQ(Grid().RowTotal(), 100);
}

// --- deleting

TEST_F(GridEditingTest, DeletingTakesTheActiveRowAway) {
    UseRows(3);
    Grid().SetActiveCell({2, 4});
    editing_.DeleteRow();
    EXPECT_EQ(state_.open.RowCount(), 2);
    EXPECT_TRUE(state_.open.IsDirty());
    EXPECT_EQ(Grid().RowTotal(), 99);
    EXPECT_EQ(Text(2, 1), "3");
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{2, 4}));
}

TEST_F(GridEditingTest, DeletingOutsideTheRowsInUseDoesNothing) {
    editing_.DeleteRow();
    UseRows(2);
    editing_.DeleteRow();  // no active row yet
    Grid().SetActiveCell({3, 1});
    editing_.DeleteRow();
    EXPECT_EQ(Grid().RowTotal(), 100);
    EXPECT_EQ(state_.open.RowCount(), 2);
    EXPECT_FALSE(state_.open.IsDirty());
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(GridEditingTest, DeletingWithExactlyTwoRowsIsRefusedWhateverTheRowCount) {
    for (const int used : {1, 2}) {
        surroundings_.messageBoxes->shown.clear();
        Grid().Clear(2);
        UseRows(used);
        Grid().SetActiveCell({1, 1});
        editing_.DeleteRow();
        ExpectMessage(kTwoRows);
        EXPECT_EQ(Grid().RowTotal(), 2);
        EXPECT_EQ(state_.open.RowCount(), used);
        EXPECT_FALSE(state_.open.IsDirty());
    }
}

TEST_F(GridEditingTest, SeveralRowsAreDeletedAsOneStepAndTwoRowsRemain) {
    UseRows(5);
    editing_.DeleteRows(2, 3);
    EXPECT_EQ(state_.open.RowCount(), 2);
    EXPECT_EQ(Text(2, 1), "5");
    editing_.Undo();
    EXPECT_EQ(state_.open.RowCount(), 5);
    for (int row = 1; row <= 5; ++row)
        EXPECT_EQ(Text(row, 1), std::to_string(row));
    Grid().SetRowTotal(5);
    editing_.DeleteRows(1, 4);
    ExpectMessage(kTwoRows);
    EXPECT_EQ(Grid().RowTotal(), 5);
}

TEST_F(GridEditingTest, DeletingMoreThanIsInUseTakesTheRowsInUseOnly) {
    UseRows(3);
    editing_.DeleteRows(2, 50);
    EXPECT_EQ(state_.open.RowCount(), 1);
    EXPECT_EQ(Grid().RowTotal(), 98);
}

TEST_F(GridEditingTest, TheCursorStaysWithinReachBehindADeletion) {
    UseRows(5);
    Grid().SetActiveCell({5, 2});
    editing_.DeleteRows(1, 5);
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{1, 2}));
}

}  // namespace vicenter::center
