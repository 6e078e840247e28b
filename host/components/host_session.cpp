#include "host/components/host_session.h"

#include "automation/error.h"
#include "automation/variant.h"

namespace vicenter::host {

using automation::Error;

std::string HostSession::PropsString() const {
    std::string quoted;
    for (const char c : settings_.connectString) {
        quoted += c;
        if (c == '}') quoted += c;
    }
    return "UserID=" + std::to_string(settings_.userId) + ";ConnectString={" + quoted + "};";
}

ado::Connection& HostSession::Connection() {
    if (!connection_ || !connection_->IsOpen()) {
        connection_ = ado::OpenConnection(settings_.connectString);
        static int opened = 0;
        number_ = ++opened;
    }
    return *connection_;
}

ado::RecordsetRef HostSession::Execute(std::string_view batch) {
    return Connection().Execute(batch);
}

std::string HostSession::DataVersion() {
    const std::optional<std::uint32_t> version = Connection().DataVersion();
    return version ? std::to_string(number_) + "." + std::to_string(*version) : std::string();
}

std::string PropsValue(const std::string& propsString, std::string_view key) {
    return ado::ConnectString(propsString).Value(key);
}

std::int32_t PropsUser(const std::string& propsString) {
    try {
        return automation::Variant(PropsValue(propsString, "UserID")).ToInt32();
    } catch (const Error&) {
        throw Error(automation::error_number::kInvalidProcedureCall, "The property string names no user.");
    }
}

}  // namespace vicenter::host
