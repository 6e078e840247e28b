#include "exchange/import_template.h"

#include <functional>
#include <optional>

#include "entry/host_context.h"
#include "entry/host_services.h"
#include "entry/message_box.h"
#include "exchange/excel_access.h"
#include "exchange/import_destination.h"
#include "exchange/import_preview.h"
#include "exchange/import_reading.h"
#include "platform/system/file_dialog_flags.h"
#include "platform/system/surroundings.h"
#include "store/cls_vi_data.h"
#include "store/statements.h"
#include "store/template_batches.h"
#include "store/template_guard.h"
#include "store/template_outcome.h"
#include "store/template_rows.h"
#include "store/template_writing.h"

namespace vicenter::exchange {

namespace {

using automation::Error;
using automation::Variant;
using store::kNewTemplate;
using system::MessageButtons;
using system::MessageResult;

std::string ReadTemplateId(const std::string& name) {
    const std::int32_t id = store::clsVIData().FindVchTemplate(name, entry::CurrentUserId());
    if (id < 0) throw Error(automation::error_number::kObjectVariableNotSet);
    return std::to_string(id);
}

// Tells the user why nothing is imported.
ImportOutcome Refuse(ImportOutcome outcome, const std::string& text,
                     const char* title = entry::kMessageTitle) {
    entry::Tell(text, title);
    outcome.refusal = text;
    return outcome;
}

// A failure whose reason the fixed words leave out: it stands in the list of faults and in the log.
void TakeReason(ImportOutcome& outcome, std::string reason) {
    if (reason.empty()) return;
    outcome.faults.push_back({0, 0, "", "", reason});
    outcome.reason = std::move(reason);
}

// A template that has lines is not emptied without a word by a workbook that has none.
bool ConfirmEmptying(std::int32_t existingId, const std::string& name, std::int32_t lines) {
    if (existingId == kNewTemplate || lines > 0) return true;
    const auto present = store::CountLines(std::to_string(existingId));
    if (!present) throw Error(automation::error_number::kObjectVariableNotSet);
    if (*present == 0) return true;
    return entry::Ask("模板[" + name + "]现有 " + std::to_string(*present) +
                          " 行分录，而引入文件中没有分录，引入后该模板将被清空。请确认是否引入？",
                      MessageButtons::OkCancel) == MessageResult::Ok;
}

// Writes what was read: the lines and the flags of the numbers that can be used, or nothing.
// Nothing where the template is no longer what the user saw, or where there is one now.
void WriteBatch(ExchangeTarget& window, const ImportBatch& batch,
                const std::optional<store::SeenTemplate>& seen, ImportOutcome& outcome) {
    const std::string& name = outcome.templateName;
    store::TemplateWriting writing(name, seen, store::HistoryCommand::Import);
    if (const std::string why = writing.WhyNot("没有引入"); !why.empty())
        throw Refused{kImportFailed + why, {}, entry::kMessageTitle};
    store::clsVIData::ForgetFailure();
    const auto check = [](bool done) {
        if (done) return;
        const std::string& silent = store::clsVIData::LastFailure();
        const std::string& shown = store::clsVIData::LastRefusal();
        const std::string& reason = shown.empty() ? silent : shown;
        throw Error(automation::error_number::kInvalidProcedureCall,
                    reason.empty() ? "账套没有接受写入" : reason);
    };
    check(store::RunSql(batch.text));
    window.SetProgressLabel("引入完毕...");
    const std::string id = ReadTemplateId(name);
    store::RunSql(store::MarkUsable(id));
    check(writing.Commit());
    outcome.templateId = Variant(id).ToInt32();
    outcome.lines = batch.lines;
    outcome.written = true;
}

void TellWritten(ExchangeTarget& window, ImportOutcome& outcome) {
    const auto unusable = store::ReadUnusableNumbers(std::to_string(outcome.templateId));
    window.RebuildTreeAndSelect(outcome.templateId);
    outcome.told = store::WithUnusableNote("引入模板 " + outcome.templateName + " 成功！", unusable);
    entry::Tell(outcome.told);
    entry::WriteOperationLog(entry::LogKind::Succeeded,
                             "凭证模板-引入模板 " + outcome.templateName + " 成功");
}

bool CheckInstalled(ImportOutcome& outcome) {
    if (IsExcelInstalled()) return true;
    outcome = Refuse(std::move(outcome), "检测当前系统未安装Excel，引入失败！");
    return false;
}

// Where the batch of an import comes from. Throws as ReadTemplateWorkbook does.
using BatchSource = std::function<ImportBatch()>;

// Writes the batch and tells what became of it.
ImportOutcome ImportFrom(ExchangeTarget& window, const std::string& fileName,
                         const ImportDestination& destination, const BatchSource& read) {
    const std::string& name = destination.name;
    ImportOutcome outcome;
    outcome.file = fileName;
    outcome.templateName = name;
    window.ShowProgress("正在执行凭证模板引入，请稍后...");
    try {
        const ImportBatch batch = read();
        if (!ConfirmEmptying(destination.existingId, name, batch.lines)) throw Cancelled();
        WriteBatch(window, batch, destination.seen, outcome);
        TellWritten(window, outcome);
    } catch (const Refused& refused) {
        outcome.faults = refused.faults;
        outcome = Refuse(std::move(outcome), refused.text, refused.title);
    } catch (const Cancelled&) {
        // Nothing was written and nothing needs saying.
    } catch (const Error& error) {
        outcome.written = false;
        outcome = Refuse(std::move(outcome), kImportFailed);
        TakeReason(outcome, ReasonOf(error));
        entry::WriteOperationLog(entry::LogKind::Failed, "凭证模板-引入模板 " + name + " 失败");
        if (!outcome.reason.empty()) {
            entry::WriteOperationLog(entry::LogKind::Failed,
                                     "凭证模板-引入模板 " + name + " 失败原因：" + outcome.reason);
        }
    }
    window.HideProgress();
    return outcome;
}

// What it would change is looked at first; false when the user thinks better of it. What has been looked at
// and found sound is the batch.
bool LooksRight(ExchangeTarget& window, const ImportDestination& destination, bool tidily,
                ImportOutcome& outcome, std::optional<ImportBatch>& seen) {
    try {
        return window.LookBeforeImport([&] {
            ImportPreview preview = PreviewImport(window, outcome.file, destination, tidily, &seen);
            outcome.faults = preview.faults;
            return preview;
        });
    } catch (const Cancelled&) {
        return false;
    }
}

// The command from the chosen file on.
ImportOutcome ImportChosenFile(ExchangeTarget& window, const std::string& fileName, bool tidily = false) {
    ImportOutcome outcome;
    outcome.file = fileName;
    const ImportDestination destination = FindImportDestination(fileName);
    const std::string& name = destination.name;
    outcome.templateName = name;
    if (!destination.refusal.empty()) return Refuse(outcome, destination.refusal);
    std::optional<ImportBatch> seen;
    if (destination.Replaces() &&
        (!LooksRight(window, destination, tidily, outcome, seen) ||
         entry::Ask(
             "模板[" + name + "]已存在，引入将覆盖所有凭证模板，建议先引出原模板备份。请确认是否引入？",
             MessageButtons::OkCancel) != MessageResult::Ok)) {
        return outcome;
    }
    return ImportFrom(window, fileName, destination, [&] {
        if (seen) return std::move(*seen);
        return ReadTemplateWorkbook(window, fileName, destination.existingId, name, tidily);
    });
}

// Whatever the surroundings of the command throw ends like any failure of an import. fileName: as it is by
// then.
ImportOutcome Guarded(const std::string& fileName, const std::function<ImportOutcome()>& action) {
    try {
        return action();
    } catch (const Error& error) {
        ImportOutcome outcome = Refuse({}, kImportFailed);
        outcome.file = fileName;
        TakeReason(outcome, ReasonOf(error));
        return outcome;
    }
}

}  // namespace

ImportOutcome ImportTemplateWorkbook(ExchangeTarget& window, const std::string& fileName,
                                     std::int32_t existingId, const std::string& name, bool tidily) {
    ImportDestination destination{name, existingId, std::nullopt, {}};
    if (destination.Replaces()) {
        const std::string id = std::to_string(existingId);
        const auto row = store::AskTemplateWithLines(id);
        destination.seen = store::SeenAs(id, entry::CurrentUserId(), row ? row->name : name);
        if (row) destination.seen->lines = store::Compare(*destination.seen, row).now.lines;
    }
    return ImportFrom(window, fileName, destination,
                      [&] { return ReadTemplateWorkbook(window, fileName, existingId, name, tidily); });
}

std::optional<std::vector<std::string>> ChooseWorkbooks(ImportOutcome& outcome) {
    if (!CheckInstalled(outcome)) return std::nullopt;
    system::FileRequest request;
    request.title = "选择引入文件";
    namespace flags = system::file_dialog;
    request.flags = flags::kExplorerStyle | flags::kFileMustExist | flags::kReadOnlyTicked;
    request.filters = {{"FormatIni File Excel File (*.xls)", "*.xls"}};
    if (ExcelVersion() >= kFirstXlsxVersion) {
        request.filters.push_back({"FormatIni File Excel File (*.xlsx)", "*.xlsx"});
        request.selectedFilter = 1;
    }
    return system::Surroundings::Current().fileDialogs->ChooseFilesToOpen(request);
}

ImportOutcome ImportTemplateFile(ExchangeTarget& window, const std::string& fileName, bool tidily) {
    return Guarded(fileName, [&]() -> ImportOutcome {
        ImportOutcome outcome;
        return CheckInstalled(outcome) ? ImportChosenFile(window, fileName, tidily) : outcome;
    });
}

}  // namespace vicenter::exchange
