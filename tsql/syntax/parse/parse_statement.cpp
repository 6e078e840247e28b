// Which statement comes next, and lists of statements.

#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

void Parser::SkipSemicolons() {
    while (Accept(Op::kSemicolon)) {
    }
}

StatementPtr Parser::NextStatement() {
    SkipSemicolons();
    if (AtEnd()) {
        CheckJumps();
        return nullptr;
    }
    nested_ = false;
    StatementPtr statement = ParseStatement();
    first_ = false;
    SkipSemicolons();
    return statement;
}

std::vector<StatementPtr> Parser::ParseStatements() {
    std::vector<StatementPtr> statements;
    for (;;) {
        SkipSemicolons();
        if (AtPhrase("end conversation")) RefuseStatement();
        if (AtEnd() || At(Keyword::kEnd)) return statements;
        statements.push_back(ParseStatement());
        first_ = false;
    }
}

StatementPtr Parser::ParseStatement() {
    const Level level(*this);
    StatementPtr statement = ParseStatementBody();
    statement->endOffset = previous_.EndOffset();
    return statement;
}

StatementPtr Parser::ParseStatementBody() {
    const Position start = Peek().position;
    RefuseStatement();
    switch (Peek().keyword) {
        case Keyword::kSelect:
            return ParseSelect({});
        case Keyword::kWith:
            return ParseWith();
        case Keyword::kInsert:
            return ParseInsert({});
        case Keyword::kUpdate:
            return ParseUpdate({});
        case Keyword::kDelete:
            return ParseDelete({});
        case Keyword::kMerge:
            return ParseMerge({});
        case Keyword::kTruncate:
            return ParseTruncate();
        case Keyword::kCreate:
            return ParseCreate();
        case Keyword::kAlter:
            return ParseAlter();
        case Keyword::kDrop:
            return ParseDrop();
        case Keyword::kDeclare:
            return ParseDeclare();
        case Keyword::kSet:
            return ParseSet();
        case Keyword::kOpen:
            return ParseOpen();
        case Keyword::kFetch:
            return ParseFetch();
        case Keyword::kClose:
            return ParseClose();
        case Keyword::kDeallocate:
            return ParseDeallocate();
        case Keyword::kBegin:
            return ParseBegin();
        case Keyword::kIf:
            return ParseIf();
        case Keyword::kWhile:
            return ParseWhile();
        case Keyword::kBreak:
            if (loops_ == 0) throw MakeError(135, start);
            Take();
            return Make<BreakStatement>(start);
        case Keyword::kContinue:
            if (loops_ == 0) throw MakeError(136, start);
            Take();
            return Make<ContinueStatement>(start);
        case Keyword::kReturn:
            return ParseReturn();
        case Keyword::kGoto:
            return ParseGoto();
        case Keyword::kWaitfor:
            return ParseWaitFor();
        case Keyword::kPrint:
            return ParsePrint();
        case Keyword::kRaiserror:
            return ParseRaiserror();
        case Keyword::kExec:
        case Keyword::kExecute:
            return ParseExecute();
        case Keyword::kCommit:
            return ParseTransaction(start, TransactionAction::kCommit);
        case Keyword::kRollback:
            return ParseTransaction(start, TransactionAction::kRollback);
        case Keyword::kSave:
            return ParseTransaction(start, TransactionAction::kSave);
        case Keyword::kUse:
        case Keyword::kCheckpoint:
            return ParseNoOperation();
        case Keyword::kGrant:
        case Keyword::kDeny:
        case Keyword::kRevoke:
            return ParseGrant();
        default:
            break;
    }
    if (At(Op::kLeftParen) && AtQuery()) return ParseSelect({});
    if (AtWord("throw")) return ParseThrow();
    if (AtLabel()) return ParseLabel();
    // The first statement of a batch may call a procedure by its bare name.
    if (first_ && !nested_ && AtName()) return ParseExecuteCall(start);
    Fail();
}

StatementPtr Parser::ParseWith() {
    std::vector<CommonTable> with = ParseCommonTables();
    if (At(Keyword::kInsert)) return ParseInsert(std::move(with));
    if (At(Keyword::kUpdate)) return ParseUpdate(std::move(with));
    if (At(Keyword::kDelete)) return ParseDelete(std::move(with));
    if (At(Keyword::kMerge)) return ParseMerge(std::move(with));
    return ParseSelect(std::move(with));
}

StatementPtr Parser::ParseCreate() {
    const Position start = Take().position;
    bool createOrAlter = false;
    if (Accept(Keyword::kOr)) {
        Expect(Keyword::kAlter);
        createOrAlter = true;
        RefuseObject(start, "CREATE OR ALTER");
        if (!At(Keyword::kView) && !At(Keyword::kProc) && !At(Keyword::kProcedure)) Fail();
    }
    switch (Peek().keyword) {
        case Keyword::kTable:
            return ParseCreateTable(start);
        case Keyword::kUnique:
        case Keyword::kClustered:
        case Keyword::kNonclustered:
        case Keyword::kIndex:
            return ParseCreateIndex(start);
        case Keyword::kView:
            return ParseCreateView(start, false, createOrAlter);
        case Keyword::kProc:
        case Keyword::kProcedure:
            return ParseCreateProcedure(start, false, createOrAlter);
        default:
            RefuseObject(start, "CREATE");
            Fail();
    }
}

StatementPtr Parser::ParseAlter() {
    const Position start = Take().position;
    switch (Peek().keyword) {
        case Keyword::kTable:
            return ParseAlterTable(start);
        case Keyword::kView:
            return ParseCreateView(start, true, false);
        case Keyword::kProc:
        case Keyword::kProcedure:
            return ParseCreateProcedure(start, true, false);
        default:
            RefuseObject(start, "ALTER");
            Fail();
    }
}

StatementPtr Parser::ParseNoOperation() {
    const Token verb = Take();
    auto statement = Make<NoOperationStatement>(verb.position);
    statement->verb = verb.keyword == Keyword::kUse ? "use" : "checkpoint";
    if (verb.keyword == Keyword::kUse) TakeName();
    if (verb.keyword == Keyword::kCheckpoint) Accept(TokenKind::kInteger);  // seconds
    const std::uint32_t from = verb.position.offset;
    statement->text = std::string(lexer_.Text().substr(from, previous_.EndOffset() - from));
    return statement;
}

// GRANT, DENY and REVOKE … TO (or FROM) names [WITH GRANT OPTION] [CASCADE]: an account set has no users, and
// everybody may do everything.
StatementPtr Parser::ParseGrant() {
    const Token verb = Take();
    auto statement = Make<NoOperationStatement>(verb.position);
    statement->verb = verb.keyword == Keyword::kGrant ? "grant" : "revoke";
    while (!At(Keyword::kTo) && !At(Keyword::kFrom)) {
        if (AtEnd() || At(Op::kSemicolon)) Fail();
        Take();
    }
    Take();
    do {
        if (!Accept(Keyword::kPublic)) TakeName();
    } while (Accept(Op::kComma));
    if (At(Keyword::kWith) && At(Keyword::kGrant, 1)) {
        Take();
        Take();
        Expect(Keyword::kOption);
    }
    Accept(Keyword::kCascade);
    if (Accept(Keyword::kAs)) TakeName();
    if (verb.keyword == Keyword::kDeny) throw MakeError(40510, verb.position, {"DENY"});
    const std::uint32_t from = verb.position.offset;
    statement->text = std::string(lexer_.Text().substr(from, previous_.EndOffset() - from));
    return statement;
}

}  // namespace vicenter::tsql
