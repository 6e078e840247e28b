#include "tsql/translate/flat_frame.h"

#include <algorithm>
#include <set>

#include "tsql/functions/function.h"

namespace vicenter::tsql::engine::flat {

namespace {

// Places, each the most that such a step takes.
constexpr int kCallPlaces = 5;     // name ( DISTINCT argument ,
constexpr int kParenPlaces = 1;    // (
constexpr int kCasePlaces = 6;     // CASE operand branches WHEN condition THEN
constexpr int kListPlaces = 7;     // IN ( members , or OVER ( PARTITION BY list ORDER BY list ,
constexpr int kHeadPlaces = 10;    // SELECT DISTINCT list FROM …
constexpr int kBehindPlaces = 16;  // … ON, GROUP BY, HAVING, ORDER BY, LIMIT
constexpr int kOperatorPlaces = 2;
constexpr int kMostPending = 3;  // operators that wait for their right sides at the same time

struct Names {
    std::set<std::string, std::less<>> aggregates{"count", "sum", "avg", "total", "group_concat"};
    std::set<std::string, std::less<>> changing{"random", "randomblob", "changes", "last_insert_rowid"};

    Names() {
        for (const SqlFunction* body : AllSqlFunctions()) {
            if (body->step != nullptr) aggregates.insert(body->name);
            if (!body->deterministic) changing.insert(body->name);
        }
    }
};

const Names& KnownNames() {
    static const Names names;
    return names;
}

// Calls with the place of each character that stands in no quotes, and how many parentheses are open behind
// it, until it answers true: that place, or none.
template <class Found>
std::size_t FindPlain(std::string_view text, const Found& found) {
    char quote = 0;
    int open = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (quote != 0) {
            if (c == quote) quote = 0;
            continue;
        }
        if (c == '\'' || c == '"') quote = c;
        if (c == '(') ++open;
        if (c == ')') --open;
        if (found(c, open)) return at;
    }
    return std::string_view::npos;
}

}  // namespace

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

bool IsKeyword(std::string_view word) {
    return IsOneOf(word, {"ALL",  "AND",    "AS",     "BETWEEN",  "BY",     "CASE",  "CONFLICT",  "DISTINCT",
                          "ELSE", "ESCAPE", "EXCEPT", "FROM",     "HAVING", "IN",    "INTERSECT", "INTO",
                          "IS",   "JOIN",   "LIKE",   "LIMIT",    "NOT",    "NULL",  "OFFSET",    "ON",
                          "OR",   "OVER",   "SELECT", "SET",      "THEN",   "UNION", "USING",     "VALUES",
                          "WHEN", "WHERE",  "WITH",   "RETURNING"});
}

bool IsAggregateCall(const Frame& call) {
    const bool isExtreme = (call.name == "min" || call.name == "max") && call.commas == 0;
    return isExtreme || KnownNames().aggregates.contains(call.name);
}

bool IsChangingCall(const Frame& call) {
    return KnownNames().changing.contains(call.name);
}

int Places(const Frame& frame) {
    const int pending = kOperatorPlaces * std::min(frame.operators, kMostPending);
    const bool isBehind = frame.clause == Clause::kBehind || frame.clause == Clause::kOn;
    switch (frame.kind) {
        case FrameKind::kStatement:
        case FrameKind::kQuery:
        case FrameKind::kJoin:
            return pending + (isBehind ? kBehindPlaces : kHeadPlaces);
        case FrameKind::kCall:
            return pending + kCallPlaces;
        case FrameKind::kParen:
            return pending + kParenPlaces;
        case FrameKind::kCase:
            return pending + kCasePlaces;
        case FrameKind::kList:
            return pending + kListPlaces;
    }
    return pending;
}

bool MayMove(const Frame& frame) {
    if (frame.refersWithin && !frame.hasWith) return false;
    if (frame.kind == FrameKind::kQuery) return true;
    if (frame.isAggregate || frame.pieces.empty()) return false;
    // What refers to no row would be worked out once for all rows.
    return !frame.isVolatile || frame.hasColumn;
}

std::string Hole(int number) {
    return kHole + std::to_string(number) + kHole;
}

std::string NameOf(int number) {
    return "\"deep$" + std::to_string(number) + "\"";
}

std::string ByName(int number) {
    return "(SELECT v$ FROM " + NameOf(number) + ")";
}

void Replace(std::string& text, const std::string& what, const std::string& by) {
    const std::size_t at = text.find(what);
    if (at != std::string::npos) text.replace(at, what.size(), by);
}

std::string InWords(std::string_view text) {
    std::string words;
    char quote = 0;
    for (const char c : text) {
        if (quote == 0 && (c == kAnd || c == kOr)) {
            words += c == kAnd ? "AND" : "OR";
            continue;
        }
        words += c;
        if (quote != 0) {
            if (c == quote) quote = 0;
        } else if (c == '\'' || c == '"') {
            quote = c;
        }
    }
    return words;
}

std::string_view Trimmed(std::string_view text) {
    while (text.starts_with(' '))
        text.remove_prefix(1);
    while (text.ends_with(' '))
        text.remove_suffix(1);
    return text;
}

std::size_t MarkOf(std::string_view text) {
    return FindPlain(text, [](char c, int open) { return open == 0 && (c == kAnd || c == kOr); });
}

std::size_t EndOf(std::string_view text) {
    if (!text.starts_with('(')) return 0;
    return FindPlain(text, [](char c, int open) { return c == ')' && open == 0; }) + 1;
}

}  // namespace vicenter::tsql::engine::flat
