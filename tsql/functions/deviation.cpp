// STDEV, STDEVP, VAR and VARP: in two passes over the numbers, so that what leaves a window's frame leaves no
// rounding behind.

#include <cmath>
#include <deque>
#include <new>

#include "tsql/functions/call.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

namespace {

using Numbers = std::deque<double>;

Numbers** Slot(sqlite3_context* context, int bytes) {
    return static_cast<Numbers**>(sqlite3_aggregate_context(context, bytes));
}

FunctionServices& ServicesOf(sqlite3_context* context) {
    return *static_cast<FunctionServices*>(sqlite3_user_data(context));
}

template <int Sign>
void Step(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) return;
    Guarded(context, ServicesOf(context), [&] {
        Numbers** slot = Slot(context, sizeof(Numbers*));
        if (slot == nullptr) throw std::bad_alloc();
        if (*slot == nullptr) *slot = new Numbers();
        if (Sign > 0) {
            (*slot)->push_back(sqlite3_value_double(arguments[0]));
        } else {
            (*slot)->pop_front();
        }
    });
}

// Of a sample one number is no measure; of the whole it is.
template <bool Sample, bool Root>
void Result(sqlite3_context* context) {
    Numbers** slot = Slot(context, 0);
    if (slot == nullptr || *slot == nullptr) return;
    const Numbers& numbers = **slot;
    const std::size_t least = Sample ? 2 : 1;
    if (numbers.size() < least) return;
    long double sum = 0;
    for (const double number : numbers)
        sum += number;
    const long double mean = sum / static_cast<long double>(numbers.size());
    long double squares = 0;
    for (const double number : numbers)
        squares += (number - mean) * (number - mean);
    const long double variance = squares / static_cast<long double>(numbers.size() - (Sample ? 1 : 0));
    sqlite3_result_double(context, static_cast<double>(Root ? std::sqrt(variance) : variance));
}

template <bool Sample, bool Root>
void Finish(sqlite3_context* context) {
    Result<Sample, Root>(context);
    Numbers** slot = Slot(context, 0);
    if (slot == nullptr) return;
    delete *slot;
    *slot = nullptr;
}

template <bool Sample, bool Root>
constexpr SqlFunction Measure(const char* name) {
    return {name, 1, nullptr, true, Step<1>, Finish<Sample, Root>, Result<Sample, Root>, Step<-1>};
}

constexpr SqlFunction kStdev = Measure<true, true>("ts_stdev");
constexpr SqlFunction kStdevp = Measure<false, true>("ts_stdevp");
constexpr SqlFunction kVar = Measure<true, false>("ts_var");
constexpr SqlFunction kVarp = Measure<false, false>("ts_varp");

Bound BindMeasure(Binding& call) {
    const SqlType from = call.Type(0);
    if (!from.IsNumber() || from.kind == TypeKind::kBit)
        throw MakeError(8117, call.Where(), {MessageName(from), call.Name()});
    return {call.Call({(call.IsDistinct() ? "DISTINCT " : "") + call.Real(0)}), SqlType::Float()};
}

constexpr FunctionEntry kEntries[] = {
    {"stdev", 1, 1, BindMeasure, &kStdev, FunctionKind::kAggregate},
    {"stdevp", 1, 1, BindMeasure, &kStdevp, FunctionKind::kAggregate},
    {"var", 1, 1, BindMeasure, &kVar, FunctionKind::kAggregate},
    {"varp", 1, 1, BindMeasure, &kVarp, FunctionKind::kAggregate},
};

}  // namespace

FunctionSet DeviationFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
