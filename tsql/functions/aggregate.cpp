// Aggregates that SQLite has not, or has with other rules: exact sums, averages of the argument's type, and
// the one value of a scalar subquery. Each takes one argument, so that DISTINCT works on them.

#include <new>
#include <string>

#include "tsql/functions/call.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

namespace {

enum class SumKind { kInt, kBigInt, kDecimal, kMoney, kReal };

// SQLite gives zeroed memory without constructors, so the state is made on first use.
struct SumState {
    bool made;
    Decimal sum;
    double real;
    std::int64_t count;
};

FunctionServices& ServicesOf(sqlite3_context* context) {
    return *static_cast<FunctionServices*>(sqlite3_user_data(context));
}

SumState* StateOf(sqlite3_context* context) {
    // The memory is aligned to 8 bytes only; the state lives behind a pointer.
    constexpr int kPointerBytes = sizeof(void*);
    auto** slot = static_cast<SumState**>(sqlite3_aggregate_context(context, kPointerBytes));
    if (slot == nullptr) throw std::bad_alloc();
    if (*slot == nullptr) *slot = new SumState{true, Decimal(), 0, 0};
    return *slot;
}

template <SumKind Kind, int Sign>
void SumStep(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) return;
    Guarded(context, ServicesOf(context), [&] {
        SumState& state = *StateOf(context);
        state.count += Sign;
        if constexpr (Kind == SumKind::kReal) {
            state.real += Sign * sqlite3_value_double(arguments[0]);
        } else {
            const Decimal number = FunctionCall(context, 1, arguments).Number(0);
            state.sum = Sign > 0 ? Decimal::Add(state.sum, number) : Decimal::Subtract(state.sum, number);
        }
    });
}

template <SumKind Kind, bool Average>
void ReturnSum(sqlite3_context* context, const SumState& state) {
    const FunctionCall call(context, 0, nullptr);
    if constexpr (Kind == SumKind::kReal) {
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
        const Decimal result = Average ? Decimal::Divide(state.sum, Decimal(state.count), 0) : state.sum;
        call.Return(Convert(Value(result), SqlType::Decimal(38, 0), type).Int());
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
void DefineSum(sqlite3* database, FunctionServices& services, const char* name) {
    sqlite3_create_window_function(database, name, 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, &services,
                                   SumStep<Kind, 1>, SumFinal<Kind, Average>, SumValue<Kind, Average>,
                                   SumStep<Kind, -1>, nullptr);
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

}  // namespace

void RegisterAggregates(sqlite3* database, FunctionServices& services) {
    DefineSum<SumKind::kInt, false>(database, services, "ts_sum_int");
    DefineSum<SumKind::kBigInt, false>(database, services, "ts_sum_bigint");
    DefineSum<SumKind::kDecimal, false>(database, services, "ts_sum_decimal");
    DefineSum<SumKind::kReal, false>(database, services, "ts_sum_real");
    DefineSum<SumKind::kInt, true>(database, services, "ts_avg_int");
    DefineSum<SumKind::kBigInt, true>(database, services, "ts_avg_bigint");
    DefineSum<SumKind::kDecimal, true>(database, services, "ts_avg_decimal");
    DefineSum<SumKind::kMoney, true>(database, services, "ts_avg_money");
    DefineSum<SumKind::kReal, true>(database, services, "ts_avg_real");
    sqlite3_create_function_v2(database, "ts_single", 1, SQLITE_UTF8, &services, nullptr, SingleStep,
                               SingleFinal, nullptr);
    sqlite3_create_function_v2(database, "ts_string_agg", 2, SQLITE_UTF8, &services, nullptr, StringAggStep,
                               StringAggFinal, nullptr);
}

}  // namespace vicenter::tsql::engine
