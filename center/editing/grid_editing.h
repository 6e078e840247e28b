#pragma once

// The user's work in the grid: moving, typing, inserting and deleting rows, undo. Part of frmVICenter.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "center/editing/cell_rules.h"
#include "center/frame/window_state.h"
#include "center/grid/cell_selection.h"

namespace vicenter::center {

class GridEditing {
  public:
    explicit GridEditing(WindowState& state) : state_(state) {}

    // Leaves the active cell for another one. On the way of building a selection every cell may be passed.
    void MoveActiveCell(const CellAddress& to, CursorMove how = CursorMove::Going);
    // Resolves the active cell if something has been typed there and not been resolved yet.
    void FinishTyping();
    // A text that is refused stays in the cell beside the verdict; a locked cell keeps its own.
    TextVerdict CommitText(const CellAddress& cell, const std::string& text);
    void ClearCells(const CellSelection& selection);
    // Typing two points repeats the explanation of the line above; true when it did.
    bool RepeatExplanation(const std::string& cellText);

    void InsertRow();  // at the active row
    void DeleteRow();  // the active row
    void InsertRows(int firstRow, int count);
    void DeleteRows(int firstRow, int count);
    // Every run of rows for itself, all in one step: as many blank rows above each, or each run gone.
    void InsertRows(const std::vector<RowRun>& runs);
    void DeleteRows(std::vector<RowRun> runs);

    bool CanEdit() const { return state_.hasRight; }
    void Undo();
    void Redo();
    // What happened before is no longer to be joined or resolved: another template is in the grid.
    void Forget() { typed_.reset(); }

  private:
    void Leave(const CellAddress& cell);
    void KeepSpareRow();
    void Return(const JournalMark& mark);

    WindowState& state_;
    std::optional<CellAddress> typed_;  // committed, not yet left
};

}  // namespace vicenter::center
