// vicenter import: a workbook, or those of a folder, with the window command's messages.

#include <filesystem>
#include <ostream>

#include "automation/error.h"
#include "center/frame/window_state.h"
#include "entry/host_services.h"
#include "exchange/excel_access.h"
#include "exchange/import_several.h"
#include "exchange/import_template.h"
#include "exchange/marked_copy.h"
#include "host/cli/context.h"
#include "host/cli/import_files.h"
#include "host/cli/import_preview.h"
#include "host/cli/rights.h"
#include "host/cli/templates.h"
#include "host/cli/windowless_template.h"
#include "platform/system/files.h"
#include "platform/system/path_in.h"

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

// Where the copy of a refused workbook goes: the file that was given, or one in the folder that was.
std::string MarkedCopyOf(const std::string& file, const FilesToImport& files, const std::string& given) {
    if (!files.folder) return given;
    const std::string name = PathToUtf8(PathFromUtf8(exchange::MarkedCopyName(file)).filename());
    return PathToUtf8(system::PathIn(PathFromUtf8(given), name));
}

// What became of the files, for the end of the command.
class ImportReport {
  public:
    explicit ImportReport(const FilesToImport& files) : files_(files) {}

    // markedCopy: the copy that was written of it; empty for none.
    void Add(const ImportOutcome& outcome, const std::string& markedCopy) {
        outcomes_.push_back(outcome);
        if (outcome.written) {
            read_.push_back(JsonObject({{"FID", outcome.templateId},
                                        {"FName", outcome.templateName},
                                        {"file", outcome.file},
                                        {"lines", outcome.lines}}));
            lines_ += outcome.lines;
            return;
        }
        const std::string text = outcome.refusal.empty() ? "没有确认，未引入。" : outcome.refusal;
        JsonMembers members = {{"file", outcome.file},
                               {"text", text},
                               {"reason", outcome.reason},
                               {"faults", FaultObjects(outcome.faults)}};
        if (!markedCopy.empty()) members.emplace_back("markedCopy", markedCopy);
        refused_.push_back(JsonObject(members));
    }

    bool AllRead() const { return refused_.empty(); }
    const std::vector<ImportOutcome>& Outcomes() const { return outcomes_; }

    // One line of totals; empty for a single file.
    std::string Text() const {
        return files_.folder ? exchange::ReportSummary(outcomes_, files_.skipped) + "\n" : std::string();
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
    const FilesToImport& files_;
    std::vector<ImportOutcome> outcomes_;
    VariantArray read_;
    VariantArray refused_;
    std::int32_t lines_ = 0;
};

ImportOutcome ImportOne(const CliContext& context, const std::string& file, const std::string& whyNot) {
    if (!whyNot.empty()) {
        ImportOutcome outcome;
        outcome.file = file;
        outcome.refusal = whyNot;
        center::Tell(outcome.refusal);
        return outcome;
    }
    WindowlessTemplate window;
    ImportOutcome outcome = exchange::ImportTemplateFile(window, file, context.options.tidy);
    outcome.file = file;
    AddReasons(context.messages, outcome);
    return outcome;
}

// The copy that was written; empty when none was asked for, needed or possible.
std::string MarkCopy(const CliContext& context, const FilesToImport& files, const ImportOutcome& outcome) {
    if (context.options.markedCopy.empty() || outcome.written || outcome.faults.empty()) return {};
    std::string target = MarkedCopyOf(outcome.file, files, context.options.markedCopy);
    // Of a folder it may be the copy that somebody is mending.
    if (const std::string why = exchange::WhyNotOverImported(files.files, target); !why.empty()) {
        TellFailure(context, "标错副本未能写入：" + why);
        return {};
    }
    const bool mayReplace = exchange::WhyNotWorkbookTarget(target).empty() ? MayReplaceFile(target) : true;
    if (!mayReplace) return {};
    const std::string why = exchange::WriteMarkedCopy(outcome.file, outcome.faults, target);
    if (why.empty()) {
        context.messages.AddReason("标错副本：" + target);
        return target;
    }
    TellFailure(context, "标错副本未能写入：" + target + "\n  " + why);
    return {};
}

void MakeFolder(const std::string& folder) {
    std::error_code failed;
    std::filesystem::create_directories(PathFromUtf8(folder), failed);
    if (failed) {
        throw automation::Error(automation::error_number::kPathNotFound, "文件夹无法建立：" + folder);
    }
}

// False when it was asked for and could not be written.
bool WriteReport(const CliContext& context, const ImportReport& report) {
    const std::string& target = context.options.report;
    if (target.empty()) return true;
    if (exchange::WhyNotWorkbookTarget(target).empty() && !MayReplaceFile(target)) return false;
    const std::string why = exchange::WriteImportReport(report.Outcomes(), target);
    if (!why.empty()) TellFailure(context, "引入报告未能写入：" + target + "\n  " + why);
    return why.empty();
}

}  // namespace

int RunImport(const CliContext& context) {
    const CliOptions& options = context.options;
    const FilesToImport files = FindFilesToImport(options.file);
    // As the window does before any command: the first listing of an account set makes its standard template.
    ReadTemplates(context);
    if (options.dryRun) return RunImportPreview(context, files);
    if (const std::string why = exchange::WhyNotOverImported(files.files, options.report); !why.empty())
        throw automation::Error(automation::error_number::kPermissionDenied, "引入报告未能写入：" + why);
    if (files.folder && !options.markedCopy.empty()) MakeFolder(options.markedCopy);
    ImportReport report(files);
    exchange::NamesOnce names;
    bool mayWrite = true;
    for (const std::string& file : files.files) {
        context.messages.SpeakOf("", "");
        entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-引入模板");
        mayWrite = CheckRight();
        if (!mayWrite) break;
        context.messages.SpeakOf(file, files.folder ? PathToUtf8(PathFromUtf8(file).filename()) : "");
        const ImportOutcome outcome = ImportOne(context, file, names.WhyNot(file));
        report.Add(outcome, MarkCopy(context, files, outcome));
    }
    context.messages.SpeakOf("", "");
    const bool ok = mayWrite && report.AllRead();
    const bool reported = !mayWrite || WriteReport(context, report);
    const int code = FinishSpeaking(context, ok, report.Read(), report.Text(), report.More());
    if (!ok && mayWrite && !options.json) context.streams.err << report.Text();
    return reported ? code : kExitFailed;
}

}  // namespace vicenter::host
