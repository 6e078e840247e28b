#pragma once

// From a workbook's file to the batch of its import: the copy, the sheet, the header and the rows, every one
// of them checked before anything is written. Late bound throughout. User-interface thread only.

#include <cstdint>
#include <string>
#include <vector>

#include "entry/sql_text.h"
#include "exchange/exchange_target.h"
#include "exchange/import_outcome.h"

namespace vicenter::exchange {

// Ends an import with a message; nothing has been written.
struct Refused {
    std::string text;
    std::vector<LineFault> faults = {};
    const char* title = entry::kProductTitle;
};
// The user's wish to stop; not an error.
struct Cancelled {};

struct ImportBatch {
    std::string text;
    std::int32_t lines = 0;
};

// Throws Refused, Cancelled, or automation::Error for a file that cannot be read, its reason as the text.
ImportBatch ReadTemplateWorkbook(ExchangeTarget& window, const std::string& fileName, std::int32_t existingId,
                                 const std::string& name);

}  // namespace vicenter::exchange
