// Names, calls, CAST and CONVERT.

#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

ExprPtr Parser::ParseNameOrCall() {
    const Position start = Peek().position;
    if (At(Op::kLeftParen, 1)) {
        if (AtWord("cast")) return ParseCast(false);
        if (AtWord("try_cast")) return ParseCast(true);
    }
    ObjectName name = TakeNameParts();
    if (At(Op::kDot) && AtPseudoColumn(1)) {
        Take();
        return ParsePseudoColumn(std::move(name));
    }
    if (At(Op::kLeftParen)) {
        RefuseMethod(name);
        CheckIsHere(name);
        return ParseCall(std::move(name));
    }
    CheckColumnIsHere(name);
    return std::make_unique<ColumnExpr>(start, std::move(name));
}

bool Parser::AtPseudoColumn(std::size_t n) {
    return At(TokenKind::kPseudoColumn, n) || At(Keyword::kIdentitycol, n) || At(Keyword::kRowguidcol, n);
}

// $IDENTITY, once called IDENTITYCOL: the identity column, whatever its name.
ExprPtr Parser::ParsePseudoColumn(ObjectName owner) {
    RefusePseudoColumn();
    const Token token = Take();
    const Position start = owner.IsEmpty() ? token.position : owner.Where();
    owner.parts.push_back(Name{std::string(token.text), token.position, false});
    return std::make_unique<ColumnExpr>(start, std::move(owner));
}

// Reserved words that start a value.
ExprPtr Parser::ParseKeywordPrimary() {
    const Token token = Peek();
    const auto call = [&] {
        Take();
        ObjectName name;
        name.parts.push_back(Name{std::string(token.text), token.position, false});
        return name;
    };
    switch (token.keyword) {
        case Keyword::kNull:
            Take();
            return std::make_unique<LiteralExpr>(token.position, LiteralKind::kNull, "");
        case Keyword::kIdentitycol:
        case Keyword::kRowguidcol:
            return ParsePseudoColumn({});
        case Keyword::kCase:
            return ParseCase();
        case Keyword::kConvert:
            return ParseConvert(false);
        case Keyword::kTryConvert:
            return ParseConvert(true);
        case Keyword::kCoalesce:
        case Keyword::kNullif:
        case Keyword::kLeft:
        case Keyword::kRight:
        case Keyword::kIdentity:
            if (!At(Op::kLeftParen, 1)) Fail();
            return ParseCall(call());
        case Keyword::kCurrentTimestamp:
        case Keyword::kCurrentUser:
        case Keyword::kSessionUser:
        case Keyword::kSystemUser:
        case Keyword::kUser: {
            auto function = std::make_unique<FunctionExpr>(token.position, call());
            function->hasParentheses = false;
            return function;
        }
        default:
            Fail();
    }
}

ExprPtr Parser::ParseCall(ObjectName name) {
    const Level level(*this);
    const bool firstIsCondition = name.parts.size() == 1 && IsWord(name.Object(), "iif");
    const Position start = name.Where();
    auto function = std::make_unique<FunctionExpr>(start, std::move(name));
    Expect(Op::kLeftParen);
    if (At(Op::kStar) && At(Op::kRightParen, 1)) {
        Take();
        function->star = true;
    } else if (!At(Op::kRightParen)) {
        function->distinct = Accept(Keyword::kDistinct);
        if (!function->distinct) Accept(Keyword::kAll);
        if (firstIsCondition) {
            function->arguments.push_back(ParseCondition());
            Expect(Op::kComma);
        }
        do {
            function->arguments.push_back(ParseValue());
            // DISTINCT takes one value.
            if (function->distinct && !At(Op::kRightParen)) Fail();
        } while (Accept(Op::kComma));
        RefuseTrim(*function);
    }
    Expect(Op::kRightParen);
    if (AtWord("within") && At(Keyword::kGroup, 1)) {
        Take();
        Take();
        Expect(Op::kLeftParen);
        function->withinGroup = ParseOrderBy();
        Expect(Op::kRightParen);
    }
    RefuseBehindCall();
    if (At(Keyword::kOver)) function->over = ParseOver();
    for (const ExprPtr& argument : function->arguments)
        Deepen(*function, argument);
    return function;
}

OverClause Parser::ParseOver() {
    OverClause over;
    Expect(Keyword::kOver);
    Expect(Op::kLeftParen);
    if (AcceptWord("partition")) {
        Expect(Keyword::kBy);
        over.partitionBy = ParseValueList();
    }
    if (At(Keyword::kOrder)) over.orderBy = ParseOrderBy();
    if (AtWord("rows") || AtWord("range")) over.frame = ParseFrame();
    Expect(Op::kRightParen);
    return over;
}

// ROWS bound, RANGE BETWEEN bound AND bound
WindowFrame Parser::ParseFrame() {
    WindowFrame frame;
    frame.isRows = AcceptWord("rows");
    if (!frame.isRows) ExpectWord("range");
    const bool between = Accept(Keyword::kBetween);
    frame.start = ParseFrameBound();
    if (!between) return frame;
    Expect(Keyword::kAnd);
    frame.end = ParseFrameBound();
    return frame;
}

FrameBound Parser::ParseFrameBound() {
    FrameBound bound;
    if (Accept(Keyword::kCurrent)) {
        ExpectWord("row");
        return bound;
    }
    const bool unbounded = AcceptWord("unbounded");
    if (!unbounded) {
        if (!At(TokenKind::kInteger)) Fail();
        bound.rows = ParseLiteral();
    }
    if (AcceptWord("preceding")) {
        bound.kind = unbounded ? FrameBoundKind::kUnboundedPreceding : FrameBoundKind::kPreceding;
    } else {
        ExpectWord("following");
        bound.kind = unbounded ? FrameBoundKind::kUnboundedFollowing : FrameBoundKind::kFollowing;
    }
    return bound;
}

ExprPtr Parser::ParseCast(bool tryOnly) {
    const Level level(*this);
    auto cast = std::make_unique<CastExpr>(Take().position);
    cast->tryOnly = tryOnly;
    Expect(Op::kLeftParen);
    cast->operand = ParseValue();
    Expect(Keyword::kAs);
    cast->type = TakeType();
    Expect(Op::kRightParen);
    Deepen(*cast, cast->operand);
    return cast;
}

ExprPtr Parser::ParseConvert(bool tryOnly) {
    const Level level(*this);
    auto cast = std::make_unique<CastExpr>(Take().position);
    cast->convert = true;
    cast->tryOnly = tryOnly;
    Expect(Op::kLeftParen);
    cast->type = TakeType();
    Expect(Op::kComma);
    cast->operand = ParseValue();
    if (Accept(Op::kComma)) cast->style = ParseValue();
    Expect(Op::kRightParen);
    Deepen(*cast, cast->operand);
    Deepen(*cast, cast->style);
    return cast;
}

}  // namespace vicenter::tsql
