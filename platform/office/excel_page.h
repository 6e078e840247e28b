#pragma once

// How a sheet is printed and what of it stays in sight, as late-bound callers set it: PageSetup of a
// worksheet and the application's ActiveWindow, as far as template exchange uses them. Both keep their
// sheet's object alive; a deleted sheet answers every call with an error. User-interface thread only.

#include <memory>

#include "platform/office/excel_objects.h"

namespace vicenter::office {

class ExcelPageSetup : public TableObject<ExcelPageSetup> {
  public:
    explicit ExcelPageSetup(std::shared_ptr<ExcelWorksheet> sheet) : sheet_(std::move(sheet)) {}
    static const MemberTable<ExcelPageSetup>& Members();
    std::string TypeName() const override { return "PageSetup"; }

  private:
    SheetPage& Page() { return sheet_->Content().Page(); }

    std::shared_ptr<ExcelWorksheet> sheet_;
};

class ExcelWindow : public TableObject<ExcelWindow> {
  public:
    explicit ExcelWindow(std::shared_ptr<ExcelWorksheet> sheet) : sheet_(std::move(sheet)) {}
    static const MemberTable<ExcelWindow>& Members();
    std::string TypeName() const override { return "Window"; }

  private:
    SheetPage& Page() { return sheet_->Content().Page(); }

    std::shared_ptr<ExcelWorksheet> sheet_;
};

}  // namespace vicenter::office
