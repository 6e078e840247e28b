// What stands in FROM: tables, derived tables, joins.

#include <algorithm>

#include "text/ascii.h"
#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {
namespace {

bool IsTableHint(const Token& token) {
    static constexpr std::string_view kHints[] = {
        "nolock",         "readuncommitted", "readcommitted",     "readcommittedlock",
        "repeatableread", "serializable",    "updlock",           "rowlock",
        "paglock",        "tablock",         "tablockx",          "xlock",
        "readpast",       "nowait",          "noexpand",          "forceseek",
        "forcescan",      "snapshot",        "keepnulls",         "keepidentity",
        "keepdefaults",   "ignore_triggers", "ignore_constraints"};
    if (token.keyword == Keyword::kHoldlock || token.keyword == Keyword::kIndex) return true;
    return std::any_of(std::begin(kHints), std::end(kHints),
                       [&](std::string_view hint) { return IsWord(token.text, hint); });
}

}  // namespace

std::vector<TableSourcePtr> Parser::ParseFrom() {
    Expect(Keyword::kFrom);
    std::vector<TableSourcePtr> sources;
    do {
        sources.push_back(ParseJoins(ParseSource()));
    } while (Accept(Op::kComma));
    return sources;
}

bool Parser::AtJoin() {
    switch (Peek().keyword) {
        case Keyword::kJoin:
        case Keyword::kInner:
        case Keyword::kCross:
        // LEFT and RIGHT are functions, too, but those do not follow a table.
        case Keyword::kLeft:
        case Keyword::kRight:
        case Keyword::kFull:
        case Keyword::kOuter:
            return true;
        default:
            return false;
    }
}

JoinKind Parser::TakeJoinKind() {
    JoinKind kind = JoinKind::kInner;
    switch (Peek().keyword) {
        case Keyword::kJoin:
            break;
        case Keyword::kInner:
            Take();
            break;
        case Keyword::kCross:
            Take();
            if (AcceptWord("apply")) return JoinKind::kCrossApply;
            Expect(Keyword::kJoin);
            return JoinKind::kCross;
        case Keyword::kOuter:
            Take();
            ExpectWord("apply");
            return JoinKind::kOuterApply;
        default: {
            const Keyword side = Take().keyword;
            kind = side == Keyword::kLeft    ? JoinKind::kLeft
                   : side == Keyword::kRight ? JoinKind::kRight
                                             : JoinKind::kFull;
            Accept(Keyword::kOuter);
            break;
        }
    }
    // How the server shall join: nothing to do here.
    if (AtWord("loop") || AtWord("hash") || AtWord("remote") || At(Keyword::kMerge)) Take();
    Expect(Keyword::kJoin);
    return kind;
}

TableSourcePtr Parser::ParseJoins(TableSourcePtr left) {
    while (AtJoin()) {
        const Position start = left->position;
        auto join = std::make_unique<JoinedTable>(start);
        join->join = TakeJoinKind();
        join->left = std::move(left);
        join->right = ParseSource();
        const bool hasCondition = join->join != JoinKind::kCross && join->join != JoinKind::kCrossApply &&
                                  join->join != JoinKind::kOuterApply;
        if (hasCondition) {
            // a LEFT JOIN b INNER JOIN c ON … ON …: the inner join belongs to the right side.
            if (!At(Keyword::kOn)) {
                const Level level(*this);
                join->right = ParseJoins(std::move(join->right));
            }
            Expect(Keyword::kOn);
            join->on = ParseCondition();
        }
        const int depth = std::max(join->left->depth, join->right->depth) + 1;
        if (depth > kJoinLimit) throw MakeError(191, start);
        join->depth = static_cast<std::uint16_t>(depth);
        left = std::move(join);
    }
    return left;
}

void Parser::ParseAlias(Name& alias) {
    if (Accept(Keyword::kAs) || AtName()) alias = TakeName();
}

bool Parser::AtHints() {
    if (At(Keyword::kWith) && At(Op::kLeftParen, 1)) return true;
    return At(Op::kLeftParen) && At(TokenKind::kIdentifier, 1) && IsTableHint(Peek(1));
}

