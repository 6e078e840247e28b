#include "center/frame/status_line.h"

#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void Line(EntryGrid& grid, int row, const char* number, const char* direction, const char* amount) {
    grid.SetText(row, column::kNo, number);
    grid.SetText(row, column::kDirection, direction);
    grid.SetText(row, column::kAmount, amount);
}

}  // namespace

TEST(StatusLine, CountsLinesAndDifferentNumbers) {
    EntryGrid grid;
    Line(grid, 1, "3", "借", "");
    Line(grid, 2, "3", "贷", "");
    Line(grid, 3, "5", "借", "");
    Line(grid, 4, "", "借", "9");
    const StatusState status = SumUp(grid, 4, 1);
    EXPECT_EQ(status.lines, 4);
    EXPECT_EQ(status.numbers, 2);
    EXPECT_THAT(status.unbalanced, IsEmpty());
}

TEST(StatusLine, SumsTheActiveRowsNumberExactly) {
    EntryGrid grid;
    Line(grid, 1, "3", "借", "0.1");
    Line(grid, 2, "3", "借", "0.2");
    Line(grid, 3, "3", "贷", "0.3");
    Line(grid, 4, "5", "贷", "1234567.5");
    StatusState status = SumUp(grid, 4, 2);
    EXPECT_EQ(status.number, "3");
    EXPECT_EQ(status.debit, "0.30");
    EXPECT_EQ(status.credit, "0.30");
    EXPECT_EQ(status.difference, "");
    EXPECT_THAT(status.unbalanced, ElementsAre("5"));
    status = SumUp(grid, 4, 4);
    EXPECT_EQ(status.number, "5");
    EXPECT_EQ(status.debit, "0.00");
    EXPECT_EQ(status.credit, "1,234,567.50");
    EXPECT_EQ(status.difference, "-1,234,567.50");
}

TEST(StatusLine, SaysWhetherTheColumnOfItsSumsIsHidden) {
    EntryGrid grid;
    Line(grid, 1, "3", "借", "5");
    grid.SetColumnHidden(column::kAmount, false);
    EXPECT_FALSE(SumUp(grid, 1, 1).amountHidden);
    grid.SetColumnHidden(column::kAmount, true);
    EXPECT_TRUE(SumUp(grid, 1, 1).amountHidden);
    // Without sums there is nothing to say of them.
    EXPECT_FALSE(SumUp(grid, 1, 2).amountHidden);
}

TEST(StatusLine, ANumbersSumsStandAtItsLastRowAlone) {
    EntryGrid grid;
    Line(grid, 1, "1", "借", "10");
    Line(grid, 2, "2", "贷", "4");
    Line(grid, 3, "01", "贷", "10");
    Line(grid, 4, "", "贷", "7");
    const NumberSums sums(grid, 4);
    EXPECT_FALSE(sums.EndingAt(grid, 1));
    EXPECT_EQ(sums.EndingAt(grid, 2), (NumberTotals{"0.00", "4.00", "-4.00"}));
    EXPECT_EQ(sums.EndingAt(grid, 3), (NumberTotals{"10.00", "10.00", ""}));
    EXPECT_FALSE(sums.EndingAt(grid, 4));
    EXPECT_FALSE(sums.EndingAt(grid, 0));
    EXPECT_FALSE(sums.EndingAt(grid, 5));
}

TEST(StatusLine, NumbersWithLeadingZerosAreTheNumbersWithoutThem) {
    EntryGrid grid;
    Line(grid, 1, "01", "借", "5");
    Line(grid, 2, "1", "贷", "5");
    const StatusState status = SumUp(grid, 2, 1);
    EXPECT_EQ(status.numbers, 1);
    EXPECT_EQ(status.number, "1");
    EXPECT_EQ(status.credit, "5.00");
    EXPECT_THAT(status.unbalanced, IsEmpty());
}

TEST(StatusLine, HasNoSumsOutsideTheRowsInUse) {
    EntryGrid grid;
    Line(grid, 1, "3", "借", "1");
    for (const int row : {0, 2, 50}) {
        const StatusState status = SumUp(grid, 1, row);
        EXPECT_EQ(status.number, "");
        EXPECT_EQ(status.debit, "");
    }
}

