#include "platform/ado/odbc/odbc_result.h"

#include <array>
#include <optional>

#include "automation/date_time.h"
#include "automation/decimal.h"
#include "text/hex.h"

namespace vicenter::ado {

using automation::DateTime;
using automation::Decimal;

namespace {

// The vendor's own type codes.
constexpr SQLSMALLINT kTypeVariant = -150;
constexpr SQLSMALLINT kTypeTime2 = -154;
constexpr SQLSMALLINT kTypeTimeOffset = -155;

constexpr std::int32_t kErrorSeverity = 16;
constexpr SQLULEN kLongestFixed = 8000;
constexpr SQLULEN kSmallMoneyDigits = 10;

enum class Reading { kBoolean, kInt16, kInt32, kInt64, kDouble, kDecimal, kTimeStamp, kTime, kText, kBinary };

struct ColumnPlan {
    Reading reading = Reading::kText;
};

std::string TypeNameOf(SQLHSTMT statement, SQLUSMALLINT column) {
    SQLWCHAR name[130] = {};
    SQLSMALLINT bytes = 0;
    SQLLEN ignored = 0;
    if (!SQL_SUCCEEDED(
            SQLColAttributeW(statement, column, SQL_DESC_TYPE_NAME, name, sizeof name, &bytes, &ignored)))
        return {};
    std::string text = OdbcNarrow(name, static_cast<std::size_t>(bytes) / sizeof(SQLWCHAR));
    if (const std::size_t blank = text.find(' '); blank != std::string::npos)
        text.resize(blank);  // "int identity"
    return text;
}

std::string WithLength(const std::string& name, SQLULEN size) {
    if (size == 0 || size > kLongestFixed) return name + "(max)";
    return name + "(" + std::to_string(size) + ")";
}

// Seven digits of a second are what the type has when nobody says how many.
std::string WithFraction(const std::string& name, SQLSMALLINT digits) {
    return digits == 7 ? name : name + "(" + std::to_string(digits) + ")";
}

ColumnPlan Describe(SQLHSTMT statement, SQLUSMALLINT number, Column& column) {
    std::array<SQLWCHAR, 300> name{};
    SQLSMALLINT length = 0;
    SQLSMALLINT type = 0;
    SQLULEN size = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = 0;
    SQLDescribeColW(statement, number, name.data(), static_cast<SQLSMALLINT>(name.size()), &length, &type,
                    &size, &digits, &nullable);
    column.name = OdbcNarrow(name.data(), static_cast<std::size_t>(length));
    const std::string server = TypeNameOf(statement, number);
    const auto as = [&](DataType dataType, const std::string& serverType, Reading reading) {
        column.type = dataType;
        column.serverType = serverType;
        return ColumnPlan{reading};
    };
    switch (type) {
        case SQL_BIT:
            return as(DataType::kBoolean, "bit", Reading::kBoolean);
        case SQL_TINYINT:
            return as(DataType::kTinyInt, "tinyint", Reading::kInt16);
        case SQL_SMALLINT:
            return as(DataType::kSmallInt, "smallint", Reading::kInt16);
        case SQL_INTEGER:
            return as(DataType::kInteger, "int", Reading::kInt32);
        case SQL_BIGINT:
            return as(DataType::kBigInt, "bigint", Reading::kInt64);
        case SQL_REAL:
            return as(DataType::kDouble, "real", Reading::kDouble);
        case SQL_FLOAT:
        case SQL_DOUBLE:
            return as(DataType::kDouble, "float", Reading::kDouble);
        case SQL_NUMERIC:
        case SQL_DECIMAL:
            // FreeTDS has one name for both.
            if (server == "money" || server == "smallmoney")
                return as(DataType::kCurrency, size <= kSmallMoneyDigits ? "smallmoney" : "money",
                          Reading::kDecimal);
            return as(DataType::kNumeric,
                      "decimal(" + std::to_string(size) + "," + std::to_string(digits) + ")",
                      Reading::kDecimal);
        case SQL_TYPE_DATE:
            return as(DataType::kTimeStamp, "date", Reading::kTimeStamp);
        case SQL_TYPE_TIMESTAMP:
            if (server == "datetime2")
                return as(DataType::kTimeStamp, WithFraction("datetime2", digits), Reading::kTimeStamp);
            return as(DataType::kTimeStamp, server.empty() ? "datetime" : server, Reading::kTimeStamp);
        case SQL_TYPE_TIME:
        case kTypeTime2:
            return as(DataType::kTimeStamp, WithFraction("time", digits), Reading::kTime);
        case SQL_GUID:
            return as(DataType::kGuid, "uniqueidentifier", Reading::kText);
        case SQL_BINARY:
            return as(DataType::kBinary, WithLength("binary", size), Reading::kBinary);
        case SQL_VARBINARY:
        case SQL_LONGVARBINARY:
            if (server == "image" || server == "timestamp")
                return as(DataType::kBinary, server, Reading::kBinary);
            return as(DataType::kBinary, WithLength("varbinary", size), Reading::kBinary);
        case SQL_CHAR:
            return as(DataType::kChar, WithLength("char", size), Reading::kText);
        case SQL_VARCHAR:
        case SQL_LONGVARCHAR:
            if (server == "text") return as(DataType::kLongVarChar, server, Reading::kText);
            if (size == 0 || size > kLongestFixed)
                return as(DataType::kLongVarChar, "varchar(max)", Reading::kText);
            return as(DataType::kVarChar, WithLength("varchar", size), Reading::kText);
        case SQL_WCHAR:
            return as(DataType::kVarWChar, WithLength("nchar", size), Reading::kText);
        case kTypeVariant:
        case kTypeTimeOffset:
            return as(DataType::kVarWChar, server, Reading::kText);
        default:
            if (server == "ntext" || server == "xml")
                return as(DataType::kLongVarWChar, server, Reading::kText);
            if (size == 0 || size > kLongestFixed)
                return as(DataType::kLongVarWChar, "nvarchar(max)", Reading::kText);
            return as(DataType::kVarWChar, WithLength("nvarchar", size), Reading::kText);
    }
}

class RowReader {
  public:
    explicit RowReader(SQLHSTMT statement) : statement_(statement), piece_(4096) {}

