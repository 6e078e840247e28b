// Questions about trees that translation asks.

#include "tsql/translate/same_expression.h"

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/syntax/ast_children.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// What literals say may be left out of it.
enum class Literals { kCompared, kLeftOut };

bool Same(const Expr& a, const Expr& b, Literals literals);

bool SameLists(const std::vector<ExprPtr>& a, const std::vector<ExprPtr>& b, Literals literals) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!Same(*a[i], *b[i], literals)) return false;
    }
    return true;
}

bool SameOptional(const ExprPtr& a, const ExprPtr& b, Literals literals) {
    if (!a || !b) return !a && !b;
    return Same(*a, *b, literals);
}

bool IsAggregateName(std::string_view name) {
    const FunctionEntry* entry = FindFunction(LowerAscii(name));
    if (entry != nullptr) return entry->kind == FunctionKind::kAggregate;
    // Aggregates of the server's that there are not: what is told is that, wherever they stand.
    return SameName(name, "stdev") || SameName(name, "var");
}

bool Same(const Expr& a, const Expr& b, Literals literals) {
    if (a.kind != b.kind) return false;
    switch (a.kind) {
        case ExprKind::kLiteral:
            return As<LiteralExpr>(a).literal == As<LiteralExpr>(b).literal &&
                   (literals == Literals::kLeftOut || As<LiteralExpr>(a).text == As<LiteralExpr>(b).text);
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
                   Same(*As<UnaryExpr>(a).operand, *As<UnaryExpr>(b).operand, literals);
        case ExprKind::kBinary:
            return As<BinaryExpr>(a).op == As<BinaryExpr>(b).op &&
                   Same(*As<BinaryExpr>(a).left, *As<BinaryExpr>(b).left, literals) &&
                   Same(*As<BinaryExpr>(a).right, *As<BinaryExpr>(b).right, literals);
        case ExprKind::kComparison:
            return As<ComparisonExpr>(a).op == As<ComparisonExpr>(b).op &&
                   Same(*As<ComparisonExpr>(a).left, *As<ComparisonExpr>(b).left, literals) &&
                   Same(*As<ComparisonExpr>(a).right, *As<ComparisonExpr>(b).right, literals);
        case ExprKind::kIsNull:
            return As<IsNullExpr>(a).negated == As<IsNullExpr>(b).negated &&
                   Same(*As<IsNullExpr>(a).operand, *As<IsNullExpr>(b).operand, literals);
        case ExprKind::kLogical:
            return As<LogicalExpr>(a).isAnd == As<LogicalExpr>(b).isAnd &&
                   SameLists(As<LogicalExpr>(a).operands, As<LogicalExpr>(b).operands, literals);
        case ExprKind::kFunction: {
            const auto& left = As<FunctionExpr>(a);
            const auto& right = As<FunctionExpr>(b);
            return SameName(left.name.Object(), right.name.Object()) && left.distinct == right.distinct &&
                   left.star == right.star && !left.over && !right.over &&
                   SameLists(left.arguments, right.arguments, literals);
        }
        case ExprKind::kCast: {
            const auto& left = As<CastExpr>(a);
            const auto& right = As<CastExpr>(b);
            return left.tryOnly == right.tryOnly && left.type.name == right.type.name &&
                   left.type.length == right.type.length && left.type.scale == right.type.scale &&
                   Same(*left.operand, *right.operand, literals) &&
                   SameOptional(left.style, right.style, literals);
        }
        case ExprKind::kCase: {
            const auto& left = As<CaseExpr>(a);
            const auto& right = As<CaseExpr>(b);
            if (left.branches.size() != right.branches.size()) return false;
            for (std::size_t i = 0; i < left.branches.size(); ++i) {
                if (!Same(*left.branches[i].when, *right.branches[i].when, literals)) return false;
                if (!Same(*left.branches[i].then, *right.branches[i].then, literals)) return false;
            }
            return SameOptional(left.operand, right.operand, literals) &&
                   SameOptional(left.otherwise, right.otherwise, literals);
        }
        case ExprKind::kNot:
            return Same(*As<NotExpr>(a).operand, *As<NotExpr>(b).operand, literals);
        case ExprKind::kBetween: {
            const auto& left = As<BetweenExpr>(a);
            const auto& right = As<BetweenExpr>(b);
            return left.negated == right.negated && Same(*left.operand, *right.operand, literals) &&
                   Same(*left.low, *right.low, literals) && Same(*left.high, *right.high, literals);
        }
        case ExprKind::kLike: {
            const auto& left = As<LikeExpr>(a);
            const auto& right = As<LikeExpr>(b);
            return left.negated == right.negated && Same(*left.operand, *right.operand, literals) &&
                   Same(*left.pattern, *right.pattern, literals) &&
                   SameOptional(left.escape, right.escape, literals);
        }
        case ExprKind::kIn: {
            const auto& left = As<InExpr>(a);
            const auto& right = As<InExpr>(b);
            return !left.query && !right.query && left.negated == right.negated &&
                   Same(*left.operand, *right.operand, literals) &&
                   SameLists(left.list, right.list, literals);
        }
        case ExprKind::kCollate:
            return SameName(As<CollateExpr>(a).collation.text, As<CollateExpr>(b).collation.text) &&
                   Same(*As<CollateExpr>(a).operand, *As<CollateExpr>(b).operand, literals);
        // Queries are never the same.
        case ExprKind::kExists:
        case ExprKind::kQuantified:
        case ExprKind::kSubquery:
            return false;
    }
    return false;
}

}  // namespace

bool SameExpression(const Expr& a, const Expr& b) {
    return Same(a, b, Literals::kCompared);
}

static void Pin(TranslateContext& context, const Expr& expression) {
    if (const auto* literal = TryAs<LiteralExpr>(&expression)) context.PinLiteral(*literal);
    ForEachChild(expression, [&context](const Expr& child) { Pin(context, child); });
}

bool SameWithTheseLiterals(TranslateContext& context, const Expr& a, const Expr& b) {
    if (!Same(a, b, Literals::kLeftOut)) return false;
    Pin(context, a);
    Pin(context, b);
    return SameExpression(a, b);
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
