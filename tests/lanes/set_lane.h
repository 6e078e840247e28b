#pragma once

// Where the account set of a test stands: in its file, or on a server to which it was brought. Each lane is a
// source of its own, and a test program is linked with one of them.

#include <string>

namespace vicenter::lanes {

// The connect string of the account set that a file holds, for as long as the test runs.
std::string ConnectTextOf(const std::string& file);

// Whether it refuses in words that are not SQL Server's.
bool RefusesInOwnWords();

}  // namespace vicenter::lanes
