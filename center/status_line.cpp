#include "center/status_line.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "automation/decimal.h"
#include "center/cell_rules.h"

namespace vicenter::center {

using automation::Decimal;

namespace {

struct Sides {
    Decimal debit;
    Decimal credit;
};

std::optional<Decimal> NumberOf(std::string_view text) {
    if (!IsPlainNumber(text)) return std::nullopt;
    return Decimal::Parse(text);
}

std::string AmountText(const Decimal& amount) {
    return DisplayText(column::kAmount, amount.ToText());
}

}  // namespace

StatusState SumUp(const EntryGrid& grid, int rowCount, int activeRow) {
    StatusState status;
    status.lines = rowCount;
    std::unordered_map<std::string, Sides> sums;
    std::vector<std::string> order;
    for (int row = 1; row <= rowCount; ++row) {
        const std::string number(grid.Text(row, column::kNo));
        if (number.empty()) continue;
        const auto [at, isNew] = sums.try_emplace(number);
        if (isNew) order.push_back(number);
        const std::optional<Decimal> amount = NumberOf(grid.Text(row, column::kAmount));
        if (!amount) continue;
        const std::string_view direction = grid.Text(row, column::kDirection);
        if (direction == kDebit) at->second.debit = Decimal::Add(at->second.debit, *amount);
        if (direction == kCredit) at->second.credit = Decimal::Add(at->second.credit, *amount);
    }
    status.numbers = static_cast<int>(order.size());
    for (const std::string& number : order) {
        const Sides& sides = sums[number];
        if (!(sides.debit == sides.credit)) status.unbalanced.push_back(number);
    }
    if (activeRow < 1 || activeRow > rowCount) return status;
    const auto active = sums.find(std::string(grid.Text(activeRow, column::kNo)));
    if (active == sums.end()) return status;
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
