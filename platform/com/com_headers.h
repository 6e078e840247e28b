#pragma once

// The system's headers for COM. Not for callers outside of the folders that speak it.

#include "platform/system/windows_text.h"

// clang-format off
#include <ole2.h>
#include <oleauto.h>
#include <dispex.h>
// clang-format on

// Interfaces have no virtual destructor: they are released, never deleted.
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
