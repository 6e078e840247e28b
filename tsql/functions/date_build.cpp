// Dates from their parts.

#include <algorithm>

#include "tsql/functions/call.h"
#include "tsql/types/date_part.h"

namespace vicenter::tsql::engine {

namespace {

// ts_datetime_from_parts(year, month, day, hour, minute, second, millisecond, type)
void FromPartsFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const SqlType type = call.Type(7);
    const auto part = [&](int i) {
        // Far outside of any date, and inside of an int.
        constexpr std::int64_t kFar = 100000;
        return static_cast<int>(std::clamp(call.Int(i), -kFar, kFar));
    };
    const auto date = DateTime::FromParts({part(0), part(1), part(2), part(3), part(4), part(5), part(6)});
    const auto rounded = date ? RoundToType(*date, type) : std::nullopt;
    if (!rounded) throw MakeError(289, {}, {type.Name()});
    call.Return(Value(*rounded), type);
}

template <TypeKind Kind, std::size_t Parts>
Bound BindParts(Binding& call) {
    const SqlType type = SqlType::Of(Kind);
    std::vector<std::string> arguments;
    for (std::size_t i = 0; i < Parts; ++i)
        arguments.push_back(call.Int(i));
    arguments.resize(7, "0");
    arguments.push_back(Code(type));
    return {call.Call(arguments), type};
}

constexpr SqlFunction kFromParts = Scalar<FromPartsFunction>("ts_datetime_from_parts", 8);

constexpr FunctionEntry kEntries[] = {
    {"datetimefromparts", 7, 7, BindParts<TypeKind::kDateTime, 7>, &kFromParts},
    {"smalldatetimefromparts", 5, 5, BindParts<TypeKind::kSmallDateTime, 5>, &kFromParts},
};

}  // namespace

FunctionSet DateBuildFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
