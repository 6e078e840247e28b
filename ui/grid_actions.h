#pragma once

// What the grid's view asks of the rules behind it. The window forwards these to its presenter; tests put a
// recording stand-in here. Rows and columns count from 1. User-interface thread only.

#include <string>

#include "center/entry_grid.h"

namespace vicenter::ui {

class GridActions {
  public:
    virtual ~GridActions() = default;

    // The cursor goes to a cell; where it ended up is the grid's active cell afterwards.
    virtual void MoveActiveCell(const center::CellAddress& to) = 0;
    virtual void SelectionChanged(const center::CellRange& range) = 0;
    virtual bool KeyPress(char32_t character) = 0;                       // false: the character is refused
    virtual bool KeyDown(int keyCode, const std::string& cellText) = 0;  // true: the key is used up
    virtual void OpenLookUp() = 0;
    virtual int RowsInUse() = 0;

    virtual void ClearCells(const center::CellRange& range) = 0;
    virtual std::string CopyBlock(const center::CellRange& range) = 0;
    virtual void PasteBlock(const center::CellAddress& at, const std::string& text) = 0;
    virtual void FillDown(const center::CellRange& range) = 0;
    // One text into every cell of the range.
    virtual void FillSelection(const center::CellRange& range, const std::string& text) = 0;
    virtual void DuplicateRow() = 0;
    virtual void InsertRows(int firstRow, int count) = 0;
    virtual void DeleteRows(int firstRow, int count) = 0;
    virtual void Undo() = 0;
    virtual void Redo() = 0;

    // The list of choices below the cell that is being typed in.
    virtual bool IsNameListOpen() = 0;
    virtual void NameListKey(const std::string& typedText) = 0;
    virtual void NameListMove(int steps) = 0;
    virtual bool NameListTake() = 0;
    virtual void NameListClose() = 0;
};

}  // namespace vicenter::ui
