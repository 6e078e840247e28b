#pragma once

// The five checks of a row against master data, and the colours that follow from them.
//
// A CellChecks remembers its answers for its own lifetime, which is one load or one command: within it the
// same question goes to the database once, and nothing outlives it. User-interface thread.

#include <array>
#include <string>
#include <unordered_map>
#include <vector>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

inline constexpr int kCheckCount = 5;  // 1 account, 2 settlement, 3 currency, 4 unit, 5 items

// The check that speaks about a column, 0 for none.
int CheckOfColumn(int gridColumn);

// What the column itself says of a cell's text, whoever put it there: refused when it was given, or a number
// outside of the column's limits. Needs no database.
TextVerdict OwnVerdict(const EntryGrid& grid, const CellAddress& cell);
// Code and name of an account are red together, for one reason: the name then counts with its code wherever
// faults are counted or told one by one.
bool IsRedWithItsCode(const EntryGrid& grid, const CellAddress& cell);
// Colours one cell by its own verdict; what its check has found stays.
void MarkOwnVerdict(EntryGrid& grid, const CellAddress& cell);

class CellChecks {
  public:
    bool IsValid(const EntryGrid& grid, int row, int check);
    // Asks what the checks of these rows will ask, side by side where that pays.
    void AskAhead(const EntryGrid& grid, const std::vector<int>& rows);

  private:
    // False when no question is to be asked; key_ is the question's own then.
    bool Asks(const EntryGrid& grid, int row, int check);
    static bool Ask(const EntryGrid& grid, int row, int check);

    std::array<std::unordered_map<std::string, bool>, kCheckCount + 1> answers_;
    std::string key_;
};

// Colours one row: all black, then the cells of every failed check red and those that their columns do not
// take.
void MarkRow(EntryGrid& grid, int row, CellChecks& checks);
void MarkRows(EntryGrid& grid, int firstRow, int lastRow, CellChecks& checks);
void MarkRows(EntryGrid& grid, const std::vector<int>& rows, CellChecks& checks);
// Colours the cells of one check.
void MarkCells(EntryGrid& grid, int row, int check, CellChecks& checks);

}  // namespace vicenter::center
