// What the session says about itself: names, numbers, the error of a CATCH block.

#include "text/hex.h"
#include "tsql/functions/call.h"
#include "tsql/functions/volatile.h"

namespace vicenter::tsql::engine {

namespace {

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

constexpr SqlFunction kNewId = Scalar<NewIdFunction>(kNewIdName, 0, false);

constexpr FunctionEntry kEntries[] = {
    {"app_name", 0, 0, SystemName},      {"current_user", 0, 0, SystemName},
    {"db_id", 0, 1, SystemInt},          {"db_name", 0, 1, SystemName},
    {"error_line", 0, 0, SystemInt},     {"error_message", 0, 0, SystemText},
    {"error_number", 0, 0, SystemInt},   {"error_procedure", 0, 0, SystemName},
    {"error_severity", 0, 0, SystemInt}, {"error_state", 0, 0, SystemInt},
    {"host_name", 0, 0, SystemName},     {"newid", 0, 0, BindNewId, &kNewId},
    {"schema_name", 0, 1, SystemName},   {"scope_identity", 0, 0, SystemDecimal},
    {"session_user", 0, 0, SystemName},  {"suser_sname", 0, 1, SystemName},
    {"system_user", 0, 0, SystemName},   {"user", 0, 0, SystemName},
    {"user_name", 0, 1, SystemName},     {"xact_state", 0, 0, SystemInt},
};

}  // namespace

FunctionSet SystemFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
