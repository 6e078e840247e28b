// Calls by name: each function's argument types and result type, and the SQLite call that does it.

#include <limits>

#include "tsql/base/text_units.h"
#include "tsql/functions/functions.h"
#include "tsql/translate/translator.h"
#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

// One call on its way through: gives the handlers of the table below their way into the translator.
struct FunctionTranslator {
    Translator& translator;
    const FunctionExpr& function;
    Scope& scope;
    std::string name;
    std::vector<Operand> operands{};

    std::size_t Count() const { return operands.size(); }
    Operand& At(std::size_t i) { return operands[i]; }
    static std::string Code(const SqlType& type) { return std::to_string(TypeCode(type)); }
    static Operand Made(std::string sql, SqlType type) { return Translator::Computed(std::move(sql), type); }

    std::string As(std::size_t i, const SqlType& type) { return translator.RenderAs(At(i), type); }
    // The argument as text; texts stay what they are.
    std::string Text(std::size_t i) {
        if (At(i).type.IsText()) return translator.Render(At(i));
        return translator.RenderAs(At(i), SqlType::NVarChar(kMaxLength), true);
    }
    std::string Int(std::size_t i) { return As(i, SqlType::Int()); }
    std::string Real(std::size_t i) { return As(i, SqlType::Float()); }
    std::string Date(std::size_t i) { return As(i, SqlType::DateTime()); }
    std::string Plain(std::size_t i) { return translator.Render(At(i)); }
    void Pin(std::size_t i) {
        if (At(i).literal != nullptr) translator.context_.PinLiteral(*At(i).literal);
    }
    // varchar or nvarchar as the argument is
    SqlType TextType(std::size_t i, int length) {
        return SqlType::Of(At(i).type.IsUnicode() ? TypeKind::kNVarChar : TypeKind::kVarChar, length);
    }
    int TextLength(std::size_t i) {
        Pin(i);
        return At(i).type.IsText() ? At(i).type.length : 30;
    }
    // A number as itself, a text as float.
    SqlType NumberType(std::size_t i) {
        Pin(i);
        const SqlType& type = At(i).type;
        if (type.IsNumber()) return type.kind == TypeKind::kBit ? SqlType::Float() : type;
        if (type.IsUnknown()) return SqlType::Int();
        if (type.IsText()) return SqlType::Float();
        throw MakeError(8116, function.position, {type.Name(), static_cast<std::int32_t>(i + 1), name});
    }
    std::string PartCode(std::size_t i) {
        const auto* word = TryAs<ColumnExpr>(function.arguments[i].get());
        const auto part = word != nullptr ? DatePartByName(LowerAscii(word->name.Object())) : std::nullopt;
        if (part) return std::to_string(static_cast<int>(*part));
        throw MakeError(155, function.position,
                        {word != nullptr ? word->name.Object() : std::string(), name});
    }
    // A literal's value when it is a small whole number; else the given one.
    int LiteralInt(std::size_t i, int otherwise) {
        const LiteralExpr* literal = At(i).literal;
        if (literal == nullptr || literal->literal != LiteralKind::kInteger || literal->text.size() > 4) {
            return otherwise;
        }
        Pin(i);
        return std::stoi(literal->text);
    }

    Operand Aggregate();
    Operand Windowed();
    Operand Coalesce();
    Operand Choose();
    Operand System(SqlType type) { return translator.System(name, type); }
    std::string Condition(std::size_t i) { return translator.ConditionText(*function.arguments[i], scope); }
    std::string Equal(std::size_t i, std::size_t j) {
        return translator.Compare("=", At(i), At(j), function.position);
    }
    std::string List(const std::vector<ExprPtr>& expressions);
};

