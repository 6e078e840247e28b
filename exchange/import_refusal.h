#pragma once

// The two ways in which the reading of a workbook ends early. Thrown, and caught by the command that reads.

#include <string>
#include <vector>

#include "entry/message_box.h"
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

}  // namespace vicenter::exchange
