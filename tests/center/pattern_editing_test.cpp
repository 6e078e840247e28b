#include "center/editing/pattern_editing.h"

#include "tests/center/grid_fixture.h"

namespace vicenter::center {
namespace {

class PatternEditingTest : public GridTest {
  protected:
    // A line for each text "number explanation".
    void Fill(const Texts& lines) {
        int row = 0;
        for (const std::string& line : lines) {
            const std::size_t blank = line.find(' ');
            Grid().SetText(++row, column::kNo, line.substr(0, blank));
            Grid().SetText(row, column::kExplanation, line.substr(blank + 1));
        }
        state_.open.Settle();
        state_.open.Journal().Drop();
    }
    Texts Lines() {
        Texts lines;
        for (int row = 1; row <= state_.open.RowCount(); ++row)
            lines.push_back(Text(row, column::kNo) + " " + Text(row, column::kExplanation));
        return lines;
    }
    void Run(PatternCommand command, int row) {
        Grid().SetActiveCell({row, column::kExplanation});
        patterns_.Run(command);
    }
    // One step: undone it is as it was, done again as it became.
    void ExpectOneStep(const Texts& before) {
        const Texts after = Lines();
        EXPECT_TRUE(state_.open.IsDirty());
        state_.open.Undo();
        EXPECT_EQ(Lines(), before);
        EXPECT_FALSE(state_.open.Journal().CanUndo());
        EXPECT_FALSE(state_.open.IsDirty());
        state_.open.Redo();
        EXPECT_EQ(Lines(), after);
    }

    int edited_ = 0;
    PatternEditing patterns_{state_, [this] { ++edited_; }};
};

const Texts kScattered{"2 a", "7 b", "2 c", "05 d", "7 e"};

TEST_F(PatternEditingTest, IsCopiedBehindAllOthersUnderTheNextNumber) {
    Fill(kScattered);
    Grid().SetForeColor({3, 2, 3, 2}, color::kRed);
    Grid().SetText(1, column::kAccountId, "1001");
    state_.open.Journal().Drop();
    state_.open.Settle();
    Run(PatternCommand::Copy, 3);
    EXPECT_EQ(Lines(), (Texts{"2 a", "7 b", "2 c", "05 d", "7 e", "8 a", "8 c"}));
    EXPECT_EQ(Text(6, column::kAccountId), "1001");
    EXPECT_EQ(Color(7, 2), color::kRed);
    EXPECT_EQ(Grid().ActiveCell(), (CellAddress{6, column::kExplanation}));
    EXPECT_EQ(edited_, 1);
    ExpectOneStep(kScattered);
}

TEST_F(PatternEditingTest, MovedUpItChangesPlacesAndNumbersWithTheOneBefore) {
    Fill({"1 a", "1 b", "4 c", "9 d"});
    Run(PatternCommand::MoveUp, 3);
    EXPECT_EQ(Lines(), (Texts{"1 c", "4 a", "4 b", "9 d"}));
    EXPECT_EQ(Grid().ActiveCell().row, 1);
    ExpectOneStep({"1 a", "1 b", "4 c", "9 d"});
}

TEST_F(PatternEditingTest, MovedDownAndUpAgainItIsWhereItWas) {
    Fill(kScattered);
    Run(PatternCommand::MoveDown, 3);
    EXPECT_EQ(Lines(), (Texts{"2 d", "7 b", "5 a", "5 c", "7 e"}));
    EXPECT_EQ(Grid().ActiveCell().row, 4);
    patterns_.Run(PatternCommand::MoveUp);
    EXPECT_EQ(Lines(), (Texts{"2 a", "7 b", "2 c", "5 d", "7 e"}));
}

TEST_F(PatternEditingTest, TheFirstIsNotMovedUpNorTheLastDown) {
    Fill(kScattered);
    Run(PatternCommand::MoveUp, 1);
    Run(PatternCommand::MoveDown, 5);
    EXPECT_EQ(Lines(), kScattered);
    EXPECT_FALSE(state_.open.Journal().CanUndo());
    EXPECT_EQ(edited_, 0);
}

TEST_F(PatternEditingTest, AllAreNumberedWithoutGapsInTheirOrder) {
    Fill(kScattered);
    Run(PatternCommand::Renumber, 4);
    EXPECT_EQ(Lines(), (Texts{"1 a", "3 b", "1 c", "2 d", "3 e"}));
    EXPECT_EQ(Grid().ActiveCell().row, 4);
    ExpectOneStep(kScattered);
    state_.open.Journal().Drop();
    Run(PatternCommand::Renumber, 4);
    EXPECT_FALSE(state_.open.Journal().CanUndo()) << "nothing to do";
}

TEST_F(PatternEditingTest, LinesAreSortedByNumberAndStayInTheirOrderWithinIt) {
    Fill(kScattered);
    Run(PatternCommand::Sort, 3);
    EXPECT_EQ(Lines(), (Texts{"2 a", "2 c", "05 d", "7 b", "7 e"}));
    EXPECT_EQ(Grid().ActiveCell().row, 2);
    ExpectOneStep(kScattered);
}

TEST_F(PatternEditingTest, LinesWithoutANumberStayAndStandLastOnceSorted) {
    Fill({"3 a", "x b", "1 c"});
    Grid().PutReading(2, column::kNo, {TextVerdict::TooLarge, "99999999999"});
    state_.open.Journal().Drop();
    Run(PatternCommand::Renumber, 1);
    EXPECT_EQ(Lines(), (Texts{"2 a", "99999999999 b", "1 c"}));
    Run(PatternCommand::Sort, 1);
    EXPECT_EQ(Lines(), (Texts{"1 c", "2 a", "99999999999 b"}));
    EXPECT_EQ(Grid().Refusal(3, column::kNo), TextVerdict::TooLarge);
}

TEST_F(PatternEditingTest, WithoutALineUnderTheCursorTheUserIsTold) {
    Fill(kScattered);
    Run(PatternCommand::Copy, 6);
    Run(PatternCommand::MoveUp, 6);
    EXPECT_EQ(Messages(),
              (Texts{"请将光标移到要复制的凭证模板的分录上！", "请将光标移到要移动的凭证模板的分录上！"}));
    EXPECT_EQ(Lines(), kScattered);
}

TEST_F(PatternEditingTest, BehindTheLargestNumberThereIsNone) {
    Fill({"2147483647 a"});
    Run(PatternCommand::Copy, 1);
    EXPECT_EQ(Messages(), Texts{"模板编号已达到上限，不能复制！"});
    EXPECT_EQ(state_.open.RowCount(), 1);
}

TEST_F(PatternEditingTest, WhoMayOnlyLookChangesNothing) {
    Fill(kScattered);
    state_.hasRight = false;
    for (const PatternCommand command :
         {PatternCommand::Copy, PatternCommand::MoveUp, PatternCommand::MoveDown, PatternCommand::Renumber,
          PatternCommand::Sort})
        Run(command, 3);
    EXPECT_EQ(Lines(), kScattered);
    EXPECT_TRUE(Messages().empty());
}

}  // namespace
}  // namespace vicenter::center
