// vicenter export: templates to workbooks, with the window command's messages.

#include <filesystem>
#include <set>

#include "automation/error.h"
#include "entry/host_services.h"
#include "exchange/excel_access.h"
#include "exchange/export_template.h"
#include "host/cli/context.h"
#include "host/cli/empty_workbook.h"
#include "host/cli/templates.h"
#include "host/cli/windowless_template.h"
#include "platform/system/file_names.h"
#include "platform/system/files.h"

namespace vicenter::host {

namespace fs = std::filesystem;
using system::PathFromUtf8;
using system::PathToUtf8;

namespace {

// A template's name as a file's that is not taken yet.
std::string FileNameOf(const std::string& templateName, std::set<std::string>& taken) {
    const std::string name = system::SafeFileName(templateName);
    std::string result = name;
    for (int n = 2; !taken.insert(result).second; ++n)
        result = name + "(" + std::to_string(n) + ")";
    return result;
}

bool Export(const CliContext& context, const TemplateHead& head, const std::string& file) {
    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-引出模板");
    // What cannot be replaced is not asked about. What is written is what there is once the user has agreed.
    if (exchange::WhyNotWorkbookTarget(file).empty() && !MayReplaceFile(file)) return false;
    WindowlessTemplate window(head);
    const exchange::ExportOutcome outcome = exchange::ExportTemplateTo(window, file);
    if (!outcome.untold.empty()) {
        Fail(context, "工作簿未能写入：" + file + "\n  " + outcome.untold);
        exchange::LogUnwritten(window);
    }
    return outcome.written;
}

}  // namespace

int RunExport(const CliContext& context) {
    const CliOptions& options = context.options;
    if (!options.emptyWorkbook.empty()) return RunExportEmpty(context);
    VariantArray written;
    bool ok = true;
    const bool several = !options.exportFolder.empty();
    const auto take = [&](const TemplateHead& head, const std::string& file) {
        if (several) context.messages.SpeakOf(file, head.name);
        if (Export(context, head, file)) {
            written.push_back(JsonObject({{"FName", head.name}, {"file", file}}));
        } else {
            ok = false;
        }
    };
    // One of many that cannot be read, or has gone meanwhile, keeps no other back.
    const auto takeOne = [&](const TemplateHead& head, const std::string& file) {
        try {
            take(head, file);
        } catch (const automation::Error& error) {
            Fail(context, "模板 " + head.name + " 没有引出：" + error.Text());
            ok = false;
        }
    };
    if (!several) {
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
            takeOne(head, PathToUtf8(PathFromUtf8(options.exportFolder) /
                                     PathFromUtf8(FileNameOf(head.name, taken) + ".xlsx")));
        }
    }
    return FinishSpeaking(context, ok, written);
}

}  // namespace vicenter::host
