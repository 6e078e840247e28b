// What definitions ask: types by their names, conditions and values of columns.

#include <algorithm>

#include "tsql/base/text_units.h"
#include "tsql/syntax/parse/parser.h"
#include "tsql/translate/translator.h"
#include "tsql/types/date_part.h"

namespace vicenter::tsql::engine {

namespace {

constexpr const char* kUpdate = "UPDATE";

// Types of the server's that an account set does not have.
bool IsServerType(std::string_view name) {
    static constexpr std::string_view kTypes[] = {
        "datetimeoffset", "geography",   "geometry",  "hierarchyid", "json",
        "rowversion",     "sql_variant", "timestamp", "vector",      "xml"};
    return std::find(std::begin(kTypes), std::end(kTypes), name) != std::end(kTypes);
}

}  // namespace

SqlType Translator::ResolveType(const TypeName& name) {
    const TypeKind kind = KindByName(name.name);
    if (kind == TypeKind::kUnknown && IsServerType(name.name))
        throw MakeError(40510, name.position, {"type " + name.name});
    if (kind == TypeKind::kUnknown) throw MakeError(2715, name.position, {1, name.name});
    SqlType type = SqlType::Of(kind);
    switch (kind) {
        case TypeKind::kDecimal: {
            const int precision = name.length.value_or(18);
            const int scale = name.scale.value_or(0);
            if (precision > kMaxPrecision || precision < 1)
                throw MakeError(2750, name.position, {1, precision, kMaxPrecision});
            if (scale > precision) throw MakeError(2751, name.position, {1, scale, precision});
            return SqlType::Decimal(precision, scale);
        }
        case TypeKind::kFloat:
            if (name.length && *name.length >= 1 && *name.length <= 24) return SqlType::Of(TypeKind::kReal);
            return type;
        case TypeKind::kChar:
        case TypeKind::kVarChar:
        case TypeKind::kNChar:
        case TypeKind::kNVarChar:
        case TypeKind::kBinary:
        case TypeKind::kVarBinary: {
            if (name.name == "image") return SqlType::Of(kind, kMaxLength);
            if (name.name == "sysname") return SqlType::Of(kind, 128);
            const int limit = type.IsUnicode() ? kLongestNVarChar : kLongestVarChar;
            const int length = name.length.value_or(1);
            if (length > limit) throw MakeError(2717, name.position, {length, "type", name.name, limit});
            return SqlType::Of(kind, length);
        }
        case TypeKind::kTime:
        case TypeKind::kDateTime2: {
            const int digits = name.length.value_or(kMostDateDigits);
            if (digits > kMostDateDigits)
                throw MakeError(1002, name.position, {static_cast<std::int32_t>(name.position.line), digits});
            return WithDateDigits(kind, digits);
        }
        default:
            if (name.length && !type.IsDate()) throw MakeError(2716, name.position, {1, name.name});
            return type;
    }
}

// There is one collation; asking for another one by name changes nothing, unless it were to tell upper from
// lower case, or kana and widths, or not to tell accents.
void Translator::CheckCollation(const Name& collation) {
    const std::string name = LowerAscii(collation.text) + "_";
    static constexpr std::string_view kOthers[] = {"_ai_", "_bin_", "_bin2_", "_cs_", "_ks_", "_ws_"};
    const bool isOther = std::any_of(std::begin(kOthers), std::end(kOthers), [&](std::string_view mark) {
        return name.find(mark) != std::string::npos;
    });
    if (!isOther) return;
    throw MakeError(40510, collation.position, {"COLLATE " + collation.text});
}

SqlType Translator::ComputedType(const TableInfo& table, const std::string& text) {
    TableInfo plain = table;
    std::erase_if(plain.columns, [](const ColumnInfo& column) { return !column.computedText.empty(); });
    Scope scope;
    scope.sources.push_back(SourceOf(plain, table.name));
    ownedExpressions_.push_back(ParseExpression(text));
    return Value(*ownedExpressions_.back(), scope).type;
}

std::string Translator::CheckText(const TableInfo& table, const Expr& condition) {
    inlineLiterals_ = true;
    Scope scope;
    Source source = SourceOf(table, table.name);
    for (SourceColumn& column : source.columns) {
        if (column.natural) column.sql = Quoted(column.name);
    }
    scope.sources.push_back(std::move(source));
    return ConditionText(condition, scope);
}

std::string Translator::DefaultText(const TableInfo& table, const ColumnInfo& column) {
    inlineLiterals_ = true;
    const Operand value = DefaultOf(column);
    return RenderStored(Computed(Render(value), value.type), table, column, kUpdate);
}

Translation Translator::FillColumn(const TableInfo& table, const ColumnInfo& column, const Expr& value) {
    Begin(table, kUpdate);
    Scope none;
    const std::string stored = RenderStored(Value(value, none), table, column, kUpdate);
    return Finished("UPDATE " + table.Sql() + " SET " + Quoted(column.name) + " = " + stored);
}

Translation Translator::RewriteColumn(const TableInfo& table, const ColumnInfo& column, const SqlType& from) {
    Begin(table, kUpdate);
    const std::string stored = RenderStored(Computed(Quoted(column.name), from), table, column, kUpdate);
    return Finished("UPDATE " + table.Sql() + " SET " + Quoted(column.name) + " = " + stored);
}

}  // namespace vicenter::tsql::engine
