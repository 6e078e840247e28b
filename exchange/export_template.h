#pragma once

// Export of the open template to a workbook, through whatever Excel automation server the host has.
// Late bound throughout: nothing here knows which server answers. User-interface thread only.

#include <cstdint>
#include <string>

#include "exchange/template_window.h"

namespace vicenter::exchange {

// The export command: asks for a file name, then writes. Shows its own messages, never throws.
void ExportTemplate(TemplateWindow& window);

// The export command on a file name that is already chosen (command line, drag and drop): the checks for an
// open template and an installed server, then as the command from the removal of an existing file on. True
// when the workbook was written.
bool ExportTemplateTo(TemplateWindow& window, const std::string& fileName);

// Builds and saves the workbook. With interactive set it shows the progress panel and the messages.
// True when the workbook was written; a failure is told to the user and logged, never thrown.
bool WriteTemplateWorkbook(TemplateWindow& window, const std::string& fileName, bool interactive);

}  // namespace vicenter::exchange
