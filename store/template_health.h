#pragma once

// Whether the template tables of an account set hang together.

#include <string>
#include <vector>

#include "platform/ado/connection.h"

namespace vicenter::store {

// What does not, for users: lines and control rows of templates that are gone, control rows without lines,
// ids and names that stand twice, owners that are no users. Throws what the connection throws.
std::vector<std::string> FindTemplateFaults(ado::Connection& connection);

}  // namespace vicenter::store
