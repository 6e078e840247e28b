#include "center/editing/fault_text.h"

#include "center/editing/cell_checks.h"
#include "store/fault_text.h"

namespace vicenter::center {

std::string FaultText(const EntryGrid& grid, const CellAddress& cell) {
    if (const TextVerdict own = OwnVerdict(grid, cell); own != TextVerdict::Taken)
        return VerdictText(own, cell.column);
    const auto text = [&](int gridColumn) { return grid.Text(cell.row, gridColumn); };
    return store::FaultText(static_cast<store::CellCheck>(grid.FaultyCheck(cell.row, cell.column)),
                            {text(column::kAccountNumber), text(column::kSettleName),
                             text(column::kCurrencyName), text(column::kUnitName), text(column::kItems)},
                            grid.FaultyCheck(cell.row, column::kAccountNumber) == 0);
}

}  // namespace vicenter::center
