#include "center/frame/status_line.h"

#include <array>
#include <cstddef>
#include <utility>

#include "center/editing/cell_rules.h"
#include "center/grid/line_texts.h"

namespace vicenter::center {

using automation::Decimal;

namespace {

std::string AmountText(const Decimal& amount) {
    return DisplayText(column::kAmount, amount.ToText());
}

// Numbers of the column read with decimals even when those are zeros.
bool ReadsWithDecimals(int gridColumn) {
    return DisplayText(gridColumn, "0") != "0";
}

}  // namespace

NumberTotals NumberSums::Sides::Totals() const {
    const Decimal difference = Decimal::Subtract(debit, credit);
    return {AmountText(debit), AmountText(credit),
            difference.IsZero() ? std::string() : AmountText(difference)};
}

NumberSums::NumberSums(const EntryGrid& grid, int rowCount) : rowCount_(rowCount) {
    std::vector<std::string> order;
    for (int row = 1; row <= rowCount; ++row) {
        const std::string number(NumberOfRow(grid, row));
        if (number.empty()) continue;
        const auto [at, isNew] = sums_.try_emplace(number);
        if (isNew) order.push_back(number);
        at->second.lastRow = row;
        const std::optional<Decimal> amount = DecimalIn(grid.Text(row, column::kAmount));
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
    NumberTotals totals = active->second.Totals();
    status.debit = std::move(totals.debit);
    status.credit = std::move(totals.credit);
    status.difference = std::move(totals.difference);
    status.amountHidden = grid.Layout(column::kAmount).hidden;
    return status;
}

std::optional<NumberTotals> NumberSums::EndingAt(const EntryGrid& grid, int row) const {
    if (row < 1 || row > rowCount_) return std::nullopt;
    const auto found = sums_.find(std::string(NumberOfRow(grid, row)));
    if (found == sums_.end() || found->second.lastRow != row) return std::nullopt;
    return found->second.Totals();
}

std::string SumOfSelection(const EntryGrid& grid, const CellSelection& selection) {
    struct Side {
        const char* name;
        Decimal sum;
        int count = 0;
        int readsAs = column::kQuantity;  // as the numbers do that went into it
    };
    std::array<Side, 3> sides{{{"借 ", {}, 0}, {"贷 ", {}, 0}, {"其他 ", {}, 0}}};
    int count = 0;
    for (const ColumnRuns& column : SelectedCells(selection, grid)) {
        const CellKind kind = Column(column.column).kind;
        if (kind != CellKind::Decimal && kind != CellKind::Whole) continue;
        if (grid.Layout(column.column).hidden) continue;
        const bool decimals = ReadsWithDecimals(column.column);
        const bool amount = column.column == column::kAmount || column.column == column::kAmountFor;
        for (const RowRun& run : column.rows) {
            for (int row = run.first; row <= run.last; ++row) {
                const std::optional<Decimal> number = DecimalIn(grid.Text(row, column.column));
                if (!number) continue;
                const std::string_view direction = grid.Text(row, column::kDirection);
                const std::size_t side = amount && direction == kDebit    ? 0
                                         : amount && direction == kCredit ? 1
                                                                          : 2;
                sides[side].sum = Decimal::Add(sides[side].sum, *number);
                if (decimals) sides[side].readsAs = column.column;
                ++sides[side].count;
                ++count;
            }
        }
    }
    if (count < 2) return {};
    std::string text;
    for (const Side& side : sides) {
        if (side.count == 0) continue;
        std::string sum = DisplayText(side.readsAs, side.sum.ToText());
        if (side.count == count) return sum;
        if (!text.empty()) text += "　";
        text += side.name + sum;
    }
    return text;
}

}  // namespace vicenter::center
