// Value expressions.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/translate/comparable.h"
#include "tsql/translate/same_expression.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

Translation Translator::Expression(const Expr& expression) {
    Scope scope;
    const Operand operand = Value(expression, scope);
    translation_.columns.push_back({"", operand.type});
    return Finished("SELECT " + Render(operand));
}

Translation Translator::Assignment(std::string_view variable, const SqlType& type, AssignOp op,
                                   const Expr& expression) {
    Scope scope;
    Operand operand = Value(expression, scope);
    if (op != AssignOp::kSet) {
        Operand current = System(LowerAscii(variable), type);
        current.pending->source = Parameter::Source::kVariable;
        operand =
            Binary(static_cast<BinaryOp>(static_cast<int>(op) - 1), expression.position, current, operand);
    }
    translation_.columns.push_back({"", type});
    return Finished("SELECT " + RenderAs(operand, type));
}

Operand Translator::Value(const Expr& expression, Scope& scope) {
    if (std::optional<Operand> group = GroupValue(expression, scope)) return std::move(*group);
    return ValueInner(expression, scope);
}

std::optional<Operand> Translator::GroupValue(const Expr& expression, Scope& scope) {
    if (!scope.grouped || aggregateDepth_ > 0) return std::nullopt;
    if (const Scope::SetMember* member = FindSetMember(scope, expression))
        return Staged(scope, member->operand);
    if (scope.groupExpressions == nullptr) return std::nullopt;
    for (const ExprPtr& group : *scope.groupExpressions) {
        if (!SameWithTheseLiterals(context_, *group, expression)) continue;
        scope.grouped = false;
        ++scope.belowStage;
        Operand operand = ValueInner(expression, scope);
        --scope.belowStage;
        scope.grouped = true;
        return Staged(scope, std::move(operand));
    }
    return std::nullopt;
}

// A long row of operators is a deep tree on its left side, which is walked without going deep.
Operand Translator::Operators(const BinaryExpr& last, Scope& scope) {
    std::vector<const BinaryExpr*> row;
    std::optional<Operand> left;
    const Expr* at = &last;
    while (!left && at->kind == ExprKind::kBinary) {
        row.push_back(&As<BinaryExpr>(*at));
        at = row.back()->left.get();
        left = GroupValue(*at, scope);
    }
    if (!left) left = ValueInner(*at, scope);
    for (auto binary = row.rbegin(); binary != row.rend(); ++binary) {
        const Operand right = Value(*(*binary)->right, scope);
        left = Binary((*binary)->op, (*binary)->opPosition, *left, right);
    }
    return std::move(*left);
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
        case ExprKind::kBinary:
            return Operators(As<BinaryExpr>(expression), scope);
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

namespace {

// What only a server with its clients and its disks can tell.
bool IsOfServer(std::string_view global) {
    static constexpr std::string_view kNames[] = {"@@connections",
                                                  "@@cpu_busy",
                                                  "@@dbts",
                                                  "@@def_sortorder_id",
                                                  "@@idle",
                                                  "@@io_busy",
                                                  "@@max_connections",
                                                  "@@microsoftversion",
                                                  "@@pack_received",
                                                  "@@pack_sent",
                                                  "@@packet_errors",
                                                  "@@remserver",
                                                  "@@servicename",
                                                  "@@timeticks",
                                                  "@@total_errors",
                                                  "@@total_read",
                                                  "@@total_write"};
    return std::find(std::begin(kNames), std::end(kNames), global) != std::end(kNames);
}

}  // namespace

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
            {"@@langid", SqlType::Of(TypeKind::kSmallInt)},
            {"@@textsize", SqlType::Int()},
        };
        for (const Global& global : kGlobals) {
            if (global.name == name) return System(name, global.type);
        }
        if (IsOfServer(name)) throw MakeError(40510, variable.position, {UpperAscii(name)});
        throw MakeError(137, variable.position, {variable.name});
    }
    const auto type = context_.VariableType(name);
    if (!type) throw MakeError(137, variable.position, {variable.name});
    for (auto earlier = assigned_.rbegin(); earlier != assigned_.rend(); ++earlier) {
        if (earlier->first == name) return Computed("(" + earlier->second + ")", *type);
    }
    if (assigning_.find(" " + name + " ") != std::string::npos) {
        // SELECT @v = @v + …: each row sees what the row before it has assigned.
        std::vector<std::string> arguments{QuotedText(name), Code(*type)};
        // SQLite works a subquery out once where it asks nothing of the row.
        if (selectDepth_ > assigningDepth_ && assigningRow_) {
            if (assigningRow_->empty())
                throw MakeError(40510, variable.position,
                                {"SELECT @variable = of groups that a subquery asks"});
            arguments.push_back(*assigningRow_);
        }
        return Computed(kVariableCall.Call(arguments), *type);
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
        throw MakeError(scope.ungrouped, position, {source.exposedName, column.name});
}

