#pragma once

// Gives back values that own values that own values, however long the chain.
//
// A destructor that lets go of a value runs the destructor of what it owned, and so on: some hundred thousand
// links are more than a stack holds. What holds values therefore empties them by Release(), which goes down
// only so far and keeps the rest for the outermost call.

#include "automation/variant.h"

namespace vicenter::automation {

// Leaves no object and no array in the value. Never throws.
void Release(Variant& value) noexcept;

}  // namespace vicenter::automation
