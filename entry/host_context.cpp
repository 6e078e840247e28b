#include "entry/host_context.h"

#include <utility>

#include "automation/class_registry.h"
#include "automation/lasting.h"
#include "platform/system/surroundings.h"
#include "platform/system/utf8.h"

namespace vicenter::entry {

using automation::Variant;

namespace {

constexpr const char* kSharePropsClass = "VelaPropsMgr.ShareProps";
constexpr const char* kNoShareProps = "宿主没有提供 VelaPropsMgr.ShareProps，无法取得账套的连接信息。";

struct ModuleValues {
    std::string userId;
    automation::ObjectRef hostContext;
    std::string presetPropsString;
};

ModuleValues& Values() {
    static const automation::Lasting<ModuleValues> values;
    return *values;
}

}  // namespace

std::string GetPropsString() {
    const ModuleValues& values = Values();
    if (values.hostContext) {
        if (!values.hostContext->Get("AcctID").ToTextOrEmpty().empty()) {
            return values.hostContext->Get("PropsString").ToTextOrEmpty();
        }
    } else if (!values.presetPropsString.empty()) {
        return values.presetPropsString;
    }
    return GetShareProperty("PropsString").ToTextOrEmpty();
}

Variant GetShareProperty(std::string_view name) {
    if (!automation::ClassRegistry::Process().IsRegistered(kSharePropsClass)) {
        throw automation::Error(automation::error_number::kCannotCreateObject, kNoShareProps,
                                kSharePropsClass);
    }
    const automation::ObjectRef properties = automation::CreateObject(kSharePropsClass);
    const std::int32_t processId = system::Surroundings::Current().processes->CurrentProcessId();
    return properties->Call("GetProperty", {processId, name});
}

std::string GetPropValue(std::string_view key) {
    if (automation::SameName(key, "LANGUAGE")) return "chs";
    try {
        std::string text = GetPropsString();
        if (text.empty() || text.back() != ';') text += ';';
        const std::string head = std::string(key) + "=";
        const std::size_t found = system::FindIgnoringCase(text, head);
        if (found == std::string::npos) return {};
        const std::size_t end = text.find(';', found);
        if (end < found + head.size()) return {};  // the key itself holds a ";"
        return text.substr(found + head.size(), end - found - head.size());
    } catch (const automation::Error&) {
        return {};
    }
}

std::string GetKeyValue(std::string_view text, std::string_view key, std::string_view separator) {
    std::string list = std::string(separator).append(text);
    if (!list.ends_with(separator)) list += separator;
    const std::string head = std::string(separator).append(key) + "=";
    const std::size_t found = system::FindIgnoringCase(list, head);
    if (found == std::string::npos) return {};
    std::string value = list.substr(found + head.size());
    std::string_view endMark = separator;
    if (automation::SameName(key, "ConnectString")) {
        if (!value.empty()) value.erase(0, 1);  // the "{"
        endMark = "}";
    }
    const std::size_t end = value.find(endMark);
    return end == std::string::npos ? std::string() : value.substr(0, end);
}

std::string CurrentUserId() {
    const std::string& kept = Values().userId;
    return kept.empty() ? GetPropValue("UserID") : kept;
}

void SetCurrentUserId(std::string userId) {
    Values().userId = std::move(userId);
}

UserScope::UserScope(const std::string& userId) : saved_(Values().userId) {
    if (!userId.empty()) Values().userId = userId;
}

UserScope::~UserScope() {
    Values().userId = std::move(saved_);
}

void AttachHostContext(automation::ObjectRef context) {
    Values().hostContext = std::move(context);
}

void PresetPropsString(std::string propsString) {
    Values().presetPropsString = std::move(propsString);
}

}  // namespace vicenter::entry
