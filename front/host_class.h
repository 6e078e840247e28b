#pragma once

// Classes that a host makes of C functions, as objects of the inside. User-interface thread.

#include <string>

#include "automation/object.h"
#include "front/include/vicenter/vicenter.h"

namespace vicenter::front {

// A copy of a host's definition.
struct HostClass {
    std::string typeName;
    vic_class functions{};
};

// Error 5 for a definition that says nothing or is shorter than the first one ever was.
HostClass CopyOf(const vic_class* definition);

// Owns the instance: its release function is called at the end.
automation::ObjectRef WrapInstance(const HostClass& definition, void* instance);
// Makes an instance by the class's create function, whose error passes.
automation::ObjectRef CreateInstance(const HostClass& definition);

}  // namespace vicenter::front
