#pragma once

// Opens windows for the component, whatever window system there is.
//
// A window system registers one factory for the process; without one the component has no windows to show.
// User-interface thread.

#include <memory>

namespace vicenter::entry {

class WindowFactory {
  public:
    virtual ~WindowFactory() = default;

    // Creates a new template center window and shows it modeless, without an owner; returns at once. The
    // window owns itself until it is closed. Throws automation::Error when it cannot be created or shown.
    virtual void OpenVICenter() = 0;

    // The factory of the process; none when no window system is there.
    static std::shared_ptr<WindowFactory> Process();
    static void SetProcess(std::shared_ptr<WindowFactory> factory);
};

}  // namespace vicenter::entry
