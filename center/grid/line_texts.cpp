#include "center/grid/line_texts.h"

#include "center/editing/cell_rules.h"

namespace vicenter::center {

std::string_view NumberOfRow(const EntryGrid& grid, int row) {
    std::string_view number = grid.Text(row, column::kNo);
    while (number.size() > 1 && number.front() == '0')
        number.remove_prefix(1);
    return number;
}

std::optional<automation::Decimal> DecimalIn(std::string_view text) {
    if (!IsPlainNumber(text)) return std::nullopt;
    return automation::Decimal::Parse(text);
}

}  // namespace vicenter::center
