// FORMAT.

#include <cmath>
#include <cstdio>

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/functions/picture.h"

namespace vicenter::tsql::engine {

namespace {

constexpr int kLongest = 4000;

Decimal NumberOf(const FunctionCall& call, const SqlType& type) {
    if (!type.IsFloat()) return call.Number(0);
    // Fifteen digits count, as the server's formatting has it.
    char digits[64];
    const double number = call.Real(0);
    constexpr double kHuge = 1e15;
    if (!(std::fabs(number) < kHuge)) throw MakeError(40510, {}, {"FORMAT of a float beyond 15 digits"});
    const int whole = number == 0 ? 1 : static_cast<int>(std::floor(std::log10(std::fabs(number)))) + 1;
    const int places = 15 - whole < 0 ? 0 : 15 - whole > 25 ? 25 : 15 - whole;
    std::snprintf(digits, sizeof digits, "%.*f", places, number);
    const auto decimal = Decimal::Parse(digits);
    if (!decimal) throw MakeError(40510, {}, {"FORMAT of a float beyond 15 digits"});
    return *decimal;
}

// ts_format(value, picture, type, culture)
void FormatFunction(FunctionCall& call) {
    if (call.IsNull(0) || call.IsNull(1)) return;
    const SqlType type = call.Type(2);
    const std::string culture = LowerAscii(call.IsNull(3) ? std::string_view() : call.Text(3));
    if (culture != "en-us") throw MakeError(40510, {}, {"FORMAT for culture '" + culture + "'"});
    const std::string text = type.IsDate()
                                 ? DateByPicture(call.Argument(0, type).Date(), call.Text(1))
                                 : NumberByPicture(NumberOf(call, type), type.IsInteger(), call.Text(1));
    call.Return(std::string_view(text));
}

Bound BindFormat(Binding& call) {
    call.Pin(0);
    const SqlType type = call.Type(0);
    const bool fits = (type.IsNumber() && type.kind != TypeKind::kBit) ||
                      (type.IsDate() && type.kind != TypeKind::kTime) || type.IsUnknown();
    if (!fits) throw MakeError(8116, call.Where(), {type.Name(), 1, "format"});
    const std::string culture = call.Count() > 2 ? call.Text(2) : "'en-US'";
    return {call.Call({call.Plain(0), call.Text(1), Code(type), culture}), SqlType::NVarChar(kLongest)};
}

constexpr SqlFunction kFormat = Scalar<FormatFunction>("ts_format", 4);

constexpr FunctionEntry kEntries[] = {
    {"format", 2, 3, BindFormat, &kFormat},
};

}  // namespace

FunctionSet FormatFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
