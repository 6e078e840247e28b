#pragma once

// The side of the main window that the list of faults asks. Part of frmVICenter.

#include "center/faults/fault_actions.h"

namespace vicenter::center {

struct WindowParts;

class FaultFacet final : public FaultActions {
  public:
    explicit FaultFacet(WindowParts& parts) : parts_(parts) {}

    std::vector<CellAddress> Cells() override;
    Fault Describe(const CellAddress& cell) override;
    void GoTo(const CellAddress& cell) override;
    void GoToNext(bool back) override;
    const std::vector<ReportedFault>& Reported() override;
    void OpenReported(const ReportedFault& fault) override;
    void SaveMarkedCopy(const std::string& workbook) override;
    void ImportTidily(const std::string& workbook) override;
    void DropReported(const std::vector<std::size_t>& places) override;

  private:
    void GoToLine(const store::LineFault& fault);
    WindowParts& parts_;
};

}  // namespace vicenter::center
