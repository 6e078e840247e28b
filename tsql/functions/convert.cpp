// Conversions and stores, and what a statement asks of the session while it runs: ts_conv, ts_put and kin.

#include "tsql/types/convert.h"

#include <string>

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"

namespace vicenter::tsql::engine {

namespace {

// ts_conv(value, from, to, style)
void ConvertFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const SqlType to = call.Type(2);
    call.Return(Convert(call.Argument(0, call.Type(1)), call.Type(1), to, static_cast<int>(call.Int(3)),
                        call.Services().dateFormat),
                to);
}

// ts_try_conv(value, from, to, style)
void TryConvertFunction(FunctionCall& call) {
    try {
        ConvertFunction(call);
    } catch (const SqlError&) {
        // NULL is the answer.
    }
}

// An int that goes into an int: nothing to convert and nothing to refuse.
bool IsStoredAsItIs(const FunctionCall& call) {
    if (call.Int(1) != call.Int(2) || !call.IsInteger(0)) return false;
    const TypeKind kind = call.Type(2).kind;
    const std::int64_t number = call.Int(0);
    return kind == TypeKind::kBigInt ||
           (kind == TypeKind::kInt && number == static_cast<std::int32_t>(number));
}

// ts_put(value, from, to, nullable, table, column, operation, isKey)
void PutFunction(FunctionCall& call) {
    if (IsStoredAsItIs(call)) {
        if (call.Int(7) != 0) call.Services().RememberKey(call.Text(5), std::to_string(call.Int(0)));
        return call.ReturnArgument(0);
    }
    const SqlType from = call.Type(1);
    const ColumnTarget target{call.Text(4), call.Text(5), call.Type(2), call.Int(3) != 0};
    const Value stored =
        ConvertForColumn(call.Argument(0, from), from, target, call.Text(6), call.Services().dateFormat);
    if (call.Int(7) != 0) call.Services().RememberKey(target.column, KeyText(stored, target.type));
    call.Return(stored, target.type);
}

// ts_null_check(value, table, column, operation)
void NullCheckFunction(FunctionCall& call) {
    if (call.IsNull(0)) throw MakeError(515, {}, {call.Text(2), call.Text(1), call.Text(3)});
    call.ReturnArgument(0);
}

// ts_variable(name, type): the variable's value at this moment, for SELECT @v = @v + …
void VariableFunction(FunctionCall& call) {
    call.Return(call.Services().variable(call.Text(0)), call.Type(1));
}

// ts_next_identity()
void NextIdentityFunction(FunctionCall& call) {
    call.Return(call.Services().nextIdentity());
}

// ts_identity_given(number)
void IdentityGivenFunction(FunctionCall& call) {
    call.Services().identityGiven(call.Int(0));
    call.ReturnArgument(0);
}

// ts_member(text): see kMemberCall
void MemberFunction(FunctionCall& call) {
    if (!call.IsNull(0)) call.Return(WithoutLoneBlank(call.Collation(), call.Text(0)));
}

// ts_bytes(bytes)
void BytesFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    std::string_view bytes = call.Text(0);
    while (!bytes.empty() && bytes.back() == '\0')
        bytes.remove_suffix(1);
    sqlite3_result_blob64(call.Context(), bytes.empty() ? "" : bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

// ts_plain(number): the one text of a decimal, for sets whose decimals are not yet kept by it
void PlainFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const auto number = Decimal::Parse(call.Text(0));
    // What is damaged stays as it is, for whoever reads it to be told.
    if (number) call.Return(*number);
    if (!number) call.ReturnArgument(0);
}

// ts_fail(number): an error that only shows when the expression is evaluated
void FailFunction(FunctionCall& call) {
    throw MakeError(static_cast<std::int32_t>(call.Int(0)), {});
}

constexpr SqlFunction kNullCheck = Scalar<NullCheckFunction>("ts_null_check", 4);
constexpr SqlFunction kPlain = Scalar<PlainFunction>("ts_plain", 1);
constexpr SqlFunction kFail = Scalar<FailFunction>("ts_fail", 1, false);

constexpr const SqlFunction* kOthers[] = {
    &kConvertCall,       &kTryConvertCall, &kPutCall,   &kNullCheck, &kVariableCall, &kNextIdentityCall,
    &kIdentityGivenCall, &kMemberCall,     &kBytesCall, &kPlain,     &kFail};

}  // namespace

const SqlFunction kConvertCall = Scalar<ConvertFunction>("ts_conv", 4);
const SqlFunction kTryConvertCall = Scalar<TryConvertFunction>("ts_try_conv", 4);
const SqlFunction kPutCall = Scalar<PutFunction>("ts_put", 8, false);
const SqlFunction kBytesCall = Scalar<BytesFunction>("ts_bytes", 1);
const SqlFunction kMemberCall = Scalar<MemberFunction>("ts_member", 1);
const SqlFunction kVariableCall = Scalar<VariableFunction>("ts_variable", -1, false);
const SqlFunction kNextIdentityCall = Scalar<NextIdentityFunction>("ts_next_identity", 0, false);
const SqlFunction kIdentityGivenCall = Scalar<IdentityGivenFunction>("ts_identity_given", 1, false);

FunctionSet ConversionFunctions() {
    return {{}, kOthers};
}

}  // namespace vicenter::tsql::engine
