#pragma once

// Control flow, calls and transactions of the syntax tree; see ast.h for ownership.

#include <string>
#include <utility>
#include <vector>

#include "tsql/syntax/ast_expression.h"
#include "tsql/syntax/ast_query.h"
#include "tsql/syntax/ast_statement_base.h"

namespace vicenter::tsql {

// ---- flow
// --------------------------------------------------------------------------------------------------

struct BlockStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kBlock;
    explicit BlockStatement(Position p) : Statement(kKind, p) {}

    std::vector<StatementPtr> statements;
};

struct IfStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kIf;
    explicit IfStatement(Position p) : Statement(kKind, p) {}

    ExprPtr condition;
    StatementPtr then;
    StatementPtr otherwise;  // none without ELSE
};

struct WhileStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kWhile;
    explicit WhileStatement(Position p) : Statement(kKind, p) {}

    ExprPtr condition;
    StatementPtr body;
};

struct BreakStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kBreak;
    explicit BreakStatement(Position p) : Statement(kKind, p) {}
};

struct ContinueStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kContinue;
    explicit ContinueStatement(Position p) : Statement(kKind, p) {}
};

struct ReturnStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kReturn;
    explicit ReturnStatement(Position p) : Statement(kKind, p) {}

    ExprPtr value;  // or none
};

struct GotoStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kGoto;
    explicit GotoStatement(Position p) : Statement(kKind, p) {}

    Name label;
};

// label:
struct LabelStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kLabel;
    explicit LabelStatement(Position p) : Statement(kKind, p) {}

    Name label;
};

// WAITFOR DELAY '00:00:05', WAITFOR TIME '23:00'
struct WaitForStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kWaitFor;
    explicit WaitForStatement(Position p) : Statement(kKind, p) {}

    bool untilTime = false;
    ExprPtr time;  // a literal or a variable
};

struct TryCatchStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kTryCatch;
    explicit TryCatchStatement(Position p) : Statement(kKind, p) {}

    std::vector<StatementPtr> tried;
    std::vector<StatementPtr> caught;
};

struct PrintStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kPrint;
    explicit PrintStatement(Position p) : Statement(kKind, p) {}

    ExprPtr text;
};

// RAISERROR (message, severity, state [, argument …]) [WITH log, nowait, seterror]
struct RaiserrorStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kRaiserror;
    explicit RaiserrorStatement(Position p) : Statement(kKind, p) {}

    ExprPtr message;
    ExprPtr severity;
    ExprPtr state;
    std::vector<ExprPtr> arguments;
    std::vector<std::string> options;
};

// THROW [number, message, state]: all three or none.
struct ThrowStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kThrow;
    explicit ThrowStatement(Position p) : Statement(kKind, p) {}

    ExprPtr number;
    ExprPtr message;
    ExprPtr state;
};

// ---- calls and transactions
// --------------------------------------------------------------------------------

struct ExecuteArgument {
    Position position;
    std::string name;  // with its '@'; empty for an argument by position
    ExprPtr value;     // a literal (a bare word is a kString), a variable, a negative number, or DEFAULT
    bool output = false;
};

// EXEC [@result =] procedure arguments. sp_executesql comes as this, too. The keyword may be left out by the
// first statement of a batch.
struct ExecuteStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kExecute;
    explicit ExecuteStatement(Position p) : Statement(kKind, p) {}

    std::string resultVariable;     // empty when there is none
    ObjectName procedure;           // empty when the name is in a variable
    std::string procedureVariable;  // EXEC @name
    std::vector<ExecuteArgument> arguments;
    bool withRecompile = false;
};

// EXEC ('…' + @sql)
struct ExecuteTextStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kExecuteText;
    explicit ExecuteTextStatement(Position p) : Statement(kKind, p) {}

    ExprPtr text;
};

enum class TransactionAction { kBegin, kCommit, kRollback, kSave };

struct TransactionStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kTransaction;
    explicit TransactionStatement(Position p) : Statement(kKind, p) {}

    TransactionAction action = TransactionAction::kBegin;
    Name name;  // of the transaction or savepoint, or a variable with its '@'; empty when there is none
    bool workKeyword = false;  // COMMIT WORK, or COMMIT without a word after it
};

}  // namespace vicenter::tsql
