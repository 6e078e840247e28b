#include "tsql/types/like_pattern.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

namespace {

struct Range {
    std::string low;
    std::string high;
};

struct Element {
    enum Kind { kCharacter, kAny, kMany, kSet } kind = kCharacter;
    std::string character;
    std::vector<Range> ranges;
    bool negated = false;
};

std::vector<std::string> Characters(std::string_view text) {
    std::vector<std::string> characters;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t bytes = CharacterBytes(text, at);
        characters.emplace_back(text.substr(at, bytes));
        at += bytes;
    }
    return characters;
}

// Texts and patterns are folded first, so that characters compare by their bytes; only ranges ask the
// collation. What is a wildcard is asked of the pattern as it was written: a full-width mark stands for
// itself.
std::vector<Element> Compile(const TextCollation& collation, std::string_view text, std::string_view escape) {
    const std::vector<std::string> pattern = Characters(collation.Fold(text));
    std::vector<std::string> marks = Characters(text);
    if (marks.size() != pattern.size()) marks = pattern;  // a letter that folds to two
    std::vector<Element> elements;
    for (std::size_t at = 0; at < pattern.size(); ++at) {
        Element element;
        const std::string& mark = marks[at];
        if (!escape.empty() && pattern[at] == escape && at + 1 < pattern.size()) {
            element.character = pattern[++at];
        } else if (mark == "%") {
            element.kind = Element::kMany;
        } else if (mark == "_") {
            element.kind = Element::kAny;
        } else if (mark == "[") {
            std::size_t end = at + 1;
            if (end < pattern.size() && marks[end] == "^") {
                element.negated = true;
                ++end;
            }
            const std::size_t first = end;
            bool closed = false;
            for (; end < pattern.size(); ++end) {
                if (marks[end] == "]" && end > first) {
                    closed = true;
                    break;
                }
                std::string low = pattern[end];
                if (!escape.empty() && low == escape && end + 1 < pattern.size()) low = pattern[++end];
                if (end + 2 < pattern.size() && marks[end + 1] == "-" && marks[end + 2] != "]") {
                    element.ranges.push_back({low, pattern[end + 2]});
                    end += 2;
                } else {
                    element.ranges.push_back({low, low});
                }
            }
            // An unclosed bracket matches nothing, as on the server.
            element.kind = Element::kSet;
            if (!closed) {
                element.ranges.clear();
                element.negated = false;
                end = pattern.size();
            }
            at = end;
        } else {
            element.character = pattern[at];
        }
        elements.push_back(std::move(element));
    }
    return elements;
}

bool MatchesOne(const TextCollation& collation, const Element& element, const std::string& character) {
    switch (element.kind) {
        case Element::kCharacter:
            return element.character == character;
        case Element::kAny:
            return true;
        case Element::kMany:
            return false;
        case Element::kSet:
            break;
    }
    for (const Range& range : element.ranges) {
        const bool within = range.low == range.high ? range.low == character
                                                    : collation.Compare(range.low, character) <= 0 &&
                                                          collation.Compare(character, range.high) <= 0;
        if (within) return !element.negated;
    }
    return element.negated && !element.ranges.empty();
}

bool IsBlankFrom(const std::vector<std::string>& text, std::size_t at) {
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                       [](const std::string& character) { return character == " "; });
}

enum class Match : std::uint8_t { kHere, kNotHere, kNowhereBehind };

// From one character of the text on. Where a part behind a % is not to be found, no later beginning finds it.
Match MatchFrom(const TextCollation& collation, const std::vector<std::string>& text, std::size_t at,
                const std::vector<Element>& pattern, TrailingBlanks blanks, Interruption* stopping) {
    // One point to return to is enough: a later % makes every earlier one final.
    std::size_t in = 0;
    std::size_t retryIn = 0;
    std::size_t retryAt = 0;
    bool canRetry = false;
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in].kind == Element::kMany) {
            canRetry = true;
            retryIn = ++in;
            retryAt = at;
        } else if (in < pattern.size() && MatchesOne(collation, pattern[in], text[at])) {
            ++in;
            ++at;
        } else if (in == pattern.size() && blanks == TrailingBlanks::kIgnored && IsBlankFrom(text, at)) {
            return Match::kHere;
        } else if (canRetry) {
            in = retryIn;
            at = ++retryAt;
            if (stopping != nullptr) stopping->Check();
        } else {
            return Match::kNotHere;
        }
    }
    while (in < pattern.size() && pattern[in].kind == Element::kMany)
        ++in;
    if (in == pattern.size()) return Match::kHere;
    return canRetry ? Match::kNowhereBehind : Match::kNotHere;
}

}  // namespace

bool MatchesPattern(const TextCollation& collation, std::string_view text, std::string_view pattern,
                    std::string_view escape, TrailingBlanks blanks, Interruption* stopping) {
    return MatchFrom(collation, Characters(collation.Fold(text)), 0,
                     Compile(collation, pattern, collation.Fold(escape)), blanks, stopping) == Match::kHere;
}

std::size_t FindPattern(const TextCollation& collation, std::string_view text, std::string_view pattern,
                        Interruption* stopping) {
    const std::vector<std::string> characters = Characters(collation.Fold(text));
    std::vector<Element> elements = Compile(collation, pattern, {});
    const bool fromAnywhere = !elements.empty() && elements.front().kind == Element::kMany;
    while (!elements.empty() && elements.front().kind == Element::kMany)
        elements.erase(elements.begin());
    if (fromAnywhere && elements.empty()) return 1;
    for (std::size_t start = 0; start <= characters.size(); ++start) {
        if (stopping != nullptr) stopping->Check();
        const Match match =
            MatchFrom(collation, characters, start, elements, TrailingBlanks::kIgnored, stopping);
        if (match == Match::kHere) return start + 1;
        if (!fromAnywhere || match == Match::kNowhereBehind) break;
    }
    return 0;
}

}  // namespace vicenter::tsql::engine
