#pragma once

// Every faulty cell of the grid, whatever left it so: typing, a paste, an import, a generation, a load, or a
// save that was refused for what is missing. Kept up to date cell by cell as the grid changes; an entry lives
// until its cell is mended. Part of frmVICenter.

#include <cstdint>
#include <map>
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
    bool hint = false;    // may be as meant, and keeps nothing from being saved
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
    // What the accounts of the lines want may be known by now.
    void AccountLearned();

    // A save has been refused, or the lines are what is stored: what is missing in them counts as faulty
    // until it is there.
    void AddMissing();

    int Count() const { return count_; }
    int HintCount() const;
    // Faults and hints, by rows, then columns.
    std::vector<CellAddress> Cells() const;
    // Quick, for painting.
    bool IsHint(const CellAddress& cell) const;
    // What should be looked at there; empty for every cell without a hint.
    std::string HintText(const CellAddress& cell) const;
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
        Columns hints = 0;
        Columns Faulty() const { return red | missing; }
        Columns All() const { return Faulty() | hints; }
    };

    Columns RedOf(int row) const;
    Columns MissingOf(int row) const;
    Columns HintsOf(int row) const;
    const RowFaults& At(int row) const;
    void Put(int row, const RowFaults& faults);
    void Leave(const RowFaults& faults);  // they no longer count
    // By the first row of each number, unless its cell is faulty. Of the lines as they are.
    const std::map<int, std::string>& NumberHints() const;

    const WindowState& state_;
    std::vector<RowFaults> rows_;  // as many as have ever had a fault
    int count_ = 0;
    int hintCount_ = 0;
    mutable std::optional<std::map<int, std::string>> numberHints_;
    mutable int hintedRows_ = 0;  // the lines of which numberHints_ are
};

}  // namespace vicenter::center
