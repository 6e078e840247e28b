#pragma once

// What the grid's view asks of the rules behind it. The window forwards these to its presenter; tests put a
// recording stand-in here. Rows and columns count from 1. User-interface thread only.

#include <optional>
#include <string>

#include "center/frame/frm_vi_center.h"

namespace vicenter::ui {

class GridActions {
  public:
    virtual ~GridActions() = default;

    // The cursor goes to a cell; where it ended up is the grid's active cell afterwards.
    virtual void MoveActiveCell(const center::CellAddress& to, center::CursorMove how) = 0;
    virtual void SelectionChanged(const center::CellSelection& selection) = 0;
    virtual bool KeyPress(char32_t character) = 0;                       // false: the character is refused
    virtual bool KeyDown(int keyCode, const std::string& cellText) = 0;  // true: the key is used up
    virtual void OpenLookUp() = 0;
    virtual int RowsInUse() = 0;

    virtual void ClearCells(const center::CellSelection& selection) = 0;
    // Nothing when the selection cannot be copied.
    virtual std::optional<center::CopiedBlock> CopyBlock(const center::CellSelection& selection) = 0;
    virtual void PasteBlock(const center::CellSelection& selection, const center::CopiedBlock& block) = 0;
    virtual void FillDown(const center::CellSelection& selection) = 0;
    virtual void DuplicateRows(const center::CellSelection& selection) = 0;
    virtual void InsertRows(const center::CellSelection& selection) = 0;
    virtual void DeleteRows(const center::CellSelection& selection) = 0;
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
