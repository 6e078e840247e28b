// Text functions. Positions and lengths count UTF-16 code units; comparisons go by the collation.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "automation/variant.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/types/convert.h"
#include "tsql/types/date_text.h"
#include "tsql/types/like_pattern.h"

namespace vicenter::tsql::engine {

namespace {

// The longest text that SPACE makes, and REPLICATE of a varchar.
constexpr std::size_t kLongestText = 8000;
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
                folded_ += text[at] >= 'A' && text[at] <= 'Z' ? static_cast<char>(text[at] + 32) : text[at];
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

// Capital and small letters of ASCII, Latin-1, Greek and Cyrillic.
std::string WithCase(std::string_view text, bool upper) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t bytes = CharacterBytes(text, at);
        if (bytes == 2) {
            const auto lead = static_cast<unsigned char>(text[at]);
            const auto trail = static_cast<unsigned char>(text[at + 1]);
            std::uint32_t code = (lead & 0x1FU) << 6 | (trail & 0x3FU);
            const auto within = [&code](std::uint32_t low, std::uint32_t high) {
                return code >= low && code <= high;
            };
            if (upper) {
                if ((within(0xE0, 0xFE) && code != 0xF7) || (within(0x3B1, 0x3C9) && code != 0x3C2) ||
                    within(0x430, 0x44F))
                    code -= 32;
                else if (within(0x450, 0x45F))
                    code -= 80;
            } else {
                if ((within(0xC0, 0xDE) && code != 0xD7) || within(0x391, 0x3A9) || within(0x410, 0x42F))
                    code += 32;
                else if (within(0x400, 0x40F))
                    code += 80;
            }
            result += static_cast<char>(0xC0 | code >> 6);
            result += static_cast<char>(0x80 | (code & 0x3F));
        } else if (bytes == 1) {
            char c = text[at];
            if (upper && c >= 'a' && c <= 'z') c = static_cast<char>(c - 32);
            if (!upper && c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
            result += c;
        } else {
            result += text.substr(at, bytes);
        }
        at += bytes;
    }
    return result;
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

std::uint32_t CodePoint(std::string_view text) {
    const std::size_t bytes = CharacterBytes(text, 0);
    auto code = static_cast<std::uint32_t>(static_cast<unsigned char>(text[0]));
    if (bytes == 1) return code;
    code &= 0xFFU >> (bytes + 1);
    for (std::size_t i = 1; i < bytes; ++i)
        code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
    return code;
}

void UnicodeFunction(FunctionCall& call) {
    if (call.IsNull(0) || call.Text(0).empty()) return;
    call.Return(static_cast<std::int64_t>(CodePoint(call.Text(0))));
}

void NCharFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    const std::int64_t number = call.Int(0);
    if (number < 0 || number > 0x10FFFF || (number >= 0xD800 && number < 0xE000)) return;
    const auto code = static_cast<std::uint32_t>(number);
    std::string text;
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | code >> 12);
        text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | code >> 18);
        text += static_cast<char>(0x80 | (code >> 12 & 0x3F));
        text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
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
    std::string text(call.Text(0));
    std::erase(text, ',');
    std::erase(text, '$');
    if (automation::ParseDouble(text)) return call.Return(std::int64_t{1});
    const std::string_view trimmed = WithoutTrailingBlanks(WithoutLeadingBlanks(call.Text(0)));
    const bool lone = trimmed == "+" || trimmed == "-" || trimmed == "." || trimmed == "$";
    call.Return(std::int64_t{lone ? 1 : 0});
}

void IsDateFunction(FunctionCall& call) {
    call.Return(std::int64_t{!call.IsNull(0) && !call.Text(0).empty() && ParseDate(call.Text(0)) ? 1 : 0});
}

}  // namespace

void RegisterTextFunctions(sqlite3* database, FunctionServices& services) {
    Define<LenFunction>(database, services, "ts_len", 1);
    Define<DataLengthFunction>(database, services, "ts_datalength", 2);
    Define<LeftFunction>(database, services, "ts_left", 2);
    Define<RightFunction>(database, services, "ts_right", 2);
    Define<SubstringFunction>(database, services, "ts_substring", 3);
    Define<CharIndexFunction>(database, services, "ts_charindex", -1);
    Define<PatIndexFunction>(database, services, "ts_patindex", 2);
    Define<ReplaceFunction>(database, services, "ts_replace", 3);
    Define<LTrimFunction>(database, services, "ts_ltrim", 1);
    Define<RTrimFunction>(database, services, "ts_rtrim", 1);
    Define<TrimFunction>(database, services, "ts_trim", 1);
    Define<UpperFunction>(database, services, "ts_upper", 1);
    Define<LowerFunction>(database, services, "ts_lower", 1);
    Define<ReplicateFunction>(database, services, "ts_replicate", -1);
    Define<SpaceFunction>(database, services, "ts_space", 1);
    Define<StuffFunction>(database, services, "ts_stuff", 4);
    Define<ReverseFunction>(database, services, "ts_reverse", 1);
    Define<StrFunction>(database, services, "ts_str", 3);
    Define<UnicodeFunction>(database, services, "ts_unicode", 1);
    Define<NCharFunction>(database, services, "ts_nchar", 1);
    Define<QuoteNameFunction>(database, services, "ts_quotename", -1);
    Define<LikeFunction<TrailingBlanks::kIgnored>>(database, services, "ts_like", -1);
    Define<LikeFunction<TrailingBlanks::kCount>>(database, services, "ts_nlike", -1);
    Define<IsNumericFunction>(database, services, "ts_isnumeric", 1);
    Define<IsDateFunction>(database, services, "ts_isdate", 1);
}

}  // namespace vicenter::tsql::engine
