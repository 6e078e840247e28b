#include "center/search/grid_replace.h"

#include <algorithm>

#include "center/editing/cell_checks.h"
#include "center/editing/cell_rules.h"
#include "center/editing/copied_block.h"
#include "center/grid/quiet_grid.h"
#include "center/lookups/cell_resolution.h"

namespace vicenter::center {

namespace {

constexpr const char* kNothingFound = "没有查找到对应的数据，请重新录入查找条件！";

bool Before(const CellAddress& a, const CellAddress& b) {
    return a.row != b.row ? a.row < b.row : a.column < b.column;
}

void TellRefused(const std::vector<RefusedCell>& refused) {
    constexpr std::size_t kNamed = 12;
    if (refused.empty()) return;
    std::string text = "以下 " + std::to_string(refused.size()) + " 处没有替换，保持原样：\r\n";
    for (std::size_t i = 0; i < std::min(refused.size(), kNamed); ++i) {
        const RefusedCell& one = refused[i];
        text += "\r\n行" + std::to_string(one.cell.row) + " " + std::string(Column(one.cell.column).header) +
                "：" + one.reason;
    }
    Tell(refused.size() > kNamed ? text + "\r\n……" : text);
}

}  // namespace

std::vector<int> GridReplace::Columns() const {
    std::vector<int> columns;
    for (const ColumnSpec& spec : center::Columns()) {
        if (!spec.locked && !state_.grid->Layout(spec.column).hidden) columns.push_back(spec.column);
    }
    return columns;
}

bool GridReplace::Holds(const CellAddress& cell) const {
    const std::string_view text = state_.grid->Text(cell.row, cell.column);
    return wish_.whole ? text == wish_.text : text.find(wish_.text) != std::string_view::npos;
}

std::vector<CellAddress> GridReplace::Hits() const {
    std::vector<CellAddress> hits;
    if (wish_.text.empty()) return hits;
    const std::vector<int> columns = wish_.column == 0 ? Columns() : std::vector<int>{wish_.column};
    for (int row = 1; row <= state_.open.RowCount(); ++row) {
        for (const int c : columns) {
            if (Holds({row, c})) hits.push_back({row, c});
        }
    }
    return hits;
}

std::string GridReplace::Note() const {
    return wish_.text.empty() ? std::string() : "共 " + std::to_string(Count()) + " 处";
}

std::string GridReplace::Replaced(std::string_view text) const {
    if (wish_.whole) return wish_.with;
    std::string replaced;
    std::size_t from = 0;
    for (std::size_t at; (at = text.find(wish_.text, from)) != std::string_view::npos;
         from = at + wish_.text.size())
        replaced.append(text.substr(from, at - from)).append(wish_.with);
    return replaced.append(text.substr(from));
}

void GridReplace::Next() {
    const std::vector<CellAddress> hits = Hits();
    if (hits.empty()) {
        Tell(wish_.text.empty() ? "请输入过滤信息！" : kNothingFound);
        return;
    }
    const auto next = std::upper_bound(hits.begin(), hits.end(), state_.grid->ActiveCell(), Before);
    goTo_(next == hits.end() ? hits.front() : *next);
}

void GridReplace::ReplaceOne() {
    const std::vector<CellAddress> hits = Hits();
    const CellAddress active = state_.grid->ActiveCell();
    if (std::find(hits.begin(), hits.end(), active) == hits.end()) {
        Next();
        return;
    }
    Replace({active});
    if (Count() > 0) Next();
}

void GridReplace::ReplaceAll() {
    const std::vector<CellAddress> hits = Hits();
    if (hits.empty()) {
        Next();  // says why there is none
        return;
    }
    const int replaced = Replace(hits);
    if (replaced > 0) Tell("已替换 " + std::to_string(replaced) + " 处，按 Ctrl+Z 可以一次撤消。");
}

int GridReplace::Replace(const std::vector<CellAddress>& cells) {
    EntryGrid& grid = *state_.grid;
    PasteResult result;
    {
        const UndoStep step(state_.open);
        const Unpainted quiet(grid);
        MasterRecords records;
        CellChecks checks;
        std::vector<int> rows;
        for (const CellAddress& cell : cells) {
            // A code before it may have brought another text there.
            if (!Holds(cell)) continue;
            const std::string text = Replaced(grid.Text(cell.row, cell.column));
            const TextReading reading = ReadCellText(cell.column, text, TextOrigin::Given);
            if (reading.verdict != TextVerdict::Taken) {
                result.refused.push_back({cell, text, VerdictText(reading.verdict, cell.column), false});
                continue;
            }
            grid.PutReading(cell.row, cell.column, reading);
            ResolveNew(grid, cell, records, TextOrigin::Given);
            ++result.cells;
            if (rows.empty() || rows.back() != cell.row) rows.push_back(cell.row);
        }
        MarkRows(grid, rows, checks);
    }
    TellRefused(result.refused);
    return result.cells;
}

}  // namespace vicenter::center
