#pragma once

// Memory that is refused at a point of a test's choosing. refused_memory.cpp, linked into a program, stands
// between all of it and the allocator. One thread.

namespace vicenter::fakes::memory {

// Requests that are still granted; below 0 all are. From then on so many are refused.
inline long granted = -1;
inline long refusals = 1;
inline bool refused = false;

// Whether the next request is.
bool Refuses();

}  // namespace vicenter::fakes::memory
