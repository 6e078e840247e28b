#include "center/lookups/account_cells.h"

#include <optional>
#include <vector>

#include "platform/system/utf8.h"

namespace vicenter::center {

namespace {

std::string_view AccountOf(const EntryGrid& grid, int row) {
    return system::TrimBlanks(grid.Text(row, column::kAccountNumber));
}

// The line is in a currency that is not the ledger's own.
bool IsForeign(const EntryGrid& grid, int row) {
    return !grid.Text(row, column::kCurrencyName).empty() && grid.Text(row, column::kCurrencyId) != "1";
}

bool HasUse(const store::AccountNeeds& needs, const EntryGrid& grid, const CellAddress& cell) {
    switch (cell.column) {
        case column::kSettleName:
        case column::kSettleNumber:
            return needs.settlement;
        case column::kItems:
            return needs.items;
        case column::kCurrencyName:
            return needs.currency;
        case column::kRate:
        case column::kAmountFor:
            return needs.currency && IsForeign(grid, cell.row);
        case column::kUnitName:
        case column::kQuantity:
        case column::kPrice:
            return needs.units;
        default:
            return true;
    }
}

}  // namespace

const store::AccountNeeds* AccountCells::IfKnown(std::string_view accountNumber) const {
    const auto known = known_.find(accountNumber);
    return known == known_.end() ? nullptr : &known->second;
}

const store::AccountNeeds* AccountCells::Ask(std::string_view accountNumber) {
    if (accountNumber.empty()) return nullptr;
    if (const store::AccountNeeds* known = IfKnown(accountNumber)) return known;
    const std::optional<store::AccountNeeds> needs = store::ReadAccountNeeds(accountNumber);
    if (!needs) return nullptr;
    const store::AccountNeeds* kept = &known_.emplace(accountNumber, *needs).first->second;
    if (learned_) learned_();
    return kept;
}

void AccountCells::AskOfLines(const EntryGrid& grid, int rowCount) {
    std::vector<std::string> numbers;
    for (int row = 1; row <= rowCount; ++row) {
        const std::string_view number = AccountOf(grid, row);
        if (number.empty() || known_.contains(number) || asked_.contains(number)) continue;
        asked_.emplace(number);
        numbers.emplace_back(number);
    }
    if (numbers.empty()) return;
    const std::size_t before = known_.size();
    known_.merge(store::ReadNeedsOfAccounts(numbers));
    if (known_.size() != before && learned_) learned_();
}

bool AccountCells::IsPassedBy(const EntryGrid& grid, const CellAddress& cell) {
    const bool name = cell.column == column::kAccountName;
    if (!name && !grid.Text(cell.row, cell.column).empty()) return false;
    // Who needs nothing has no use for any cell that an account may do without.
    if (!name && HasUse(store::AccountNeeds(), grid, cell)) return false;
    const store::AccountNeeds* needs = Ask(AccountOf(grid, cell.row));
    return needs != nullptr && (name || !HasUse(*needs, grid, cell));
}

std::string AccountCells::MissingText(const EntryGrid& grid, const CellAddress& cell) const {
    if (cell.column != column::kItems && cell.column != column::kSettleName) return {};
    if (!system::TrimBlanks(grid.Text(cell.row, cell.column)).empty()) return {};
    const store::AccountNeeds* needs = IfKnown(AccountOf(grid, cell.row));
    if (needs == nullptr || !HasUse(*needs, grid, cell)) return {};
    return cell.column == column::kItems ? "科目核算项目，尚未录入" : "银行科目的结算方式尚未录入";
}

}  // namespace vicenter::center
