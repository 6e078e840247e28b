// The grid's events of frmVICenter: cursor, keys, edits, blocks, item panel and name list.

#include "center/editing/cell_checks.h"
#include "center/editing/fault_text.h"
#include "center/frame/frm_vi_center.h"
#include "center/frame/frm_vi_center_parts.h"
#include "center/lookups/cell_resolution.h"

namespace vicenter::center {

void frmVICenter::GridGotFocus() {
    parts_->state.Enable({Tool::AddRow, Tool::DelRow}, true);
}

void frmVICenter::GridLostFocus() {
    parts_->state.Enable({Tool::AddRow, Tool::DelRow}, false);
}

void frmVICenter::MoveActiveCell(const CellAddress& to, CursorMove how) {
    AtEdge([&] { parts_->editing.MoveActiveCell(to, how); });
}

bool frmVICenter::GridKeyPress(char32_t character) {
    const int active = parts_->state.grid->ActiveCell().column;
    // Backspace and the other editing keys are no text.
    if (character == key_code::kBack) return true;
    return active >= 1 && parts_->editing.CanEdit() && AcceptsCharacter(active, character);
}

bool frmVICenter::GridKeyDown(int keyCode, const std::string& cellText) {
    bool used = false;
    AtEdge([&] {
        switch (keyCode) {
            case key_code::kInsert:
            case key_code::kF7:
                OpenLookUp();
                used = true;
                return;
            case key_code::kLeft:
            case key_code::kRight:
                return;
            case key_code::kKeypadDecimal:
                used = parts_->editing.RepeatExplanation(cellText);
                return;
            default:
                return;
        }
    });
    return used;
}

TextVerdict frmVICenter::CommitText(const CellAddress& cell, const std::string& text) {
    TextVerdict verdict = TextVerdict::Locked;
    AtEdge([&] { verdict = parts_->editing.CommitText(cell, text); });
    parts_->names.Close();
    parts_->RefreshStatus();
    return verdict;
}

void frmVICenter::ClearCells(const CellSelection& selection) {
    AtEdge([&] { parts_->editing.ClearCells(selection); });
    parts_->RefreshStatus();
}

void frmVICenter::OpenLookUp() {
    AtEdge([&] {
        if (!parts_->editing.CanEdit()) return;
        parts_->names.Close();
        // A choice takes the place of what was typed; after anything else that is still to be resolved.
        if (parts_->lookUps.Open()) parts_->editing.Forget();
    });
    parts_->RefreshStatus();
}

std::string frmVICenter::DescribeFault(const CellAddress& cell) {
    std::string text;
    AtEdge([&] { text = FaultText(*parts_->state.grid, cell); });
    return text;
}

void frmVICenter::SelectionChanged(const CellSelection& selection) {
    parts_->selection = selection;
    parts_->RefreshStatus();
}

// --- blocks and undo: what has been typed is resolved before rows are copied or move away under it

std::optional<CopiedBlock> frmVICenter::CopyBlock(const CellSelection& selection) const {
    return parts_->blocks.Copy(selection);
}

PasteResult frmVICenter::PasteBlock(const CellSelection& selection, const CopiedBlock& block) {
    PasteResult result;
    AtEdge([&] {
        parts_->editing.FinishTyping();
        result = parts_->blocks.Paste(selection, block);
    });
    return result;
}

void frmVICenter::FillDown(const CellSelection& selection) {
    AtEdge([&] {
        parts_->editing.FinishTyping();
        parts_->blocks.FillDown(selection);
    });
}

void frmVICenter::DuplicateRows(const CellSelection& selection) {
    AtEdge([&] {
        parts_->editing.FinishTyping();
        parts_->blocks.DuplicateRows(selection);
    });
}

void frmVICenter::InsertRows(const CellSelection& selection) {
    AtEdge([&] {
        if (!parts_->editing.CanEdit()) return;
        parts_->editing.FinishTyping();
        parts_->editing.InsertRows(RowRuns(selection, *parts_->state.grid));
    });
    parts_->RefreshSurroundings();
}

void frmVICenter::DeleteRows(const CellSelection& selection) {
    AtEdge([&] {
        if (!parts_->editing.CanEdit()) return;
        parts_->editing.FinishTyping();
        parts_->editing.DeleteRows(RowRuns(selection, *parts_->state.grid));
    });
    parts_->RefreshSurroundings();
}

bool frmVICenter::CanUndo() const {
    return parts_->editing.CanEdit() && parts_->state.journal.CanUndo();
}

bool frmVICenter::CanRedo() const {
    return parts_->editing.CanEdit() && parts_->state.journal.CanRedo();
}

void frmVICenter::Undo() {
    AtEdge([&] { parts_->editing.Undo(); });
    parts_->RefreshSurroundings();
}

void frmVICenter::Redo() {
    AtEdge([&] { parts_->editing.Redo(); });
    parts_->RefreshSurroundings();
}

// --- item panel

void frmVICenter::ToggleItemPanel() {
    parts_->items.Toggle();
}

void frmVICenter::CommitItemText(const std::string& text) {
    AtEdge([&] { parts_->items.CommitText(text); });
    parts_->RefreshStatus();
}

void frmVICenter::CommitItemNumber(std::size_t row, const std::string& number) {
    AtEdge([&] { parts_->items.CommitNumber(row, number); });
    parts_->RefreshStatus();
}

void frmVICenter::LookUpItem(std::size_t row) {
    AtEdge([&] { parts_->items.LookUp(row); });
    parts_->RefreshStatus();
}

// --- name list

void frmVICenter::PrepareNameLists() {
    AtEdge([&] { parts_->names.Prepare(); });
}

void frmVICenter::NameListKey(const std::string& typedText) {
    AtEdge([&] { parts_->names.TextTyped(typedText); });
}

void frmVICenter::NameListSelect(int index) {
    parts_->names.Select(index);
}

void frmVICenter::NameListMove(int steps) {
    parts_->names.Move(steps);
}

bool frmVICenter::NameListTake() {
    bool taken = false;
    AtEdge([&] { taken = parts_->names.Take(); });
    if (taken) parts_->editing.Forget();
    parts_->RefreshStatus();
    return taken;
}

void frmVICenter::NameListClose() {
    parts_->names.Close();
}

}  // namespace vicenter::center
