#pragma once

// The templates that the demo users start with, from host/demo/templates.tsv.

#include "host/demo_master.h"
#include "host/sql_writer.h"

namespace vicenter::host {

// Templates with their lines and control rows; pro_VchTpCanUsed runs on each.
void WriteDemoTemplates(const DemoMaster& master, SqlWriter& writer);

}  // namespace vicenter::host
