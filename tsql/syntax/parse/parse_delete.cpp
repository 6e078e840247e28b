// DELETE and TRUNCATE TABLE.

#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseDelete(std::vector<CommonTable> with) {
    auto statement = Make<DeleteStatement>(with.empty() ? Peek().position : with.front().name.position);
    statement->with = std::move(with);
    Expect(Keyword::kDelete);
    if (At(Keyword::kTop)) statement->top = ParseTop();
    statement->fromKeyword = Accept(Keyword::kFrom);
    if (At(TokenKind::kVariable)) {
        const Token variable = Take();
        statement->target.parts.push_back(Name{std::string(variable.text), variable.position, false});
    } else {
        RefuseRowset();
        statement->target = TakeObjectName();
    }
    if (AtHints()) statement->hints = ParseHints();
    if (AtWord("output")) statement->output = ParseOutput();
    if (At(Keyword::kFrom)) statement->from = ParseFrom();
    ParseWhere(statement->where, statement->currentOf);
    SkipOptionClause();
    return statement;
}

StatementPtr Parser::ParseTruncate() {
    auto truncate = Make<TruncateStatement>(Take().position);
    Expect(Keyword::kTable);
    truncate->table = TakeObjectName();
    if (At(Keyword::kWith) && At(Op::kLeftParen, 1))
        throw MakeError(40510, truncate->position, {"TRUNCATE TABLE … WITH"});
    return truncate;
}

}  // namespace vicenter::tsql
