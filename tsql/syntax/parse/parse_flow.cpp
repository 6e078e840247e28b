// Blocks, IF, WHILE, RETURN, TRY … CATCH, PRINT, RAISERROR, THROW.

#include <algorithm>

#include "automation/object.h"
#include "text/ascii.h"
#include "tsql/base/error_table.h"
#include "tsql/syntax/ast_children.h"
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
    block->statements = ParseBlock();
    if (block->statements.empty()) Fail();
    Expect(Keyword::kEnd);
    return block;
}

StatementPtr Parser::ParseTryCatch(Position start) {
    auto statement = Make<TryCatchStatement>(start);
    nested_ = true;
    ExpectWord("try");
    statement->tried = ParseBlock();
    Expect(Keyword::kEnd);
    ExpectWord("try");
    SkipSemicolons();
    Expect(Keyword::kBegin);
    ExpectWord("catch");
    statement->caught = ParseBlock();
    Expect(Keyword::kEnd);
    ExpectWord("catch");
    return statement;
}

// Of IF or WHILE. A label there would stand in no list.
StatementPtr Parser::ParseBranch() {
    if (AtLabel()) throw MakeError(40510, Peek().position, {"a label as a branch"});
    return ParseStatement();
}

StatementPtr Parser::ParseIf() {
    auto statement = Make<IfStatement>(Take().position);
    statement->condition = ParseCondition();
    nested_ = true;
    statement->then = ParseBranch();
    // A semicolon may close the first branch: IF … PRINT 'a'; ELSE …
    if (At(Op::kSemicolon)) {
        const State state = Save();
        SkipSemicolons();
        if (!At(Keyword::kElse)) Restore(state);
    }
    if (Accept(Keyword::kElse)) statement->otherwise = ParseBranch();
    return statement;
}

StatementPtr Parser::ParseWhile() {
    auto statement = Make<WhileStatement>(Take().position);
    statement->condition = ParseCondition();
    nested_ = true;
    ++loops_;
    statement->body = ParseBranch();
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
            hasValue = (Peek().keyword == Keyword::kNone && !AtLabel()) || At(Keyword::kNull) ||
                       At(Keyword::kCase) || At(Keyword::kConvert) || At(Keyword::kCoalesce) ||
                       At(Keyword::kNullif);
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

StatementPtr Parser::ParseGoto() {
    auto jump = Make<GotoStatement>(Expect(Keyword::kGoto).position);
    jump->label = TakeName();
    jumps_.push_back({jump->label, blocks_});
    return jump;
}

// Statements that a jump from outside does not reach.
std::vector<StatementPtr> Parser::ParseBlock() {
    blocks_.push_back(++blockNumber_);
    std::vector<StatementPtr> statements = ParseStatements();
    blocks_.pop_back();
    return statements;
}

// At the end of the batch: every jump has its label, in a block around it.
void Parser::CheckJumps() const {
    for (const Place& jump : jumps_) {
        const Place* found = nullptr;
        for (const Place& label : labels_) {
            if (automation::SameName(label.label.text, jump.label.text)) found = &label;
        }
        if (found == nullptr) throw MakeError(133, jump.label.position, {jump.label.text});
        const std::size_t depth = found->blocks.size();
        const bool isAround = depth <= jump.blocks.size() &&
                              std::equal(found->blocks.begin(), found->blocks.end(), jump.blocks.begin());
        if (!isAround) throw MakeError(40510, jump.label.position, {"GOTO into a block"});
    }
}

StatementPtr Parser::ParseLabel() {
    auto label = Make<LabelStatement>(Peek().position);
    label->label = NameFrom(Take());
    Expect(Op::kColon);
    for (const Place& other : labels_) {
        if (automation::SameName(other.label.text, label->label.text))
            throw MakeError(132, label->position, {label->label.text});
    }
    labels_.push_back({label->label, blocks_});
    return label;
}

// WAITFOR DELAY 'hh:mm:ss' | WAITFOR TIME 'hh:mm'
StatementPtr Parser::ParseWaitFor() {
    auto wait = Make<WaitForStatement>(Expect(Keyword::kWaitfor).position);
    wait->untilTime = AcceptWord("time");
    if (!wait->untilTime) ExpectWord("delay");
    if (At(TokenKind::kVariable)) {
        const Token variable = Take();
        wait->time = std::make_unique<VariableExpr>(variable.position, std::string(variable.text));
    } else {
        if (!AtString()) Fail();
        wait->time = ParseLiteral();
    }
    return wait;
}

StatementPtr Parser::ParsePrint() {
    auto print = Make<PrintStatement>(Take().position);
    print->text = ParseValue();
    if (HoldsQuery(*print->text)) throw MakeError(1046, print->text->position);
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
