#pragma once

// The classes that hosts create by ProgID through COM, each with its number and that of its interface in the
// type library. A number is never given to another class.

#include <span>

#include "platform/com/dispatch_object.h"

namespace vicenter::front {

struct PublicClass {
    const char* progId;
    const wchar_t* description;
    CLSID id;
};

std::span<const PublicClass> PublicClasses();
// None for a class that is not ours.
const PublicClass* FindPublicClass(REFCLSID id);
// What early-bound hosts ask their objects for.
std::span<const com::EarlyInterface> PublicInterfaces();

}  // namespace vicenter::front
