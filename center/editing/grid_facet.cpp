#include "center/editing/grid_facet.h"

#include "center/editing/fault_text.h"
#include "center/frame/key_code.h"
#include "center/frame/window_parts.h"
#include "center/grid/whole_column.h"
#include "center/lookups/item_names.h"
#include "center/print/voucher_preview.h"
#include "platform/system/utf8.h"

namespace vicenter::center {

namespace {

// False, and the user has been told, for a selection that row commands do not take: all lines would go, or
// as many come as the grid has rows.
bool NamesRows(const CellSelection& selection, const WindowParts& parts) {
    if (!HoldsWholeColumn(selection, *parts.state.grid)) return true;
    Tell("所选的是整列，请先选定要插入、删除或复制的行！");
    return false;
}

}  // namespace

void GridFacet::GotFocus() {
    parts_.state.Enable({Tool::AddRow, Tool::DelRow}, true);
}

void GridFacet::LostFocus() {
    parts_.state.Enable({Tool::AddRow, Tool::DelRow}, false);
}

void GridFacet::MoveActiveCell(const CellAddress& to, CursorMove how) {
    parts_.edge.Look([&] {
        const CellAddress from = parts_.state.grid->ActiveCell();
        parts_.editing.MoveActiveCell(to, how);
        // What the account wants is said while its line is being entered.
        if (from.column == column::kAccountNumber && !(from == to) && parts_.editing.CanEdit())
            parts_.state.accounts.Ask(system::TrimBlanks(parts_.state.grid->Text(from.row, from.column)));
        parts_.taking.Arrived();
    });
}

void GridFacet::SelectionChanged(const CellSelection& selection) {
    parts_.selection = selection;
    parts_.RefreshStatus();
}

int GridFacet::RowsInUse() const {
    return parts_.state.open.RowCount();
}

// --- keys and texts

bool GridFacet::KeyPress(char32_t character) {
    const int active = parts_.state.grid->ActiveCell().column;
    // Backspace and the other editing keys are no text.
    if (character == key_code::kBack) return true;
    return active >= 1 && parts_.editing.CanEdit() && AcceptsCharacter(active, character);
}

bool GridFacet::KeyDown(int keyCode, const std::string& cellText) {
    switch (keyCode) {
        case key_code::kInsert:
        case key_code::kF7:
            OpenLookUp();
            return true;
        case key_code::kKeypadDecimal:
            return parts_.edge.Look([&] { return parts_.editing.RepeatExplanation(cellText); });
        default:
            return false;
    }
}

TextVerdict GridFacet::CommitText(const CellAddress& cell, const std::string& text) {
    TextVerdict verdict = TextVerdict::Locked;
    parts_.edge.Look([&] { verdict = parts_.editing.CommitText(cell, text); });
    parts_.names.Close();
    parts_.RefreshStatus();
    return verdict;
}

void GridFacet::OpenLookUp() {
    parts_.edge.Look([&] {
        if (!parts_.editing.CanEdit()) return;
        parts_.names.Close();
        // A choice takes the place of what was typed; after anything else that is still to be resolved.
        if (parts_.lookUps.Open()) parts_.editing.Forget();
    });
    parts_.RefreshStatus();
}

std::string GridFacet::DescribeFault(const CellAddress& cell) {
    return parts_.edge.Look([&] { return FaultText(*parts_.state.grid, cell); });
}

// --- proposals

int GridFacet::ProposedRow() {
    parts_.proposals.Settle();
    return parts_.proposals.Row();
}

std::string GridFacet::ProposedText(const CellAddress& cell) {
    parts_.proposals.Settle();
    return parts_.proposals.Text(cell);
}

bool GridFacet::TakeProposal(const CellAddress& cell) {
    const bool taken = parts_.edge.Look([&] { return parts_.taking.Take(cell); });
    parts_.names.Close();
    parts_.RefreshStatus();
    return taken;
}

void GridFacet::TakePassed(const CellAddress& from) {
    parts_.edge.Look([&] { parts_.taking.TakePassed(from); });
}

std::optional<CellAddress> GridFacet::StopInRow(int row) {
    return parts_.edge.Look([&] { return parts_.taking.StopInRow(row); });
}

std::optional<CellAddress> GridFacet::TakeRow() {
    const auto next = parts_.edge.Look([&] { return parts_.taking.TakeRow(); });
    parts_.RefreshStatus();
    return next;
}

bool GridFacet::RefuseProposals() {
    parts_.proposals.Settle();
    return parts_.proposals.Refuse();
}

bool GridFacet::IsOn(EntryAid aid) {
    return parts_.IsOn(aid);
}

void GridFacet::SetOn(EntryAid aid, bool on) {
    parts_.edge.Look([&] { parts_.SetOn(aid, on); });
}

bool GridFacet::IsPassedBy(const CellAddress& cell) {
    if (!parts_.passesBy || !parts_.editing.CanEdit()) return false;
    return parts_.edge.Look([&] {
        // A currency that has just been typed is known by its code alone.
        if (cell.column == column::kRate) parts_.editing.FinishTyping();
        return parts_.state.accounts.IsPassedBy(*parts_.state.grid, cell);
    });
}

// --- what should be looked at

bool GridFacet::IsHint(const CellAddress& cell) {
    return parts_.faults.IsHint(cell);
}

std::string GridFacet::DescribeHint(const CellAddress& cell) {
    return parts_.faults.HintText(cell);
}

std::string GridFacet::NamesOf(const CellAddress& cell) {
    return parts_.edge.Look([&] { return NamesBehind(*parts_.state.grid, cell); });
}

void GridFacet::SetColumnOrder(const ColumnOrder& order) {
    parts_.edge.Look([&] { parts_.SetColumnOrder(order); });
}

int GridFacet::FrozenPlaces() {
    return parts_.frozenPlaces;
}

void GridFacet::SetFrozenPlaces(int places) {
    parts_.edge.Look([&] { parts_.SetFrozenPlaces(places); });
}

void GridFacet::EditPatterns(PatternCommand command) {
    parts_.edge.Command([&] { parts_.patterns.Run(command); });
}

// --- blocks and rows

void GridFacet::ClearCells(const CellSelection& selection) {
    parts_.edge.Look([&] { parts_.editing.ClearCells(selection); });
    parts_.RefreshStatus();
}

std::optional<CopiedBlock> GridFacet::CopyBlock(const CellSelection& selection) {
    return parts_.edge.Look([&] { return parts_.blocks.Copy(selection); });
}

PasteResult GridFacet::PasteBlock(const CellSelection& selection, const CopiedBlock& block) {
    PasteResult result = parts_.edge.Command([&] { return parts_.blocks.Paste(selection, block); });
    if (const std::string refused = RefusedText(result); !refused.empty()) Tell(refused);
    return result;
}

void GridFacet::FillDown(const CellSelection& selection) {
    parts_.edge.Command([&] { parts_.blocks.FillDown(selection); });
}

void GridFacet::DuplicateRows(const CellSelection& selection) {
    parts_.edge.Command([&] {
        if (NamesRows(selection, parts_)) parts_.blocks.DuplicateRows(selection);
    });
}

void GridFacet::InsertRows(const CellSelection& selection) {
    parts_.edge.Command([&] {
        if (parts_.editing.CanEdit() && NamesRows(selection, parts_))
            parts_.editing.InsertRows(RowRuns(selection, *parts_.state.grid));
    });
    parts_.RefreshPanels();
}

void GridFacet::DeleteRows(const CellSelection& selection) {
    parts_.edge.Command([&] {
        if (parts_.editing.CanEdit() && NamesRows(selection, parts_))
            parts_.editing.DeleteRows(RowRuns(selection, *parts_.state.grid));
    });
    parts_.RefreshPanels();
}

// --- sums

bool GridFacet::ShowsTotals() const {
    return parts_.showsTotals;
}

void GridFacet::SetShowsTotals(bool shows) {
    parts_.showsTotals = shows;
    parts_.settings.PutOn(kTotalsSetting, shows);
}

std::optional<NumberTotals> GridFacet::TotalsEndingAt(int row) {
    if (!parts_.showsTotals) return std::nullopt;
    return parts_.Sums().EndingAt(*parts_.state.grid, row);
}

void GridFacet::ShowVoucher(int row) {
    parts_.edge.Command([&] {
        if (row < 1 || row > parts_.state.open.RowCount() || NumberOfRow(*parts_.state.grid, row).empty()) {
            Tell("请先选择一行有模板编号的分录！");
            return;
        }
        VoucherPreview preview(*parts_.state.grid, parts_.state.open.RowCount(), row, parts_.Head());
        parts_.state.view.ShowVoucher(preview);
    });
}

// --- undo

bool GridFacet::CanUndo() const {
    return parts_.editing.CanEdit() && parts_.state.open.Journal().CanUndo();
}

bool GridFacet::CanRedo() const {
    return parts_.editing.CanEdit() && parts_.state.open.Journal().CanRedo();
}

void GridFacet::Undo() {
    Return([&] { parts_.editing.Undo(); });
}

void GridFacet::Redo() {
    Return([&] { parts_.editing.Redo(); });
}

void GridFacet::Return(const std::function<void()>& step) {
    parts_.edge.Look([&] {
        const int linesBefore = parts_.state.open.RowCount();
        step();
        // These rows still were lines when their texts went.
        const int lines = parts_.state.open.RowCount();
        if (lines < linesBefore) parts_.TextsChanged({lines + 1, 1, linesBefore, kColumnCount});
        parts_.DropDraftIfUnmodified();
    });
    parts_.RefreshPanels();
}

}  // namespace vicenter::center
