#pragma once

// The numbers of the status line, computed from the grid.

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "automation/decimal.h"
#include "center/frame/vicenter_view.h"
#include "center/grid/cell_selection.h"
#include "center/grid/entry_grid.h"
#include "center/grid/number_bands.h"

namespace vicenter::center {

// The sums of every template number in use: one pass over the rows. Moving about in an unchanged grid asks
// the same object again.
class NumberSums {
  public:
    NumberSums(const EntryGrid& grid, int rowCount);

    int RowCount() const { return rowCount_; }
    // Lines, template numbers, sums of the active row's number and the numbers whose sides differ.
    StatusState Status(const EntryGrid& grid, int activeRow) const;
    // The sums of the number whose last row this is; nothing for every other row.
    std::optional<NumberTotals> EndingAt(const EntryGrid& grid, int row) const;

  private:
    struct Sides {
        automation::Decimal debit;
        automation::Decimal credit;
        int lastRow = 0;
        NumberTotals Totals() const;
    };

    int rowCount_;
    std::unordered_map<std::string, Sides> sums_;
    std::vector<std::string> unbalanced_;  // in the order of their first lines
};

inline StatusState SumUp(const EntryGrid& grid, int rowCount, int activeRow) {
    return NumberSums(grid, rowCount).Status(grid, activeRow);
}

// The sum of the selected numbers as a display text, which reads as they do; empty when there are fewer than
// two. Amounts of debit and credit lines are never added up: where both are selected, each has its sum, and
// so have numbers that are no amounts beside them.
std::string SumOfSelection(const EntryGrid& grid, const CellSelection& selection);

}  // namespace vicenter::center
