// Queries: SELECT, set operations, ORDER BY, common table expressions.

#include "text/ascii.h"
#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseSelect(std::vector<CommonTable> with) {
    const Position start = with.empty() ? Peek().position : with.front().name.position;
    auto statement = Make<SelectStatement>(start);
    statement->query = ParseQuery(QueryPlace::kStatement);
    statement->query->with = std::move(with);
    statement->query->options = ParseOptionClause();
    return statement;
}

// Looks through opening parentheses for SELECT.
bool Parser::AtQuery() {
    if (At(Keyword::kSelect) || At(Keyword::kWith)) return true;
    if (!At(Op::kLeftParen)) return false;
    const State state = Save();
    while (Accept(Op::kLeftParen)) {
    }
    const bool isQuery = At(Keyword::kSelect);
    Restore(state);
    return isQuery;
}

QueryPtr Parser::ParseQuery(QueryPlace place) {
    const Level level(*this);
    auto query = std::make_unique<Query>();
    query->position = Peek().position;
    query->body = ParseQueryBody(place);
    if (At(Keyword::kOrder)) {
        const Position order = Peek().position;
        query->orderBy = ParseOrderBy();
        ParseOffset(*query);
        const SelectBody* select = query->Select();
        if (query->offset && select && select->top) throw MakeError(10741, select->position);
        if (place == QueryPlace::kNested && !query->offset && !(select && select->top)) {
            // FOR XML lets a nested query have an order.
            RefuseBehindQuery();
            throw MakeError(1033, order);
        }
    }
    RefuseBehindQuery();
    return query;
}

QueryPtr Parser::ParseNestedQuery() {
    if (!AtQuery()) Fail();
    return ParseQuery(QueryPlace::kNested);
}

QueryBodyPtr Parser::ParseQueryBody(QueryPlace place) {
    const Position start = Peek().position;
    QueryBodyPtr first = ParseIntersect(place);
    if (!At(Keyword::kUnion) && !At(Keyword::kExcept)) return first;
    auto operation = std::make_unique<SetOperation>(start);
    operation->first = std::move(first);
    while (At(Keyword::kUnion) || At(Keyword::kExcept)) {
        SetOperation::Term term;
        term.op = Take().keyword == Keyword::kExcept ? SetOp::kExcept
                  : Accept(Keyword::kAll)            ? SetOp::kUnionAll
                                                     : SetOp::kUnion;
        term.body = ParseIntersect(place == QueryPlace::kStatement ? QueryPlace::kNested : place);
        operation->rest.push_back(std::move(term));
    }
    return operation;
}

QueryBodyPtr Parser::ParseIntersect(QueryPlace place) {
    const Position start = Peek().position;
    QueryBodyPtr first = ParseQueryTerm(place);
    if (!At(Keyword::kIntersect)) return first;
    auto operation = std::make_unique<SetOperation>(start);
    operation->first = std::move(first);
    while (Accept(Keyword::kIntersect)) {
        operation->rest.push_back({SetOp::kIntersect, ParseQueryTerm(QueryPlace::kNested)});
    }
    return operation;
}

QueryBodyPtr Parser::ParseQueryTerm(QueryPlace place) {
    if (!At(Op::kLeftParen)) return ParseSelectBody(place);
    const Level level(*this);
    Take();
    QueryBodyPtr body = ParseQueryBody(place);
    Expect(Op::kRightParen);
    return body;
}

QueryBodyPtr Parser::ParseSelectBody(QueryPlace place) {
    auto select = std::make_unique<SelectBody>(Expect(Keyword::kSelect).position);
    select->distinct = Accept(Keyword::kDistinct);
    if (!select->distinct) Accept(Keyword::kAll);
    if (At(Keyword::kTop)) select->top = ParseTop();
    ParseSelectItems(*select, place);
    if (At(Keyword::kInto)) {
        if (place != QueryPlace::kStatement) Fail();
        Take();
        select->into = TakeObjectName();
        // ON filegroup
        if (Accept(Keyword::kOn) && !Accept(Keyword::kPrimary)) TakeName();
    }
    if (At(Keyword::kFrom)) select->from = ParseFrom();
    if (Accept(Keyword::kWhere)) select->where = ParseCondition();
    if (At(Keyword::kGroup)) ParseGroupBy(*select);
    if (Accept(Keyword::kHaving)) select->having = ParseCondition();
    return select;
}

TopClause Parser::ParseTop() {
    TopClause top;
    Expect(Keyword::kTop);
    if (Accept(Op::kLeftParen)) {
        top.parentheses = true;
        if (At(Keyword::kSelect)) {
            auto subquery = std::make_unique<SubqueryExpr>(Peek().position);
            subquery->query = ParseNestedQuery();
            top.count = std::move(subquery);
        } else {
            top.count = ParseValue();
        }
        Expect(Op::kRightParen);
    } else {
        if (!At(TokenKind::kInteger) && !At(TokenKind::kDecimal) && !At(TokenKind::kFloat)) Fail();
        top.count = ParseLiteral();
    }
    top.percent = Accept(Keyword::kPercent);
    if (At(Keyword::kWith) && AtWord("ties", 1)) {
        Take();
        Take();
        top.withTies = true;
    }
    return top;
}

// All items assign, or none does.
void Parser::ParseSelectItems(SelectBody& select, QueryPlace place) {
    do {
        select.items.push_back(ParseSelectItem(place));
        const bool assigns = select.items.back().kind == SelectItemKind::kAssignment;
        if (assigns != select.Assigns()) throw MakeError(141, select.position);
    } while (Accept(Op::kComma));
    if (select.Assigns() && At(Keyword::kInto)) Fail();
}

