#pragma once

// A template as export and import see it, without a window around it.

#include <string>

#include "exchange/exchange_target.h"
#include "host/cli/templates.h"

namespace vicenter::host {

class WindowlessTemplate : public exchange::ExchangeTarget {
  public:
    WindowlessTemplate() = default;
    explicit WindowlessTemplate(TemplateHead head) : head_(std::move(head)) { ReadLines(head_, lines_); }

    std::string CurrentTemplateId() const override { return head_.id; }
    std::string TemplateName() const override { return head_.name; }
    std::int32_t EntryLineCount() const override { return lines_.count; }
    std::string EntryText(std::int32_t column, std::int32_t row) const override {
        return std::string(lines_.grid.Text(row, column));
    }
    void ShowProgress(const std::string&) override {}
    void SetProgressLabel(const std::string&) override {}
    bool ReportRows(std::int64_t, std::int64_t) override { return true; }
    void HideProgress() override {}
    void RebuildTreeAndSelect(std::int32_t) override {}

  private:
    TemplateHead head_;
    TemplateLines lines_;
};

}  // namespace vicenter::host
