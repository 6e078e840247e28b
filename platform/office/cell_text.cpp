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

std::string ShownText(const Workbook& workbook, const Cell& cell) {
    constexpr std::string_view kGrouped = "#,##0";
    constexpr int kMostDecimals = 30;
    const std::string_view format = cell.kind == CellKind::Number
                                        ? std::string_view(workbook.Formats().At(cell.format).numberFormat)
                                        : std::string_view();
    if (!format.starts_with(kGrouped)) return CellText(workbook, cell);
    const std::string_view decimals = format.substr(kGrouped.size());
    const bool fixed = decimals.empty() ||
                       (decimals.size() > 1 && decimals.size() <= kMostDecimals && decimals.front() == '.' &&
                        decimals.find_first_not_of('0', 1) == std::string_view::npos);
    if (!fixed || std::fabs(cell.number) >= kLargestPlain) return CellText(workbook, cell);
    std::array<char, 64> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), cell.number, std::chars_format::fixed,
                      decimals.empty() ? 0 : static_cast<int>(decimals.size() - 1));
    std::string text(buffer.data(), end.ptr);
    const std::size_t first = text.front() == '-' ? 1 : 0;
    const std::size_t point = std::min(text.find('.'), text.size());
    for (std::size_t at = point; at > first + 3; at -= 3)
        text.insert(at - 3, 1, ',');
    return text;
}

}  // namespace vicenter::office
