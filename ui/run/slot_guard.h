#pragma once

// The edge between the component and Qt's event loop: no exception ever crosses Qt.
//
// Every slot, event handler and virtual that Qt calls runs the component's code inside Guarded(). A failure
// that reaches this edge is told to the user in a message box, and the window stays usable. What is called
// may close the windows: each call is a WindowCall. User-interface thread only.

#include <exception>
#include <utility>

#include "ui/run/window_call.h"

namespace vicenter::ui {

// Shows a failure in the suite's message box; never throws. Failures that come up while another one is being
// shown are dropped, so that a failing repaint cannot pile up boxes.
void ReportFailure(const std::exception_ptr& failure) noexcept;

template <class Action>
void Guarded(Action&& action) noexcept {
    const WindowCall call;
    try {
        std::forward<Action>(action)();
    } catch (...) {
        ReportFailure(std::current_exception());
    }
}

// As Guarded, with a result; `otherwise` is returned after a failure.
template <class Result, class Action>
Result GuardedOr(Result otherwise, Action&& action) noexcept {
    const WindowCall call;
    try {
        return std::forward<Action>(action)();
    } catch (...) {
        ReportFailure(std::current_exception());
    }
    return otherwise;
}

}  // namespace vicenter::ui
