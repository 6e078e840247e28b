#pragma once

// Writes a workbook as an ".xls" file (BIFF8 records in a compound file).

#include <string>

#include "platform/office/workbook.h"

namespace vicenter::office {

// Throws automation::Error when a sheet has more rows or columns than the kind allows, or when the file
// cannot be written; what was begun is left for the caller to remove.
void WriteXls(const Workbook& workbook, const std::string& fileName);

}  // namespace vicenter::office
