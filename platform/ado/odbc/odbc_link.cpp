#include "platform/ado/odbc/odbc_link.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "automation/error.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/ado/odbc/odbc_result.h"
#include "platform/ado/passwords.h"
#include "text/ascii.h"

namespace vicenter::ado {

using automation::Error;
using text::LowerAscii;

namespace {

constexpr const char* kSource = "ODBC";
constexpr const char* kPageQuery =
    "select collationproperty(convert(nvarchar(128), databasepropertyex(db_name(), 'Collation')), "
    "'CodePage')";

std::string ChosenDriver(const OdbcSettings& settings) {
    if (!settings.driver.empty()) return settings.driver;
    for (const OdbcDriver& driver : OdbcDrivers()) {
        if (driver.chosen) return driver.name;
    }
    if (!settings.dataSourceName.empty()) return {};
    throw Error(error_number::kProviderNotFound, NoOdbcDriverText(), kSource);
}

// What a driver says of its connect string may repeat it, as it was given or as it was quoted for the driver.
void HidePassword(std::string& text, const std::string& password) {
    text = PasswordsHidden(text);
    if (password.empty()) return;
    for (std::size_t at = text.find(password); at != std::string::npos; at = text.find(password, at + 3))
        text.replace(at, password.size(), "***");
}

// A driver without wide entry points gets what the driver manager makes of a text, which may be the lower
// half of each character. This one is sent no further than to the driver, and has to come back as it was.
bool CarriesEveryCharacter(SQLHANDLE line) {
    std::u16string text = u"select N'中文'";
    std::array<SQLWCHAR, 64> native{};
    SQLINTEGER length = 0;
    const SQLRETURN code =
        SQLNativeSqlW(line, reinterpret_cast<SQLWCHAR*>(text.data()), static_cast<SQLINTEGER>(text.size()),
                      native.data(), static_cast<SQLINTEGER>(native.size()), &length);
    if (!SQL_SUCCEEDED(code)) return true;
    return OdbcNarrow(native.data(), std::min(native.size(), static_cast<std::size_t>(length))) ==
           "select N'中文'";
}

bool IsMissingDriver(const DriverError& record) {
    return record.sqlState == "IM002" || record.sqlState == "IM003" ||
           record.text.find("Can't open lib") != std::string::npos;
}

std::string ConnectFailure(const std::vector<DriverError>& errors, [[maybe_unused]] bool trusted) {
    std::string reason;
    for (const DriverError& record : errors) {
        if (IsMissingDriver(record)) return NoOdbcDriverText() + "\n" + record.text;
        if (reason.empty() && record.severity > 10) reason = record.text;
        // What the server itself says goes before what the driver makes of it.
        if (record.severity > 10 && (record.native == 18456 || record.native == 4060)) {
            reason = record.text;
            break;
        }
    }
    std::string text = "不能连接到数据库服务器：" + reason;
#ifndef _WIN32
    // The driver itself says little more than that it could not.
    if (trusted) {
        text +=
            "\n集成验证（Integrated Security）使用当前用户的 Kerberos 票据：请先用 kinit 取得票据，或改用 "
            "User ID 和 Password。";
    }
#endif
    return text;
}

}  // namespace

UnansweredQuestion::UnansweredQuestion(std::vector<DriverError> records)
    : Error(error_number::kProviderError, records.empty() ? std::string() : records.front().text, kSource),
      records_(std::move(records)) {}

OdbcLink::OdbcLink(const OdbcSettings& settings, std::vector<DriverError>& errors)
    : line_(OdbcEnvironment()), answerSeconds_(settings.connectSeconds) {
    if (!line_) throw Error(error_number::kProviderNotFound, NoOdbcDriverText(), kSource);
    const std::string driver = ChosenDriver(settings);
    SQLRETURN code = Connect(settings, driver, settings.server, errors);
    if (!SQL_SUCCEEDED(code) && !settings.failoverPartner.empty() &&
        std::any_of(errors.begin(), errors.end(), IsBrokenLine)) {
        std::vector<DriverError> second;
        code = Connect(settings, driver, settings.failoverPartner, second);
        if (SQL_SUCCEEDED(code)) errors = std::move(second);
    }
    if (SQL_SUCCEEDED(code) && !CarriesEveryCharacter(line_.Get())) {
        SQLDisconnect(line_.Get());
        throw Error(
            error_number::kProviderError,
            "ODBC 驱动程序“" + driver + "”不能传送中文（没有 Unicode 接口），请改用 Unicode 版本的驱动程序。",
            kSource);
    }
    if (SQL_SUCCEEDED(code) && settings.lockMilliseconds >= 0 &&
        !Did("set lock_timeout " + std::to_string(settings.lockMilliseconds), errors)) {
        code = SQL_ERROR;
    }
    if (SQL_SUCCEEDED(code)) {
        errors.clear();
        return;
    }
    for (DriverError& record : errors)
        HidePassword(record.text, settings.password);
    throw Error(error_number::kProviderError, ConnectFailure(errors, settings.trusted), kSource);
}

OdbcLink::~OdbcLink() {
    SQLDisconnect(line_.Get());
}

SQLRETURN OdbcLink::Connect(const OdbcSettings& settings, const std::string& driver,
                            const std::string& server, std::vector<DriverError>& errors) {
    SQLSetConnectAttrW(line_.Get(), SQL_ATTR_LOGIN_TIMEOUT,
                       OdbcNumber(static_cast<std::uintptr_t>(settings.connectSeconds)), 0);
    std::u16string text = OdbcWide(DriverConnectString(settings, driver, server));
    const SQLRETURN code =
        SQLDriverConnectW(line_.Get(), nullptr, reinterpret_cast<SQLWCHAR*>(text.data()),
                          static_cast<SQLSMALLINT>(text.size()), nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
    if (!SQL_SUCCEEDED(code)) errors = OdbcDiagnostics(SQL_HANDLE_DBC, line_.Get());
    return code;
}

bool OdbcLink::Did(const std::string& batch, std::vector<DriverError>& errors) const {
    const OdbcStatement statement(line_.Get());
    std::u16string text = OdbcWide(batch);
    const SQLRETURN code = SQLExecDirectW(statement.Get(), reinterpret_cast<SQLWCHAR*>(text.data()),
                                          static_cast<SQLINTEGER>(text.size()));
    if (SQL_SUCCEEDED(code) || code == SQL_NO_DATA) return true;
    errors = OdbcDiagnostics(SQL_HANDLE_STMT, statement.Get());
    return false;
}

OdbcLink::Rows OdbcLink::Ask(const std::string& query) const {
    Rows rows;
    const OdbcStatement statement(line_.Get());
    if (answerSeconds_ > 0) {
        SQLSetStmtAttrW(statement.Get(), SQL_ATTR_QUERY_TIMEOUT,
                        OdbcNumber(static_cast<std::uintptr_t>(answerSeconds_)), 0);
    }
    std::u16string text = OdbcWide(query);
    const OdbcRunning::Scope asking(asking_, statement.Get());
    const auto unanswered = [&] {
        return UnansweredQuestion(OdbcDiagnostics(SQL_HANDLE_STMT, statement.Get()));
    };
    if (!SQL_SUCCEEDED(SQLExecDirectW(statement.Get(), reinterpret_cast<SQLWCHAR*>(text.data()),
                                      static_cast<SQLINTEGER>(text.size()))))
        throw unanswered();
    SQLSMALLINT columns = 0;
    if (!SQL_SUCCEEDED(SQLNumResultCols(statement.Get(), &columns)) || columns == 0) throw unanswered();
    const OdbcRows read = ReadOdbcResult(statement.Get(), columns);
    if (read.end != SQL_NO_DATA) throw unanswered();
    for (std::int64_t row = 0; row < read.recordset->RecordCount(); ++row) {
        std::vector<std::string>& cells = rows.emplace_back();
        for (std::size_t column = 0; column < read.recordset->ColumnCount(); ++column)
            cells.push_back(read.recordset->ValueAt(static_cast<std::size_t>(row), column).ToTextOrEmpty());
    }
    return rows;
}

bool OdbcLink::Answers() const {
    if (IsDead(line_.Get())) return false;
    try {
        return Ask("select 1").size() == 1;
    } catch (const UnansweredQuestion&) {
        return false;
    }
}

const system::CodePage* OdbcLink::Page() {
    if (!asked_) {
        const Rows rows = Ask(kPageQuery);
        asked_ = true;
        KnowPage(rows.size() == 1 ? std::atoi(rows[0][0].c_str()) : 0);
    }
    return page_.get();
}

void OdbcLink::KnowPage(int number) {
    if (number <= 0) return;
    asked_ = true;
    pageNumber_ = number;
    page_ = system::CodePage::Open(number);
}

std::optional<bool> OdbcLink::TakesUnicode(const std::string& table, const std::string& column) {
    const std::string key = LowerAscii(table);
    auto known = columns_.find(key);
    if (known == columns_.end()) {
        std::string name;
        for (const char c : table) {
            name += c;
            if (c == '\'') name += c;
        }
        const Rows rows =
            Ask("select COLUMN_NAME, DATA_TYPE from INFORMATION_SCHEMA.COLUMNS where TABLE_NAME = N'" + name +
                "'");
        known = columns_.emplace(key, std::map<std::string, bool>()).first;
        for (const auto& row : rows) {
            const std::string& type = row[1];
            if (type == "nvarchar" || type == "nchar" || type == "ntext" || type == "xml") {
                known->second[LowerAscii(row[0])] = true;
            } else if (type == "varchar" || type == "char" || type == "text") {
                known->second[LowerAscii(row[0])] = false;
            }
        }
    }
    if (known->second.empty()) return std::nullopt;
    if (!column.empty()) {
        const auto found = known->second.find(LowerAscii(column));
        return found == known->second.end() ? std::nullopt : std::optional<bool>(found->second);
    }
    return std::all_of(known->second.begin(), known->second.end(),
                       [](const auto& entry) { return entry.second; });
}

void OdbcLink::ForgetUnknownTables() {
    std::erase_if(columns_, [](const auto& table) { return table.second.empty(); });
}

}  // namespace vicenter::ado
