#include "center/template/kept_lines.h"

#include <algorithm>

#include "center/editing/cell_checks.h"
#include "center/grid/quiet_grid.h"

namespace vicenter::center {

namespace {

bool Differs(const EntryGrid& grid, int row, int gridColumn, const KeptLine& line) {
    const auto at = static_cast<std::size_t>(gridColumn - 1);
    return grid.Text(row, gridColumn) != line.texts[at] || grid.Refusal(row, gridColumn) != line.refusals[at];
}

// The blank rows below lines that a grid always has.
void MakeRoom(EntryGrid& grid, int lines) {
    const Unrecorded growing(grid);
    if (grid.RowTotal() < lines + 2) grid.SetRowTotal(lines + 2);
}

}  // namespace

std::vector<KeptLine> LinesOfRows(const EntryGrid& grid, int rowCount) {
    std::vector<KeptLine> lines(static_cast<std::size_t>(std::max(0, rowCount)));
    for (int row = 1; row <= rowCount; ++row) {
        KeptLine& line = lines[static_cast<std::size_t>(row - 1)];
        for (int c = 1; c <= kColumnCount; ++c) {
            const auto at = static_cast<std::size_t>(c - 1);
            line.texts[at] = grid.Text(row, c);
            line.refusals[at] = grid.Refusal(row, c);
        }
    }
    return lines;
}

void KeptLines::Take() {
    Take(LinesOfRows(*state_.grid, state_.open.RowCount()));
}

void KeptLines::Take(std::vector<KeptLine> lines) {
    lines_ = std::move(lines);
    pending_ = false;
}

const KeptLine& KeptLines::LineOrBlank(int row) const {
    static const KeptLine kBlank;
    const auto at = static_cast<std::size_t>(row - 1);
    return at < lines_.size() ? lines_[at] : kBlank;
}

bool KeptLines::OfferUndo(const std::string& notice) {
    EntryGrid& grid = *state_.grid;
    const int kept = static_cast<int>(lines_.size());
    MakeRoom(grid, kept);
    JournalMark before = state_.open.Mark();
    before.rowCount = kept;
    bool differs = kept != state_.open.RowCount();
    state_.open.Journal().Open(before);
    for (int row = 1; row <= std::max(kept, state_.open.RowCount()); ++row) {
        const KeptLine& line = LineOrBlank(row);
        for (int c = 1; c <= kColumnCount; ++c) {
            if (!Differs(grid, row, c, line)) continue;
            const auto at = static_cast<std::size_t>(c - 1);
            state_.open.Journal().TextReplaced(row, c, line.texts[at], line.refusals[at]);
            differs = true;
        }
    }
    state_.open.Journal().Close(state_.open.Mark());
    pending_ = differs;
    if (differs) state_.open.SetNotice(notice);
    return differs;
}

void KeptLines::PutBack() {
    EntryGrid& grid = *state_.grid;
    MakeRoom(grid, static_cast<int>(lines_.size()));
    const Unpainted quiet(grid);
    const Unrecorded filling(grid);
    int row = 0;
    // What was refused by a column was never sent: these texts have all been taken.
    for (const KeptLine& line : lines_)
        grid.FillRow(++row, line.texts);
    state_.open.TakeRows(row);
}

void KeptLines::PutAsTyped() {
    EntryGrid& grid = *state_.grid;
    const int kept = static_cast<int>(lines_.size());
    MakeRoom(grid, kept);
    const UndoStep step(state_.open);
    grid.SetReDraw(false);
    const int rows = std::max(kept, state_.open.RowCount());
    CellChecks checks;
    for (int row = 1; row <= rows; ++row) {
        const KeptLine& line = LineOrBlank(row);
        for (int c = 1; c <= kColumnCount; ++c) {
            if (!Differs(grid, row, c, line)) continue;
            const auto at = static_cast<std::size_t>(c - 1);
            grid.RestoreText(row, c, line.texts[at], line.refusals[at]);
        }
    }
    MarkRows(grid, 1, rows, checks);
    grid.SetReDraw(true);
    state_.open.TakeRows(kept);
}

void KeptLines::Touched() {
    pending_ = false;
    state_.open.SetNotice({});
}

}  // namespace vicenter::center
