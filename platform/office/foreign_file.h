#pragma once

// Files that bear a workbook's name and are none: what they are instead, in a text for users that says what
// to do.

#include <string>
#include <string_view>

namespace vicenter::office {

// Enough of a file's beginning for WhyNoWorkbook().
inline constexpr std::size_t kHeadBytes = 4096;

// head: the file's first bytes, which are neither a package's nor a compound file's.
std::string WhyNoWorkbook(std::string_view head);

// All throw automation::Error with what the file is and, where that helps, what to do.
// A workbook of a kind that nobody reads here.
[[noreturn]] void FailForeignKind(const std::string& what);
// No workbook at all.
[[noreturn]] void FailOtherDocument(const std::string& what);
[[noreturn]] void FailEncrypted();
[[noreturn]] void FailOldVersion();
// The file ends before it should.
[[noreturn]] void FailTruncated();

}  // namespace vicenter::office
