#pragma once

// What the text of a statement of SQLite is made of while it is flattened, see flat_text.h: its parentheses,
// the places that they take of SQLite's parser, and the marks in texts that are not decided yet.

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::tsql::engine::flat {

// Places of SQLite's parser.
inline constexpr int kPlainPlaces = 3;   // a name or a number
inline constexpr int kByNamePlaces = 8;  // (SELECT v$ FROM "deep$1")

// Around the number of what is put elsewhere, where it is not decided yet how it comes in: it may be worked
// out before the rest of the text around it, as long as nothing comes before it there.
inline constexpr char kHole = '\x01';
// For AND and OR between the conditions of a parenthesis. As a condition SQLite leaves the right side alone
// where the left one decides; as a value it works both out, so that what is put elsewhere needs another text.
inline constexpr char kAnd = '\x02';
inline constexpr char kOr = '\x03';
inline constexpr char kEither[] = {kAnd, kOr, 0};

enum class FrameKind { kStatement, kQuery, kJoin, kCall, kParen, kCase, kList };
// What can be put by name in the place of a piece.
enum class Role { kNone, kValue, kTable, kMembers };
enum class Clause { kList, kFrom, kOn, kBehind, kNames, kRows, kWith };

struct Piece {
    std::size_t at = 0;  // in the text of its frame
    std::size_t size = 0;
    int before = 0;  // places that the frame takes up to here
    int need = 0;    // places of its own
    Role role = Role::kNone;
    bool isFirst = false;  // evaluated before everything else of the frame that can fail
    int hole = 0;          // in it; 0 for none
};

// A pair of parentheses with the name before it, or a CASE, while its text is read.
struct Frame {
    FrameKind kind = FrameKind::kStatement;
    Role role = Role::kNone;
    Clause clause = Clause::kList;
    std::string name;  // of a call, in lower case
    std::string text;
    std::vector<Piece> pieces;
    int need = kPlainPlaces;  // of what stays in any case
    int operators = 0;        // since the last comma
    int commas = 0;
    bool isLazy = false;       // what follows may be left out
    bool isBetween = false;    // the next AND belongs to a BETWEEN
    bool isAggregate = false;  // holds a value of the whole group or window: not to be had elsewhere
    bool isVolatile = false;
    bool hasColumn = false;     // of a table around
    bool refersWithin = false;  // to a query that a WITH within the statement names
    bool hasWith = false;       // which is here
};

// Words behind which a parenthesis is no call.
bool IsKeyword(std::string_view word);
bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words);
// The call is of an aggregate, or gives another value each time.
bool IsAggregateCall(const Frame& call);
bool IsChangingCall(const Frame& call);
// How many places are taken where the frame has come to.
int Places(const Frame& frame);
// Whether the frame's text means the same in another place.
bool MayMove(const Frame& frame);

std::string Hole(int number);
std::string NameOf(int number);
std::string ByName(int number);
void Replace(std::string& text, const std::string& what, const std::string& by);
// With the words where the marks of AND and OR are.
std::string InWords(std::string_view text);
std::string_view Trimmed(std::string_view text);
// The first mark of AND or OR outside of all parentheses.
std::size_t MarkOf(std::string_view text);
// Behind the parenthesis that the text begins with; 0 when it begins with none.
std::size_t EndOf(std::string_view text);

}  // namespace vicenter::tsql::engine::flat
