#pragma once

// A stand-in that the grid's tests share: rules that do what a plain grid would.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "center/cell_rules.h"
#include "center/entry_grid.h"
#include "ui/grid_actions.h"

namespace vicenter::ui::testing {

// Rules of a grid without a template center: the cursor goes where it is sent, texts are taken.
class PlainActions : public GridActions {
  public:
    explicit PlainActions(std::shared_ptr<center::EntryGrid> entryGrid) : grid(std::move(entryGrid)) {}

    void MoveActiveCell(const center::CellAddress& to) override {
        moves.push_back(to);
        const center::CellAddress end = sendTo.row > 0 ? sendTo : to;
        grid->SetActiveCell(end);
    }
    void SelectionChanged(const center::CellRange& range) override { selection = range; }
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
    void ClearCells(const center::CellRange& range) override {
        for (int row = range.firstRow; row <= range.lastRow; ++row) {
            for (int column = range.firstColumn; column <= range.lastColumn; ++column)
                grid->SetText(row, column, "");
        }
    }
    std::string CopyBlock(const center::CellRange& range) override {
        return std::string(grid->Text(range.firstRow, range.firstColumn));
    }
    void PasteBlock(const center::CellAddress& at, const std::string& text) override {
        pastedAt = at;
        pasted = text;
    }
    void FillDown(const center::CellRange& range) override { filled = range; }
    void FillSelection(const center::CellRange& range, const std::string& text) override {
        filled = range;
        pasted = text;
    }
    void DuplicateRow() override { ++duplicates; }
    void InsertRows(int firstRow, int count) override { inserted = {firstRow, count}; }
    void DeleteRows(int firstRow, int count) override {
        ++deletes;
        deleted = {firstRow, count};
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
    center::CellRange selection;
    std::vector<int> keys;
    std::vector<std::string> keyTexts;
    std::vector<std::string> typed;
    center::CellAddress pastedAt{0, 0};
    std::string pasted;
    center::CellRange filled;
    std::pair<int, int> inserted;  // first row and count
    std::pair<int, int> deleted;
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
