#include "exchange/excel_access.h"

#include <algorithm>

#include "automation/class_registry.h"
#include "automation/quietly.h"
#include "entry/message_box.h"
#include "entry/names.h"
#include "entry/sql_text.h"
#include "platform/system/file_replacement.h"
#include "platform/system/surroundings.h"
#include "platform/system/unfinished_file.h"
#include "text/ascii.h"

namespace vicenter::exchange {

namespace {

using automation::Argument;
using automation::Arguments;
using automation::Error;
using automation::Variant;

constexpr const char* kFileSystemProgId = "Scripting.FileSystemObject";

std::int32_t installedVersion = 0;

// The whole part of a version such as "16.0".
std::int32_t VersionOf(const ObjectRef& excel) {
    return static_cast<std::int32_t>(entry::LeadingNumber(excel->Get("Version").ToText()));
}

std::string UpperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return text::UpperAscii(c); });
    return text;
}

void DeleteIfPresent(const ObjectRef& files, const std::string& name) {
    try {
        if (files && files->Call("FileExists", {name}).ToBoolean()) files->Call("DeleteFile", {name, true});
    } catch (const Error&) {
        // What cannot be removed is left to the system's own tidying.
    }
}

// A file in use resists; that it is still there afterwards is what counts.
void ForceDelete(const ObjectRef& files, const std::string& name) {
    try {
        files->Call("GetFile", {name}).AsObject()->Put("Attributes", 0);
        files->Call("DeleteFile", {name, true});
    } catch (const Error&) {
    }
}

// Saved under another name a workbook keeps its kind; the older one opens nowhere under a name of the newer.
bool IsOfAnotherKindThanXlsx(const ObjectRef& workbook) {
    if (!workbook->HasMember("FileFormat")) return false;
    const std::int32_t format = workbook->Get("FileFormat").ToInt32();
    return format != kFormatXlsx && format != kFormatStrictXlsx;
}

}  // namespace

bool IsExcelInstalled() {
    installedVersion = 0;
    try {
        installedVersion = VersionOf(automation::CreateObject(kExcelProgId));
        return true;
    } catch (const Error&) {
        return false;
    }
}

std::int32_t ExcelVersion() {
    return installedVersion;
}

std::string WhyNotWorkbookTarget(const std::string& fileName) {
    return system::WhyNotWritable(
        fileName, {"工作簿", {"PK\x03\x04", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"}, {"xls", "xlsx"}});
}

bool SaveWorkbookAs(const ObjectRef& excel, const ObjectRef& workbook, const std::string& fileName,
                    std::string& errorText, bool showMessage) {
    if (!excel || !workbook) return false;
    bool saved = false;
    ObjectRef files;
    std::string temporary;
    try {
        files = automation::CreateObject(kFileSystemProgId);
        const std::string extension = files->Call("GetExtensionName", {fileName}).ToText();
        if (const std::string refusal = WhyNotWorkbookTarget(fileName); !refusal.empty())
            throw Error(automation::error_number::kPermissionDenied, refusal);
        temporary = entry::MakeTempName(true, extension);
        const system::UnfinishedFile unfinished(temporary);
        const std::int32_t version = VersionOf(excel);
        bool refused = false;
        if (UpperCase(extension) == "XLSX") {
            if (version < kFirstXlsxVersion) {
                errorText = "安装的Excel版本不支持xlsx格式！";
                refused = true;
            } else {
                Arguments arguments{Argument::Named("FileName", temporary),
                                    Argument::Named("AccessMode", kAccessExclusive)};
                if (IsOfAnotherKindThanXlsx(workbook))
                    arguments.push_back(Argument::Named("FileFormat", kFormatXlsx));
                workbook->Call("SaveAs", std::move(arguments));
            }
        } else {
            workbook->Call("SaveAs", {Argument::Named("FileName", temporary),
                                      Argument::Named("FileFormat", kFormatXls)});
        }
        if (!refused) {
            const auto targetExists = [&] { return files->Call("FileExists", {fileName}).ToBoolean(); };
            // Deleting first and copying then leaves neither file when the second fails; only a foreign file
            // system object has nothing better.
            const bool canReplace = files->HasMember("ReplaceFile");
            if (!canReplace && targetExists()) ForceDelete(files, fileName);
            if (!canReplace && targetExists()) {
                errorText = std::string("目标文件正在使用，无法引出!") + entry::kCrLf + "文件：" + fileName;
            } else {
                workbook->Call("Close", {false});
                files->Call(
                    canReplace ? "ReplaceFile" : "CopyFile",
                    canReplace ? Arguments{temporary, fileName} : Arguments{temporary, fileName, true});
                saved = targetExists();
            }
            DeleteIfPresent(files, temporary);
        }
    } catch (const Error& error) {
        DeleteIfPresent(files, temporary);
        errorText = "保存文件失败，原因：" + error.Text();
        return false;
    }
    if (!errorText.empty() && showMessage) entry::Tell(errorText, entry::kProductTitle);
    return saved;
}

ExcelSession::ExcelSession() : application_(automation::CreateObject(kExcelProgId)) {}

ExcelSession::~ExcelSession() {
    // It goes with its last reference.
    automation::Quietly([this] { application_->Call("Quit"); });
}

ObjectRef SheetCells::At(std::int32_t row, std::int32_t column) {
    if (arguments_.size() != 2) arguments_ = {Variant(), Variant()};
    arguments_[0].Assign(row);
    arguments_[1].Assign(column);
    return sheet_->Invoke("Cells", automation::InvokeKind::Get, arguments_).AsObject();
}

Variant SheetCells::Value(std::int32_t row, std::int32_t column) {
    none_.clear();
    return At(row, column)->Invoke("Value", automation::InvokeKind::Get, none_);
}

void SheetCells::SetValue(std::int32_t row, std::int32_t column, Variant value) {
    if (arguments_.size() != 3) arguments_ = {Variant(), Variant(), Variant()};
    arguments_[0].Assign(row);
    arguments_[1].Assign(column);
    arguments_[2].Assign(std::move(value));
    sheet_->Invoke("Cells", automation::InvokeKind::Put, arguments_);
}

}  // namespace vicenter::exchange
