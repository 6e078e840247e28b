#pragma once

// The windows of the library's process, whatever window system it was built with (window_loop_qt.cpp, or
// window_loop_none.cpp without one). User-interface thread.

#include <cstddef>
#include <memory>

namespace vicenter::front {

class WindowLoop {
  public:
    WindowLoop() = default;
    WindowLoop(const WindowLoop&) = delete;
    WindowLoop& operator=(const WindowLoop&) = delete;
    virtual ~WindowLoop() = default;  // deletes the windows that are left

    // Handles the events that are due, or waits so long for the next. Error 429 without a window system.
    virtual void Process(int milliseconds) = 0;
    // Until no window is open.
    virtual void Run() = 0;
    virtual std::size_t OpenWindows() const = 0;
    // Asks every window to close.
    virtual void CloseAll() = 0;
    // Events are being handled, or a window is on the stack: the windows and what they stand on must stay.
    virtual bool IsUnderWay() const = 0;

    static std::unique_ptr<WindowLoop> Create();
};

}  // namespace vicenter::front
