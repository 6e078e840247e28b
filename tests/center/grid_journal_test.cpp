// Undo and redo of the grid: by itself, and of everything the user does.

#include "center/editing/grid_journal.h"

#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

class UndoTest : public GridTest {
  protected:
    void Type(int row, int gridColumn, const std::string& text) {
        Grid().SetActiveCell({row, gridColumn});
        editing_.CommitText({row, gridColumn}, text);
        editing_.MoveActiveCell({row, gridColumn == kColumnCount ? 1 : gridColumn + 1});
    }
    // Everything that a save or a repaint would see.
    Texts Snapshot() {
        Texts all;
        for (int row = 1; row <= state_.open.RowCount(); ++row) {
            std::string line;
            for (int c = 1; c <= kColumnCount; ++c)
                line += Text(row, c) + (Color(row, c) == color::kRed ? "!" : "") + "|";
            all.push_back(line);
        }
        return all;
    }

    GridEditing editing_{state_};
    BlockEditing blocks_{state_, [] {}};
};

}  // namespace

TEST_F(UndoTest, NothingHappenedNothingToUndo) {
    EXPECT_FALSE(state_.open.Journal().CanUndo());
    EXPECT_FALSE(state_.open.Journal().CanRedo());
    editing_.Undo();
    editing_.Redo();
    EXPECT_EQ(state_.open.RowCount(), 0);
    EXPECT_FALSE(state_.open.IsDirty());
}

TEST_F(UndoTest, TypingAndItsResolutionAreOneStep) {
    Type(1, 5, "1001");
    EXPECT_EQ(Text(1, 6), "库存现金");
    editing_.Undo();
    EXPECT_TRUE(Grid().IsBlankRow(1));
    EXPECT_EQ(state_.open.RowCount(), 0);
    EXPECT_FALSE(state_.open.Journal().CanUndo());
    editing_.Redo();
    EXPECT_EQ(Text(1, 4), "1");
    EXPECT_EQ(Text(1, 5), "1001");
    EXPECT_EQ(Text(1, 6), "库存现金");
    EXPECT_EQ(state_.open.RowCount(), 1);
}

TEST_F(UndoTest, StepsAreTakenBackOneByOneAndRepeatedInTheirOrder) {
    std::vector<Texts> seen{Snapshot()};
    const auto after = [&](const std::function<void()>& action) {
        action();
        seen.push_back(Snapshot());
    };
    after([&] { Type(1, 5, "1002"); });
    after([&] { Type(1, 9, "01"); });
    after([&] { Type(2, 5, "9999"); });
    after([&] { blocks_.Paste({2, 1}, "1\t提货\t借\r\n2\t付款\t贷\r\n"); });
    after([&] { editing_.InsertRows(2, 2); });
    after([&] { editing_.ClearCells({1, 1, 1, 21}); });
    after([&] { blocks_.FillDown({4, 1, 6, 3}); });
    after([&] { editing_.DeleteRows(1, 3); });
    after([&] { blocks_.DuplicateRows({1, 1}); });
    for (std::size_t i = seen.size() - 1; i-- > 0;) {
        ASSERT_TRUE(state_.open.Journal().CanUndo()) << i;
        editing_.Undo();
        EXPECT_EQ(Snapshot(), seen[i]) << i;
    }
    EXPECT_FALSE(state_.open.Journal().CanUndo());
    for (std::size_t i = 1; i < seen.size(); ++i) {
        ASSERT_TRUE(state_.open.Journal().CanRedo()) << i;
        editing_.Redo();
        EXPECT_EQ(Snapshot(), seen[i]) << i;
    }
    EXPECT_FALSE(state_.open.Journal().CanRedo());
}

TEST_F(UndoTest, ANewChangeEndsWhatCouldBeRepeated) {
    Type(1, 2, "a");
    Type(1, 2, "b");
    editing_.Undo();
    EXPECT_TRUE(state_.open.Journal().CanRedo());
    Type(1, 21, "c");
    EXPECT_FALSE(state_.open.Journal().CanRedo());
    editing_.Undo();
    EXPECT_EQ(Text(1, 2), "a");
    EXPECT_EQ(Text(1, 21), "");
}

TEST_F(UndoTest, BackWhereItWasReadTheTemplateIsUnmodified) {
    UseRows(3);
    Type(1, 2, "a");
    Type(2, 2, "b");
    editing_.DeleteRows(1, 1);
    editing_.Undo();
    EXPECT_TRUE(state_.open.IsDirty());
    editing_.Undo();
    EXPECT_TRUE(state_.open.IsDirty());
    editing_.Undo();
    EXPECT_FALSE(state_.open.IsDirty());
    editing_.Redo();
    EXPECT_TRUE(state_.open.IsDirty());
    editing_.Undo();
    EXPECT_FALSE(state_.open.IsDirty());
    Type(1, 2, "c");
    EXPECT_TRUE(state_.open.IsDirty());
}

