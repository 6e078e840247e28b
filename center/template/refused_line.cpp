#include "center/template/refused_line.h"

#include "center/template/template_save.h"
#include "entry/screen.h"

namespace vicenter::center {

void RefusedLine::Mark(int row) {
    entry::HighlightGridRow(row, *state_.grid);
    row_ = row;
}

bool RefusedLine::IsColoured(int row) const {
    return state_.grid->Look(row, 1).backColor == entry::kPaleYellow;
}

void RefusedLine::RowsInserted(int firstRow, int count) {
    if (firstRow <= row_) row_ += count;
    // A deleted line that undo brings back brings its colour along.
    for (int row = firstRow; row_ == 0 && row < firstRow + count; ++row) {
        if (IsColoured(row)) row_ = row;
    }
}

void RefusedLine::RowsRemoved(int firstRow, int count) {
    if (row_ >= firstRow + count) {
        row_ -= count;
    } else if (row_ >= firstRow) {
        row_ = 0;
    }
}

void RefusedLine::TextsChanged() {
    if (row_ == 0) return;
    // Another row may have been coloured since, by a search.
    const bool stays =
        row_ <= state_.open.RowCount() && IsColoured(row_) && !FindingsOfRow(*state_.grid, row_).empty();
    if (stays) return;
    if (IsColoured(row_)) state_.grid->SetBackColor({row_, 1, row_, kColumnCount}, entry::kWhite);
    row_ = 0;
}

}  // namespace vicenter::center
