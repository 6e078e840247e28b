#include "center/health/line_hints.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "center/editing/line_amount.h"
#include "center/frame/status_line.h"
#include "center/grid/columns.h"
#include "center/grid/number_bands.h"

namespace vicenter::center {

namespace {

struct NumberRows {
    std::string_view number;
    std::vector<int> rows;
};

// The numbers in the order of their first lines.
std::vector<NumberRows> RowsByNumber(const EntryGrid& grid, int rowCount) {
    std::vector<NumberRows> numbers;
    std::unordered_map<std::string_view, std::size_t> places;
    for (int row = 1; row <= rowCount; ++row) {
        const std::string_view number = NumberOfRow(grid, row);
        if (number.empty()) continue;
        const auto [at, isNew] = places.try_emplace(number, numbers.size());
        if (isNew) numbers.push_back({number, {}});
        numbers[at->second].rows.push_back(row);
    }
    return numbers;
}

template <class Counts>
std::string TextsOf(const EntryGrid& grid, const std::vector<int>& rows, Counts counts) {
    std::string texts;
    for (const int row : rows) {
        for (const ColumnSpec& spec : Columns()) {
            if (counts(spec)) texts.append(grid.Text(row, spec.column)) += '\0';
        }
    }
    return texts;
}

// What tells most numbers from each other, and costs little.
std::string Outline(const EntryGrid& grid, const std::vector<int>& rows) {
    return TextsOf(grid, rows, [](const ColumnSpec& spec) {
        return spec.column == column::kAccountNumber || spec.column == column::kAmount;
    });
}

// The lines of a number as one text; ids, which nobody sees, left out.
std::string Pattern(const EntryGrid& grid, const std::vector<int>& rows) {
    return TextsOf(grid, rows, [](const ColumnSpec& spec) {
        return spec.kind != CellKind::Id && spec.column != column::kNo;
    });
}

}  // namespace

std::vector<CellHint> HintsOfLine(const EntryGrid& grid, int row, const AccountCells& accounts) {
    std::vector<CellHint> hints;
    for (const int c : {column::kSettleName, column::kItems}) {
        if (std::string text = accounts.MissingText(grid, {row, c}); !text.empty())
            hints.push_back({c, std::move(text)});
    }
    if (std::string text = AmountHint(grid, row); !text.empty())
        hints.push_back({column::kAmount, std::move(text)});
    return hints;
}

std::map<int, std::string> HintsOfNumbers(const EntryGrid& grid, int rowCount) {
    std::map<int, std::string> hints;
    const std::vector<std::string> unbalanced = SumUp(grid, rowCount, 0).unbalanced;
    std::unordered_map<std::string, std::vector<const NumberRows*>> alike;
    const std::vector<NumberRows> numbers = RowsByNumber(grid, rowCount);
    for (const NumberRows& number : numbers) {
        std::string text;
        if (std::find(unbalanced.begin(), unbalanced.end(), number.number) != unbalanced.end())
            text = "借贷金额不平";
        std::vector<const NumberRows*>& others = alike[Outline(grid, number.rows)];
        const auto same = std::find_if(others.begin(), others.end(), [&](const NumberRows* other) {
            return Pattern(grid, other->rows) == Pattern(grid, number.rows);
        });
        if (same == others.end()) {
            others.push_back(&number);
        } else {
            if (!text.empty()) text += "；";
            text.append("与 ").append((*same)->number).append(" 号完全相同");
        }
        if (!text.empty()) hints.emplace(number.rows.front(), std::move(text));
    }
    return hints;
}

}  // namespace vicenter::center
