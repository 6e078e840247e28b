#pragma once

// Whether a template still fits today's chart of accounts: every cell that the checks refuse, and what the
// checks let pass but somebody should look at. Reads the ledger's master data, changes nothing. Needs no
// window. User-interface thread.

#include <string>
#include <vector>

#include "center/grid/entry_grid.h"
#include "center/lookups/account_cells.h"

namespace vicenter::center {

struct TemplateFinding {
    enum class Kind {
        Fault,  // keeps its number from being used
        Hint,   // may be as meant
    };
    Kind kind = Kind::Fault;
    int row = 0;         // from 1; of a number as a whole, its first
    int column = 0;      // 0: the number as a whole
    std::string number;  // template number
    std::string value;
    std::string reason;
};

// Of many templates in turn: what has been asked of an account once is not asked again.
class TemplateCheck {
  public:
    // The lines of one template, loaded with their checks: what its cells show once it is open, and what
    // keeps it from being saved. Row by row; what is said of a number stands at its first row.
    std::vector<TemplateFinding> Check(const EntryGrid& grid, int rowCount);

  private:
    AccountCells accounts_;
};

}  // namespace vicenter::center
