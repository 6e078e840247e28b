#pragma once

// A cell's value as text, as one would read it off the sheet and type it again.

#include <string>

#include "platform/office/workbook.h"

namespace vicenter::office {

// Texts as they are; numbers without exponent as far as that stays readable; dates as "YYYY-MM-DD[
// hh:mm:ss]"; "TRUE" and "FALSE"; error values by their names; the empty text for a blank cell. A number
// format of zeros alone
// ("0000") pads as it does on the sheet.
std::string CellText(const Workbook& workbook, const Cell& cell);

// As it is shown: numbers whose format has thousands separators or a fixed count of decimals ("#,##0.00")
// come with them, everything else as CellText().
std::string ShownText(const Workbook& workbook, const Cell& cell);

// A number as one would type it: digits that read back as the same number.
std::string NumberAsTyped(double value);

}  // namespace vicenter::office