namespace {

using Call = FunctionTranslator;

Operand IntOfText(Call& call) {
    return Call::Made("ts_" + call.name + "(" + call.Text(0) + ")", SqlType::Int());
}

Operand TextOfText(Call& call) {
    const SqlType type = call.TextType(0, call.TextLength(0));
    return Call::Made("ts_" + call.name + "(" + call.Text(0) + ")", type);
}

Operand DataLength(Call& call) {
    const SqlType type = call.At(0).type;
    return Call::Made("ts_datalength(" + call.Plain(0) + ", " + Call::Code(type) + ")", SqlType::Int());
}

Operand LeftRight(Call& call) {
    const int length = call.LiteralInt(1, call.TextLength(0));
    return Call::Made("ts_" + call.name + "(" + call.Text(0) + ", " + call.Int(1) + ")",
                      call.TextType(0, length));
}

Operand Substring(Call& call) {
    const int length = call.LiteralInt(2, call.TextLength(0));
    return Call::Made("ts_substring(" + call.Text(0) + ", " + call.Int(1) + ", " + call.Int(2) + ")",
                      call.TextType(0, length));
}

Operand CharIndex(Call& call) {
    const std::string start = call.Count() > 2 ? ", " + call.Int(2) : "";
    return Call::Made("ts_charindex(" + call.Text(0) + ", " + call.Text(1) + start + ")", SqlType::Int());
}

Operand PatIndex(Call& call) {
    return Call::Made("ts_patindex(" + call.Text(0) + ", " + call.Text(1) + ")", SqlType::Int());
}

Operand Replace(Call& call) {
    const bool unicode = call.At(0).type.IsUnicode() || call.At(2).type.IsUnicode();
    return Call::Made("ts_replace(" + call.Text(0) + ", " + call.Text(1) + ", " + call.Text(2) + ")",
                      unicode ? SqlType::NVarChar(4000) : SqlType::VarChar(8000));
}

SqlType LongText(Call& call) {
    return call.TextType(0, call.At(0).type.IsUnicode() ? 4000 : 8000);
}

Operand Replicate(Call& call) {
    SqlType type = LongText(call);
    int most = type.length;
    if (call.At(0).type.IsMax()) {
        type.length = kMaxLength;
        most = std::numeric_limits<int>::max();
    }
    return Call::Made("ts_replicate(" + call.Text(0) + ", " + call.Int(1) + ", " + std::to_string(most) + ")",
                      type);
}

Operand Space(Call& call) {
    return Call::Made("ts_space(" + call.Int(0) + ")", SqlType::VarChar(8000));
}

Operand Stuff(Call& call) {
    return Call::Made(
        "ts_stuff(" + call.Text(0) + ", " + call.Int(1) + ", " + call.Int(2) + ", " + call.Text(3) + ")",
        LongText(call));
}

Operand Str(Call& call) {
    const int width = call.Count() > 1 ? call.LiteralInt(1, 8000) : 10;
    const std::string number = call.Real(0);
    const std::string length = call.Count() > 1 ? call.Int(1) : "10";
    const std::string decimals = call.Count() > 2 ? call.Int(2) : "0";
    return Call::Made("ts_str(" + number + ", " + length + ", " + decimals + ")", SqlType::VarChar(width));
}

Operand CharOf(Call& call) {
    const TypeKind kind = call.name == "char" ? TypeKind::kChar : TypeKind::kNChar;
    return Call::Made("ts_nchar(" + call.Int(0) + ")", SqlType::Of(kind, 1));
}

Operand CodeOf(Call& call) {
    return Call::Made("ts_unicode(" + call.Text(0) + ")", SqlType::Int());
}

Operand QuoteName(Call& call) {
    const std::string mark = call.Count() > 1 ? ", " + call.Text(1) : "";
    return Call::Made("ts_quotename(" + call.Text(0) + mark + ")", SqlType::NVarChar(258));
}

Operand Concat(Call& call) {
    std::string sql;
    int length = 0;
    bool unicode = false;
    for (std::size_t i = 0; i < call.Count(); ++i) {
        const int part = call.TextLength(i);
        length = part == kMaxLength ? 8000 : length + part;
        unicode = unicode || call.At(i).type.IsUnicode();
        sql += (i == 0 ? "ifnull(" : " || ifnull(") + call.Text(i) + ", '')";
    }
    const int limit = unicode ? 4000 : 8000;
    const TypeKind kind = unicode ? TypeKind::kNVarChar : TypeKind::kVarChar;
    return Call::Made("(" + sql + ")", SqlType::Of(kind, length < limit ? length : limit));
}

Operand IsNullCall(Call& call) {
    // The first argument gives the type, whatever the second is.
    call.Pin(0);
    const SqlType type = call.At(0).type.IsUnknown() ? call.At(1).type : call.At(0).type;
    const std::string first = call.As(0, type);
    return Call::Made("ifnull(" + first + ", " + call.As(1, type) + ")", type);
}

Operand CoalesceCall(Call& call) {
    return call.Coalesce();
}

Operand NullIf(Call& call) {
    call.Pin(0);
    const SqlType type = call.At(0).type;
    const std::string equal = call.Equal(0, 1);
    return Call::Made("(CASE WHEN " + equal + " THEN NULL ELSE " + call.Plain(0) + " END)", type);
}

Operand ChooseCall(Call& call) {
    return call.Choose();
}

Operand Abs(Call& call) {
    const SqlType type = call.NumberType(0);
    return Call::Made("ts_" + call.name + "(" + call.As(0, type) + ", " + Call::Code(type) + ")", type);
}

Operand Round(Call& call) {
    const SqlType type = call.NumberType(0);
    const std::string number = call.As(0, type);
    const std::string places = call.Int(1);
    const std::string cut = call.Count() > 2 ? call.Int(2) : "0";
    return Call::Made("ts_round(" + number + ", " + places + ", " + cut + ", " + Call::Code(type) + ")",
                      type);
}

Operand FloorCeiling(Call& call) {
    const SqlType from = call.NumberType(0);
    const SqlType type = from.kind == TypeKind::kDecimal ? SqlType::Decimal(from.precision, 0) : from;
    return Call::Made("ts_" + call.name + "(" + call.As(0, from) + ", " + Call::Code(from) + ")", type);
}

Operand Power(Call& call) {
    SqlType type = call.NumberType(0);
    const std::string base = call.Real(0);
    const std::string sql = "ts_power(" + base + ", " + call.Real(1) + ")";
    if (type.IsFloat()) return Call::Made(sql, type);
    if (type.kind == TypeKind::kDecimal) type = SqlType::Decimal(kMaxPrecision, type.scale);
    return Call::Made("ts_conv(ts_round(" + sql + ", " + std::to_string(type.scale) + ", 0, " +
                          Call::Code(SqlType::Float()) + "), " + Call::Code(SqlType::Float()) + ", " +
                          Call::Code(type) + ", 0)",
                      type);
}

Operand RealOfReal(Call& call) {
    return Call::Made("ts_" + call.name + "(" + call.Real(0) + ")", SqlType::Float());
}

Operand Square(Call& call) {
    const std::string number = call.Real(0);
    return Call::Made("ts_real('*', " + number + ", " + number + ")", SqlType::Float());
}

Operand Pi(Call&) {
    return Call::Made("3.1415926535897931", SqlType::Float());
}

Operand Rand(Call&) {
    return Call::Made("ts_rand()", SqlType::Float());
}

Operand GetDate(Call& call) {
    call.name = "getdate";
    return call.System(SqlType::DateTime());
}

// The clock of the session tells local time; SQLite's own is Greenwich's.
Operand GetUtcDate(Call&) {
    return Call::Made("ts_conv(strftime('%Y-%m-%d %H:%M:%f', 'now'), " +
                          Call::Code(SqlType::Of(TypeKind::kDateTime2)) + ", " +
                          Call::Code(SqlType::DateTime()) + ", 0)",
                      SqlType::DateTime());
}

Operand DateAdd(Call& call) {
    SqlType type = call.At(2).type;
    if (!type.IsDate()) type = SqlType::DateTime();
    const std::string part = call.PartCode(0);
    const std::string count = call.Int(1);
    return Call::Made(
        "ts_dateadd(" + part + ", " + count + ", " + call.As(2, type) + ", " + Call::Code(type) + ")", type);
}

Operand DateDiff(Call& call) {
    const std::string part = call.PartCode(0);
    const std::string from = call.Date(1);
    return Call::Made("ts_datediff(" + part + ", " + from + ", " + call.Date(2) + ")", SqlType::Int());
}

Operand DatePartCall(Call& call) {
    return Call::Made("ts_datepart(" + call.PartCode(0) + ", " + call.Date(1) + ")", SqlType::Int());
}

Operand DateNameCall(Call& call) {
    return Call::Made("ts_datename(" + call.PartCode(0) + ", " + call.Date(1) + ")", SqlType::NVarChar(30));
}

Operand OnePart(Call& call) {
    const auto part = DatePartByName(call.name);
    return Call::Made("ts_datepart(" + std::to_string(static_cast<int>(*part)) + ", " + call.Date(0) + ")",
                      SqlType::Int());
}

Operand DateFromParts(Call& call) {
    const std::string year = call.Int(0);
    const std::string month = call.Int(1);
    return Call::Made("ts_date_from_parts(" + year + ", " + month + ", " + call.Int(2) + ")",
                      SqlType::Of(TypeKind::kDate));
}

Operand EndOfMonth(Call& call) {
    const std::string date = call.Date(0);
    return Call::Made("ts_eomonth(" + date + ", " + (call.Count() > 1 ? call.Int(1) : "0") + ")",
                      SqlType::Of(TypeKind::kDate));
}

Operand NewId(Call&) {
    return Call::Made("ts_newid()", SqlType::Of(TypeKind::kUniqueIdentifier));
}

Operand ObjectIdCall(Call& call) {
    const std::string type = call.Count() > 1 ? ", " + call.Text(1) : "";
    return Call::Made("ts_object_id(" + call.Text(0) + type + ")", SqlType::Int());
}

Operand ColLength(Call& call) {
    return Call::Made("ts_col_length(" + call.Text(0) + ", " + call.Text(1) + ")",
                      SqlType::Of(TypeKind::kSmallInt));
}

Operand ObjectName(Call& call) {
    return Call::Made("(SELECT name FROM main.\"ts$objects\" WHERE id = " + call.Int(0) + ")",
                      SqlType::NVarChar(128));
}

Operand IdentityOf(Call& call) {
    return Call::Made("(SELECT CAST(last AS TEXT) FROM main.\"ts$identity\" WHERE object = ts_object_id(" +
                          call.Text(0) + "))",
                      SqlType::Decimal(kMaxPrecision, 0));
}

Operand SystemInt(Call& call) {
    return call.System(SqlType::Int());
}
Operand SystemText(Call& call) {
    return call.System(SqlType::NVarChar(4000));
}
Operand SystemName(Call& call) {
    // An argument would name the current database or user: there is no other.
    return call.System(SqlType::NVarChar(128));
}
Operand SystemDecimal(Call& call) {
    return call.System(SqlType::Decimal(38, 0));
}

Operand Aggregated(Call& call) {
    return call.Aggregate();
}
Operand WindowedCall(Call& call) {
    return call.Windowed();
}

struct Entry {
    std::string_view name;
    std::size_t least;
    std::size_t most;
    Operand (*translate)(Call&);
    // Arguments from here on are translated before the handler runs; those before it are words or conditions.
    std::size_t firstValue = 0;
};

constexpr std::size_t kMany = 1000;

constexpr Entry kFunctions[] = {
    {"abs", 1, 1, Abs},
    {"app_name", 0, 0, SystemName},
    {"ascii", 1, 1, CodeOf},
    {"avg", 1, 1, Aggregated},
    {"ceiling", 1, 1, FloorCeiling},
    {"char", 1, 1, CharOf},
    {"charindex", 2, 3, CharIndex},
    {"coalesce", 2, kMany, CoalesceCall},
    {"col_length", 2, 2, ColLength},
    {"concat", 2, kMany, Concat},
    {"cos", 1, 1, RealOfReal},
    {"count", 0, 1, Aggregated},
    {"count_big", 0, 1, Aggregated},
    {"current_timestamp", 0, 0, GetDate},
    {"current_user", 0, 0, SystemName},
    {"datalength", 1, 1, DataLength},
    {"dateadd", 3, 3, DateAdd, 1},
    {"datediff", 3, 3, DateDiff, 1},
    {"datefromparts", 3, 3, DateFromParts},
    {"datename", 2, 2, DateNameCall, 1},
    {"datepart", 2, 2, DatePartCall, 1},
    {"day", 1, 1, OnePart},
    {"db_id", 0, 1, SystemInt},
    {"db_name", 0, 1, SystemName},
    {"dense_rank", 0, 0, WindowedCall},
    {"eomonth", 1, 2, EndOfMonth},
    {"error_line", 0, 0, SystemInt},
    {"error_message", 0, 0, SystemText},
    {"error_number", 0, 0, SystemInt},
    {"error_procedure", 0, 0, SystemName},
    {"error_severity", 0, 0, SystemInt},
    {"error_state", 0, 0, SystemInt},
    {"exp", 1, 1, RealOfReal},
    {"floor", 1, 1, FloorCeiling},
    {"getdate", 0, 0, GetDate},
    {"getutcdate", 0, 0, GetUtcDate},
    {"host_name", 0, 0, SystemName},
    {"ident_current", 1, 1, IdentityOf},
    {"iif", 3, 3, ChooseCall, 1},
    {"isdate", 1, 1, IntOfText},
    {"isnull", 2, 2, IsNullCall},
    {"isnumeric", 1, 1, IntOfText},
    {"left", 2, 2, LeftRight},
    {"len", 1, 1, IntOfText},
    {"log", 1, 1, RealOfReal},
    {"log10", 1, 1, RealOfReal},
    {"lower", 1, 1, TextOfText},
    {"ltrim", 1, 1, TextOfText},
    {"max", 1, 1, Aggregated},
    {"min", 1, 1, Aggregated},
    {"month", 1, 1, OnePart},
    {"nchar", 1, 1, CharOf},
    {"newid", 0, 0, NewId},
    {"nullif", 2, 2, NullIf},
    {"object_id", 1, 2, ObjectIdCall},
    {"object_name", 1, 1, ObjectName},
    {"patindex", 2, 2, PatIndex},
    {"pi", 0, 0, Pi},
    {"power", 2, 2, Power},
    {"quotename", 1, 2, QuoteName},
    {"rand", 0, 1, Rand},
    {"rank", 0, 0, WindowedCall},
    {"replace", 3, 3, Replace},
    {"replicate", 2, 2, Replicate},
    {"reverse", 1, 1, TextOfText},
    {"right", 2, 2, LeftRight},
    {"round", 2, 3, Round},
    {"row_number", 0, 0, WindowedCall},
    {"rtrim", 1, 1, TextOfText},
    {"schema_name", 0, 1, SystemName},
    {"scope_identity", 0, 0, SystemDecimal},
    {"session_user", 0, 0, SystemName},
    {"sign", 1, 1, Abs},
    {"sin", 1, 1, RealOfReal},
    {"space", 1, 1, Space},
    {"sqrt", 1, 1, RealOfReal},
    {"square", 1, 1, Square},
    {"str", 1, 3, Str},
    {"string_agg", 2, 2, Aggregated},
    {"stuff", 4, 4, Stuff},
    {"substring", 3, 3, Substring},
    {"sum", 1, 1, Aggregated},
    {"suser_sname", 0, 1, SystemName},
    {"sysdatetime", 0, 0, GetDate},
    {"system_user", 0, 0, SystemName},
    {"tan", 1, 1, RealOfReal},
    {"trim", 1, 1, TextOfText},
    {"unicode", 1, 1, CodeOf},
    {"upper", 1, 1, TextOfText},
    {"user", 0, 0, SystemName},
    {"user_name", 0, 1, SystemName},
    {"xact_state", 0, 0, SystemInt},
    {"year", 1, 1, OnePart},
};

const Entry* FindFunction(std::string_view name) {
    for (const Entry& entry : kFunctions) {
        if (entry.name == name) return &entry;
    }
    return nullptr;
}

}  // namespace

