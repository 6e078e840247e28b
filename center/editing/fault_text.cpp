#include "center/editing/fault_text.h"

#include "automation/error.h"
#include "center/editing/cell_checks.h"
#include "center/lookups/cell_resolution.h"
#include "store/fault_text.h"

namespace vicenter::center {

std::string FaultText(const EntryGrid& grid, const CellAddress& cell) {
    if (const TextVerdict own = OwnVerdict(grid, cell); own != TextVerdict::Taken)
        return VerdictText(own, cell.column);
    const int check = grid.FaultyCheck(cell.row, cell.column);
    if (check == 0) return {};
    const auto text = [&](int gridColumn) { return grid.Text(cell.row, gridColumn); };
    try {
        // Red since the account set could not be asked, or since somebody has changed it.
        if (CellChecks().IsValid(grid, cell.row, check)) return "现在检查已通过，离开该单元格后恢复正常";
        return store::FaultText(static_cast<store::CellCheck>(check),
                                {text(column::kAccountNumber), text(column::kSettleName),
                                 text(column::kCurrencyName), text(column::kUnitName), text(column::kItems)},
                                grid.FaultyCheck(cell.row, column::kAccountNumber) == 0);
    } catch (const automation::Error&) {
        return UnreadableText(text(cell.column));
    }
}

}  // namespace vicenter::center
