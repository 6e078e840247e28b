#include "platform/office/cell_format.h"

#include "platform/office/limits.h"
#include "text/ascii.h"

namespace vicenter::office {

namespace {

using text::LowerAscii;

// "[Red]", "[$-804]" and conditions are no dates; "[h]", "[mm]" and "[ss]" are elapsed times.
bool IsElapsedTime(std::string_view bracket) {
    if (bracket.empty()) return false;
    const char unit = LowerAscii(bracket.front());
    if (unit != 'h' && unit != 'm' && unit != 's') return false;
    for (const char c : bracket) {
        if (LowerAscii(c) != unit) return false;
    }
    return true;
}

struct BuiltIn {
    std::uint32_t number;
    std::string_view format;
};

constexpr BuiltIn kBuiltIns[] = {
    {1, "0"},
    {2, "0.00"},
    {3, "#,##0"},
    {4, "#,##0.00"},
    {9, "0%"},
    {10, "0.00%"},
    {11, "0.00E+00"},
    {12, "# ?/?"},
    {13, "# ?\?/?\?"},
    {14, "yyyy/m/d"},
    {15, "d-mmm-yy"},
    {16, "d-mmm"},
    {17, "mmm-yy"},
    {18, "h:mm AM/PM"},
    {19, "h:mm:ss AM/PM"},
    {20, "h:mm"},
    {21, "h:mm:ss"},
    {22, "yyyy/m/d h:mm"},
    // 27 to 36 and 50 to 58 are the Chinese dates and times.
    {27, "yyyy\"年\"m\"月\""},
    {28, "m\"月\"d\"日\""},
    {29, "m\"月\"d\"日\""},
    {30, "m-d-yy"},
    {31, "yyyy\"年\"m\"月\"d\"日\""},
    {32, "h\"时\"mm\"分\""},
    {33, "h\"时\"mm\"分\"ss\"秒\""},
    {34, "h\"时\"mm\"分\""},
    {35, "h\"时\"mm\"分\"ss\"秒\""},
    {36, "yyyy\"年\"m\"月\""},
    {37, "#,##0;-#,##0"},
    {38, "#,##0;[Red]-#,##0"},
    {39, "#,##0.00;-#,##0.00"},
    {40, "#,##0.00;[Red]-#,##0.00"},
    {45, "mm:ss"},
    {46, "[h]:mm:ss"},
    {47, "mm:ss.0"},
    {48, "##0.0E+0"},
    {49, "@"},
    {50, "yyyy\"年\"m\"月\""},
    {51, "m\"月\"d\"日\""},
    {52, "yyyy\"年\"m\"月\""},
    {53, "m\"月\"d\"日\""},
    {54, "m\"月\"d\"日\""},
    {55, "h\"时\"mm\"分\""},
    {56, "h\"时\"mm\"分\"ss\"秒\""},
    {57, "yyyy\"年\"m\"月\""},
    {58, "m\"月\"d\"日\""},
};

}  // namespace

FormatTable::FormatTable() {
    Intern({});
}

std::uint16_t FormatTable::Intern(const CellFormat& format) {
    const auto found = indexes_.find(format);
    if (found != indexes_.end()) return found->second;
    if (formats_.size() >= kMaxFormats) FailTooLarge();
    const auto index = static_cast<std::uint16_t>(formats_.size());
    formats_.push_back(format);
    kinds_.push_back(static_cast<std::uint8_t>((IsDateFormat(format.numberFormat) ? kDate : 0) |
                                               (format.numberFormat == kTextNumberFormat ? kText : 0)));
    indexes_.emplace(format, index);
    return index;
}

bool IsDateFormat(std::string_view numberFormat) {
    // Only the first section counts: the others are for negative numbers, zero and text.
    for (std::size_t i = 0; i < numberFormat.size(); ++i) {
        switch (const char c = LowerAscii(numberFormat[i])) {
            case ';':
                return false;
            case '"': {
                const std::size_t end = numberFormat.find('"', i + 1);
                if (end == std::string_view::npos) return false;
                i = end;
                break;
            }
            case '\\':
            case '_':
            case '*':
                ++i;
                break;
            case '[': {
                const std::size_t end = numberFormat.find(']', i + 1);
                if (end == std::string_view::npos) return false;
                if (IsElapsedTime(numberFormat.substr(i + 1, end - i - 1))) return true;
                i = end;
                break;
            }
            case 'g':  // "General" also has an e; an era mark stands before a year
                if (numberFormat.size() - i >= 7 && LowerAscii(numberFormat[i + 1]) == 'e' &&
                    LowerAscii(numberFormat[i + 2]) == 'n') {
                    i += 6;
                }
                break;
            case 'a':  // three and four are a weekday
                if (LowerAscii(numberFormat.substr(i, 3)) == "aaa") return true;
                break;
            case 'y':
            case 'm':
            case 'd':
            case 'h':
            case 's':
                return true;
            default:
                // "E+" belongs to a number; "e" alone is a year of the era.
                if (c == 'e' && (i + 1 >= numberFormat.size() ||
                                 (numberFormat[i + 1] != '+' && numberFormat[i + 1] != '-'))) {
                    return true;
                }
                break;
        }
    }
    return false;
}

std::string_view BuiltInNumberFormat(std::uint32_t number) {
    for (const BuiltIn& entry : kBuiltIns) {
        if (entry.number == number) return entry.format;
    }
    return {};
}

}  // namespace vicenter::office
