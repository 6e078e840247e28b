// Functions that make texts of texts: parts, blanks, letters, repetition. Positions and lengths count UTF-16
// code units.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/types/letter_case.h"

namespace vicenter::tsql::engine {

namespace {

// The longest text that SPACE makes, and REPLICATE of a varchar.
constexpr auto kLongestText = static_cast<std::size_t>(kLongestVarChar);
// Of varchar(max); SQLite takes no text of more than 1,000,000,000 bytes.
constexpr std::size_t kLongestResult = 1'000'000'000;

void LeftFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    if (call.Int(1) < 0) throw MakeError(536, {}, {"left"});
    call.Return(HeadUnits(call.Text(0), static_cast<std::size_t>(call.Int(1))));
}

void RightFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    if (call.Int(1) < 0) throw MakeError(536, {}, {"right"});
    const std::string_view text = call.Text(0);
    const std::size_t units = UnitCount(text);
    const auto wanted = static_cast<std::size_t>(call.Int(1));
    call.Return(wanted >= units ? text : TailUnits(text, units - wanted));
}

// What the last two arguments name: from where, counted from 0, and how much.
struct Part {
    std::size_t skipped;
    std::size_t length;
};

Part PartOf(const FunctionCall& call) {
    std::int64_t start = call.Int(1);
    std::int64_t length = call.Int(2);
    if (length < 0) throw MakeError(537, {});
    if (start < 1) {
        length += start - 1;
        start = 1;
    }
    return {static_cast<std::size_t>(start - 1), static_cast<std::size_t>(std::max<std::int64_t>(length, 0))};
}

void SubstringFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const Part part = PartOf(call);
    if (part.length == 0) return call.Return(std::string_view());
    call.Return(HeadUnits(TailUnits(call.Text(0), part.skipped), part.length));
}

// ts_sub_bytes(bytes, start, length)
void SubBytesFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const Part part = PartOf(call);
    const std::string_view bytes = call.Text(0);
    const std::string_view taken = bytes.substr(std::min(part.skipped, bytes.size()), part.length);
    call.Return(Value(Bytes{std::string(taken)}), SqlType::Of(TypeKind::kVarBinary, kMaxLength));
}

void LTrimFunction(FunctionCall& call) {
    if (!call.IsNull(0)) call.Return(WithoutLeadingBlanks(call.Text(0)));
}

void RTrimFunction(FunctionCall& call) {
    if (!call.IsNull(0)) call.Return(WithoutTrailingBlanks(call.Text(0)));
}

void TrimFunction(FunctionCall& call) {
    if (!call.IsNull(0)) call.Return(WithoutTrailingBlanks(WithoutLeadingBlanks(call.Text(0))));
}

void UpperFunction(FunctionCall& call) {
    if (!call.IsNull(0)) call.Return(std::string_view(WithCase(call.Text(0), true)));
}

void LowerFunction(FunctionCall& call) {
    if (!call.IsNull(0)) call.Return(std::string_view(WithCase(call.Text(0), false)));
}

void ReplicateFunction(FunctionCall& call) {
    if (call.AnyNull() || call.Int(1) < 0) return;
    const std::string_view text = call.Text(0);
    if (text.empty()) return call.Return(text);
    // Checks of older account sets do not say how long the text may grow.
    const std::size_t most = call.Count() > 2 ? static_cast<std::size_t>(call.Int(2)) : kLongestText;
    const std::size_t count = std::min(static_cast<std::size_t>(call.Int(1)), most / UnitCount(text) + 1);
    if (count > kLongestResult / text.size()) throw MakeError(8152, {});
    std::string result;
    result.reserve(count * text.size());
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    call.Return(HeadUnits(result, most));
}

void SpaceFunction(FunctionCall& call) {
    if (call.IsNull(0) || call.Int(0) < 0) return;
    const auto count = std::min<std::size_t>(static_cast<std::size_t>(call.Int(0)), kLongestText);
    call.Return(std::string_view(std::string(count, ' ')));
}

void StuffFunction(FunctionCall& call) {
    if (call.IsNull(0) || call.IsNull(1) || call.IsNull(2)) return;
    const std::string_view text = call.Text(0);
    const std::int64_t start = call.Int(1);
    const std::int64_t length = call.Int(2);
    if (start < 1 || length < 0 || start > static_cast<std::int64_t>(UnitCount(text))) return;
    const std::string_view head = HeadUnits(text, static_cast<std::size_t>(start - 1));
    const std::string_view tail = TailUnits(text.substr(head.size()), static_cast<std::size_t>(length));
    std::string result(head);
    if (!call.IsNull(3)) result += call.Text(3);
    result += tail;
    // Checks of older account sets do not say how long the text may grow.
    if (call.Count() > 4 && UnitCount(result) > static_cast<std::size_t>(call.Int(4)))
        throw MakeError(8152, {});
    call.Return(std::string_view(result));
}

void ReverseFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const std::string_view text = call.Text(0);
    std::string result;
    std::vector<std::string_view> characters;
    for (std::size_t at = 0; at < text.size(); at += characters.back().size()) {
        characters.push_back(text.substr(at, CharacterBytes(text, at)));
    }
    for (auto character = characters.rbegin(); character != characters.rend(); ++character)
        result += *character;
    call.Return(std::string_view(result));
}

// With exact halves away from zero, where printf may take the even digit.
std::string FixedText(double number, int decimals) {
    const double factor = std::pow(10.0, decimals);
    const double scaled = number * factor;
    if (std::fabs(scaled) < 1e15 && scaled / factor == number &&
        std::fabs(scaled - std::trunc(scaled)) == 0.5)
        number = std::round(scaled) / factor;
    char buffer[400];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, number);
    return buffer;
}

// ts_str(number, length, decimals)
void StrFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const std::int64_t length = call.Int(1);
    const std::int64_t decimals = std::clamp<std::int64_t>(call.Int(2), 0, 16);
    if (length < 0) return;
    std::string text = FixedText(call.Real(0), static_cast<int>(decimals));
    const auto width = static_cast<std::size_t>(length);
    const std::size_t whole = text.find('.');
    if ((whole == std::string::npos ? text.size() : whole) > width)
        return call.Return(std::string_view(std::string(width, '*')));
    if (text.size() > width) {
        // Decimals that do not fit are rounded away.
        const std::size_t room = width > whole + 1 ? width - whole - 1 : 0;
        text = FixedText(call.Real(0), static_cast<int>(room));
    }
    if (text.size() < width) text.insert(0, width - text.size(), ' ');
    call.Return(std::string_view(text));
}

void QuoteNameFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    if (call.Count() > 1 && call.IsNull(1)) return;
    constexpr std::size_t kLongestName = 128;
    constexpr std::string_view kOpening = "[({<'\"`";
    constexpr std::string_view kClosing = "])}>'\"`";
    const std::string_view mark = call.Count() > 1 ? call.Text(1) : "[";
    std::size_t pair = mark.empty() ? 0 : kOpening.find(mark.front());
    if (pair == std::string_view::npos) pair = kClosing.find(mark.front());
    if (pair == std::string_view::npos || UnitCount(call.Text(0)) > kLongestName) return;
    const char open = kOpening[pair];
    const char close = kClosing[pair];
    std::string text(1, open);
    for (const char c : call.Text(0)) {
        if (c == close) text += close;
        text += c;
    }
    text += close;
    call.Return(std::string_view(text));
}

// Type rules.

Bound TextOfText(Binding& call) {
    const SqlType type = call.TextType(0, call.TextLength(0));
    return {call.Call({call.Text(0)}), type};
}

Bound BindLeftRight(Binding& call) {
    const int length = call.LiteralInt(1, call.TextLength(0));
    return {call.Call({call.Text(0), call.Int(1)}), call.TextType(0, length)};
}

constexpr SqlFunction kSubBytes = Scalar<SubBytesFunction>("ts_sub_bytes", 3);

Bound BindSubstring(Binding& call) {
    if (call.Type(0).IsBinary()) {
        const SqlType type = SqlType::Of(TypeKind::kVarBinary, call.Type(0).length);
        return {kSubBytes.Call({call.Plain(0), call.Int(1), call.Int(2)}), type};
    }
    const int length = call.LiteralInt(2, call.TextLength(0));
    return {call.Call({call.Text(0), call.Int(1), call.Int(2)}), call.TextType(0, length)};
}

SqlType LongText(const Binding& call) {
    return call.TextType(0, call.Type(0).IsUnicode() ? kLongestNVarChar : kLongestVarChar);
}

Bound BindReplicate(Binding& call) {
    SqlType type = LongText(call);
    int most = type.length;
    if (call.Type(0).IsMax()) {
        type.length = kMaxLength;
        most = std::numeric_limits<int>::max();
    }
    return {call.Call({call.Text(0), call.Int(1), std::to_string(most)}), type};
}

Bound BindSpace(Binding& call) {
    return {call.Call({call.Int(0)}), SqlType::VarChar(kLongestVarChar)};
}

