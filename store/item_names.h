#pragma once

// What the codes of an items text stand for. Read only.

#include <string>
#include <string_view>

namespace vicenter::store {

// Class, code and name of each item, a line for each; a code that nobody knows stands alone. Empty when the
// account carries no items or nothing could be read.
std::string ItemNames(std::string_view accountNumber, std::string_view items);

}  // namespace vicenter::store
