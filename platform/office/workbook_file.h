#pragma once

// Workbooks from and to files of both kinds. The content decides how a file is read, not its extension; the
// caller says how it is written. Failures are automation::Error with a text for users.

#include <memory>
#include <string>

#include "platform/office/workbook.h"

namespace vicenter::office {

enum class FileKind { Xls, Xlsx };

// `kind`, when given, gets what the content turned out to be.
std::unique_ptr<Workbook> ReadWorkbook(const std::string& fileName, FileKind* kind = nullptr);
// An existing file keeps its content when writing fails.
void WriteWorkbook(const Workbook& workbook, const std::string& fileName, FileKind kind);

}  // namespace vicenter::office
