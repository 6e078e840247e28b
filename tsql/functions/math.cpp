// The operators one by one, and functions of numbers.

#include <cmath>

#include "tsql/functions/arithmetic.h"
#include "tsql/functions/call.h"
#include "tsql/functions/volatile.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

namespace {

// ts_int(operator, a, b, type)
void IntegerFunction(FunctionCall& call) {
    if (call.IsNull(1) || call.IsNull(2)) return;
    call.Return(OfIntegers(call.Text(0).front(), call.Int(1), call.Int(2), call.Type(3)));
}

// ts_dec(operator, a, b, type)
void DecimalFunction(FunctionCall& call) {
    if (call.IsNull(1) || call.IsNull(2)) return;
    call.Return(OfDecimals(call.Text(0).front(), call.Number(1), call.Number(2), call.Type(3)));
}

// ts_real(operator, a, b)
void RealFunction(FunctionCall& call) {
    if (call.IsNull(1) || call.IsNull(2)) return;
    call.Return(OfReals(call.Text(0).front(), call.Real(1), call.Real(2)));
}

// ts_square(number)
void SquareFunction(FunctionCall& call) {
    if (!call.IsNull(0)) call.Return(OfReals('*', call.Real(0), call.Real(0)));
}

Decimal Zero(const Decimal& like) {
    return Decimal(0).Rescaled(like.Scale());
}

// ts_neg(value, type)
void NegateFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const SqlType type = call.Type(1);
    const Value value = call.Argument(0, type);
    if (type.IsExact()) return call.Return(value.Exact().IsZero() ? value.Exact() : value.Exact().Negated());
    if (type.IsFloat()) return call.Return(-value.Real());
    call.Return(OfIntegers('-', 0, value.Int(), type));
}

// ts_abs(value, type)
void AbsFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const SqlType type = call.Type(1);
    const Value value = call.Argument(0, type);
    if (type.IsExact())
        return call.Return(value.Exact().IsNegative() ? value.Exact().Negated() : value.Exact());
    if (type.IsFloat()) return call.Return(std::fabs(value.Real()));
    call.Return(value.Int() < 0 ? OfIntegers('-', 0, value.Int(), type) : value.Int());
}

// ts_sign(value, type)
void SignFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const SqlType type = call.Type(1);
    const Value value = call.Argument(0, type);
    if (type.IsExact()) {
        const Decimal& number = value.Exact();
        const Decimal one = Decimal(number.IsZero()       ? 0
                                    : number.IsNegative() ? -1
                                                          : 1)
                                .Rescaled(number.Scale());
        return call.Return(one);
    }
    const double number = type.IsFloat() ? value.Real() : static_cast<double>(value.Int());
    const int sign = number > 0 ? 1 : number < 0 ? -1 : 0;
    if (type.IsFloat()) return call.Return(static_cast<double>(sign));
    call.Return(std::int64_t{sign});
}

double RoundedReal(double number, std::int64_t places, bool cut) {
    if (places > 15 || places < -300) return places < 0 ? 0 : number;
    const double factor = std::pow(10.0, static_cast<double>(places < 0 ? -places : places));
    const double scaled = places < 0 ? number / factor : number * factor;
    const double whole = cut ? std::trunc(scaled) : std::round(scaled);
    return places < 0 ? whole * factor : whole / factor;
}

Decimal RoundedDecimal(const Decimal& number, std::int64_t places, bool cut) {
    const int scale = number.Scale();
    if (places >= scale) return number;
    if (places >= 0) {
        const int kept = static_cast<int>(places);
        return (cut ? number.Truncated(kept) : number.Rescaled(kept)).Rescaled(scale);
    }
    if (-places > Decimal::kMaxDigits) return Zero(number);
    std::string power = "1" + std::string(static_cast<std::size_t>(-places), '0');
    const auto unit = Decimal::Parse(power);
    if (!unit) return Zero(number);
    const Decimal quotient =
        Decimal::Divide(number, *unit, Decimal::kMaxDigits - number.Precision() > 20 ? 10 : 1);
    const Decimal whole = cut ? quotient.Truncated(0) : quotient.Rescaled(0);
    return Decimal::Multiply(whole, *unit).Rescaled(scale);
}

