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
            Text(LiteralText(As<LiteralExpr>(expr)));
            break;
        case ExprKind::kVariable:
            Text(As<VariableExpr>(expr).name);
            break;
        case ExprKind::kColumn:
            Put(As<ColumnExpr>(expr).name);
            break;
        case ExprKind::kUnary: {
            const auto& unary = As<UnaryExpr>(expr);
            Text(unary.op == UnaryOp::kMinus ? "-" : unary.op == UnaryOp::kPlus ? "+" : "~");
            if (unary.operand->kind == ExprKind::kUnary) Text(" ");  // "--" would be a comment
            Put(*unary.operand, kUnary);
            break;
        }
        case ExprKind::kBinary: {
            const auto& binary = As<BinaryExpr>(expr);
            const int own = BindingOf(expr);
            Put(*binary.left, own);
            Text(BinaryText(binary.op));
            Put(*binary.right, own + 1);
            break;
        }
        case ExprKind::kCase: {
            const auto& choice = As<CaseExpr>(expr);
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
            break;
        }
        case ExprKind::kFunction: {
            const auto& function = As<FunctionExpr>(expr);
            Put(function.name);
            if (!function.hasParentheses) break;
            Text(function.star ? "(*" : function.distinct ? "(distinct " : "(");
            PutList(function.arguments);
            Text(")");
            if (!function.over) break;
            Text(" over (");
            if (!function.over->partitionBy.empty()) {
                Text("partition by ");
                PutList(function.over->partitionBy);
                if (!function.over->orderBy.empty()) Text(" ");
            }
            PutOrderBy(function.over->orderBy);
            Text(")");
            break;
        }
        case ExprKind::kCast: {
            const auto& cast = As<CastExpr>(expr);
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
            break;
        }
        case ExprKind::kCollate:
            Put(*As<CollateExpr>(expr).operand, kPrimary);
            Text(" collate ");
            Put(As<CollateExpr>(expr).collation);
            break;
        case ExprKind::kSubquery:
            Text("(");
            Put(*As<SubqueryExpr>(expr).query);
            Text(")");
            break;
        default:
            PutCondition(expr);
            break;
    }
}

void Printer::PutCondition(const Expr& expr) {
    switch (expr.kind) {
        case ExprKind::kComparison: {
            const auto& comparison = As<ComparisonExpr>(expr);
            Put(*comparison.left, kAdd);
            Text(ComparisonText(comparison.op));
            Put(*comparison.right, kAdd);
            break;
        }
        case ExprKind::kLogical: {
            const auto& logical = As<LogicalExpr>(expr);
            for (const ExprPtr& operand : logical.operands) {
                if (&operand != &logical.operands.front()) Text(logical.isAnd ? " and " : " or ");
                Put(*operand, (logical.isAnd ? kAnd : kOr) + 1);
            }
            break;
        }
        case ExprKind::kNot:
            Text("not ");
            Put(*As<NotExpr>(expr).operand, kNot);
            break;
        case ExprKind::kBetween: {
            const auto& between = As<BetweenExpr>(expr);
            Put(*between.operand, kAdd);
            Text(between.negated ? " not between " : " between ");
            Put(*between.low, kAdd);
            Text(" and ");
            Put(*between.high, kAdd);
            break;
        }
        case ExprKind::kLike: {
            const auto& like = As<LikeExpr>(expr);
            Put(*like.operand, kAdd);
            Text(like.negated ? " not like " : " like ");
            Put(*like.pattern, kAdd);
            if (!like.escape) break;
            Text(" escape ");
            Put(*like.escape, kAdd);
            break;
        }
        case ExprKind::kIn: {
            const auto& in = As<InExpr>(expr);
            Put(*in.operand, kAdd);
            Text(in.negated ? " not in (" : " in (");
            if (in.query) {
                Put(*in.query);
            } else {
                PutList(in.list);
            }
            Text(")");
            break;
        }
        case ExprKind::kExists:
            Text("exists (");
            Put(*As<ExistsExpr>(expr).query);
            Text(")");
            break;
        case ExprKind::kIsNull:
            Put(*As<IsNullExpr>(expr).operand, kAdd);
            Text(As<IsNullExpr>(expr).negated ? " is not null" : " is null");
            break;
        case ExprKind::kQuantified: {
            const auto& quantified = As<QuantifiedExpr>(expr);
            Put(*quantified.operand, kAdd);
            Text(ComparisonText(quantified.op));
            Text(quantified.all ? "all (" : "any (");
            Put(*quantified.query);
            Text(")");
            break;
        }
        default:
            break;
    }
}

}  // namespace vicenter::tsql
