#pragma once

// What stands in a folder under a name. Nobody joins a path with another one of PathFromUtf8(): on Windows
// that makes a path in the current folder of a long name, and what is joined may be long where its parts are
// not.

#include "platform/system/files.h"

namespace vicenter::system {

inline std::filesystem::path PathIn(const std::filesystem::path& folder, std::string_view name) {
    const std::u8string plain(name.begin(), name.end());
#ifdef _WIN32
    return PathFromUtf8(PathToUtf8(folder / plain));
#else
    return folder / plain;
#endif
}

}  // namespace vicenter::system
