#pragma once

// ".xls" files by hand: one sheet of records as their writers leave them.

#include <algorithm>
#include <bit>
#include <cstdint>
#include <string>

#include "platform/office/compound_file.h"
#include "platform/system/utf8.h"

namespace vicenter::office {

inline std::string U16(std::uint32_t value) {
    return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
}
inline std::string U32(std::uint32_t value) {
    return U16(value & 0xFFFF) + U16(value >> 16);
}
inline std::string F64(double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    return U32(static_cast<std::uint32_t>(bits)) + U32(static_cast<std::uint32_t>(bits >> 32));
}
inline std::string Record(std::uint16_t id, const std::string& payload) {
    return U16(id) + U16(static_cast<std::uint32_t>(payload.size())) + payload;
}
// The characters behind their count: a byte each, or two when one of them needs it.
inline std::string Characters(const std::string& text) {
    const bool wide = std::any_of(text.begin(), text.end(), [](char c) { return (c & 0x80) != 0; });
    if (!wide) return std::string(1, '\0') + text;
    std::string bytes(1, '\x01');
    for (const char16_t unit : system::ToUtf16(text))
        bytes += U16(unit);
    return bytes;
}
inline std::string ShortText(const std::string& text) {
    return U16(static_cast<std::uint32_t>(system::CodeUnitCount(text))) + Characters(text);
}

// Results of formulas that are no numbers.
inline const std::string kNoResult("\x03\0\0\0\0\0\xFF\xFF", 8);
inline const std::string kErrorResult("\x02\0\x2A\0\0\0\xFF\xFF", 8);

struct XlsParts {
    std::uint16_t version = 0x0600;
    bool dates1904 = false;
    bool encrypted = false;
    std::string cells;
    std::string stream = "Workbook";
    std::string sheetName = "s";

    void Number(std::uint16_t row, std::uint16_t column, double value) {
        cells += Record(0x0203, U16(row) + U16(column) + U16(15) + F64(value));
    }
    void HiddenRow(std::uint16_t row) {
        constexpr std::uint32_t kHidden = 0x20;
        constexpr std::uint32_t kAlways = 0x100;
        cells += Record(0x0208, U16(row) + U16(0) + U16(8) + U16(0xFF) + U32(0) + U32(kHidden | kAlways));
    }
    // The second look shows times.
    void Time(std::uint16_t row, std::uint16_t column, double value) {
        cells += Record(0x0203, U16(row) + U16(column) + U16(16) + F64(value));
    }
    void Label(std::uint16_t row, std::uint16_t column, const std::string& text) {
        cells += Record(0x0204, U16(row) + U16(column) + U16(15) + ShortText(text));
    }
    void Error(std::uint16_t row, std::uint16_t column, std::uint8_t code) {
        cells += Record(0x0205, U16(row) + U16(column) + U16(15) + static_cast<char>(code) + '\x01');
    }
    // result: eight bytes; tokens: of the formula.
    void Formula(std::uint16_t row, std::uint16_t column, const std::string& result, std::uint16_t flags,
                 const std::string& tokens) {
        cells += Record(0x0006, U16(row) + U16(column) + U16(15) + result + U16(flags) + U32(0) +
                                    U16(static_cast<std::uint32_t>(tokens.size())) + tokens);
    }

    void Save(const std::string& name) const {
        const auto bof = [this](std::uint16_t kind) {
            return Record(0x0809, U16(version) + U16(kind) + U32(0) + U32(0) + U32(0));
        };
        const auto look = [](std::uint16_t format) {
            return Record(0x00E0, U16(0) + U16(format) + std::string(16, '\0'));
        };
        std::string globals = bof(0x0005);
        if (encrypted) globals += Record(0x002F, U16(1) + std::string(52, 'x'));
        globals += Record(0x0022, U16(dates1904 ? 1 : 0));
        for (int i = 0; i < 16; ++i)
            globals += look(0);
        globals += look(21);
        const std::string bound =
            std::string(1, static_cast<char>(system::CodeUnitCount(sheetName))) + Characters(sheetName);
        const std::size_t boundSheet = 4 + 6 + bound.size();
        const std::size_t place = globals.size() + boundSheet + 4;
        globals += Record(0x0085, U32(static_cast<std::uint32_t>(place)) + U16(0) + bound);
        globals += Record(0x000A, "");
        CompoundWriter file(name, stream);
        file.Write(globals + bof(0x0010) + cells + Record(0x000A, ""));
        file.Finish();
    }
};

}  // namespace vicenter::office
