#pragma once

// Faults of lines that are in no grid: of a workbook that was not imported, of vouchers that made no
// template, of templates that were checked. What a command reports stays until the same source comes in
// without a fault, reports others or is taken off the list. Part of frmVICenter.

#include <cstddef>
#include <string>
#include <vector>

#include "store/line_fault.h"

namespace vicenter::center {

enum class FaultSource {
    Workbook,
    Vouchers,
    Template,  // rows are those of the template, columns the grid's
};

// What became of one source, with no faults when all is well.
struct FaultReport {
    FaultSource kind = FaultSource::Workbook;
    std::string source;  // the workbook's file, or the name of the template
    std::vector<store::LineFault> faults;
};

struct ReportedFault {
    FaultSource kind = FaultSource::Workbook;
    std::string source;
    store::LineFault fault;
};

class ReportedFaults {
  public:
    // In the place of what the same source has reported before.
    void Take(const FaultReport& report);
    // By the order in which they came, but for what has stepped back.
    const std::vector<ReportedFault>& All() const { return all_; }
    // Of All().
    int HintCount() const;

    // That template is in the grid now, whose own cells tell their faults and hints: what has been reported
    // of them steps back until another one is there. Under a new name the reports follow. Both are empty
    // without a template.
    void Show(const std::string& templateId, const std::string& templateName);
    const std::string& ShownId() const { return shownId_; }
    const std::string& ShownName() const { return shownName_; }
    const std::vector<ReportedFault>& SteppedBack() const { return steppedBack_; }
    // Faults and hints of that template as it is stored now.
    void ReplaceSteppedBack(const std::vector<store::LineFault>& faults);
    // places: of All().
    void Drop(const std::vector<std::size_t>& places);

  private:
    std::vector<ReportedFault> all_;
    std::vector<ReportedFault> steppedBack_;
    std::string shownId_;
    std::string shownName_;
};

}  // namespace vicenter::center
