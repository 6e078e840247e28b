#pragma once

// Patterns as the vouchers that they make: explanation, account with what is kept of it, debit and credit.
// Stateless, on the texts of a grid; no database.

#include <functional>
#include <string>
#include <vector>

#include "center/grid/entry_grid.h"
#include "center/print/print_sheet.h"

namespace vicenter::center {

// The columns of every sheet: 摘要, 科目, 核算、外币、数量, 借方, 贷方.
std::vector<PrintColumn> SheetColumns();

// The rows of the grid with that number, as NumberOfRow knows it.
std::vector<int> RowsOfNumber(const EntryGrid& grid, int rowCount, std::string_view number);

// What a row's items are called on paper: codes with their names.
using ItemsText = std::function<std::string(const EntryGrid& grid, int row)>;

// One pattern: a row a line, the sums, and what does not balance.
PrintBlock VoucherBlock(const EntryGrid& grid, const std::vector<int>& rows, std::string_view number,
                        const ItemsText& items);

// All patterns of a template, in the order of their first lines.
std::vector<PrintBlock> VoucherBlocks(const EntryGrid& grid, int rowCount, const ItemsText& items);

}  // namespace vicenter::center
