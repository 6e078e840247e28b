// Blocks of cells as spreadsheets put them on the clipboard.

#include <optional>

#include "center/editing/block_editing.h"

namespace vicenter::center {

namespace {

// Reads one quoted cell from behind its opening quote; the position ends behind the closing one. Nothing for
// a quote that is never closed.
std::optional<std::string> ReadQuoted(std::string_view text, std::size_t& at) {
    std::string cell;
    while (at < text.size()) {
        if (text[at] == '"') {
            ++at;
            if (at >= text.size() || text[at] != '"') return cell;
        }
        cell += text[at++];
    }
    return std::nullopt;
}

// The quoted cell that starts here, the position behind it. A quote that no cell's end follows is an ordinary
// character; the position then stays.
std::optional<std::string> TakeQuotedCell(std::string_view text, std::size_t& at) {
    if (text[at] != '"') return std::nullopt;
    std::size_t end = at + 1;
    std::optional<std::string> cell = ReadQuoted(text, end);
    const bool ended = end >= text.size() || text[end] == '\t' || text[end] == '\r' || text[end] == '\n';
    if (!cell || !ended) return std::nullopt;
    at = end;
    return cell;
}

bool NeedsQuotes(const std::string& cell) {
    return cell.find_first_of("\t\r\n") != std::string::npos || (!cell.empty() && cell.front() == '"');
}

}  // namespace

TextBlock ParseBlock(std::string_view text) {
    TextBlock block;
    if (text.empty()) return block;
    std::vector<std::string> row;
    std::string cell;
    std::size_t at = 0;
    bool cellStarts = true;
    const auto endRow = [&] {
        row.push_back(std::move(cell));
        cell.clear();
        block.push_back(std::move(row));
        row.clear();
        cellStarts = true;
    };
    while (at < text.size()) {
        const char c = text[at];
        if (cellStarts) {
            cellStarts = false;
            if (std::optional<std::string> quoted = TakeQuotedCell(text, at)) {
                cell = std::move(*quoted);
                continue;
            }
        }
        if (c == '\t') {
            row.push_back(std::move(cell));
            cell.clear();
            cellStarts = true;
            ++at;
        } else if (c == '\r' || c == '\n') {
            at += c == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 2 : 1;
            endRow();
        } else {
            cell += c;
            ++at;
        }
    }
    // A break at the very end closes the last row and opens none.
    if (!cell.empty() || !row.empty()) endRow();
    return block;
}

std::string FormatBlock(const TextBlock& block) {
    std::string text;
    for (const std::vector<std::string>& row : block) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (i != 0) text += '\t';
            if (!NeedsQuotes(row[i])) {
                text += row[i];
                continue;
            }
            text += '"';
            for (const char c : row[i]) {
                if (c == '"') text += '"';
                text += c;
            }
            text += '"';
        }
        text += "\r\n";
    }
    return text;
}

}  // namespace vicenter::center
