// Functions that tell of a text what it is: its length, its bytes, the codes of its characters (and the
// character of a code), whether it reads as a number or a date.

#include "text/utf8.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/types/convert.h"
#include "tsql/types/date_part.h"
#include "tsql/types/date_text.h"

namespace vicenter::tsql::engine {

namespace {

void LenFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    call.Return(static_cast<std::int64_t>(UnitCount(WithoutTrailingBlanks(call.Text(0)))));
}

// A byte for the sign and words of four bytes, as many as the digits need.
std::int64_t DecimalBytes(const Decimal& number) {
    automation::UInt128 rest = number.Magnitude() >> 32;
    std::int64_t bytes = 5;
    for (; rest != 0; rest >>= 32)
        bytes += 4;
    return bytes;
}

// ts_datalength(value, type)
void DataLengthFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const SqlType type = call.Type(1);
    switch (type.kind) {
        case TypeKind::kBit:
        case TypeKind::kTinyInt:
            return call.Return(std::int64_t{1});
        case TypeKind::kSmallInt:
            return call.Return(std::int64_t{2});
        case TypeKind::kInt:
        case TypeKind::kReal:
        case TypeKind::kSmallMoney:
        case TypeKind::kSmallDateTime:
            return call.Return(std::int64_t{4});
        case TypeKind::kUniqueIdentifier:
            return call.Return(std::int64_t{16});
        case TypeKind::kDecimal:
            return call.Return(DecimalBytes(call.Argument(0, type).Exact()));
        case TypeKind::kDate:
            return call.Return(std::int64_t{3});
        case TypeKind::kTime:
            return call.Return(std::int64_t{5});
        default:
            break;
    }
    if (type.IsText()) {
        const auto units = static_cast<std::int64_t>(UnitCount(call.Text(0)));
        return call.Return(type.IsUnicode() ? units * 2 : units);
    }
    if (type.IsBinary()) return call.Return(static_cast<std::int64_t>(call.Text(0).size()));
    call.Return(std::int64_t{8});
}

// Of a malformed character its first byte.
std::uint32_t FirstCode(std::string_view text) {
    const text::CodePoint first = text::ReadUtf8(text, 0);
    return first.valid ? first.code : static_cast<unsigned char>(text.front());
}

void UnicodeFunction(FunctionCall& call) {
    if (call.IsNull(0) || call.Text(0).empty()) return;
    call.Return(static_cast<std::int64_t>(FirstCode(call.Text(0))));
}

// ts_ascii(text): the first byte as a varchar has it
void AsciiFunction(FunctionCall& call) {
    if (call.IsNull(0) || call.Text(0).empty()) return;
    const std::string_view first = call.Text(0).substr(0, CharacterBytes(call.Text(0), 0));
    const bool plain = first.size() == 1 && static_cast<unsigned char>(first.front()) < 0x80;
    call.Return(
        std::int64_t{plain ? static_cast<unsigned char>(first.front()) : call.Collation().LeadByte(first)});
}

void NCharFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const std::int64_t number = call.Int(0);
    // Texts are kept as characters: half of one there is not.
    if (number >= 0xD800 && number < 0xE000)
        throw MakeError(40510, {}, {"NCHAR(" + std::to_string(number) + ")"});
    if (number < 0 || number > 0x10FFFF) return;
    const auto code = static_cast<std::uint32_t>(number);
    std::string text;
    text::AppendUtf8(text, code);
    call.Return(std::string_view(text));
}

// ts_char(number): of one byte
void CharFunction(FunctionCall& call) {
    constexpr std::int64_t kMost = 255;
    if (!call.IsNull(0) && call.Int(0) <= kMost) NCharFunction(call);
}

// ts_isnumeric(text): what could become an integer, decimal, money or float
void IsNumericFunction(FunctionCall& call) {
    if (call.IsNull(0)) return call.Return(std::int64_t{0});
    const SqlType type = SqlType::NVarChar(kMaxLength);
    const Value text(call.Text(0));
    const std::string_view trimmed = WithoutTrailingBlanks(WithoutLeadingBlanks(call.Text(0)));
    const bool lone = trimmed == "+" || trimmed == "-" || trimmed == "." || trimmed == ",";
    bool is = lone;
    for (const SqlType& number :
         {SqlType::Float(), SqlType::Of(TypeKind::kMoney), SqlType::Decimal(kMaxPrecision, 0)}) {
        if (is || trimmed.empty()) break;
        try {
            Convert(text, type, number);
            is = true;
        } catch (const SqlError&) {
            // Not this one.
        }
    }
    call.Return(std::int64_t{is ? 1 : 0});
}

void IsDateFunction(FunctionCall& call) {
    // What a datetime can hold, which is less than what can be read.
    const auto date = call.IsNull(0) || call.Text(0).empty()
                          ? std::nullopt
                          : ParseDate(call.Text(0), {0, call.Services().dateFormat});
    call.Return(std::int64_t{date && RoundToType(*date, SqlType::DateTime()) ? 1 : 0});
}

// Type rules.

Bound IntOfText(Binding& call) {
    return {call.Call({call.Text(0)}), SqlType::Int()};
}

Bound BindDataLength(Binding& call) {
    const SqlType type = call.Type(0);
    return {call.Call({call.Plain(0), Code(type)}), SqlType::Int()};
}

template <TypeKind Kind>
Bound BindCharOf(Binding& call) {
    return {call.Call({call.Int(0)}), SqlType::Of(Kind, 1)};
}

constexpr SqlFunction kLen = Scalar<LenFunction>("ts_len", 1);
constexpr SqlFunction kDataLength = Scalar<DataLengthFunction>("ts_datalength", 2);
constexpr SqlFunction kAscii = Scalar<AsciiFunction>("ts_ascii", 1);
constexpr SqlFunction kUnicode = Scalar<UnicodeFunction>("ts_unicode", 1);
constexpr SqlFunction kChar = Scalar<CharFunction>("ts_char", 1);
constexpr SqlFunction kNChar = Scalar<NCharFunction>("ts_nchar", 1);
constexpr SqlFunction kIsNumeric = Scalar<IsNumericFunction>("ts_isnumeric", 1);
constexpr SqlFunction kIsDate = Scalar<IsDateFunction>("ts_isdate", 1);

constexpr FunctionEntry kEntries[] = {
    {"ascii", 1, 1, IntOfText, &kAscii},
    {"char", 1, 1, BindCharOf<TypeKind::kChar>, &kChar},
    {"datalength", 1, 1, BindDataLength, &kDataLength},
    {"isdate", 1, 1, IntOfText, &kIsDate},
    {"isnumeric", 1, 1, IntOfText, &kIsNumeric},
    {"len", 1, 1, IntOfText, &kLen},
    {"nchar", 1, 1, BindCharOf<TypeKind::kNChar>, &kNChar},
    {"unicode", 1, 1, IntOfText, &kUnicode},
};

}  // namespace

FunctionSet MeasureFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
