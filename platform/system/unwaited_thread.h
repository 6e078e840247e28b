#pragma once

// Threads that may outlive whoever started them. The library that holds this code stays loaded from the first
// one on, since nobody can wait for a thread while a library is unloaded.

#include <functional>
#include <thread>

namespace vicenter::system {

// Throws std::system_error where there is no thread to be had.
std::thread StartUnwaited(std::function<void()> work);

}  // namespace vicenter::system
