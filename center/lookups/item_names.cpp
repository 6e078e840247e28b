#include "center/lookups/item_names.h"

#include "store/item_names.h"

namespace vicenter::center {

std::string NamesBehind(const EntryGrid& grid, const CellAddress& cell) {
    const std::string_view codes = grid.Text(cell.row, cell.column);
    if (codes.empty()) return {};
    const std::string_view account = grid.Text(cell.row, column::kAccountNumber);
    if (cell.column == column::kItems) return store::ItemNames(account, codes);
    if (cell.column == column::kAccountNumber || cell.column == column::kAccountName) {
        const std::string_view name = grid.Text(cell.row, column::kAccountName);
        return account.empty() || name.empty() ? std::string()
                                               : std::string(account) + " " + std::string(name);
    }
    const std::string code = store::CodeOfName(cell.column, codes, account).value_or(std::string());
    return code.empty() ? std::string() : code + " " + std::string(codes);
}

}  // namespace vicenter::center
