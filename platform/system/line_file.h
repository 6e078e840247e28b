#pragma once

// A file of lines that several processes add to at once, none ever taken away: where a line stands says which
// it is. Any thread; failures are automation::Error with a text for users.

#include <functional>
#include <string>
#include <string_view>

namespace vicenter::system {

// Calls back with each line and its place, from 0, until told that it is enough (false). A line without an
// end is left out: somebody is writing it, or broke off. A file that is not there has none.
void ForEachLine(const std::string& file, const std::function<bool(std::string_view, std::size_t)>& take);

// Adds a line, which is on the disk when this comes back. Where it stands, the file tells.
void AddLine(const std::string& file, std::string_view line);

}  // namespace vicenter::system
