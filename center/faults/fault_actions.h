#pragma once

// What the list of faults asks of the rules behind it. Rows and columns count from 1. User-interface thread
// only.

#include <vector>

#include "center/faults/fault_list.h"

namespace vicenter::center {

class FaultActions {
  public:
    virtual ~FaultActions() = default;
    // By rows, then columns.
    virtual std::vector<CellAddress> Cells() = 0;
    // Its value and the reason, which may take a question to the account set.
    virtual Fault Describe(const CellAddress& cell) = 0;
    // The cursor and the keyboard go there; a hidden column is shown.
    virtual void GoTo(const CellAddress& cell) = 0;
    // To the next faulty cell behind the cursor, or before it.
    virtual void GoToNext(bool back) = 0;
};

}  // namespace vicenter::center
