// Text functions. Positions and lengths count UTF-16 code units; comparisons go by the collation.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "text/utf8.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/types/convert.h"
#include "tsql/types/date_text.h"
#include "tsql/types/letter_case.h"
#include "tsql/types/like_pattern.h"

namespace vicenter::tsql::engine {

namespace {

// The longest text that SPACE makes, and REPLICATE of a varchar.
constexpr std::size_t kLongestText = 8000;
// What a varchar and an nvarchar without max may hold.
constexpr int kLongestVarChar = 8000;
constexpr int kLongestUnicode = 4000;
// Of varchar(max); SQLite takes no text of more than 1,000,000,000 bytes.
constexpr std::size_t kLongestResult = 1'000'000'000;

// A text folded character by character, so that a place found in it is a place in the text.
class FoldedText {
  public:
    FoldedText(const TextCollation& collation, std::string_view text) {
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t bytes = CharacterBytes(text, at);
            starts_.push_back(folded_.size());
            sources_.push_back(at);
            if (bytes == 1 && static_cast<unsigned char>(text[at]) < 0x80) {
                folded_ += LowerAscii(text[at]);
            } else {
                folded_ += collation.Fold(text.substr(at, bytes));
            }
            at += bytes;
        }
        starts_.push_back(folded_.size());
        sources_.push_back(text.size());
    }

    const std::string& Folded() const { return folded_; }
    // Where a part begins, at or behind a byte of the text, and the byte behind it; npos when there is none.
    std::pair<std::size_t, std::size_t> Find(std::string_view foldedPart, std::size_t from) const {
        std::size_t at = starts_[Index(sources_, from)];
        for (;;) {
            at = folded_.find(foldedPart, at);
            if (at == std::string::npos) return {at, at};
            const auto first = std::lower_bound(starts_.begin(), starts_.end(), at);
            const auto last = std::lower_bound(starts_.begin(), starts_.end(), at + foldedPart.size());
            if (*first == at && last != starts_.end() && *last == at + foldedPart.size()) {
                return {sources_[static_cast<std::size_t>(first - starts_.begin())],
                        sources_[static_cast<std::size_t>(last - starts_.begin())]};
            }
            ++at;
        }
    }

  private:
    static std::size_t Index(const std::vector<std::size_t>& places, std::size_t place) {
        return static_cast<std::size_t>(std::lower_bound(places.begin(), places.end(), place) -
                                        places.begin());
    }

    std::string folded_;
    std::vector<std::size_t> starts_;   // in folded_, per character
    std::vector<std::size_t> sources_;  // in the text, per character
};

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

void SubstringFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    std::int64_t start = call.Int(1);
    std::int64_t length = call.Int(2);
    if (length < 0) throw MakeError(537, {});
    if (start < 1) {
        length += start - 1;
        start = 1;
    }
    if (length <= 0) return call.Return(std::string_view());
    const std::string_view tail = TailUnits(call.Text(0), static_cast<std::size_t>(start - 1));
    call.Return(HeadUnits(tail, static_cast<std::size_t>(length)));
}

void CharIndexFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const std::string_view text = call.Text(1);
    const std::int64_t start = call.Count() > 2 ? std::max<std::int64_t>(call.Int(2), 1) : 1;
    const std::string part = FoldedText(call.Collation(), call.Text(0)).Folded();
    if (part.empty()) return call.Return(std::int64_t{0});
    const std::size_t from = text.size() - TailUnits(text, static_cast<std::size_t>(start - 1)).size();
    const auto found = FoldedText(call.Collation(), text).Find(part, from);
    if (found.first == std::string::npos) return call.Return(std::int64_t{0});
    call.Return(static_cast<std::int64_t>(UnitCount(text.substr(0, found.first))) + 1);
}

void PatIndexFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(static_cast<std::int64_t>(FindPattern(call.Collation(), call.Text(1), call.Text(0))));
}

void ReplaceFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const std::string_view text = call.Text(0);
    const std::string part = FoldedText(call.Collation(), call.Text(1)).Folded();
    if (part.empty()) return call.Return(text);
    const FoldedText folded(call.Collation(), text);
    std::string result;
    std::size_t at = 0;
    for (;;) {
        const auto found = folded.Find(part, at);
        if (found.first == std::string::npos) break;
        result += text.substr(at, found.first - at);
        result += call.Text(2);
        at = found.second;
    }
    result += text.substr(at);
    call.Return(std::string_view(result));
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
    if (number < 0 || number > 0x10FFFF || (number >= 0xD800 && number < 0xE000)) return;
    const auto code = static_cast<std::uint32_t>(number);
    std::string text;
    text::AppendUtf8(text, code);
    call.Return(std::string_view(text));
}

void QuoteNameFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const std::string_view mark = call.Count() > 1 ? call.Text(1) : "[";
    const char open = mark.empty() ? '[' : mark.front() == ']' ? '[' : mark.front();
    const char close = open == '[' ? ']' : open == '(' ? ')' : open == '{' ? '}' : open == '<' ? '>' : open;
    std::string text(1, open);
    for (const char c : call.Text(0)) {
        if (c == close) text += close;
        text += c;
    }
    text += close;
    call.Return(std::string_view(text));
}

template <TrailingBlanks Blanks>
void LikeFunction(FunctionCall& call) {
    if (call.IsNull(0) || call.IsNull(1)) return;
    const std::string_view escape = call.Count() > 2 && !call.IsNull(2) ? call.Text(2) : std::string_view();
    if (!escape.empty() && CharacterBytes(escape, 0) != escape.size())
        throw MakeError(506, {}, {escape, "LIKE"});
    const bool matches = MatchesPattern(call.Collation(), call.Text(0), call.Text(1), escape, Blanks);
    call.Return(std::int64_t{matches ? 1 : 0});
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
    const auto date = call.IsNull(0) || call.Text(0).empty() ? std::nullopt : ParseDate(call.Text(0));
    call.Return(std::int64_t{date && RoundToType(*date, SqlType::DateTime()) ? 1 : 0});
}

// Type rules.

Bound IntOfText(Binding& call) {
    return {call.Call({call.Text(0)}), SqlType::Int()};
}

Bound TextOfText(Binding& call) {
    const SqlType type = call.TextType(0, call.TextLength(0));
    return {call.Call({call.Text(0)}), type};
}

Bound BindDataLength(Binding& call) {
    const SqlType type = call.Type(0);
    return {call.Call({call.Plain(0), Code(type)}), SqlType::Int()};
}

Bound BindLeftRight(Binding& call) {
    const int length = call.LiteralInt(1, call.TextLength(0));
    return {call.Call({call.Text(0), call.Int(1)}), call.TextType(0, length)};
}

Bound BindSubstring(Binding& call) {
    const int length = call.LiteralInt(2, call.TextLength(0));
    return {call.Call({call.Text(0), call.Int(1), call.Int(2)}), call.TextType(0, length)};
}

Bound BindCharIndex(Binding& call) {
    std::vector<std::string> arguments{call.Text(0), call.Text(1)};
    if (call.Count() > 2) arguments.push_back(call.Int(2));
    return {call.Call(arguments), SqlType::Int()};
}

Bound BindPatIndex(Binding& call) {
    return {call.Call({call.Text(0), call.Text(1)}), SqlType::Int()};
}

Bound BindReplace(Binding& call) {
    const bool unicode = call.Type(0).IsUnicode() || call.Type(2).IsUnicode();
    return {call.Call({call.Text(0), call.Text(1), call.Text(2)}),
            unicode ? SqlType::NVarChar(kLongestUnicode) : SqlType::VarChar(kLongestVarChar)};
}

SqlType LongText(const Binding& call) {
    return call.TextType(0, call.Type(0).IsUnicode() ? kLongestUnicode : kLongestVarChar);
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
    return {call.Call({call.Text(0), call.Int(1), call.Int(2), call.Text(3)}), LongText(call)};
}

Bound BindStr(Binding& call) {
    const int width = call.Count() > 1 ? call.LiteralInt(1, kLongestVarChar) : 10;
    return {call.Call(
                {call.Real(0), call.Count() > 1 ? call.Int(1) : "10", call.Count() > 2 ? call.Int(2) : "0"}),
            SqlType::VarChar(width)};
}

template <TypeKind Kind>
Bound BindCharOf(Binding& call) {
    return {call.Call({call.Int(0)}), SqlType::Of(Kind, 1)};
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
    const int limit = unicode ? kLongestUnicode : kLongestVarChar;
    const TypeKind kind = unicode ? TypeKind::kNVarChar : TypeKind::kVarChar;
    const SqlType type = SqlType::Of(kind, isMax ? kMaxLength : std::min(length, limit));
    sql = "(" + sql + ")";
    if (isMax || length <= limit) return {sql, type};
    return {kConvertCall.Call({sql, Code(SqlType::Of(kind, kMaxLength)), Code(type), "0"}), type};
}

