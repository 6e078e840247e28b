#pragma once

// The withdrawn upload of an exported workbook to the user's cloud drive. The command only says so; the two
// procedures stay complete, so that it can be switched back to them. User-interface thread only.

#include <string>

#include "automation/variant.h"

namespace vicenter::exchange {

// The upload command: tells that the function is withdrawn.
void UploadTemplateCommand();

// Uploads a local file under the given name and records it; resultText gets "success" or what went wrong.
// Not called by any command.
void UploadTemplateFile(const std::string& filePath, const std::string& fileName, std::string& resultText);

// Stores the record of an uploaded file through the host. Not called otherwise.
void RecordUploadedFile(const automation::ObjectRef& result);

}  // namespace vicenter::exchange
