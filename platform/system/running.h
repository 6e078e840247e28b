#pragma once

// Whether a process is still there.

#include <cstdint>
#include <string>

namespace vicenter::system {

// A text that a running process has to itself for as long as it runs, so that a later process of the same
// number is told from it; empty when no such process runs.
std::string ProcessMark(std::int32_t processId);

}  // namespace vicenter::system
