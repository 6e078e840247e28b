#include "center/status_line.h"

#include <algorithm>
#include <utility>

#include "center/cell_rules.h"

namespace vicenter::center {

using automation::Decimal;

namespace {

std::optional<Decimal> NumberOf(std::string_view text) {
    if (!IsPlainNumber(text)) return std::nullopt;
    return Decimal::Parse(text);
}

std::string AmountText(const Decimal& amount) {
    return DisplayText(column::kAmount, amount.ToText());
}

// The template number of a row as the account set will know it: "01" and "1" are one.
std::string_view NumberOfRow(const EntryGrid& grid, int row) {
    std::string_view number = grid.Text(row, column::kNo);
    while (number.size() > 1 && number.front() == '0')
        number.remove_prefix(1);
    return number;
}

}  // namespace

NumberSums::NumberSums(const EntryGrid& grid, int rowCount) : rowCount_(rowCount) {
    std::vector<std::string> order;
    for (int row = 1; row <= rowCount; ++row) {
        const std::string number(NumberOfRow(grid, row));
        if (number.empty()) continue;
        const auto [at, isNew] = sums_.try_emplace(number);
        if (isNew) order.push_back(number);
        const std::optional<Decimal> amount = NumberOf(grid.Text(row, column::kAmount));
        if (!amount) continue;
        const std::string_view direction = grid.Text(row, column::kDirection);
        if (direction == kDebit) at->second.debit = Decimal::Add(at->second.debit, *amount);
        if (direction == kCredit) at->second.credit = Decimal::Add(at->second.credit, *amount);
    }
    for (std::string& number : order) {
        const Sides& sides = sums_[number];
        if (!(sides.debit == sides.credit)) unbalanced_.push_back(std::move(number));
    }
}

StatusState NumberSums::Status(const EntryGrid& grid, int activeRow) const {
    StatusState status;
    status.lines = rowCount_;
    status.numbers = static_cast<int>(sums_.size());
    status.unbalanced = unbalanced_;
    if (activeRow < 1 || activeRow > rowCount_) return status;
    const auto active = sums_.find(std::string(NumberOfRow(grid, activeRow)));
    if (active == sums_.end()) return status;
    status.number = active->first;
    status.debit = AmountText(active->second.debit);
    status.credit = AmountText(active->second.credit);
    const Decimal difference = Decimal::Subtract(active->second.debit, active->second.credit);
    if (!difference.IsZero()) status.difference = AmountText(difference);
    return status;
}

std::string SumOfSelection(const EntryGrid& grid, const CellRange& range) {
    Decimal sum;
    int count = 0;
    const int lastRow = std::min(range.lastRow, grid.RowTotal());
    for (int row = std::max(1, range.firstRow); row <= lastRow; ++row) {
        for (int c = std::max(1, range.firstColumn); c <= std::min(range.lastColumn, kColumnCount); ++c) {
            const CellKind kind = Column(c).kind;
            if (kind != CellKind::Decimal && kind != CellKind::Whole) continue;
            const std::optional<Decimal> number = NumberOf(grid.Text(row, c));
            if (!number) continue;
            sum = Decimal::Add(sum, *number);
            ++count;
        }
    }
    return count < 2 ? std::string() : DisplayText(column::kQuantity, sum.ToText());
}

}  // namespace vicenter::center
