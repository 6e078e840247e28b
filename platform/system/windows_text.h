#pragma once

// The system's own header, and texts between UTF-8 and its form. Not for callers outside this folder.

#include <string>
#include <string_view>
#include <vector>

#include "platform/system/files.h"
#include "platform/system/utf8.h"

#ifndef NOMINMAX
#define NOMINMAX  // the header's min and max are macros
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
// The others need the first one.
// clang-format off
#include <windows.h>
#include <bcrypt.h>
#include <shellapi.h>
#include <shlobj.h>
// clang-format on

namespace vicenter::system::os {

inline std::wstring Wide(std::string_view text) {
    const std::u16string units = ToUtf16(text);
    return std::wstring(units.begin(), units.end());
}

inline std::string Narrow(std::wstring_view text) {
    return FromUtf16(std::u16string(text.begin(), text.end()));
}

// A path as the calls of the system take it, of any length.
inline std::wstring WidePath(std::string_view path) {
    return PathFromUtf8(path).native();
}

// A command line that every program's start-up code takes apart into these words again.
std::wstring CommandLine(const std::vector<std::string>& words);

}  // namespace vicenter::system::os
