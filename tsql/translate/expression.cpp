// Value expressions.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

char OperatorLetter(BinaryOp op) {
    switch (op) {
        case BinaryOp::kAdd:
            return '+';
        case BinaryOp::kSubtract:
            return '-';
        case BinaryOp::kMultiply:
            return '*';
        case BinaryOp::kDivide:
            return '/';
        case BinaryOp::kModulo:
            return '%';
        case BinaryOp::kBitAnd:
            return '&';
        case BinaryOp::kBitOr:
            return '|';
        case BinaryOp::kBitXor:
            return '^';
    }
    return '?';
}

const char* OperatorName(BinaryOp op) {
    switch (op) {
        case BinaryOp::kAdd:
            return "add";
        case BinaryOp::kSubtract:
            return "subtract";
        case BinaryOp::kMultiply:
            return "multiply";
        case BinaryOp::kDivide:
            return "divide";
        case BinaryOp::kModulo:
            return "modulo";
        case BinaryOp::kBitAnd:
            return "'&'";
        case BinaryOp::kBitOr:
            return "'|'";
        case BinaryOp::kBitXor:
            return "'^'";
    }
    return "";
}

// A whole number that stands in the text counts with its own digits among decimals.
SqlType ArithmeticType(const Operand& operand) {
    if (operand.literal != nullptr && operand.type.kind == TypeKind::kInt) {
        return SqlType::Decimal(static_cast<int>(operand.literal->text.size()), 0);
    }
    return operand.type;
}

SqlType TextSum(const SqlType& a, const SqlType& b) {
    SqlType type = SqlType::Of(a.IsUnicode() || b.IsUnicode() ? TypeKind::kNVarChar : TypeKind::kVarChar);
    if (a.IsMax() || b.IsMax()) {
        type.length = kMaxLength;
    } else {
        const int limit = type.IsUnicode() ? 4000 : 8000;
        type.length = a.length + b.length < limit ? a.length + b.length : limit;
    }
    return type;
}

}  // namespace

std::string Translator::AddParameter(Parameter parameter) {
    translation_.parameters.push_back(std::move(parameter));
    return "?" + std::to_string(translation_.parameters.size());
}

std::string Translator::ConvertCall(const std::string& sql, const SqlType& from, const SqlType& to,
                                    int style) const {
    return kConvertCall.Call({sql, Code(from), Code(to), std::to_string(style)});
}

std::string Translator::Render(const Operand& operand) {
    if (!operand.pending) return operand.sql;
    if (inlineLiterals_) {
        // A check constraint keeps its literals in its text.
        const engine::Value value =
            ValueOfLiteral(operand.pending->literal, operand.pending->text, operand.pending->negated);
        switch (value.Raw().index()) {
            case 1:
                return std::to_string(value.Int());
            case 2:
                return ConvertCall(QuotedText(operand.pending->text), SqlType::VarChar(100),
                                   SqlType::Float());
            case 3:
                return QuotedText(value.Exact().ToText());
            case 5:
                return QuotedText(value.Text());
            default:
                throw MakeError(40510, {}, {"CHECK"});
        }
    }
    Parameter parameter = *operand.pending;
    parameter.to = parameter.from;
    return AddParameter(std::move(parameter));
}

std::string Translator::RenderAs(const Operand& operand, const SqlType& type, bool isExplicit) {
    if (operand.type.IsUnknown() && !operand.pending) return operand.sql;
    CheckConversion(operand.type, type, isExplicit);
    if (operand.pending && !inlineLiterals_) {
        Parameter parameter = *operand.pending;
        parameter.to = type;
        return AddParameter(std::move(parameter));
    }
    if (SameRepresentation(operand.type, type)) return Render(operand);
    if (operand.type.IsInteger() && type.kind == TypeKind::kFloat)
        return "CAST(" + Render(operand) + " AS REAL)";
    return ConvertCall(Render(operand), operand.type, type);
}

std::string Translator::RenderStored(const Operand& operand, const TableInfo& table, const ColumnInfo& column,
                                     const char* operation) {
    CheckConversion(operand.type, column.type, false);
    const bool isKey = table.IsInUniqueKey(column.name);
    if (operand.pending) {
        Parameter parameter = *operand.pending;
        parameter.to = column.type;
        parameter.forColumn = true;
        parameter.table = table.FullName();
        parameter.column = column.name;
        parameter.nullable = column.nullable;
        parameter.isKey = isKey;
        parameter.operation = operation;
        return AddParameter(std::move(parameter));
    }
    const SqlType from = operand.type.IsUnknown() ? column.type : operand.type;
    return kPutCall.Call({Render(operand), Code(from), Code(column.type), column.nullable ? "1" : "0",
                          QuotedText(table.FullName()), QuotedText(column.name), QuotedText(operation),
                          isKey ? "1" : "0"});
}

