#include "support/json_decoder.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

#include "automation/error.h"
#include "platform/scripting/dictionary.h"
#include "support/json_text.h"
#include "support/vbs_json.h"
#include "text/ascii.h"
#include "text/hex.h"
#include "text/utf8.h"

namespace vicenter::support {

using automation::Error;
using automation::Variant;

namespace {

// An object that claims more entries than this grows as it is read.
constexpr std::size_t kMostReserved = 64;
constexpr const char* kSource = "VbsJson";

[[noreturn]] void Fail(const char* text) {
    throw Error(json_error::kNumber, text, kSource);
}

using text::AppendUtf8;
using text::IsDigit;

// Makes the value of an empty variant in its place: assigning would move and destroy each value once more.
template <class T>
void Place(Variant& empty, T&& value) {
    std::construct_at(&empty, std::forward<T>(value));
}

// A match of the number pattern, taken apart on the way over it.
struct NumberMatch {
    const char* begin;
    const char* end;
    bool negative = false;
    std::uint64_t digits = 0;       // all digits as one integer, while they fit
    int significant = 0;            // digits from the first that is not 0
    std::int64_t exponent = 0;      // of ten, for `digits`
    std::int64_t leadingPower = 0;  // power of ten of the first digit that is not 0

    void Add(char digit) {
        if (significant == 0 && digit == '0') return;
        if (significant < 19) digits = digits * 10 + static_cast<unsigned>(digit - '0');
        ++significant;
    }
};

// begin lies at a digit, or at a "-" before one.
NumberMatch MatchNumber(const char* begin, const char* textEnd) {
    NumberMatch match{begin, begin};
    const char* p = begin;
    if (*p == '-') {
        match.negative = true;
        ++p;
    }
    if (*p == '0') {
        ++p;
    } else {
        for (; p != textEnd && IsDigit(*p); ++p)
            match.Add(*p);
    }
    match.leadingPower = match.significant - 1;
    if (textEnd - p >= 2 && *p == '.' && IsDigit(p[1])) {
        const char* fraction = ++p;
        for (; p != textEnd && IsDigit(*p); ++p) {
            match.Add(*p);
            if (match.significant == 1 && match.leadingPower < 0) match.leadingPower = -(p - fraction + 1);
        }
        match.exponent = -(p - fraction);
    }
    if (p != textEnd && (*p == 'e' || *p == 'E')) {
        const char* e = p + 1;
        const bool minus = e != textEnd && *e == '-';
        if (e != textEnd && (*e == '-' || *e == '+')) ++e;
        if (e != textEnd && IsDigit(*e)) {
            std::int64_t power = 0;
            for (; e != textEnd && IsDigit(*e); ++e)
                power = std::min<std::int64_t>(power * 10 + (*e - '0'), 1'000'000'000'000);
            match.exponent += minus ? -power : power;
            match.leadingPower += minus ? -power : power;
            p = e;
        }
    }
    match.end = p;
    return match;
}

double ToDouble(const NumberMatch& match) {
    static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                         1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                         1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    // Both factors are exact doubles, so that their product or quotient is rounded once.
    if (match.significant <= 19 && match.digits <= (std::uint64_t{1} << 53) && match.exponent >= -22 &&
        match.exponent <= 22) {
        double value = static_cast<double>(match.digits);
        if (match.exponent < 0) {
            value /= kPowers[-match.exponent];
        } else {
            value *= kPowers[match.exponent];
        }
        return match.negative ? -value : value;
    }
    if (match.significant == 0) return match.negative ? -0.0 : 0.0;
    double value = 0;
    const auto result = std::from_chars(match.begin, match.end, value);
    if (result.ec == std::errc::result_out_of_range) {
        if (match.leadingPower > 0) throw Error(automation::error_number::kOverflow, {}, kSource);
        return 0;  // nearer to zero than any double
    }
    return value;
}

}  // namespace

Variant JsonDecoder::Decode() {
    SkipWhitespace();
    Variant value;
    ScanValue(value, 0);
    return value;
}

void JsonDecoder::SkipWhitespace() {
    while (place_ != end_ && (*place_ == ' ' || *place_ == '\t' || *place_ == '\r' || *place_ == '\n'))
        ++place_;
}

bool JsonDecoder::AtWord(std::string_view word) const {
    return static_cast<std::size_t>(end_ - place_) >= word.size() &&
           std::string_view(place_, word.size()) == word;
}

void JsonDecoder::ScanValue(Variant& value, int depth) {
    if (place_ == end_) Fail(json_error::kNoValue);
    switch (*place_) {
        case '"':
            ++place_;
            Place(value, std::string(ScanString()));
            return;
        case '{':
            ++place_;
            ScanObject(value, depth + 1);
            return;
        case '[':
            ++place_;
            ScanArray(value, depth + 1);
            return;
        case 'n':
            if (!AtWord("null")) break;
            place_ += 4;
            value = Variant::Null();
            return;
        case 't':
            if (!AtWord("true")) break;
            place_ += 4;
            Place(value, true);
            return;
        case 'f':
            if (!AtWord("false")) break;
            place_ += 5;
            Place(value, false);
            return;
        default:
            break;
    }
    ScanNumber(value);
}

void JsonDecoder::ScanObject(Variant& value, int depth) {
    if (depth > VbsJson::kMaxDepth) Fail(json_error::kTooDeep);
    auto dictionary = std::make_shared<scripting::Dictionary>();
    SkipWhitespace();
    if (At('}')) {
        ++place_;
        Place(value, automation::ObjectRef(std::move(dictionary)));
        return;
    }
    if (!At('"')) Fail(json_error::kPropertyName);
    dictionary->Reserve(usualCount_);
    while (true) {
        ++place_;
        const std::string_view key = ScanString();
        Variant* item = dictionary->AddPlace(key);
        Variant surplus;
        const bool repeated = item == nullptr;
        if (repeated) item = &surplus;
        SkipWhitespace();
        if (!At(':')) Fail(json_error::kColon);
        ++place_;
        SkipWhitespace();
        ScanValue(*item, depth);
        if (repeated) throw Error(automation::error_number::kKeyAlreadyExists, {}, kSource);
        SkipWhitespace();
        if (At('}')) break;
        if (!At(',')) Fail(json_error::kComma);
        ++place_;
        SkipWhitespace();
        if (!At('"')) Fail(json_error::kPropertyName);
    }
    ++place_;
    usualCount_ = std::min(dictionary->Count(), kMostReserved);
    Place(value, automation::ObjectRef(std::move(dictionary)));
}

void JsonDecoder::ScanArray(Variant& value, int depth) {
    if (depth > VbsJson::kMaxDepth) Fail(json_error::kTooDeep);
    automation::VariantArray items;
    SkipWhitespace();
    if (At(']')) {
        ++place_;
        value = Variant(std::move(items));
        return;
    }
    while (true) {
        ScanValue(items.emplace_back(), depth);
        SkipWhitespace();
        if (At(']')) break;
        if (!At(',')) Fail(json_error::kComma);
        ++place_;
        SkipWhitespace();
    }
    ++place_;
    value = Variant(std::move(items));
}

std::string_view JsonDecoder::ScanString() {
    const char* begin = place_;
    const char* stop = FindSpecial(begin, end_);
    if (stop != end_ && *stop == '"') {
        place_ = stop + 1;
        return {begin, static_cast<std::size_t>(stop - begin)};
    }
    ScanEscapes(begin);
    return scratch_;
}

void JsonDecoder::ScanEscapes(const char* from) {
    scratch_.clear();
    place_ = from;
    while (true) {
        const char* stop = FindSpecial(place_, end_);
        if (stop == end_) Fail(json_error::kUnterminatedString);
        scratch_.append(place_, stop);
        place_ = stop + 1;
        if (*stop == '"') return;
        if (*stop != '\\') Fail(json_error::kControlCharacter);
        ScanEscape();
    }
}

void JsonDecoder::ScanEscape() {
    if (place_ == end_) Fail(json_error::kEscape);
    switch (*place_++) {
        case '"':
            scratch_ += '"';
            return;
        case '\\':
            scratch_ += '\\';
            return;
        case '/':
            scratch_ += '/';
            return;
        case 'b':
            scratch_ += '\b';
            return;
        case 'f':
            scratch_ += '\f';
            return;
        case 'n':
            scratch_ += '\n';
            return;
        case 'r':
            scratch_ += '\r';
            return;
        case 't':
            scratch_ += '\t';
            return;
        case 'u':
            break;
        default:
            Fail(json_error::kEscape);
    }
    unsigned code = ScanHexadecimal();
    if (code >= 0xD800 && code <= 0xDBFF && end_ - place_ >= 2 && place_[0] == '\\' && place_[1] == 'u') {
        const char* second = place_;
        place_ += 2;
        const unsigned low = ScanHexadecimal();
        if (low >= 0xDC00 && low <= 0xDFFF) {
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        } else {
            place_ = second;  // not its other half: an escape of its own
        }
    }
    AppendUtf8(scratch_, code >= 0xD800 && code <= 0xDFFF ? 0xFFFD : code);
}

unsigned JsonDecoder::ScanHexadecimal() {
    if (end_ - place_ < 4) Fail(json_error::kEscape);
    unsigned code = 0;
    for (int i = 0; i < 4; ++i) {
        const int digit = text::HexValue(*place_++);
        if (digit < 0) Fail(json_error::kEscape);
        code = code * 16 + static_cast<unsigned>(digit);
    }
    return code;
}

void JsonDecoder::ScanNumber(Variant& value) {
    if (!numberKnown_ || number_ < place_) {
        number_ = place_;
        while (number_ != end_ && !IsDigit(*number_) &&
               !(*number_ == '-' && end_ - number_ >= 2 && IsDigit(number_[1]))) {
            ++number_;
        }
        numberKnown_ = true;
    }
    if (number_ == end_) Fail(json_error::kNoValue);
    const NumberMatch match = MatchNumber(number_, end_);
    Place(value, ToDouble(match));
    if (match.begin == place_) {
        place_ = match.end;
    } else {
        AdvanceUnits(static_cast<std::size_t>(match.end - match.begin));
    }
}

// Moves on by UTF-16 code units. In the middle of a pair the place is within the character's bytes, where
// nothing that could follow a value begins.
void JsonDecoder::AdvanceUnits(std::size_t units) {
    const auto continues = [&](std::ptrdiff_t i) { return i < end_ - place_ && (place_[i] & 0xC0) == 0x80; };
    for (; units > 0 && place_ != end_; --units) {
        const auto lead = static_cast<unsigned char>(*place_);
        if (lead >= 0xF0 && continues(1) && continues(2) && continues(3)) {
            if (units == 1) {
                place_ += 2;
                return;
            }
            place_ += 4;
            --units;
        } else if (lead >= 0xE0 && lead < 0xF0 && continues(1) && continues(2)) {
            place_ += 3;
        } else if (lead >= 0xC0 && lead < 0xE0 && continues(1)) {
            place_ += 2;
        } else {
            ++place_;
        }
    }
}

}  // namespace vicenter::support
