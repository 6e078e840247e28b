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

// Whether the text may stand in a cell of that type.
bool CheckImportCell(std::string_view text, CellType type, bool required);

}  // namespace vicenter::exchange
