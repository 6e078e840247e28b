#pragma once

// The checks of an import that need no workbook: headers and single cells. Pure functions.

#include <cstdint>
#include <string>
#include <string_view>

#include "exchange/template_columns.h"

namespace vicenter::exchange {

// Appends the field of that header to fieldList (names joined by ","), or an error line to errorText. `seen`
// holds the headers of the columns before, each followed by "|", behind a first "|". Whether the header was
// accepted.
bool MapImportHeader(std::string_view header, std::string& errorText, std::string_view seen,
                     std::int32_t column, std::string& fieldList);

// Appends every required header that is not in `seen` to `missing`, joined by ",". Whether all were found.
bool CheckRequiredColumns(std::string_view seen, std::string& missing);

// Why the text may not stand in a cell of that type, for lists of faults; the empty text when it may.
std::string WhyNotInCell(std::string_view text, CellType type, bool required);
// Why no account set could hold what the cell means: a text too long, a number too large for its field. The
// empty text when it can, or when the cell's type refuses the text anyway.
std::string WhyNotStored(const TemplateColumn& column, std::string_view text);

// Whether the text may stand in a cell of that type.
bool CheckImportCell(std::string_view text, CellType type, bool required);

}  // namespace vicenter::exchange