    SQLRETURN Read(SQLUSMALLINT column, Reading reading, Variant& value) {
        switch (reading) {
            case Reading::kBoolean:
                return Fixed<unsigned char>(
                    column, SQL_C_BIT, [&](unsigned char bit) { value = Variant(bit != 0); }, value);
            case Reading::kInt16:
                return Fixed<std::int16_t>(
                    column, SQL_C_SSHORT, [&](std::int16_t number) { value = Variant(number); }, value);
            case Reading::kInt32:
                return Fixed<std::int32_t>(
                    column, SQL_C_SLONG, [&](std::int32_t number) { value = Variant(number); }, value);
            case Reading::kInt64:
                return Fixed<std::int64_t>(
                    column, SQL_C_SBIGINT, [&](std::int64_t number) { value = Variant(number); }, value);
            case Reading::kDouble:
                return Fixed<double>(
                    column, SQL_C_DOUBLE, [&](double number) { value = Variant(number); }, value);
            case Reading::kTimeStamp:
                return Fixed<SQL_TIMESTAMP_STRUCT>(
                    column, SQL_C_TYPE_TIMESTAMP,
                    [&](const SQL_TIMESTAMP_STRUCT& time) {
                        const auto date =
                            DateTime::FromParts({time.year, time.month, time.day, time.hour, time.minute,
                                                 time.second, static_cast<int>(time.fraction / 1'000'000)});
                        value = date ? Variant(*date) : Variant::Null();
                    },
                    value);
            case Reading::kTime:
                return Time(column, value);
            case Reading::kDecimal:
                return Number(column, value);
            case Reading::kBinary:
                return Binary(column, value);
            case Reading::kText:
                break;
        }
        return Text(column, value);
    }

    // The text that was none of its column's type, behind a Read() that gave SQL_ERROR for it.
    const std::optional<std::string>& Unreadable() const { return unreadable_; }

  private:
    // Nothing in its place would pass for NULL.
    SQLRETURN Unreadable(const char* text) {
        unreadable_ = text;
        return SQL_ERROR;
    }

    template <class T, class Take>
    SQLRETURN Fixed(SQLUSMALLINT column, SQLSMALLINT type, Take take, Variant& value) {
        T data{};
        SQLLEN length = 0;
        const SQLRETURN code = SQLGetData(statement_, column, type, &data, sizeof data, &length);
        if (!SQL_SUCCEEDED(code)) return code;
        if (length == SQL_NULL_DATA) {
            value = Variant::Null();
        } else {
            take(data);
        }
        return code;
    }

    // Exact numbers come as their digits.
    SQLRETURN Number(SQLUSMALLINT column, Variant& value) {
        char digits[64] = {};
        SQLLEN length = 0;
        const SQLRETURN code = SQLGetData(statement_, column, SQL_C_CHAR, digits, sizeof digits, &length);
        if (!SQL_SUCCEEDED(code)) return code;
        value = Variant::Null();
        if (length == SQL_NULL_DATA) return code;
        const auto number = Decimal::Parse(digits);
        if (!number) return Unreadable(digits);
        value = Variant(*number);
        return code;
    }

