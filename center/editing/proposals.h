#pragma once

// What the lines of a template imply of the next one: its number again, and where that number's sides differ,
// the side and the amount that are missing.
//
// A proposal stands beside the grid, never in it: whoever reads the grid, to save, copy, check or keep a
// draft, meets none. There is one for the blank row that follows the lines, and as long as the cursor stays
// in that row, for the cells of it that are still empty. Part of frmVICenter.

#include <optional>
#include <string>

#include "center/frame/window_state.h"

namespace vicenter::center {

struct ProposedLine {
    std::string number;
    std::string direction;
    std::string amount;

    // The empty text for a column that nothing is proposed for.
    const std::string& Text(int gridColumn) const;
    bool IsEmpty() const { return number.empty() && direction.empty() && amount.empty(); }
};

// For the empty cells of a row by what the row holds already and the lines before it.
ProposedLine ProposeLine(const EntryGrid& grid, int rowCount, int row);

class Proposals {
  public:
    explicit Proposals(const WindowState& state) : state_(state) {}

    void SetOn(bool on) { on_ = on; }
    bool IsOn() const { return on_; }
    // The row that has proposals, 0 for none.
    int Row() const;
    // What is proposed for a cell; empty for every cell that holds a text.
    std::string Text(const CellAddress& cell) const;
    // The user wants none in this row. False when there was none.
    bool Refuse();

    // --- what the grid reports
    void ActiveCellChanged();
    void TextsChanged() { line_.reset(); }
    void RowsMoved(int firstRow);  // came or went from that one on
    void WasReset() { RowsMoved(0); }

  private:
    const ProposedLine& Line(int row) const;

    const WindowState& state_;
    bool on_ = true;
    int begun_ = 0;    // was blank when the cursor came, and the cursor is still there
    int refused_ = 0;  // the row in which the user wants none
    mutable std::optional<ProposedLine> line_;
    mutable int lineRow_ = 0;
};

}  // namespace vicenter::center