Operand FunctionTranslator::Coalesce() {
    SqlType type;
    for (std::size_t i = 0; i < Count(); ++i) {
        Pin(i);
        type = CommonType(type, At(i).type);
    }
    std::string sql;
    for (std::size_t i = 0; i < Count(); ++i)
        sql += (i == 0 ? "" : ", ") + As(i, type);
    return Made("coalesce(" + sql + ")", type);
}

Operand FunctionTranslator::Choose() {
    Pin(1);
    Pin(2);
    const SqlType type = CommonType(At(1).type, At(2).type);
    const std::string condition = Condition(0);
    const std::string yes = As(1, type);
    return Made("(CASE WHEN " + condition + " THEN " + yes + " ELSE " + As(2, type) + " END)", type);
}

std::string FunctionTranslator::List(const std::vector<ExprPtr>& expressions) {
    std::string sql;
    for (const ExprPtr& expression : expressions) {
        sql += (sql.empty() ? "" : ", ") + translator.Collated(translator.Value(*expression, scope));
    }
    return sql;
}

Operand FunctionTranslator::Aggregate() {
    const std::string distinct = function.distinct ? "DISTINCT " : "";
    if (name == "count" || name == "count_big") {
        const SqlType type = SqlType::Of(name == "count" ? TypeKind::kInt : TypeKind::kBigInt);
        if (function.star) return Made("count(*)", type);
        return Made("count(" + distinct + translator.Collated(At(0)) + ")", type);
    }
    const SqlType from = At(0).type;
    if (name == "string_agg") {
        const SqlType type = TextType(0, kMaxLength);
        const std::string text = Text(0);
        return Made("ts_string_agg(" + text + ", " + Text(1) + ")", type);
    }
    if (name == "max" || name == "min") {
        if (from.kind == TypeKind::kBit) throw MakeError(8117, function.position, {"bit", name});
        Pin(0);
        return Made(name + "(" + distinct + translator.Collated(At(0)) + ")", from);
    }
    if (!from.IsNumber() || from.kind == TypeKind::kBit) {
        throw MakeError(8117, function.position, {MessageName(from), name});
    }
    const bool average = name == "avg";
    if (from.IsExact()) {
        SqlType type = from.IsMoney()
                           ? SqlType::Of(TypeKind::kMoney)
                           : SqlType::Decimal(kMaxPrecision, average && from.scale < 6 ? 6 : from.scale);
        const char* exact = average && from.IsMoney() ? "_money(" : "_decimal(";
        const std::string sql = "ts_" + name + exact + distinct + translator.Collated(At(0)) + ")";
        if (!from.IsMoney()) return Made(sql, type);
        return Made("ts_conv(" + sql + ", " + Code(SqlType::Decimal(38, 6)) + ", " + Code(type) + ", 0)",
                    type);
    }
    const char* kind = from.IsFloat() ? "_real(" : from.kind == TypeKind::kBigInt ? "_bigint(" : "_int(";
    const SqlType type = from.IsFloat()
                             ? SqlType::Float()
                             : SqlType::Of(from.kind == TypeKind::kBigInt ? from.kind : TypeKind::kInt);
    return Made("ts_" + name + kind + distinct + Plain(0) + ")", type);
}

