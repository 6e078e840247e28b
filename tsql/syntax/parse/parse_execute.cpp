// EXEC and transactions.

#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseExecute() {
    const Position start = Take().position;
    if (At(Op::kLeftParen)) {
        Take();
        auto execute = Make<ExecuteTextStatement>(start);
        execute->text = ParseValue();
        if (At(Op::kComma)) throw MakeError(40510, start, {"EXECUTE … AT"});
        Expect(Op::kRightParen);
        RefuseCall(start);
        return execute;
    }
    return ParseExecuteCall(start);
}

// [@result =] procedure [arguments] [WITH RECOMPILE]
StatementPtr Parser::ParseExecuteCall(Position start) {
    auto execute = Make<ExecuteStatement>(start);
    if (At(TokenKind::kVariable) && At(Op::kEqual, 1)) {
        execute->resultVariable = TakeVariable();
        Take();
    }
    if (At(TokenKind::kVariable)) {
        execute->procedureVariable = TakeVariable();
    } else {
        execute->procedure = TakeObjectName();
        SkipProcedureNumber();
    }
    RefuseCall(start);
    if (AtExecuteArgument()) {
        int number = 0;
        bool named = false;
        do {
            ++number;
            const Position position = Peek().position;
            execute->arguments.push_back(ParseExecuteArgument());
            if (named && execute->arguments.back().name.empty()) throw MakeError(119, position, {number});
            named = named || !execute->arguments.back().name.empty();
        } while (Accept(Op::kComma));
    }
    if (At(Keyword::kWith) && AtWord("recompile", 1)) {
        Take();
        Take();
        execute->withRecompile = true;
    }
    RefuseCall(start);
    return execute;
}

bool Parser::AtExecuteArgument() {
    switch (Peek().kind) {
        case TokenKind::kOperator:
            return At(Op::kMinus) || At(Op::kPlus);
        case TokenKind::kIdentifier:
            return (Peek().keyword == Keyword::kNone && !AtLabel()) || At(Keyword::kNull) ||
                   At(Keyword::kDefault);
        case TokenKind::kEnd:
        case TokenKind::kUnknown:
            return false;
        default:
            return true;
    }
}

// [@name =] constant | @variable [OUTPUT] | DEFAULT
ExecuteArgument Parser::ParseExecuteArgument() {
    ExecuteArgument argument;
    argument.position = Peek().position;
    if (At(TokenKind::kVariable) && At(Op::kEqual, 1)) {
        argument.name = TakeVariable();
        Take();
    }
    if (At(TokenKind::kVariable)) {
        const Token variable = Take();
        argument.value = std::make_unique<VariableExpr>(variable.position, std::string(variable.text));
        argument.output = AcceptWord("output") || AcceptWord("out");
    } else if (At(Keyword::kDefault)) {
        argument.value = std::make_unique<LiteralExpr>(Take().position, LiteralKind::kDefault, "");
    } else {
        argument.value = ParseConstant();
    }
    return argument;
}

StatementPtr Parser::ParseTransaction(Position start, TransactionAction action) {
    auto transaction = Make<TransactionStatement>(start);
    transaction->action = action;
    Take();
    const bool named = At(Keyword::kTran) || At(Keyword::kTransaction);
    // When a commit is on the disk: here it is, always.
    const auto skipDurability = [&] {
        if (action != TransactionAction::kCommit || !At(Keyword::kWith) || !At(Op::kLeftParen, 1)) return;
        Take();
        SkipParentheses();
    };
    if (!named) {
        if (action == TransactionAction::kBegin || action == TransactionAction::kSave) Fail();
        transaction->workKeyword = true;
        AcceptWord("work");
        skipDurability();
        return transaction;
    }
    Take();
    if (At(TokenKind::kVariable)) {
        const Token variable = Take();
        transaction->name = Name{std::string(variable.text), variable.position, false};
    } else if (AtName()) {
        transaction->name = TakeName();
    } else if (action == TransactionAction::kSave) {
        Fail();
    }
    skipDurability();
    if (action == TransactionAction::kBegin && At(Keyword::kWith) && AtWord("mark", 1)) {
        Take();
        Take();
        if (AtString()) Take();
    }
    return transaction;
}

}  // namespace vicenter::tsql
