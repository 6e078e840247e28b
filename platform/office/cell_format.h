#pragma once

// How a cell looks, and the table that keeps each look once.
// Index 0 is the standard look. Value types; the table belongs to one Workbook.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::office {

struct CellFormat {
    std::string numberFormat;    // empty is General
    double fontSize = 0;         // points; 0 is the standard size
    std::uint8_t fillColor = 0;  // index of the standard palette, 1 to 56; 0 is no fill
    bool borders = false;        // thin continuous line on all four sides
    bool bold = false;

    friend bool operator==(const CellFormat&, const CellFormat&) = default;
    friend auto operator<=>(const CellFormat&, const CellFormat&) = default;
};

inline constexpr std::string_view kTextNumberFormat = "@";

class FormatTable {
  public:
    FormatTable();
    // The index of that look, added when it is new. Throws automation::Error past kMaxFormats.
    std::uint16_t Intern(const CellFormat& format);
    const CellFormat& At(std::uint16_t index) const { return formats_[index]; }
    std::size_t Count() const { return formats_.size(); }
    bool IsDate(std::uint16_t index) const { return kinds_[index] & kDate; }
    bool IsText(std::uint16_t index) const { return kinds_[index] & kText; }

  private:
    static constexpr std::uint8_t kDate = 1;
    static constexpr std::uint8_t kText = 2;

    std::vector<CellFormat> formats_;
    std::vector<std::uint8_t> kinds_;
    std::map<CellFormat, std::uint16_t> indexes_;
};

// Whether a number format shows dates or times: an unquoted y, m, d, h or s, or an era or weekday mark.
bool IsDateFormat(std::string_view numberFormat);
// The number format behind one of the built-in numbers of both file kinds; empty for General and unknown
// ones.
std::string_view BuiltInNumberFormat(std::uint32_t number);

}  // namespace vicenter::office
