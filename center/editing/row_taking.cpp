#include "center/editing/row_taking.h"

#include "center/grid/line_texts.h"
#include "platform/system/utf8.h"

namespace vicenter::center {

bool RowTaking::HasAccount(int row) const {
    return !system::TrimBlanks(state_.grid->Text(row, column::kAccountNumber)).empty();
}

void RowTaking::Ask(int row) {
    const std::string_view account = system::TrimBlanks(state_.grid->Text(row, column::kAccountNumber));
    if (state_.uses.Ask(account, state_.userId)) proposals_.TextsChanged();
    state_.accounts.Ask(account);
}

// What has just been typed counts, with all that the account set knows of its account.
void RowTaking::Resolve(int row) {
    editing_.FinishTyping();
    Ask(row);
    proposals_.TextsChanged();
}

void RowTaking::Arrived() {
    const int row = proposals_.Row();
    // An account above tells what follows it, the row's own on which side it stands.
    if (row != 0 && row == state_.grid->ActiveCell().row) Ask(HasAccount(row) ? row : row - 1);
    proposals_.Show();  // with what has been learnt
}

bool RowTaking::Take(const CellAddress& cell) {
    const std::string text = proposals_.Text(cell);
    if (text.empty() || !editing_.CanEdit()) return false;
    if (cell.column != column::kExplanation) return editing_.CommitText(cell, text) == TextVerdict::Taken;
    // It stands in the line above: no code that something else should come of.
    const UndoStep step(state_.open);
    state_.grid->SetText(cell.row, cell.column, text);
    return true;
}

bool RowTaking::TakeShown(int row, std::initializer_list<int> columns) {
    const UndoStep step(state_.open);
    bool taken = false;
    for (const int c : columns) {
        const CellAddress cell{row, c};
        if (!IsHidden(c) && proposals_.WasShown(cell)) taken = Take(cell) || taken;
    }
    return taken;
}

void RowTaking::TakePassed(const CellAddress& from) {
    if (!proposals_.HasJumped(from.row) || proposals_.Row() != from.row || !HasAccount(from.row)) return;
    Resolve(from.row);
    TakeShown(from.row, {column::kNo, column::kExplanation, column::kDirection});
}

std::optional<CellAddress> RowTaking::StopInRow(int row) {
    const CellAddress side{row, column::kDirection};
    if (!proposals_.HasJumped(row) || !HasAccount(row) || IsHidden(side.column)) return std::nullopt;
    if (proposals_.Text(side).empty()) return std::nullopt;
    return side;
}

std::optional<CellAddress> RowTaking::BeginRow(int row) {
    if (state_.grid->ActiveCell().column == column::kAccountNumber || IsHidden(column::kAccountNumber))
        return std::nullopt;
    const bool taken = TakeShown(row, {column::kNo, column::kExplanation, column::kDirection});
    if (!taken) return std::nullopt;
    proposals_.Jumped(row);
    return CellAddress{row, column::kAccountNumber};
}

std::optional<CellAddress> RowTaking::TakeRow() {
    const int row = state_.grid->ActiveCell().row;
    const bool proposed = row >= 1 && row == proposals_.Row();
    if (!proposals_.IsOn() || !editing_.CanEdit()) return std::nullopt;
    if (!proposed && row != state_.open.RowCount()) return std::nullopt;
    if (!HasAccount(row)) return proposed ? BeginRow(row) : std::nullopt;
    Resolve(row);
    if (proposed) {
        TakeShown(row, {column::kNo, column::kExplanation, column::kDirection, column::kAmount});
        proposals_.Jumped(row);
        // The account has turned the side: that is to be seen first.
        if (StopInRow(row)) return std::nullopt;
    }
    const bool goesOn =
        !NumberOfRow(*state_.grid, row).empty() && IsNumberOpen(*state_.grid, state_.open.RowCount(), row);
    if (!goesOn || proposals_.IsRefused(row + 1)) return CellAddress{row + 1, column::kNo};
    proposals_.Jumped(row + 1);
    return CellAddress{row + 1, column::kAccountNumber};
}

}  // namespace vicenter::center