std::string Translator::Collated(const Operand& operand) {
    std::string sql = Render(operand);
    if (operand.column) return sql;
    if (operand.type.IsText()) return sql + " COLLATE " + kTextCollationName;
    if (operand.type.IsExact()) return sql + " COLLATE " + kNumberCollationName;
    return sql;
}

Operand Translator::Value(const Expr& expression, Scope& scope) {
    if (scope.grouped && aggregateDepth_ == 0 && scope.groupExpressions != nullptr) {
        for (const ExprPtr& group : *scope.groupExpressions) {
            if (!SameExpression(*group, expression)) continue;
            scope.grouped = false;
            Operand operand = ValueInner(expression, scope);
            scope.grouped = true;
            return operand;
        }
    }
    return ValueInner(expression, scope);
}

Operand Translator::ValueInner(const Expr& expression, Scope& scope) {
    switch (expression.kind) {
        case ExprKind::kLiteral:
            return Literal(As<LiteralExpr>(expression));
        case ExprKind::kVariable:
            return Variable(As<VariableExpr>(expression));
        case ExprKind::kColumn:
            return Column(As<ColumnExpr>(expression), scope);
        case ExprKind::kUnary:
            return Unary(As<UnaryExpr>(expression), scope);
        case ExprKind::kBinary: {
            const auto& binary = As<BinaryExpr>(expression);
            const Operand left = Value(*binary.left, scope);
            const Operand right = Value(*binary.right, scope);
            return Binary(binary.op, binary.opPosition, left, right);
        }
        case ExprKind::kCase:
            return Case(As<CaseExpr>(expression), scope);
        case ExprKind::kFunction:
            return Function(As<FunctionExpr>(expression), scope);
        case ExprKind::kCast:
            return Cast(As<CastExpr>(expression), scope);
        case ExprKind::kCollate:
            CheckCollation(As<CollateExpr>(expression).collation);
            return Value(*As<CollateExpr>(expression).operand, scope);
        case ExprKind::kSubquery:
            return Subquery(As<SubqueryExpr>(expression), scope);
        default:
            throw MakeError(4145, expression.position, {""});
    }
}

// There is one collation; asking for another one by name changes nothing, unless it were to tell upper from
// lower case.
void Translator::CheckCollation(const Name& collation) {
    const std::string name = LowerAscii(collation.text) + "_";
    if (name.find("_bin_") == std::string::npos && name.find("_bin2_") == std::string::npos &&
        name.find("_cs_") == std::string::npos) {
        return;
    }
    throw MakeError(40510, collation.position, {"COLLATE " + collation.text});
}

Operand Translator::Literal(const LiteralExpr& literal) {
    const int ordinal = foreignDepth_ == 0 ? context_.LiteralOrdinal(literal) : -1;
    // A NULL that stands where other runs have values stays a parameter.
    if (literal.literal == LiteralKind::kNull && ordinal < 0) return Computed("NULL", {});
    if (literal.literal == LiteralKind::kDefault) throw MakeError(156, literal.position, {"DEFAULT"});
    Parameter parameter;
    parameter.source = Parameter::Source::kLiteral;
    parameter.literal = literal.literal;
    parameter.text = literal.text;
    parameter.ordinal = ordinal;
    parameter.from = LiteralType(literal.literal, literal.text);
    Operand operand;
    operand.type = parameter.from;
    operand.pending = std::move(parameter);
    operand.literal = &literal;
    return operand;
}

Operand Translator::System(std::string name, SqlType type) {
    Parameter parameter;
    parameter.source = Parameter::Source::kSystem;
    parameter.text = std::move(name);
    parameter.from = type;
    Operand operand;
    operand.type = type;
    operand.pending = std::move(parameter);
    return operand;
}

