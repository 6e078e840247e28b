#pragma once

// Widths of columns that fit their contents, in characters of the standard font. A Chinese character counts
// two.

#include <cstdint>
#include <string_view>

#include "platform/office/workbook.h"

namespace vicenter::office {

// Character cells of the widest line of the text.
std::size_t DisplayWidth(std::string_view text);

// Sets the widths of the columns first to last; a column without values keeps its width.
void AutoFitColumns(const Workbook& workbook, Sheet& sheet, std::uint32_t first, std::uint32_t last);

}  // namespace vicenter::office
