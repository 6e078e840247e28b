#pragma once

// Import of a template workbook: every row is checked before anything is written, then one batch writes all.
// Late bound throughout: nothing here knows which server reads the workbook. User-interface thread only.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/exchange_target.h"
#include "exchange/import_outcome.h"

namespace vicenter::exchange {

// The command's choice of files, several where the window system's dialog can. Nothing, and told in outcome,
// when no server is installed. Errors pass.
std::optional<std::vector<std::string>> ChooseWorkbooks(ImportOutcome& outcome);

// The import command on a file that is already chosen (command line, drag and drop): the check for an
// installed server, the file's kind, the question before an existing template is replaced, then the import.
// tidily: rows above the header, blank rows between lines and blank columns are passed over instead of
// refused.
ImportOutcome ImportTemplateFile(ExchangeTarget& window, const std::string& fileName, bool tidily = false);

// Imports the workbook as the template `name`, replacing the one with id existingId, or as a new one for -1.
// Failures are told to the user, never thrown; the reason of one that the fixed words do not name is logged.
ImportOutcome ImportTemplateWorkbook(ExchangeTarget& window, const std::string& fileName,
                                     std::int32_t existingId, const std::string& name, bool tidily = false);

}  // namespace vicenter::exchange
