#include "center/template/open_template.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "automation/error.h"

namespace vicenter::center {

OpenTemplate::OpenTemplate(EntryGrid& grid, ModifiedListener modified)
    : grid_(grid), modified_(std::move(modified)), journal_(grid) {
    grid_.SetRecorder(this);
}

OpenTemplate::~OpenTemplate() {
    grid_.SetRecorder(nullptr);
}

void OpenTemplate::Blank() {
    journal_.Drop();
    notice_.clear();
    // Observers see one reset: first no rows, then the blank ones.
    grid_.Clear(0);
    grid_.Clear(kFirstRowTotal);
    rowCount_ = 0;
    touched_ = false;
    SetDirty(false);
}

void OpenTemplate::SetDirty(bool dirty) {
    if (std::exchange(dirty_, dirty) != dirty && modified_) modified_(id_, dirty);
}

void OpenTemplate::Close() {
    Blank();
    linesKnown_ = true;  // there are none
    id_.clear();
    name_.clear();
    entryCount_ = 0;
}

void OpenTemplate::Open(const std::string& id, const std::string& name) {
    Blank();
    linesKnown_ = false;
    id_ = id;
    name_ = name;
}

void OpenTemplate::ReadLines() {
    std::optional<int> lines;
    try {
        lines = LoadLines(grid_, id_, &loaded_);
    } catch (const automation::Error&) {
        grid_.Clear(kFirstRowTotal);
    }
    linesKnown_ = lines.has_value();
    if (!lines) return;
    entryCount_ = *lines;
    rowCount_ = *lines;
}

void OpenTemplate::Become(const std::string& id, const std::string& name) {
    const bool dirty = dirty_;
    SetDirty(false);
    id_ = id;
    name_ = name;
    SetDirty(dirty);
    loaded_ = {};
}

void OpenTemplate::Settle() {
    if (linesKnown_) loaded_ = DigestOfRows(grid_, rowCount_);
    touched_ = false;
    SetDirty(false);
}

void OpenTemplate::TakeRows(int rows) {
    rowCount_ = rows;
    SetDirty(true);
}

void OpenTemplate::TypedUpon(const LinesDigest& loaded) {
    linesKnown_ = true;
    loaded_ = loaded;
}

// Back where it was read or saved the template is unmodified again, by whatever way it has come there.
JournalMark OpenTemplate::Return(JournalMark mark) {
    rowCount_ = mark.rowCount;
    SetDirty(touched_ || !linesKnown_ || !(DigestOfRows(grid_, rowCount_) == loaded_));
    return mark;
}

// --- what the grid reports

void OpenTemplate::TextReplaced(int row, int gridColumn, std::string_view before, TextVerdict refusal) {
    const UndoStep step(*this);
    journal_.TextReplaced(row, gridColumn, before, refusal);
    SetDirty(true);
    // A blank row counts as in use once any of its cells has content. Whoever writes further down than the
    // first blank row takes the rows between along: nothing that was written is ever left out of a save.
    if (row > rowCount_ && !grid_.IsBlankRow(row)) rowCount_ = row;
    // The last row that is emptied again is no line any more, nor are blank ones above it.
    if (row == rowCount_ && grid_.IsBlankRow(row)) {
        while (rowCount_ > 0 && grid_.IsBlankRow(rowCount_))
            --rowCount_;
    }
}

void OpenTemplate::RowsInserted(int firstRow, int count) {
    const UndoStep step(*this);
    journal_.RowsInserted(firstRow, count);
    // Below the lines blank rows come and go; lines that are put there as a whole are lines.
    const bool lines = firstRow <= rowCount_ || (firstRow == rowCount_ + 1 && !grid_.IsBlankRow(firstRow));
    if (!lines) return;
    rowCount_ += count;
    SetDirty(true);
}

void OpenTemplate::RowsRemoved(int firstRow, std::vector<GridRowPtr> rows) {
    const UndoStep step(*this);
    const int lastRow = firstRow + static_cast<int>(rows.size()) - 1;
    journal_.RowsRemoved(firstRow, std::move(rows));
    const int used = std::min(lastRow, rowCount_) - firstRow + 1;
    if (used <= 0) return;
    rowCount_ -= used;
    SetDirty(true);
}

}  // namespace vicenter::center
