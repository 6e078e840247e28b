// Values: operators by precedence, literals, names, CASE.

#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {
namespace {

struct OperatorInfo {
    BinaryOp op;
    int precedence;
};

std::optional<OperatorInfo> FindOperator(Op op) {
    switch (op) {
        case Op::kStar:
            return OperatorInfo{BinaryOp::kMultiply, 2};
        case Op::kSlash:
            return OperatorInfo{BinaryOp::kDivide, 2};
        case Op::kPercent:
            return OperatorInfo{BinaryOp::kModulo, 2};
        case Op::kPlus:
            return OperatorInfo{BinaryOp::kAdd, 1};
        case Op::kMinus:
            return OperatorInfo{BinaryOp::kSubtract, 1};
        case Op::kAmpersand:
            return OperatorInfo{BinaryOp::kBitAnd, 1};
        case Op::kPipe:
            return OperatorInfo{BinaryOp::kBitOr, 1};
        case Op::kCaret:
            return OperatorInfo{BinaryOp::kBitXor, 1};
        default:
            return std::nullopt;
    }
}

}  // namespace

ExprPtr Parser::WholeExpression(bool condition) {
    ExprPtr expr = condition ? ParseCondition() : ParseValue();
    if (!AtEnd()) Fail();
    return expr;
}

// Precedence climbing. Where a condition is allowed, parentheses may turn out to hold one; it then stands
// alone.
ExprPtr Parser::ParseOperators(int lowest, bool conditionAllowed) {
    ExprPtr left = ParseUnary(conditionAllowed);
    if (IsCondition(*left)) return left;
    for (;;) {
        const std::optional<OperatorInfo> info = FindOperator(Peek().op);
        if (!info || info->precedence < lowest) return left;
        const Position opPosition = Take().position;
        ExprPtr right = ParseOperators(info->precedence + 1, false);
        const Position position = left->position;
        auto binary = std::make_unique<BinaryExpr>(position, info->op, std::move(left), std::move(right));
        binary->opPosition = opPosition;
        Deepen(*binary, binary->left);
        Deepen(*binary, binary->right);
        left = std::move(binary);
    }
}

ExprPtr Parser::ParseUnary(bool conditionAllowed) {
    const Token token = Peek();
    UnaryOp op = UnaryOp::kPlus;
    switch (token.op) {
        case Op::kPlus:
            op = UnaryOp::kPlus;
            break;
        case Op::kMinus:
            op = UnaryOp::kMinus;
            break;
        case Op::kTilde:
            op = UnaryOp::kBitNot;
            break;
        default:
            return ParsePrimary(conditionAllowed);
    }
    const Level level(*this);
    Take();
    auto unary = std::make_unique<UnaryExpr>(token.position, op, ParseUnary(false));
    Deepen(*unary, unary->operand);
    return unary;
}

ExprPtr Parser::ParsePrimary(bool conditionAllowed) {
    ExprPtr expr;
    RefuseValue();
    const Token& token = Peek();
    switch (token.kind) {
        case TokenKind::kInteger:
        case TokenKind::kDecimal:
        case TokenKind::kFloat:
        case TokenKind::kMoney:
        case TokenKind::kString:
        case TokenKind::kNString:
        case TokenKind::kBinary:
            expr = ParseLiteral();
            break;
        case TokenKind::kVariable: {
            const Token variable = Take();
            auto use = std::make_unique<VariableExpr>(variable.position, std::string(variable.text));
            if (!use->IsGlobal()) usedVariables_.push_back(Name{use->name, use->position, false});
            expr = std::move(use);
            break;
        }
        case TokenKind::kPseudoColumn:
            expr = ParsePseudoColumn({});
            break;
        case TokenKind::kIdentifier:
            expr = AtName() ? ParseNameOrCall() : ParseKeywordPrimary();
            break;
        case TokenKind::kQuotedIdentifier:
            expr = ParseNameOrCall();
            break;
        default:
            if (AtBrace("{")) {
                expr = ParseBraces();
                break;
            }
            if (token.op != Op::kLeftParen) Fail();
            expr = ParseParentheses(conditionAllowed);
            if (IsCondition(*expr)) return expr;
            break;
    }
    while (Accept(Keyword::kCollate)) {
        const Position position = expr->position;
        auto collate = std::make_unique<CollateExpr>(position, std::move(expr), TakeName());
        Deepen(*collate, collate->operand);
        expr = std::move(collate);
    }
    RefuseBehindValue();
    return expr;
}

