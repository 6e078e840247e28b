#pragma once

// Every faulty cell of the grid, whatever left it so: typing, a paste, an import, a generation, a load, or a
// save that was refused for what is missing. Kept up to date cell by cell as the grid changes; an entry lives
// until its cell is mended. Part of frmVICenter.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "center/frame/window_state.h"

namespace vicenter::center {

struct Fault {
    CellAddress cell;
    std::string value;
    std::string reason;
    bool hidden = false;  // its column is not shown
};

class FaultList {
  public:
    explicit FaultList(const WindowState& state) : state_(state) {}

    // --- what the grid reports
    void RowsInserted(int firstRow, int count);
    void RowsRemoved(int firstRow, int count);
    // Texts or colours.
    void CellsChanged(const CellRange& range);
    void WasReset();

    // A save has been refused: what is missing in the lines counts as faulty until it is there.
    void AddMissing();

    int Count() const { return count_; }
    // By rows, then columns.
    std::vector<CellAddress> Cells() const;
    // Asks the account set what would be accepted.
    Fault Describe(const CellAddress& cell) const;
    // The next faulty cell behind this one, or before it, round the ends; nothing without one.
    std::optional<CellAddress> Next(const CellAddress& from, bool back) const;
    // What is wrong in the hidden columns of a row; empty when nothing is.
    std::string HiddenFaultText(int row) const;

  private:
    using Columns = std::uint32_t;  // a bit for each column, bit 0 unused
    struct RowFaults {
        Columns red = 0;
        Columns missing = 0;
        Columns All() const { return red | missing; }
    };

    Columns RedOf(int row) const;
    Columns MissingOf(int row) const;
    Columns At(int row) const;
    void Put(int row, const RowFaults& faults);

    const WindowState& state_;
    std::vector<RowFaults> rows_;  // as many as have ever had a fault
    int count_ = 0;
};

}  // namespace vicenter::center
