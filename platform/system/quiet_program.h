#pragma once

// Programs of the command line for somebody who has no console: on Windows one comes up otherwise. There
// alone.

#include <optional>
#include <string>
#include <vector>

namespace vicenter::system {

struct QuietRun {
    int code = 0;
    std::string said;  // on its error output, in UTF-8
};

// Starts a program that stands beside the running one, lets its windows come before others and waits for its
// end. Nothing when it cannot be started.
std::optional<QuietRun> RunQuietly(const std::string& name, const std::vector<std::string>& arguments);

// In a box of the system's own; returns when it is closed.
void ShowProblem(const std::string& title, const std::string& text);

}  // namespace vicenter::system
