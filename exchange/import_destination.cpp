#include "exchange/import_destination.h"

#include <algorithm>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "entry/host_context.h"
#include "exchange/marked_copy.h"
#include "store/cls_vi_data.h"
#include "store/template_name.h"
#include "text/ascii.h"

namespace vicenter::exchange {

namespace {

constexpr const char* kFileSystemProgId = "Scripting.FileSystemObject";

std::string UpperExtension(const std::string& fileName) {
    std::string extension =
        automation::CreateObject(kFileSystemProgId)->Call("GetExtensionName", {fileName}).ToText();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return text::UpperAscii(c); });
    return extension;
}

}  // namespace

ImportDestination FindImportDestination(const std::string& fileName) {
    ImportDestination destination;
    const std::string extension = UpperExtension(fileName);
    if (extension != "XLSX" && extension != "XLS") {
        destination.refusal = "选择导入文件类型不正确，请确认是Excel文件！";
        return destination;
    }
    const std::string name = TemplateNameOf(fileName);
    destination.name = name;
    if (const std::string why = store::WhyNotName(name); !why.empty()) {
        destination.refusal = "引入模板失败！" + why;
        return destination;
    }
    using State = store::NamedTemplate::State;
    const store::NamedTemplate existing = store::FindTemplateToReplace(name, entry::CurrentUserId());
    if (existing.state == State::Unknown) {
        throw automation::Error(automation::error_number::kObjectVariableNotSet,
                                store::clsVIData::LastFailure());
    }
    if (existing.state == State::Anothers) {
        destination.refusal = "模板[" + name + "]属于其他用户（用户编号 " + std::to_string(existing.ownerId) +
                              "），不允许覆盖，引入失败！";
    }
    if (existing.state == State::MayWrite) {
        destination.existingId = existing.id;
        destination.seen = existing.seen;
    }
    return destination;
}

}  // namespace vicenter::exchange
