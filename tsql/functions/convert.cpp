// Conversions and what the session answers: ts_conv, ts_put and their kin.

#include "tsql/types/convert.h"

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"

namespace vicenter::tsql::engine {

namespace {

// ts_conv(value, from, to, style)
void ConvertFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const SqlType to = call.Type(2);
    call.Return(Convert(call.Argument(0, call.Type(1)), call.Type(1), to, static_cast<int>(call.Int(3))), to);
}

// ts_try_conv(value, from, to, style)
void TryConvertFunction(FunctionCall& call) {
    try {
        ConvertFunction(call);
    } catch (const SqlError&) {
        // NULL is the answer.
    }
}

// ts_put(value, from, to, nullable, table, column, operation, isKey)
void PutFunction(FunctionCall& call) {
    const SqlType from = call.Type(1);
    const ColumnTarget target{call.Text(4), call.Text(5), call.Type(2), call.Int(3) != 0};
    const Value stored = ConvertForColumn(call.Argument(0, from), from, target, call.Text(6));
    if (call.Int(7) != 0) call.Services().RememberKey(target.column, KeyText(stored, target.type));
    call.Return(stored, target.type);
}

// ts_null_check(value, table, column, operation)
void NullCheckFunction(FunctionCall& call) {
    if (call.IsNull(0)) throw MakeError(515, {}, {call.Text(2), call.Text(1), call.Text(3)});
    call.ReturnArgument(0);
}

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

// ts_variable(name, type): the variable's value at this moment, for SELECT @v = @v + …
void VariableFunction(FunctionCall& call) {
    call.Return(call.Services().variable(call.Text(0)), call.Type(1));
}

// ts_next_identity()
void NextIdentityFunction(FunctionCall& call) {
    call.Return(call.Services().nextIdentity());
}

// ts_fail(number): an error that only shows when the expression is evaluated
void FailFunction(FunctionCall& call) {
    throw MakeError(static_cast<std::int32_t>(call.Int(0)), {});
}

// ts_newid()
void NewIdFunction(FunctionCall& call) {
    unsigned char bytes[16];
    sqlite3_randomness(sizeof bytes, bytes);
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string guid;
    for (int i = 0; i < 16; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) guid += '-';
        guid += kHex[bytes[i] >> 4];
        guid += kHex[bytes[i] & 15];
    }
    call.Return(std::string_view(guid));
}

}  // namespace

void RegisterConversionFunctions(sqlite3* database, FunctionServices& services) {
    Define<ConvertFunction>(database, services, "ts_conv", 4);
    Define<TryConvertFunction>(database, services, "ts_try_conv", 4);
    Define<PutFunction>(database, services, "ts_put", 8, false);
    Define<NullCheckFunction>(database, services, "ts_null_check", 4);
    Define<ObjectIdFunction>(database, services, "ts_object_id", -1, false);
    Define<ColumnLengthFunction>(database, services, "ts_col_length", 2, false);
    Define<VariableFunction>(database, services, "ts_variable", 2, false);
    Define<NextIdentityFunction>(database, services, "ts_next_identity", 0, false);
    Define<FailFunction>(database, services, "ts_fail", 1, false);
    Define<NewIdFunction>(database, services, "ts_newid", 0, false);
}

}  // namespace vicenter::tsql::engine
