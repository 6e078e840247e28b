#include "host/components/host_session.h"

#include "automation/error.h"
#include "automation/variant.h"

namespace vicenter::host {

using automation::Error;

namespace {

constexpr std::int64_t kListsKept = 60;
constexpr std::int32_t kListTables = 5;
// One row of a few bytes, without a look at the tables themselves.
constexpr const char* kTrackingQuery =
    "select change_tracking_current_version() as FVersion,(select count(*) from sys.change_tracking_tables "
    "where object_id in (object_id('t_VoucherExp'),object_id('t_Account'),object_id('t_Settle'),"
    "object_id('t_Currency'),object_id('t_MeasureUnit'))) as FTables";

// Others look for their keys as plain text: nothing in a name may look like the end or the beginning of one.
std::string NameSetting(const char* key, std::string name) {
    std::erase_if(name, [](char c) { return c == ';' || c == '=' || c == '{' || c == '}' || c == '"'; });
    return name.empty() ? std::string() : std::string(key) + "=" + name + ";";
}

}  // namespace

std::string HostSession::PropsString() const {
    std::string quoted;
    for (const char c : settings_.connectString) {
        quoted += c;
        if (c == '}') quoted += c;
    }
    return "UserID=" + std::to_string(settings_.userId) + ";ConnectString={" + quoted + "};" +
           NameSetting("AcctName", settings_.accountSetName) + NameSetting("UserName", settings_.userName);
}

void HostSession::ReadNames() {
    const auto read = [this](const std::string& query) -> std::string {
        try {
            const ado::RecordsetRef answer = Execute(query);
            return answer->RecordCount() > 0 ? answer->Value(std::size_t{0}).ToText() : std::string();
        } catch (const Error&) {
            return {};
        }
    };
    settings_.accountSetName =
        read("select FValue from t_SystemProfile where FCategory = 'GL' and FKey = 'CompanyName'");
    settings_.userName = read("select FName from t_User where FUserID = " + std::to_string(settings_.userId));
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
    if (const std::optional<std::uint32_t> version = Connection().DataVersion())
        return std::to_string(number_) + "." + std::to_string(*version);
    if (const std::optional<std::string> version = TrackedVersion()) return "tracked." + *version;
    return VersionByTime();
}

std::optional<std::string> HostSession::TrackedVersion() {
    if (!tracks_) return std::nullopt;
    try {
        const ado::RecordsetRef answer = Execute(kTrackingQuery);
        if (answer->RecordCount() == 1 && answer->Value("FTables").ToInt32() == kListTables &&
            !answer->Value("FVersion").IsNull())
            return answer->Value("FVersion").ToText();
    } catch (const Error&) {
        // Another kind of server, or no right to ask it.
    }
    tracks_ = false;
    return std::nullopt;
}

std::string HostSession::VersionByTime() {
    const std::string setting = PropsValue(settings_.connectString, "Lists Kept");
    const std::int64_t seconds = setting.empty() ? kListsKept : automation::Variant(setting).ToInt64();
    if (seconds <= 0) return {};
    const auto now = std::chrono::steady_clock::now();
    if (!periodStart_ || now - *periodStart_ >= std::chrono::seconds(seconds)) {
        periodStart_ = now;
        ++period_;
    }
    return "time." + std::to_string(period_);
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
