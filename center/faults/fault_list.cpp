#include "center/faults/fault_list.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "center/editing/cell_checks.h"
#include "center/editing/fault_text.h"
#include "center/health/line_hints.h"
#include "center/template/template_save.h"

namespace vicenter::center {

namespace {

constexpr std::uint32_t Bit(int gridColumn) {
    return std::uint32_t{1} << static_cast<unsigned>(gridColumn);
}

}  // namespace

// --- keeping up with the grid

FaultList::Columns FaultList::RedOf(int row) const {
    const EntryGrid& grid = *state_.grid;
    Columns red = 0;
    for (int c = 1; c <= kColumnCount; ++c) {
        if (grid.Look(row, c).foreColor == color::kRed && !IsRedWithItsCode(grid, {row, c})) red |= Bit(c);
    }
    return red;
}

FaultList::Columns FaultList::MissingOf(int row) const {
    Columns missing = 0;
    if (row > state_.open.RowCount()) return missing;
    for (const Finding& finding : FindingsOfRow(*state_.grid, row))
        missing |= Bit(finding.column);
    return missing;
}

FaultList::Columns FaultList::HintsOf(int row) const {
    Columns hints = 0;
    if (row > state_.open.RowCount()) return hints;
    for (const CellHint& hint : HintsOfLine(*state_.grid, row, state_.accounts))
        hints |= Bit(hint.column);
    return hints;
}

const std::map<int, std::string>& FaultList::NumberHints() const {
    const int lines = state_.open.RowCount();
    if (!numberHints_ || std::exchange(hintedRows_, lines) != lines) {
        numberHints_ = HintsOfNumbers(*state_.grid, lines);
        hintedRows_ = lines;
        std::erase_if(*numberHints_,
                      [this](const auto& hint) { return (At(hint.first).Faulty() & Bit(column::kNo)) != 0; });
    }
    return *numberHints_;
}

const FaultList::RowFaults& FaultList::At(int row) const {
    static const RowFaults none;
    const auto index = static_cast<std::size_t>(row - 1);
    return row >= 1 && index < rows_.size() ? rows_[index] : none;
}

void FaultList::Put(int row, const RowFaults& faults) {
    const auto index = static_cast<std::size_t>(row - 1);
    if (index >= rows_.size()) {
        if (faults.All() == 0) return;
        rows_.resize(index + 1);
    }
    Leave(rows_[index]);
    rows_[index] = faults;
    count_ += std::popcount(faults.Faulty());
    hintCount_ += std::popcount(faults.hints);
}

void FaultList::Leave(const RowFaults& faults) {
    count_ -= std::popcount(faults.Faulty());
    hintCount_ -= std::popcount(faults.hints);
}

void FaultList::AccountLearned() {
    for (int row = 1; row <= state_.open.RowCount(); ++row) {
        RowFaults faults = At(row);
        const Columns hints = HintsOf(row) & ~faults.Faulty();
        if (hints == faults.hints) continue;
        faults.hints = hints;
        Put(row, faults);
    }
}

void FaultList::CellsChanged(const CellRange& range) {
    numberHints_.reset();
    const int last = std::min(range.lastRow, state_.grid->RowTotal());
    for (int row = std::max(1, range.firstRow); row <= last; ++row) {
        const auto index = static_cast<std::size_t>(row - 1);
        const bool hadMissing = index < rows_.size() && rows_[index].missing != 0;
        const Columns red = RedOf(row);
        const Columns missing = hadMissing ? MissingOf(row) : 0;
        // What is wrong needs no hint.
        Put(row, {red, missing, HintsOf(row) & ~(red | missing)});
    }
}

void FaultList::RowsInserted(int firstRow, int count) {
    const auto at = static_cast<std::size_t>(firstRow - 1);
    if (at < rows_.size())
        rows_.insert(rows_.begin() + firstRow - 1, static_cast<std::size_t>(count), RowFaults());
    // Undo brings rows back with their colours.
    CellsChanged({firstRow, 1, firstRow + count - 1, kColumnCount});
}

void FaultList::RowsRemoved(int firstRow, int count) {
    numberHints_.reset();
    const auto first = std::min(static_cast<std::size_t>(firstRow - 1), rows_.size());
    const auto last = std::min(first + static_cast<std::size_t>(count), rows_.size());
    for (std::size_t i = first; i < last; ++i)
        Leave(rows_[i]);
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(first),
                rows_.begin() + static_cast<std::ptrdiff_t>(last));
}

