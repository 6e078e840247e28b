#pragma once

// The two routines for statements that a window builds itself: each runs on a fresh clsVIData.

#include <string>

#include "platform/ado/recordset.h"

namespace vicenter::store {

// The rows, or no recordset on an error.
ado::RecordsetRef GetRecordset(const std::string& sql);
// True when the batch ran; an error has been shown to the user.
bool RunSql(const std::string& sql);

}  // namespace vicenter::store