    // A time of day is one of the first day of the calendar, as on the embedded account set.
    SQLRETURN Time(SQLUSMALLINT column, Variant& value) {
        char digits[64] = {};
        SQLLEN length = 0;
        const SQLRETURN code = SQLGetData(statement_, column, SQL_C_CHAR, digits, sizeof digits, &length);
        if (!SQL_SUCCEEDED(code)) return code;
        value = Variant::Null();
        if (length == SQL_NULL_DATA) return code;
        std::string text(digits);
        if (const std::size_t blank = text.find(' '); blank != std::string::npos) text.erase(0, blank + 1);
        if (const std::size_t dot = text.find('.'); dot != std::string::npos && text.size() > dot + 4)
            text.resize(dot + 4);
        const auto time = DateTime::Parse("1900-01-01 " + text);
        if (!time) return Unreadable(digits);
        value = Variant(*time);
        return code;
    }

    SQLRETURN Text(SQLUSMALLINT column, Variant& value) {
        std::u16string text;
        for (;;) {
            SQLLEN length = 0;
            const SQLRETURN code = SQLGetData(statement_, column, SQL_C_WCHAR, piece_.data(),
                                              static_cast<SQLLEN>(piece_.size() * sizeof(SQLWCHAR)), &length);
            if (code == SQL_NO_DATA) break;
            if (!SQL_SUCCEEDED(code)) return code;
            if (length == SQL_NULL_DATA) {
                value = Variant::Null();
                return code;
            }
            const std::size_t room = piece_.size() - 1;
            const auto whole = static_cast<std::size_t>(length) / sizeof(SQLWCHAR);
            const bool more = code == SQL_SUCCESS_WITH_INFO && (length == SQL_NO_TOTAL || whole > room);
            text.append(reinterpret_cast<const char16_t*>(piece_.data()), more ? room : whole);
            if (!more) break;
            // What is left fits the next time.
            if (length != SQL_NO_TOTAL && whole - room >= piece_.size()) piece_.resize(whole - room + 1);
        }
        value = Variant(OdbcNarrow(reinterpret_cast<const SQLWCHAR*>(text.data()), text.size()));
        return SQL_SUCCESS;
    }

    // As a text: bytes have no automation type of their own here.
    SQLRETURN Binary(SQLUSMALLINT column, Variant& value) {
        std::string text = "0x";
        for (;;) {
            std::array<unsigned char, 4096> bytes{};
            SQLLEN length = 0;
            const SQLRETURN code =
                SQLGetData(statement_, column, SQL_C_BINARY, bytes.data(), bytes.size(), &length);
            if (code == SQL_NO_DATA) break;
            if (!SQL_SUCCEEDED(code)) return code;
            if (length == SQL_NULL_DATA) {
                value = Variant::Null();
                return code;
            }
            const bool more = length == SQL_NO_TOTAL || static_cast<std::size_t>(length) > bytes.size();
            const std::size_t count = more ? bytes.size() : static_cast<std::size_t>(length);
            for (std::size_t i = 0; i < count; ++i)
                text::AppendHex(text, bytes[i]);
            if (!more) break;
        }
        value = Variant(std::move(text));
        return SQL_SUCCESS;
    }

    SQLHSTMT statement_;
    std::vector<SQLWCHAR> piece_;
    std::optional<std::string> unreadable_;
};

DriverError ErrorOfValue(const std::string& column, const std::string& text) {
    DriverError error;
    error.severity = kErrorSeverity;
    error.sqlState = "22018";
    error.text = "数据库驱动程序给出的字段“" + column + "”的值无法识别：" + text;
    return error;
}

}  // namespace

OdbcRows ReadOdbcResult(SQLHSTMT statement, SQLSMALLINT columnCount) {
    std::vector<Column> columns(static_cast<std::size_t>(columnCount));
    std::vector<ColumnPlan> plans;
    plans.reserve(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i)
        plans.push_back(Describe(statement, static_cast<SQLUSMALLINT>(i + 1), columns[i]));
    OdbcRows rows;
    rows.recordset = std::make_shared<Recordset>(std::move(columns));
    RowReader reader(statement);
    for (;;) {
        rows.end = SQLFetch(statement);
        if (!SQL_SUCCEEDED(rows.end)) return rows;
        const std::span<Variant> row = rows.recordset->AppendRow();
        for (std::size_t i = 0; i < row.size(); ++i) {
            rows.end = reader.Read(static_cast<SQLUSMALLINT>(i + 1), plans[i].reading, row[i]);
            if (const auto& text = reader.Unreadable())
                rows.unreadable.push_back(ErrorOfValue(rows.recordset->Columns()[i].name, *text));
            if (rows.end == SQL_ERROR || rows.end == SQL_INVALID_HANDLE) return rows;
        }
    }
}

}  // namespace vicenter::ado
