#include "center/editing/pattern_editing.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "center/grid/line_texts.h"

namespace vicenter::center {

namespace {

// A number that the account set would take.
std::optional<std::int64_t> NumberAt(const EntryGrid& grid, int row) {
    const std::string_view text = NumberOfRow(grid, row);
    std::int64_t number = 0;
    const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = failed == std::errc() && end == text.data() + text.size() && number >= 0;
    if (!whole || number > kLargestTemplateNumber) return std::nullopt;
    return grid.Refusal(row, column::kNo) == TextVerdict::Taken ? std::optional(number) : std::nullopt;
}

}  // namespace

// A line in use, by the row where it stands now and the number that it is to have.
struct PatternEditing::Line {
    int row = 0;
    std::optional<std::int64_t> number;
    bool renumbered = false;

    void SetNumber(std::int64_t wanted) {
        renumbered = number != wanted;
        number = wanted;
    }
    // Lines without a number stand last.
    friend bool operator<(const Line& a, const Line& b) {
        if (a.number.has_value() != b.number.has_value()) return a.number.has_value();
        return a.number < b.number;
    }
};

std::vector<PatternEditing::Line> PatternEditing::Lines() const {
    std::vector<Line> lines;
    for (int row = 1; row <= state_.open.RowCount(); ++row)
        lines.push_back({row, NumberAt(*state_.grid, row)});
    return lines;
}

void PatternEditing::Run(PatternCommand command) {
    if (!state_.hasRight || !state_.open.IsOpen()) return;
    switch (command) {
        case PatternCommand::Copy:
            return Copy();
        case PatternCommand::MoveUp:
            return Move(true);
        case PatternCommand::MoveDown:
            return Move(false);
        case PatternCommand::Renumber:
            return Renumber();
        case PatternCommand::Sort:
            return Sort();
    }
}

void PatternEditing::CursorTo(int row, int gridColumn) {
    state_.grid->SetActiveCell({row, std::max(1, gridColumn)});
    state_.grid->ScrollIntoView(state_.grid->ActiveCell());
}

void PatternEditing::Copy() {
    EntryGrid& grid = *state_.grid;
    const CellAddress active = grid.ActiveCell();
    const bool used = active.row >= 1 && active.row <= state_.open.RowCount();
    const std::optional<std::int64_t> number = used ? NumberAt(grid, active.row) : std::nullopt;
    if (!number) return Tell("请将光标移到要复制的凭证模板的分录上！");
    const std::vector<Line> lines = Lines();
    std::int64_t next = 0;
    for (const Line& line : lines)
        next = std::max(next, line.number.value_or(0) + 1);
    if (next > kLargestTemplateNumber) return Tell("模板编号已达到上限，不能复制！");
    std::vector<GridRowPtr> copies;
    for (const Line& line : lines) {
        if (line.number != number) continue;
        copies.push_back(grid.CopyOfRow(line.row));
        copies.back()->SetText(column::kNo, std::to_string(next));
    }
    const int first = state_.open.RowCount() + 1;
    {
        const UndoStep step(state_.open);
        grid.RestoreRows(first, std::move(copies));
        CursorTo(first, active.column);
    }
    edited_();
}

void PatternEditing::Move(bool up) {
    std::vector<Line> lines = Lines();
    const int active = state_.grid->ActiveCell().row;
    const bool used = active >= 1 && active <= static_cast<int>(lines.size());
    const std::optional<std::int64_t> own =
        used ? lines[static_cast<std::size_t>(active - 1)].number : std::nullopt;
    if (!own) return Tell("请将光标移到要移动的凭证模板的分录上！");
    std::optional<std::int64_t> other;  // the nearest number on that side
    for (const Line& line : lines) {
        if (!line.number || line.number == own || (line.number < own) != up) continue;
        if (!other || (up ? *line.number > *other : *line.number < *other)) other = line.number;
    }
    if (!other) return;
    // The lines of both take the places of both, by their new numbers.
    std::vector<std::size_t> places;
    std::vector<Line> moved;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].number != own && lines[i].number != other) continue;
        places.push_back(i);
        moved.push_back(lines[i]);
        moved.back().SetNumber(lines[i].number == own ? *other : *own);
    }
    std::stable_sort(moved.begin(), moved.end());
    for (std::size_t i = 0; i < places.size(); ++i)
        lines[places[i]] = moved[i];
    PutInOrder(lines);
}

void PatternEditing::Renumber() {
    std::vector<Line> lines = Lines();
    std::map<std::int64_t, std::int64_t> wanted;
    for (const Line& line : lines) {
        if (line.number) wanted[*line.number] = 0;
    }
    std::int64_t next = 0;
    for (auto& [number, place] : wanted)
        place = ++next;
    for (Line& line : lines) {
        if (line.number) line.SetNumber(wanted[*line.number]);
    }
    PutInOrder(lines);
}

void PatternEditing::Sort() {
    std::vector<Line> lines = Lines();
    std::stable_sort(lines.begin(), lines.end());
    PutInOrder(lines);
}

// Lines that stay where they are with the number that they have are not touched.
void PatternEditing::PutInOrder(const std::vector<Line>& lines) {
    EntryGrid& grid = *state_.grid;
    const auto stays = [&](std::size_t i) {
        return lines[i].row == static_cast<int>(i) + 1 && !lines[i].renumbered;
    };
    std::size_t begin = 0;
    std::size_t end = lines.size();
    while (begin < end && stays(begin))
        ++begin;
    while (end > begin && stays(end - 1))
        --end;
    if (begin == end) return;
    const CellAddress active = grid.ActiveCell();
    int row = active.row;
    std::vector<GridRowPtr> rows;
    for (std::size_t i = begin; i < end; ++i) {
        rows.push_back(grid.CopyOfRow(lines[i].row));
        if (lines[i].renumbered) rows.back()->SetText(column::kNo, std::to_string(*lines[i].number));
        if (lines[i].row == active.row) row = static_cast<int>(i) + 1;
    }
    const int first = static_cast<int>(begin) + 1;
    const int count = static_cast<int>(rows.size());
    {
        const UndoStep step(state_.open);
        grid.RestoreRows(first, std::move(rows));
        grid.RemoveRows(first + count, count);
        CursorTo(row, active.column);
    }
    edited_();
}

}  // namespace vicenter::center
