// vicenter import: a workbook, or those of a folder, with the window command's messages.

#include <algorithm>
#include <filesystem>
#include <map>
#include <ostream>

#include "automation/error.h"
#include "center/frame/window_state.h"
#include "entry/host_services.h"
#include "exchange/import_template.h"
#include "host/cli/context.h"
#include "host/cli/rights.h"
#include "host/cli/templates.h"
#include "host/cli/windowless_template.h"
#include "platform/system/collation.h"
#include "platform/system/files.h"
#include "text/ascii.h"

namespace vicenter::host {

namespace fs = std::filesystem;
using exchange::ImportOutcome;
using store::LineFault;
using system::PathFromUtf8;
using system::PathToUtf8;

namespace {

struct FilesToImport {
    bool folder = false;
    std::vector<std::string> files;  // of a folder: in the order of their names
    int skipped = 0;
};

bool IsWorkbook(const fs::path& path) {
    const std::string extension = text::LowerAscii(PathToUtf8(path.extension()));
    return extension == ".xls" || extension == ".xlsx";
}

// What a program leaves beside a workbook that it has open ("~$a.xlsx"), and what a file system of another
// kind keeps of one ("._a.xlsx"): named like workbooks, and none.
bool IsCompanion(const fs::path& path) {
    const std::string name = PathToUtf8(path.filename());
    return name.starts_with("~$") || name.starts_with("._");
}

FilesToImport FindFiles(const std::string& given) {
    std::error_code failed;
    if (!fs::is_directory(PathFromUtf8(given), failed)) return {false, {given}, 0};
    FilesToImport found{true, {}, 0};
    // By hand, since an increment without a place for its failure throws what no edge expects.
    for (fs::directory_iterator entry(PathFromUtf8(given), failed); !failed && entry != fs::end(entry);
         entry.increment(failed)) {
        std::error_code unreadable;
        if (!entry->is_regular_file(unreadable) || !IsWorkbook(entry->path())) continue;
        if (IsCompanion(entry->path())) {
            ++found.skipped;
        } else {
            found.files.push_back(PathToUtf8(entry->path()));
        }
    }
    if (failed) throw automation::Error(automation::error_number::kPathNotFound, "文件夹不能读取：" + given);
    std::sort(found.files.begin(), found.files.end());
    if (found.files.empty()) {
        throw automation::Error(automation::error_number::kFileNotFound, "文件夹中没有工作簿：" + given);
    }
    return found;
}

Variant FaultJson(const LineFault& fault) {
    return JsonObject({{"row", fault.row},
                       {"column", fault.column},
                       {"header", fault.header},
                       {"value", fault.value},
                       {"reason", fault.reason}});
}

void AddReasons(ConsoleMessages& messages, const ImportOutcome& outcome) {
    if (!outcome.reason.empty()) messages.AddReason(outcome.reason);
    for (const LineFault& fault : outcome.faults) {
        if (fault.row == 0 || outcome.refusal.find(fault.reason) != std::string::npos) continue;
        const std::string value = fault.value.empty() ? "" : " “" + fault.value + "”";
        messages.AddReason("第 " + std::to_string(fault.row) + " 行 " + fault.header + value + "：" +
                           fault.reason);
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
        VariantArray faults;
        for (const LineFault& fault : outcome.faults)
            faults.push_back(FaultJson(fault));
        const std::string text = outcome.refusal.empty() ? "没有确认，未引入。" : outcome.refusal;
        refused_.push_back(
            JsonObject({{"file", file}, {"text", text}, {"reason", outcome.reason}, {"faults", faults}}));
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

// Two files of a folder that would become one template ("a.xls", "a.xlsx"): the second must not replace what
// the first has just brought.
class NamesOfFolder {
  public:
    // The file of the same name that came before; empty when there is none.
    std::string Earlier(const std::string& file) {
        const std::string name = PathToUtf8(PathFromUtf8(file).stem());
        const auto [place, isNew] = files_.try_emplace(system::Collator::Chinese().Fold(name), file);
        return isNew ? "" : PathToUtf8(PathFromUtf8(place->second).filename());
    }

  private:
    std::map<std::string, std::string> files_;
};

}  // namespace

int RunImport(const CliContext& context) {
    const FilesToImport files = FindFiles(context.options.file);
    // As the window does before any command: the first listing of an account set makes its standard template.
    ReadTemplates(context);
    ImportReport report(files);
    NamesOfFolder names;
    bool mayWrite = true;
    for (const std::string& file : files.files) {
        context.messages.SpeakOf("", "");
        entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-引入模板");
        mayWrite = CheckRight();
        if (!mayWrite) break;
        context.messages.SpeakOf(file, files.folder ? PathToUtf8(PathFromUtf8(file).filename()) : "");
        if (const std::string earlier = names.Earlier(file); !earlier.empty()) {
            ImportOutcome outcome;
            outcome.refusal = "引入模板失败！文件夹中有同名的工作簿“" + earlier + "”，请分别引入或改名！";
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
