// Search conditions.

#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

ExprPtr Parser::ParseCondition() {
    ExprPtr expr = ParseAnyCondition();
    RequireCondition(expr);
    return expr;
}

// OR over AND over NOT over predicates. A lone value passes, for the caller to refuse or to go on with.
ExprPtr Parser::ParseAnyCondition() {
    const Level level(*this, 1);
    ExprPtr first = ParseAnd();
    if (!At(Keyword::kOr)) return first;
    RequireCondition(first);
    auto any = std::make_unique<LogicalExpr>(first->position, false);
    any->operands.push_back(std::move(first));
    while (Accept(Keyword::kOr)) {
        any->operands.push_back(ParseAnd());
        RequireCondition(any->operands.back());
    }
    for (const ExprPtr& operand : any->operands)
        Deepen(*any, operand);
    return any;
}

ExprPtr Parser::ParseAnd() {
    ExprPtr first = ParseNot();
    if (!At(Keyword::kAnd)) return first;
    RequireCondition(first);
    auto all = std::make_unique<LogicalExpr>(first->position, true);
    all->operands.push_back(std::move(first));
    while (Accept(Keyword::kAnd)) {
        all->operands.push_back(ParseNot());
        RequireCondition(all->operands.back());
    }
    for (const ExprPtr& operand : all->operands)
        Deepen(*all, operand);
    return all;
}

ExprPtr Parser::ParseNot() {
    if (!At(Keyword::kNot)) return ParsePredicate();
    const Level level(*this);
    const Position start = Take().position;
    ExprPtr operand = ParseNot();
    RequireCondition(operand);
    auto negation = std::make_unique<NotExpr>(start, std::move(operand));
    Deepen(*negation, negation->operand);
    return negation;
}

ExprPtr Parser::ParsePredicate() {
    RefusePredicate();
    if (At(Keyword::kExists)) {
        auto exists = std::make_unique<ExistsExpr>(Take().position);
        Expect(Op::kLeftParen);
        exists->query = ParseNestedQuery();
        Expect(Op::kRightParen);
        return exists;
    }
    return ParsePredicateTail(ParseOperators(0, true));
}

bool IsCondition(const Expr& expr) {
    switch (expr.kind) {
        case ExprKind::kComparison:
        case ExprKind::kLogical:
        case ExprKind::kNot:
        case ExprKind::kBetween:
        case ExprKind::kLike:
        case ExprKind::kIn:
        case ExprKind::kExists:
        case ExprKind::kIsNull:
        case ExprKind::kQuantified:
            return true;
        default:
            return false;
    }
}

ExprPtr Parser::ParsePredicateTail(ExprPtr left) {
    if (IsCondition(*left)) return left;  // in parentheses
    if (const std::optional<ComparisonOp> op = AcceptComparison())
        return ParseComparisonTail(std::move(left), *op);
    const Position position = left->position;
    if (Accept(Keyword::kIs)) {
        auto isNull = std::make_unique<IsNullExpr>(position);
        isNull->negated = Accept(Keyword::kNot);
        if (At(Keyword::kDistinct)) throw MakeError(40510, position, {"IS DISTINCT FROM"});
        Expect(Keyword::kNull);
        isNull->operand = std::move(left);
        Deepen(*isNull, isNull->operand);
        return isNull;
    }
    const bool negated =
        At(Keyword::kNot) && (At(Keyword::kBetween, 1) || At(Keyword::kLike, 1) || At(Keyword::kIn, 1));
    if (negated) Take();
    if (Accept(Keyword::kBetween)) {
        auto between = std::make_unique<BetweenExpr>(position);
        between->negated = negated;
        between->operand = std::move(left);
        between->low = ParseValue();
        Expect(Keyword::kAnd);
        between->high = ParseValue();
        Deepen(*between, between->operand);
        Deepen(*between, between->low);
        Deepen(*between, between->high);
        return between;
    }
    if (Accept(Keyword::kLike)) {
        auto like = std::make_unique<LikeExpr>(position);
        like->negated = negated;
        like->operand = std::move(left);
        like->pattern = ParseValue();
        if (Accept(Keyword::kEscape)) like->escape = ParseValue();
        Deepen(*like, like->operand);
        Deepen(*like, like->pattern);
        Deepen(*like, like->escape);
        return like;
    }
    if (Accept(Keyword::kIn)) {
        auto in = std::make_unique<InExpr>(position);
        in->negated = negated;
        in->operand = std::move(left);
        return ParseInTail(std::move(in));
    }
    return left;
}

ExprPtr Parser::ParseInTail(std::unique_ptr<InExpr> in) {
    const Level level(*this);
    Expect(Op::kLeftParen);
    const State state = Save();
    if (At(Keyword::kSelect) || (At(Op::kLeftParen) && AtQuery())) in->query = ParseNestedQuery();
    // (SELECT …), … are values, each by itself.
    const bool isList = !in->query || !At(Op::kRightParen);
    if (in->query && isList) {
        in->query.reset();
        Restore(state);
    }
    if (isList) in->list = ParseValueList();
    Expect(Op::kRightParen);
    Deepen(*in, in->operand);
    for (const ExprPtr& value : in->list)
        Deepen(*in, value);
    return in;
}

ExprPtr Parser::ParseComparisonTail(ExprPtr left, ComparisonOp op) {
    const Position position = left->position;
    if (At(Keyword::kAll) || At(Keyword::kAny) || At(Keyword::kSome)) {
        auto quantified = std::make_unique<QuantifiedExpr>(position);
        quantified->op = op;
        quantified->all = Take().keyword == Keyword::kAll;
        quantified->operand = std::move(left);
        Expect(Op::kLeftParen);
        quantified->query = ParseNestedQuery();
        Expect(Op::kRightParen);
        Deepen(*quantified, quantified->operand);
        return quantified;
    }
    auto comparison = std::make_unique<ComparisonExpr>(position, op, std::move(left), ParseValue());
    Deepen(*comparison, comparison->left);
    Deepen(*comparison, comparison->right);
    return comparison;
}

// Blanks may stand within an operator: "> =".
std::optional<ComparisonOp> Parser::AcceptComparison() {
    ComparisonOp op = ComparisonOp::kEqual;
    switch (Peek().op) {
        case Op::kEqual:
            op = ComparisonOp::kEqual;
            break;
        case Op::kNotEqual:
            op = ComparisonOp::kNotEqual;
            break;
        case Op::kLessEqual:
            op = ComparisonOp::kLessEqual;
            break;
        case Op::kGreaterEqual:
            op = ComparisonOp::kGreaterEqual;
            break;
        case Op::kLess:
            op = ComparisonOp::kLess;
            break;
        case Op::kGreater:
            op = ComparisonOp::kGreater;
            break;
        default:
            return std::nullopt;
    }
    Take();
    if (op == ComparisonOp::kLess && Accept(Op::kGreater)) return ComparisonOp::kNotEqual;
    if (op == ComparisonOp::kLess && Accept(Op::kEqual)) return ComparisonOp::kLessEqual;
    if (op == ComparisonOp::kGreater && Accept(Op::kEqual)) return ComparisonOp::kGreaterEqual;
    return op;
}

}  // namespace vicenter::tsql
