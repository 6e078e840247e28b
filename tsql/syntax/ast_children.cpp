#include "tsql/syntax/ast_children.h"

#include "tsql/syntax/ast_query.h"

namespace vicenter::tsql {

namespace {

using Each = std::function<void(const Expr&)>;

void Visit(const ExprPtr& child, const Each& each) {
    if (child) each(*child);
}

void VisitAll(const std::vector<ExprPtr>& children, const Each& each) {
    for (const ExprPtr& child : children)
        Visit(child, each);
}

void VisitKeys(const std::vector<OrderItem>& items, const Each& each) {
    for (const OrderItem& item : items)
        Visit(item.expression, each);
}

void VisitCall(const FunctionExpr& function, const Each& each) {
    VisitAll(function.arguments, each);
    VisitKeys(function.withinGroup, each);
    if (!function.over) return;
    VisitAll(function.over->partitionBy, each);
    VisitKeys(function.over->orderBy, each);
}

void VisitCase(const CaseExpr& choice, const Each& each) {
    Visit(choice.operand, each);
    for (const CaseExpr::Branch& branch : choice.branches) {
        Visit(branch.when, each);
        Visit(branch.then, each);
    }
    Visit(choice.otherwise, each);
}

}  // namespace

void ForEachChild(const Expr& expression, const Each& each) {
    switch (expression.kind) {
        case ExprKind::kLiteral:
        case ExprKind::kVariable:
        case ExprKind::kColumn:
        case ExprKind::kExists:
        case ExprKind::kSubquery:
            return;
        case ExprKind::kUnary:
            return Visit(As<UnaryExpr>(expression).operand, each);
        case ExprKind::kBinary:
            Visit(As<BinaryExpr>(expression).left, each);
            return Visit(As<BinaryExpr>(expression).right, each);
        case ExprKind::kComparison:
            Visit(As<ComparisonExpr>(expression).left, each);
            return Visit(As<ComparisonExpr>(expression).right, each);
        case ExprKind::kLogical:
            return VisitAll(As<LogicalExpr>(expression).operands, each);
        case ExprKind::kNot:
            return Visit(As<NotExpr>(expression).operand, each);
        case ExprKind::kBetween:
            Visit(As<BetweenExpr>(expression).operand, each);
            Visit(As<BetweenExpr>(expression).low, each);
            return Visit(As<BetweenExpr>(expression).high, each);
        case ExprKind::kLike:
            Visit(As<LikeExpr>(expression).operand, each);
            Visit(As<LikeExpr>(expression).pattern, each);
            return Visit(As<LikeExpr>(expression).escape, each);
        case ExprKind::kIn:
            Visit(As<InExpr>(expression).operand, each);
            return VisitAll(As<InExpr>(expression).list, each);
        case ExprKind::kIsNull:
            return Visit(As<IsNullExpr>(expression).operand, each);
        case ExprKind::kQuantified:
            return Visit(As<QuantifiedExpr>(expression).operand, each);
        case ExprKind::kCase:
            return VisitCase(As<CaseExpr>(expression), each);
        case ExprKind::kFunction:
            return VisitCall(As<FunctionExpr>(expression), each);
        case ExprKind::kCast:
            Visit(As<CastExpr>(expression).operand, each);
            return Visit(As<CastExpr>(expression).style, each);
        case ExprKind::kCollate:
            return Visit(As<CollateExpr>(expression).operand, each);
    }
}

bool HasQuery(const Expr& expression) {
    const auto* in = TryAs<InExpr>(&expression);
    return expression.kind == ExprKind::kSubquery || expression.kind == ExprKind::kExists ||
           expression.kind == ExprKind::kQuantified || (in != nullptr && in->query != nullptr);
}

bool HoldsQuery(const Expr& expression) {
    bool holds = HasQuery(expression);
    ForEachChild(expression, [&holds](const Expr& child) { holds = holds || HoldsQuery(child); });
    return holds;
}

const SelectBody& FirstSelect(const QueryBody& body) {
    const QueryBody* at = &body;
    while (at->kind == QueryBodyKind::kSetOperation)
        at = As<SetOperation>(*at).first.get();
    return As<SelectBody>(*at);
}

}  // namespace vicenter::tsql