Bound BindStuff(Binding& call) {
    const bool unicode = call.Type(0).IsUnicode() || call.Type(3).IsUnicode();
    const TypeKind kind = unicode ? TypeKind::kNVarChar : TypeKind::kVarChar;
    std::vector<std::string> arguments{call.Text(0), call.Int(1), call.Int(2), call.Text(3)};
    if (call.Type(0).IsMax() || call.Type(3).IsMax())
        return {call.Call(arguments), SqlType::Of(kind, kMaxLength)};
    const int longest = unicode ? kLongestNVarChar : kLongestVarChar;
    arguments.push_back(std::to_string(longest));
    return {call.Call(arguments), SqlType::Of(kind, longest)};
}

Bound BindStr(Binding& call) {
    const int width = call.Count() > 1 ? call.LiteralInt(1, kLongestVarChar) : 10;
    return {call.Call(
                {call.Real(0), call.Count() > 1 ? call.Int(1) : "10", call.Count() > 2 ? call.Int(2) : "0"}),
            SqlType::VarChar(width)};
}

Bound BindQuoteName(Binding& call) {
    std::vector<std::string> arguments{call.Text(0)};
    if (call.Count() > 1) arguments.push_back(call.Text(1));
    return {call.Call(arguments), SqlType::NVarChar(258)};
}

// SQLite does it: NULL counts as the empty text.
Bound BindConcat(Binding& call) {
    std::string sql;
    int length = 0;
    bool isMax = false;
    bool unicode = false;
    for (std::size_t i = 0; i < call.Count(); ++i) {
        const int part = call.TextLength(i);
        isMax = isMax || part == kMaxLength;
        length += part == kMaxLength ? 0 : part;
        unicode = unicode || call.Type(i).IsUnicode();
        sql += (i == 0 ? "ifnull(" : " || ifnull(") + call.Text(i) + ", '')";
    }
    const int limit = unicode ? kLongestNVarChar : kLongestVarChar;
    const TypeKind kind = unicode ? TypeKind::kNVarChar : TypeKind::kVarChar;
    const SqlType type = SqlType::Of(kind, isMax ? kMaxLength : std::min(length, limit));
    sql = "(" + sql + ")";
    if (isMax || length <= limit) return {sql, type};
    return {kConvertCall.Call({sql, Code(SqlType::Of(kind, kMaxLength)), Code(type), "0"}), type};
}

constexpr SqlFunction kLeft = Scalar<LeftFunction>("ts_left", 2);
constexpr SqlFunction kRight = Scalar<RightFunction>("ts_right", 2);
constexpr SqlFunction kSubstring = Scalar<SubstringFunction>("ts_substring", 3);
constexpr SqlFunction kLTrim = Scalar<LTrimFunction>("ts_ltrim", 1);
constexpr SqlFunction kRTrim = Scalar<RTrimFunction>("ts_rtrim", 1);
constexpr SqlFunction kTrim = Scalar<TrimFunction>("ts_trim", 1);
constexpr SqlFunction kUpper = Scalar<UpperFunction>("ts_upper", 1);
constexpr SqlFunction kLower = Scalar<LowerFunction>("ts_lower", 1);
constexpr SqlFunction kReplicate = Scalar<ReplicateFunction>("ts_replicate", -1);
constexpr SqlFunction kSpace = Scalar<SpaceFunction>("ts_space", 1);
constexpr SqlFunction kStuff = Scalar<StuffFunction>("ts_stuff", -1);
constexpr SqlFunction kReverse = Scalar<ReverseFunction>("ts_reverse", 1);
constexpr SqlFunction kStr = Scalar<StrFunction>("ts_str", 3);
constexpr SqlFunction kQuoteName = Scalar<QuoteNameFunction>("ts_quotename", -1);

constexpr FunctionEntry kEntries[] = {
    {"concat", 2, kMostTexts, BindConcat},
    {"left", 2, 2, BindLeftRight, &kLeft},
    {"lower", 1, 1, TextOfText, &kLower},
    {"ltrim", 1, 1, TextOfText, &kLTrim},
    {"quotename", 1, 2, BindQuoteName, &kQuoteName},
    {"replicate", 2, 2, BindReplicate, &kReplicate},
    {"reverse", 1, 1, TextOfText, &kReverse},
    {"right", 2, 2, BindLeftRight, &kRight},
    {"rtrim", 1, 1, TextOfText, &kRTrim},
    {"space", 1, 1, BindSpace, &kSpace},
    {"str", 1, 3, BindStr, &kStr},
    {"stuff", 4, 4, BindStuff, &kStuff},
    {"substring", 3, 3, BindSubstring, &kSubstring},
    {"trim", 1, 1, TextOfText, &kTrim},
    {"upper", 1, 1, TextOfText, &kUpper},
};

}  // namespace

FunctionSet TextFunctions() {
    static constexpr const SqlFunction* kOthers[] = {&kSubBytes};
    return {kEntries, kOthers};
}

}  // namespace vicenter::tsql::engine
