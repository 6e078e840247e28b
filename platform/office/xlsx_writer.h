#pragma once

// Writes a workbook as an ".xlsx" package. Numbers are written with as many digits as reading them back bit
// for bit takes (general writers stop at 16), texts once each, and a sheet goes to the file row by row.

#include <string>

#include "platform/office/workbook.h"

namespace vicenter::office {

// Throws automation::Error when the file cannot be written; what was begun is left for the caller to remove.
void WriteXlsx(const Workbook& workbook, const std::string& fileName);

// The styles part: one cell format for each format of the table, in its order.
std::string XlsxStyles(const FormatTable& formats);

}  // namespace vicenter::office
