#include "tsql/types/sql_type.h"

#include <algorithm>

#include "tsql/types/date_part.h"

namespace vicenter::tsql::engine {

namespace {

struct NamedKind {
    std::string_view name;
    TypeKind kind;
};

// The first name of a kind is its own, later ones are synonyms.
constexpr NamedKind kNames[] = {
    {"bit", TypeKind::kBit},
    {"tinyint", TypeKind::kTinyInt},
    {"smallint", TypeKind::kSmallInt},
    {"int", TypeKind::kInt},
    {"integer", TypeKind::kInt},
    {"bigint", TypeKind::kBigInt},
    {"smallmoney", TypeKind::kSmallMoney},
    {"money", TypeKind::kMoney},
    {"decimal", TypeKind::kDecimal},
    {"numeric", TypeKind::kDecimal},
    {"dec", TypeKind::kDecimal},
    {"real", TypeKind::kReal},
    {"float", TypeKind::kFloat},
    {"double precision", TypeKind::kFloat},
    {"time", TypeKind::kTime},
    {"date", TypeKind::kDate},
    {"smalldatetime", TypeKind::kSmallDateTime},
    {"datetime", TypeKind::kDateTime},
    {"datetime2", TypeKind::kDateTime2},
    {"char", TypeKind::kChar},
    {"character", TypeKind::kChar},
    {"varchar", TypeKind::kVarChar},
    {"char varying", TypeKind::kVarChar},
    {"character varying", TypeKind::kVarChar},
    {"text", TypeKind::kText},
    {"nchar", TypeKind::kNChar},
    {"national char", TypeKind::kNChar},
    {"national character", TypeKind::kNChar},
    {"nvarchar", TypeKind::kNVarChar},
    {"national char varying", TypeKind::kNVarChar},
    {"national character varying", TypeKind::kNVarChar},
    {"sysname", TypeKind::kNVarChar},
    {"ntext", TypeKind::kNText},
    {"binary", TypeKind::kBinary},
    {"varbinary", TypeKind::kVarBinary},
    {"image", TypeKind::kVarBinary},
    {"uniqueidentifier", TypeKind::kUniqueIdentifier},
    {"cursor", TypeKind::kCursor},
    {"table", TypeKind::kTable},
};

int LongerLength(int a, int b) {
    return a == kMaxLength || b == kMaxLength ? kMaxLength : std::max(a, b);
}

}  // namespace

SqlType SqlType::Of(TypeKind kind, int length) {
    SqlType type;
    type.kind = kind;
    type.length = length;
    switch (kind) {
        case TypeKind::kText:
        case TypeKind::kNText:
            type.length = kMaxLength;
            break;
        case TypeKind::kMoney:
            type.precision = 19;
            type.scale = 4;
            break;
        case TypeKind::kSmallMoney:
            type.precision = 10;
            type.scale = 4;
            break;
        default:
            break;
    }
    return type;
}

SqlType SqlType::Decimal(int precision, int scale) {
    SqlType type;
    type.kind = TypeKind::kDecimal;
    type.precision = precision;
    type.scale = scale;
    return type;
}

StorageClass SqlType::Storage() const {
    if (IsInteger()) return StorageClass::kInteger;
    if (IsExact()) return StorageClass::kDecimal;
    if (IsFloat()) return StorageClass::kReal;
    if (IsDate()) return StorageClass::kDate;
    if (IsBinary()) return StorageClass::kBinary;
    return StorageClass::kText;
}

std::string_view KindName(TypeKind kind) {
    for (const NamedKind& entry : kNames) {
        if (entry.kind == kind) return entry.name == "decimal" ? std::string_view("decimal") : entry.name;
    }
    return "NULL";
}

TypeKind KindByName(std::string_view lowerName) {
    for (const NamedKind& entry : kNames) {
        if (entry.name == lowerName) return entry.kind;
    }
    return TypeKind::kUnknown;
}

std::string_view SqlType::Name() const {
    return KindName(kind);
}

std::string SqlType::FullName() const {
    std::string name(Name());
    switch (kind) {
        case TypeKind::kDecimal:
            return name + "(" + std::to_string(precision) + "," + std::to_string(scale) + ")";
        case TypeKind::kChar:
        case TypeKind::kVarChar:
        case TypeKind::kNChar:
        case TypeKind::kNVarChar:
        case TypeKind::kBinary:
        case TypeKind::kVarBinary:
            return name + "(" + (IsMax() ? "max" : std::to_string(length)) + ")";
        case TypeKind::kTime:
        case TypeKind::kDateTime2:
            return precision == 0 ? name : name + "(" + std::to_string(scale) + ")";
        default:
            return name;
    }
}

SqlType AsDecimal(const SqlType& type) {
    switch (type.kind) {
        case TypeKind::kBit:
            return SqlType::Decimal(1, 0);
        case TypeKind::kTinyInt:
            return SqlType::Decimal(3, 0);
        case TypeKind::kSmallInt:
            return SqlType::Decimal(5, 0);
        case TypeKind::kInt:
            return SqlType::Decimal(10, 0);
        case TypeKind::kBigInt:
            return SqlType::Decimal(19, 0);
        case TypeKind::kMoney:
        case TypeKind::kSmallMoney:
        case TypeKind::kDecimal:
            return SqlType::Decimal(type.precision, type.scale);
        default:
            return SqlType::Decimal(18, 0);
    }
}

int StoredBytes(const SqlType& type) {
    switch (type.kind) {
        case TypeKind::kBit:
        case TypeKind::kTinyInt:
            return 1;
        case TypeKind::kSmallInt:
            return 2;
        case TypeKind::kInt:
        case TypeKind::kSmallMoney:
        case TypeKind::kReal:
        case TypeKind::kSmallDateTime:
            return 4;
        case TypeKind::kDate:
            return 3;
        case TypeKind::kTime:
            return 5;
        case TypeKind::kDecimal:
            return type.precision < 10 ? 5 : type.precision < 20 ? 9 : type.precision < 29 ? 13 : 17;
        case TypeKind::kUniqueIdentifier:
        case TypeKind::kText:
        case TypeKind::kNText:
            return 16;
        case TypeKind::kChar:
        case TypeKind::kVarChar:
        case TypeKind::kBinary:
        case TypeKind::kVarBinary:
            return type.length;
        case TypeKind::kNChar:
        case TypeKind::kNVarChar:
            return type.IsMax() ? kMaxLength : type.length * 2;
        default:
            return 8;
    }
}

SqlType CommonType(const SqlType& a, const SqlType& b) {
    if (a.IsUnknown()) return b;
    if (b.IsUnknown()) return a;
    const SqlType& higher = a.kind >= b.kind ? a : b;
    const SqlType& lower = a.kind >= b.kind ? b : a;
    SqlType result = higher;
    if (higher.IsText() || higher.IsBinary()) {
        if (lower.IsText() || lower.IsBinary()) result.length = LongerLength(a.length, b.length);
        // char of different lengths, or char with varchar: the longer, variable one keeps every value.
        if (result.kind == TypeKind::kNChar && lower.kind == TypeKind::kVarChar)
            result.kind = TypeKind::kNVarChar;
    } else if (higher.kind == TypeKind::kDateTime2 || higher.kind == TypeKind::kTime) {
        const bool isShorter = higher.precision != 0 && lower.IsDate() && lower.kind != TypeKind::kDate &&
                               lower.kind != TypeKind::kSmallDateTime;
        if (isShorter) return WithDateDigits(higher.kind, std::max(DateDigits(higher), DateDigits(lower)));
    } else if (higher.kind == TypeKind::kDecimal && (lower.IsExact() || lower.IsInteger())) {
        const SqlType other = AsDecimal(lower);
        const int whole = std::max(higher.precision - higher.scale, other.precision - other.scale);
        const int scale = std::max(higher.scale, other.scale);
        const int precision = std::min(kMaxPrecision, whole + scale);
        result = SqlType::Decimal(precision, std::max(std::min(scale, kMaxPrecision - whole), 0));
    }
    return result;
}

SqlType DecimalResult(Arithmetic operation, const SqlType& first, const SqlType& second) {
    const SqlType a = AsDecimal(first);
    const SqlType b = AsDecimal(second);
    const int wholeA = a.precision - a.scale;
    const int wholeB = b.precision - b.scale;
    const int wider = std::max(a.scale, b.scale);
    switch (operation) {
        case Arithmetic::kAdd:
        case Arithmetic::kSubtract: {
            const int whole = std::max(wholeA, wholeB);
            const int precision = whole + wider + 1;
            if (precision <= kMaxPrecision) return SqlType::Decimal(precision, wider);
            return SqlType::Decimal(kMaxPrecision, std::min(wider, std::max(kMaxPrecision - whole, 0)));
        }
        case Arithmetic::kModulo:
            return SqlType::Decimal(std::min(kMaxPrecision, std::min(wholeA, wholeB) + wider), wider);
        case Arithmetic::kMultiply:
        case Arithmetic::kDivide:
            break;
    }
    int scale = 0;
    int precision = 0;
    if (operation == Arithmetic::kMultiply) {
        scale = a.scale + b.scale;
        precision = a.precision + b.precision + 1;
    } else {
        scale = std::max(6, a.scale + b.precision + 1);
        precision = wholeA + b.scale + scale;
    }
    if (precision > kMaxPrecision) {
        // The whole part goes first, but six digits of the fraction are kept.
        const int whole = precision - scale;
        scale = std::min(scale, std::max(kMaxPrecision - whole, 6));
        precision = kMaxPrecision;
    }
    return SqlType::Decimal(precision, scale);
}

}  // namespace vicenter::tsql::engine
