#pragma once

// Numbers of the records of ".xls" files that this system writes or reads, and what their sizes are bound to.

#include <cstddef>
#include <cstdint>

namespace vicenter::office::xls {

enum RecordId : std::uint16_t {
    kFormula = 0x0006,
    kEof = 0x000A,
    kExternSheet = 0x0017,
    kName = 0x0018,
    kSelection = 0x001D,
    kDateMode = 0x0022,
    kFilePass = 0x002F,
    kFont = 0x0031,
    kContinue = 0x003C,
    kWindow1 = 0x003D,
    kPane = 0x0041,
    kCodePage = 0x0042,
    kDefaultColumnWidth = 0x0055,
    kColumnInfo = 0x007D,
    kSheetFlags = 0x0081,
    kBoundSheet = 0x0085,
    kPageSetup = 0x00A1,
    kMulRk = 0x00BD,
    kMulBlank = 0x00BE,
    kInterfaceMenus = 0x00C1,
    kRichString = 0x00D6,
    kExtendedFormat = 0x00E0,
    kInterfaceHeader = 0x00E1,
    kInterfaceEnd = 0x00E2,
    kSharedTexts = 0x00FC,
    kLabelShared = 0x00FD,
    kDoubleStream = 0x0161,
    kSupportingBook = 0x01AE,
    kDimensions = 0x0200,
    kBlank = 0x0201,
    kNumber = 0x0203,
    kLabel = 0x0204,
    kBoolError = 0x0205,
    kString = 0x0207,
    kDefaultRowHeight = 0x0225,
    kWindow2 = 0x023E,
    kRk = 0x027E,
    kStyle = 0x0293,
    kFormat = 0x041E,
    kBof = 0x0809,
};

inline constexpr std::uint16_t kVersion8 = 0x0600;
inline constexpr std::uint16_t kGlobals = 0x0005;
inline constexpr std::uint16_t kWorksheet = 0x0010;
inline constexpr std::size_t kMaxPayload = 8224;
inline constexpr std::uint16_t kUnicodeCodePage = 1200;
inline constexpr std::size_t kHeaderBytes = 4;
// Style formats that stand before the first cell format.
inline constexpr std::uint16_t kStyleFormats = 15;
inline constexpr std::size_t kMaxCellFormats = 4000;
// Text flags: two bytes a character, phonetic block, formatting runs.
inline constexpr std::uint8_t kWide = 0x01;
inline constexpr std::uint8_t kPhonetic = 0x04;
inline constexpr std::uint8_t kRich = 0x08;
// Of a formula: the flag that it is to be calculated on loading, and the kind of a result that is an empty
// text.
inline constexpr std::uint16_t kCalculatesOnLoad = 0x0002;
inline constexpr std::uint8_t kEmptyResult = 3;
// The palette's first eight colours stand twice in the file's own numbering.
inline constexpr std::uint8_t kPaletteOffset = 7;

}  // namespace vicenter::office::xls
