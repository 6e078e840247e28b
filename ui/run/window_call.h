#pragma once

// A call from Qt into the component, or a loop of a box or a menu that stands on a window.
//
// Whoever is called may call the host, and the host may do anything meanwhile, close the windows among it. As
// long as one of these is on the stack no window is deleted and none unloads: it is out of sight at once, and
// what is left of it ends behind the outermost call. User-interface thread only.

#include <QObject>
#include <functional>

namespace vicenter::ui {

class WindowCall {
  public:
    WindowCall() noexcept { ++depth_; }
    WindowCall(const WindowCall&) = delete;
    WindowCall& operator=(const WindowCall&) = delete;
    ~WindowCall() {
        if (--depth_ == 0) RunPutOff();
    }

    static bool IsUnderWay() { return depth_ != 0; }
    // Behind the outermost call, or at once when none is under way; never for an object that is gone by then.
    // The work throws nothing.
    static void Afterwards(QObject& whose, std::function<void()> work);

  private:
    static void RunPutOff();

    static inline int depth_ = 0;
};

// Deletes what waits for the event loop to do so, closed windows among it, for programs that only pump
// events. Does nothing while a call is under way.
void DeleteClosed();

}  // namespace vicenter::ui
