#pragma once

// std::filesystem::absolute() for the paths of files.h. Nobody calls that itself: of a path in Windows' long
// form it makes another one.

#include "platform/system/files.h"

namespace vicenter::system {

inline std::filesystem::path WholePath(const std::filesystem::path& path, std::error_code& failed) {
#ifdef _WIN32
    if (path.native().starts_with(L"\\\\?\\")) return path;
#endif
    return std::filesystem::absolute(path, failed);
}

}  // namespace vicenter::system
