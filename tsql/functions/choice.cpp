// Functions that choose one of their arguments. SQLite does so itself: what is not chosen is not evaluated.

#include "tsql/base/error_table.h"
#include "tsql/functions/function.h"

namespace vicenter::tsql::engine {

namespace {

// The first argument gives the type, whatever the second is.
Bound BindIsNull(Binding& call) {
    call.Pin(0);
    const SqlType type = call.Type(0).IsUnknown() ? call.Type(1) : call.Type(0);
    const std::string first = call.As(0, type);
    return {"ifnull(" + first + ", " + call.As(1, type) + ")", type};
}

Bound BindCoalesce(Binding& call) {
    SqlType type;
    for (std::size_t i = 0; i < call.Count(); ++i) {
        call.Pin(i);
        type = CommonType(type, call.Type(i));
    }
    std::string sql;
    for (std::size_t i = 0; i < call.Count(); ++i)
        sql += (i == 0 ? "" : ", ") + call.As(i, type);
    return {"coalesce(" + sql + ")", type};
}

Bound BindNullIf(Binding& call) {
    call.Pin(0);
    const SqlType type = call.Type(0);
    if (type.IsUnknown()) throw MakeError(4151, call.Where());
    const std::string equal = call.Equal(0, 1);
    return {"(CASE WHEN " + equal + " THEN NULL ELSE " + call.Plain(0) + " END)", type};
}

Bound BindIif(Binding& call) {
    call.Pin(1);
    call.Pin(2);
    const SqlType type = CommonType(call.Type(1), call.Type(2));
    const std::string condition = call.Condition(0);
    const std::string yes = call.As(1, type);
    return {"(CASE WHEN " + condition + " THEN " + yes + " ELSE " + call.As(2, type) + " END)", type};
}

constexpr FunctionEntry kEntries[] = {
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
