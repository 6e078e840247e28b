#pragma once

// vicenter export --empty: a workbook to start from, with the headers of a template, drop-downs of what the
// account set has, and a note on each column.

#include "host/cli/context.h"

namespace vicenter::host {

int RunExportEmpty(const CliContext& context);

}  // namespace vicenter::host
