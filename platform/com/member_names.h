#pragma once

// The dispatch ids of late-bound members: one number for each name of the process, whatever object has it, as
// long as the process lives. Names are compared without case.

#include <span>
#include <string>
#include <string_view>

#include "platform/com/com_headers.h"

namespace vicenter::com {

// DISPID_VALUE for the empty name, which is the default member's.
DISPID MemberNumber(std::string_view name);
// Gives these names the numbers from 1 on, before any other name has one: those that clients were compiled
// against. Does nothing from the second time on.
void ReserveMemberNumbers(std::span<const char* const> names);
// Empty for DISPID_VALUE and for a number that was never given.
std::string MemberNameOf(DISPID number);

}  // namespace vicenter::com
