#include "center/editing/proposals.h"

#include "tests/center/grid_fixture.h"

namespace vicenter::center {
namespace {

class ProposalsTest : public GridTest {
  protected:
    void SetUp() override { Line(1, "3", kDebit, "1200.50"); }
    void Line(int row, const std::string& number, std::string_view direction, const std::string& amount) {
        Grid().SetText(row, column::kNo, number);
        Grid().SetText(row, column::kDirection, direction);
        Grid().SetText(row, column::kAmount, amount);
    }
    ProposedLine Propose(int row) { return ProposeLine(Grid(), state_.open.RowCount(), row); }
    void GoTo(int row, int gridColumn = 1) {
        Grid().SetActiveCell({row, gridColumn});
        proposals_.ActiveCellChanged();
    }
    void Put(int row, int gridColumn, std::string_view text) {
        Grid().SetText(row, gridColumn, text);
        proposals_.TextsChanged();
    }

    Proposals proposals_{state_};
};

TEST_F(ProposalsTest, TheNumberIsRepeatedAndTheMissingSideAndAmountFollow) {
    const ProposedLine line = Propose(2);
    EXPECT_EQ(line.number, "3");
    EXPECT_EQ(line.direction, "贷");
    EXPECT_EQ(line.amount, "1200.5");
    EXPECT_EQ(line.Text(column::kExplanation), "");
    EXPECT_EQ(line.Text(column::kAccountNumber), "");
}

TEST_F(ProposalsTest, TheCreditSideThatIsTooLargeAsksForADebit) {
    Line(2, "03", kCredit, "2000");
    const ProposedLine line = Propose(3);
    EXPECT_EQ(line.number, "3");
    EXPECT_EQ(line.direction, "借");
    EXPECT_EQ(line.amount, "799.5");
}

TEST_F(ProposalsTest, ABalancedNumberAndOneWithoutAmountsRepeatTheNumberAlone) {
    Line(2, "3", kCredit, "1200.5");
    EXPECT_EQ(Propose(3).number, "3");
    EXPECT_EQ(Propose(3).direction, "");
    EXPECT_EQ(Propose(3).amount, "");
    Line(3, "4", kDebit, "");
    EXPECT_EQ(Propose(4).number, "4");
    EXPECT_EQ(Propose(4).direction, "");
}

TEST_F(ProposalsTest, OtherNumbersDoNotCount) {
    Line(2, "4", kDebit, "7");
    EXPECT_EQ(Propose(3).number, "4");
    EXPECT_EQ(Propose(3).amount, "7");
}

TEST_F(ProposalsTest, WhatTheRowHoldsAlreadyDecides) {
    Put(2, column::kDirection, kDebit);
    EXPECT_EQ(Propose(2).number, "3");
    EXPECT_EQ(Propose(2).direction, "");
    EXPECT_EQ(Propose(2).amount, "") << "the other side is missing";
    Put(2, column::kDirection, kCredit);
    EXPECT_EQ(Propose(2).amount, "1200.5");
    Put(2, column::kNo, "4");
    EXPECT_TRUE(Propose(2).IsEmpty()) << "another number has begun";
}

TEST_F(ProposalsTest, ANumberThatWasRefusedIsNotRepeated) {
    Grid().PutReading(1, column::kNo, {TextVerdict::TooLarge, "99999999999"});
    EXPECT_TRUE(Propose(2).IsEmpty());
}

TEST_F(ProposalsTest, AnAmountThatTheColumnDoesNotTakeIsNotProposed) {
    Line(1, "3", kDebit, "999999999");
    Line(2, "3", kDebit, "999999999");
    EXPECT_EQ(Propose(3).direction, "贷");
    EXPECT_EQ(Propose(3).amount, "");
}

// --- which row has them

TEST_F(ProposalsTest, TheRowBelowTheLinesHasThemAndNoOther) {
    EXPECT_EQ(proposals_.Row(), 2);
    EXPECT_EQ(proposals_.Text({2, column::kAmount}), "1200.5");
    EXPECT_EQ(proposals_.Text({3, column::kNo}), "");
    EXPECT_EQ(proposals_.Text({1, column::kNo}), "");
    state_.hasRight = false;
    EXPECT_EQ(proposals_.Row(), 0) << "for who may change the template";
}

TEST_F(ProposalsTest, ATemplateWithoutLinesHasNone) {
    Put(1, column::kNo, "");
    Put(1, column::kDirection, "");
    Put(1, column::kAmount, "");
    ASSERT_EQ(state_.open.RowCount(), 0);
    EXPECT_EQ(proposals_.Row(), 0);
    EXPECT_EQ(proposals_.Text({1, column::kNo}), "");
}

TEST_F(ProposalsTest, TheyStayInTheRowUntilTheCursorLeavesIt) {
    GoTo(2);
    Put(2, column::kNo, "3");
    GoTo(2, column::kDirection);
    EXPECT_EQ(proposals_.Row(), 2);
    EXPECT_EQ(proposals_.Text({2, column::kNo}), "");
    EXPECT_EQ(proposals_.Text({2, column::kAmount}), "1200.5");
    GoTo(1);
    EXPECT_EQ(proposals_.Row(), 3);
    GoTo(2);
    EXPECT_EQ(proposals_.Text({2, column::kAmount}), "") << "a line like all others by now";
}

TEST_F(ProposalsTest, ABlankRowThatIsAddedBelowDisturbsNothing) {
    GoTo(2);
    Put(2, column::kNo, "3");
    proposals_.RowsMoved(101);
    EXPECT_EQ(proposals_.Row(), 2);
    proposals_.RowsMoved(1);
    EXPECT_EQ(proposals_.Row(), 3);
}

TEST_F(ProposalsTest, OnceRefusedTheyAreGoneForThatRow) {
    GoTo(2);
    EXPECT_TRUE(proposals_.Refuse());
    EXPECT_FALSE(proposals_.Refuse());
    EXPECT_EQ(proposals_.Row(), 0);
    Put(2, column::kNo, "4");
    EXPECT_EQ(proposals_.Text({2, column::kAmount}), "");
    GoTo(3);
    EXPECT_EQ(proposals_.Text({3, column::kNo}), "4");
}

TEST_F(ProposalsTest, SwitchedOffThereAreNone) {
    proposals_.SetOn(false);
    EXPECT_EQ(proposals_.Row(), 0);
    EXPECT_FALSE(proposals_.Refuse());
}

}  // namespace
}  // namespace vicenter::center
