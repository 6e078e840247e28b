// vicenter import: a workbook, or those of a folder, with the window command's messages.

#include <ostream>

#include "center/frame/window_state.h"
#include "entry/host_services.h"
#include "exchange/import_template.h"
#include "host/cli/context.h"
#include "host/cli/import_files.h"
#include "host/cli/import_preview.h"
#include "host/cli/rights.h"
#include "host/cli/templates.h"
#include "host/cli/windowless_template.h"
#include "platform/system/files.h"

namespace vicenter::host {

using exchange::ImportOutcome;
using store::LineFault;
using system::PathFromUtf8;
using system::PathToUtf8;

namespace {

void AddReasons(ConsoleMessages& messages, const ImportOutcome& outcome) {
    if (!outcome.reason.empty()) messages.AddReason(outcome.reason);
    for (const LineFault& fault : outcome.faults) {
        if (fault.row == 0 || outcome.refusal.find(fault.reason) != std::string::npos) continue;
        messages.AddReason(FaultSentence(fault));
    }
}

// What has been done and what has been refused, file by file.
class ImportReport {
  public:
    explicit ImportReport(FilesToImport files) : files_(std::move(files)) {}

    void Add(const std::string& file, const ImportOutcome& outcome) {
        if (outcome.written) {
            read_.push_back(JsonObject({{"FID", outcome.templateId},
                                        {"FName", outcome.templateName},
                                        {"file", file},
                                        {"lines", outcome.lines}}));
            lines_ += outcome.lines;
            return;
        }
        const std::string text = outcome.refusal.empty() ? "没有确认，未引入。" : outcome.refusal;
        refused_.push_back(JsonObject({{"file", file},
                                       {"text", text},
                                       {"reason", outcome.reason},
                                       {"faults", FaultObjects(outcome.faults)}}));
    }

    bool AllRead() const { return refused_.empty(); }

    // One line of totals; empty for a single file.
    std::string Text() const {
        if (!files_.folder) return {};
        std::string text = "共 " + std::to_string(files_.files.size()) + " 个文件：引入模板 " +
                           std::to_string(read_.size()) + " 个、分录 " + std::to_string(lines_) +
                           " 行，未引入 " + std::to_string(refused_.size()) + " 个";
        if (files_.skipped > 0) text += "，跳过锁定文件 " + std::to_string(files_.skipped) + " 个";
        return text + "\n";
    }
    const VariantArray& Read() const { return read_; }
    JsonMembers More() const {
        return {{"refused", refused_},
                {"totals", JsonObject({{"files", static_cast<std::int32_t>(files_.files.size())},
                                       {"templates", static_cast<std::int32_t>(read_.size())},
                                       {"lines", lines_},
                                       {"refused", static_cast<std::int32_t>(refused_.size())},
                                       {"skipped", files_.skipped}})}};
    }

  private:
    FilesToImport files_;
    VariantArray read_;
    VariantArray refused_;
    std::int32_t lines_ = 0;
};

}  // namespace

int RunImport(const CliContext& context) {
    const FilesToImport files = FindFilesToImport(context.options.file);
    // As the window does before any command: the first listing of an account set makes its standard template.
    ReadTemplates(context);
    if (context.options.dryRun) return RunImportPreview(context, files);
    ImportReport report(files);
    NamesOfFolder names;
    bool mayWrite = true;
    for (const std::string& file : files.files) {
        context.messages.SpeakOf("", "");
        entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-引入模板");
        mayWrite = CheckRight();
        if (!mayWrite) break;
        context.messages.SpeakOf(file, files.folder ? PathToUtf8(PathFromUtf8(file).filename()) : "");
        if (const std::string whyNot = names.WhyNot(file); !whyNot.empty()) {
            ImportOutcome outcome;
            outcome.refusal = whyNot;
            center::Tell(outcome.refusal);
            report.Add(file, outcome);
            continue;
        }
        WindowlessTemplate window;
        const ImportOutcome outcome = exchange::ImportTemplateFile(window, file);
        AddReasons(context.messages, outcome);
        report.Add(file, outcome);
    }
    context.messages.SpeakOf("", "");
    const bool ok = mayWrite && report.AllRead();
    const int code = FinishSpeaking(context, ok, report.Read(), report.Text(), report.More());
    if (!ok && mayWrite && !context.options.json) context.streams.err << report.Text();
    return code;
}

}  // namespace vicenter::host
