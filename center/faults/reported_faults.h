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
    // By the order in which they came.
    const std::vector<ReportedFault>& All() const { return all_; }
    // The template of that name is in the grid now, whose own cells tell their faults; hints stay.
    void DropShown(const std::string& templateName);
    // places: of All().
    void Drop(const std::vector<std::size_t>& places);

  private:
    std::vector<ReportedFault> all_;
};

}  // namespace vicenter::center
