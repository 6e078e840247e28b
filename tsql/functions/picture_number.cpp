#include <algorithm>

#include "tsql/base/error_table.h"
#include "tsql/functions/picture.h"

namespace vicenter::tsql::engine {

namespace {

constexpr int kMostPlaces = 30;

[[noreturn]] void Refuse(std::string_view picture) {
    throw MakeError(40510, {}, {"FORMAT '" + std::string(picture) + "'"});
}

// Whole digits and those of the fraction, without a sign, rounded half away from zero.
struct Digits {
    std::string whole;
    std::string fraction;
    bool isZero() const {
        return whole.find_first_not_of('0') == std::string::npos &&
               fraction.find_first_not_of('0') == std::string::npos;
    }
};

Digits DigitsOf(const Decimal& number, int places) {
    std::string text = number.Rescaled(places).ToText();
    if (text.front() == '-') text.erase(0, 1);
    const std::size_t point = text.find('.');
    Digits digits;
    digits.whole = text.substr(0, point);
    if (point != std::string::npos) digits.fraction = text.substr(point + 1);
    digits.fraction.resize(static_cast<std::size_t>(places), '0');
    return digits;
}

std::string Grouped(const std::string& whole) {
    constexpr std::size_t kGroup = 3;
    std::string grouped;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % kGroup == 0) grouped += ',';
        grouped += whole[i];
    }
    return grouped;
}

bool IsNegative(const Decimal& number) {
    return number.ToText().front() == '-';
}

// A letter and a number of places: N2, F0, D6, C.
std::string Standard(const Decimal& number, bool isInteger, std::string_view picture) {
    const char letter = static_cast<char>(picture.front() & ~0x20);
    const std::string_view rest = picture.substr(1);
    if (rest.size() > 2 || rest.find_first_not_of("0123456789") != std::string_view::npos) Refuse(picture);
    const int given = rest.empty() ? -1 : std::stoi(std::string(rest));
    if (given > kMostPlaces) Refuse(picture);
    if (letter == 'D') {
        if (!isInteger) Refuse(picture);
        Digits digits = DigitsOf(number, 0);
        if (static_cast<int>(digits.whole.size()) < given)
            digits.whole.insert(0, static_cast<std::size_t>(given) - digits.whole.size(), '0');
        return (IsNegative(number) ? "-" : "") + digits.whole;
    }
    if (letter != 'N' && letter != 'F' && letter != 'C') Refuse(picture);
    const Digits digits = DigitsOf(number, given < 0 ? 2 : given);
    const std::string whole = letter == 'F' ? digits.whole : Grouped(digits.whole);
    const std::string plain = whole + (digits.fraction.empty() ? "" : "." + digits.fraction);
    const bool negative = IsNegative(number) && !digits.isZero();
    if (letter == 'C') return negative ? "($" + plain + ")" : "$" + plain;
    return negative ? "-" + plain : plain;
}

// What a picture of 0 and # says: the texts around the digits, and how many of them there are to be.
struct Places {
    std::string before;
    std::string behind;
    int leastWhole = 0;
    int leastFraction = 0;
    int mostFraction = 0;
    bool groups = false;
    bool isPercent = false;
};

Places PlacesOf(std::string_view picture) {
    Places places;
    bool sawDigit = false;
    bool sawPoint = false;
    bool isOver = false;
    char last = 0;
    for (std::size_t at = 0; at < picture.size(); ++at) {
        const char c = picture[at];
        const auto literal = [&](std::string_view text) {
            isOver = isOver || sawDigit || sawPoint;
            (isOver ? places.behind : places.before) += text;
        };
        if (c == '0' || c == '#') {
            if (isOver) Refuse(picture);
            sawDigit = true;
            if (!sawPoint && c == '#' && places.leastWhole > 0) Refuse(picture);
            if (!sawPoint && c == '0') ++places.leastWhole;
            if (sawPoint) ++places.mostFraction;
            if (sawPoint && c == '0') places.leastFraction = places.mostFraction;
        } else if (c == '.' && !sawPoint && !isOver) {
            if (last == ',') Refuse(picture);
            sawPoint = true;
        } else if (c == ',' && sawDigit && !sawPoint && !isOver) {
            places.groups = true;
        } else if (c == '%') {
            places.isPercent = true;
            literal("%");
        } else if (c == '\'' || c == '"') {
            const std::size_t end = picture.find(c, at + 1);
            if (end == std::string_view::npos) Refuse(picture);
            literal(picture.substr(at + 1, end - at - 1));
            at = end;
        } else if (c == '\\' && at + 1 < picture.size()) {
            literal(picture.substr(++at, 1));
        } else if (c == ';' || c == ',' || c == '.' || c == 'e' || c == 'E' || c == '\\') {
            Refuse(picture);
        } else {
            literal(picture.substr(at, 1));
        }
        last = c;
    }
    if (last == ',' || !sawDigit || places.mostFraction > kMostPlaces) Refuse(picture);
    return places;
}

std::string Custom(const Decimal& number, std::string_view picture) {
    const Places places = PlacesOf(picture);
    const Decimal shown = places.isPercent ? Decimal::Multiply(number, Decimal(100)) : number;
    Digits digits = DigitsOf(shown, places.mostFraction);
    const bool negative = IsNegative(number) && !digits.isZero();
    digits.whole.erase(0, std::min(digits.whole.find_first_not_of('0'), digits.whole.size()));
    if (static_cast<int>(digits.whole.size()) < places.leastWhole)
        digits.whole.insert(0, static_cast<std::size_t>(places.leastWhole) - digits.whole.size(), '0');
    while (static_cast<int>(digits.fraction.size()) > places.leastFraction && digits.fraction.back() == '0')
        digits.fraction.pop_back();
    const std::string whole = places.groups ? Grouped(digits.whole) : digits.whole;
    return (negative ? "-" : "") + places.before + whole +
           (digits.fraction.empty() ? "" : "." + digits.fraction) + places.behind;
}

}  // namespace

std::string NumberByPicture(const Decimal& number, bool isInteger, std::string_view picture) {
    if (picture.empty()) Refuse(picture);
    const char first = picture.front();
    const bool isLetter = (first >= 'a' && first <= 'z') || (first >= 'A' && first <= 'Z');
    const bool isStandard =
        isLetter && picture.substr(1).find_first_not_of("0123456789") == std::string_view::npos;
    return isStandard ? Standard(number, isInteger, picture) : Custom(number, picture);
}

}  // namespace vicenter::tsql::engine
