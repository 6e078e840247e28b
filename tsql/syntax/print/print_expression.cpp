#include "tsql/syntax/lexer.h"
#include "tsql/syntax/print/printer_core.h"

namespace vicenter::tsql {
namespace {

// How close a node binds; an operand that binds less gets parentheses.
enum Binding { kOr = 1, kAnd, kNot, kPredicate, kAdd, kMultiply, kUnary, kPrimary };

bool BindsAsMultiply(BinaryOp op) {
    return op == BinaryOp::kMultiply || op == BinaryOp::kDivide || op == BinaryOp::kModulo;
}

int BindingOf(const Expr& expr) {
    switch (expr.kind) {
        case ExprKind::kLogical:
            return As<LogicalExpr>(expr).isAnd ? kAnd : kOr;
        case ExprKind::kNot:
            return kNot;
        case ExprKind::kComparison:
        case ExprKind::kBetween:
        case ExprKind::kLike:
        case ExprKind::kIn:
        case ExprKind::kExists:
        case ExprKind::kIsNull:
        case ExprKind::kQuantified:
            return kPredicate;
        case ExprKind::kBinary:
            return BindsAsMultiply(As<BinaryExpr>(expr).op) ? kMultiply : kAdd;
        case ExprKind::kUnary:
            return kUnary;
        default:
            return kPrimary;
    }
}

std::string_view BinaryText(BinaryOp op) {
    switch (op) {
        case BinaryOp::kAdd:
            return " + ";
        case BinaryOp::kSubtract:
            return " - ";
        case BinaryOp::kMultiply:
            return " * ";
        case BinaryOp::kDivide:
            return " / ";
        case BinaryOp::kModulo:
            return " % ";
        case BinaryOp::kBitAnd:
            return " & ";
        case BinaryOp::kBitOr:
            return " | ";
        case BinaryOp::kBitXor:
            return " ^ ";
    }
    return {};
}

std::string_view ComparisonText(ComparisonOp op) {
    switch (op) {
        case ComparisonOp::kEqual:
            return " = ";
        case ComparisonOp::kNotEqual:
            return " <> ";
        case ComparisonOp::kLess:
            return " < ";
        case ComparisonOp::kLessEqual:
            return " <= ";
        case ComparisonOp::kGreater:
            return " > ";
        case ComparisonOp::kGreaterEqual:
            return " >= ";
    }
    return {};
}

std::string LiteralText(const LiteralExpr& literal) {
    switch (literal.literal) {
        case LiteralKind::kNull:
            return "null";
        case LiteralKind::kDefault:
            return "default";
        case LiteralKind::kString:
            return QuoteString(literal.text, false);
        case LiteralKind::kNString:
            return QuoteString(literal.text, true);
        case LiteralKind::kMoney:
            return "$" + literal.text;
        case LiteralKind::kBinary:
            return "0x" + literal.text;
        default:
            return literal.text;
    }
}

}  // namespace

void Printer::Put(const Name& name) {
    if (!name.quoted) return Text(name.text);
    out_ += '[';
    for (const char c : name.text) {
        out_ += c;
        if (c == ']') out_ += c;
    }
    out_ += ']';
}

void Printer::Put(const ObjectName& name) {
    for (const Name& part : name.parts) {
        if (&part != &name.parts.front()) Text(".");
        Put(part);
    }
}

void Printer::Put(const TypeName& type) {
    Text(type.name);
    if (!type.length) return;
    Text(*type.length == TypeName::kMax ? "(max" : "(" + std::to_string(*type.length));
    if (type.scale) Text(", " + std::to_string(*type.scale));
    Text(")");
}

void Printer::PutNames(const std::vector<Name>& names) {
    for (const Name& name : names) {
        if (&name != &names.front()) Text(", ");
        Put(name);
    }
}

void Printer::PutNameList(const std::vector<Name>& names) {
    if (names.empty()) return;
    Text(" (");
    PutNames(names);
    Text(")");
}

void Printer::PutList(const std::vector<ExprPtr>& list) {
    for (const ExprPtr& expr : list) {
        if (&expr != &list.front()) Text(", ");
        Put(*expr);
    }
}

void Printer::Put(const Expr& expr, int lowest) {
    if (BindingOf(expr) < lowest) {
        Text("(");
        Put(expr);
        Text(")");
        return;
    }
    switch (expr.kind) {
        case ExprKind::kLiteral:
            return Text(LiteralText(As<LiteralExpr>(expr)));
        case ExprKind::kVariable:
            return Text(As<VariableExpr>(expr).name);
        case ExprKind::kColumn:
            return Put(As<ColumnExpr>(expr).name);
        case ExprKind::kUnary:
            return Put(As<UnaryExpr>(expr));
        case ExprKind::kBinary:
            return Put(As<BinaryExpr>(expr));
        case ExprKind::kCase:
            return Put(As<CaseExpr>(expr));
        case ExprKind::kFunction:
            return Put(As<FunctionExpr>(expr));
        case ExprKind::kCast:
            return Put(As<CastExpr>(expr));
        case ExprKind::kCollate:
            Put(*As<CollateExpr>(expr).operand, kPrimary);
            Text(" collate ");
            return Put(As<CollateExpr>(expr).collation);
        case ExprKind::kSubquery:
            Text("(");
            Put(*As<SubqueryExpr>(expr).query);
            return Text(")");
        default:
            return PutCondition(expr);
    }
}

void Printer::Put(const UnaryExpr& unary) {
    Text(unary.op == UnaryOp::kMinus ? "-" : unary.op == UnaryOp::kPlus ? "+" : "~");
    if (unary.operand->kind == ExprKind::kUnary) Text(" ");  // "--" would be a comment
    Put(*unary.operand, kUnary);
}

// Operators of one binding hold to the left: a - (b - c) keeps its parentheses, (a - b) - c needs none.
void Printer::Put(const BinaryExpr& binary) {
    const int own = BindingOf(binary);
    Put(*binary.left, own);
    Text(BinaryText(binary.op));
    Put(*binary.right, own + 1);
}

void Printer::Put(const CaseExpr& choice) {
    Text("case");
    if (choice.operand) {
        Text(" ");
        Put(*choice.operand);
    }
    for (const CaseExpr::Branch& branch : choice.branches) {
        Text(" when ");
        Put(*branch.when);
        Text(" then ");
        Put(*branch.then);
    }
    if (choice.otherwise) {
        Text(" else ");
        Put(*choice.otherwise);
    }
    Text(" end");
}

void Printer::Put(const FunctionExpr& function) {
    Put(function.name);
    if (!function.hasParentheses) return;
    Text(function.star ? "(*" : function.distinct ? "(distinct " : "(");
    PutList(function.arguments);
    Text(")");
    if (!function.withinGroup.empty()) {
        Text(" within group (");
        PutOrderBy(function.withinGroup);
        Text(")");
    }
    if (function.over) Put(*function.over);
}

void Printer::Put(const OverClause& over) {
    Text(" over (");
    if (!over.partitionBy.empty()) {
        Text("partition by ");
        PutList(over.partitionBy);
        if (!over.orderBy.empty()) Text(" ");
    }
    PutOrderBy(over.orderBy);
    if (over.frame) {
        Text(over.frame->isRows ? " rows " : " range ");
        if (over.frame->end) Text("between ");
        Put(over.frame->start);
        if (over.frame->end) {
            Text(" and ");
            Put(*over.frame->end);
        }
    }
    Text(")");
}

void Printer::Put(const FrameBound& bound) {
    switch (bound.kind) {
        case FrameBoundKind::kUnboundedPreceding:
            return Text("unbounded preceding");
        case FrameBoundKind::kCurrentRow:
            return Text("current row");
        case FrameBoundKind::kUnboundedFollowing:
            return Text("unbounded following");
        case FrameBoundKind::kPreceding:
        case FrameBoundKind::kFollowing:
            Put(*bound.rows);
            return Text(bound.kind == FrameBoundKind::kPreceding ? " preceding" : " following");
    }
}

void Printer::Put(const CastExpr& cast) {
    Text(cast.tryOnly ? "try_" : "");
    if (cast.convert) {
        Text("convert(");
        Put(cast.type);
        Text(", ");
        Put(*cast.operand);
        if (cast.style) {
            Text(", ");
            Put(*cast.style);
        }
    } else {
        Text("cast(");
        Put(*cast.operand);
        Text(" as ");
        Put(cast.type);
    }
    Text(")");
}

void Printer::PutCondition(const Expr& expr) {
    switch (expr.kind) {
        case ExprKind::kComparison: {
            const auto& comparison = As<ComparisonExpr>(expr);
            Put(*comparison.left, kAdd);
            Text(ComparisonText(comparison.op));
            return Put(*comparison.right, kAdd);
        }
        case ExprKind::kLogical:
            return Put(As<LogicalExpr>(expr));
        case ExprKind::kNot:
            Text("not ");
            return Put(*As<NotExpr>(expr).operand, kNot);
        case ExprKind::kBetween:
            return Put(As<BetweenExpr>(expr));
        case ExprKind::kLike:
            return Put(As<LikeExpr>(expr));
        case ExprKind::kIn:
            return Put(As<InExpr>(expr));
        case ExprKind::kExists:
            Text("exists (");
            Put(*As<ExistsExpr>(expr).query);
            return Text(")");
        case ExprKind::kIsNull:
            Put(*As<IsNullExpr>(expr).operand, kAdd);
            return Text(As<IsNullExpr>(expr).negated ? " is not null" : " is null");
        case ExprKind::kQuantified:
            return Put(As<QuantifiedExpr>(expr));
        default:
            return;
    }
}

void Printer::Put(const LogicalExpr& logical) {
    for (const ExprPtr& operand : logical.operands) {
        if (&operand != &logical.operands.front()) Text(logical.isAnd ? " and " : " or ");
        Put(*operand, (logical.isAnd ? kAnd : kOr) + 1);
    }
}

void Printer::Put(const BetweenExpr& between) {
    Put(*between.operand, kAdd);
    Text(between.negated ? " not between " : " between ");
    Put(*between.low, kAdd);
    Text(" and ");
    Put(*between.high, kAdd);
}

void Printer::Put(const LikeExpr& like) {
    Put(*like.operand, kAdd);
    Text(like.negated ? " not like " : " like ");
    Put(*like.pattern, kAdd);
    if (!like.escape) return;
    Text(" escape ");
    Put(*like.escape, kAdd);
}

void Printer::Put(const InExpr& in) {
    Put(*in.operand, kAdd);
    Text(in.negated ? " not in (" : " in (");
    if (in.query) {
        Put(*in.query);
    } else {
        PutList(in.list);
    }
    Text(")");
}

void Printer::Put(const QuantifiedExpr& quantified) {
    Put(*quantified.operand, kAdd);
    Text(ComparisonText(quantified.op));
    Text(quantified.all ? "all (" : "any (");
    Put(*quantified.query);
    Text(")");
}

}  // namespace vicenter::tsql
