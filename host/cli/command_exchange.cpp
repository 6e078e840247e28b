// vicenter export, import: templates to and from workbooks, with the window commands' messages.

#include <algorithm>
#include <filesystem>
#include <set>

#include "automation/error.h"
#include "center/frame/window_state.h"
#include "entry/host_services.h"
#include "exchange/excel_access.h"
#include "exchange/export_template.h"
#include "exchange/import_template.h"
#include "host/cli/context.h"
#include "host/cli/rights.h"
#include "host/cli/templates.h"
#include "platform/system/file_names.h"
#include "platform/system/files.h"
#include "text/ascii.h"

namespace vicenter::host {

namespace fs = std::filesystem;
using system::PathFromUtf8;
using system::PathToUtf8;

namespace {

// A template without a window around it.
class WindowlessTemplate : public exchange::TemplateWindow {
  public:
    WindowlessTemplate() = default;
    explicit WindowlessTemplate(TemplateHead head) : head_(std::move(head)) { ReadLines(head_.id, lines_); }

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
    void RebuildTreeAndSelect(std::int32_t id) override { imported_ = id; }

    std::int32_t Imported() const { return imported_; }

  private:
    TemplateHead head_;
    TemplateLines lines_;
    std::int32_t imported_ = 0;
};

// A template's name as a file's that is not taken yet.
std::string FileNameOf(const std::string& templateName, std::set<std::string>& taken) {
    const std::string name = system::SafeFileName(templateName);
    std::string result = name;
    for (int n = 2; !taken.insert(result).second; ++n)
        result = name + "(" + std::to_string(n) + ")";
    return result;
}

bool MayReplace(const std::string& file) {
    std::error_code ignored;
    if (!fs::exists(PathFromUtf8(file), ignored)) return true;
    return center::Ask("文件已存在，是否替换？\r\n\r\n" + file, system::MessageButtons::YesNo) ==
           system::MessageResult::Yes;
}

bool Export(const CliContext& context, const TemplateHead& head, const std::string& file) {
    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-引出模板");
    WindowlessTemplate window(head);
    // What cannot be replaced is not asked about.
    if (exchange::WhyNotWorkbookTarget(file).empty() && !MayReplace(file)) return false;
    const exchange::ExportOutcome outcome = exchange::ExportTemplateTo(window, file);
    if (!outcome.untold.empty()) {
        Fail(context, "工作簿未能写入：" + file + "\n  " + outcome.untold);
        exchange::LogUnwritten(window);
    }
    return outcome.written;
}

bool IsWorkbook(const fs::path& path) {
    const std::string extension = text::LowerAscii(PathToUtf8(path.extension()));
    return extension == ".xls" || extension == ".xlsx";
}

// The file itself, or the workbooks of a folder in the order of their names.
std::vector<std::string> FilesToImport(const std::string& given) {
    std::error_code failed;
    if (!fs::is_directory(PathFromUtf8(given), failed)) return {given};
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(PathFromUtf8(given))) {
        if (entry.is_regular_file() && IsWorkbook(entry.path())) files.push_back(PathToUtf8(entry.path()));
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        throw automation::Error(automation::error_number::kFileNotFound, "文件夹中没有工作簿：" + given);
    }
    return files;
}

}  // namespace

int RunExport(const CliContext& context) {
    const CliOptions& options = context.options;
    VariantArray written;
    bool ok = true;
    const auto take = [&](const TemplateHead& head, const std::string& file) {
        if (Export(context, head, file)) {
            written.push_back(JsonObject({{"FName", head.name}, {"file", file}}));
        } else {
            ok = false;
        }
    };
    if (options.exportFolder.empty()) {
        take(FindTemplate(context, options.name), options.file);
    } else {
        std::error_code failed;
        fs::create_directories(PathFromUtf8(options.exportFolder), failed);
        if (failed) {
            throw automation::Error(automation::error_number::kPathNotFound,
                                    "文件夹无法建立：" + options.exportFolder);
        }
        std::set<std::string> taken;
        for (const TemplateHead& head : ReadTemplates(context)) {
            take(head, PathToUtf8(PathFromUtf8(options.exportFolder) /
                                  PathFromUtf8(FileNameOf(head.name, taken) + ".xlsx")));
        }
    }
    return FinishSpeaking(context, ok, written);
}

int RunImport(const CliContext& context) {
    const std::vector<std::string> files = FilesToImport(context.options.file);
    // As the window does before any command: the first listing of an account set makes its standard template.
    ReadTemplates(context);
    VariantArray read;
    bool ok = true;
    for (const std::string& file : files) {
        entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-引入模板");
        WindowlessTemplate window;
        if (CheckRight() && exchange::ImportTemplateFile(window, file)) {
            read.push_back(JsonObject({{"FID", window.Imported()}, {"file", file}}));
        } else {
            ok = false;
        }
    }
    return FinishSpeaking(context, ok, read);
}

}  // namespace vicenter::host
