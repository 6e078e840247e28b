#pragma once

// Named limits of workbooks, and the errors for crossing them.
//
// The first group is what the file kinds themselves allow; the second bounds what a file from elsewhere may
// make this process do. Every limit ends in an automation::Error with a text for users, never in exhausted
// memory.

#include <cstddef>
#include <cstdint>
#include <string>

#include "automation/error.h"

namespace vicenter::office {

inline constexpr std::uint32_t kMaxRows = 1'048'576;
inline constexpr std::uint32_t kMaxColumns = 16'384;
inline constexpr std::uint32_t kMaxXlsRows = 65'536;
inline constexpr std::uint32_t kMaxXlsColumns = 256;
inline constexpr std::size_t kMaxCellCodeUnits = 32'767;
inline constexpr std::size_t kMaxSheetNameCodeUnits = 31;
inline constexpr std::size_t kMaxSheets = 1'024;
inline constexpr std::size_t kMaxFormats = 60'000;

// Cells, rows and texts of one workbook together.
inline constexpr std::size_t kMaxWorkbookBytes = 384u << 20;
// Uncompressed size of one part of a package; a filled sheet of all rows and 17 columns stays below.
inline constexpr std::uint64_t kMaxPartBytes = 2ull << 30;
// One tag or one text of a part.
inline constexpr std::size_t kMaxXmlTokenBytes = 4u << 20;
inline constexpr std::size_t kMaxXmlDepth = 200;

// The number that Excel's automation server gives to all of its own errors.
inline constexpr std::int32_t kExcelError = 1004;

[[noreturn]] inline void FailDamaged(const std::string& detail) {
    throw automation::Error(kExcelError, "文件已损坏或不是有效的 Excel 文件：" + detail);
}
[[noreturn]] inline void FailTooLarge() {
    throw automation::Error(kExcelError, "文件内容过大，超出了可处理的范围！");
}

}  // namespace vicenter::office
