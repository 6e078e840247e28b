#pragma once

// Ctrl+C while something can be stopped by it.

#include <atomic>

namespace vicenter::system {

// For the length of a scope the first Ctrl+C calls a function instead of ending the process; a second one
// ends it. The function runs in the handler of a signal, or on a thread of the system's: it may do no more
// than set a mark. One scope at a time.
class InterruptKeyScope {
  public:
    using Function = void (*)(void* data);

    InterruptKeyScope(Function function, void* data);
    InterruptKeyScope(const InterruptKeyScope&) = delete;
    InterruptKeyScope& operator=(const InterruptKeyScope&) = delete;
    ~InterruptKeyScope();
};

}  // namespace vicenter::system
