#include "center/editing/proposals.h"

#include "center/editing/cell_rules.h"
#include "center/grid/line_texts.h"
#include "platform/system/utf8.h"

namespace vicenter::center {

using automation::Decimal;

namespace {

// Debit less credit of a number's lines.
Decimal DifferenceOf(const EntryGrid& grid, int rowCount, std::string_view number) {
    Decimal difference;
    for (int row = 1; row <= rowCount; ++row) {
        if (NumberOfRow(grid, row) != number) continue;
        const std::optional<Decimal> amount = DecimalIn(grid.Text(row, column::kAmount));
        if (!amount) continue;
        const std::string_view direction = grid.Text(row, column::kDirection);
        if (direction == kDebit) difference = Decimal::Add(difference, *amount);
        if (direction == kCredit) difference = Decimal::Subtract(difference, *amount);
    }
    return difference;
}

}  // namespace

const std::string& ProposedLine::Text(int gridColumn) const {
    static const std::string none;
    switch (gridColumn) {
        case column::kNo:
            return number;
        case column::kDirection:
            return direction;
        case column::kAmount:
            return amount;
        default:
            return none;
    }
}

ProposedLine ProposeLine(const EntryGrid& grid, int rowCount, int row) {
    ProposedLine line;
    const std::string_view before = NumberOfRow(grid, row - 1);
    if (before.empty() || grid.Refusal(row - 1, column::kNo) != TextVerdict::Taken) return line;
    const std::string_view own = NumberOfRow(grid, row);
    // Who has begun another number has said that this one is done.
    if (!own.empty() && own != before) return line;
    if (own.empty()) line.number = before;

    const Decimal difference = DifferenceOf(grid, rowCount, before);
    if (difference.IsZero()) return line;
    const std::string_view missing = difference.IsNegative() ? kDebit : kCredit;
    const std::string_view direction = system::TrimBlanks(grid.Text(row, column::kDirection));
    if (direction.empty()) line.direction = missing;
    if (!direction.empty() && direction != missing) return line;
    if (!grid.Text(row, column::kAmount).empty()) return line;
    std::string amount = (difference.IsNegative() ? difference.Negated() : difference).ToShortText();
    if (CheckTypedText(column::kAmount, amount) == TextVerdict::Taken) line.amount = std::move(amount);
    return line;
}

int Proposals::Row() const {
    if (!on_ || !state_.hasRight || !state_.open.IsOpen() || !state_.open.LinesKnown()) return 0;
    const int used = state_.open.RowCount();
    const bool stillBegun = begun_ == used || begun_ == used + 1;
    const int row = begun_ > 1 && stillBegun ? begun_ : used + 1;
    return row > 1 && row != refused_ && row <= state_.grid->RowTotal() ? row : 0;
}

const ProposedLine& Proposals::Line(int row) const {
    if (!line_ || lineRow_ != row) {
        line_ = ProposeLine(*state_.grid, state_.open.RowCount(), row);
        lineRow_ = row;
    }
    return *line_;
}

std::string Proposals::Text(const CellAddress& cell) const {
    if (cell.row < 2 || cell.row != Row()) return {};
    if (!state_.grid->Text(cell.row, cell.column).empty()) return {};
    return Line(cell.row).Text(cell.column);
}

bool Proposals::Refuse() {
    const int row = Row();
    if (row == 0 || Line(row).IsEmpty()) return false;
    refused_ = row;
    return true;
}

void Proposals::ActiveCellChanged() {
    const int row = state_.grid->ActiveCell().row;
    if (row == state_.open.RowCount() + 1) {
        begun_ = row;
    } else if (row != begun_) {
        begun_ = 0;
    }
}

void Proposals::RowsMoved(int firstRow) {
    line_.reset();
    // A blank row that comes below the one that is being filled changes nothing there.
    if (firstRow > begun_ && firstRow > refused_) return;
    begun_ = 0;
    refused_ = 0;
    ActiveCellChanged();
}

}  // namespace vicenter::center