constexpr SqlFunction kLen = Scalar<LenFunction>("ts_len", 1);
constexpr SqlFunction kDataLength = Scalar<DataLengthFunction>("ts_datalength", 2);
constexpr SqlFunction kLeft = Scalar<LeftFunction>("ts_left", 2);
constexpr SqlFunction kRight = Scalar<RightFunction>("ts_right", 2);
constexpr SqlFunction kSubstring = Scalar<SubstringFunction>("ts_substring", 3);
constexpr SqlFunction kCharIndex = Scalar<CharIndexFunction>("ts_charindex", -1);
constexpr SqlFunction kPatIndex = Scalar<PatIndexFunction>("ts_patindex", 2);
constexpr SqlFunction kReplace = Scalar<ReplaceFunction>("ts_replace", 3);
constexpr SqlFunction kLTrim = Scalar<LTrimFunction>("ts_ltrim", 1);
constexpr SqlFunction kRTrim = Scalar<RTrimFunction>("ts_rtrim", 1);
constexpr SqlFunction kTrim = Scalar<TrimFunction>("ts_trim", 1);
constexpr SqlFunction kUpper = Scalar<UpperFunction>("ts_upper", 1);
constexpr SqlFunction kLower = Scalar<LowerFunction>("ts_lower", 1);
constexpr SqlFunction kReplicate = Scalar<ReplicateFunction>("ts_replicate", -1);
constexpr SqlFunction kSpace = Scalar<SpaceFunction>("ts_space", 1);
constexpr SqlFunction kStuff = Scalar<StuffFunction>("ts_stuff", 4);
constexpr SqlFunction kReverse = Scalar<ReverseFunction>("ts_reverse", 1);
constexpr SqlFunction kStr = Scalar<StrFunction>("ts_str", 3);
constexpr SqlFunction kAscii = Scalar<AsciiFunction>("ts_ascii", 1);
constexpr SqlFunction kUnicode = Scalar<UnicodeFunction>("ts_unicode", 1);
constexpr SqlFunction kNChar = Scalar<NCharFunction>("ts_nchar", 1);
constexpr SqlFunction kQuoteName = Scalar<QuoteNameFunction>("ts_quotename", -1);
constexpr SqlFunction kIsNumeric = Scalar<IsNumericFunction>("ts_isnumeric", 1);
constexpr SqlFunction kIsDate = Scalar<IsDateFunction>("ts_isdate", 1);

constexpr FunctionEntry kEntries[] = {
    {"ascii", 1, 1, IntOfText, &kAscii},
    {"char", 1, 1, BindCharOf<TypeKind::kChar>, &kNChar},
    {"charindex", 2, 3, BindCharIndex, &kCharIndex},
    {"concat", 2, kManyArguments, BindConcat},
    {"datalength", 1, 1, BindDataLength, &kDataLength},
    {"isdate", 1, 1, IntOfText, &kIsDate},
    {"isnumeric", 1, 1, IntOfText, &kIsNumeric},
    {"left", 2, 2, BindLeftRight, &kLeft},
    {"len", 1, 1, IntOfText, &kLen},
    {"lower", 1, 1, TextOfText, &kLower},
    {"ltrim", 1, 1, TextOfText, &kLTrim},
    {"nchar", 1, 1, BindCharOf<TypeKind::kNChar>, &kNChar},
    {"patindex", 2, 2, BindPatIndex, &kPatIndex},
    {"quotename", 1, 2, BindQuoteName, &kQuoteName},
    {"replace", 3, 3, BindReplace, &kReplace},
    {"replicate", 2, 2, BindReplicate, &kReplicate},
    {"reverse", 1, 1, TextOfText, &kReverse},
    {"right", 2, 2, BindLeftRight, &kRight},
    {"rtrim", 1, 1, TextOfText, &kRTrim},
    {"space", 1, 1, BindSpace, &kSpace},
    {"str", 1, 3, BindStr, &kStr},
    {"stuff", 4, 4, BindStuff, &kStuff},
    {"substring", 3, 3, BindSubstring, &kSubstring},
    {"trim", 1, 1, TextOfText, &kTrim},
    {"unicode", 1, 1, IntOfText, &kUnicode},
    {"upper", 1, 1, TextOfText, &kUpper},
};

constexpr const SqlFunction* kOthers[] = {&kLikeCall, &kUnicodeLikeCall};

}  // namespace

const SqlFunction kLikeCall = Scalar<LikeFunction<TrailingBlanks::kIgnored>>("ts_like", -1);
const SqlFunction kUnicodeLikeCall = Scalar<LikeFunction<TrailingBlanks::kCount>>("ts_nlike", -1);

FunctionSet TextFunctions() {
    return {kEntries, kOthers};
}

}  // namespace vicenter::tsql::engine
