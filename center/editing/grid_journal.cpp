#include "center/editing/grid_journal.h"

#include <algorithm>
#include <utility>

namespace vicenter::center {

namespace {

// While changes are taken back, the grid tells nobody but this catcher, which keeps the rows that go.
class Catcher : public GridRecorder {
  public:
    explicit Catcher(EntryGrid& grid) : grid_(grid), saved_(grid.Recorder()) {
        grid_.SetRecorder(this);
        grid_.SetReDraw(false);
    }
    Catcher(const Catcher&) = delete;
    Catcher& operator=(const Catcher&) = delete;
    ~Catcher() override {
        grid_.SetRecorder(saved_);
        grid_.SetReDraw(true);
    }

    void TextReplaced(int, int, std::string_view, TextVerdict) override {}
    void RowsInserted(int, int) override {}
    void RowsRemoved(int, std::vector<GridRowPtr> rows) override { removed = std::move(rows); }

    std::vector<GridRowPtr> removed;

  private:
    EntryGrid& grid_;
    GridRecorder* saved_;
};

}  // namespace

void GridJournal::Open(const JournalMark& before, bool join) {
    if (depth_++ > 0) return;
    joining_ = join && CanJoin();
    current_ = {};
    current_.before = before;
}

void GridJournal::Close(const JournalMark& after) {
    if (--depth_ > 0) return;
    if (current_.changes.empty() && current_.before.rowCount == after.rowCount) return;
    if (joining_) {
        Step& last = done_.back();
        std::move(current_.changes.begin(), current_.changes.end(), std::back_inserter(last.changes));
        last.after = after;
    } else {
        current_.after = after;
        done_.push_back(std::move(current_));
        if (done_.size() > kMostSteps) done_.pop_front();
    }
    current_ = {};
    undone_.clear();
}

void GridJournal::TextReplaced(int row, int gridColumn, std::string_view before, TextVerdict refusal) {
    current_.changes.emplace_back(Text{row, gridColumn, std::string(before), refusal});
}

void GridJournal::RowsInserted(int firstRow, int count) {
    current_.changes.emplace_back(Inserted{firstRow, count});
}

void GridJournal::RowsRemoved(int firstRow, std::vector<GridRowPtr> rows) {
    current_.changes.emplace_back(Removed{firstRow, std::move(rows)});
}

// Takes the change back and leaves its inverse in its place.
void GridJournal::Apply(Change& change, JournalMark& rows) {
    if (auto* text = std::get_if<Text>(&change)) {
        rows.firstRow = rows.lastRow == 0 ? text->row : std::min(rows.firstRow, text->row);
        rows.lastRow = std::max(rows.lastRow, text->row);
        std::string now(grid_.Text(text->row, text->column));
        const TextVerdict refusal = grid_.Refusal(text->row, text->column);
        grid_.RestoreText(text->row, text->column, text->other, text->refusal);
        text->other = std::move(now);
        text->refusal = refusal;
        return;
    }
    if (auto* inserted = std::get_if<Inserted>(&change)) {
        auto& catcher = static_cast<Catcher&>(*grid_.Recorder());
        const int firstRow = inserted->firstRow;
        grid_.RemoveRows(firstRow, inserted->count);
        // Rows below have moved up, those of this step among them.
        rows.firstRow = std::max(1, std::min(rows.firstRow, rows.firstRow - inserted->count));
        change = Removed{firstRow, std::move(catcher.removed)};
        return;
    }
    auto& removed = std::get<Removed>(change);
    const int firstRow = removed.firstRow;
    const int count = static_cast<int>(removed.rows.size());
    grid_.RestoreRows(firstRow, std::move(removed.rows));
    if (rows.lastRow > 0) rows.lastRow += count;
    change = Inserted{firstRow, count};
}

JournalMark GridJournal::Undo() {
    Step step = std::move(done_.back());
    done_.pop_back();
    JournalMark mark = step.before;
    {
        const Catcher catcher(grid_);
        for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change)
            Apply(*change, mark);
    }
    undone_.push_back(std::move(step));
    return mark;
}

JournalMark GridJournal::Redo() {
    Step step = std::move(undone_.back());
    undone_.pop_back();
    JournalMark mark = step.after;
    {
        const Catcher catcher(grid_);
        for (Change& change : step.changes)
            Apply(change, mark);
    }
    done_.push_back(std::move(step));
    return mark;
}

void GridJournal::Drop() {
    done_.clear();
    undone_.clear();
    current_ = {};
}

}  // namespace vicenter::center
