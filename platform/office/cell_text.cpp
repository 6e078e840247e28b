#include "platform/office/cell_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "automation/typed_date.h"
#include "platform/office/dates.h"

namespace vicenter::office {

namespace {

// Beyond these an exponent reads better than a row of zeros.
constexpr double kLargestPlain = 1e21;
constexpr double kSmallestPlain = 1e-9;

}  // namespace

std::string NumberAsTyped(double value) {
    if (value == 0) return "0";
    const double size = std::fabs(value);
    const bool plain = size < kLargestPlain && size >= kSmallestPlain;
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific);
    return {buffer.data(), end.ptr};
}

std::string CellText(const Workbook& workbook, const Cell& cell) {
    switch (cell.kind) {
        case CellKind::Text:
            return std::string(workbook.Texts().At(cell.text));
        case CellKind::Boolean:
            return cell.boolean ? "TRUE" : "FALSE";
        case CellKind::Error:
            return std::string(CellErrorText(cell.error));
        case CellKind::Number: {
            if (workbook.Formats().IsDate(cell.format) && IsDateSerial(cell.number, workbook.dates1904)) {
                return automation::DateAsTyped(DateFromSerial(cell.number, workbook.dates1904));
            }
            std::string text = NumberAsTyped(cell.number);
            const std::string& format = workbook.Formats().At(cell.format).numberFormat;
            if (text.size() < format.size() && text.find_first_not_of("0123456789") == std::string::npos &&
                format.find_first_not_of('0') == std::string::npos) {
                text.insert(0, format.size() - text.size(), '0');
            }
            return text;
        }
        case CellKind::Blank:
            break;
    }
    return {};
}

}  // namespace vicenter::office
