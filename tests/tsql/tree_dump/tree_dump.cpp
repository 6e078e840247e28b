#include "tests/tsql/tree_dump/tree_dump.h"

#include "tests/tsql/tree_dump/tree_text.h"
#include "tsql/syntax/lexer.h"
#include "tsql/syntax/print/printer.h"

namespace vicenter::tsql {
namespace {

std::string Clustered(const std::optional<bool>& clustered) {
    return !clustered ? std::string() : *clustered ? " clustered" : " nonclustered";
}

std::string IndexColumnsText(const std::vector<IndexColumn>& columns) {
    std::string text;
    for (const IndexColumn& column : columns) {
        text += (text.empty() ? "" : ", ") + NameText(column.name) + (column.descending ? " desc" : "");
    }
    return "(" + text + ")";
}

std::string_view KindName(LiteralKind kind) {
    static constexpr std::string_view kNames[] = {"null",   "integer", "decimal", "float",  "money",
                                                  "string", "nstring", "binary",  "default"};
    return kNames[static_cast<std::size_t>(kind)];
}

std::string_view OpName(ComparisonOp op) {
    static constexpr std::string_view kNames[] = {"=", "<>", "<", "<=", ">", ">="};
    return kNames[static_cast<std::size_t>(op)];
}

std::string_view OpName(AssignOp op) {
    static constexpr std::string_view kNames[] = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^="};
    return kNames[static_cast<std::size_t>(op)];
}

}  // namespace

void TreeDump::Line(std::string_view name, const Position* position, std::string_view attributes) {
    out_.append(static_cast<std::size_t>(indent_) * 2, ' ');
    out_ += name;
    if (position && withPositions_) {
        out_ += " @" + std::to_string(position->line) + ":" + std::to_string(position->column);
    }
    for (const char c : attributes) {  // one line, whatever the text
        if (c == '\n') {
            out_ += "\\n";
        } else if (c == '\r') {
            out_ += "\\r";
        } else {
            out_ += c;
        }
    }
    out_ += '\n';
}

void TreeDump::Add(std::string_view role, const ExprPtr& expr) {
    if (!expr) return;
    Line(role);
    const Deeper deeper(*this);
    Add(*expr);
}

void TreeDump::Add(std::string_view role, const std::vector<ExprPtr>& list) {
    if (list.empty()) return;
    Line(role);
    const Deeper deeper(*this);
    for (const ExprPtr& expr : list)
        Add(*expr);
}

void TreeDump::Add(std::string_view role, const std::vector<OrderItem>& items) {
    if (items.empty()) return;
    Line(role);
    const Deeper deeper(*this);
    for (const OrderItem& item : items) {
        Line(item.descending ? "descending" : "ascending");
        const Deeper further(*this);
        Add(*item.expression);
    }
}

void TreeDump::AddFunction(const FunctionExpr& function) {
    Line("Function", &function.position,
         " " + Print(function.name) + Flag(!function.hasParentheses, "bare") +
             Flag(function.distinct, "distinct") + Flag(function.star, "*"));
    const Deeper deeper(*this);
    for (const ExprPtr& argument : function.arguments)
        Add(*argument);
    Add("within group", function.withinGroup);
    if (!function.over) return;
    Line("over");
    const Deeper further(*this);
    Add("partition", function.over->partitionBy);
    Add("order", function.over->orderBy);
    if (function.over->frame) AddFrame(*function.over->frame);
}

void TreeDump::AddFrame(const WindowFrame& frame) {
    static constexpr std::string_view kNames[] = {"unbounded preceding", "preceding", "current row",
                                                  "following", "unbounded following"};
    Line(frame.isRows ? "rows" : "range");
    const Deeper deeper(*this);
    Add(kNames[static_cast<std::size_t>(frame.start.kind)], frame.start.rows);
    if (!frame.start.rows) Line(kNames[static_cast<std::size_t>(frame.start.kind)]);
    if (!frame.end) return;
    Add(kNames[static_cast<std::size_t>(frame.end->kind)], frame.end->rows);
    if (!frame.end->rows) Line(kNames[static_cast<std::size_t>(frame.end->kind)]);
}

void TreeDump::Add(const Expr& expr) {
    const Position* at = &expr.position;
    switch (expr.kind) {
        case ExprKind::kLiteral: {
            const auto& literal = As<LiteralExpr>(expr);
            const bool text =
                literal.literal == LiteralKind::kString || literal.literal == LiteralKind::kNString;
            const std::string shown = text ? QuoteString(literal.text, false) : literal.text;
            Line("Literal", at,
                 " " + std::string(KindName(literal.literal)) + (shown.empty() ? "" : " " + shown));
            return;
        }
        case ExprKind::kVariable:
            return Line("Variable", at, " " + As<VariableExpr>(expr).name);
        case ExprKind::kColumn:
            return Line("Column", at, " " + Print(As<ColumnExpr>(expr).name));
        case ExprKind::kFunction:
            return AddFunction(As<FunctionExpr>(expr));
        case ExprKind::kUnary: {
            static constexpr std::string_view kNames[] = {" +", " -", " ~"};
            Line("Unary", at, kNames[static_cast<std::size_t>(As<UnaryExpr>(expr).op)]);
            const Deeper deeper(*this);
            return Add(*As<UnaryExpr>(expr).operand);
        }
        case ExprKind::kBinary: {
            static constexpr std::string_view kNames[] = {" +", " -", " *", " /", " %", " &", " |", " ^"};
            const auto& binary = As<BinaryExpr>(expr);
            Line("Binary", at, kNames[static_cast<std::size_t>(binary.op)]);
            const Deeper deeper(*this);
            Add(*binary.left);
            return Add(*binary.right);
        }
        case ExprKind::kCase: {
            const auto& choice = As<CaseExpr>(expr);
            Line("Case", at);
            const Deeper deeper(*this);
            Add("operand", choice.operand);
            for (const CaseExpr::Branch& branch : choice.branches) {
                Add("when", branch.when);
                Add("then", branch.then);
            }
            return Add("else", choice.otherwise);
        }
        case ExprKind::kCast: {
            const auto& cast = As<CastExpr>(expr);
            Line(cast.convert ? "Convert" : "Cast", at, Flag(cast.tryOnly, "try") + " " + Print(cast.type));
            const Deeper deeper(*this);
            Add(*cast.operand);
            return Add("style", cast.style);
        }
        case ExprKind::kCollate: {
            Line("Collate", at, " " + NameText(As<CollateExpr>(expr).collation));
            const Deeper deeper(*this);
            return Add(*As<CollateExpr>(expr).operand);
        }
        case ExprKind::kSubquery: {
            Line("Subquery", at);
            const Deeper deeper(*this);
            return Add(*As<SubqueryExpr>(expr).query);
        }
        default:
            return AddCondition(expr);
    }
}

void TreeDump::AddCondition(const Expr& expr) {
    const Position* at = &expr.position;
    switch (expr.kind) {
        case ExprKind::kComparison: {
            const auto& comparison = As<ComparisonExpr>(expr);
            Line("Comparison", at, " " + std::string(OpName(comparison.op)));
            const Deeper deeper(*this);
            Add(*comparison.left);
            return Add(*comparison.right);
        }
        case ExprKind::kLogical: {
            const auto& logical = As<LogicalExpr>(expr);
            Line(logical.isAnd ? "And" : "Or", at);
            const Deeper deeper(*this);
            for (const ExprPtr& operand : logical.operands)
                Add(*operand);
            return;
        }
        case ExprKind::kNot: {
            Line("Not", at);
            const Deeper deeper(*this);
            return Add(*As<NotExpr>(expr).operand);
        }
        case ExprKind::kBetween: {
            const auto& between = As<BetweenExpr>(expr);
            Line("Between", at, Flag(between.negated, "not"));
            const Deeper deeper(*this);
            Add(*between.operand);
            Add(*between.low);
            return Add(*between.high);
        }
        case ExprKind::kLike: {
            const auto& like = As<LikeExpr>(expr);
            Line("Like", at, Flag(like.negated, "not"));
            const Deeper deeper(*this);
            Add(*like.operand);
            Add(*like.pattern);
            return Add("escape", like.escape);
        }
        case ExprKind::kIn: {
            const auto& in = As<InExpr>(expr);
            Line("In", at, Flag(in.negated, "not"));
            const Deeper deeper(*this);
            Add(*in.operand);
            if (in.query) return Add(*in.query);
            return Add("list", in.list);
        }
        case ExprKind::kExists: {
            Line("Exists", at);
            const Deeper deeper(*this);
            return Add(*As<ExistsExpr>(expr).query);
        }
        case ExprKind::kIsNull: {
            Line("IsNull", at, Flag(As<IsNullExpr>(expr).negated, "not"));
            const Deeper deeper(*this);
            return Add(*As<IsNullExpr>(expr).operand);
        }
        case ExprKind::kQuantified: {
            const auto& quantified = As<QuantifiedExpr>(expr);
            Line("Quantified", at,
                 " " + std::string(OpName(quantified.op)) + (quantified.all ? " all" : " any"));
            const Deeper deeper(*this);
            Add(*quantified.operand);
            return Add(*quantified.query);
        }
        default:
            return;
    }
}

void TreeDump::Add(const std::vector<CommonTable>& with) {
    for (const CommonTable& table : with) {
        Line("With", &table.name.position,
             " " + NameText(table.name) + Attribute("columns", NamesText(table.columns)));
        const Deeper deeper(*this);
        Add(*table.query);
    }
}

void TreeDump::Add(const Query& query) {
    Line("Query", &query.position, Attribute("options", Joined(query.options)));
    const Deeper deeper(*this);
    Add(query.with);
    Add(*query.body);
    Add("order by", query.orderBy);
    Add("offset", query.offset);
    Add("fetch", query.fetch);
}

void TreeDump::Add(const QueryBody& body) {
    if (body.kind == QueryBodyKind::kSelect) return Add(As<SelectBody>(body));
    static constexpr std::string_view kNames[] = {"union", "union all", "except", "intersect"};
    const auto& operation = As<SetOperation>(body);
    Line("SetOperation", &body.position);
    const Deeper deeper(*this);
    Add(*operation.first);
    for (const SetOperation::Term& term : operation.rest) {
        Line(kNames[static_cast<std::size_t>(term.op)]);
        const Deeper further(*this);
        Add(*term.body);
    }
}

void TreeDump::Add(const TopClause& top) {
    Line("top", nullptr,
         Flag(top.parentheses, "()") + Flag(top.percent, "percent") + Flag(top.withTies, "with ties"));
    const Deeper deeper(*this);
    Add(*top.count);
}

void TreeDump::Add(const SelectBody& select) {
    Line("Select", &select.position,
         Flag(select.distinct, "distinct") + Attribute("into", Print(select.into)));
    const Deeper deeper(*this);
    if (select.top) Add(*select.top);
    for (const SelectItem& item : select.items)
        Add(item);
    Add("from", select.from);
    Add("where", select.where);
    Add("group by", select.groupBy);
    Add(select.grouping);
    Add("having", select.having);
}

void TreeDump::Add(const std::vector<GroupingItem>& grouping) {
    static constexpr std::string_view kNames[] = {"group by", "rollup", "cube", "grouping sets"};
    for (const GroupingItem& item : grouping) {
        Line(kNames[static_cast<std::size_t>(item.kind)], &item.position);
        const Deeper deeper(*this);
        for (const ExprPtr& expression : item.expressions)
            Add(*expression);
        Add(item.parts);
    }
}

void TreeDump::Add(const SelectItem& item) {
    if (item.kind == SelectItemKind::kStar) {
        return Line("Star", &item.position, Attribute("of", Print(item.qualifier)));
    }
    const std::string variable =
        item.variable.empty() ? std::string() : " " + item.variable + " " + std::string(OpName(item.assign));
    Line("Item", &item.position, variable + Attribute("alias", NameText(item.alias)));
    const Deeper deeper(*this);
    Add(*item.expression);
}

void TreeDump::Add(std::string_view role, const std::vector<TableSourcePtr>& sources) {
    if (sources.empty()) return;
    Line(role);
    const Deeper deeper(*this);
    for (const TableSourcePtr& source : sources)
        Add(*source);
}

void TreeDump::Add(const TableSource& source) {
    const Position* at = &source.position;
    const auto alias = [](const Name& name, const std::vector<Name>& columns) {
        return Attribute("alias", NameText(name)) + Attribute("columns", NamesText(columns));
    };
    switch (source.kind) {
        case SourceKind::kTable: {
            const auto& table = As<TableRef>(source);
            return Line(
                "Table", at,
                " " + Print(table.name) + alias(table.alias, {}) + Attribute("hints", Joined(table.hints)));
        }
        case SourceKind::kDerived: {
            const auto& derived = As<DerivedTable>(source);
            Line("Derived", at, alias(derived.alias, derived.columns));
            const Deeper deeper(*this);
            return Add(*derived.query);
        }
        case SourceKind::kValues: {
            const auto& values = As<ValuesTable>(source);
            Line("Values", at, alias(values.alias, values.columns));
            const Deeper deeper(*this);
            for (const auto& row : values.rows)
                Add("row", row);
            return;
        }
        case SourceKind::kFunction: {
            const auto& function = As<FunctionTable>(source);
            Line("FunctionTable", at, " " + Print(function.name) + alias(function.alias, function.columns));
            const Deeper deeper(*this);
            for (const ExprPtr& argument : function.arguments)
                Add(*argument);
            return;
        }
        case SourceKind::kJoin: {
            static constexpr std::string_view kNames[] = {" inner", " left",        " right",      " full",
                                                          " cross", " cross apply", " outer apply"};
            const auto& join = As<JoinedTable>(source);
            Line("Join", at, kNames[static_cast<std::size_t>(join.join)]);
            const Deeper deeper(*this);
            Add(*join.left);
            Add(*join.right);
            return Add("on", join.on);
        }
        case SourceKind::kPivot: {
            const auto& pivot = As<PivotTable>(source);
            Line("Pivot", at,
                 " " + Print(pivot.function) + Attribute("value", Print(pivot.value)) +
                     Attribute("for", Print(pivot.spread)) + alias(pivot.alias, pivot.columns));
            const Deeper deeper(*this);
            return Add(*pivot.source);
        }
        case SourceKind::kUnpivot: {
            const auto& unpivot = As<UnpivotTable>(source);
            Line("Unpivot", at,
                 Attribute("value", NameText(unpivot.value)) + Attribute("for", NameText(unpivot.name)) +
                     alias(unpivot.alias, unpivot.columns));
            const Deeper deeper(*this);
            return Add(*unpivot.source);
        }
    }
}

void TreeDump::Add(const OutputClause& output) {
    Line("output", nullptr,
         Attribute("into", Print(output.into)) + Attribute("columns", NamesText(output.columns)));
    const Deeper deeper(*this);
    for (const SelectItem& item : output.items)
        Add(item);
}

void TreeDump::Add(const Constraint& constraint) {
    static constexpr std::string_view kNames[] = {" primary key", " unique", " check", " foreign key",
                                                  " default"};
    Line("Constraint", &constraint.position,
         std::string(kNames[static_cast<std::size_t>(constraint.kind)]) +
             Attribute("name", NameText(constraint.name)) + Clustered(constraint.clustered) +
             Attribute("columns", IndexColumnsText(constraint.columns)) +
             Attribute("references", Print(constraint.referencedTable)) +
             Attribute("key", NamesText(constraint.referencedColumns)) +
             Attribute("on delete", constraint.onDelete) + Attribute("on update", constraint.onUpdate));
    const Deeper deeper(*this);
    if (constraint.expression) Add(*constraint.expression);
}

void TreeDump::Add(const TableDefinition& definition) {
    for (const ColumnDefinition& column : definition.columns) {
        std::string attributes = " " + NameText(column.name) + " " + Print(column.type);
        if (column.nullable) attributes += *column.nullable ? " null" : " not null";
        if (column.identity) {
            attributes += " identity(" + std::to_string(column.identity->seed) + "," +
                          std::to_string(column.identity->increment) + ")";
        }
        attributes += Attribute("collate", NameText(column.collation)) + Flag(column.persisted, "persisted");
        Line("ColumnDefinition", &column.name.position, attributes);
        const Deeper deeper(*this);
        Add("as", column.computedAs);
        for (const Constraint& constraint : column.constraints)
            Add(constraint);
    }
    for (const Constraint& constraint : definition.constraints)
        Add(constraint);
}

void TreeDump::Add(const CursorDefinition& cursor) {
    Line("Cursor", &cursor.position,
         Attribute("options", Joined(cursor.options)) + Flag(cursor.forReadOnly, "for read only") +
             Flag(cursor.forUpdate, "for update") + Attribute("of", NamesText(cursor.updateColumns)));
    const Deeper deeper(*this);
    Add(*cursor.query);
}

void TreeDump::Add(std::string_view role, const std::vector<StatementPtr>& statements) {
    Line(role);
    const Deeper deeper(*this);
    for (const StatementPtr& statement : statements)
        Add(*statement);
}

}  // namespace vicenter::tsql
