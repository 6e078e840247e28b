#pragma once

// Texts that a database's code page does not have.
//
// The component's literals carry no N, so that the server reads them in the database's code page and puts a
// question mark for what the page lacks. A literal with such characters gets its N where the column takes
// Unicode or where nothing is stored; anywhere else the batch is refused before it is sent.

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/system/code_page.h"

namespace vicenter::ado {

// Whether a column takes Unicode; nothing when there is no such column. An empty column asks whether every
// text column of the table does.
using UnicodeColumn = std::function<std::optional<bool>(const std::string& table, const std::string& column)>;

// The batch with its marks. Throws automation::Error naming character, field and row.
std::string WithNationalMarks(std::string_view batch, const system::CodePage& page, int pageNumber,
                              const UnicodeColumn& column);

}  // namespace vicenter::ado
