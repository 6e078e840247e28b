#pragma once

// What export and import need of whoever shows the template, and nothing more.
//
// Implemented by the window and by the command line; lent to each command for the time of its call, never
// kept. User-interface thread only.

#include <cstdint>
#include <functional>
#include <string>

namespace vicenter::exchange {

struct ImportPreview;

class ExchangeTarget {
  public:
    ExchangeTarget() = default;
    ExchangeTarget(const ExchangeTarget&) = delete;
    ExchangeTarget& operator=(const ExchangeTarget&) = delete;
    virtual ~ExchangeTarget() = default;

    // FID of the open template; empty when none is open.
    virtual std::string CurrentTemplateId() const = 0;
    // The text of the template-name field.
    virtual std::string TemplateName() const = 0;
    // Entry lines in use in the grid.
    virtual std::int32_t EntryLineCount() const = 0;
    // Displayed text of one grid cell; both counted from 1, columns as in the 21-column grid.
    virtual std::string EntryText(std::int32_t column, std::int32_t row) const = 0;

    // Sets the label of the progress panel, lets the window repaint and shows the panel.
    virtual void ShowProgress(const std::string& label) = 0;
    // Only the label; the panel stays as it is.
    virtual void SetProgressLabel(const std::string& label) = 0;
    // Rows done of rows in all. False when the user has asked to cancel. Called every few hundred rows while
    // cancelling is still possible, never after something has been written.
    virtual bool ReportRows(std::int64_t done, std::int64_t all) = 0;
    virtual void HideProgress() = 0;

    // Before an import asks whether it may replace a template: what it would change is shown where there is
    // somebody to look, who may stop it here. read() takes as long as the workbook is large.
    virtual bool LookBeforeImport(const std::function<ImportPreview()>& /*read*/) { return true; }

    // Builds the template tree anew and selects the template of that id.
    virtual void RebuildTreeAndSelect(std::int32_t id) = 0;
};

}  // namespace vicenter::exchange
