#pragma once

// A stand-in that the grid's tests share: rules that do what a plain grid would.

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "automation/error.h"
#include "center/editing/grid_actions.h"
#include "center/grid/entry_grid.h"
#include "center/lookups/name_list_actions.h"

namespace vicenter::ui::testing {

// Rules of a grid without a template center: the cursor goes where it is sent, texts are taken.
class PlainActions : public center::GridActions, public center::NameListActions {
  public:
    explicit PlainActions(std::shared_ptr<center::EntryGrid> entryGrid) : grid(std::move(entryGrid)) {}

    using GridActions::MoveActiveCell;
    void GotFocus() override {}
    void LostFocus() override {}
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
    center::TextVerdict CommitText(const center::CellAddress& cell, const std::string& text) override {
        if (failure) throw *failure;
        const auto verdict = center::CheckTypedText(cell.column, text);
        if (verdict == center::TextVerdict::Taken) grid->SetText(cell.row, cell.column, text);
        return verdict;
    }
    std::string DescribeFault(const center::CellAddress&) override { return "科目不存在"; }
    void OpenLookUp() override { ++lookUps; }
    int RowsInUse() const override { return rowsInUse; }
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
    center::PasteResult PasteBlock(const center::CellSelection& selected,
                                   const center::CopiedBlock& block) override {
        pastedAt = selected;
        pasted = block.text;
        pastedRows = block.rows;
        return {};
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
    bool CanUndo() const override { return false; }
    bool CanRedo() const override { return false; }
    void Undo() override { ++undos; }
    void Redo() override { ++redos; }
    bool IsOpen() const override { return listOpen; }
    void TextTyped(const std::string& typedText) override { typed.push_back(typedText); }
    void Move(int steps) override { listMoves += steps; }
    bool Take() override {
        listOpen = false;
        if (listTakes) grid->SetText(grid->ActiveCell().row, grid->ActiveCell().column, "chosen");
        return listTakes;
    }
    void Prepare() override {}
    void Select(int) override {}
    void Close() override { listOpen = false; }

    std::shared_ptr<center::EntryGrid> grid;
    std::optional<automation::Error> failure;  // of every text that is committed
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
