#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseInsert(std::vector<CommonTable> with) {
    auto insert = Make<InsertStatement>(with.empty() ? Peek().position : with.front().name.position);
    insert->with = std::move(with);
    Expect(Keyword::kInsert);
    if (At(Keyword::kTop)) insert->top = ParseTop();
    Accept(Keyword::kInto);
    if (At(TokenKind::kVariable)) {
        const Token variable = Take();
        insert->table.parts.push_back(Name{std::string(variable.text), variable.position, false});
    } else {
        RefuseRowset();
        insert->table = TakeObjectName();
    }
    if (At(Keyword::kWith) && At(Op::kLeftParen, 1)) insert->hints = ParseHints();
    if (At(Op::kLeftParen) && !AtQuery()) insert->columns = TakeNamesInParentheses();
    if (AtWord("output")) insert->output = ParseOutput();

    if (Accept(Keyword::kDefault)) {
        Expect(Keyword::kValues);
        insert->source = InsertSource::kDefaultValues;
    } else if (Accept(Keyword::kValues)) {
        ParseInsertValues(*insert);
    } else if (At(Keyword::kExec) || At(Keyword::kExecute)) {
        insert->source = InsertSource::kExecute;
        insert->execute = ParseExecute();
        insert->execute->endOffset = previous_.EndOffset();
    } else if (AtQuery()) {
        insert->source = InsertSource::kQuery;
        if (At(Keyword::kWith)) Fail();
        insert->query = ParseQuery(QueryPlace::kInsert);
        insert->query->options = ParseOptionClause();
    } else {
        Fail();
    }
    return insert;
}

// The rows must fit the listed columns; without a list the engine compares with the table.
void Parser::ParseInsertValues(InsertStatement& insert) {
    do {
        Expect(Op::kLeftParen);
        std::vector<ExprPtr> row;
        row.reserve(insert.columns.size());
        do {
            if (At(Keyword::kDefault)) {
                row.push_back(std::make_unique<LiteralExpr>(Take().position, LiteralKind::kDefault, ""));
            } else {
                row.push_back(ParseValue());
            }
        } while (Accept(Op::kComma));
        Expect(Op::kRightParen);
        if (!insert.columns.empty() && row.size() < insert.columns.size())
            throw MakeError(109, insert.position);
        if (!insert.columns.empty() && row.size() > insert.columns.size())
            throw MakeError(110, insert.position);
        if (!insert.rows.empty() && row.size() != insert.rows.front().size())
            throw MakeError(10709, insert.position);
        insert.rows.push_back(std::move(row));
    } while (Accept(Op::kComma));
    constexpr std::size_t kMostRows = 1000;
    if (insert.rows.size() > kMostRows)
        throw MakeError(10738, insert.position, {static_cast<int>(kMostRows)});
}

// OUTPUT inserted.a [, …] [INTO target [(columns)] [OUTPUT inserted.b [, …]]]
OutputClause Parser::ParseOutput() {
    const auto parseItems = [this] {
        std::vector<SelectItem> items;
        ExpectWord("output");
        do {
            items.push_back(ParseSelectItem(QueryPlace::kNested));
        } while (Accept(Op::kComma));
        return items;
    };
    OutputClause output;
    output.items = parseItems();
    if (Accept(Keyword::kInto)) {
        if (At(TokenKind::kVariable)) {
            const Token variable = Take();
            output.into.parts.push_back(Name{std::string(variable.text), variable.position, false});
        } else {
            output.into = TakeObjectName();
        }
        if (At(Op::kLeftParen) && !AtQuery()) output.columns = TakeNamesInParentheses();
        if (AtWord("output")) output.beside = parseItems();
    }
    return output;
}

}  // namespace vicenter::tsql
