#include "store/number_text.h"

#include <algorithm>

#include "automation/error.h"
#include "platform/system/utf8.h"

namespace vicenter::store {

using automation::Decimal;

namespace {

constexpr char kCurrency = '$';  // stands for every currency sign
constexpr int kQuotientDecimals = 18;
constexpr int kDeepestBrackets = 64;  // within a calculation

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool AllDigits(std::string_view text) {
    return std::all_of(text.begin(), text.end(), IsDigit);
}

bool IsAnyBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\u00A0' ||
           (c >= u'\u2000' && c <= u'\u200A') || c == u'\u202F' || c == u'\u205F' || c == u'\u3000';
}

// Marks that other programs put beside a text and nobody sees.
bool IsInvisible(char16_t c) {
    return c == u'\u00AD' || (c >= u'\u200B' && c <= u'\u200F') || (c >= u'\u202A' && c <= u'\u202E') ||
           c == u'\u2060' || (c >= u'\u2066' && c <= u'\u2069') || c == u'\uFEFF';
}

// The bytes that blanks and marks begin with. Most texts hold none of those: ASCII without blanks, and
// Chinese, whose common characters begin with others.
constexpr std::string_view kFirstBytesOfMarks = "\xC2\xE2\xEF";
constexpr std::string_view kFirstBytesOfBlanks = " \t\r\n\xC2\xE2\xE3\xEF";

// The ASCII character that a character stands for in a number; '\0' for one that has no place there.
char PlainCharacter(char16_t c) {
    if (IsAnyBlank(c)) return ' ';
    if (c >= u'\uFF01' && c <= u'\uFF5E') c = static_cast<char16_t>(c - u'\uFF01' + u'!');
    switch (c) {
        case u'\u2212':  // minus
        case u'\u2013':  // en dash, as text programs make of it
        case u'\uFE63':
            return '-';
        case u'\u00D7':
            return '*';
        case u'\u00F7':
            return '/';
        case u'\u00A5':  // yen and yuan
        case u'\uFFE5':
        case u'\u20AC':  // euro
        case u'\u00A3':  // pound
        case u'\uFFE1':
        case u'\u5143':  // the word yuan
        case u'$':
            return kCurrency;
        default:
            return c > u' ' && c < u'\u007F' ? static_cast<char>(c) : '\0';
    }
}

std::string_view Trimmed(std::string_view text) {
    return system::TrimBlanks(text);
}

// The text in plain characters without blanks around; nothing when one of them has no place in a number.
std::optional<std::string> PlainCharacters(std::string_view text) {
    std::string plain;
    for (const char16_t c : system::ToUtf16(text)) {
        if (IsInvisible(c)) continue;
        const char one = PlainCharacter(c);
        if (one == '\0') return std::nullopt;
        plain += one;
    }
    return std::string(Trimmed(plain));
}

// Digits with thousands separators in their places or without any.
std::optional<std::string> WholeDigits(std::string_view text) {
    constexpr std::size_t kGroup = 3;
    std::string digits;
    const bool grouped = text.find(',') != std::string_view::npos;
    for (bool first = true;; first = false) {
        const std::size_t comma = text.find(',');
        const std::string_view group = text.substr(0, comma);
        if (!AllDigits(group)) return std::nullopt;
        if (grouped && (group.size() > kGroup || group.empty() || (!first && group.size() != kGroup)))
            return std::nullopt;
        digits += group;
        if (comma == std::string_view::npos) return digits;
        text.remove_prefix(comma + 1);
    }
}

// A number without sign and currency.
std::optional<std::string> Magnitude(std::string_view text) {
    const std::size_t point = text.find('.');
    const std::string_view fraction = point == std::string_view::npos ? "" : text.substr(point + 1);
    const std::optional<std::string> whole = WholeDigits(text.substr(0, point));
    if (!whole || !AllDigits(fraction) || (whole->empty() && fraction.empty())) return std::nullopt;
    return point == std::string_view::npos ? *whole : *whole + "." + std::string(fraction);
}

// What stands around a number: a sign, a currency sign, brackets, each at most once.
struct Dress {
    bool signedNumber = false;
    bool negative = false;
    bool currency = false;

    // Takes one piece off; false when there is none left.
    bool TakeOff(std::string_view& text) {
        if (text.empty()) return false;
        const char head = text.front();
        const char tail = text.back();
        if (!currency && (head == kCurrency || tail == kCurrency)) {
            currency = true;
            head == kCurrency ? text.remove_prefix(1) : text.remove_suffix(1);
            return true;
        }
        if (signedNumber) return false;
        if (head == '-' || head == '+') {
            text.remove_prefix(1);
        } else if (tail == '-') {
            text.remove_suffix(1);
        } else if (head == '(' && tail == ')' && text.size() > 1) {
            text.remove_prefix(1);
            text.remove_suffix(1);
        } else {
            return false;
        }
        signedNumber = true;
        negative = head != '+';
        return true;
    }
};

std::optional<std::string> ReadPlain(std::string_view text) {
    Dress dress;
    while (dress.TakeOff(text))
        text = Trimmed(text);
    std::optional<std::string> number = Magnitude(text);
    if (!number) return std::nullopt;
    const bool zero = number->find_first_not_of("0.") == std::string::npos;
    return dress.negative && !zero ? "-" + *number : *number;
}

// "2024-01-02", "1/2/2024".
bool LooksLikeDate(std::string_view text) {
    for (const char separator : {'-', '/'}) {
        const std::size_t first = text.find(separator);
        const std::size_t last = text.rfind(separator);
        if (first == std::string_view::npos || first == last) continue;
        const std::string_view middle = text.substr(first + 1, last - first - 1);
        if (AllDigits(text.substr(0, first)) && AllDigits(middle) && AllDigits(text.substr(last + 1)))
            return true;
    }
    return false;
}

// expression: term {(+|-) term}; term: factor {(*|/) factor}; factor: [+|-] number or bracketed expression.
class Calculator {
  public:
    explicit Calculator(std::string_view text) : text_(text) {}

