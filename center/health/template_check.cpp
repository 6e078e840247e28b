#include "center/health/template_check.h"

#include <map>
#include <set>
#include <utility>

#include "center/editing/cell_checks.h"
#include "center/editing/fault_text.h"
#include "center/grid/columns.h"
#include "center/health/line_hints.h"
#include "center/template/template_save.h"

namespace vicenter::center {

namespace {

using Kind = TemplateFinding::Kind;

// One thing is said of each cell: what is wrong needs no hint.
class RowFindings {
  public:
    RowFindings(const EntryGrid& grid, int row, std::vector<TemplateFinding>& all)
        : grid_(grid), row_(row), all_(all) {}

    void Add(Kind kind, int column, std::string reason) {
        if (!cells_.insert(column).second) return;
        all_.push_back({kind, row_, column, std::string(grid_.Text(row_, column::kNo)),
                        std::string(grid_.Text(row_, column)), std::move(reason)});
    }
    void AddOfNumber(std::string reason) {
        if (!cells_.insert(column::kNo).second) return;
        all_.push_back(
            {Kind::Hint, row_, 0, std::string(grid_.Text(row_, column::kNo)), "", std::move(reason)});
    }

  private:
    const EntryGrid& grid_;
    int row_;
    std::vector<TemplateFinding>& all_;
    std::set<int> cells_;
};

}  // namespace

std::vector<TemplateFinding> TemplateCheck::Check(const EntryGrid& grid, int rowCount) {
    accounts_.AskOfLines(grid, rowCount);
    std::map<int, std::string> ofNumbers = HintsOfNumbers(grid, rowCount);
    std::map<int, std::vector<Finding>> missing;
    for (Finding& finding : AllFindings(grid, rowCount))
        missing[finding.row].push_back(std::move(finding));
    std::vector<TemplateFinding> findings;
    for (int row = 1; row <= rowCount; ++row) {
        RowFindings ofRow(grid, row, findings);
        for (const ColumnSpec& spec : Columns()) {
            if (IsRedWithItsCode(grid, {row, spec.column})) continue;
            if (std::string reason = FaultText(grid, {row, spec.column}); !reason.empty())
                ofRow.Add(Kind::Fault, spec.column, std::move(reason));
        }
        for (Finding& finding : missing[row])
            ofRow.Add(Kind::Fault, finding.column, std::move(finding.reason));
        if (const auto hint = ofNumbers.find(row); hint != ofNumbers.end())
            ofRow.AddOfNumber(std::move(hint->second));
        for (CellHint& hint : HintsOfLine(grid, row, accounts_))
            ofRow.Add(Kind::Hint, hint.column, std::move(hint.text));
    }
    return findings;
}

}  // namespace vicenter::center
