#include "center/editing/cell_checks.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "entry/host_context.h"
#include "platform/ado/side_by_side.h"
#include "store/cls_vi_data.h"

namespace vicenter::center {

namespace {

int SubjectOf(int check) {
    return store::SubjectOf(static_cast<store::CellCheck>(check));
}

// An empty subject is valid without a question.
bool NeedsNoQuestion(int check, std::string_view subject) {
    if (subject.empty()) return true;
    return static_cast<store::CellCheck>(check) == store::CellCheck::Items &&
           std::all_of(subject.begin(), subject.end(), [](char c) { return c == ','; });
}

void Paint(EntryGrid& grid, const CellAddress& cell, bool red) {
    grid.SetForeColor({cell.row, cell.column, cell.row, cell.column}, red ? color::kRed : color::kBlack);
}

void SetCellsRed(EntryGrid& grid, int row, int check, bool red) {
    for (int c = SubjectOf(check); CheckOfColumn(c) == check; ++c)
        Paint(grid, {row, c}, red || OwnVerdict(grid, {row, c}) != TextVerdict::Taken);
    grid.SetFaultyCheck(row, check, red);
}

}  // namespace

int CheckOfColumn(int gridColumn) {
    return static_cast<int>(store::CheckOf(gridColumn));
}

TextVerdict OwnVerdict(const EntryGrid& grid, const CellAddress& cell) {
    if (cell.column < 1 || cell.column > kColumnCount) return TextVerdict::Taken;
    const TextVerdict refusal = grid.Refusal(cell.row, cell.column);
    if (refusal != TextVerdict::Taken) return refusal;
    const CellKind kind = Column(cell.column).kind;
    const bool number =
        kind == CellKind::TemplateNumber || kind == CellKind::Whole || kind == CellKind::Decimal;
    if (!number) return TextVerdict::Taken;
    const std::string_view text = grid.Text(cell.row, cell.column);
    return text.empty() ? TextVerdict::Taken : CheckTypedText(cell.column, text);
}

bool IsRedWithItsCode(const EntryGrid& grid, const CellAddress& cell) {
    return cell.column == column::kAccountName &&
           grid.Look(cell.row, column::kAccountNumber).foreColor == color::kRed &&
           OwnVerdict(grid, cell) == TextVerdict::Taken;
}

void MarkOwnVerdict(EntryGrid& grid, const CellAddress& cell) {
    if (OwnVerdict(grid, cell) != TextVerdict::Taken) {
        Paint(grid, cell, true);
    } else if (grid.FaultyCheck(cell.row, cell.column) == 0) {
        Paint(grid, cell, false);
    }
}

bool CellChecks::Asks(const EntryGrid& grid, int row, int check) {
    const std::string_view subject = grid.Text(row, SubjectOf(check));
    if (NeedsNoQuestion(check, subject)) return false;
    key_.assign(grid.Text(row, column::kAccountNumber));
    key_ += '\0';
    if (check != 1) key_ += subject;
    return true;
}

bool CellChecks::Ask(const EntryGrid& grid, int row, int check) {
    const auto text = [&](int c) { return std::string(grid.Text(row, c)); };
    return store::clsVIData().CheckErrorCell(check, text(column::kAccountNumber), text(column::kSettleName),
                                             text(column::kCurrencyName), text(column::kUnitName),
                                             text(column::kItems));
}

bool CellChecks::IsValid(const EntryGrid& grid, int row, int check) {
    if (!Asks(grid, row, check)) return true;
    auto& answers = answers_[static_cast<std::size_t>(check)];
    if (const auto known = answers.find(key_); known != answers.end()) return known->second;
    const bool valid = Ask(grid, row, check);
    answers.emplace(key_, valid);
    return valid;
}

void CellChecks::AskAhead(const EntryGrid& grid, const std::vector<int>& rows) {
    const std::string propsString = entry::GetPropsString();
    if (!ado::PaysToAskSideBySide(propsString)) return;
    std::vector<std::function<void()>> questions;
    for (const int row : rows) {
        for (int check = 1; check <= kCheckCount; ++check) {
            if (!Asks(grid, row, check)) continue;
            // Red until it is answered, as one that fails is.
            const auto [answer, isNew] = answers_[static_cast<std::size_t>(check)].emplace(key_, false);
            if (!isNew) continue;
            bool& valid = answer->second;
            questions.emplace_back([&grid, &valid, row, check] { valid = Ask(grid, row, check); });
        }
    }
    ado::AskSideBySide(propsString, questions);
}

void MarkCells(EntryGrid& grid, int row, int check, CellChecks& checks) {
    SetCellsRed(grid, row, check, !checks.IsValid(grid, row, check));
}

void MarkRow(EntryGrid& grid, int row, CellChecks& checks) {
    const bool redraw = grid.ReDraw();
    grid.SetReDraw(false);
    grid.SetForeColor({row, 1, row, kColumnCount}, color::kBlack);
    for (int check = 1; check <= kCheckCount; ++check)
        MarkCells(grid, row, check, checks);
    for (int c = 1; c <= kColumnCount; ++c) {
        if (OwnVerdict(grid, {row, c}) != TextVerdict::Taken) Paint(grid, {row, c}, true);
    }
    grid.SetReDraw(redraw);
}

void MarkRows(EntryGrid& grid, int firstRow, int lastRow, CellChecks& checks) {
    std::vector<int> rows;
    for (int row = firstRow; row <= lastRow; ++row)
        rows.push_back(row);
    MarkRows(grid, rows, checks);
}

void MarkRows(EntryGrid& grid, const std::vector<int>& rows, CellChecks& checks) {
    checks.AskAhead(grid, rows);
    for (const int row : rows)
        MarkRow(grid, row, checks);
}

}  // namespace vicenter::center