    std::optional<Decimal> Run() {
        const std::optional<Decimal> value = Expression(0);
        SkipBlanks();
        return value && at_ == text_.size() ? value : std::nullopt;
    }

  private:
    void SkipBlanks() {
        while (at_ < text_.size() && text_[at_] == ' ')
            ++at_;
    }
    bool Take(char c) {
        SkipBlanks();
        if (at_ >= text_.size() || text_[at_] != c) return false;
        ++at_;
        return true;
    }

    std::optional<Decimal> Expression(int depth) {
        std::optional<Decimal> sum = Term(depth);
        while (sum) {
            const bool plus = Take('+');
            if (!plus && !Take('-')) break;
            const std::optional<Decimal> next = Term(depth);
            if (!next) return std::nullopt;
            sum = plus ? Decimal::Add(*sum, *next) : Decimal::Subtract(*sum, *next);
        }
        return sum;
    }

    std::optional<Decimal> Term(int depth) {
        std::optional<Decimal> product = Factor(depth);
        while (product) {
            const bool times = Take('*');
            if (!times && !Take('/')) break;
            const std::optional<Decimal> next = Factor(depth);
            if (!next) return std::nullopt;
            product = times ? Decimal::Multiply(*product, *next)
                            : Decimal::Divide(*product, *next, kQuotientDecimals).Normalized();
        }
        return product;
    }

    std::optional<Decimal> Factor(int depth) {
        if (depth > kDeepestBrackets) return std::nullopt;
        if (Take('+')) return Factor(depth + 1);
        if (Take('-')) {
            const std::optional<Decimal> value = Factor(depth + 1);
            return value ? std::optional(value->Negated()) : std::nullopt;
        }
        if (Take('(')) {
            const std::optional<Decimal> value = Expression(depth + 1);
            return Take(')') ? value : std::nullopt;
        }
        const std::size_t start = at_;
        while (at_ < text_.size() && (IsDigit(text_[at_]) || text_[at_] == '.' || text_[at_] == ','))
            ++at_;
        const std::optional<std::string> number = Magnitude(text_.substr(start, at_ - start));
        return number ? Decimal::Parse(*number) : std::nullopt;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

std::optional<std::string> ReadNumberText(std::string_view text) {
    if (IsBareNumber(text)) return std::string(text);
    const std::optional<std::string> plain = PlainCharacters(text);
    return plain ? ReadPlain(*plain) : std::nullopt;
}

bool HasEqualsSign(std::string_view text) {
    const std::u16string wide = system::ToUtf16(text);
    const auto first = std::find_if_not(wide.begin(), wide.end(), IsAnyBlank);
    return first != wide.end() && PlainCharacter(*first) == '=';
}

bool IsCalculation(std::string_view text) {
    if (HasEqualsSign(text)) return true;
    const std::optional<std::string> plain = PlainCharacters(text);
    if (!plain || ReadPlain(*plain) || LooksLikeDate(*plain)) return false;
    return plain->find_first_not_of("0123456789.,+-*/() ") == std::string::npos &&
           plain->find_first_of("+-*/") != std::string::npos &&
           plain->find_first_of("0123456789") != std::string::npos;
}

std::optional<PlainNumberParts> SplitPlainNumber(std::string_view text) {
    PlainNumberParts parts;
    if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
        parts.negative = text.front() == '-';
        text.remove_prefix(1);
    }
    const std::size_t point = text.find('.');
    parts.whole = text.substr(0, point);
    if (point != std::string_view::npos) {
        parts.point = true;
        parts.fraction = text.substr(point + 1);
    }
    if (!AllDigits(parts.whole) || !AllDigits(parts.fraction)) return std::nullopt;
    return parts;
}

bool IsBareNumber(std::string_view text) {
    const std::size_t digits = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), IsDigit));
    if (digits == 0) return false;
    return digits == text.size() || (digits + 1 == text.size() && text.find('.') != std::string_view::npos);
}

bool IsPlainNumber(std::string_view text) {
    const std::optional<PlainNumberParts> parts = SplitPlainNumber(system::TrimBlanks(text));
    return parts && !(parts->whole.empty() && parts->fraction.empty());
}

std::optional<Decimal> Calculate(std::string_view text) {
    const std::optional<std::string> plain = PlainCharacters(text);
    if (!plain) return std::nullopt;
    std::string_view expression = *plain;
    if (!expression.empty() && expression.front() == '=') expression.remove_prefix(1);
    try {
        return Calculator(expression).Run();
    } catch (const automation::Error&) {
        return std::nullopt;  // divided by zero, or more digits than a decimal holds
    }
}

std::string TrimmedOfAnyBlanks(std::string_view text) {
    if (text.find_first_of(kFirstBytesOfBlanks) == std::string_view::npos) return std::string(text);
    const std::u16string wide = system::ToUtf16(text);
    const auto seen = [](char16_t c) { return !IsAnyBlank(c) && !IsInvisible(c); };
    const auto first = std::find_if(wide.begin(), wide.end(), seen);
    const auto last = std::find_if(wide.rbegin(), wide.rend(), seen).base();
    return first < last ? system::FromUtf16(std::u16string(first, last)) : std::string();
}

std::string WithoutInvisibleMarks(std::string_view text) {
    if (text.find_first_of(kFirstBytesOfMarks) == std::string_view::npos) return std::string(text);
    std::u16string wide = system::ToUtf16(text);
    std::erase_if(wide, IsInvisible);
    return system::FromUtf16(wide);
}

}  // namespace vicenter::store
