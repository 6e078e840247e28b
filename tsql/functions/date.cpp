// Date functions. Dates come and go as their stored texts; the part is a DatePart's number.

#include <limits>

#include "tsql/functions/call.h"
#include "tsql/types/date_part.h"

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

// Type rules.

// What parts are taken of: a text is read as a datetime2, which reaches further and is not rounded.
std::string Moment(Binding& call, std::size_t i) {
    const SqlType& type = call.Type(i);
    return type.IsDate() || type.IsText() ? call.As(i, SqlType::Of(TypeKind::kDateTime2)) : call.Date(i);
}

// A date has no hours, a time of day no days.
std::string PartOf(Binding& call, const SqlType& type) {
    static constexpr const char* kNames[] = {"year", "quarter", "month",    "dayofyear",
                                             "day",  "week",    "iso_week", "weekday",
                                             "hour", "minute",  "second",   "millisecond"};
    std::string code = call.DatePartCode(0);
    const int part = std::stoi(code);
    const bool isOfClock = part >= static_cast<int>(DatePart::kHour);
    const bool lacks = isOfClock ? type.kind == TypeKind::kDate : type.kind == TypeKind::kTime;
    if (lacks) throw MakeError(9810, call.Where(), {kNames[part], call.Name(), type.Name()});
    return code;
}

// The session's clock.
Bound BindGetDate(Binding&) {
    return {"getdate", SqlType::DateTime(), true};
}

Bound BindSysDateTime(Binding&) {
    return {"getdate", SqlType::Of(TypeKind::kDateTime2), true};
}

// The clock of the session tells local time; SQLite's own is Greenwich's.
Bound BindGetUtcDate(Binding&) {
    return {kConvertCall.Call({"strftime('%Y-%m-%d %H:%M:%f', 'now')",
                               Code(SqlType::Of(TypeKind::kDateTime2)), Code(SqlType::DateTime()), "0"}),
            SqlType::DateTime()};
}

Bound BindDateAdd(Binding& call) {
    SqlType type = call.Type(2);
    if (!type.IsDate()) type = SqlType::DateTime();
    return {call.Call({PartOf(call, type), call.Int(1), call.As(2, type), Code(type)}), type};
}

Bound BindDateDiff(Binding& call) {
    return {call.Call({call.DatePartCode(0), Moment(call, 1), Moment(call, 2)}), SqlType::Int()};
}

Bound BindDatePart(Binding& call) {
    return {call.Call({PartOf(call, call.Type(1)), Moment(call, 1)}), SqlType::Int()};
}

Bound BindDateName(Binding& call) {
    return {call.Call({PartOf(call, call.Type(1)), Moment(call, 1)}), SqlType::NVarChar(30)};
}

template <DatePart Part>
Bound BindOnePart(Binding& call) {
    return {call.Call({std::to_string(static_cast<int>(Part)), Moment(call, 0)}), SqlType::Int()};
}

Bound BindDateFromParts(Binding& call) {
    return {call.Call({call.Int(0), call.Int(1), call.Int(2)}), SqlType::Of(TypeKind::kDate)};
}

Bound BindEndOfMonth(Binding& call) {
    return {call.Call({Moment(call, 0), call.Count() > 1 ? call.Int(1) : "0"}), SqlType::Of(TypeKind::kDate)};
}

constexpr SqlFunction kDateAdd = Scalar<DateAddFunction>("ts_dateadd", 4);
constexpr SqlFunction kDateDiff = Scalar<DateDiffFunction>("ts_datediff", 3);
constexpr SqlFunction kDatePart = Scalar<DatePartFunction>("ts_datepart", 2);
constexpr SqlFunction kDateName = Scalar<DateNameFunction>("ts_datename", 2);
constexpr SqlFunction kDateFromParts = Scalar<DateFromPartsFunction>("ts_date_from_parts", 3);
constexpr SqlFunction kEndOfMonth = Scalar<EndOfMonthFunction>("ts_eomonth", 2);

constexpr FunctionEntry kEntries[] = {
    {"current_timestamp", 0, 0, BindGetDate},
    {"dateadd", 3, 3, BindDateAdd, &kDateAdd, FunctionKind::kScalar, 1},
    {"datediff", 3, 3, BindDateDiff, &kDateDiff, FunctionKind::kScalar, 1},
    {"datefromparts", 3, 3, BindDateFromParts, &kDateFromParts},
    {"datename", 2, 2, BindDateName, &kDateName, FunctionKind::kScalar, 1},
    {"datepart", 2, 2, BindDatePart, &kDatePart, FunctionKind::kScalar, 1},
    {"day", 1, 1, BindOnePart<DatePart::kDay>, &kDatePart},
    {"eomonth", 1, 2, BindEndOfMonth, &kEndOfMonth},
    {"getdate", 0, 0, BindGetDate},
    {"getutcdate", 0, 0, BindGetUtcDate},
    {"month", 1, 1, BindOnePart<DatePart::kMonth>, &kDatePart},
    {"sysdatetime", 0, 0, BindSysDateTime},
    {"year", 1, 1, BindOnePart<DatePart::kYear>, &kDatePart},
};

constexpr const SqlFunction* kOthers[] = {&kDatePlusCall};

}  // namespace

const SqlFunction kDatePlusCall = Scalar<DatePlusFunction>("ts_date_plus", 3);

FunctionSet DateFunctions() {
    return {kEntries, kOthers};
}

}  // namespace vicenter::tsql::engine
