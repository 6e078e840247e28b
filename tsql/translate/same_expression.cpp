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

bool AnyAggregate(const std::vector<ExprPtr>& list) {
    for (const ExprPtr& entry : list) {
        if (HasAggregate(*entry)) return true;
    }
    return false;
}

bool MayHaveAggregate(const ExprPtr& expression) {
    return expression && HasAggregate(*expression);
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

bool HasAggregate(const Expr& expression) {
    switch (expression.kind) {
        case ExprKind::kFunction: {
            const auto& function = As<FunctionExpr>(expression);
            if (!function.over && IsAggregateName(function.name.Object())) return true;
            return AnyAggregate(function.arguments);
        }
        case ExprKind::kUnary:
            return HasAggregate(*As<UnaryExpr>(expression).operand);
        case ExprKind::kBinary:
            return HasAggregate(*As<BinaryExpr>(expression).left) ||
                   HasAggregate(*As<BinaryExpr>(expression).right);
        case ExprKind::kComparison:
            return HasAggregate(*As<ComparisonExpr>(expression).left) ||
                   HasAggregate(*As<ComparisonExpr>(expression).right);
        case ExprKind::kLogical:
            return AnyAggregate(As<LogicalExpr>(expression).operands);
        case ExprKind::kNot:
            return HasAggregate(*As<NotExpr>(expression).operand);
        case ExprKind::kBetween: {
            const auto& between = As<BetweenExpr>(expression);
            return HasAggregate(*between.operand) || HasAggregate(*between.low) ||
                   HasAggregate(*between.high);
        }
        case ExprKind::kLike:
            return HasAggregate(*As<LikeExpr>(expression).operand) ||
                   HasAggregate(*As<LikeExpr>(expression).pattern);
        case ExprKind::kIn:
            return HasAggregate(*As<InExpr>(expression).operand) || AnyAggregate(As<InExpr>(expression).list);
        case ExprKind::kIsNull:
            return HasAggregate(*As<IsNullExpr>(expression).operand);
        case ExprKind::kCast:
            return HasAggregate(*As<CastExpr>(expression).operand);
        case ExprKind::kCollate:
            return HasAggregate(*As<CollateExpr>(expression).operand);
        case ExprKind::kCase: {
            const auto& choice = As<CaseExpr>(expression);
            for (const CaseExpr::Branch& branch : choice.branches) {
                if (HasAggregate(*branch.when) || HasAggregate(*branch.then)) return true;
            }
            return MayHaveAggregate(choice.operand) || MayHaveAggregate(choice.otherwise);
        }
        default:
            return false;
    }
}

}  // namespace vicenter::tsql::engine
