#pragma once

// Typed codes against master data: what leaving a cell writes into its row. Needs no window.

#include <string>
#include <unordered_map>

#include "center/grid/entry_grid.h"
#include "platform/ado/recordset.h"

namespace vicenter::center {

// Master records by column and typed number. Remembers its answers for its own lifetime, one command.
class MasterRecords {
  public:
    // The matching record as the current one, or no recordset.
    const ado::RecordsetRef& Find(int gridColumn, const std::string& number);

  private:
    std::unordered_map<std::string, ado::RecordsetRef> records_;
};

// Resolves the typed content of one cell by its column: the text may become a name, and the columns that
// depend on it are filled or cleared. A code that is not found changes nothing.
void ResolveCell(EntryGrid& grid, const CellAddress& cell, MasterRecords& records);

// The columns that ResolveCell asks the database about.
bool IsLookUpColumn(int gridColumn);

}  // namespace vicenter::center
