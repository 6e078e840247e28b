#include "center/grid/number_bands.h"

#include <algorithm>

namespace vicenter::center {

NumberBands::NumberBands(EntryGrid& grid) : grid_(grid) {
    grid_.AddObserver(*this);
}

NumberBands::~NumberBands() {
    grid_.RemoveObserver(*this);
}

bool NumberBands::IsShaded(int row) const {
    if (row < 1 || row > grid_.RowTotal() || NumberOfRow(grid_, row).empty()) return false;
    while (odd_.size() < static_cast<std::size_t>(row)) {
        const int next = static_cast<int>(odd_.size()) + 1;
        // Before the first band nothing has begun: the first one is plain.
        const bool before = odd_.empty() || odd_.back();
        const bool begins = !NumberOfRow(grid_, next).empty() && !Repeats(next);
        odd_.push_back(begins != before);
    }
    return odd_[static_cast<std::size_t>(row) - 1];
}

bool NumberBands::IsFirst(int row) const {
    return row > 1 && NumberOfRow(grid_, row) != NumberOfRow(grid_, row - 1);
}

bool NumberBands::Repeats(int row) const {
    const std::string_view number = NumberOfRow(grid_, row);
    return row > 1 && !number.empty() && number == NumberOfRow(grid_, row - 1);
}

void NumberBands::ForgetFrom(int row) {
    odd_.resize(std::min(odd_.size(), static_cast<std::size_t>(std::max(row - 1, 0))));
}

void NumberBands::TextsChanged(const CellRange& range) {
    if (range.firstColumn <= column::kNo && column::kNo <= range.lastColumn) ForgetFrom(range.firstRow);
}

void NumberBands::RowsInserted(int firstRow, int /*count*/) {
    ForgetFrom(firstRow);
}

void NumberBands::RowsRemoved(int firstRow, int /*count*/) {
    ForgetFrom(firstRow);
}

void NumberBands::WasReset() {
    ForgetFrom(1);
}

}  // namespace vicenter::center
