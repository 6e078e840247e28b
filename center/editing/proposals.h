#pragma once

// What the lines of a template and the user's other templates imply of the next line: its number and
// explanation again, the account that always followed, the side on which the account stands, and where the
// number's sides differ, the amount that is missing.
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
    std::string explanation;
    std::string direction;
    std::string account;
    std::string amount;

    // The empty text for a column that nothing is proposed for.
    const std::string& Text(int gridColumn) const;
    bool IsEmpty() const {
        return number.empty() && explanation.empty() && direction.empty() && account.empty() &&
               amount.empty();
    }
};

// For the empty cells of a row by what the row holds already, the lines before it and what is known of the
// accounts.
ProposedLine ProposeLine(const WindowState& state, int row);
// The number of that row still lacks a side, or its sides differ.
bool IsNumberOpen(const EntryGrid& grid, int rowCount, int row);

class Proposals {
  public:
    explicit Proposals(const WindowState& state) : state_(state) {}

    void SetOn(bool on) { on_ = on; }
    bool IsOn() const { return on_; }
    // The row that has proposals, 0 for none.
    int Row() const;
    // What is proposed for a cell; empty for every cell that holds a text.
    std::string Text(const CellAddress& cell) const;
    // The user wants none in the cursor's row. False when there was none.
    bool Refuse();
    // Refused is the row, not its number: one that is no longer the next is a row like all others. To be
    // called before a look; in the midst of an undoing, when rows and their count differ, nothing happens.
    void Settle();
    bool IsRefused(int row) const { return refused_ == row; }

    // The user has gone on to the account of that row by a key, past the cells before it.
    void Jumped(int row) { jumped_ = row; }
    bool HasJumped(int row) const { return jumped_ == row; }
    // What is proposed now is on the screen.
    void Show();
    // That it is proposed has been on the screen since the cursor came to its cell.
    bool WasShown(const CellAddress& cell) const;

    // --- what the grid reports
    void ActiveCellChanged();
    void TextsChanged() { line_.reset(); }
    void RowsInserted(int firstRow, int count);
    void RowsRemoved(int firstRow, int count);
    void WasReset();

  private:
    // The row that would have proposals were it not refused.
    int NextRow() const;
    void RowsMoved(int firstRow);
    const ProposedLine& Line(int row) const;

    const WindowState& state_;
    bool on_ = true;
    int begun_ = 0;    // was blank when the cursor came, and the cursor is there
    int left_ = 0;     // the last that was begun and left with something in it
    int refused_ = 0;  // the row in which the user wants none
    int jumped_ = 0;
    ProposedLine shown_;
    int shownRow_ = 0;
    mutable std::optional<ProposedLine> line_;
    mutable int lineRow_ = 0;
};

}  // namespace vicenter::center
