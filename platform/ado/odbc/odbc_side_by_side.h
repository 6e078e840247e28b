#pragma once

// Questions on several lines of the pool at once. Internal to this folder.

#include <string>
#include <vector>

#include "platform/ado/recordset.h"

namespace vicenter::ado {

// See SideBySideAsker. Throws automation::Error when the user has stopped it.
std::vector<RecordsetRef> AskOdbcSideBySide(const std::string& connectString, std::vector<std::string> texts);

}  // namespace vicenter::ado
