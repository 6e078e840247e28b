#pragma once

// Paths between UTF-8 texts and the file system's own form.

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace vicenter::system {

#ifdef _WIN32
// Windows takes paths of more than 260 characters only in their long form, `\\?\C:\folder\file`: that is what
// long ones are in a std::filesystem::path, and never in a text.
std::filesystem::path PathFromUtf8(std::string_view text);
std::string PathToUtf8(const std::filesystem::path& path);
#else
inline std::filesystem::path PathFromUtf8(std::string_view text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline std::string PathToUtf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}
#endif

}  // namespace vicenter::system
