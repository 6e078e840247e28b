#pragma once

// Reads an ".xls" file (BIFF8 records in a compound file) into a workbook: values and number formats of every
// worksheet, in the file's order. Formula results are taken as stored; those that their writer left out are
// calculated.

#include <memory>
#include <string>

#include "platform/office/workbook.h"

namespace vicenter::office {

// Throws automation::Error for a file that is no readable workbook.
std::unique_ptr<Workbook> ReadXls(const std::string& fileName);

}  // namespace vicenter::office
