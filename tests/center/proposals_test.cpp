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
    ProposedLine Propose(int row) { return ProposeLine(state_, row); }
    void Account(int row, const std::string& number) { Grid().SetText(row, column::kAccountNumber, number); }
    // What the user's saved templates and the chart say of an account.
    void Learn(const std::string& account, const std::vector<store::AccountUse>& uses, int balance = 1) {
        std::vector<std::vector<Variant>> rows;
        for (const store::AccountUse& use : uses)
            rows.push_back({Variant(use.debit ? 1 : 0), use.nextNumber, Variant(use.nextDebit ? 1 : 0)});
        set_.Answer("where t.FUserID = 16394 and a.FAccountNumber = '" + account + "'",
                    Rows({"FDC", "FNextNumber", "FNextDC"}, rows));
        set_.Answer("select FDC from t_Account where FNumber = '" + account + "'",
                    Rows({"FDC"}, {{Variant(balance)}}));
        EXPECT_TRUE(state_.uses.Ask(account, "16394"));
    }
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

TEST_F(ProposalsTest, TheExplanationAboveIsRepeatedWithinTheNumber) {
    Grid().SetText(1, column::kExplanation, "付货款");
    EXPECT_EQ(Propose(2).Text(column::kExplanation), "付货款");
    Put(2, column::kNo, "4");
    EXPECT_EQ(Propose(2).explanation, "");
}

TEST_F(ProposalsTest, WhoLeavesExplanationsBlankFindsNoneProposed) {
    Grid().SetText(1, column::kExplanation, "付货款");
    Line(2, "3", kCredit, "1200.5");
    Line(3, "4", kDebit, "80");
    Grid().SetText(3, column::kExplanation, "付运费");
    EXPECT_EQ(Propose(4).number, "4");
    EXPECT_EQ(Propose(4).explanation, "");
    Put(2, column::kExplanation, "付货款");
    EXPECT_EQ(Propose(4).explanation, "付运费");
    Put(2, column::kExplanation, "由银行支付");
    EXPECT_EQ(Propose(4).explanation, "") << "each line has its own";
}

TEST_F(ProposalsTest, WhatTheRowHasTakenLeavesTheRestProposed) {
    Line(1, "3", kDebit, "");
    Learn("1405", {{true, "2202", false}});
    Grid().SetText(1, column::kAccountNumber, "1405");
    proposals_.TextsChanged();
    ASSERT_EQ(Propose(2).account, "2202");
    ASSERT_EQ(Propose(2).direction, "贷");
    Put(2, column::kNo, "3");
    Put(2, column::kDirection, kCredit);
    EXPECT_EQ(Propose(2).account, "2202") << "a pattern without amounts";
}

// --- by the account

TEST_F(ProposalsTest, AnAccountStandsWhereTheUserHasAlwaysEnteredIt) {
    Learn("1405", {{true, "2202", false}});
    Account(2, "1405");
    EXPECT_EQ(Propose(2).direction, "借");
    EXPECT_EQ(Propose(2).amount, "") << "the other side is missing";
    EXPECT_EQ(Questions("from t_Account where FNumber = '1405'"), 0) << "the templates have said it";
}

TEST_F(ProposalsTest, AnAccountOnBothSidesStandsWhereTheNumberLacksOne) {
    Learn("1001", {{true, "", false}, {false, "", false}});
    Account(2, "1001");
    EXPECT_EQ(Propose(2).direction, "贷");
    EXPECT_EQ(Propose(2).amount, "1200.5");
}

TEST_F(ProposalsTest, ANewAccountStandsWhereTheChartKeepsItsBalance) {
    Learn("1405", {}, 1);
    Learn("2202", {}, -1);
    Account(2, "1405");
    EXPECT_EQ(Propose(2).direction, "借");
    Account(2, "2202");
    EXPECT_EQ(Propose(2).direction, "贷");
}

TEST_F(ProposalsTest, WhatStandsInThisTemplateCountsAsWell) {
    Learn("1405", {{true, "", false}});
    Line(2, "3", kCredit, "200");
    Account(2, "1405");
    Account(3, "1405");
    EXPECT_EQ(Propose(3).direction, "贷") << "on both sides by now, and a credit is missing";
}

TEST_F(ProposalsTest, ABankAccountStandsWhereTheNumberLacksOne) {
    set_.Answer("FUnitGroupID,FDetailID from t_Account where FNumber = '1002'",
                Rows({"FIsBank", "FCurrencyID", "FUnitGroupID", "FDetailID"},
                     {{Variant(1), Variant(0), Variant(0), Variant(0)}}));
    state_.accounts.Ask("1002");
    Learn("1002", {{true, "", false}});
    Account(2, "1002");
    EXPECT_EQ(Propose(2).direction, "贷");
}

TEST_F(ProposalsTest, AnotherNumberHasASideByItsAccountAndNothingElse) {
    Learn("1405", {{true, "", false}});
    Line(2, "4", "", "");
    Account(2, "1405");
    EXPECT_EQ(Propose(2).direction, "借");
    EXPECT_EQ(Propose(2).number, "");
    EXPECT_EQ(Propose(2).amount, "");
}

TEST_F(ProposalsTest, TheAccountThatHasAlwaysFollowedComesWithItsSide) {
    Account(1, "5602");
    Learn("5602", {{true, "1001", false}, {false, "9", true}});
    EXPECT_EQ(Propose(2).account, "1001");
    EXPECT_EQ(Propose(2).Text(column::kAccountNumber), "1001");
    EXPECT_EQ(Propose(2).direction, "贷");
    EXPECT_EQ(Propose(2).amount, "1200.5");
    Put(2, column::kDirection, kDebit);
    EXPECT_EQ(Propose(2).account, "") << "it has never stood on that side";
}

