// What the session answers about itself: @@ROWCOUNT and its kin, the clock, the error of a CATCH block.

#include <cstdio>
#include <limits>

#include "text/hex.h"
#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/types/date_part.h"

namespace vicenter::tsql::engine {

namespace {

// Identities are kept as the integers that they are; T-SQL answers them as decimal(38,0).
Value AsDecimal(const Value& identity) {
    return identity.IsNull() ? Value() : Value(automation::Decimal(identity.Int()));
}

// The bits of @@OPTIONS that are always set: ANSI_WARNINGS, ANSI_PADDING, ANSI_NULLS, QUOTED_IDENTIFIER,
// ANSI_NULL_DFLT_ON and CONCAT_NULL_YIELDS_NULL.
constexpr std::int64_t kFixedOptions = 8 | 16 | 32 | 256 | 1024 | 4096;
constexpr std::int64_t kNoCountOption = 512;
constexpr std::int64_t kXactAbortOption = 16384;

std::int64_t OptionBits(const SetOptions& options) {
    return kFixedOptions | (options.noCount ? kNoCountOption : 0) |
           (options.exactAbort ? kXactAbortOption : 0);
}

std::string JsonText(std::string_view value) {
    std::string json = "\"";
    for (const char c : value) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            json += std::string("\\") + c;
        } else if (code < 0x20) {
            json += "\\u00";
            text::AppendHex(json, code);
        } else {
            json += c;
        }
    }
    return json + '"';
}

// As the server spells it: 116 characters, filled up with '_', and twelve digits of its own.
std::string NameOfTemporary(const TableInfo& table) {
    constexpr std::size_t kNameLength = 116;
    constexpr std::size_t kDigits = 12;
    std::string name = table.name;
    const std::size_t units = UnitCount(name);
    if (units < kNameLength) name.append(kNameLength - units, '_');
    char digits[kDigits + 1] = {};
    std::snprintf(digits, sizeof digits, "%012llX", static_cast<unsigned long long>(-table.id));
    return name + digits;
}

}  // namespace

// The #tables of the session as the lists of rows that the server's views are made of.
std::string Executor::TemporaryTables() const {
    std::string objects;
    std::string columns;
    for (const std::string& name : catalog_.TemporaryNames()) {
        if (name.front() != '#') continue;
        const TableInfo& table = *catalog_.FindTable(name);
        const std::string id = std::to_string(table.id);
        objects += (objects.empty() ? "[" : ",[") + id + "," + JsonText(NameOfTemporary(table)) +
                   ",\"U\",\"\",\"\"]";
        int ordinal = 0;
        for (const ColumnInfo& column : table.columns) {
            columns += (columns.empty() ? "[" : ",[") + id + "," + std::to_string(++ordinal) + "," +
                       JsonText(column.name) + "," + JsonText(column.type.Name());
            for (const std::int64_t number :
                 {std::int64_t{column.type.length}, std::int64_t{column.type.precision},
                  std::int64_t{column.type.scale}, std::int64_t{column.nullable ? 1 : 0},
                  std::int64_t{column.identity ? 1 : 0}, column.seed, column.increment})
                columns += "," + std::to_string(number);
            columns += ",\"\"," + JsonText(column.defaultText) + "," + JsonText(column.computedText) + "]";
        }
    }
    return "{\"objects\":[" + objects + "],\"columns\":[" + columns + "]}";
}

Value Executor::SystemValue(std::string_view name) const {
    if (name == "temporary tables") return Value(TemporaryTables());
    if (name == "current row") return Value(currentRow_);
    if (name == "@@rowcount") return Value(rowCount_);
    if (name == "@@error") return Value(std::int64_t{lastError_});
    if (name == "@@fetch_status") return Value(std::int64_t{fetchStatus_});
    if (name == "@@trancount") return Value(transactions_.Count());
    if (name == "@@identity") return AsDecimal(identity_);
    if (name == "scope_identity") return frame_ != nullptr ? AsDecimal(frame_->scopeIdentity) : Value();
    if (name == "@@nestlevel") return Value(frame_ != nullptr ? frame_->level : 0);
    if (name == "@@procid") return Value(frame_ != nullptr ? frame_->procedureId : 0);
    if (name == "@@spid") return Value(51);
    if (name == "@@version") return Value(std::string("Embedded account set"));
    if (name == "@@servername" || name == "host_name") return Value(std::string("localhost"));
    if (name == "@@datefirst") return Value(7);
    if (name == "@@language") return Value(std::string("us_english"));
    if (name == "@@lock_timeout")
        return Value(frame_ != nullptr ? frame_->options.lockTimeoutMilliseconds : 0);
    if (name == "@@max_precision") return Value(kMaxPrecision);
    if (name == "@@cursor_rows") return Value(CursorRows());
    if (name == "@@options") return Value(OptionBits(frame_ != nullptr ? frame_->options : setOptions_));
    if (name == "@@langid") return Value(0);
    if (name == "@@textsize") return Value(std::int64_t{std::numeric_limits<std::int32_t>::max()});
    // To 1/300 of a second, as every datetime is.
    if (name == "getdate")
        return Value(RoundToType(options_.now(), SqlType::DateTime()).value_or(options_.now()));
    if (name == "db_name") return Value(std::string("accountset"));
    if (name == "db_id") return Value(5);
    if (name == "app_name") return Value(std::string("vicenter"));
    if (name == "schema_name" || name == "user" || name == "user_name" || name == "current_user" ||
        name == "session_user" || name == "system_user" || name == "suser_sname") {
        return Value(options_.user);
    }
    if (name == "xact_state") return Value(transactions_.IsDoomed() ? -1 : transactions_.Count() > 0 ? 1 : 0);
    if (caught_.empty()) return {};
    const Diagnostic& caught = caught_.back();
    if (name == "error_number") return Value(std::int64_t{caught.number});
    if (name == "error_message") return Value(caught.text);
    if (name == "error_line") return Value(std::int64_t{caught.line});
    if (name == "error_severity") return Value(std::int64_t{caught.severity});
    if (name == "error_state") return Value(std::int64_t{caught.state});
    if (name == "error_procedure" && !caught.procedure.empty()) return Value(caught.procedure);
    return {};
}

}  // namespace vicenter::tsql::engine
