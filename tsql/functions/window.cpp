// Functions that look at the rows around: SQLite's own, under the server's rules.

#include "tsql/functions/call.h"

namespace vicenter::tsql::engine {

namespace {

constexpr std::int32_t kBadOffset = 8730;
constexpr std::int32_t kBadTiles = 4116;

std::string AtLeast(const std::string& number, int least, std::int32_t error) {
    return kAtLeastCall.Call({number, std::to_string(least), std::to_string(error)});
}

Bound BindNumber(Binding& call) {
    return {call.Name() + "()", SqlType::Of(TypeKind::kBigInt)};
}

Bound BindShare(Binding& call) {
    return {call.Name() + "()", SqlType::Float()};
}

Bound BindTiles(Binding& call) {
    const std::string tiles = call.As(0, SqlType::Of(TypeKind::kBigInt));
    return {"ntile(" + AtLeast(tiles, 1, kBadTiles) + ")", SqlType::Of(TypeKind::kBigInt)};
}

// LAG and LEAD: what stands for a row beyond the partition becomes a value of the type of the first.
Bound BindNeighbour(Binding& call) {
    call.Pin(0);
    const SqlType type = call.Type(0);
    std::string sql = call.Name() + "(" + call.Plain(0);
    if (call.Count() > 1) sql += ", " + AtLeast(call.As(1, SqlType::Of(TypeKind::kBigInt)), 0, kBadOffset);
    if (call.Count() > 2) sql += ", " + call.As(2, type);
    return {sql + ")", type};
}

Bound BindEnd(Binding& call) {
    call.Pin(0);
    return {call.Name() + "(" + call.Plain(0) + ")", call.Type(0)};
}

constexpr FunctionEntry kEntries[] = {
    {"cume_dist", 0, 0, BindShare, nullptr, FunctionKind::kWindow},
    {"dense_rank", 0, 0, BindNumber, nullptr, FunctionKind::kWindow},
    {"first_value", 1, 1, BindEnd, nullptr, FunctionKind::kWindow, 0, false, true},
    {"lag", 1, 3, BindNeighbour, nullptr, FunctionKind::kWindow},
    {"last_value", 1, 1, BindEnd, nullptr, FunctionKind::kWindow, 0, false, true},
    {"lead", 1, 3, BindNeighbour, nullptr, FunctionKind::kWindow},
    {"ntile", 1, 1, BindTiles, nullptr, FunctionKind::kWindow},
    {"percent_rank", 0, 0, BindShare, nullptr, FunctionKind::kWindow},
    {"rank", 0, 0, BindNumber, nullptr, FunctionKind::kWindow},
    {"row_number", 0, 0, BindNumber, nullptr, FunctionKind::kWindow},
};

}  // namespace

FunctionSet WindowFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
