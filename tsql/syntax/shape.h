#pragma once

// Statements that differ in their literals alone.
//
// A batch of ten thousand INSERTs with literal values is one statement, ten thousand times: a
// LiteralTemplate, made from the first of them, finds the end and the literals of the next by comparing the
// text between them, without tokens or trees. A StatementShape does the same for texts that come one by one:
// its key finds the plan of an earlier text, its literals are the parameters.
//
// Both are cautious: whatever is not plainly a repetition is no match, and the caller parses. Which literals
// may vary: values. Lengths of types, TOP, positions in ORDER BY and GROUP BY, aliases and the like belong to
// the text. A plan that looked at the value of a literal when it was made (the style of CONVERT, say) must
// keep it and compare.
//
// Values refer to the text they were found in. Templates are immutable.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/base/position.h"
#include "tsql/syntax/ast_expression.h"

namespace vicenter::tsql {

struct LiteralValue {
    LiteralKind kind = LiteralKind::kNull;  // kNull to kFloat, kString, kNString, kBinary
    bool negative = false;                  // a minus sign stands directly before the number
    bool doubled = false;                   // a text with doubled apostrophes in it
    std::uint32_t offset = 0;  // of the literal without its sign: the position of its LiteralExpr
    std::string_view text;     // digits; what stands between the apostrophes; hexadecimal digits

    // The text with doubled apostrophes undone.
    std::string Text() const;
};

class LiteralTemplate {
  public:
    // Nothing for statements that are no data statement, have no literal, or stand in the way of a safe
    // match.
    static std::optional<LiteralTemplate> Make(std::string_view statement);

    // Matches at `offset`, after blanks and semicolons. Gives the offset behind the statement and its
    // literals in order; nothing when the text there is no such statement, or when what follows it is neither
    // the end of the text nor a semicolon nor a word that starts a statement. *start gets the offset of the
    // statement's first letter. Kinds of literals may differ from those of the statement that the template
    // was made from.
    std::optional<std::uint32_t> Match(std::string_view text, std::uint32_t offset,
                                       std::vector<LiteralValue>* literals,
                                       std::uint32_t* start = nullptr) const;

    std::size_t LiteralCount() const { return slots_.size(); }

  private:
    struct Slot {
        std::string before;  // the text since the previous literal
        bool value = false;  // behind '(', ',' or a comparison: a sign or NULL may stand here
    };
    std::vector<Slot> slots_;
    std::string after_;  // the text behind the last literal
};

struct StatementShape {
    std::string key;  // the text with every literal that may vary replaced by a mark of its kind
    std::vector<LiteralValue> literals;
};

// Texts longer than this have no shape: they do not come back.
inline constexpr std::size_t kLongestShape = 4000;

// The shape of a whole text, comments and all; nothing for long texts, for texts that are no data statement,
// and for texts that are not well-formed. The mark tells int, larger integers by their digits, decimals by
// precision and scale, texts and bytes by their length: equal keys mean equal types of all literals.
std::optional<StatementShape> ShapeOf(std::string_view text);

// The position of `offset`, counted on from an earlier one.
Position Advance(std::string_view text, Position from, std::uint32_t offset);

}  // namespace vicenter::tsql
