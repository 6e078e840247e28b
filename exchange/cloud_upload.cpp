#include "exchange/cloud_upload.h"

#include <cstdint>

#include "automation/class_registry.h"
#include "automation/object.h"
#include "entry/host_context.h"
#include "entry/message_box.h"
#include "entry/sql_text.h"
#include "exchange/template_columns.h"

namespace vicenter::exchange {

namespace {

using automation::Error;
using automation::ObjectRef;
using automation::Variant;

constexpr const char* kDriveProgId = "VelaFRAPI.NXCloud";
constexpr const char* kRecordsProgId = "VelaBillDataAccess.SaveData";
constexpr const char* kFolderName = kSheetName;
constexpr std::int32_t kFolderNotFound = 2002;

// The drive keeps a folder tree for each user: the user's id is the context of its operations.
std::int32_t DriveContext() {
    return static_cast<std::int32_t>(entry::LeadingNumber(entry::CurrentUserId()));
}

// One value of the upload's result, which may be an object with members or a keyed collection.
Variant ResultValue(const ObjectRef& result, const char* key) {
    return result->HasMember(key) ? result->Get(key) : result->Get("", {key});
}

}  // namespace

void UploadTemplateCommand() {
    entry::Tell("此功能已停止使用！", entry::kProductTitle);
}

void UploadTemplateFile(const std::string& filePath, const std::string& fileName, std::string& resultText) {
    // What the step under way says when it fails, by its answer or by an exception.
    resultText = "模板文件上传过程中出现异常，上传失败！";
    try {
        const std::string putFailed = resultText;
        const ObjectRef drive = automation::CreateObject(kDriveProgId);
        resultText = "个人云盘获取'凭证模板'目录时出现异常，查找目录失败！";
        std::int32_t folder = drive->Call("NXDrive_CheckDir", {DriveContext(), 0, kFolderName}).ToInt32();
        if (folder < 0) return;
        if (folder == kFolderNotFound) {
            resultText = "个人云盘创建'凭证模板'目录时出现异常，目录创建失败！";
            folder = drive->Call("NXDrive_NewDir", {DriveContext(), 0, kFolderName}).ToInt32();
            if (folder < 0) return;
        }
        resultText = putFailed;
        const Variant result = drive->Call("NXDrive_PutFile", {folder, filePath, fileName});
        if (!result.IsObject() || !result.AsObject()) return;
        // The drive has no operation that takes a file back: it stays, and the user is told.
        resultText =
            "模板文件“" + fileName +
            "”已上传到个人云盘的'凭证模板'目录，但上传记录保存失败，请在云盘中删除该文件后重新上传！";
        RecordUploadedFile(result.AsObject());
        resultText = "success";
    } catch (const Error&) {
        // The text of the step stands.
    }
}

void RecordUploadedFile(const ObjectRef& result) {
    const std::int32_t folderId = ResultValue(result, "folder_id").ToInt32();
    const std::int32_t fileId = ResultValue(result, "file_id").ToInt32();
    const std::string name = ResultValue(result, "name").ToText();
    const std::string extension = ResultValue(result, "ext").ToText();
    automation::CreateObject(kRecordsProgId)
        ->Call("InsertCDFile", {entry::GetPropsString(), entry::CurrentUserId(), folderId, kFolderName,
                                fileId, name, extension, 0, ""});
}

}  // namespace vicenter::exchange
