// vicenter export: templates to workbooks, with the window command's messages.

#include <filesystem>
#include <set>
#include <vector>

#include "automation/error.h"
#include "entry/host_services.h"
#include "exchange/excel_access.h"
#include "exchange/export_template.h"
#include "host/cli/context.h"
#include "host/cli/empty_workbook.h"
#include "host/cli/templates.h"
#include "host/cli/windowless_template.h"
#include "platform/system/collation.h"
#include "platform/system/file_names.h"
#include "platform/system/files.h"
#include "platform/system/path_in.h"
#include "text/ascii.h"

namespace vicenter::host {

namespace fs = std::filesystem;
using system::PathFromUtf8;
using system::PathToUtf8;

namespace {

// The templates' names as files', each once, also where case makes no difference. An import reads a
// template's name from its file's: the name of a template is given to no other one, whose own no file can
// have.
std::vector<std::string> FileNamesOf(const std::vector<TemplateHead>& templates) {
    std::set<std::string> taken;
    const auto take = [&taken](const std::string& name) {
        return taken.insert(system::Collator::Chinese().Fold(name)).second;
    };
    std::vector<std::string> files(templates.size());
    for (std::size_t i = 0; i < templates.size(); ++i) {
        const std::string& name = templates[i].name;
        if (system::SafeFileName(name) == name && take(name)) files[i] = name;
    }
    for (std::size_t i = 0; i < templates.size(); ++i) {
        if (!files[i].empty()) continue;
        const std::string name = system::SafeFileName(templates[i].name);
        files[i] = name;
        for (int n = 2; !take(files[i]); ++n)
            files[i] = name + "(" + std::to_string(n) + ")";
    }
    return files;
}

bool Export(const CliContext& context, const TemplateHead& head, const std::string& file) {
    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-引出模板");
    // What cannot be replaced is not asked about. What is written is what there is once the user has agreed.
    if (exchange::WhyNotWorkbookTarget(file).empty() && !MayReplaceFile(file)) return false;
    WindowlessTemplate window(head);
    const exchange::ExportOutcome outcome = exchange::ExportTemplateTo(window, file);
    if (!outcome.untold.empty()) {
        TellFailure(context, "工作簿未能写入：" + file + "\n  " + outcome.untold);
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
            TellFailure(context, "模板 " + head.name + " 没有引出：" + error.Text());
            ok = false;
        }
    };
    if (!several) {
        // Whoever gives another ending expects something else than a workbook under it.
        const std::string ending = text::LowerAscii(options.file);
        if (!ending.ends_with(".xls") && !ending.ends_with(".xlsx"))
            Refuse("工作簿的扩展名必须是 .xls 或 .xlsx：" + options.file);
        take(FindTemplate(context, options.name), options.file);
    } else {
        std::error_code failed;
        fs::create_directories(PathFromUtf8(options.exportFolder), failed);
        if (failed) {
            throw automation::Error(automation::error_number::kPathNotFound,
                                    "文件夹无法建立：" + options.exportFolder);
        }
        const std::vector<TemplateHead> templates = ReadTemplates(context);
        const std::vector<std::string> files = FileNamesOf(templates);
        for (std::size_t i = 0; i < templates.size(); ++i) {
            takeOne(templates[i],
                    PathToUtf8(system::PathIn(PathFromUtf8(options.exportFolder), files[i] + ".xlsx")));
        }
    }
    return FinishSpeaking(context, ok, written);
}

}  // namespace vicenter::host
