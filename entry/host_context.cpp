#include "entry/host_context.h"

#include <utility>

#include "automation/class_registry.h"
#include "automation/lasting.h"
#include "platform/ado/connection.h"
#include "platform/ado/host_connection_service.h"
#include "platform/system/surroundings.h"
#include "platform/system/utf8.h"

namespace vicenter::entry {

using automation::Variant;

namespace {

constexpr const char* kSharePropsClass = "VelaPropsMgr.ShareProps";
constexpr const char* kNoShareProps = "宿主没有提供 VelaPropsMgr.ShareProps，无法取得账套的连接信息。";

struct ModuleValues {
    WindowSession session;  // its user is that of the window that opened last
    automation::ObjectRef hostContext;
    std::string presetPropsString;
};

ModuleValues& Values() {
    static const automation::Lasting<ModuleValues> values;
    return *values;
}

// What tells account sets apart in a connect string; the rest says how to get there.
constexpr const char* kPlaces[] = {
    "Provider", "Data Source",     "Server",   "Address",         "Addr", "Network Address", "DSN",
    "File DSN", "Initial Catalog", "Database", "AttachDBFilename"};

bool IsSameSession(const std::string& one, const std::string& other) {
    return ado::ConnectString(one).Value("UserID") == ado::ConnectString(other).Value("UserID") &&
           AccountSetOf(one) == AccountSetOf(other);
}

std::string PropsStringOfHost() {
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

}  // namespace

std::string AccountSetOf(const std::string& propsString) {
    const ado::ConnectString settings(ado::ConnectString(propsString).Value("ConnectString"));
    std::string places;
    for (const char* key : kPlaces)
        places.append(key).append("={").append(settings.Value(key)).append("};");
    return places;
}

std::string GetPropsString() {
    std::string now = PropsStringOfHost();
    const std::string& own = Values().session.propsString;
    // A host that names nothing any more has ended the session.
    if (own.empty() || now.empty() || now == own || IsSameSession(now, own)) return now;
    return own;
}

std::string ConnectStringOfHost() {
    return ado::ConnectStringOf(GetPropsString());
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
    const std::string& kept = Values().session.userId;
    return kept.empty() ? GetPropValue("UserID") : kept;
}

void SetCurrentUserId(std::string userId) {
    Values().session.userId = std::move(userId);
}

SessionScope::SessionScope(const WindowSession& window) : saved_(Values().session) {
    WindowSession& session = Values().session;
    if (!window.userId.empty()) session.userId = window.userId;
    session.propsString = window.propsString;
}

SessionScope::~SessionScope() {
    Values().session = std::move(saved_);
}

void AttachHostContext(automation::ObjectRef context) {
    Values().hostContext = std::move(context);
}

void PresetPropsString(std::string propsString) {
    Values().presetPropsString = std::move(propsString);
}

}  // namespace vicenter::entry
