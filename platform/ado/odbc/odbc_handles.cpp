#include "platform/ado/odbc/odbc_handles.h"

#include "automation/lasting.h"
#include "platform/system/utf8.h"

namespace vicenter::ado {

namespace {

// Numbers of the vendor's own diagnostic fields.
constexpr SQLSMALLINT kDiagMessageState = -1150;
constexpr SQLSMALLINT kDiagSeverity = -1151;
constexpr SQLSMALLINT kDiagProcedure = -1153;
constexpr SQLSMALLINT kDiagLine = -1154;

constexpr std::int32_t kErrorSeverity = 16;
constexpr std::int32_t kFirstErrorSeverity = 11;

// "[Vendor][Driver][SQL Server]what the server said"; its own text may begin with a bracket too.
std::string WithoutOrigin(std::string text) {
    constexpr std::string_view kServer = "[SQL Server]";
    while (!text.empty() && text.front() == '[') {
        const std::size_t end = text.find(']');
        if (end == std::string::npos) break;
        const bool isServer = std::string_view(text).substr(0, end + 1) == kServer;
        text.erase(0, end + 1);
        if (isServer) break;
    }
    return text;
}

}  // namespace

SQLHANDLE OdbcEnvironment() {
    // A link of whoever ends last still wants it.
    static const automation::Lasting<OdbcHandle<SQL_HANDLE_ENV>> environment([] {
        OdbcHandle<SQL_HANDLE_ENV> made(SQL_NULL_HANDLE);
        if (made) {
            SQLSetEnvAttr(made.Get(), SQL_ATTR_ODBC_VERSION, OdbcNumber(SQL_OV_ODBC3), 0);
        }
        return made;
    }());
    return environment->Get();
}

SQLPOINTER OdbcNumber(std::uintptr_t number) {
    return reinterpret_cast<SQLPOINTER>(number);  // NOLINT(performance-no-int-to-ptr): ODBC takes it so
}

std::u16string OdbcWide(std::string_view text) {
    static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));
    return system::ToUtf16(text);
}

std::string OdbcNarrow(const SQLWCHAR* text, std::size_t units) {
    return system::FromUtf16(std::u16string_view(reinterpret_cast<const char16_t*>(text), units));
}

std::vector<DriverError> OdbcDiagnostics(SQLSMALLINT type, SQLHANDLE handle) {
    std::vector<DriverError> records;
    for (SQLSMALLINT number = 1;; ++number) {
        SQLWCHAR state[6] = {};
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        std::vector<SQLWCHAR> text(512);
        SQLRETURN code = SQLGetDiagRecW(type, handle, number, state, &native, text.data(),
                                        static_cast<SQLSMALLINT>(text.size()), &length);
        if (code == SQL_SUCCESS_WITH_INFO && length >= static_cast<SQLSMALLINT>(text.size())) {
            text.resize(static_cast<std::size_t>(length) + 1);
            code = SQLGetDiagRecW(type, handle, number, state, &native, text.data(),
                                  static_cast<SQLSMALLINT>(text.size()), &length);
        }
        if (!SQL_SUCCEEDED(code)) return records;
        DriverError record;
        record.native = native;
        record.sqlState = OdbcNarrow(state, 5);
        record.text = WithoutOrigin(OdbcNarrow(text.data(), static_cast<std::size_t>(length)));
        // Drivers differ in the width of what they write here.
        SQLULEN field = 0;
        const auto has = [&](SQLSMALLINT which) {
            field = 0;
            return SQL_SUCCEEDED(
                SQLGetDiagFieldW(type, handle, number, which, &field, sizeof field, nullptr));
        };
        if (has(kDiagLine)) record.line = static_cast<std::int32_t>(field & 0xFFFF);
        const bool information = record.sqlState.starts_with("01");
        if (has(kDiagSeverity)) {
            record.severity = static_cast<std::int32_t>(field & 0xFF);
            if (has(kDiagMessageState)) record.state = static_cast<std::int32_t>(field & 0xFF);
        } else if (has(kDiagMessageState)) {
            // FreeTDS keeps the severity there, and no state.
            record.severity = static_cast<std::int32_t>(field & 0xFF);
            record.state = 1;
        }
        // Of what the driver itself or a line says the state tells it.
        if (information && record.severity >= kFirstErrorSeverity) record.severity = 0;
        if (!information && record.severity < kFirstErrorSeverity) record.severity = kErrorSeverity;
        SQLWCHAR procedure[260] = {};
        SQLSMALLINT bytes = 0;
        if (SQL_SUCCEEDED(SQLGetDiagFieldW(type, handle, number, kDiagProcedure, procedure, sizeof procedure,
                                           &bytes))) {
            record.procedure = OdbcNarrow(procedure, static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR));
        }
        records.push_back(std::move(record));
    }
}

void OdbcRunning::Cancel() noexcept {
    // Where the lock is held a statement is just beginning or ending.
    const std::unique_lock lock(lock_, std::try_to_lock);
    if (lock && statement_ != SQL_NULL_HSTMT) SQLCancel(statement_);
}

void OdbcRunning::Set(SQLHSTMT statement) {
    const std::lock_guard guard(lock_);
    statement_ = statement;
}

bool IsDead(SQLHANDLE line) {
    SQLUINTEGER dead = SQL_CD_FALSE;
    return SQL_SUCCEEDED(
               SQLGetConnectAttrW(line, SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr)) &&
           dead == SQL_CD_TRUE;
}

bool IsBrokenLine(const DriverError& record) {
    return record.sqlState.starts_with("08");
}

}  // namespace vicenter::ado