TEST_F(UndoTest, WhatWasModifiedBeforeTheFirstStepStaysModified) {
    UseRows(1);
    state_.open.Touch();  // as a look-up leaves it that was cancelled
    Type(1, 2, "a");
    editing_.Undo();
    EXPECT_TRUE(state_.open.IsDirty());
}

TEST_F(UndoTest, MoreStepsThanAreKeptLeadToNothingUnmodified) {
    UseRows(1);
    for (std::size_t i = 0; i <= GridJournal::kMostSteps; ++i)
        Type(1, 2, "a" + std::to_string(i));
    while (state_.open.Journal().CanUndo())
        editing_.Undo();
    EXPECT_EQ(Text(1, 2), "a0");
    EXPECT_TRUE(state_.open.IsDirty());
}

TEST_F(UndoTest, TakingAChangeBackIsAChangeToo) {
    UseRows(1);
    Type(1, 2, "a");
    state_.open.Settle();  // saved meanwhile by other means
    editing_.Undo();
    EXPECT_TRUE(state_.open.IsDirty());
}

TEST_F(UndoTest, TheCursorGoesBackToWhereTheChangeWasMade) {
    UseRows(9);
    Type(7, 2, "a");
    Grid().SetActiveCell({1, 1});
    editing_.Undo();
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{7, 2}));
}

TEST_F(UndoTest, ColoursFollowTheTextsThatComeBack) {
    Type(1, 5, "9999");
    Type(1, 5, "1001");
    EXPECT_EQ(Color(1, 5), color::kBlack);
    editing_.Undo();
    EXPECT_EQ(Text(1, 5), "9999");
    EXPECT_EQ(Color(1, 5), color::kRed);
    editing_.Redo();
    EXPECT_EQ(Color(1, 5), color::kBlack);
}

TEST_F(UndoTest, RemovedRowsComeBackWithEverythingInThem) {
    Type(1, 1, "1");
    Type(2, 1, "2");
    Type(2, 5, "9999");
    const Texts before = Snapshot();
    editing_.DeleteRows(2, 1);
    editing_.Undo();
    EXPECT_EQ(Snapshot(), before);
    EXPECT_EQ(Color(2, 5), color::kRed);
}

TEST_F(UndoTest, ATextThatAColumnWouldRefuseComesBackAllTheSame) {
    std::array<std::string, kColumnCount> line;
    line[0] = "-5";
    Grid().FillRow(1, line);
    state_.open.TakeRows(1);
    Type(1, 1, "7");
    editing_.Undo();
    EXPECT_EQ(Text(1, 1), "-5");
}

TEST_F(UndoTest, WhoMayNotChangeTemplatesUndoesNothing) {
    Type(1, 2, "a");
    state_.hasRight = false;
    editing_.Undo();
    EXPECT_EQ(Text(1, 2), "a");
}

TEST_F(UndoTest, TheRecorderIsBackAfterwards) {
    Type(1, 2, "a");
    editing_.Undo();
    EXPECT_EQ(Grid().Recorder(), &state_.open);
    EXPECT_TRUE(Grid().ReDraw());
}

TEST_F(UndoTest, OnlySoManyStepsAreKept) {
    for (std::size_t i = 0; i <= GridJournal::kMostSteps; ++i)
        editing_.CommitText({1, 2}, "text " + std::to_string(i));
    std::size_t steps = 0;
    for (; state_.open.Journal().CanUndo(); ++steps)
        state_.open.Journal().Undo();
    EXPECT_EQ(steps, GridJournal::kMostSteps);
    EXPECT_EQ(Text(1, 2), "text 0");
}

TEST_F(UndoTest, DroppingForgetsBothWays) {
    Type(1, 2, "a");
    Type(1, 2, "b");
    editing_.Undo();
    state_.open.Journal().Drop();
    EXPECT_FALSE(state_.open.Journal().CanUndo());
    EXPECT_FALSE(state_.open.Journal().CanRedo());
}

TEST_F(UndoTest, UndoingOneCellOfManyRowsAsksAboutThatRowOnly) {
    for (int row = 1; row <= 50; ++row)
        Grid().SetText(row, 5, "9" + std::to_string(row));
    state_.open.TakeRows(50);
    state_.open.Journal().Drop();
    Type(7, 5, "1001");
    set_.Forget();
    editing_.Undo();
    EXPECT_EQ(Text(7, 5), "97");
    EXPECT_EQ(Color(7, 5), color::kRed);
    EXPECT_THAT(set_.Statements(),
                testing::ElementsAre("select * from t_Account where FNumber = '97' and FDetail = 1"));
}

}  // namespace vicenter::center
