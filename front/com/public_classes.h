#pragma once

// The classes that hosts create by ProgID through COM, each with its number. A number is never given to
// another class.

#include <span>

#include "platform/com/com_headers.h"

namespace vicenter::front {

struct PublicClass {
    const char* progId;
    const wchar_t* description;
    CLSID id;
};

std::span<const PublicClass> PublicClasses();
// None for a class that is not ours.
const PublicClass* FindPublicClass(REFCLSID id);

}  // namespace vicenter::front
