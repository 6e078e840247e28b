// Functions that choose one of their arguments. SQLite does so itself: what is not chosen is not evaluated.

#include "tsql/base/error_table.h"
#include "tsql/functions/function.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

namespace {

// The first argument gives the type, whatever the second is.
Bound BindIsNull(Binding& call) {
    call.Pin(0);
    const SqlType type = call.Type(0).IsUnknown() ? call.Type(1) : call.Type(0);
    const std::string first = call.As(0, type);
    const SqlType& other = call.Type(1);
    if (other.IsUnknown() || SameRepresentation(other, type) || call.Literal(1) == nullptr)
        return {"ifnull(" + first + ", " + call.As(1, type) + ")", type};
    // What takes the place of NULL becomes a value of the first type only where it does: isnull(0.5, 1) is
    // 0.5, though 1 is no decimal(1,1). A literal by itself would be converted before.
    call.Pin(1);
    CheckConversion(other, type, false);
    return {"ifnull(" + first + ", " + kConvertCall.Call({call.Plain(1), Code(other), Code(type), "0"}) + ")",
            type};
}

Bound BindCoalesce(Binding& call) {
    SqlType type;
    for (std::size_t i = 0; i < call.Count(); ++i) {
        call.Pin(i);
        type = CommonType(type, call.Type(i));
    }
    if (type.IsUnknown()) throw MakeError(4127, call.Where(), {"COALESCE"});
    std::string sql = "coalesce(";
    std::string ends = ")";
    for (std::size_t i = 0; i < call.Count(); ++i) {
        const bool opens = i > 0 && i % kMostInOneCall == 0 && i + 1 < call.Count();
        sql += (i == 0 ? "" : ", ") + std::string(opens ? "coalesce(" : "") + call.Chosen(i, type);
        if (opens) ends += ")";
    }
    return {sql + ends, type};
}

Bound BindNullIf(Binding& call) {
    call.Pin(0);
    const SqlType type = call.Type(0);
    if (type.IsUnknown()) throw MakeError(4151, call.Where());
    return {call.NullIf(0, 1), type};
}

Bound BindIif(Binding& call) {
    call.Pin(1);
    call.Pin(2);
    const SqlType type = CommonType(call.Type(1), call.Type(2));
    const std::string condition = call.Condition(0);
    const std::string yes = call.Chosen(1, type);
    return {"(CASE WHEN " + condition + " THEN " + yes + " ELSE " + call.Chosen(2, type) + " END)", type};
}

// CHOOSE(n, a, b, …): the n-th of them, NULL for any other n.
Bound BindChoose(Binding& call) {
    SqlType type;
    for (std::size_t i = 1; i < call.Count(); ++i) {
        call.Pin(i);
        type = CommonType(type, call.Type(i));
    }
    std::string sql = "(CASE " + call.Int(0);
    for (std::size_t i = 1; i < call.Count(); ++i)
        sql += " WHEN " + std::to_string(i) + " THEN " + call.Chosen(i, type);
    return {sql + " END)", type};
}

constexpr FunctionEntry kEntries[] = {
    {"choose", 2, kManyArguments, BindChoose},
    {"coalesce", 2, kManyArguments, BindCoalesce},
    {"iif", 3, 3, BindIif, nullptr, FunctionKind::kScalar, 1},
    {"isnull", 2, 2, BindIsNull},
    {"nullif", 2, 2, BindNullIf},
};

}  // namespace

FunctionSet ChoiceFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
