#include "exchange/import_template.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "automation/class_registry.h"
#include "entry/host_context.h"
#include "entry/host_services.h"
#include "entry/names.h"
#include "entry/sql_text.h"
#include "exchange/cell_reading.h"
#include "exchange/excel_access.h"
#include "exchange/import_batch.h"
#include "exchange/import_checks.h"
#include "exchange/import_rows.h"
#include "platform/system/collation.h"
#include "platform/system/surroundings.h"
#include "platform/system/unfinished_file.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/command_unit.h"
#include "store/template_guard.h"
#include "store/template_outcome.h"

namespace vicenter::exchange {

namespace {

using automation::Error;
using automation::Variant;
using system::MessageButtons;
using system::MessageIcon;
using system::MessageResult;

constexpr const char* kFileSystemProgId = "Scripting.FileSystemObject";
constexpr std::int32_t kRowsBetweenReports = 200;
// No message box shows more; the rows after them are not looked at any more.
constexpr std::size_t kMaxErrorBytes = 8u << 20;
constexpr std::uint32_t kExplorerStyle = 0x80000;
constexpr std::uint32_t kFileMustExist = 0x1000;
constexpr std::uint32_t kReadOnlyTicked = 0x1;

MessageResult Show(const std::string& text, const char* title = entry::kMessageTitle,
                   MessageButtons buttons = MessageButtons::Ok, MessageIcon icon = MessageIcon::Information) {
    return system::Surroundings::Current().messageBoxes->Show(text, buttons, icon, title);
}

// Ends an import with a message; nothing has been written.
struct Refused {
    std::string text;
    const char* title = entry::kProductTitle;
};
// The user's wish to stop; not an error.
struct Cancelled {};

// A copy of the file that goes with the scope, so that a workbook that somebody has open can still be read.
class TemporaryCopy {
  public:
    TemporaryCopy(ObjectRef files, const std::string& fileName) : files_(std::move(files)) {
        name_ = entry::MakeTempName(true, files_->Call("GetExtensionName", {fileName}).ToText());
        unfinished_.emplace(name_);
        files_->Call("CopyFile", {fileName, name_, true});
    }
    TemporaryCopy(const TemporaryCopy&) = delete;
    TemporaryCopy& operator=(const TemporaryCopy&) = delete;
    ~TemporaryCopy() {
        try {
            if (files_->Call("FileExists", {name_}).ToBoolean()) files_->Call("DeleteFile", {name_, true});
        } catch (const Error&) {
            // What cannot be removed is left to the system's own tidying.
        }
    }
    const std::string& Name() const { return name_; }

