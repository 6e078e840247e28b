#include "platform/office/column_width.h"

#include <algorithm>
#include <vector>

#include "platform/office/cell_text.h"
#include "platform/office/utf.h"

namespace vicenter::office {

namespace {

constexpr double kMaxWidth = 255;
constexpr double kMargin = 1.5;
constexpr double kStandardFontSize = 11;

// Wide and full-width characters of East Asian typography, and the symbols that Chinese fonts draw as wide.
bool IsWide(std::uint32_t code) {
    return (code >= 0x1100 && code <= 0x115F) || (code >= 0x2E80 && code <= 0xA4CF) ||
           (code >= 0xAC00 && code <= 0xD7A3) || (code >= 0xF900 && code <= 0xFAFF) ||
           (code >= 0xFE30 && code <= 0xFE6F) || (code >= 0xFF00 && code <= 0xFF60) ||
           (code >= 0xFFE0 && code <= 0xFFE6) || (code >= 0x2010 && code <= 0x2027) ||
           (code >= 0x1F300 && code <= 0x1FAFF) || (code >= 0x20000 && code <= 0x3FFFD);
}

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
    std::size_t widest = 0;
    std::size_t width = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '\n') {
            widest = std::max(widest, width);
            width = 0;
            ++at;
            continue;
        }
        const CodePoint next = ReadUtf8(text, at);
        width += IsWide(next.code) ? 2 : 1;
        at += next.length;
    }
    return std::max(widest, width);
}

void AutoFitColumns(const Workbook& workbook, Sheet& sheet, std::uint32_t first, std::uint32_t last) {
    std::vector<double> widths(last - first + 1, 0);
    for (const Row& row : sheet.Rows()) {
        for (const Cell& cell : row) {
            if (cell.column < first || cell.column > last || cell.kind == CellKind::Blank) continue;
            const double size = workbook.Formats().At(cell.format).fontSize;
            const double scale = size > 0 ? size / kStandardFontSize : 1;
            const std::size_t width = cell.kind == CellKind::Text
                                          ? DisplayWidth(workbook.Texts().At(cell.text))
                                          : DisplayWidth(ShownText(workbook, cell));
            double& widest = widths[cell.column - first];
            widest = std::max(widest, static_cast<double>(width) * scale + kMargin);
        }
    }
    for (std::uint32_t column = first; column <= last; ++column) {
        const double width = widths[column - first];
        if (width > 0) sheet.ColumnAt(column).width = std::min(width, kMaxWidth);
    }
}

}  // namespace vicenter::office
