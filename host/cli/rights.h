#pragma once

// The right to change templates, for the commands that need it.

namespace vicenter::host {

// As the window asks when it is loaded. A user without the right is told so.
bool CheckRight();

}  // namespace vicenter::host