ExprPtr Parser::ParseParentheses(bool conditionAllowed) {
    const Level level(*this, At(Keyword::kSelect, 1) ? kParenthesesOfLevel : 1);
    const Position start = Expect(Op::kLeftParen).position;
    if (At(Keyword::kSelect)) {
        auto subquery = std::make_unique<SubqueryExpr>(start);
        subquery->query = ParseNestedQuery();
        Expect(Op::kRightParen);
        return subquery;
    }
    ExprPtr inner = conditionAllowed ? ParseAnyCondition() : ParseValue();
    Expect(Op::kRightParen);
    return inner;
}

ExprPtr Parser::ParseLiteral() {
    LiteralKind kind = LiteralKind::kInteger;
    switch (Peek().kind) {
        case TokenKind::kInteger:
            kind = LiteralKind::kInteger;
            break;
        case TokenKind::kDecimal:
            kind = LiteralKind::kDecimal;
            break;
        case TokenKind::kFloat:
            kind = LiteralKind::kFloat;
            break;
        case TokenKind::kMoney:
            kind = LiteralKind::kMoney;
            break;
        case TokenKind::kString:
            kind = LiteralKind::kString;
            break;
        case TokenKind::kNString:
            kind = LiteralKind::kNString;
            break;
        case TokenKind::kBinary:
            kind = LiteralKind::kBinary;
            break;
        default:
            Fail();
    }
    const Token token = Take();
    return std::make_unique<LiteralExpr>(token.position, kind, TokenValue(token));
}

// For defaults and arguments, which take no expressions.
ExprPtr Parser::ParseConstant() {
    if (At(Op::kMinus) || At(Op::kPlus)) {
        const Token sign = Take();
        if (!At(TokenKind::kInteger) && !At(TokenKind::kDecimal) && !At(TokenKind::kFloat) &&
            !At(TokenKind::kMoney)) {
            Fail();
        }
        auto unary = std::make_unique<UnaryExpr>(
            sign.position, sign.op == Op::kMinus ? UnaryOp::kMinus : UnaryOp::kPlus, ParseLiteral());
        Deepen(*unary, unary->operand);
        return unary;
    }
    if (At(Keyword::kNull)) {
        const Token token = Take();
        return std::make_unique<LiteralExpr>(token.position, LiteralKind::kNull, "");
    }
    if (AtName()) {
        // A bare word is a text here.
        const Token token = Take();
        return std::make_unique<LiteralExpr>(token.position, LiteralKind::kString, TokenValue(token));
    }
    return ParseLiteral();
}

ExprPtr Parser::ParseCase() {
    const Level level(*this);
    auto expr = std::make_unique<CaseExpr>(Expect(Keyword::kCase).position);
    if (!At(Keyword::kWhen)) {
        expr->operand = ParseValue();
        Deepen(*expr, expr->operand);
    }
    if (!At(Keyword::kWhen)) Fail();
    while (Accept(Keyword::kWhen)) {
        CaseExpr::Branch branch;
        branch.when = expr->operand ? ParseValue() : ParseCondition();
        Expect(Keyword::kThen);
        branch.then = ParseValue();
        Deepen(*expr, branch.when);
        Deepen(*expr, branch.then);
        expr->branches.push_back(std::move(branch));
    }
    if (Accept(Keyword::kElse)) {
        expr->otherwise = ParseValue();
        Deepen(*expr, expr->otherwise);
    }
    Expect(Keyword::kEnd);
    return expr;
}

std::vector<ExprPtr> Parser::ParseValueList() {
    std::vector<ExprPtr> values;
    do {
        values.push_back(ParseValue());
    } while (Accept(Op::kComma));
    return values;
}

void Parser::RequireCondition(const ExprPtr& expr) {
    if (IsCondition(*expr)) return;
    const Token& next = AtEnd() ? previous_ : Peek();
    throw MakeError(4145, next.position, {TokenValue(next)});
}

}  // namespace vicenter::tsql