Operand Translator::Column(const ColumnExpr& column, Scope& scope) {
    const std::string& name = column.name.Object();
    const std::string qualifier = column.name.parts.size() > 1 ? column.name.Schema() : std::string();
    // schema.table.column: there is one schema, besides those of the server's views.
    if (column.name.parts.size() > 2) {
        const std::string& schema = column.name.Database();
        const bool isKnown = schema.empty() || SameName(schema, "dbo") || SameName(schema, "sys") ||
                             SameName(schema, "information_schema");
        if (!isKnown || qualifier.empty()) throw MakeError(4104, column.position, {column.name.Text()});
    }
    const bool isIdentity = column.IsIdentity();
    const auto isMeant = [&](const Source& source, const SourceColumn& candidate) {
        if (!isIdentity) return SameName(candidate.name, name);
        const ColumnInfo* identity = source.table != nullptr ? source.table->IdentityColumn() : nullptr;
        return identity != nullptr && SameName(candidate.name, identity->name);
    };
    bool sawQualifier = false;
    for (const Scope* level = &scope; level != nullptr; level = level->outer) {
        const SourceColumn* found = nullptr;
        const Source* owner = nullptr;
        for (const Source& source : level->sources) {
            if (!qualifier.empty() && !SameName(source.exposedName, qualifier)) continue;
            if (!qualifier.empty()) sawQualifier = true;
            for (const SourceColumn& candidate : source.columns) {
                if (!isMeant(source, candidate)) continue;
                if (found != nullptr && qualifier.empty()) throw MakeError(209, column.position, {name});
                if (found == nullptr) {
                    found = &candidate;
                    owner = &source;
                }
            }
        }
        if (found != nullptr) {
            // In the sets that leave it out the column is NULL, which a subquery would not see.
            if (level != &scope && !level->setMembers.empty())
                throw MakeError(40510, column.position, {"a subquery of a query with ROLLUP"});
            if (level == &scope) CheckGrouped(scope, found->sql, column.position, *owner, *found);
            Operand operand;
            operand.sql = found->sql;
            operand.type = found->type;
            operand.column = found->natural;
            operand.isPlain = found->weight == 1;
            weight_ += found->weight;
            return Staged(*level, std::move(operand));
        }
        for (const Source& source : level->sources) {
            const bool isMeantBy = qualifier.empty() || SameName(source.exposedName, qualifier);
            if (!source.viewSchema.empty() && isMeantBy &&
                IsServerColumn(source.viewSchema, source.tableName, name))
                throw MakeError(40510, column.position, {source.tableName + "." + name});
        }
        if (sawQualifier) throw MakeError(207, column.position, {name});
    }
    if (!qualifier.empty()) throw MakeError(4104, column.position, {column.name.Text()});
    throw MakeError(207, column.position, {name});
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
    const std::vector<std::string> whens = WhensOf(expression, scope, sql);
    for (std::size_t i = 0; i < expression.branches.size(); ++i)
        sql += " WHEN " + whens[i] + " THEN " + RenderChosen(results[i], type);
    if (expression.otherwise) sql += " ELSE " + RenderChosen(results.back(), type);
    return Computed("(" + sql + " END)", type);
}

// What stands behind each WHEN; the value that is compared comes behind CASE where it stands there once.
std::vector<std::string> Translator::WhensOf(const CaseExpr& expression, Scope& scope, std::string& head) {
    std::vector<std::string> texts;
    if (!expression.operand) {
        for (const CaseExpr::Branch& branch : expression.branches)
            texts.push_back(ConditionText(*branch.when, scope));
        return texts;
    }
    const Operand value = Value(*expression.operand, scope);
    std::vector<Operand> whens;
    for (const CaseExpr::Branch& branch : expression.branches)
        whens.push_back(Value(*branch.when, scope));
    for (std::size_t i = 0; i < whens.size(); ++i)
        CheckCompared(value.type, "=", whens[i].type, expression.branches[i].when->position);
    const std::vector<SqlType> commons = CommonTypes(value, whens);
    if (const auto once = ComparedOnce(value, commons)) {
        head += " " + *once;
        for (std::size_t i = 0; i < whens.size(); ++i)
            texts.push_back(AtLine(expression.branches[i].when->position,
                                   [&] { return RenderCompared(whens[i], commons[i]); }));
        return texts;
    }
    const bool isMany = 2 * whens.size() + 2 > kMostInOneCall;
    if (value.pending || value.isPlain || isMany) {
        for (std::size_t i = 0; i < whens.size(); ++i)
            texts.push_back(Compare("=", value, whens[i], expression.branches[i].when->position));
        return texts;
    }
    head += " " + kWhichCall.Call(ComparedApart(value, whens));
    for (std::size_t i = 0; i < whens.size(); ++i)
        texts.push_back(std::to_string(i + 1));
    return texts;
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

}  // namespace vicenter::tsql::engine
