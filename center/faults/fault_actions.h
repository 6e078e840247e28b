#pragma once

// What the list of faults asks of the rules behind it. Rows and columns count from 1. User-interface thread
// only.

#include <cstddef>
#include <string>
#include <vector>

#include "center/faults/fault_list.h"
#include "center/faults/reported_faults.h"

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

    // --- of lines that are in no grid
    virtual const std::vector<ReportedFault>& Reported() = 0;
    // Where it can be mended: opens the workbook, or the template of that name; the user is told when it is
    // not there.
    virtual void OpenReported(const ReportedFault& fault) = 0;
    // A copy of that workbook with its faulty cells marked, under a name that the user gives.
    virtual void SaveMarkedCopy(const std::string& workbook) = 0;
    // The import of that workbook once more, without the rows above its header and blank rows.
    virtual void ImportTidily(const std::string& workbook) = 0;
    // Off the list; places in Reported().
    virtual void DropReported(const std::vector<std::size_t>& places) = 0;
};

}  // namespace vicenter::center
