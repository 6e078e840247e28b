#include "exchange/template_sheet.h"

#include <utility>

#include "automation/class_registry.h"
#include "automation/quietly.h"
#include "entry/names.h"
#include "exchange/import_refusal.h"
#include "exchange/template_columns.h"
#include "platform/system/collation.h"

namespace vicenter::exchange {

namespace {

constexpr const char* kFileSystemProgId = "Scripting.FileSystemObject";

// The file system, where the file is there.
ObjectRef FilesWith(const std::string& fileName) {
    ObjectRef files = automation::CreateObject(kFileSystemProgId);
    if (!files->Call("FileExists", {fileName}).ToBoolean()) {
        throw Refused{"引入模板失败！源文件不存在！", {{0, 0, "", "", "源文件不存在"}}, entry::kMessageTitle};
    }
    return files;
}

ObjectRef FindTemplateSheet(const ObjectRef& workbook) {
    const ObjectRef sheets = workbook->Get("Worksheets").AsObject();
    const std::int32_t count = sheets->Get("Count").ToInt32();
    for (std::int32_t i = 1; i <= count; ++i) {
        ObjectRef sheet = sheets->Get("Item", {i}).AsObject();
        if (system::Collator::Chinese().Compare(sheet->Get("Name").ToText(), kSheetName) == 0) return sheet;
    }
    throw Refused{"引入模板失败！模板文件结构不正确，无法找到[凭证模板]sheet页！",
                  {{0, 0, "", "", "没有名为“凭证模板”的工作表"}}};
}

}  // namespace

TemporaryCopy::TemporaryCopy(ObjectRef files, const std::string& fileName) : files_(std::move(files)) {
    name_ = entry::MakeTempName(true, files_->Call("GetExtensionName", {fileName}).ToText());
    unfinished_.emplace(name_);
    files_->Call("CopyFile", {fileName, name_, true});
}

TemporaryCopy::~TemporaryCopy() {
    // What cannot be removed is left to the next start.
    automation::Quietly([this] {
        if (files_->Call("FileExists", {name_}).ToBoolean()) files_->Call("DeleteFile", {name_, true});
    });
}

TemplateSheet::TemplateSheet(const std::string& fileName) : copy_(FilesWith(fileName), fileName) {
    Application()->Put("DisplayAlerts", false);
    workbook_ = Application()->Get("Workbooks").AsObject()->Call("Open", {copy_.Name()}).AsObject();
    sheet_ = FindTemplateSheet(workbook_);
    sheet_->Call("Activate");
    const ObjectRef used = sheet_->Get("UsedRange").AsObject();
    columns_ = used->Get("Columns").AsObject()->Get("Count").ToInt32();
    rows_ = used->Get("Rows").AsObject()->Get("Count").ToInt32();
}

}  // namespace vicenter::exchange
