#pragma once

// Texts of the account set in answers of one line an entry, tabs between the fields: what would end the line
// or the field for the program that reads it, or is unseen, is written as in a string of JSON ("\\n", "\\t").
// Documents of --json hold the texts themselves. Stateless.

#include <string>
#include <string_view>

namespace vicenter::host {

std::string OneLine(std::string_view given);

}  // namespace vicenter::host