  private:
    ObjectRef files_;
    std::string name_;
    std::optional<system::UnfinishedFile> unfinished_;
};

ObjectRef FindTemplateSheet(const ObjectRef& workbook) {
    const ObjectRef sheets = workbook->Get("Worksheets").AsObject();
    const std::int32_t count = sheets->Get("Count").ToInt32();
    for (std::int32_t i = 1; i <= count; ++i) {
        ObjectRef sheet = sheets->Get("Item", {i}).AsObject();
        if (system::Collator::Chinese().Compare(sheet->Get("Name").ToText(), kSheetName) == 0) return sheet;
    }
    throw Refused{"引入模板失败！模板文件结构不正确，无法找到[凭证模板]sheet页！"};
}

// The field list of the sheet's columns; refuses a sheet whose headers do not do.
std::string ReadHeader(const ObjectRef& sheet, std::int32_t columnCount) {
    SheetCells cells(sheet);
    std::string errorText;
    std::string seen = "|";
    std::string fieldList;
    std::string header;
    for (std::int32_t column = 1; column <= columnCount; ++column) {
        // A header counts as seen when the next one comes: the last one never does.
        if (column > 1) seen.append(header).append("|");
        const Variant value = cells.Value(1, column);
        header = value.IsError()
                     ? ""
                     : std::string(system::TrimBlanks(WithoutInvisibleMarks(value.ToTextOrEmpty())));
        MapImportHeader(header, errorText, seen, column, fieldList);
    }
    if (!errorText.empty()) {
        throw Refused{std::string("引入模板失败！模板文件结构不正确: ") + entry::kCrLf + errorText};
    }
    std::string missing;
    if (!CheckRequiredColumns(seen, missing)) {
        throw Refused{"引入模板失败！模板文件结构不正确,缺少必录列: " + missing};
    }
    return fieldList;
}

// The insert of every row; refuses a sheet with faulty rows.
void AppendRows(TemplateWindow& window, const ObjectRef& sheet, std::int32_t columnCount,
                std::int32_t rowCount, const std::string& fieldList, std::string& batch) {
    ImportRows rows(sheet, columnCount, fieldList);
    std::string values;
    std::string errorText;
    const auto take = [&](std::int32_t row) {
        rows.ValidateImportRow(row, values, errorText);
        if (errorText.empty()) AppendImportLine(batch, row, fieldList, values);
    };
    std::int32_t firstBlank = 0;  // of the blank rows right above, 0 for none
    for (std::int32_t row = 2; row <= rowCount && errorText.size() < kMaxErrorBytes; ++row) {
        if (rows.ReadRow(row)) {
            // Blank rows count as rows only when something follows them.
            if (firstBlank > 0) {
                for (std::int32_t blank = firstBlank; blank < row && errorText.size() < kMaxErrorBytes;
                     ++blank) {
                    take(blank);
                }
                firstBlank = 0;
            }
            take(row);
        } else if (firstBlank == 0) {
            firstBlank = row;
        }
        if ((row % kRowsBetweenReports == 0 || row == rowCount) &&
            !window.ReportRows(row - 1, rowCount - 1)) {
            throw Cancelled();
        }
    }
    if (!errorText.empty()) throw Refused{"引入模板失败！模板文件数据存在以下错误: " + errorText};
}

// The whole batch, read from the file and checked.
std::string BuildBatch(TemplateWindow& window, const std::string& fileName, std::int32_t existingId,
                       const std::string& name) {
    const ObjectRef files = automation::CreateObject(kFileSystemProgId);
    if (!files->Call("FileExists", {fileName}).ToBoolean()) {
        throw Refused{"引入模板失败！源文件不存在！", entry::kMessageTitle};
    }
    const TemporaryCopy copy(files, fileName);
    const ExcelSession session;
    session.Application()->Put("DisplayAlerts", false);
    const ObjectRef workbook =
        session.Application()->Get("Workbooks").AsObject()->Call("Open", {copy.Name()}).AsObject();
    const ObjectRef sheet = FindTemplateSheet(workbook);
    sheet->Call("Activate");
    const ObjectRef used = sheet->Get("UsedRange").AsObject();
    const std::int32_t columnCount = used->Get("Columns").AsObject()->Get("Count").ToInt32();
    const std::int32_t rowCount = used->Get("Rows").AsObject()->Get("Count").ToInt32();

    const std::string fieldList = ReadHeader(sheet, columnCount);
    std::string batch;
    const std::string userId = entry::CurrentUserId();
    // The standard template stays everybody's, whoever replaces it.
    StartImportBatch(batch, existingId, name, existingId == store::kStandardTemplateId ? "0" : userId);
    AppendRows(window, sheet, columnCount, rowCount, fieldList, batch);
    FinishImportBatch(batch, existingId);
    return batch;
}

std::string ReadTemplateId(const std::string& name) {
    const std::int32_t id = store::clsVIData().FindVchTemplate(name, entry::CurrentUserId());
    if (id < 0) throw Error(automation::error_number::kObjectVariableNotSet);
    return std::to_string(id);
}

// "注：…" naming the template numbers that cannot be used, without the breaks before it; empty when all can.
std::string UnusableNote(const std::string& id) {
    const auto numbers = store::ReadUnusableNumbers(id);
    const std::string note = numbers ? store::WithUnusableNote({}, *numbers) : std::string();
    return note.substr(std::min(note.find_first_not_of(entry::kCrLf), note.size()));
}

std::string UpperExtension(const std::string& fileName) {
    std::string extension =
        automation::CreateObject(kFileSystemProgId)->Call("GetExtensionName", {fileName}).ToText();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return extension;
}

bool CheckInstalled() {
    if (IsExcelInstalled()) return true;
    Show("检测当前系统未安装Excel，引入失败！");
    return false;
}

// The command from the chosen file on.
bool ImportChosenFile(TemplateWindow& window, const std::string& fileName) {
    const std::string extension = UpperExtension(fileName);
    if (extension != "XLSX" && extension != "XLS") {
        Show("选择导入文件类型不正确，请确认是Excel文件！");
        return false;
    }
    const std::string name =
        automation::CreateObject(kFileSystemProgId)->Call("GetBaseName", {fileName}).ToText();
    using State = store::NamedTemplate::State;
    const store::NamedTemplate existing = store::FindTemplateToReplace(name, entry::CurrentUserId());
    if (existing.state == State::Unknown) throw Error(automation::error_number::kObjectVariableNotSet);
    if (existing.state == State::Anothers) {
        Show("模板[" + name + "]属于其他用户（用户编号 " + std::to_string(existing.ownerId) +
             "），不允许覆盖，引入失败！");
        return false;
    }
    if (existing.state == State::MayWrite &&
        Show("模板[" + name + "]已存在，引入将覆盖所有凭证模板，建议先引出原模板备份。请确认是否引入？",
             entry::kMessageTitle, MessageButtons::OkCancel) != MessageResult::Ok) {
        return false;
    }
    return ImportTemplateWorkbook(window, fileName,
                                  existing.state == State::MayWrite ? existing.id : kNewTemplate, name);
}

// Whatever the surroundings of the command throw ends like any failure of an import.
bool Guarded(const std::function<bool()>& action) {
    try {
        return action();
    } catch (const Error&) {
        Show("引入模板失败！");
        return false;
    }
}

}  // namespace

bool ImportTemplateWorkbook(TemplateWindow& window, const std::string& fileName, std::int32_t existingId,
                            const std::string& name) {
    window.ShowProgress("正在执行凭证模板引入，请稍后...");
    bool imported = false;
    try {
        const std::string batch = BuildBatch(window, fileName, existingId, name);
        if (existingId == kNewTemplate) store::ClearWayForNewTemplate();
        // With the lines come the flags of the numbers that can be used, or nothing does.
        store::CommandUnit unit;
        store::clsVIData data;
        if (!data.IsExecuteSql(batch)) throw Error(automation::error_number::kInvalidProcedureCall);
        window.SetProgressLabel("引入完毕...");
        const std::string id = ReadTemplateId(name);
        store::clsVIData().IsExecuteSql("exec pro_VchTpCanUsed " + id);
        if (!unit.Commit()) throw Error(automation::error_number::kInvalidProcedureCall);
        const std::string note = UnusableNote(id);
        window.RebuildTreeAndSelect(Variant(id).ToInt32());
        std::string text = "引入模板 " + name + " 成功！";
        if (!note.empty()) text += std::string(entry::kCrLf) + entry::kCrLf + note;
        Show(text);
        entry::WriteOperationLog(entry::LogKind::Succeeded, "凭证模板-引入模板 " + name + " 成功");
        imported = true;
    } catch (const Refused& refused) {
        Show(refused.text, refused.title);
    } catch (const Cancelled&) {
        // Nothing was written and nothing needs saying.
    } catch (const Error&) {
        Show("引入模板失败！");
        entry::WriteOperationLog(entry::LogKind::Failed, "凭证模板-引入模板 " + name + " 失败");
    }
    window.HideProgress();
    return imported;
}

void ImportTemplate(TemplateWindow& window) {
    Guarded([&window] {
        if (!CheckInstalled()) return false;
        system::FileRequest request;
        request.title = "选择引入文件";
        request.flags = kExplorerStyle | kFileMustExist | kReadOnlyTicked;
        request.filters = {{"FormatIni File Excel File (*.xls)", "*.xls"}};
        if (ExcelVersion() >= kFirstXlsxVersion) {
            request.filters.push_back({"FormatIni File Excel File (*.xlsx)", "*.xlsx"});
            request.selectedFilter = 1;
        }
        const auto chosen = system::Surroundings::Current().fileDialogs->ChooseFileToOpen(request);
        if (!chosen || chosen->empty()) return false;
        return ImportChosenFile(window, *chosen);
    });
}

bool ImportTemplateFile(TemplateWindow& window, const std::string& fileName) {
    return Guarded([&] { return CheckInstalled() && ImportChosenFile(window, fileName); });
}

}  // namespace vicenter::exchange