// ts_round(value, places, cut, type)
void RoundFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const SqlType type = call.Type(3);
    const std::int64_t places = call.Int(1);
    const bool cut = call.Int(2) != 0;
    const Value value = call.Argument(0, type);
    if (type.IsFloat()) return call.Return(RoundedReal(value.Real(), places, cut));
    if (type.IsExact()) {
        // The result keeps the type: 999.99 has no room for 1000.00.
        const Decimal rounded = RoundedDecimal(value.Exact(), places, cut);
        if (!FitsDecimal(rounded, type)) Overflow(type);
        return call.Return(rounded);
    }
    const Decimal rounded = RoundedDecimal(Decimal(value.Int()), places, cut);
    call.Return(Convert(Value(rounded), SqlType::Decimal(38, 0), type).Int());
}

// ts_floor(value, type) and ts_ceiling(value, type); a decimal keeps no fraction
void Whole(FunctionCall& call, bool up) {
    if (call.IsNull(0)) return;
    const SqlType type = call.Type(1);
    const Value value = call.Argument(0, type);
    if (type.IsFloat()) return call.Return(up ? std::ceil(value.Real()) : std::floor(value.Real()));
    if (!type.IsExact()) return call.Return(value.Int());
    const Decimal& number = value.Exact();
    Decimal whole = number.Truncated(0);
    if (!(whole == number) && number.IsNegative() != up) {
        whole = up ? Decimal::Add(whole, Decimal(1)) : Decimal::Subtract(whole, Decimal(1));
    }
    call.Return(type.IsMoney() ? whole.Rescaled(4) : whole);
}

void FloorFunction(FunctionCall& call) {
    Whole(call, false);
}
void CeilingFunction(FunctionCall& call) {
    Whole(call, true);
}

// What no float holds is an overflow, but for what has no value at all: log(0), sqrt(-1).
double Checked(double result, double of) {
    if (std::isinf(result) && of != 0) throw MakeError(8115, {}, {"expression", "float"});
    if (!std::isfinite(result)) throw MakeError(3623, {});
    return result;
}

// ts_power(base, exponent): both as float
void PowerFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(Checked(std::pow(call.Real(0), call.Real(1)), call.Real(0)));
}

template <double (*F)(double)>
void RealToReal(FunctionCall& call) {
    if (call.IsNull(0)) return;
    call.Return(Checked(F(call.Real(0)), call.Real(0)));
}

double Sqrt(double x) {
    return std::sqrt(x);
}
double Exp(double x) {
    return std::exp(x);
}
double Log(double x) {
    return std::log(x);
}
double Log10(double x) {
    return std::log10(x);
}
double Sin(double x) {
    return std::sin(x);
}
double Cos(double x) {
    return std::cos(x);
}
double Tan(double x) {
    return std::tan(x);
}

void RandFunction(FunctionCall& call) {
    std::uint32_t bits = 0;
    sqlite3_randomness(sizeof bits, &bits);
    call.Return(static_cast<double>(bits) / 4294967296.0);
}

// Type rules.

Bound BindAbs(Binding& call) {
    const SqlType type = call.NumberType(0);
    return {call.Call({call.As(0, type), Code(type)}), type};
}

Bound BindRound(Binding& call) {
    const SqlType type = call.NumberType(0);
    return {call.Call({call.As(0, type), call.Int(1), call.Count() > 2 ? call.Int(2) : "0", Code(type)}),
            type};
}

Bound BindFloorCeiling(Binding& call) {
    const SqlType from = call.NumberType(0);
    const SqlType type = from.kind == TypeKind::kDecimal ? SqlType::Decimal(from.precision, 0) : from;
    return {call.Call({call.As(0, from), Code(from)}), type};
}

constexpr SqlFunction kRound = Scalar<RoundFunction>("ts_round", 4);

