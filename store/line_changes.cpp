#include "store/line_changes.h"

#include "store/cell_rules.h"

namespace vicenter::store {

namespace {

void Append(std::vector<LineChange>& changes, const LineDifference& difference,
            const std::vector<LineTexts>& before, const std::vector<LineTexts>& after) {
    const std::string kind = KindText(difference.kind);
    const int row = static_cast<int>((difference.after ? *difference.after : *difference.before) + 1);
    for (const LineDifference::Cell& cell : difference.cells)
        changes.push_back({kind, difference.number, row, cell.column, DisplayText(cell.column, cell.before),
                           DisplayText(cell.column, cell.after)});
    if (difference.kind == LineDifference::Kind::Changed) return;
    changes.push_back({kind, difference.number, row, 0,
                       difference.before ? WordsOfLine(before[*difference.before]) : std::string(),
                       difference.after ? WordsOfLine(after[*difference.after]) : std::string()});
}

}  // namespace

std::vector<LineChange> ChangesOf(const std::vector<LineDifference>& differences,
                                  const std::vector<LineTexts>& before, const std::vector<LineTexts>& after) {
    std::vector<LineChange> changes;
    for (const LineDifference& difference : differences)
        Append(changes, difference, before, after);
    return changes;
}

std::string WordsOfLine(const LineTexts& line) {
    std::string words;
    for (const int c : {column::kExplanation, column::kDirection, column::kAccountNumber,
                        column::kAccountName, column::kItems, column::kAmount}) {
        const std::string& text = line[static_cast<std::size_t>(c - 1)];
        if (text.empty()) continue;
        if (!words.empty()) words += " ";
        words += DisplayText(c, text);
    }
    return words;
}

}  // namespace vicenter::store