TEST(StatusLine, LeavesOutWhatIsNoNumberOrHasNoSide) {
    EntryGrid grid;
    Line(grid, 1, "3", "借", "abc");
    Line(grid, 2, "3", "  ", "5");
    Line(grid, 3, "3", "贷", "1e5");
    const StatusState status = SumUp(grid, 3, 1);
    EXPECT_EQ(status.debit, "0.00");
    EXPECT_EQ(status.credit, "0.00");
    EXPECT_THAT(status.unbalanced, IsEmpty());
}

TEST(StatusLine, RowsBelowThoseInUseDoNotCount) {
    EntryGrid grid;
    Line(grid, 1, "3", "借", "1");
    Line(grid, 2, "4", "借", "1");
    EXPECT_EQ(SumUp(grid, 1, 1).numbers, 1);
    EXPECT_THAT(SumUp(grid, 1, 1).unbalanced, ElementsAre("3"));
}

TEST(SelectionSum, AddsTwoOrMoreNumbersOfNumberColumns) {
    EntryGrid grid;
    grid.SetText(1, column::kAmount, "1000.25");
    grid.SetText(2, column::kAmount, "0.5");
    grid.SetText(1, column::kNo, "7");
    grid.SetText(1, column::kAccountNumber, "1001");
    EXPECT_EQ(SumOfSelection(grid, {1, 1, 2, 21}), "") << "hidden numbers are not selected";
    grid.SetColumnHidden(column::kAmount, false);
    EXPECT_EQ(SumOfSelection(grid, {1, 1, 2, 21}), "1,000.75");
    EXPECT_EQ(SumOfSelection(grid, {1, 20, 1, 20}), "");
    EXPECT_EQ(SumOfSelection(grid, {1, 1, 2, 5}), "");
    EXPECT_EQ(SumOfSelection(grid, {-5, -5, 1000, 1000}), "1,000.75");
    EXPECT_EQ(SumOfSelection(grid, {}), "");
}

TEST(SelectionSum, CountsWhatIsSelectedAndNothingBetween) {
    EntryGrid grid;
    grid.SetColumnHidden(column::kAmount, false);
    for (const auto& [row, text] : {std::pair{1, "30000"}, {2, "1900"}, {3, "2000"}, {4, "33900"}})
        grid.SetText(row, column::kAmount, text);
    EXPECT_EQ(SumOfSelection(grid, CellSelection({{1, 20, 1, 20}, {4, 20, 4, 20}})), "63,900.00");
    EXPECT_EQ(SumOfSelection(grid, CellSelection({{1, 20, 2, 20}, {2, 20, 3, 20}})), "33,900.00")
        << "once each";
}

TEST(SelectionSum, DebitAndCreditAreSummedApart) {
    EntryGrid grid;
    grid.SetColumnHidden(column::kAmount, false);
    Line(grid, 1, "1", "借", "30000");
    Line(grid, 2, "1", "借", "3900.5");
    Line(grid, 3, "1", "贷", "33900");
    EXPECT_EQ(SumOfSelection(grid, {1, 20, 2, 20}), "33,900.50");
    EXPECT_EQ(SumOfSelection(grid, {1, 20, 3, 20}), "借 33,900.50　贷 33,900.00");
    grid.SetText(1, column::kFileCount, "2");
    EXPECT_EQ(SumOfSelection(grid, {1, 1, 3, 20}), "借 33,900.50　贷 33,900.00　其他 2");
}

TEST(SelectionSum, ReadsAsTheNumbersDoThatWentIntoIt) {
    EntryGrid grid;
    for (const int c : {column::kQuantity, column::kPrice, column::kAmount, column::kFileCount})
        grid.SetColumnHidden(c, false);
    for (int row = 1; row <= 2; ++row) {
        grid.SetText(row, column::kFileCount, "3");
        grid.SetText(row, column::kQuantity, "1.5");
        grid.SetText(row, column::kPrice, "1234.5");
    }
    const auto sumOf = [&](int c) { return SumOfSelection(grid, {1, c, 2, c}); };
    EXPECT_EQ(sumOf(column::kFileCount), "6");
    EXPECT_EQ(sumOf(column::kQuantity), "3");
    EXPECT_EQ(sumOf(column::kPrice), "2,469.00");
    EXPECT_EQ(SumOfSelection(grid, {1, column::kQuantity, 2, column::kPrice}), "2,472.00");
}

}  // namespace vicenter::center
