#pragma once

// The error that a member of the component kept to itself: some answer no object or false where something
// failed, and no more. Whoever called may still ask why. User-interface thread.

#include <optional>

#include "automation/error.h"

namespace vicenter::entry {

void KeepError(const automation::Error& error);
// The last one since the last call of this; none when nothing was kept.
std::optional<automation::Error> TakeKeptError();

}  // namespace vicenter::entry
