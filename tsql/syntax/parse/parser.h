#pragma once

// From text to syntax tree.
//
// A StatementReader walks a batch one statement at a time, so that a long batch never exists as trees as a
// whole. The batch text must outlive the reader; the trees own their texts. Errors are SqlError with SQL
// Server's numbers, texts, line and column.

#include <memory>
#include <string_view>
#include <vector>

#include "tsql/syntax/ast.h"

namespace vicenter::tsql {

// Levels of subqueries, calls, CASE, blocks and IFs within each other: deeper is error 191.
inline constexpr int kNestingLimit = 200;
// Parentheses around values in the place of one such level: they leave nothing behind.
inline constexpr int kParenthesesOfLevel = 5;
// Nodes below each other in one expression, for instance the operands of a + b + …: as above.
inline constexpr int kDepthLimit = 2000;
// The same for joins.
inline constexpr int kJoinLimit = 1000;

class Parser;

class StatementReader {
  public:
    explicit StatementReader(std::string_view text);
    ~StatementReader();
    StatementReader(const StatementReader&) = delete;
    StatementReader& operator=(const StatementReader&) = delete;

    // The next statement, or none behind the last. A CREATE PROCEDURE takes in the rest of the batch.
    StatementPtr Next();
    // Where the next statement is looked for: behind the last one and the semicolons after it.
    Position Where() const;
    // Goes on from there; for callers that read a stretch of text themselves.
    void Seek(Position where);
    // The variables that the statements so far read or set, each as often as it stands there.
    const std::vector<Name>& UsedVariables() const;

  private:
    std::unique_ptr<Parser> parser_;
};

// The whole batch at once.
Batch ParseBatch(std::string_view text);

// One expression alone: the text of a default or check constraint that the catalog keeps.
ExprPtr ParseExpression(std::string_view text);
ExprPtr ParseCondition(std::string_view text);

}  // namespace vicenter::tsql
