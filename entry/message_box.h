#pragma once

// What the component says to its user in a box of its own. Modal to the process; whoever shows it is
// system::Surroundings' choice. User-interface thread.

#include <string>

#include "platform/system/surroundings.h"

namespace vicenter::entry {

inline constexpr const char* kMessageTitle = "信息提示";
// The title that the exchange commands use for some of theirs.
inline constexpr const char* kProductTitle = "Orbis提示";

void Tell(const std::string& text, const char* title = kMessageTitle);
system::MessageResult Ask(const std::string& text, system::MessageButtons buttons);

}  // namespace vicenter::entry
