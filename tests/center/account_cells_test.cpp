#include "center/lookups/account_cells.h"

#include "center/faults/fault_list.h"
#include "tests/center/grid_fixture.h"

namespace vicenter::center {
namespace {

class AccountCellsTest : public GridTest {
  protected:
    AccountCellsTest() {
        Account("1002", 1, 0, 0, 0);
        Account("1001", 0, 1, 0, 0);
        Account("1403", 0, 1, 7, 0);
        Account("1122", 0, 1, 0, 12);
        set_.Answer("FUnitGroupID,FDetailID from t_Account where FNumber = 'gone'",
                    Rows({"FIsBank", "FCurrencyID", "FUnitGroupID", "FDetailID"}));
    }
    void Account(const std::string& number, int bank, int currency, int units, int items) {
        set_.Answer("FUnitGroupID,FDetailID from t_Account where FNumber = '" + number + "'",
                    Rows({"FIsBank", "FCurrencyID", "FUnitGroupID", "FDetailID"},
                         {{Variant(bank), Variant(currency), Variant(units), Variant(items)}}));
    }
    // The columns that a cursor on its way through row 1 stops at.
    std::vector<int> Stops(const std::string& account) {
        Grid().SetText(1, column::kAccountNumber, account);
        std::vector<int> stops;
        for (int c = column::kAccountName; c <= kColumnCount; ++c) {
            if (!Column(c).locked && !accounts_.IsPassedBy(Grid(), {1, c})) stops.push_back(c);
        }
        return stops;
    }

    AccountCells& accounts_ = state_.accounts;
};

TEST_F(AccountCellsTest, OnlyWhatTheAccountHasAUseForIsStoppedAt) {
    using testing::ElementsAre;
    EXPECT_THAT(Stops("1001"), ElementsAre(7, 20, 21));
    EXPECT_THAT(Stops("1002"), ElementsAre(7, 9, 10, 13, 20, 21)) << "no currency, no rate";
    EXPECT_THAT(Stops("1403"), ElementsAre(7, 17, 18, 19, 20, 21));
    EXPECT_THAT(Stops("1122"), ElementsAre(7, 11, 20, 21));
}

TEST_F(AccountCellsTest, ACurrencyOtherThanTheLedgersOwnHasARate) {
    using testing::ElementsAre;
    Grid().SetText(1, column::kCurrencyName, "美元");
    Grid().SetText(1, column::kCurrencyId, "2");
    EXPECT_THAT(Stops("1002"), ElementsAre(7, 9, 10, 13, 14, 15, 20, 21));
    Grid().SetText(1, column::kCurrencyName, "人民币");
    Grid().SetText(1, column::kCurrencyId, "1");
    EXPECT_THAT(Stops("1002"), ElementsAre(7, 9, 10, 13, 20, 21));
}

TEST_F(AccountCellsTest, ACellThatHoldsATextIsNotPassedBy) {
    Grid().SetText(1, column::kQuantity, "5");
    Grid().SetText(1, column::kItems, "D1");
    EXPECT_THAT(Stops("1001"), testing::ElementsAre(7, 11, 18, 20, 21));
}

TEST_F(AccountCellsTest, WithoutAKnownAccountNothingIsPassedBy) {
    EXPECT_EQ(Stops("").size(), 13U);
    EXPECT_EQ(Stops("gone").size(), 13U);
    EXPECT_EQ(Stops("never answered").size(), 13U);
}

TEST_F(AccountCellsTest, AnAccountIsAskedAboutOnceUntilItIsForgotten) {
    int learned = 0;
    accounts_.OnLearned([&] { ++learned; });
    Stops("1001");
    Stops("1001");
    EXPECT_EQ(Questions("FUnitGroupID,FDetailID"), 1);
    EXPECT_EQ(learned, 1);
    accounts_.Forget();
    EXPECT_EQ(accounts_.IfKnown("1001"), nullptr);
    Stops("1001");
    EXPECT_EQ(Questions("FUnitGroupID,FDetailID"), 2);
}

TEST_F(AccountCellsTest, WhatTheAccountWantsAndNobodyHasEnteredIsAHint) {
    FaultList faults(state_);
    accounts_.OnLearned([&] { faults.AccountLearned(); });
    UseRows(2);
    Grid().SetText(1, column::kAccountNumber, "1122");
    Grid().SetText(2, column::kAccountNumber, "1002");
    faults.CellsChanged({1, 1, 2, kColumnCount});
    EXPECT_EQ(faults.HintCount(), 0) << "nobody has asked";
    accounts_.Ask("1122");
    EXPECT_EQ(faults.HintText({1, column::kItems}), "科目核算项目，尚未录入");
    accounts_.Ask("1002");
    EXPECT_EQ(faults.HintText({2, column::kSettleName}), "银行科目的结算方式尚未录入");
    EXPECT_EQ(faults.HintCount(), 2);
    EXPECT_EQ(faults.Count(), 0);
    Grid().SetText(1, column::kItems, "C1,D1");
    faults.CellsChanged({1, column::kItems, 1, column::kItems});
    EXPECT_EQ(faults.HintCount(), 1);
    faults.RowsRemoved(2, 1);
    EXPECT_EQ(faults.HintCount(), 0);
}

}  // namespace
}  // namespace vicenter::center
