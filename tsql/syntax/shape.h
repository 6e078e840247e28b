#pragma once

// The shape of a statement: its text without the literals that may vary. Texts that come one by one and
// differ in these alone are one statement: the key finds the plan of an earlier text, the literals are its
// parameters.
//
// Cautious: what is not plainly a repetition has no shape, or one of its own, and the caller parses. Which
// literals may vary: values. Lengths of types, TOP, positions in ORDER BY and GROUP BY, aliases and the like
// belong to the text. A plan that looked at the value of a literal when it was made (the style of CONVERT,
// say) must keep it and compare.
//
// Values refer to the text they were found in.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

struct StatementShape {
    std::string key;  // the text with every literal that may vary replaced by a mark of its kind
    std::vector<LiteralValue> literals;
};

// Texts longer than this have no shape: they do not come back.
inline constexpr std::size_t kLongestShape = 4000;

// The shape of a whole text, comments and all; nothing for long texts, for texts that begin with something
// else than a data statement or a declaration, for those that define a table, and for texts that are not
// well-formed. The mark tells int, larger integers by their digits, decimals by
// precision and scale, texts and bytes by their length: equal keys mean equal types of all literals.
std::optional<StatementShape> ShapeOf(std::string_view text);

}  // namespace vicenter::tsql
