#pragma once

// Proposals become texts: cell by cell, those that the cursor has come past by a key, and all of a line with
// its end. Nothing is taken that had not been on the screen when the key was pressed. Part of frmVICenter.

#include <initializer_list>
#include <optional>

#include "center/editing/grid_editing.h"
#include "center/editing/proposals.h"

namespace vicenter::center {

class RowTaking {
  public:
    // All of them outlive it.
    RowTaking(WindowState& state, GridEditing& editing, Proposals& proposals)
        : state_(state), editing_(editing), proposals_(proposals) {}

    // The cursor has come to a cell: what the account set knows is asked for, and shown.
    void Arrived();
    // False where nothing is proposed or the proposal is refused.
    bool Take(const CellAddress& cell);
    void TakePassed(const CellAddress& from);
    std::optional<CellAddress> StopInRow(int row);
    std::optional<CellAddress> TakeRow();

  private:
    bool TakeShown(int row, std::initializer_list<int> columns);
    bool HasAccount(int row) const;
    bool IsHidden(int gridColumn) const { return state_.grid->Layout(gridColumn).hidden; }
    void Ask(int row);
    void Resolve(int row);
    std::optional<CellAddress> BeginRow(int row);

    WindowState& state_;
    GridEditing& editing_;
    Proposals& proposals_;
};

}  // namespace vicenter::center