Operand Translator::Variable(const VariableExpr& variable) {
    const std::string name = LowerAscii(variable.name);
    if (variable.IsGlobal()) {
        struct Global {
            std::string_view name;
            SqlType type;
        };
        static const Global kGlobals[] = {
            {"@@rowcount", SqlType::Int()},
            {"@@error", SqlType::Int()},
            {"@@fetch_status", SqlType::Int()},
            {"@@trancount", SqlType::Int()},
            {"@@identity", SqlType::Decimal(38, 0)},
            {"@@nestlevel", SqlType::Int()},
            {"@@spid", SqlType::Of(TypeKind::kSmallInt)},
            {"@@version", SqlType::NVarChar(300)},
            {"@@servername", SqlType::NVarChar(128)},
            {"@@cursor_rows", SqlType::Int()},
            {"@@procid", SqlType::Int()},
            {"@@datefirst", SqlType::Of(TypeKind::kTinyInt)},
            {"@@language", SqlType::NVarChar(128)},
            {"@@lock_timeout", SqlType::Int()},
            {"@@max_precision", SqlType::Of(TypeKind::kTinyInt)},
            {"@@options", SqlType::Int()},
        };
        for (const Global& global : kGlobals) {
            if (global.name == name) return System(name, global.type);
        }
        throw MakeError(137, variable.position, {variable.name});
    }
    const auto type = context_.VariableType(name);
    if (!type) throw MakeError(137, variable.position, {variable.name});
    if (assigning_.find(" " + name + " ") != std::string::npos) {
        // SELECT @v = @v + …: each row sees what the row before it has assigned.
        return Computed(kVariableCall.Call({QuotedText(name), Code(*type)}), *type);
    }
    Operand operand = System(name, *type);
    operand.pending->source = Parameter::Source::kVariable;
    return operand;
}

void Translator::CheckGrouped(const Scope& scope, const std::string& sql, Position position,
                              const Source& source, const SourceColumn& column) const {
    if (!scope.grouped || aggregateDepth_ > 0) return;
    const auto& groups = scope.groupColumns;
    if (std::find(groups.begin(), groups.end(), sql) == groups.end())
        throw MakeError(8120, position, {source.exposedName, column.name});
}

Operand Translator::Column(const ColumnExpr& column, Scope& scope) {
    const std::string& name = column.name.Object();
    const std::string qualifier = column.name.parts.size() > 1 ? column.name.Schema() : std::string();
    bool sawQualifier = false;
    for (const Scope* level = &scope; level != nullptr; level = level->outer) {
        const SourceColumn* found = nullptr;
        const Source* owner = nullptr;
        for (const Source& source : level->sources) {
            if (!qualifier.empty() && !SameName(source.exposedName, qualifier)) continue;
            if (!qualifier.empty()) sawQualifier = true;
            for (const SourceColumn& candidate : source.columns) {
                if (!SameName(candidate.name, name)) continue;
                if (found != nullptr && qualifier.empty()) throw MakeError(209, column.position, {name});
                if (found == nullptr) {
                    found = &candidate;
                    owner = &source;
                }
            }
        }
        if (found != nullptr) {
            if (level == &scope) CheckGrouped(scope, found->sql, column.position, *owner, *found);
            Operand operand;
            operand.sql = found->sql;
            operand.type = found->type;
            operand.column = found->natural;
            return operand;
        }
        if (sawQualifier) throw MakeError(207, column.position, {name});
    }
    if (!qualifier.empty()) throw MakeError(4104, column.position, {column.name.Text()});
    throw MakeError(207, column.position, {name});
}

Operand Translator::Unary(const UnaryExpr& unary, Scope& scope) {
    Operand operand = Value(*unary.operand, scope);
    if (unary.op == UnaryOp::kPlus) return operand;
    if (unary.op == UnaryOp::kBitNot) {
        if (!operand.type.IsInteger())
            throw MakeError(8117, unary.position, {MessageName(operand.type), "'~'"});
        if (operand.type.kind == TypeKind::kBit)
            return Computed("(1 - " + Render(operand) + ")", operand.type);
        return Computed("(~" + Render(operand) + ")", operand.type);
    }
    if (operand.type.IsUnknown()) return operand;
    if (operand.type.IsText()) {
        // A text is read as a number first.
        operand = Computed(RenderAs(operand, SqlType::Int()), SqlType::Int());
    }
    if (!operand.type.IsNumber() || operand.type.kind == TypeKind::kBit) {
        throw MakeError(8117, unary.position, {MessageName(operand.type), "minus"});
    }
    if (operand.pending && operand.literal != nullptr) {
        operand.pending->negated = !operand.pending->negated;
        return operand;
    }
    SqlType type = operand.type;
    if (type.kind == TypeKind::kTinyInt) type = SqlType::Of(TypeKind::kSmallInt);
    return Computed(kNegateCall.Call({Render(operand), Code(type)}), type);
}