// Raised as float, and the type of the base again.
Bound BindPower(Binding& call) {
    SqlType type = call.NumberType(0);
    const std::string sql = call.Call({call.Real(0), call.Real(1)});
    if (type.IsFloat()) return {sql, type};
    if (type.kind == TypeKind::kDecimal) type = SqlType::Decimal(kMaxPrecision, type.scale);
    const std::string real = Code(SqlType::Float());
    // Into an integer the fraction is cut, into a decimal it is rounded.
    return {kConvertCall.Call({sql, real, Code(type), "0"}), type};
}

Bound RealOfReal(Binding& call) {
    return {call.Call({call.Real(0)}), SqlType::Float()};
}

// LOG(x), LOG(x, base)
Bound BindLog(Binding& call) {
    if (call.Count() == 1) return RealOfReal(call);
    return {kRealCall.Call({"'/'", call.Call({call.Real(0)}), call.Call({call.Real(1)})}), SqlType::Float()};
}

Bound BindPi(Binding&) {
    return {"3.1415926535897931", SqlType::Float()};
}

// The server's numbers of a seed are its own.
Bound BindRand(Binding& call) {
    if (call.Count() > 0) throw MakeError(40510, call.Where(), {"RAND with a seed"});
    return {call.Call({}), SqlType::Float()};
}

constexpr SqlFunction kAbs = Scalar<AbsFunction>("ts_abs", 2);
constexpr SqlFunction kSign = Scalar<SignFunction>("ts_sign", 2);
constexpr SqlFunction kFloor = Scalar<FloorFunction>("ts_floor", 2);
constexpr SqlFunction kCeiling = Scalar<CeilingFunction>("ts_ceiling", 2);
constexpr SqlFunction kPower = Scalar<PowerFunction>("ts_power", 2);
constexpr SqlFunction kSqrt = Scalar<RealToReal<Sqrt>>("ts_sqrt", 1);
constexpr SqlFunction kExp = Scalar<RealToReal<Exp>>("ts_exp", 1);
constexpr SqlFunction kLog = Scalar<RealToReal<Log>>("ts_log", 1);
constexpr SqlFunction kLog10 = Scalar<RealToReal<Log10>>("ts_log10", 1);
constexpr SqlFunction kSin = Scalar<RealToReal<Sin>>("ts_sin", 1);
constexpr SqlFunction kCos = Scalar<RealToReal<Cos>>("ts_cos", 1);
constexpr SqlFunction kSquare = Scalar<SquareFunction>("ts_square", 1);
constexpr SqlFunction kTan = Scalar<RealToReal<Tan>>("ts_tan", 1);
constexpr SqlFunction kRand = Scalar<RandFunction>(kRandName, 0, false);

constexpr FunctionEntry kEntries[] = {
    {"abs", 1, 1, BindAbs, &kAbs},
    {"ceiling", 1, 1, BindFloorCeiling, &kCeiling},
    {"cos", 1, 1, RealOfReal, &kCos},
    {"exp", 1, 1, RealOfReal, &kExp},
    {"floor", 1, 1, BindFloorCeiling, &kFloor},
    {"log", 1, 2, BindLog, &kLog},
    {"log10", 1, 1, RealOfReal, &kLog10},
    {"pi", 0, 0, BindPi},
    {"power", 2, 2, BindPower, &kPower},
    {"rand", 0, 1, BindRand, &kRand},
    {"round", 2, 3, BindRound, &kRound},
    {"sign", 1, 1, BindAbs, &kSign},
    {"sin", 1, 1, RealOfReal, &kSin},
    {"sqrt", 1, 1, RealOfReal, &kSqrt},
    {"square", 1, 1, RealOfReal, &kSquare},
    {"tan", 1, 1, RealOfReal, &kTan},
};

constexpr const SqlFunction* kOthers[] = {&kIntegerCall, &kDecimalCall, &kRealCall, &kNegateCall};

}  // namespace

const SqlFunction kIntegerCall = Scalar<IntegerFunction>("ts_int", 4);
const SqlFunction kDecimalCall = Scalar<DecimalFunction>("ts_dec", 4);
const SqlFunction kRealCall = Scalar<RealFunction>("ts_real", 3);
const SqlFunction kNegateCall = Scalar<NegateFunction>("ts_neg", 2);

FunctionSet MathFunctions() {
    return {kEntries, kOthers};
}

}  // namespace vicenter::tsql::engine
