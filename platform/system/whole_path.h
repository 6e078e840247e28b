#pragma once

// std::filesystem::absolute() for the paths of files.h. Nobody calls that itself: of a path in Windows' long
// form it makes another one.

#include <utility>

#include "platform/system/files.h"

namespace vicenter::system {

inline std::filesystem::path WholePath(const std::filesystem::path& path, std::error_code& failed) {
#ifdef _WIN32
    if (path.native().starts_with(L"\\\\?\\")) return path;
#endif
    return std::filesystem::absolute(path, failed);
}

// The file that a path's links lead to, as a whole path; of links that lead nowhere, the first one's own.
inline std::filesystem::path FileBehindLinks(const std::filesystem::path& path, std::error_code& failed) {
    std::filesystem::path file = WholePath(path, failed);
    std::error_code none;
    if (failed || !std::filesystem::is_symlink(std::filesystem::symlink_status(file, none))) return file;
    std::filesystem::path behind = std::filesystem::canonical(file, none);
    return none ? std::move(file) : std::move(behind);
}

}  // namespace vicenter::system