Operand Translator::Binary(BinaryOp op, Position position, const Operand& left, const Operand& right) {
    const std::string letter = std::string("'") + OperatorLetter(op) + "'";
    const SqlType& a = left.type;
    const SqlType& b = right.type;
    if (a.IsUnknown() && b.IsUnknown()) return Computed("NULL", SqlType::Int());
    if (op == BinaryOp::kAdd && (a.IsText() || a.IsUnknown()) && (b.IsText() || b.IsUnknown())) {
        for (const Operand* operand : {&left, &right}) {
            if (operand->literal != nullptr) context_.PinLiteral(*operand->literal);
        }
        return Computed("(" + Render(left) + " || " + Render(right) + ")", TextSum(a, b));
    }
    SqlType common = CommonType(a, b);
    if (common.IsText()) {
        throw MakeError(a.IsUnknown() || b.IsUnknown() ? 8117 : 402, position,
                        {MessageName(a.IsUnknown() ? b : a),
                         a.IsUnknown() || b.IsUnknown() ? OperatorName(op) : b.Name(), OperatorName(op)});
    }
    if (common.IsDate()) {
        if (op != BinaryOp::kAdd && op != BinaryOp::kSubtract) {
            throw MakeError(8117, position, {MessageName(common), OperatorName(op)});
        }
        if (common.kind == TypeKind::kDate || common.kind == TypeKind::kTime ||
            common.kind == TypeKind::kDateTime2) {
            throw MakeError(206, position, {MessageName(a), MessageName(b)});
        }
        const SqlType datetime = SqlType::DateTime();
        const Operand& date = a.IsDate() ? left : right;
        const Operand& other = a.IsDate() ? right : left;
        const std::string days = other.type.IsDate() || other.type.IsText()
                                     ? ConvertCall(RenderAs(other, datetime), datetime, SqlType::Float())
                                     : RenderAs(other, SqlType::Float());
        if (op == BinaryOp::kSubtract && !a.IsDate())
            throw MakeError(8117, position, {MessageName(b), "subtract"});
        return Computed(
            kDatePlusCall.Call({RenderAs(date, datetime), days, op == BinaryOp::kAdd ? "1" : "-1"}),
            datetime);
    }
    if (!common.IsNumber()) throw MakeError(8117, position, {MessageName(common), OperatorName(op)});
    const bool bitwise = op == BinaryOp::kBitAnd || op == BinaryOp::kBitOr || op == BinaryOp::kBitXor;
    if (bitwise && !common.IsInteger()) {
        throw MakeError(402, position, {MessageName(a), MessageName(b), OperatorName(op)});
    }
    if (common.IsFloat()) {
        if (op == BinaryOp::kModulo)
            throw MakeError(402, position, {MessageName(a), MessageName(b), "modulo"});
        const std::string sql =
            kRealCall.Call({letter, RenderAs(left, SqlType::Float()), RenderAs(right, SqlType::Float())});
        if (common.kind == TypeKind::kReal)
            return Computed(ConvertCall(sql, SqlType::Float(), common), common);
        return Computed(sql, common);
    }
    if (common.IsInteger()) {
        if (common.kind == TypeKind::kBit && !bitwise) {
            throw MakeError(8117, position, {"bit", OperatorName(op)});
        }
        return Computed(
            kIntegerCall.Call({letter, RenderAs(left, common), RenderAs(right, common), Code(common)}),
            common);
    }
    static constexpr Arithmetic kArithmetic[] = {Arithmetic::kAdd, Arithmetic::kSubtract,
                                                 Arithmetic::kMultiply, Arithmetic::kDivide,
                                                 Arithmetic::kModulo};
    for (const Operand* operand : {&left, &right}) {
        if (operand->literal != nullptr) context_.PinLiteral(*operand->literal);
    }
    // A text or NULL takes the other side's type; money stays money.
    const auto exact = [&](const Operand& operand) {
        if (operand.type.IsExact()) return Render(operand);
        if (operand.type.IsInteger()) return RenderAs(operand, AsDecimal(ArithmeticType(operand)));
        return RenderAs(operand, common);
    };
    const SqlType leftType = a.IsNumber() ? ArithmeticType(left) : common;
    const SqlType rightType = b.IsNumber() ? ArithmeticType(right) : common;
    const SqlType type = common.IsMoney()
                             ? common
                             : DecimalResult(kArithmetic[static_cast<std::size_t>(op)], leftType, rightType);
    const std::string leftText = exact(left);
    const std::string rightText = exact(right);
    return Computed(kDecimalCall.Call({letter, leftText, rightText, Code(type)}), type);
}

