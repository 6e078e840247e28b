#include <array>

#include "tsql/base/error_table.h"
#include "tsql/functions/picture.h"
#include "tsql/types/date_part.h"

namespace vicenter::tsql::engine {

namespace {

[[noreturn]] void Refuse(std::string_view picture) {
    throw MakeError(40510, {}, {"FORMAT '" + std::string(picture) + "'"});
}

std::string Padded(int number, std::size_t digits) {
    std::string text = std::to_string(number);
    if (text.size() < digits) text.insert(0, digits - text.size(), '0');
    return text;
}

struct StandardPicture {
    char letter;
    const char* picture;
};
constexpr StandardPicture kStandard[] = {{'d', "M/d/yyyy"},
                                         {'D', "dddd, MMMM d, yyyy"},
                                         {'g', "M/d/yyyy h:mm tt"},
                                         {'G', "M/d/yyyy h:mm:ss tt"},
                                         {'s', "yyyy-MM-dd'T'HH:mm:ss"},
                                         {'t', "h:mm tt"},
                                         {'T', "h:mm:ss tt"},
                                         {'u', "yyyy-MM-dd HH:mm:ss'Z'"},
                                         {'y', "MMMM yyyy"},
                                         {'Y', "MMMM yyyy"}};

std::string Field(const DateTime& date, char letter, std::size_t count, std::string_view picture) {
    const automation::DateTimeParts parts = date.Parts();
    constexpr int kNoon = 12;
    constexpr std::size_t kName = 4;
    constexpr std::size_t kShortName = 3;
    const int hour12 = parts.hour % kNoon == 0 ? kNoon : parts.hour % kNoon;
    const auto name = [&](DatePart part) {
        const std::string whole = DateName(part, date);
        return count == kShortName ? whole.substr(0, kShortName) : whole;
    };
    switch (letter) {
        case 'y':
            if (count <= 2) return Padded(parts.year % 100, count);
            return Padded(parts.year, count);
        case 'M':
            if (count > kName) Refuse(picture);
            return count >= kShortName ? name(DatePart::kMonth) : Padded(parts.month, count);
        case 'd':
            if (count > kName) Refuse(picture);
            return count >= kShortName ? name(DatePart::kWeekday) : Padded(parts.day, count);
        case 'H':
            return Padded(parts.hour, count > 2 ? 2 : count);
        case 'h':
            return Padded(hour12, count > 2 ? 2 : count);
        case 'm':
            return Padded(parts.minute, count > 2 ? 2 : count);
        case 's':
            return Padded(parts.second, count > 2 ? 2 : count);
        case 't': {
            const std::string half = parts.hour < kNoon ? "AM" : "PM";
            return count == 1 ? half.substr(0, 1) : half;
        }
        case 'f': {
            // Beyond milliseconds nothing is kept.
            if (count > kShortName) Refuse(picture);
            return Padded(parts.millisecond, kShortName).substr(0, count);
        }
        default:
            Refuse(picture);
    }
}

}  // namespace

std::string DateByPicture(const DateTime& date, std::string_view picture) {
    if (picture.empty()) Refuse(picture);
    if (picture.size() == 1) {
        for (const StandardPicture& standard : kStandard) {
            if (standard.letter == picture.front()) return DateByPicture(date, standard.picture);
        }
        Refuse(picture);
    }
    std::string text;
    for (std::size_t at = 0; at < picture.size(); ++at) {
        const char c = picture[at];
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        if (c == '\'' || c == '"') {
            const std::size_t end = picture.find(c, at + 1);
            if (end == std::string_view::npos) Refuse(picture);
            text += picture.substr(at + 1, end - at - 1);
            at = end;
        } else if (c == '\\' && at + 1 < picture.size()) {
            text += picture[++at];
        } else if (c == '%' || c == '\\') {
            Refuse(picture);
        } else if (isLetter) {
            std::size_t count = 1;
            while (at + count < picture.size() && picture[at + count] == c)
                ++count;
            text += Field(date, c, count, picture);
            at += count - 1;
        } else {
            text += c;
        }
    }
    return text;
}

}  // namespace vicenter::tsql::engine
