#pragma once

// What FileRequest::flags may hold: the numbers of the common dialog.

#include <cstdint>

namespace vicenter::system::file_dialog {

inline constexpr std::uint32_t kReadOnlyTicked = 0x1;
inline constexpr std::uint32_t kOverwritePrompt = 0x2;
inline constexpr std::uint32_t kHideReadOnly = 0x4;
inline constexpr std::uint32_t kPathMustExist = 0x800;
inline constexpr std::uint32_t kFileMustExist = 0x1000;
inline constexpr std::uint32_t kExplorerStyle = 0x80000;

// A file to write to, which may be there.
inline constexpr std::uint32_t kForSaving =
    kExplorerStyle | kPathMustExist | kHideReadOnly | kOverwritePrompt;

}  // namespace vicenter::system::file_dialog
