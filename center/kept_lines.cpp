#include "center/kept_lines.h"

#include <algorithm>

namespace vicenter::center {

namespace {

// Rows are filled without a trace in the journal.
class Unrecorded {
  public:
    explicit Unrecorded(EntryGrid& grid) : grid_(grid), recorder_(grid.Recorder()) {
        grid_.SetRecorder(nullptr);
    }
    Unrecorded(const Unrecorded&) = delete;
    Unrecorded& operator=(const Unrecorded&) = delete;
    ~Unrecorded() { grid_.SetRecorder(recorder_); }

  private:
    EntryGrid& grid_;
    GridRecorder* recorder_;
};

// The blank rows below lines that a grid always has.
void MakeRoom(EntryGrid& grid, int lines) {
    const Unrecorded growing(grid);
    if (grid.RowTotal() < lines + 2) grid.SetRowTotal(lines + 2);
}

}  // namespace

std::vector<LineTexts> TextsOfRows(const EntryGrid& grid, int rowCount) {
    std::vector<LineTexts> lines(static_cast<std::size_t>(std::max(0, rowCount)));
    for (int row = 1; row <= rowCount; ++row) {
        for (int c = 1; c <= kColumnCount; ++c)
            lines[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(c - 1)] = grid.Text(row, c);
    }
    return lines;
}

void KeptLines::Take() {
    lines_ = TextsOfRows(*state_.grid, state_.rowCount);
    pending_ = false;
}

bool KeptLines::OfferUndo(const std::string& notice) {
    EntryGrid& grid = *state_.grid;
    const int kept = static_cast<int>(lines_.size());
    MakeRoom(grid, kept);
    JournalMark before = state_.Mark();
    before.rowCount = kept;
    before.dirty = true;
    bool differs = kept != state_.rowCount;
    state_.journal.Open(before);
    for (int row = 1; row <= std::max(kept, state_.rowCount); ++row) {
        for (int c = 1; c <= kColumnCount; ++c) {
            const std::string_view own =
                row <= kept ? std::string_view(
                                  lines_[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(c - 1)])
                            : std::string_view();
            if (grid.Text(row, c) == own) continue;
            // No line with a refused text is ever sent: what was kept has been taken.
            state_.journal.TextReplaced(row, c, own, TextVerdict::Taken);
            differs = true;
        }
    }
    // Taking the step back is a change of what was loaded.
    JournalMark after = state_.Mark();
    after.dirty = true;
    state_.journal.Close(after);
    pending_ = differs;
    if (differs) state_.notice = notice;
    return differs;
}

void KeptLines::PutBack() {
    EntryGrid& grid = *state_.grid;
    MakeRoom(grid, static_cast<int>(lines_.size()));
    const Unrecorded filling(grid);
    grid.SetReDraw(false);
    int row = 0;
    for (const LineTexts& line : lines_)
        grid.FillRow(++row, line);
    grid.SetReDraw(true);
    state_.rowCount = row;
    state_.dirty = true;
}

void KeptLines::Touched() {
    pending_ = false;
    state_.notice.clear();
}

}  // namespace vicenter::center
