#include "ui/window/center_commands.h"

#include <QApplication>

#include "entry/message_box.h"
#include "exchange/cloud_upload.h"
#include "exchange/export_template.h"
#include "exchange/import_several.h"
#include "exchange/import_template.h"
#include "exchange/marked_copy.h"
#include "platform/system/surroundings.h"
#include "ui/dialogs/auto_vch_dialog.h"
#include "ui/dialogs/import_preview_dialog.h"
#include "ui/dialogs/import_report_dialog.h"
#include "ui/window/vicenter_window.h"

namespace vicenter::ui {

namespace {

// The window behind the rules: the active one is another program's when a file is dropped from there.
QWidget* WidgetOf(const center::CommandTarget& target) {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* window = qobject_cast<VICenterWindow*>(widget);
        if (window && &static_cast<const center::CommandTarget&>(window->Presenter()) == &target)
            return window;
    }
    return QApplication::activeWindow();
}

// The main window as export and import see it.
class ExchangeWindow : public exchange::ExchangeTarget {
  public:
    explicit ExchangeWindow(center::CommandTarget& window) : window_(window) {}

    std::string CurrentTemplateId() const override { return window_.TemplateId(); }
    std::string TemplateName() const override { return window_.TemplateName(); }
    std::int32_t EntryLineCount() const override { return window_.RowCount(); }
    std::string EntryText(std::int32_t column, std::int32_t row) const override {
        return std::string(window_.Grid().Text(row, column));
    }

    void ShowProgress(const std::string& label) override {
        progress_ = {true, label, 0, 0};
        Show();
    }
    void SetProgressLabel(const std::string& label) override {
        progress_.label = label;
        Show();
    }
    bool ReportRows(std::int64_t done, std::int64_t all) override {
        progress_.done = done;
        progress_.all = all;
        Show();
        return !window_.ProgressCancelled();
    }
    void HideProgress() override {
        progress_.visible = false;
        Show();
    }
    bool LookBeforeImport(const std::function<exchange::ImportPreview()>& read) override {
        const exchange::ImportPreview preview = read();
        // What is wrong stays in the list when the dialog is gone.
        window_.ReportFaults({center::FaultSource::Workbook, preview.file, preview.faults});
        ImportPreviewDialog dialog(preview, WidgetOf(window_));
        return dialog.exec() == QDialog::Accepted;
    }
    // The import has read the id back from what it wrote.
    void RebuildTreeAndSelect(std::int32_t id) override { window_.ShowStoredTemplate(id); }

  private:
    void Show() {
        window_.ShowProgress(progress_);
        system::Surroundings::Current().screen->Repaint();
    }

    center::CommandTarget& window_;
    center::ProgressState progress_;
};

// Nothing is to be said of a file that was not chosen after all; what a look at it has found has been.
void Report(center::CommandTarget& window, const exchange::ImportOutcome& outcome) {
    if (outcome.written || !outcome.refusal.empty())
        window.ReportFaults({center::FaultSource::Workbook, outcome.file, outcome.faults});
    if (outcome.written) window.TellDone("模板 " + outcome.templateName + " 已引入，来自", outcome.file);
}

// Of several, one report tells what became of them.
void Report(center::CommandTarget& window, const std::vector<exchange::ImportOutcome>& outcomes) {
    for (const exchange::ImportOutcome& outcome : outcomes)
        Report(window, outcome);
    if (outcomes.size() < 2) return;
    ImportReportDialog dialog(outcomes, WidgetOf(window));
    dialog.exec();
}

}  // namespace

void CenterCommands::Import(center::CommandTarget& window) {
    ExchangeWindow exchangeWindow(window);
    Report(window, exchange::ImportTemplates(exchangeWindow));
}

void CenterCommands::ImportTidily(center::CommandTarget& window, const std::string& fileName) {
    ExchangeWindow exchangeWindow(window);
    Report(window, exchange::ImportTemplateFile(exchangeWindow, fileName, true));
}

void CenterCommands::SaveMarkedCopy(center::CommandTarget& window, const std::string& fileName) {
    ExchangeWindow exchangeWindow(window);
    exchange::SaveMarkedCopy(exchangeWindow, fileName);
}

void CenterCommands::ImportFiles(center::CommandTarget& window, const std::vector<std::string>& fileNames) {
    ExchangeWindow exchangeWindow(window);
    Report(window, exchange::ImportTemplateFiles(exchangeWindow, fileNames));
}

void CenterCommands::Export(center::CommandTarget& window) {
    ExchangeWindow exchangeWindow(window);
    const exchange::ExportOutcome outcome = exchange::ExportTemplate(exchangeWindow);
    exchange::TellUnwritten(exchangeWindow, outcome);
    if (outcome) window.TellDone("模板 " + window.TemplateName() + " 已引出", outcome.file);
}

void CenterCommands::UploadToCloud(center::CommandTarget&) {
    exchange::UploadTemplateCommand();
}

void CenterCommands::GenerateFromVouchers(center::CommandTarget& window) {
    AutoVchDialog dialog(WidgetOf(window));
    dialog.exec();
    const autovch::GenerationResult& result = dialog.Result();
    if (result.outcome || !result.faults.empty())
        window.ReportFaults({center::FaultSource::Vouchers, result.templateName, result.faults});
    if (!result.outcome) return;
    window.ShowStoredTemplate(result.outcome.id);
    window.TellDone("模板 " + result.templateName + " 已生成", {});
    entry::Tell(result.message);
}

}  // namespace vicenter::ui