void FaultList::WasReset() {
    numberHints_.reset();
    rows_.clear();
    count_ = 0;
    hintCount_ = 0;
}

void FaultList::AddMissing() {
    numberHints_.reset();
    for (const Finding& finding : AllFindings(*state_.grid, state_.open.RowCount())) {
        const auto index = static_cast<std::size_t>(finding.row - 1);
        RowFaults faults = index < rows_.size() ? rows_[index] : RowFaults();
        faults.missing |= Bit(finding.column);
        faults.hints &= ~faults.missing;
        Put(finding.row, faults);
    }
}

// --- asking

std::vector<CellAddress> FaultList::Cells() const {
    std::vector<CellAddress> cells;
    cells.reserve(static_cast<std::size_t>(count_) + static_cast<std::size_t>(hintCount_));
    const std::map<int, std::string>& numbers = NumberHints();
    const int last = numbers.empty() ? 0 : numbers.rbegin()->first;
    for (int row = 1; row <= std::max(static_cast<int>(rows_.size()), last); ++row) {
        Columns left = At(row).All();
        if (numbers.contains(row)) left |= Bit(column::kNo);
        for (; left != 0; left &= left - 1)
            cells.push_back({row, std::countr_zero(left)});
    }
    return cells;
}

int FaultList::HintCount() const {
    return hintCount_ + static_cast<int>(NumberHints().size());
}

bool FaultList::IsHint(const CellAddress& cell) const {
    if (cell.column == column::kNo) return NumberHints().contains(cell.row);
    return (At(cell.row).hints & Bit(cell.column)) != 0;
}

std::string FaultList::HintText(const CellAddress& cell) const {
    if (!IsHint(cell)) return {};
    if (cell.column == column::kNo) return NumberHints().at(cell.row);
    for (CellHint& hint : HintsOfLine(*state_.grid, cell.row, state_.accounts)) {
        if (hint.column == cell.column) return std::move(hint.text);
    }
    return {};
}

Fault FaultList::Describe(const CellAddress& cell) const {
    const EntryGrid& grid = *state_.grid;
    Fault fault{cell, std::string(grid.Text(cell.row, cell.column)), FaultText(grid, cell),
                grid.Layout(cell.column).hidden};
    const bool faulty = (At(cell.row).Faulty() & Bit(cell.column)) != 0;
    if (!fault.reason.empty() || (!faulty && !IsHint(cell))) return fault;
    for (const Finding& finding : FindingsOfRow(grid, cell.row)) {
        if (finding.column == cell.column) fault.reason = finding.reason;
    }
    if (!fault.reason.empty() || !IsHint(cell)) return fault;
    fault.hint = true;
    fault.reason = "提示：" + HintText(cell);
    return fault;
}

std::optional<CellAddress> FaultList::Next(const CellAddress& from, bool back) const {
    // What must be mended; a hint is looked up in the list.
    std::vector<CellAddress> cells = Cells();
    std::erase_if(
        cells, [this](const CellAddress& cell) { return (At(cell.row).Faulty() & Bit(cell.column)) == 0; });
    if (cells.empty()) return std::nullopt;
    const auto before = [](const CellAddress& a, const CellAddress& b) {
        return a.row != b.row ? a.row < b.row : a.column < b.column;
    };
    if (back) {
        const auto at = std::lower_bound(cells.begin(), cells.end(), from, before);
        return at == cells.begin() ? cells.back() : *std::prev(at);
    }
    const auto at = std::upper_bound(cells.begin(), cells.end(), from, before);
    return at == cells.end() ? cells.front() : *at;
}

std::string FaultList::HiddenFaultText(int row) const {
    std::string text;
    for (Columns left = At(row).Faulty(); left != 0; left &= left - 1) {
        const int gridColumn = std::countr_zero(left);
        if (!state_.grid->Layout(gridColumn).hidden) continue;
        if (!text.empty()) text += "；";
        text +=
            "隐藏列“" + std::string(Column(gridColumn).header) + "”：" + Describe({row, gridColumn}).reason;
    }
    return text;
}

}  // namespace vicenter::center
