#pragma once

// Export of the open template to a workbook, through whatever Excel automation server the host has.
// Late bound throughout: nothing here knows which server answers. User-interface thread only.

#include <cstdint>
#include <string>

#include "exchange/exchange_target.h"

namespace vicenter::exchange {

// What became of an export.
struct ExportOutcome {
    bool written = false;
    // Why the save routine wrote nothing, or the target was refused. The routines themselves are silent about
    // it; empty when they have spoken, or the user has cancelled.
    std::string untold = {};
    std::string file = {};  // that was written

    explicit operator bool() const { return written; }
};

// The export command: asks for a file name, then writes. Shows its own messages, never throws.
ExportOutcome ExportTemplate(ExchangeTarget& window);

// What the command leaves unsaid, said and logged afterwards.
void TellUnwritten(const ExchangeTarget& window, const ExportOutcome& outcome);
// The log entry alone, where it is said in another way.
void LogUnwritten(const ExchangeTarget& window);

// The export command on a file name that is already chosen (command line, drag and drop): the checks for an
// open template and an installed server, then as the command from the chosen name on.
ExportOutcome ExportTemplateTo(ExchangeTarget& window, const std::string& fileName);

// Builds and saves the workbook. With interactive set it shows the progress panel and the messages.
// A failure while building is told to the user and logged, never thrown.
ExportOutcome WriteTemplateWorkbook(ExchangeTarget& window, const std::string& fileName, bool interactive);

}  // namespace vicenter::exchange
