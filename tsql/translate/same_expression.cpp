// Questions about trees that translation asks.

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

bool SameLists(const std::vector<ExprPtr>& a, const std::vector<ExprPtr>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!SameExpression(*a[i], *b[i])) return false;
    }
    return true;
}

bool SameOptional(const ExprPtr& a, const ExprPtr& b) {
    if (!a || !b) return !a && !b;
    return SameExpression(*a, *b);
}

bool IsAggregateName(std::string_view name) {
    const FunctionEntry* entry = FindFunction(LowerAscii(name));
    if (entry != nullptr) return entry->kind == FunctionKind::kAggregate;
    // Aggregates of the server's that there are not: what is told is that, wherever they stand.
    return SameName(name, "stdev") || SameName(name, "var");
}

}  // namespace

bool SameExpression(const Expr& a, const Expr& b) {
    if (a.kind != b.kind) return false;
    switch (a.kind) {
        case ExprKind::kLiteral:
            return As<LiteralExpr>(a).literal == As<LiteralExpr>(b).literal &&
                   As<LiteralExpr>(a).text == As<LiteralExpr>(b).text;
        case ExprKind::kVariable:
            return SameName(As<VariableExpr>(a).name, As<VariableExpr>(b).name);
        case ExprKind::kColumn: {
            const ObjectName& left = As<ColumnExpr>(a).name;
            const ObjectName& right = As<ColumnExpr>(b).name;
            if (!SameName(left.Object(), right.Object())) return false;
            const bool qualified = left.parts.size() > 1 && right.parts.size() > 1;
            return !qualified || SameName(left.Schema(), right.Schema());
        }
        case ExprKind::kUnary:
            return As<UnaryExpr>(a).op == As<UnaryExpr>(b).op &&
                   SameExpression(*As<UnaryExpr>(a).operand, *As<UnaryExpr>(b).operand);
        case ExprKind::kBinary:
            return As<BinaryExpr>(a).op == As<BinaryExpr>(b).op &&
                   SameExpression(*As<BinaryExpr>(a).left, *As<BinaryExpr>(b).left) &&
                   SameExpression(*As<BinaryExpr>(a).right, *As<BinaryExpr>(b).right);
        case ExprKind::kComparison:
            return As<ComparisonExpr>(a).op == As<ComparisonExpr>(b).op &&
                   SameExpression(*As<ComparisonExpr>(a).left, *As<ComparisonExpr>(b).left) &&
                   SameExpression(*As<ComparisonExpr>(a).right, *As<ComparisonExpr>(b).right);
        case ExprKind::kIsNull:
            return As<IsNullExpr>(a).negated == As<IsNullExpr>(b).negated &&
                   SameExpression(*As<IsNullExpr>(a).operand, *As<IsNullExpr>(b).operand);
        case ExprKind::kLogical:
            return As<LogicalExpr>(a).isAnd == As<LogicalExpr>(b).isAnd &&
                   SameLists(As<LogicalExpr>(a).operands, As<LogicalExpr>(b).operands);
        case ExprKind::kFunction: {
            const auto& left = As<FunctionExpr>(a);
            const auto& right = As<FunctionExpr>(b);
            return SameName(left.name.Object(), right.name.Object()) && left.distinct == right.distinct &&
                   left.star == right.star && !left.over && !right.over &&
                   SameLists(left.arguments, right.arguments);
        }
        case ExprKind::kCast: {
            const auto& left = As<CastExpr>(a);
            const auto& right = As<CastExpr>(b);
            return left.type.name == right.type.name && left.type.length == right.type.length &&
                   left.type.scale == right.type.scale && SameExpression(*left.operand, *right.operand) &&
                   SameOptional(left.style, right.style);
        }
        case ExprKind::kCase: {
            const auto& left = As<CaseExpr>(a);
            const auto& right = As<CaseExpr>(b);
            if (left.branches.size() != right.branches.size()) return false;
            for (std::size_t i = 0; i < left.branches.size(); ++i) {
                if (!SameExpression(*left.branches[i].when, *right.branches[i].when)) return false;
                if (!SameExpression(*left.branches[i].then, *right.branches[i].then)) return false;
            }
            return SameOptional(left.operand, right.operand) && SameOptional(left.otherwise, right.otherwise);
        }
        default:
            return false;
    }
}

void VisitAll(const Expr& expression, const std::function<void(const Expr&)>& visit) {
    const auto one = [&visit](const ExprPtr& child) {
        if (child) VisitAll(*child, visit);
    };
    const auto all = [&one](const std::vector<ExprPtr>& list) {
        for (const ExprPtr& child : list)
            one(child);
    };
    visit(expression);
    switch (expression.kind) {
        case ExprKind::kFunction:
            return all(As<FunctionExpr>(expression).arguments);
        case ExprKind::kUnary:
            return one(As<UnaryExpr>(expression).operand);
        case ExprKind::kBinary:
            one(As<BinaryExpr>(expression).left);
            return one(As<BinaryExpr>(expression).right);
        case ExprKind::kComparison:
            one(As<ComparisonExpr>(expression).left);
            return one(As<ComparisonExpr>(expression).right);
        case ExprKind::kLogical:
            return all(As<LogicalExpr>(expression).operands);
        case ExprKind::kNot:
            return one(As<NotExpr>(expression).operand);
        case ExprKind::kBetween:
            one(As<BetweenExpr>(expression).operand);
            one(As<BetweenExpr>(expression).low);
            return one(As<BetweenExpr>(expression).high);
        case ExprKind::kLike:
            one(As<LikeExpr>(expression).operand);
            return one(As<LikeExpr>(expression).pattern);
        case ExprKind::kIn:
            one(As<InExpr>(expression).operand);
            return all(As<InExpr>(expression).list);
        case ExprKind::kIsNull:
            return one(As<IsNullExpr>(expression).operand);
        case ExprKind::kQuantified:
            return one(As<QuantifiedExpr>(expression).operand);
        case ExprKind::kCast:
            return one(As<CastExpr>(expression).operand);
        case ExprKind::kCollate:
            return one(As<CollateExpr>(expression).operand);
        case ExprKind::kCase: {
            const auto& choice = As<CaseExpr>(expression);
            one(choice.operand);
            for (const CaseExpr::Branch& branch : choice.branches) {
                one(branch.when);
                one(branch.then);
            }
            return one(choice.otherwise);
        }
        default:
            return;
    }
}

bool IsAggregate(const Expr& expression) {
    const auto* function = TryAs<FunctionExpr>(&expression);
    return function != nullptr && !function->over && IsAggregateName(function->name.Object());
}

bool HasAggregate(const Expr& expression) {
    bool found = false;
    VisitAll(expression, [&found](const Expr& one) { found = found || IsAggregate(one); });
    return found;
}

bool HasWindow(const Expr& expression) {
    bool found = false;
    VisitAll(expression, [&found](const Expr& one) {
        const auto* function = TryAs<FunctionExpr>(&one);
        found = found || (function != nullptr && function->over);
    });
    return found;
}

}  // namespace vicenter::tsql::engine
