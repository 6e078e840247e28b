// Date functions. Dates come and go as their stored texts; the part is a DatePart's number.

#include <limits>

#include "tsql/functions/call.h"
#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

namespace {

DatePart PartOf(const FunctionCall& call, int i) {
    return static_cast<DatePart>(call.Int(i));
}

// ts_dateadd(part, count, date, type)
void DateAddFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const SqlType type = call.Type(3);
    const auto moved = AddToDate(PartOf(call, 0), call.Int(1), call.Argument(2, type).Date());
    const auto rounded = moved ? RoundToType(*moved, type) : std::nullopt;
    if (!rounded) throw MakeError(517, {}, {type.Name()});
    call.Return(Value(*rounded), type);
}

// ts_datediff(part, from, to): both as datetime
void DateDiffFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const SqlType type = SqlType::DateTime();
    const std::int64_t difference =
        DateDifference(PartOf(call, 0), call.Argument(1, type).Date(), call.Argument(2, type).Date());
    if (difference > std::numeric_limits<std::int32_t>::max() ||
        difference < std::numeric_limits<std::int32_t>::min()) {
        throw MakeError(535, {}, {"datediff", "datediff"});
    }
    call.Return(difference);
}

// ts_datepart(part, date)
void DatePartFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(std::int64_t{DatePartOf(PartOf(call, 0), call.Argument(1, SqlType::DateTime()).Date())});
}

// ts_datename(part, date)
void DateNameFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(std::string_view(DateName(PartOf(call, 0), call.Argument(1, SqlType::DateTime()).Date())));
}

// ts_date_plus(date, days, sign): datetime + number
void DatePlusFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const SqlType type = SqlType::DateTime();
    const double milliseconds = call.Real(1) * 86400000.0 * static_cast<double>(call.Int(2));
    if (!(milliseconds > -4e14 && milliseconds < 4e14)) throw MakeError(517, {}, {"datetime"});
    const auto count = static_cast<std::int64_t>(milliseconds < 0 ? milliseconds - 0.5 : milliseconds + 0.5);
    const auto moved = AddToDate(DatePart::kMillisecond, count, call.Argument(0, type).Date());
    const auto rounded = moved ? RoundToType(*moved, type) : std::nullopt;
    if (!rounded) throw MakeError(517, {}, {"datetime"});
    call.Return(Value(*rounded), type);
}

// ts_date_from_parts(year, month, day)
void DateFromPartsFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const auto date = DateTime::FromParts({static_cast<int>(call.Int(0)), static_cast<int>(call.Int(1)),
                                           static_cast<int>(call.Int(2)), 0, 0, 0, 0});
    if (!date) throw MakeError(289, {}, {"date"});
    call.Return(Value(*date), SqlType::Of(TypeKind::kDate));
}

// ts_eomonth(date, months)
void EndOfMonthFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const auto moved = AddToDate(DatePart::kMonth, call.Int(1), call.Argument(0, SqlType::DateTime()).Date());
    if (!moved) throw MakeError(517, {}, {"date"});
    automation::DateTimeParts parts = moved->Parts();
    parts.day = 1;
    const auto next = AddToDate(DatePart::kMonth, 1, *DateTime::FromParts(parts));
    const auto last = next ? AddToDate(DatePart::kDay, -1, *next) : std::nullopt;
    if (!last) throw MakeError(517, {}, {"date"});
    call.Return(Value(*last), SqlType::Of(TypeKind::kDate));
}

}  // namespace

void RegisterDateFunctions(sqlite3* database, FunctionServices& services) {
    Define<DateAddFunction>(database, services, "ts_dateadd", 4);
    Define<DateDiffFunction>(database, services, "ts_datediff", 3);
    Define<DatePartFunction>(database, services, "ts_datepart", 2);
    Define<DateNameFunction>(database, services, "ts_datename", 2);
    Define<DatePlusFunction>(database, services, "ts_date_plus", 3);
    Define<DateFromPartsFunction>(database, services, "ts_date_from_parts", 3);
    Define<EndOfMonthFunction>(database, services, "ts_eomonth", 2);
}

}  // namespace vicenter::tsql::engine
