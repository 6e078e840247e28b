#pragma once

// The data types of SQL Server and the rules by which expressions get theirs. Plain values.

#include <cstdint>
#include <string>
#include <string_view>

namespace vicenter::tsql::engine {

// In ascending order of data-type precedence: of two operands the one further down gives the common type.
enum class TypeKind : std::uint8_t {
    kUnknown,  // the literal NULL
    kBinary,
    kVarBinary,
    kChar,
    kVarChar,
    kText,
    kNChar,
    kNVarChar,
    kNText,
    kUniqueIdentifier,
    kBit,
    kTinyInt,
    kSmallInt,
    kInt,
    kBigInt,
    kSmallMoney,
    kMoney,
    kDecimal,
    kReal,
    kFloat,
    kTime,
    kDate,
    kSmallDateTime,
    kDateTime,
    kDateTime2,
    kCursor,
    kTable,
};

// How values of a type are kept in SQLite; see docs/account-set-format.md.
enum class StorageClass : std::uint8_t { kInteger, kReal, kDecimal, kText, kDate, kBinary };

inline constexpr int kMaxLength = -1;  // varchar(max)
// Without max: bytes of binary and varchar, code units of nvarchar.
inline constexpr int kLongestVarChar = 8000;
inline constexpr int kLongestNVarChar = 4000;
inline constexpr int kMaxPrecision = 38;

struct SqlType {
    TypeKind kind = TypeKind::kUnknown;
    int length = 0;  // characters or bytes; kMaxLength for max
    int precision = 0;
    int scale = 0;

    static SqlType Of(TypeKind kind, int length = 0);
    static SqlType Decimal(int precision, int scale);
    static SqlType VarChar(int length) { return Of(TypeKind::kVarChar, length); }
    static SqlType NVarChar(int length) { return Of(TypeKind::kNVarChar, length); }
    static SqlType Int() { return Of(TypeKind::kInt); }
    static SqlType Float() { return Of(TypeKind::kFloat); }
    static SqlType DateTime() { return Of(TypeKind::kDateTime); }

    bool IsUnknown() const { return kind == TypeKind::kUnknown; }
    bool IsText() const { return kind >= TypeKind::kChar && kind <= TypeKind::kNText; }
    bool IsGuid() const { return kind == TypeKind::kUniqueIdentifier; }
    bool IsUnicode() const { return kind >= TypeKind::kNChar && kind <= TypeKind::kNText; }
    bool IsFixedText() const { return kind == TypeKind::kChar || kind == TypeKind::kNChar; }
    bool IsBinary() const { return kind == TypeKind::kBinary || kind == TypeKind::kVarBinary; }
    // bit included
    bool IsInteger() const { return kind >= TypeKind::kBit && kind <= TypeKind::kBigInt; }
    bool IsMoney() const { return kind == TypeKind::kSmallMoney || kind == TypeKind::kMoney; }
    // decimal and money
    bool IsExact() const { return kind >= TypeKind::kSmallMoney && kind <= TypeKind::kDecimal; }
    bool IsFloat() const { return kind == TypeKind::kReal || kind == TypeKind::kFloat; }
    bool IsNumber() const { return kind >= TypeKind::kBit && kind <= TypeKind::kFloat; }
    bool IsDate() const { return kind >= TypeKind::kTime && kind <= TypeKind::kDateTime2; }
    bool IsMax() const { return length == kMaxLength; }

    StorageClass Storage() const;
    // "int", "varchar": as error messages name it.
    std::string_view Name() const;
    // "decimal(18,4)", "nvarchar(max)": as a definition writes it.
    std::string FullName() const;

    friend bool operator==(const SqlType&, const SqlType&) = default;
};

// The kind by its T-SQL name in lower case, synonyms included; kUnknown for any other name.
TypeKind KindByName(std::string_view lowerName);
std::string_view KindName(TypeKind kind);

// The type in which two values are compared or which a CASE, COALESCE or UNION of them has.
SqlType CommonType(const SqlType& a, const SqlType& b);

// What an integer, bit or money counts as among decimals.
SqlType AsDecimal(const SqlType& type);

// The bytes that a value takes on the server, -1 for max: what COL_LENGTH and the system's views say.
int StoredBytes(const SqlType& type);

enum class Arithmetic : std::uint8_t { kAdd, kSubtract, kMultiply, kDivide, kModulo };

// The type of a decimal operation, its scale cut as SQL Server cuts it when 38 digits are not enough.
SqlType DecimalResult(Arithmetic operation, const SqlType& a, const SqlType& b);

}  // namespace vicenter::tsql::engine
