#pragma once

// A stand-in that the grid's tests share: rules that do what a plain grid would.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "center/editing/cell_rules.h"
#include "center/grid/entry_grid.h"
#include "ui/grid/grid_actions.h"

namespace vicenter::ui::testing {

// Rules of a grid without a template center: the cursor goes where it is sent, texts are taken.
class PlainActions : public GridActions {
  public:
    explicit PlainActions(std::shared_ptr<center::EntryGrid> entryGrid) : grid(std::move(entryGrid)) {}

    void MoveActiveCell(const center::CellAddress& to, center::CursorMove how) override {
        moves.push_back(to);
        selecting = how == center::CursorMove::Selecting;
        const center::CellAddress end = sendTo.row > 0 ? sendTo : to;
        grid->SetActiveCell(end);
    }
    void SelectionChanged(const center::CellSelection& selected) override { selection = selected; }
    bool KeyPress(char32_t character) override { return character != U'\'' && character != U'|'; }
    bool KeyDown(int keyCode, const std::string& cellText) override {
        keys.push_back(keyCode);
        keyTexts.push_back(cellText);
        if (keyCode == 110 && cellText == ".") {
            grid->SetText(grid->ActiveCell().row, grid->ActiveCell().column, "above");
            return true;
        }
        return keyCode == 45 || keyCode == 118;
    }
    void OpenLookUp() override { ++lookUps; }
    int RowsInUse() override { return rowsInUse; }
    void ClearCells(const center::CellSelection& selected) override {
        for (const center::ColumnRuns& column : center::SelectedCells(selected, *grid)) {
            for (const center::RowRun& run : column.rows) {
                for (int row = run.first; row <= run.last; ++row)
                    grid->SetText(row, column.column, "");
            }
        }
    }
    std::optional<center::CopiedBlock> CopyBlock(const center::CellSelection& selected) override {
        const center::CellRange block = selected.Bounds();
        return center::CopiedBlock(std::string(grid->Text(block.firstRow, block.firstColumn)),
                                   selected.wholeRows ? "rows" : "");
    }
    void PasteBlock(const center::CellSelection& selected, const center::CopiedBlock& block) override {
        pastedAt = selected;
        pasted = block.text;
        pastedRows = block.rows;
    }
    void FillDown(const center::CellSelection& selected) override { filled = selected; }
    void DuplicateRows(const center::CellSelection& selected) override {
        ++duplicates;
        duplicated = selected;
    }
    void InsertRows(const center::CellSelection& selected) override { inserted = selected; }
    void DeleteRows(const center::CellSelection& selected) override {
        ++deletes;
        deleted = selected;
    }
    void Undo() override { ++undos; }
    void Redo() override { ++redos; }
    bool IsNameListOpen() override { return listOpen; }
    void NameListKey(const std::string& typedText) override { typed.push_back(typedText); }
    void NameListMove(int steps) override { listMoves += steps; }
    bool NameListTake() override {
        listOpen = false;
        if (listTakes) grid->SetText(grid->ActiveCell().row, grid->ActiveCell().column, "chosen");
        return listTakes;
    }
    void NameListClose() override { listOpen = false; }

    std::shared_ptr<center::EntryGrid> grid;
    std::vector<center::CellAddress> moves;
    center::CellAddress sendTo{0, 0};  // where every move ends up, when set
    bool selecting = false;
    center::CellSelection selection;
    std::vector<int> keys;
    std::vector<std::string> keyTexts;
    std::vector<std::string> typed;
    center::CellSelection pastedAt;
    std::string pasted;
    std::string pastedRows;
    center::CellSelection filled;
    center::CellSelection duplicated;
    center::CellSelection inserted;
    center::CellSelection deleted;
    int rowsInUse = 10;
    int lookUps = 0;
    int duplicates = 0;
    int deletes = 0;
    int undos = 0;
    int redos = 0;
    int listMoves = 0;
    bool listOpen = false;
    bool listTakes = false;
};

}  // namespace vicenter::ui::testing
