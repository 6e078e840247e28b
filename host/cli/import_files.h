#pragma once

// The workbooks that an import on the command line is given: one, or those of a folder.

#include <string>
#include <vector>

#include "exchange/import_outcome.h"
#include "host/cli/json.h"

namespace vicenter::host {

struct FilesToImport {
    bool folder = false;
    std::vector<std::string> files;  // of a folder: in the order of their names
    int skipped = 0;                 // what only looks like a workbook: lock files and the like
};

// Throws automation::Error for a folder that cannot be read or holds no workbook.
FilesToImport FindFilesToImport(const std::string& given);

VariantArray FaultObjects(const std::vector<store::LineFault>& faults);
// "第 3 行 附件数 “x”：必须是整数"
std::string FaultSentence(const store::LineFault& fault);

}  // namespace vicenter::host
