#include "center/health/template_check.h"

#include <algorithm>
#include <map>

#include "center/editing/cell_checks.h"
#include "center/editing/fault_text.h"
#include "center/frame/status_line.h"
#include "center/grid/columns.h"
#include "store/cls_vi_data.h"

namespace vicenter::center {

namespace {

using Kind = TemplateFinding::Kind;

// The lines of a number as one text; ids, which nobody sees, left out.
std::string PatternOf(const EntryGrid& grid, const std::vector<int>& rows) {
    std::string pattern;
    for (const int row : rows) {
        for (const ColumnSpec& spec : Columns()) {
            if (spec.kind == CellKind::Id || spec.column == column::kNo) continue;
            pattern.append(grid.Text(row, spec.column)) += '\0';
        }
    }
    return pattern;
}

void AddFaults(const EntryGrid& grid, int row, std::vector<TemplateFinding>& findings) {
    for (const ColumnSpec& spec : Columns()) {
        if (IsRedWithItsCode(grid, {row, spec.column})) continue;
        std::string reason = FaultText(grid, {row, spec.column});
        if (reason.empty()) continue;
        findings.push_back({Kind::Fault, row, spec.column, std::string(grid.Text(row, column::kNo)),
                            std::string(grid.Text(row, spec.column)), std::move(reason)});
    }
}

}  // namespace

bool TemplateCheck::TakesItems(const std::string& accountNumber) {
    const auto [known, asked] = takesItems_.try_emplace(accountNumber, false);
    if (!asked) return known->second;
    const ado::RecordsetRef items = store::clsVIData().GetItems(accountNumber);
    return known->second =
               items != nullptr && items->RecordCount() > 0 && items->Value("FDetailCount").ToInt32() > 0;
}

std::vector<TemplateFinding> TemplateCheck::Check(const EntryGrid& grid, int rowCount) {
    std::map<std::string, std::vector<int>> rowsOf;
    for (int row = 1; row <= rowCount; ++row)
        rowsOf[std::string(grid.Text(row, column::kNo))].push_back(row);
    const StatusState sums = SumUp(grid, rowCount, 0);
    const auto unbalanced = [&](const std::string& number) {
        return std::find(sums.unbalanced.begin(), sums.unbalanced.end(), number) != sums.unbalanced.end();
    };
    std::vector<TemplateFinding> findings;
    std::unordered_map<std::string, std::string> numberOfPattern;
    for (int row = 1; row <= rowCount; ++row) {
        const std::string number(grid.Text(row, column::kNo));
        const std::vector<int>& rows = rowsOf[number];
        if (row == rows.front()) {
            if (unbalanced(number)) findings.push_back({Kind::Hint, row, 0, number, "", "借贷金额不平"});
            const auto [same, isNew] = numberOfPattern.try_emplace(PatternOf(grid, rows), number);
            if (!isNew)
                findings.push_back({Kind::Hint, row, 0, number, "", "与 " + same->second + " 号完全相同"});
        }
        const std::size_t before = findings.size();
        AddFaults(grid, row, findings);
        const std::string account(grid.Text(row, column::kAccountNumber));
        // Of an account that is refused itself nobody can say what it takes.
        if (findings.size() == before && !account.empty() && grid.Text(row, column::kItems).empty() &&
            TakesItems(account))
            findings.push_back(
                {Kind::Hint, row, column::kItems, number, "", "科目核算项目，尚未录入核算项目"});
    }
    return findings;
}

}  // namespace vicenter::center
