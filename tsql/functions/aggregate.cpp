// Aggregates that SQLite has not, or has with other rules: exact sums, averages of the argument's type, and
// the one value of a scalar subquery. Each takes one argument, so that DISTINCT works on them.

#include <deque>
#include <new>
#include <numeric>
#include <string>

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/sqlite/database.h"
#include "tsql/types/convert.h"
#include "tsql/types/old_text.h"

namespace vicenter::tsql::engine {

namespace {

enum class SumKind { kInt, kBigInt, kDecimal, kMoney, kReal };

// SQLite gives zeroed memory without constructors, so the state is made on first use.
struct SumState {
    bool made;
    Decimal sum;
    double real;
    std::int64_t count;
    // The numbers of a frame: what leaves it cannot be taken off a rounded sum again.
    std::deque<double> reals;
    bool isStale;
};

FunctionServices& ServicesOf(sqlite3_context* context) {
    return *static_cast<FunctionServices*>(sqlite3_user_data(context));
}

SumState* StateOf(sqlite3_context* context) {
    // The memory is aligned to 8 bytes only; the state lives behind a pointer.
    constexpr int kPointerBytes = sizeof(void*);
    auto** slot = static_cast<SumState**>(sqlite3_aggregate_context(context, kPointerBytes));
    if (slot == nullptr) throw std::bad_alloc();
    if (*slot == nullptr) *slot = new SumState{true, Decimal(), 0, 0, {}, false};
    return *slot;
}

template <SumKind Kind, int Sign>
void SumStep(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) return;
    Guarded(context, ServicesOf(context), [&] {
        SumState& state = *StateOf(context);
        state.count += Sign;
        if constexpr (Kind == SumKind::kReal) {
            const double number = sqlite3_value_double(arguments[0]);
            if (Sign > 0) {
                state.real += number;
                state.reals.push_back(number);
            } else {
                state.reals.pop_front();
                state.isStale = true;
            }
        } else {
            const Decimal number = FunctionCall(context, 1, arguments).Number(0);
            state.sum = Sign > 0 ? Decimal::Add(state.sum, number) : Decimal::Subtract(state.sum, number);
        }
    });
}

template <SumKind Kind, bool Average>
void ReturnSum(sqlite3_context* context, SumState& state) {
    const FunctionCall call(context, 0, nullptr);
    if constexpr (Kind == SumKind::kReal) {
        if (state.isStale) state.real = std::accumulate(state.reals.begin(), state.reals.end(), 0.0);
        state.isStale = false;
        call.Return(Average ? state.real / static_cast<double>(state.count) : state.real);
    } else if constexpr (Kind == SumKind::kDecimal || Kind == SumKind::kMoney) {
        if constexpr (Average) {
            // Money is divided as money, cut and not rounded at its four places.
            const int least = Kind == SumKind::kMoney ? 4 : 6;
            const int scale = state.sum.Scale() > least ? state.sum.Scale() : least;
            call.Return(Decimal::Divide(state.sum, Decimal(state.count), scale));
        } else {
            call.Return(state.sum);
        }
    } else {
        const SqlType type = SqlType::Of(Kind == SumKind::kInt ? TypeKind::kInt : TypeKind::kBigInt);
        // An average is of a sum of its own type, which must hold it.
        const std::int64_t sum = Convert(Value(state.sum), SqlType::Decimal(38, 0), type).Int();
        call.Return(Average ? sum / state.count : sum);
    }
}

template <SumKind Kind, bool Average>
void SumValue(sqlite3_context* context) {
    auto** slot = static_cast<SumState**>(sqlite3_aggregate_context(context, 0));
    if (slot == nullptr || *slot == nullptr || (*slot)->count == 0) return;
    Guarded(context, ServicesOf(context), [&] { ReturnSum<Kind, Average>(context, **slot); });
}

template <SumKind Kind, bool Average>
void SumFinal(sqlite3_context* context) {
    SumValue<Kind, Average>(context);
    auto** slot = static_cast<SumState**>(sqlite3_aggregate_context(context, 0));
    if (slot == nullptr) return;
    delete *slot;
    *slot = nullptr;
}

template <SumKind Kind, bool Average>
constexpr SqlFunction Sum(const char* name) {
    return {name,
            1,
            nullptr,
            true,
            SumStep<Kind, 1>,
            SumFinal<Kind, Average>,
            SumValue<Kind, Average>,
            SumStep<Kind, -1>};
}

struct SingleState {
    sqlite3_value* value;
    std::int64_t rows;
};

// ts_single(value): the value of the only row; a second row is error 512
void SingleStep(sqlite3_context* context, int, sqlite3_value** arguments) {
    auto* state = static_cast<SingleState*>(sqlite3_aggregate_context(context, sizeof(SingleState)));
    if (state == nullptr) return sqlite3_result_error_nomem(context);
    if (++state->rows > 1) return Fail(context, ServicesOf(context), MakeError(512, {}));
    state->value = sqlite3_value_dup(arguments[0]);
}

void SingleFinal(sqlite3_context* context) {
    auto* state = static_cast<SingleState*>(sqlite3_aggregate_context(context, 0));
    if (state == nullptr || state->value == nullptr) return;
    sqlite3_result_value(context, state->value);
    sqlite3_value_free(state->value);
    state->value = nullptr;
}

// ts_string_agg(text, separator)
void StringAggStep(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) return;
    Guarded(context, ServicesOf(context), [&] {
        auto** slot = static_cast<std::string**>(sqlite3_aggregate_context(context, sizeof(std::string*)));
        if (slot == nullptr) throw std::bad_alloc();
        const FunctionCall call(context, 2, arguments);
        if (*slot == nullptr) {
            *slot = new std::string();
        } else {
            **slot += call.Text(1);
        }
        **slot += call.Text(0);
    });
}

