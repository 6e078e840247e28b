#pragma once

// vicenter import --dry-run: what an import would change, told and not done.

#include "host/cli/context.h"
#include "host/cli/import_files.h"

namespace vicenter::host {

int RunImportPreview(const CliContext& context, const FilesToImport& files);

}  // namespace vicenter::host
