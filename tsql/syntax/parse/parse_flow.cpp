// Blocks, IF, WHILE, RETURN, TRY … CATCH, PRINT, RAISERROR, THROW.

#include "text/ascii.h"
#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseBegin() {
    const Position start = Peek().position;
    if (At(Keyword::kTran, 1) || At(Keyword::kTransaction, 1)) {
        return ParseTransaction(start, TransactionAction::kBegin);
    }
    Take();
    if (AtWord("try")) return ParseTryCatch(start);
    auto block = Make<BlockStatement>(start);
    nested_ = true;
    block->statements = ParseStatements();
    if (block->statements.empty()) Fail();
    Expect(Keyword::kEnd);
    return block;
}

StatementPtr Parser::ParseTryCatch(Position start) {
    auto statement = Make<TryCatchStatement>(start);
    nested_ = true;
    ExpectWord("try");
    statement->tried = ParseStatements();
    Expect(Keyword::kEnd);
    ExpectWord("try");
    SkipSemicolons();
    Expect(Keyword::kBegin);
    ExpectWord("catch");
    statement->caught = ParseStatements();
    Expect(Keyword::kEnd);
    ExpectWord("catch");
    return statement;
}

StatementPtr Parser::ParseIf() {
    auto statement = Make<IfStatement>(Take().position);
    statement->condition = ParseCondition();
    nested_ = true;
    statement->then = ParseStatement();
    // A semicolon may close the first branch: IF … PRINT 'a'; ELSE …
    if (At(Op::kSemicolon)) {
        const State state = Save();
        SkipSemicolons();
        if (!At(Keyword::kElse)) Restore(state);
    }
    if (Accept(Keyword::kElse)) statement->otherwise = ParseStatement();
    return statement;
}

StatementPtr Parser::ParseWhile() {
    auto statement = Make<WhileStatement>(Take().position);
    statement->condition = ParseCondition();
    nested_ = true;
    ++loops_;
    statement->body = ParseStatement();
    --loops_;
    return statement;
}

StatementPtr Parser::ParseReturn() {
    auto statement = Make<ReturnStatement>(Take().position);
    bool hasValue = false;
    switch (Peek().kind) {
        case TokenKind::kEnd:
            break;
        case TokenKind::kOperator:
            hasValue = At(Op::kLeftParen) || At(Op::kMinus) || At(Op::kPlus) || At(Op::kTilde);
            break;
        case TokenKind::kIdentifier:
            hasValue = Peek().keyword == Keyword::kNone || At(Keyword::kNull) || At(Keyword::kCase) ||
                       At(Keyword::kConvert) || At(Keyword::kCoalesce) || At(Keyword::kNullif);
            if (AtWord("throw")) hasValue = false;
            break;
        default:
            hasValue = true;
            break;
    }
    if (hasValue) {
        if (!procedure_) throw MakeError(178, Peek().position);
        statement->value = ParseValue();
    }
    return statement;
}

StatementPtr Parser::ParsePrint() {
    auto print = Make<PrintStatement>(Take().position);
    print->text = ParseValue();
    return print;
}

StatementPtr Parser::ParseRaiserror() {
    auto raise = Make<RaiserrorStatement>(Take().position);
    Expect(Op::kLeftParen);
    raise->message = ParseValue();
    Expect(Op::kComma);
    raise->severity = ParseValue();
    Expect(Op::kComma);
    raise->state = ParseValue();
    while (Accept(Op::kComma))
        raise->arguments.push_back(ParseValue());
    Expect(Op::kRightParen);
    if (Accept(Keyword::kWith)) {
        do {
            std::string option = text::LowerAscii(TakeName().text);
            if (option != "log" && option != "nowait" && option != "seterror") FailAt(previous_);
            raise->options.push_back(std::move(option));
        } while (Accept(Op::kComma));
    }
    return raise;
}

StatementPtr Parser::ParseThrow() {
    auto statement = Make<ThrowStatement>(Take().position);
    const auto argument = [&]() -> ExprPtr {
        if (At(TokenKind::kVariable)) {
            const Token variable = Take();
            return std::make_unique<VariableExpr>(variable.position, std::string(variable.text));
        }
        return ParseLiteral();
    };
    if (!At(TokenKind::kInteger) && !At(TokenKind::kVariable)) return statement;
    statement->number = argument();
    Expect(Op::kComma);
    statement->message = argument();
    Expect(Op::kComma);
    statement->state = argument();
    return statement;
}

}  // namespace vicenter::tsql
