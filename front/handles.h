#pragma once

// Object handles of the C interface, and how many of them and of the hosts' instances are held.
// User-interface thread.

#include <cstddef>

#include "automation/object.h"
#include "front/include/vicenter/vicenter.h"

// One share of an object, counted by itself.
struct vic_object {
    vicenter::automation::ObjectRef object;
    std::size_t shares = 1;
};

namespace vicenter::front {

// A new handle with one share; none for no object.
vic_object* NewHandle(automation::ObjectRef object);
void Retain(vic_object* handle);
void Release(vic_object* handle);  // no handle is allowed

// Handles and instances alive.
std::size_t& LiveObjects();

}  // namespace vicenter::front
