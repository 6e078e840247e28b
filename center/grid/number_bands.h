#pragma once

// Which rows of the grid belong together: rows below each other that bear the same template number are one
// band, and every other band is shaded. Found out as far down as it is asked for, and kept until numbers or
// rows change. Observes the grid, which outlives it. User-interface thread only.

#include <string>
#include <string_view>
#include <vector>

#include "center/grid/entry_grid.h"
#include "center/grid/line_texts.h"

namespace vicenter::center {

// The sums of one template number as display texts.
struct NumberTotals {
    std::string debit;
    std::string credit;
    std::string difference;  // empty when balanced
    friend bool operator==(const NumberTotals&, const NumberTotals&) = default;
};

class NumberBands final : private GridObserver {
  public:
    explicit NumberBands(EntryGrid& grid);
    NumberBands(const NumberBands&) = delete;
    NumberBands& operator=(const NumberBands&) = delete;
    ~NumberBands() override;

    // A row without a number is shaded never.
    bool IsShaded(int row) const;
    // The row above is of another band; false for the first row.
    bool IsFirst(int row) const;
    // The row has a number, and the row above has the same.
    bool Repeats(int row) const;

  private:
    void TextsChanged(const CellRange& range) override;
    void RowsInserted(int firstRow, int count) override;
    void RowsRemoved(int firstRow, int count) override;
    void WasReset() override;
    void ForgetFrom(int row);

    EntryGrid& grid_;
    // Of row 1 on: how many bands with a number have begun, odd or even.
    mutable std::vector<bool> odd_;
};

}  // namespace vicenter::center
