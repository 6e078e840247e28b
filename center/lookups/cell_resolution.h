#pragma once

// Codes against master data: what leaving a cell writes into its row. Needs no window.

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "center/editing/cell_rules.h"
#include "center/grid/entry_grid.h"
#include "platform/ado/recordset.h"

namespace vicenter::center {

// What the account set says of a typed number. One that could not be read is not one that nobody knows.
struct MasterAnswer {
    bool wasRead = false;
    ado::RecordsetRef record;  // the matching record as the current one; none when there is none
};

// A typed number and the column that it stands in.
struct TypedCode {
    int gridColumn = 0;
    std::string number;
};
// What ResolveCell asks about a text of that column; nothing where it asks nothing.
std::optional<TypedCode> CodeIn(int gridColumn, std::string_view text);

// Master records by column and typed number. Remembers its answers for its own lifetime, one command.
class MasterRecords {
  public:
    const MasterAnswer& Find(int gridColumn, const std::string& number);
    // The record whose name stands there, when it is the only one of that name; a unit is one of the
    // account's.
    const MasterAnswer& FindNamed(int gridColumn, const std::string& name, const std::string& account);
    // Asks what Find will be asked, side by side where that pays.
    void AskAhead(const std::vector<TypedCode>& codes);

  private:
    static MasterAnswer Ask(int gridColumn, const std::string& number);

    std::unordered_map<std::string, MasterAnswer> answers_;
};

// "基础资料无法读取：" what, and why by the last statement that failed.
std::string UnreadableText(std::string_view what);

enum class Resolution { Done, Unreadable };

// Resolves the typed content of one cell by its column: the text may become a name, and the columns that
// depend on it are filled or cleared. A code that is not found changes nothing, nor does one that could not
// be read.
Resolution ResolveCell(EntryGrid& grid, const CellAddress& cell, MasterRecords& records);
// The same for a text that has just been typed or given: one that could not be read stays in its cell as
// NotLookedUp. What is given may come from where names stand for codes: it has the id of its name behind it,
// or none.
Resolution ResolveNew(EntryGrid& grid, const CellAddress& cell, MasterRecords& records, TextOrigin origin);

// Asks again about every text that is NotLookedUp, and about the rows' checks. The first cell whose id would
// be stored without having been read, or nothing.
std::optional<CellAddress> AskAgain(EntryGrid& grid, int rowCount);

// The columns that ResolveCell asks the database about.
bool IsLookUpColumn(int gridColumn);

}  // namespace vicenter::center
