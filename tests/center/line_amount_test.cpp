#include "center/editing/line_amount.h"

#include "center/faults/fault_list.h"
#include "tests/center/grid_fixture.h"

namespace vicenter::center {
namespace {

class LineAmountTest : public GridTest {
  protected:
    void Type(int gridColumn, const std::string& text) {
        ASSERT_EQ(editing_.CommitText({1, gridColumn}, text), TextVerdict::Taken);
    }
    void Put(int gridColumn, const std::string& text) { Grid().SetText(1, gridColumn, text); }
    std::string Amount() { return Text(1, column::kAmount); }
    std::string Hint() { return AmountHint(Grid(), 1); }

    GridEditing editing_{state_};
};

TEST_F(LineAmountTest, QuantityTimesPriceFillsTheAmountInTheSameStep) {
    Type(column::kQuantity, "120");
    EXPECT_EQ(Amount(), "");
    Type(column::kPrice, "79.995");
    EXPECT_EQ(Amount(), "9599.4");
    state_.open.Undo();
    EXPECT_EQ(Amount(), "");
    EXPECT_EQ(Text(1, column::kPrice), "");
    EXPECT_EQ(Text(1, column::kQuantity), "120");
    state_.open.Redo();
    EXPECT_EQ(Amount(), "9599.4");
}

TEST_F(LineAmountTest, TheOrderOfTypingDoesNotMatter) {
    Type(column::kPrice, "3.335");
    Type(column::kQuantity, "1");
    EXPECT_EQ(Amount(), "3.34") << "to the cent, half up";
}

TEST_F(LineAmountTest, RateTimesAmountInCurrencyFillsIt) {
    Type(column::kRate, "7.1865");
    Type(column::kAmountFor, "500");
    EXPECT_EQ(Amount(), "3593.25");
}

TEST_F(LineAmountTest, TheCurrencyCountsBeforeTheQuantity) {
    Type(column::kRate, "7");
    Type(column::kQuantity, "10");
    Type(column::kPrice, "2");
    EXPECT_EQ(Amount(), "") << "a price in that currency";
    Type(column::kAmountFor, "20");
    EXPECT_EQ(Amount(), "140");
    EXPECT_EQ(Hint(), "") << "the quantity makes the amount in the currency";
}

TEST_F(LineAmountTest, AnAmountThatIsThereStays) {
    Type(column::kAmount, "1");
    Type(column::kQuantity, "2");
    Type(column::kPrice, "3");
    EXPECT_EQ(Amount(), "1");
}

TEST_F(LineAmountTest, WhatIsRefusedTooLargeOrNothingMakesNoAmount) {
    Type(column::kQuantity, "999999999");
    Type(column::kPrice, "2");
    EXPECT_EQ(Amount(), "");
    Type(column::kPrice, "0");
    EXPECT_EQ(Amount(), "");
    editing_.CommitText({1, column::kPrice}, "0.12345678901");
    EXPECT_EQ(Amount(), "");
}

TEST_F(LineAmountTest, OnlyTypingFills) {
    Put(column::kQuantity, "2");
    Put(column::kPrice, "3");
    EXPECT_EQ(Amount(), "");
}

TEST_F(LineAmountTest, AMismatchIsSaid) {
    Put(column::kQuantity, "120");
    Put(column::kPrice, "80");
    EXPECT_EQ(Hint(), "") << "no amount, no mismatch";
    Put(column::kAmount, "9600");
    EXPECT_EQ(Hint(), "");
    Put(column::kAmount, "9600.01");
    EXPECT_EQ(Hint(), "数量×单价为 9,600.00，与金额不符");
    Put(column::kPrice, "80.00004");
    Put(column::kAmount, "9600.0048");
    EXPECT_EQ(Hint(), "");
    Put(column::kAmount, "9600");
    EXPECT_EQ(Hint(), "") << "rounded to the cent";
    Put(column::kRate, "7");
    Put(column::kAmountFor, "1");
    EXPECT_EQ(Hint(), "汇率×原币金额为 7.00，与金额不符");
}

TEST_F(LineAmountTest, NumbersBeyondAllMeasureMakeNoHint) {
    Put(column::kRate, "99999999999999999999");
    Put(column::kAmountFor, "99999999999999999999");
    Put(column::kAmount, "1");
    EXPECT_EQ(Hint(), "");
    Put(column::kRate, "7.5");
    Put(column::kAmountFor, "1.5");
    Put(column::kAmount, "999999999999999999999999.1234");
    EXPECT_EQ(Hint(), "汇率×原币金额为 11.25，与金额不符");
}

TEST_F(LineAmountTest, AMismatchIsAHintAmongTheFaultsAndNoFault) {
    FaultList faults(state_);
    Put(column::kQuantity, "2");
    Put(column::kPrice, "3");
    Put(column::kAmount, "7");
    faults.CellsChanged({1, 1, 1, kColumnCount});
    EXPECT_EQ(faults.Count(), 0);
    EXPECT_EQ(faults.HintCount(), 1);
    const std::vector<CellAddress> cells = faults.Cells();
    ASSERT_EQ(cells.size(), 1U);
    const Fault fault = faults.Describe(cells[0]);
    EXPECT_EQ(fault.cell, (CellAddress{1, column::kAmount}));
    EXPECT_EQ(fault.value, "7");
    EXPECT_EQ(fault.reason, "提示：数量×单价为 6.00，与金额不符");
    EXPECT_EQ(faults.HintText(cells[0]), "数量×单价为 6.00，与金额不符");
    EXPECT_EQ(faults.Next({1, 1}, false), std::nullopt) << "nothing that must be mended";
    Put(column::kAmount, "6");
    faults.CellsChanged({1, column::kAmount, 1, column::kAmount});
    EXPECT_EQ(faults.HintCount(), 0);
    EXPECT_TRUE(faults.Cells().empty());
    EXPECT_EQ(faults.HintText(cells[0]), "");
}

}  // namespace
}  // namespace vicenter::center
