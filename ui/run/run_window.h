#pragma once

// Runs the component's windows in a program of their own: an application set up for them, the machine's
// services on Qt, a window factory and the event loop, for the length of the call. Called once from main's
// thread.

#include <functional>
#include <memory>

#include "center/frame/template_commands.h"

namespace vicenter::ui {

struct WindowRun {
    // Opens the first window, as a host does: by ShowVICenter of the component's public class.
    std::function<void()> open;
    // The commands that live in other folders; none: those tools do nothing.
    std::shared_ptr<center::TemplateCommands> commands;
    // Called once the application is there and before the first window, for whatever needs one.
    std::function<void()> prepare;
    // In place of opening a window and waiting for the user: does both, and returns the exit code.
    std::function<int()> drive;
};

// Opens the window and runs until the last one is closed. Returns the exit code. Throws what opening throws.
int RunWindow(int argc, char** argv, const WindowRun& run);

}  // namespace vicenter::ui
