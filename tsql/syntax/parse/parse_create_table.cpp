// CREATE TABLE, and the table definitions of DECLARE @t TABLE.

#include <charconv>

#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseCreateTable(Position start) {
    auto create = Make<CreateTableStatement>(start);
    Expect(Keyword::kTable);
    create->table = TakeObjectName();
    if (At(Keyword::kAs)) throw MakeError(40510, start, {"CREATE TABLE … AS"});
    create->definition = ParseTableDefinition();
    if (At(Keyword::kAs)) throw MakeError(40510, start, {"CREATE TABLE … AS"});
    SkipStorageOptions();
    return create;
}

// A comma behind the last element is taken, as the server takes it.
TableDefinition Parser::ParseTableDefinition() {
    TableDefinition definition;
    Expect(Op::kLeftParen);
    do {
        if (At(Op::kRightParen) && !definition.columns.empty()) break;
        ParseTableElement(definition);
    } while (Accept(Op::kComma));
    Expect(Op::kRightParen);
    return definition;
}

bool Parser::AtTableConstraint() {
    switch (Peek().keyword) {
        case Keyword::kConstraint:
        case Keyword::kPrimary:
        case Keyword::kUnique:
        case Keyword::kCheck:
        case Keyword::kForeign:
            return true;
        default:
            return false;
    }
}

void Parser::ParseTableElement(TableDefinition& definition) {
    if (At(Keyword::kIndex) || AtPhrase("period for")) RefuseColumnForm("CREATE TABLE");
    if (AtTableConstraint()) {
        definition.constraints.push_back(ParseConstraint(nullptr));
    } else {
        definition.columns.push_back(ParseColumnDefinition());
    }
}

ColumnDefinition Parser::ParseColumnDefinition() {
    ColumnDefinition column;
    column.name = TakeName();
    if (Accept(Keyword::kAs)) {
        column.computedAs = ParseValue();
        column.persisted = AcceptWord("persisted");
    } else {
        // A timestamp needs no name of its own.
        if ((At(Op::kComma) || At(Op::kRightParen)) && IsWord(column.name.text, "timestamp"))
            throw MakeError(40510, column.name.position, {"type timestamp"});
        column.type = TakeType();
    }
    while (ParseColumnOption(column)) {
    }
    return column;
}

bool Parser::ParseColumnOption(ColumnDefinition& column) {
    switch (Peek().keyword) {
        case Keyword::kNull:
            Take();
            column.nullable = true;
            return true;
        case Keyword::kNot:
            Take();
            if (At(Keyword::kFor)) {  // NOT FOR REPLICATION
                Take();
                Expect(Keyword::kReplication);
                return true;
            }
            Expect(Keyword::kNull);
            column.nullable = false;
            return true;
        case Keyword::kIdentity:
            column.identity = ParseIdentity();
            return true;
        case Keyword::kCollate:
            Take();
            column.collation = TakeName();
            return true;
        case Keyword::kRowguidcol:
            Take();
            return true;
        case Keyword::kConstraint:
        case Keyword::kDefault:
        case Keyword::kPrimary:
        case Keyword::kUnique:
        case Keyword::kCheck:
        case Keyword::kForeign:
        case Keyword::kReferences:
            column.constraints.push_back(ParseConstraint(&column.name));
            return true;
        default:
            if (!At(Op::kComma) && !At(Op::kRightParen)) RefuseColumnForm("CREATE TABLE");
            return AcceptWord("sparse");
    }
}

// IDENTITY [(seed, increment)]
Identity Parser::ParseIdentity() {
    Identity identity;
    Expect(Keyword::kIdentity);
    if (!Accept(Op::kLeftParen)) return identity;
    const auto number = [&] {
        const bool negative = Accept(Op::kMinus);
        const Token token = Expect(TokenKind::kInteger);
        const std::string text = (negative ? "-" : "") + std::string(token.text);
        std::int64_t value = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc()) FailAt(token);
        return value;
    };
    identity.seed = number();
    Expect(Op::kComma);
    identity.increment = number();
    Expect(Op::kRightParen);
    return identity;
}

