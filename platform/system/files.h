#pragma once

// Paths between UTF-8 texts and the file system's own form.

#include <filesystem>
#include <string>
#include <string_view>

namespace vicenter::system {

inline std::filesystem::path PathFromUtf8(std::string_view text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline std::string PathToUtf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

}  // namespace vicenter::system