Operand Translator::Case(const CaseExpr& expression, Scope& scope) {
    std::vector<Operand> results;
    SqlType type;
    for (const CaseExpr::Branch& branch : expression.branches)
        results.push_back(Value(*branch.then, scope));
    if (expression.otherwise) results.push_back(Value(*expression.otherwise, scope));
    for (const Operand& result : results) {
        type = CommonType(type, result.type);
        if (result.literal != nullptr) context_.PinLiteral(*result.literal);
    }
    std::string sql = "CASE";
    std::size_t next = 0;
    for (const CaseExpr::Branch& branch : expression.branches) {
        const std::string condition = expression.operand
                                          ? Compare("=", Value(*expression.operand, scope),
                                                    Value(*branch.when, scope), branch.when->position)
                                          : ConditionText(*branch.when, scope);
        sql += " WHEN " + condition + " THEN " + RenderAs(results[next++], type);
    }
    if (expression.otherwise) sql += " ELSE " + RenderAs(results[next], type);
    return Computed("(" + sql + " END)", type);
}

Operand Translator::Cast(const CastExpr& expression, Scope& scope) {
    SqlType type = ResolveType(expression.type);
    if (!expression.type.length && (type.IsText() || type.IsBinary()) && type.length == 1) {
        // Without a length CAST takes 30, where a declaration takes 1.
        type.length = 30;
    }
    Operand operand = Value(*expression.operand, scope);
    if (operand.type.IsUnknown()) return Computed("NULL", type);
    try {
        CheckConversion(operand.type, type, true);
    } catch (SqlError& error) {
        error.SetLine(static_cast<std::int32_t>(expression.position.line));
        throw;
    }
    const SqlFunction& convert = expression.tryOnly ? kTryConvertCall : kConvertCall;
    const std::string style =
        expression.style ? RenderAs(Value(*expression.style, scope), SqlType::Int()) : "0";
    return Computed(convert.Call({Render(operand), Code(operand.type), Code(type), style}), type);
}

Operand Translator::Subquery(const SubqueryExpr& expression, Scope& scope) {
    const QueryText query = QueryOf(*expression.query, &scope, false);
    if (query.columns.size() != 1) throw MakeError(116, expression.query->position);
    const SqlType type = query.columns.front().type;
    if (query.singleRow) return Computed("(" + query.sql + ")", type);
    return Computed("(SELECT " + kSingleCall.Call({"c1"}) + " FROM (" + query.sql + "))", type);
}

SqlType Translator::ResolveType(const TypeName& name) {
    const TypeKind kind = KindByName(name.name);
    if (kind == TypeKind::kUnknown) throw MakeError(2715, name.position, {1, name.name});
    SqlType type = SqlType::Of(kind);
    switch (kind) {
        case TypeKind::kDecimal: {
            const int precision = name.length.value_or(18);
            const int scale = name.scale.value_or(0);
            if (precision > kMaxPrecision || precision < 1)
                throw MakeError(2750, name.position, {1, precision, kMaxPrecision});
            if (scale > precision) throw MakeError(2751, name.position, {1, scale, precision});
            return SqlType::Decimal(precision, scale);
        }
        case TypeKind::kFloat:
            if (name.length && *name.length >= 1 && *name.length <= 24) return SqlType::Of(TypeKind::kReal);
            return type;
        case TypeKind::kChar:
        case TypeKind::kVarChar:
        case TypeKind::kNChar:
        case TypeKind::kNVarChar:
        case TypeKind::kBinary:
        case TypeKind::kVarBinary: {
            if (name.name == "image") return SqlType::Of(kind, kMaxLength);
            if (name.name == "sysname") return SqlType::Of(kind, 128);
            const int limit = type.IsUnicode() ? 4000 : 8000;
            const int length = name.length.value_or(1);
            if (length > limit) throw MakeError(2717, name.position, {length, "type", name.name, limit});
            return SqlType::Of(kind, length);
        }
        default:
            if (name.length && !type.IsDate()) throw MakeError(2716, name.position, {1, name.name});
            return type;
    }
}

}  // namespace vicenter::tsql::engine