void StringAggFinal(sqlite3_context* context) {
    auto** slot = static_cast<std::string**>(sqlite3_aggregate_context(context, 0));
    if (slot == nullptr || *slot == nullptr) return;
    FunctionCall(context, 0, nullptr).Return(std::string_view(**slot));
    delete *slot;
    *slot = nullptr;
}

// Sums and averages by what they add up.
constexpr SqlFunction kSumInt = Sum<SumKind::kInt, false>("ts_sum_int");
constexpr SqlFunction kSumBigInt = Sum<SumKind::kBigInt, false>("ts_sum_bigint");
constexpr SqlFunction kSumDecimal = Sum<SumKind::kDecimal, false>("ts_sum_decimal");
constexpr SqlFunction kSumReal = Sum<SumKind::kReal, false>("ts_sum_real");
constexpr SqlFunction kAvgInt = Sum<SumKind::kInt, true>("ts_avg_int");
constexpr SqlFunction kAvgBigInt = Sum<SumKind::kBigInt, true>("ts_avg_bigint");
constexpr SqlFunction kAvgDecimal = Sum<SumKind::kDecimal, true>("ts_avg_decimal");
constexpr SqlFunction kAvgMoney = Sum<SumKind::kMoney, true>("ts_avg_money");
constexpr SqlFunction kAvgReal = Sum<SumKind::kReal, true>("ts_avg_real");
// ts_joined(text, most)
void JoinedFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    if (UnitCount(call.Text(0)) > static_cast<std::size_t>(call.Int(1)))
        throw MakeError(9829, {}, {kLongestVarChar});
    call.ReturnArgument(0);
}

constexpr SqlFunction kJoined = Scalar<JoinedFunction>("ts_joined", 2);
constexpr SqlFunction kStringAgg = {"ts_string_agg", 2, nullptr, false, StringAggStep, StringAggFinal};

// ts_places(number, places): with all of its places, as nothing is kept
void PlacesFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const std::string text = call.Number(0).Rescaled(static_cast<int>(call.Int(1))).ToText();
    call.Return(std::string_view(text));
}

constexpr SqlFunction kPlacesCall = Scalar<PlacesFunction>("ts_places", 2);

// Type rules.

std::string Distinct(const Binding& call) {
    return call.IsDistinct() ? "DISTINCT " : "";
}

template <TypeKind Kind>
Bound BindCount(Binding& call) {
    const SqlType type = SqlType::Of(Kind);
    if (call.IsStar()) return {"count(*)", type};
    if (call.Type(0).IsUnknown()) throw MakeError(8117, call.Where(), {"NULL", call.Name()});
    if (IsOldText(call.Type(0)))
        throw MakeError(8117, call.Where(), {MessageName(call.Type(0)), call.Name()});
    // Zeros at the end of bytes count as nothing.
    const std::string argument =
        call.Type(0).IsBinary() ? kBytesCall.Call({call.Plain(0)}) : call.Collated(0);
    return {"count(" + Distinct(call) + argument + ")", type};
}