TEST_F(ProposalsTest, AFollowerOnTheSameSideHasNoAmount) {
    Account(1, "1405");
    Learn("1405", {{true, "2221", true}});
    EXPECT_EQ(Propose(2).account, "2221");
    EXPECT_EQ(Propose(2).direction, "借");
    EXPECT_EQ(Propose(2).amount, "");
}

TEST_F(ProposalsTest, AnAccountThatNotAlwaysFollowedIsNotProposed) {
    Account(1, "5602");
    Learn("5602", {{true, "1001", false}, {true, "1002", false}});
    EXPECT_EQ(Propose(2).account, "");
    EXPECT_EQ(Propose(2).direction, "贷");
    Account(1, "5603");
    Learn("5603", {{true, "1001", false}, {true, "", false}});
    EXPECT_EQ(Propose(2).account, "") << "once it was the last line";
    Account(1, "5604");
    EXPECT_EQ(Propose(2).account, "") << "nothing is known of it";
}

TEST_F(ProposalsTest, ANumberBeforeInThisTemplateCountsForWhatFollows) {
    Account(1, "5602");
    Line(2, "3", kCredit, "1200.5");
    Account(2, "1002");
    Line(3, "4", kDebit, "7");
    Account(3, "5602");
    Learn("5602", {});
    EXPECT_EQ(Propose(4).account, "1002");
    state_.uses.Forget();
    Learn("5602", {{true, "1001", false}});
    EXPECT_EQ(Propose(4).account, "");
}

TEST_F(ProposalsTest, NothingFollowsANumberThatIsDone) {
    Account(1, "5602");
    Line(2, "3", kCredit, "1200.5");
    Account(2, "1001");
    Learn("1001", {{false, "1002", true}});
    EXPECT_EQ(Propose(3).account, "");
}

TEST_F(ProposalsTest, ANumberWithoutAmountsIsOpenUntilItHasBothSides) {
    Line(1, "3", kDebit, "");
    EXPECT_TRUE(IsNumberOpen(Grid(), 1, 1));
    Line(2, "3", kCredit, "");
    EXPECT_FALSE(IsNumberOpen(Grid(), 2, 2));
    Line(2, "3", kCredit, "1");
    EXPECT_TRUE(IsNumberOpen(Grid(), 2, 1));
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

TEST_F(ProposalsTest, TheyStayInTheRowAndComeBackToItUntilAnotherIsBegun) {
    GoTo(2);
    Put(2, column::kNo, "3");
    GoTo(2, column::kDirection);
    EXPECT_EQ(proposals_.Row(), 2);
    EXPECT_EQ(proposals_.Text({2, column::kNo}), "");
    EXPECT_EQ(proposals_.Text({2, column::kAmount}), "1200.5");
    GoTo(1);
    EXPECT_EQ(proposals_.Row(), 3);
    GoTo(2);
    EXPECT_EQ(proposals_.Text({2, column::kAmount}), "1200.5") << "what was passed by";
    GoTo(3);
    Put(3, column::kNo, "3");
    GoTo(2);
    EXPECT_EQ(proposals_.Text({2, column::kAmount}), "") << "a line like all others by now";
}

TEST_F(ProposalsTest, ABlankRowThatIsAddedBelowDisturbsNothing) {
    GoTo(2);
    Put(2, column::kNo, "3");
    proposals_.RowsInserted(101, 1);
    EXPECT_EQ(proposals_.Row(), 2);
    proposals_.RowsInserted(1, 1);
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

// The row that was refused moves with the lines above it.
TEST_F(ProposalsTest, ARefusalStaysWithItsRow) {
    Line(2, "3", kCredit, "100");
    GoTo(3);
    EXPECT_TRUE(proposals_.Refuse());
    Grid().InsertRows(1, 1);
    proposals_.RowsInserted(1, 1);
    ASSERT_EQ(state_.open.RowCount(), 3);
    proposals_.Settle();
    EXPECT_EQ(proposals_.Row(), 0);
    Grid().RemoveRows(1, 1);
    proposals_.RowsRemoved(1, 1);
    proposals_.Settle();
    EXPECT_EQ(proposals_.Row(), 0);
    Grid().RemoveRows(1, 1);
    proposals_.RowsRemoved(1, 1);
    ASSERT_EQ(state_.open.RowCount(), 1);
    proposals_.Settle();
    EXPECT_EQ(proposals_.Row(), 0);
}

// A line that is undone: the row below the lines is another one, and so is that below it when it comes back.
TEST_F(ProposalsTest, ARowThatIsNoLongerTheNextIsRefusedNoMore) {
    Line(2, "3", kCredit, "100");
    GoTo(3);
    EXPECT_TRUE(proposals_.Refuse());
    for (const int c : {column::kNo, column::kDirection, column::kAmount})
        Put(2, c, "");
    ASSERT_EQ(state_.open.RowCount(), 1);
    proposals_.Settle();
    EXPECT_EQ(proposals_.Row(), 2);
    Line(2, "3", kCredit, "100");
    proposals_.TextsChanged();
    EXPECT_EQ(proposals_.Row(), 3);
}

TEST_F(ProposalsTest, SwitchedOffThereAreNone) {
    proposals_.SetOn(false);
    EXPECT_EQ(proposals_.Row(), 0);
    EXPECT_FALSE(proposals_.Refuse());
}

}  // namespace
}  // namespace vicenter::center
