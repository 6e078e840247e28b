#pragma once

// Which literals of a statement may vary from run to run; what the shape of a statement and the template of a
// repeated one have in common. Internal to tsql/syntax.

#include <cstddef>
#include <vector>

#include "tsql/syntax/lexer.h"

namespace vicenter::tsql {

// Statements that read or write rows, and what calls them: only these come again and again.
bool StartsDataStatement(const Token& first);
// Words that can only start the next statement behind a complete one. WITH, FETCH, ELSE and the like could go
// on.
bool StartsNextStatement(Keyword word);

// A value begins behind this token: a minus there is a sign, not a subtraction, and NULL stands in its place
// as any other value does.
bool OpensValue(const Token& before);

// Walks the tokens of a statement and tells which of them are literals that may vary. It knows no grammar,
// only what stands before a token: what is not surely a value counts as part of the text, at the price of one
// more plan. A literal that is taken for a value though it decides a type is no fault either, since the
// translator pins it.
class LiteralFinder {
  public:
    // A literal stands where an expression is; a value where a sign or NULL may take its place.
    enum class Answer { kFixed, kLiteral, kValue };

    // `next` is the token after `token`.
    Answer Look(const Token& token, const Token& next);

  private:
    bool AfterOperator() const;
    bool AfterValueKeyword() const;
    Answer Classify(const Token& token, const Token& next) const;

    Token previous_;
    std::vector<bool> parens_;  // each: literals within it are fixed
    bool fixedDepth_ = false;
    bool sorting_ = false;
    std::size_t sortingLevel_ = 0;
    bool calling_ = false;
};

}  // namespace vicenter::tsql
