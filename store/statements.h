#pragma once

// The one way to run a statement: each on a fresh clsVIData, whose GetRs and IsExecuteSql are for hosts. What
// a statement's text is, stands in store/ alone.

#include <string>

#include "platform/ado/recordset.h"

namespace vicenter::store {

// The rows, or no recordset on an error.
ado::RecordsetRef GetRecordset(const std::string& sql);
// True when the batch ran; an error has been shown to the user.
bool RunSql(const std::string& sql);

}  // namespace vicenter::store