Operand FunctionTranslator::Windowed() {
    return Made(name + "()", SqlType::Of(TypeKind::kBigInt));
}

Operand Translator::Function(const FunctionExpr& function, Scope& scope) {
    FunctionTranslator call{*this, function, scope, LowerAscii(function.name.Object())};
    const Entry* entry = FindFunction(call.name);
    if (entry == nullptr)
        throw MakeError(195, function.position, {function.name.Object(), "built-in function name"});
    const std::size_t count = function.arguments.size();
    if (count < entry->least || count > entry->most) {
        if (entry->least == entry->most) {
            throw MakeError(174, function.position, {call.name, static_cast<std::int32_t>(entry->least)});
        }
        throw MakeError(
            189, function.position,
            {call.name, static_cast<std::int32_t>(entry->least), static_cast<std::int32_t>(entry->most)});
    }
    const bool aggregate = entry->translate == Aggregated && !function.over;
    if (aggregate) ++aggregateDepth_;
    for (std::size_t i = 0; i < count; ++i) {
        call.operands.push_back(i < entry->firstValue ? Operand() : Value(*function.arguments[i], scope));
    }
    if (aggregate) --aggregateDepth_;
    Operand result = entry->translate(call);
    if (!function.over) return result;
    std::string window;
    if (!function.over->partitionBy.empty())
        window += "PARTITION BY " + call.List(function.over->partitionBy);
    for (std::size_t i = 0; i < function.over->orderBy.size(); ++i) {
        const OrderItem& item = function.over->orderBy[i];
        window += i == 0 ? " ORDER BY " : ", ";
        window += Collated(Value(*item.expression, scope)) + (item.descending ? " DESC" : "");
    }
    result.sql += " OVER (" + window + ")";
    return result;
}

}  // namespace vicenter::tsql::engine
