// What the account set and the session say about themselves: names, numbers, the error of a CATCH block.

#include "text/hex.h"
#include "tsql/functions/call.h"

namespace vicenter::tsql::engine {

namespace {

// ts_object_id(name, type)
void ObjectIdFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    call.Return(call.Services().objectId(call.Text(0), call.Count() > 1 ? call.Text(1) : std::string_view()),
                SqlType::Int());
}

// ts_col_length(table, column)
void ColumnLengthFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(call.Services().columnLength(call.Text(0), call.Text(1)), SqlType::Int());
}

// ts_newid()
void NewIdFunction(FunctionCall& call) {
    unsigned char bytes[16];
    sqlite3_randomness(sizeof bytes, bytes);
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
    std::string guid;
    for (int i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) guid += '-';
        text::AppendHex(guid, bytes[i]);
    }
    call.Return(std::string_view(guid));
}

// Type rules.

Bound BindNewId(Binding& call) {
    return {call.Call({}), SqlType::Of(TypeKind::kUniqueIdentifier)};
}

Bound BindObjectId(Binding& call) {
    std::vector<std::string> arguments{call.Text(0)};
    if (call.Count() > 1) arguments.push_back(call.Text(1));
    return {call.Call(arguments), SqlType::Int()};
}

Bound BindColumnLength(Binding& call) {
    return {call.Call({call.Text(0), call.Text(1)}), SqlType::Of(TypeKind::kSmallInt)};
}

Bound BindObjectName(Binding& call) {
    return {"(SELECT name FROM main.\"ts$objects\" WHERE id = " + call.Int(0) + ")", SqlType::NVarChar(128)};
}

Bound BindIdentityOf(Binding& call) {
    return {"(SELECT CAST(last AS TEXT) FROM main.\"ts$identity\" WHERE object = " +
                call.Call({call.Text(0)}) + ")",
            SqlType::Decimal(kMaxPrecision, 0)};
}

Bound SystemInt(Binding& call) {
    return {call.Name(), SqlType::Int(), true};
}
Bound SystemText(Binding& call) {
    return {call.Name(), SqlType::NVarChar(kLongestNVarChar), true};
}
// An argument would name the current database or user: there is no other.
Bound SystemName(Binding& call) {
    return {call.Name(), SqlType::NVarChar(128), true};
}
Bound SystemDecimal(Binding& call) {
    return {call.Name(), SqlType::Decimal(kMaxPrecision, 0), true};
}

constexpr SqlFunction kNewId = Scalar<NewIdFunction>("ts_newid", 0, false);
constexpr SqlFunction kObjectId = Scalar<ObjectIdFunction>("ts_object_id", -1, false);
constexpr SqlFunction kColumnLength = Scalar<ColumnLengthFunction>("ts_col_length", 2, false);

constexpr FunctionEntry kEntries[] = {
    {"app_name", 0, 0, SystemName},
    {"col_length", 2, 2, BindColumnLength, &kColumnLength},
    {"current_user", 0, 0, SystemName},
    {"db_id", 0, 1, SystemInt},
    {"db_name", 0, 1, SystemName},
    {"error_line", 0, 0, SystemInt},
    {"error_message", 0, 0, SystemText},
    {"error_number", 0, 0, SystemInt},
    {"error_procedure", 0, 0, SystemName},
    {"error_severity", 0, 0, SystemInt},
    {"error_state", 0, 0, SystemInt},
    {"host_name", 0, 0, SystemName},
    {"ident_current", 1, 1, BindIdentityOf, &kObjectId},
    {"newid", 0, 0, BindNewId, &kNewId},
    {"object_id", 1, 2, BindObjectId, &kObjectId},
    {"object_name", 1, 1, BindObjectName},
    {"schema_name", 0, 1, SystemName},
    {"scope_identity", 0, 0, SystemDecimal},
    {"session_user", 0, 0, SystemName},
    {"suser_sname", 0, 1, SystemName},
    {"system_user", 0, 0, SystemName},
    {"user", 0, 0, SystemName},
    {"user_name", 0, 1, SystemName},
    {"xact_state", 0, 0, SystemInt},
};

}  // namespace

FunctionSet SystemFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