// Of texts without max the result is one, too; of anything else, the longest nvarchar.
Bound BindStringAgg(Binding& call) {
    const SqlType from = call.Type(0);
    const std::string sql = call.Call({call.Text(0), call.Text(1)});
    if (from.IsText() && from.IsMax()) return {sql, call.TextType(0, kMaxLength)};
    const SqlType type = from.IsText() && !from.IsUnicode() ? SqlType::VarChar(kLongestVarChar)
                                                            : SqlType::NVarChar(kLongestNVarChar);
    return {sql, type, false, std::string(kJoined.name) + "(", ", " + std::to_string(type.length) + ")"};
}

Bound BindMaxMin(Binding& call) {
    const SqlType from = call.Type(0);
    if (from.kind == TypeKind::kBit || from.IsUnknown() || IsOldText(from))
        throw MakeError(8117, call.Where(), {MessageName(from), call.Name()});
    call.Pin(0);
    return {call.Name() + "(" + Distinct(call) + call.Collated(0) + ")", from};
}

template <bool Average>
Bound BindSum(Binding& call) {
    const SqlType from = call.Type(0);
    if (!from.IsNumber() || from.kind == TypeKind::kBit)
        throw MakeError(8117, call.Where(), {MessageName(from), call.Name()});
    if (from.IsExact()) {
        const SqlFunction& exact = !Average ? kSumDecimal : from.IsMoney() ? kAvgMoney : kAvgDecimal;
        // The least scale of an average. What has more places goes in with all of them: a stored decimal
        // shows only those that it needs.
        constexpr int kScale = 6;
        const bool isFine = Average && from.scale > kScale;
        const std::string argument = isFine ? kPlacesCall.Call({call.Plain(0), std::to_string(from.scale)}) +
                                                  " COLLATE " + kNumberCollationName
                                            : call.Collated(0);
        const std::string sql = exact.Call({Distinct(call) + argument});
        if (!from.IsMoney()) {
            const int scale = Average && from.scale < kScale ? kScale : from.scale;
            return {sql, SqlType::Decimal(kMaxPrecision, scale)};
        }
        const SqlType type = SqlType::Of(TypeKind::kMoney);
        // The call by its two ends.
        const std::string mark = "?";
        const std::string converted =
            kConvertCall.Call({mark, Code(SqlType::Decimal(kMaxPrecision, kScale)), Code(type), "0"});
        const std::size_t at = converted.find(mark);
        return {sql, type, false, converted.substr(0, at), converted.substr(at + mark.size())};
    }
    const std::string argument = Distinct(call) + call.Plain(0);
    if (from.IsFloat()) return {(Average ? kAvgReal : kSumReal).Call({argument}), SqlType::Float()};
    if (from.kind == TypeKind::kBigInt)
        return {(Average ? kAvgBigInt : kSumBigInt).Call({argument}), SqlType::Of(TypeKind::kBigInt)};
    return {(Average ? kAvgInt : kSumInt).Call({argument}), SqlType::Int()};
}

constexpr FunctionEntry kEntries[] = {
    {"avg", 1, 1, BindSum<true>, nullptr, FunctionKind::kAggregate},
    {"count", 1, 1, BindCount<TypeKind::kInt>, nullptr, FunctionKind::kAggregate, 0, true},
    {"count_big", 1, 1, BindCount<TypeKind::kBigInt>, nullptr, FunctionKind::kAggregate, 0, true},
    {"max", 1, 1, BindMaxMin, nullptr, FunctionKind::kAggregate},
    {"min", 1, 1, BindMaxMin, nullptr, FunctionKind::kAggregate},
    {"string_agg", 2, 2, BindStringAgg, &kStringAgg, FunctionKind::kAggregate},
    {"sum", 1, 1, BindSum<false>, nullptr, FunctionKind::kAggregate},
};

constexpr const SqlFunction* kOthers[] = {&kSumInt,  &kSumBigInt,  &kSumDecimal, &kSumReal,
                                          &kAvgInt,  &kAvgBigInt,  &kAvgDecimal, &kAvgMoney,
                                          &kAvgReal, &kSingleCall, &kPlacesCall, &kJoined};

}  // namespace

const SqlFunction kSingleCall = {"ts_single", 1, nullptr, false, SingleStep, SingleFinal};

FunctionSet AggregateFunctions() {
    return {kEntries, kOthers};
}

}  // namespace vicenter::tsql::engine
