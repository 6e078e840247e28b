#include "center/lookups/item_names.h"

#include "store/item_names.h"

namespace vicenter::center {

std::string NamesBehind(const EntryGrid& grid, const CellAddress& cell) {
    const std::string_view codes = grid.Text(cell.row, cell.column);
    if (codes.empty()) return {};
    const std::string_view account = grid.Text(cell.row, column::kAccountNumber);
    if (cell.column == column::kItems) return store::ItemNames(account, codes);
    const std::string_view name = grid.Text(cell.row, column::kAccountName);
    if (cell.column != column::kAccountNumber || name.empty()) return {};
    return std::string(account) + " " + std::string(name);
}

}  // namespace vicenter::center