std::optional<AssignOp> Parser::AssignmentAhead(std::size_t n) {
    switch (Peek(n).op) {
        case Op::kEqual:
            return AssignOp::kSet;
        case Op::kPlusEqual:
            return AssignOp::kAdd;
        case Op::kMinusEqual:
            return AssignOp::kSubtract;
        case Op::kStarEqual:
            return AssignOp::kMultiply;
        case Op::kSlashEqual:
            return AssignOp::kDivide;
        case Op::kPercentEqual:
            return AssignOp::kModulo;
        case Op::kAmpersandEqual:
            return AssignOp::kBitAnd;
        case Op::kPipeEqual:
            return AssignOp::kBitOr;
        case Op::kCaretEqual:
            return AssignOp::kBitXor;
        default:
            return std::nullopt;
    }
}

bool Parser::AcceptQualifiedStar(SelectItem& item) {
    if (!AtName() || !At(Op::kDot, 1)) return false;
    const State state = Save();
    ObjectName qualifier = TakeNameParts();
    if (At(Op::kDot) && At(Op::kStar, 1)) {
        CheckIsHere(qualifier);
        Take();
        Take();
        item.kind = SelectItemKind::kStar;
        item.qualifier = std::move(qualifier);
        return true;
    }
    Restore(state);
    return false;
}

SelectItem Parser::ParseSelectItem(QueryPlace place) {
    SelectItem item;
    item.position = Peek().position;
    if (Accept(Op::kStar)) {
        item.kind = SelectItemKind::kStar;
        return item;
    }
    if (AcceptQualifiedStar(item)) return item;
    if (At(TokenKind::kVariable) && place == QueryPlace::kStatement) {
        if (const std::optional<AssignOp> op = AssignmentAhead(1)) {
            item.kind = SelectItemKind::kAssignment;
            item.variable = TakeVariable();
            item.assign = *op;
            Take();
            item.expression = ParseValue();
            return item;
        }
    }
    if ((AtName() || AtString()) && At(Op::kEqual, 1)) {  // alias = value
        const Token alias = Take();
        item.alias = Name{TokenValue(alias), alias.position, alias.kind != TokenKind::kIdentifier};
        Take();
        item.expression = ParseValue();
        return item;
    }
    item.expression = ParseValue();
    const bool hasAs = Accept(Keyword::kAs);
    if (AtString()) {
        const Token alias = Take();
        item.alias = Name{TokenValue(alias), alias.position, true};
    } else if (hasAs || AtName()) {
        item.alias = TakeName();
    }
    return item;
}

std::vector<OrderItem> Parser::ParseOrderBy() {
    Expect(Keyword::kOrder);
    Expect(Keyword::kBy);
    std::vector<OrderItem> items;
    do {
        OrderItem item;
        item.expression = ParseValue();
        item.descending = Accept(Keyword::kDesc);
        if (!item.descending) Accept(Keyword::kAsc);
        items.push_back(std::move(item));
    } while (Accept(Op::kComma));
    return items;
}

// OFFSET n ROWS [FETCH NEXT n ROWS ONLY]
void Parser::ParseOffset(Query& query) {
    const auto rows = [&] {
        if (!AcceptWord("rows")) ExpectWord("row");
    };
    if (!AcceptWord("offset")) return;
    query.offset = ParseValue();
    rows();
    if (!At(Keyword::kFetch) || !(AtWord("next", 1) || AtWord("first", 1))) return;
    Take();
    Take();
    query.fetch = ParseValue();
    rows();
    ExpectWord("only");
}

std::vector<CommonTable> Parser::ParseCommonTables() {
    std::vector<CommonTable> tables;
    Expect(Keyword::kWith);
    do {
        CommonTable table;
        table.name = TakeName();
        if (At(Op::kLeftParen)) table.columns = TakeNamesInParentheses();
        Expect(Keyword::kAs);
        Expect(Op::kLeftParen);
        table.query = ParseNestedQuery();
        Expect(Op::kRightParen);
        tables.push_back(std::move(table));
    } while (Accept(Op::kComma));
    return tables;
}

// Where no query stands that the hint would belong to.
void Parser::SkipOptionClause() {
    const Position start = Peek().position;
    for (const std::string& option : ParseOptionClause()) {
        if (option.starts_with("maxrecursion"))
            throw MakeError(40510, start, {"OPTION (MAXRECURSION) of a change"});
    }
}

// OPTION (hint, …): each hint's words with one blank between them.
std::vector<std::string> Parser::ParseOptionClause() {
    std::vector<std::string> options;
    if (!Accept(Keyword::kOption)) return options;
    Expect(Op::kLeftParen);
    do {
        std::string words;
        while (!At(Op::kComma) && !At(Op::kRightParen)) {
            // USE HINT ('…'), TABLE HINT (t, …), OPTIMIZE FOR (@v = 1): how the server shall do it
            if (!words.empty() && At(Op::kLeftParen)) {
                SkipParentheses();
                continue;
            }
            if (!At(TokenKind::kIdentifier) && !At(TokenKind::kInteger)) Fail();
            if (!words.empty()) words += ' ';
            words += text::LowerAscii(Take().text);
        }
        if (words.empty()) Fail();
        options.push_back(std::move(words));
    } while (Accept(Op::kComma));
    Expect(Op::kRightParen);
    return options;
}

}  // namespace vicenter::tsql
