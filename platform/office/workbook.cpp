#include "platform/office/workbook.h"

#include <algorithm>

#include "automation/object.h"

namespace vicenter::office {

namespace {

struct ErrorName {
    CellError error;
    std::string_view text;
};

constexpr ErrorName kErrorNames[] = {
    {CellError::Null, "#NULL!"}, {CellError::Div0, "#DIV/0!"}, {CellError::Value, "#VALUE!"},
    {CellError::Ref, "#REF!"},   {CellError::Name, "#NAME?"},  {CellError::Num, "#NUM!"},
    {CellError::NA, "#N/A"},     {CellError::Calc, "#CALC!"},
};

// A row costs its vector and the allocator's header of its cells.
constexpr std::size_t kRowBytes = sizeof(Row) + 16;

}  // namespace

std::string_view CellErrorText(CellError error) {
    for (const ErrorName& entry : kErrorNames) {
        if (entry.error == error) return entry.text;
    }
    return "#VALUE!";
}

CellError CellErrorFromText(std::string_view text) {
    for (const ErrorName& entry : kErrorNames) {
        if (entry.text == text) return entry.error;
    }
    return CellError::Value;
}

const Cell* Sheet::Find(std::uint32_t row, std::uint32_t column) const {
    if (row >= rows_.size()) return nullptr;
    const Row& cells = rows_[row];
    // A row without gaps from column A on, as nearly every row is.
    if (column < cells.size() && cells[column].column == column) return &cells[column];
    const auto place =
        std::lower_bound(cells.begin(), cells.end(), column,
                         [](const Cell& cell, std::uint32_t wanted) { return cell.column < wanted; });
    return place != cells.end() && place->column == column ? &*place : nullptr;
}

Row& Sheet::RowAt(std::uint32_t row) {
    if (row >= rows_.size()) {
        if (row >= kMaxRows) FailTooLarge();
        workbook_.Charge((row + 1 - rows_.size()) * kRowBytes);
        rows_.resize(row + 1);
    }
    return rows_[row];
}

// The rows of a table are alike: a row begins with room for the columns in use, or as many as the row above
// it has, and grows little by little from there. Doubling would leave half of most rows unused.
std::size_t Sheet::RoomFor(std::uint32_t row) const {
    constexpr std::size_t kMostAtFirst = 32;
    const std::size_t size = rows_[row].size();
    if (size > 0) return size + std::max<std::size_t>(4, size / 4);
    const std::size_t columns = anyUsed_ ? used_.lastColumn - used_.firstColumn + 1 : 1;
    return std::max(std::min(columns, kMostAtFirst), row > 0 ? rows_[row - 1].size() : 0);
}

Cell& Sheet::At(std::uint32_t row, std::uint32_t column) {
    if (column >= kMaxColumns) FailTooLarge();
    Row& cells = RowAt(row);
    if (column < cells.size() && cells[column].column == column) return cells[column];
    auto place = cells.end();
    if (!cells.empty() && cells.back().column >= column) {
        place = std::lower_bound(cells.begin(), cells.end(), column,
                                 [](const Cell& cell, std::uint32_t wanted) { return cell.column < wanted; });
        if (place->column == column) return *place;
    }
    if (cells.size() == cells.capacity()) {
        const auto before = place - cells.begin();
        cells.reserve(RoomFor(row));
        place = cells.begin() + before;
    }
    workbook_.Charge(sizeof(Cell));
    Cell cell;
    cell.column = static_cast<std::uint16_t>(column);
    const auto setting = columns_.find(column);
    if (setting != columns_.end()) cell.format = setting->second.format;
    ExtendUsedArea(row, column);
    return *cells.insert(place, cell);
}

Cell& Sheet::Append(std::uint32_t row, std::uint32_t column, std::uint16_t format) {
    if (column >= kMaxColumns) FailTooLarge();
    Row& cells = RowAt(row);
    if (!cells.empty() && cells.back().column >= column) {
        Cell& cell = At(row, column);
        cell.format = format;
        return cell;
    }
    if (cells.empty() && row > 0) cells.reserve(rows_[row - 1].size());
    workbook_.Charge(sizeof(Cell));
    ExtendUsedArea(row, column);
    Cell& cell = cells.emplace_back();
    cell.column = static_cast<std::uint16_t>(column);
    cell.format = format;
    return cell;
}

void Sheet::FinishRow(std::uint32_t row) {
    if (row < rows_.size() && rows_[row].capacity() > rows_[row].size()) rows_[row].shrink_to_fit();
}

CellArea Sheet::UsedArea() const {
    return used_;
}

void Sheet::ExtendUsedArea(std::uint32_t row, std::uint32_t column) {
    if (!anyUsed_) {
        used_ = {row, column, row, column};
        anyUsed_ = true;
        return;
    }
    used_.firstRow = std::min(used_.firstRow, row);
    used_.firstColumn = std::min(used_.firstColumn, column);
    used_.lastRow = std::max(used_.lastRow, row);
    used_.lastColumn = std::max(used_.lastColumn, column);
}

Sheet& Workbook::AddSheet(std::string name, std::size_t position) {
    if (sheets_.size() >= kMaxSheets) FailTooLarge();
    auto sheet = std::make_unique<Sheet>(*this, std::move(name));
    Sheet& result = *sheet;
    position = std::min(position, sheets_.size());
    sheets_.insert(sheets_.begin() + static_cast<std::ptrdiff_t>(position), std::move(sheet));
    return result;
}

Sheet* Workbook::FindSheet(std::string_view name) const {
    for (const auto& sheet : sheets_) {
        if (automation::SameName(sheet->Name(), name)) return sheet.get();
    }
    return nullptr;
}

}  // namespace vicenter::office