std::vector<std::string> Parser::ParseHints() {
    std::vector<std::string> hints;
    Accept(Keyword::kWith);
    Expect(Op::kLeftParen);
    for (;;) {
        if (!At(TokenKind::kIdentifier) || !IsTableHint(Peek())) Fail();
        const Token hint = Take();
        std::string text = text::LowerAscii(hint.text);
        if (hint.keyword == Keyword::kIndex) {  // INDEX (name, 1) or INDEX = name
            if (Accept(Op::kEqual)) {
                TakeName();
            } else {
                SkipParentheses();
            }
            const std::uint32_t from = hint.EndOffset();
            text += std::string(lexer_.Text().substr(from, previous_.EndOffset() - from));
        }
        hints.push_back(std::move(text));
        Accept(Op::kComma);
        if (Accept(Op::kRightParen)) return hints;
    }
}

TableSourcePtr Parser::ParseSource() {
    return ParsePivots(ParseOneSource());
}

TableSourcePtr Parser::ParseOneSource() {
    const Position start = Peek().position;
    if (At(Op::kLeftParen)) return ParseSourceInParentheses();
    if (AtBrace("{") && AtWord("oj", 1)) {
        Take();
        Take();
        TableSourcePtr source = ParseJoins(ParseSource());
        ExpectBraceEnd();
        return source;
    }
    RefuseRowset();
    if (At(TokenKind::kVariable)) {
        auto table = std::make_unique<TableRef>(start);
        const Token variable = Take();
        table->name.parts.push_back(Name{std::string(variable.text), variable.position, false});
        ParseAlias(table->alias);
        if (AtHints()) table->hints = ParseHints();
        return table;
    }
    ObjectName name = TakeObjectName();
    if (At(Op::kLeftParen) && !AtHints()) {
        RefuseMethod(name);
        auto function = std::make_unique<FunctionTable>(start);
        function->name = std::move(name);
        Take();
        if (!At(Op::kRightParen)) function->arguments = ParseValueList();
        Expect(Op::kRightParen);
        ParseAlias(function->alias);
        if (!function->alias.IsEmpty() && At(Op::kLeftParen)) function->columns = TakeNamesInParentheses();
        return function;
    }
    auto table = std::make_unique<TableRef>(start);
    table->name = std::move(name);
    if (AtHints()) table->hints = ParseHints();
    ParseAlias(table->alias);
    if (table->hints.empty() && AtHints()) table->hints = ParseHints();
    RefuseBehindSource();
    return table;
}

// (select …) a, (values …) a (b), or joins in parentheses.
TableSourcePtr Parser::ParseSourceInParentheses() {
    const Level level(*this);
    if (AtQuery()) {
        // "((select …) a join b on …)" starts alike: what follows the inner parenthesis tells them apart.
        const State state = Save();
        auto derived = std::make_unique<DerivedTable>(Take().position);
        bool isQuery = true;
        if (At(Op::kLeftParen)) {
            SkipParentheses();
            isQuery =
                At(Op::kRightParen) || At(Keyword::kUnion) || At(Keyword::kExcept) || At(Keyword::kIntersect);
            Restore(state);
            Take();
        }
        if (isQuery) {
            derived->query = ParseNestedQuery();
            Expect(Op::kRightParen);
            ParseAlias(derived->alias);
            if (derived->alias.IsEmpty()) Fail();
            if (At(Op::kLeftParen)) derived->columns = TakeNamesInParentheses();
            return derived;
        }
        Restore(state);
    }
    const Position start = Expect(Op::kLeftParen).position;
    if (Accept(Keyword::kValues)) {
        auto values = std::make_unique<ValuesTable>(start);
        do {
            Expect(Op::kLeftParen);
            values->rows.push_back(ParseValueList());
            Expect(Op::kRightParen);
            if (values->rows.back().size() != values->rows.front().size()) throw MakeError(10709, start);
        } while (Accept(Op::kComma));
        Expect(Op::kRightParen);
        ParseAlias(values->alias);
        values->columns = TakeNamesInParentheses();
        return values;
    }
    TableSourcePtr joined = ParseJoins(ParseSource());
    Expect(Op::kRightParen);
    return joined;
}

}  // namespace vicenter::tsql
