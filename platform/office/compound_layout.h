#pragma once

// The container that an ".xls" file is: sectors of equal size, chained by a table (the FAT), and a directory
// of streams. Numbers and names are those of [MS-CFB]; all integers are little-endian. Shared by the reader
// and the writer of compound_file.h, which a fuzzer and tests/platform/office hold against each other.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vicenter::office::compound {

inline constexpr std::string_view kSignature("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
inline constexpr std::size_t kHeaderBytes = 512;
inline constexpr unsigned kSectorShift = 9;        // of version 3, which everybody reads
inline constexpr unsigned kLargeSectorShift = 12;  // of version 4
inline constexpr unsigned kMiniShift = 6;
inline constexpr std::uint64_t kMiniCutoff = 4096;  // shorter streams lie in pieces of 64 bytes
inline constexpr std::size_t kHeaderFatSectors = 109;

// Where a chain goes on, beside the numbers of sectors.
inline constexpr std::uint32_t kLastSector = 0xFFFFFFFA;
inline constexpr std::uint32_t kDifatSector = 0xFFFFFFFC;
inline constexpr std::uint32_t kFatSector = 0xFFFFFFFD;
inline constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
inline constexpr std::uint32_t kFree = 0xFFFFFFFF;

// A directory entry.
inline constexpr std::size_t kEntryBytes = 128;
inline constexpr std::size_t kNameBytes = 64;  // UTF-16 with its closing zero
inline constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;
inline constexpr std::uint8_t kStream = 2;
inline constexpr std::uint8_t kRoot = 5;

// Places in the header.
namespace header {
inline constexpr std::size_t kMinorVersion = 24;
inline constexpr std::size_t kMajorVersion = 26;
inline constexpr std::size_t kByteOrder = 28;
inline constexpr std::size_t kSectorShift = 30;
inline constexpr std::size_t kMiniShift = 32;
inline constexpr std::size_t kFatSectors = 44;
inline constexpr std::size_t kDirectory = 48;
inline constexpr std::size_t kMiniCutoff = 56;
inline constexpr std::size_t kMiniFat = 60;
inline constexpr std::size_t kMiniFatSectors = 64;
inline constexpr std::size_t kDifat = 68;
inline constexpr std::size_t kDifatSectors = 72;
inline constexpr std::size_t kFirstFatSectors = 76;
}  // namespace header

// Places in a directory entry.
namespace entry {
inline constexpr std::size_t kNameLength = 64;  // bytes, the zero counted
inline constexpr std::size_t kType = 66;
inline constexpr std::size_t kColor = 67;
inline constexpr std::size_t kLeft = 68;
inline constexpr std::size_t kRight = 72;
inline constexpr std::size_t kChild = 76;
inline constexpr std::size_t kStart = 116;
inline constexpr std::size_t kSize = 120;
}  // namespace entry

inline std::uint16_t Get16(const char* at) {
    const auto byte = [at](int i) { return static_cast<unsigned>(static_cast<unsigned char>(at[i])); };
    return static_cast<std::uint16_t>(byte(0) | byte(1) << 8);
}
inline std::uint32_t Get32(const char* at) {
    return static_cast<std::uint32_t>(Get16(at)) | static_cast<std::uint32_t>(Get16(at + 2)) << 16;
}
inline std::uint64_t Get64(const char* at) {
    return static_cast<std::uint64_t>(Get32(at)) | static_cast<std::uint64_t>(Get32(at + 4)) << 32;
}
inline void Put16(std::string& to, std::size_t at, std::uint16_t value) {
    to[at] = static_cast<char>(value & 0xFF);
    to[at + 1] = static_cast<char>(value >> 8);
}
inline void Put32(std::string& to, std::size_t at, std::uint32_t value) {
    Put16(to, at, static_cast<std::uint16_t>(value & 0xFFFF));
    Put16(to, at + 2, static_cast<std::uint16_t>(value >> 16));
}

}  // namespace vicenter::office::compound
