// Numbers of rows and levels that statements set bounds by, and what is refused only where it comes up.

#include <cmath>

#include "tsql/functions/call.h"

namespace vicenter::tsql::engine {

namespace {

// ts_row_count(number, limit)
void RowCountFunction(FunctionCall& call) {
    const auto limit = static_cast<RowLimit>(call.Int(1));
    if (call.IsNull(0)) throw MakeError(limit == RowLimit::kOffset ? 10743 : 1060, {});
    const std::int64_t number = call.Int(0);
    if (limit == RowLimit::kFetch && number < 1) throw MakeError(10744, {});
    if (number < 0) throw MakeError(limit == RowLimit::kOffset ? 10742 : 127, {});
    call.Return(number);
}

// ts_at_least(number, least, error)
void AtLeastFunction(FunctionCall& call) {
    if (call.IsNull(0) && call.Int(1) == 0) return;
    if (call.IsNull(0) || call.Int(0) < call.Int(1))
        throw MakeError(static_cast<std::int32_t>(call.Int(2)), {});
    call.Return(call.Int(0));
}

// ts_percent(rows, percent)
void PercentFunction(FunctionCall& call) {
    if (call.IsNull(1)) throw MakeError(1060, {});
    const double percent = call.Real(1);
    if (!(percent >= 0 && percent <= 100)) throw MakeError(1031, {});
    call.Return(static_cast<std::int64_t>(std::ceil(static_cast<double>(call.Int(0)) * percent / 100)));
}

// ts_recursion(level, most): 0 for no bound
void RecursionFunction(FunctionCall& call) {
    const std::int64_t level = call.Int(0) + 1;
    const std::int64_t most = call.Int(1);
    if (most > 0 && level > most) throw MakeError(530, {}, {most});
    call.Return(level);
}

// ts_some_rows(row, name)
void SomeRowsFunction(FunctionCall& call) {
    if (call.IsNull(0)) throw MakeError(40510, {}, {call.Text(1)});
    call.Return(std::int64_t{-1});
}

constexpr const SqlFunction* kOthers[] = {&kRowCountCall, &kAtLeastCall, &kPercentCall, &kRecursionCall,
                                          &kSomeRowsCall};

}  // namespace

const SqlFunction kRowCountCall = Scalar<RowCountFunction>("ts_row_count", 2);
const SqlFunction kAtLeastCall = Scalar<AtLeastFunction>("ts_at_least", 3);
const SqlFunction kPercentCall = Scalar<PercentFunction>("ts_percent", 2);
const SqlFunction kRecursionCall = Scalar<RecursionFunction>("ts_recursion", 2);
const SqlFunction kSomeRowsCall = Scalar<SomeRowsFunction>("ts_some_rows", 2);

FunctionSet LimitFunctions() {
    return {{}, kOthers};
}

}  // namespace vicenter::tsql::engine
