#pragma once

// Object handles of the C interface, and how many of them and of the hosts' instances are held.
// User-interface thread.
//
// A handle is no address but a number: the place of its entry and how often that place has been used. A
// handle that has been given back is therefore known as such for ever, also when its place serves another
// object.

#include <cstddef>

#include "automation/object.h"
#include "front/include/vicenter/vicenter.h"

namespace vicenter::front {

// A new handle with one share; none for no object.
vic_object* NewHandle(automation::ObjectRef object);
// VIC_ERROR_RELEASED unless the handle holds an object.
const automation::ObjectRef& ObjectOf(const vic_object* handle);
// One more share; VIC_ERROR_RELEASED as above.
void Retain(vic_object* handle);
// One share less; no handle is allowed. False when there was none left to give back.
bool Release(vic_object* handle) noexcept;

// Handles and instances alive.
std::size_t& LiveObjects();

}  // namespace vicenter::front