std::vector<IndexColumn> Parser::ParseIndexColumns() {
    std::vector<IndexColumn> columns;
    Expect(Op::kLeftParen);
    do {
        IndexColumn column;
        column.name = TakeName();
        column.descending = Accept(Keyword::kDesc);
        if (!column.descending) Accept(Keyword::kAsc);
        columns.push_back(std::move(column));
    } while (Accept(Op::kComma));
    Expect(Op::kRightParen);
    return columns;
}

// `column` is the column that the constraint follows, or none for a constraint of the table.
Constraint Parser::ParseConstraint(const Name* column) {
    Constraint constraint;
    constraint.position = Peek().position;
    if (Accept(Keyword::kConstraint)) constraint.name = TakeName();
    if (column) constraint.columns.push_back(IndexColumn{*column, false});
    switch (Peek().keyword) {
        case Keyword::kPrimary:
        case Keyword::kUnique:
            constraint.kind = At(Keyword::kPrimary) ? ConstraintKind::kPrimaryKey : ConstraintKind::kUnique;
            Take();
            if (constraint.kind == ConstraintKind::kPrimaryKey) Expect(Keyword::kKey);
            constraint.clustered = AcceptClustered();
            if (AtWord("hash")) throw MakeError(40510, constraint.position, {"CREATE TABLE … HASH"});
            if (!column || At(Op::kLeftParen)) constraint.columns = ParseIndexColumns();
            SkipStorageOptions();
            break;
        case Keyword::kCheck:
            Take();
            constraint.kind = ConstraintKind::kCheck;
            if (Accept(Keyword::kNot)) {
                Expect(Keyword::kFor);
                Expect(Keyword::kReplication);
            }
            Expect(Op::kLeftParen);
            constraint.expression = ParseCondition();
            Expect(Op::kRightParen);
            break;
        case Keyword::kDefault:
            Take();
            constraint.kind = ConstraintKind::kDefault;
            constraint.expression = ParseValue();
            if (!column) {  // ALTER TABLE … ADD DEFAULT e FOR column
                Expect(Keyword::kFor);
                constraint.columns.push_back(IndexColumn{TakeName(), false});
            }
            if (At(Keyword::kWith) && At(Keyword::kValues, 1)) {
                Take();
                Take();
                constraint.withValues = true;
            }
            break;
        case Keyword::kForeign:
            Take();
            Expect(Keyword::kKey);
            if (!column || At(Op::kLeftParen)) {
                constraint.columns.clear();
                for (Name& name : TakeNamesInParentheses())
                    constraint.columns.push_back({std::move(name), false});
            }
            ParseReferences(constraint);
            break;
        case Keyword::kReferences:
            if (!column) Fail();
            ParseReferences(constraint);
            break;
        default:
            RefuseColumnForm("CREATE TABLE");
            Fail();
    }
    return constraint;
}

void Parser::ParseReferences(Constraint& constraint) {
    constraint.kind = ConstraintKind::kForeignKey;
    Expect(Keyword::kReferences);
    constraint.referencedTable = TakeObjectName();
    if (At(Op::kLeftParen)) constraint.referencedColumns = TakeNamesInParentheses();
    while (At(Keyword::kOn) && (At(Keyword::kDelete, 1) || At(Keyword::kUpdate, 1))) {
        Take();
        std::string& action = Take().keyword == Keyword::kDelete ? constraint.onDelete : constraint.onUpdate;
        if (Accept(Keyword::kCascade)) {
            action = "cascade";
        } else if (Accept(Keyword::kSet)) {
            action = At(Keyword::kNull) ? "set null" : "set default";
            if (!Accept(Keyword::kNull)) Expect(Keyword::kDefault);
        } else {
            ExpectWord("no");
            ExpectWord("action");
            action = "no action";
        }
    }
    if (At(Keyword::kNot) && At(Keyword::kFor, 1)) {
        Take();
        Take();
        Expect(Keyword::kReplication);
    }
}

}  // namespace vicenter::tsql
