// SELECT: the select list, GROUP BY and HAVING.

#include <algorithm>
#include <utility>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/syntax/ast_children.h"
#include "tsql/translate/comparable.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

constexpr std::size_t kLongestAssigned = 100'000;
// Of a statement as SQLite gets it.
constexpr std::size_t kLongestText = 16'000'000;

// The identity column that $identity stands for.
std::string IdentityName(const ColumnExpr& column, const Scope& scope) {
    for (const Source& source : scope.sources) {
        if (column.name.parts.size() > 1 && !SameName(source.exposedName, column.name.Schema())) continue;
        const ColumnInfo* identity = source.table != nullptr ? source.table->IdentityColumn() : nullptr;
        if (identity != nullptr) return identity->name;
    }
    return column.name.Object();
}

// The name that SQL Server gives to a column of a result.
std::string ItemName(const SelectItem& item, const Scope& scope) {
    if (!item.alias.IsEmpty()) return item.alias.text;
    const auto* column = TryAs<ColumnExpr>(item.expression.get());
    if (column == nullptr) return {};
    return column->IsIdentity() ? IdentityName(*column, scope) : column->name.Object();
}

bool IsTopOne(const SelectBody& select) {
    const auto* count = select.top ? TryAs<LiteralExpr>(select.top->count.get()) : nullptr;
    return count != nullptr && count->text == "1" && !select.top->percent;
}

// Variables take the rows one after the other, in an order that the query states.
bool AssignsInOrder(const SelectBody& select, const Query& query) {
    if (query.orderBy.empty() || select.from.empty() || select.distinct || IsTopOne(select)) return false;
    for (const OrderItem& item : query.orderBy) {
        if (item.expression->kind == ExprKind::kLiteral) return false;  // the number of an item
    }
    for (const SelectItem& item : select.items) {
        if (item.kind == SelectItemKind::kAssignment) return true;
    }
    return false;
}

}  // namespace

Translation Translator::Finished(const std::string& sql) {
    translation_.sql = (sharedTexts_.empty() ? "" : "WITH " + std::exchange(sharedTexts_, {}) + " ") + sql;
    return std::move(translation_);
}

Translation Translator::Select(const Query& query) {
    QueryText text = QueryOf(query, nullptr, true);
    translation_.columns = std::move(text.columns);
    translation_.assignments = std::move(text.assignments);
    return Finished(text.sql);
}

// OPTION (MAXRECURSION n) holds for all recursive queries of the statement; 0 is no bound.
void Translator::TakeOptions(const Query& query) {
    constexpr std::string_view kMost = "maxrecursion ";
    for (const std::string& option : query.options) {
        if (option.starts_with(kMost) && option.size() < kMost.size() + 6)
            mostRecursions_ = std::stoi(option.substr(kMost.size()));
    }
}

QueryText Translator::QueryOf(const Query& query, const Scope* outer, bool ordered) {
    TakeOptions(query);
    AddCommonTables(query.with);
    const SelectBody* select = query.Select();
    const bool limits = query.offset || (select != nullptr && select->top);
    const bool wasGrouping = aggregateAllowed_;
    const int depth = aggregateDepth_;
    aggregateDepth_ = 0;
    SelectParts parts = BodyOf(*query.body, ordered || limits ? &query : nullptr, outer);
    aggregateDepth_ = depth;
    aggregateAllowed_ = wasGrouping;
    if (!query.with.empty()) commonTables_.pop_back();
    return Finish(std::move(parts));
}

QueryText Translator::Finish(SelectParts parts) {
    QueryText result;
    result.sql = Assemble(parts, nullptr);
    if (result.sql.size() > kLongestText) throw MakeError(8623, {});
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        // A NULL without a type of its own is an int.
        const SqlType& type = parts.items[i].type;
        result.columns.push_back({parts.names[i], type.IsUnknown() ? SqlType::Int() : type});
        // An item of its own has no collation that a column of it could pass on.
        result.natural.push_back(parts.items[i].column);
        result.weights.push_back(parts.items[i].weight);
    }
    result.assignments = std::move(parts.assignments);
    result.singleRow = parts.singleRow;
    return result;
}

SelectParts Translator::BodyOf(const QueryBody& body, const Query* orderFrom, const Scope* outer) {
    if (body.kind == QueryBodyKind::kSelect) return SelectOf(As<SelectBody>(body), orderFrom, outer);
    return SetOf(As<SetOperation>(body), orderFrom, outer);
}

void Translator::AddStar(const SelectItem& item, Scope& scope, SelectParts& parts) {
    const std::string qualifier = item.qualifier.IsEmpty() ? std::string() : item.qualifier.Object();
    bool found = false;
    for (const Source& source : scope.sources) {
        if (!qualifier.empty() && !SameName(source.exposedName, qualifier)) continue;
        found = true;
        for (const SourceColumn& column : source.columns) {
            if (column.name == kRowNumberName) continue;
            Operand operand;
            operand.sql = column.sql;
            operand.type = column.type;
            operand.column = column.natural;
            operand.isPlain = column.weight == 1;
            weight_ += column.weight;
            const std::int64_t weight = column.weight;
            CheckGrouped(scope, operand.sql, item.position, source, column);
            parts.items.push_back(Staged(scope, std::move(operand)));
            parts.items.back().weight = weight;
            parts.names.push_back(column.name);
        }
    }
    if (!found) throw MakeError(qualifier.empty() ? 263 : 107, item.position, {qualifier});
}

void Translator::AddItem(const SelectItem& item, Scope& scope, SelectParts& parts) {
    if (item.kind == SelectItemKind::kStar) return AddStar(item, scope, parts);
    const std::int64_t before = weight_;
    Operand operand = Value(*item.expression, scope);
    if (!operand.pending && !operand.isPlain)
        operand.weight = weight_ - before + static_cast<std::int64_t>(operand.sql.size());
    if (operand.literal != nullptr) context_.PinLiteral(*operand.literal);
    if (item.kind == SelectItemKind::kAssignment)
        return AddAssignment(item.variable, item.assign, std::move(operand), item.position, parts);
    parts.items.push_back(std::move(operand));
    parts.names.push_back(ItemName(item, scope));
}

std::string Translator::AssignVariable(const std::string& variable, const Operand& value, Position where,
                                       SelectParts& parts) {
    const std::string name = LowerAscii(variable);
    const auto type = context_.VariableType(name);
    if (!type) throw MakeError(137, where, {variable});
    std::string text = RenderAs(value, *type);
    // Each may double what stands before it.
    if (text.size() > kLongestAssigned) throw MakeError(8623, where);
    assigned_.emplace_back(name, text);
    parts.assignments.push_back({name, AssignOp::kSet});
    return text;
}

void Translator::AddAssignment(const std::string& variable, AssignOp op, Operand value, Position where,
                               SelectParts& parts) {
    const auto type = context_.VariableType(LowerAscii(variable));
    if (!type) throw MakeError(137, where, {variable});
    if (op != AssignOp::kSet) {
        const Operand current = Variable(VariableExpr(where, variable));
        value = Binary(static_cast<BinaryOp>(static_cast<int>(op) - 1), where, current, value);
    }
    parts.items.push_back(Computed(AssignVariable(variable, value, where, parts), *type));
    parts.names.emplace_back();
}

void Translator::CheckGroupBy(const SelectBody& select, Scope& scope, std::string& tail) {
    std::string list;
    for (const ExprPtr& group : select.groupBy) {
        if (HasAggregate(*group) || HoldsQuery(*group)) throw MakeError(144, group->position);
        const Operand operand = Value(*group, scope);
        const Names names = NamesOf(*group, scope);
        if (!names.own) throw MakeError(164, group->position);
        if (names.outside)
            throw MakeError(40510, group->position, {"GROUP BY of a column of the query around"});
        if (operand.column || group->kind == ExprKind::kColumn) scope.groupColumns.push_back(operand.sql);
        list += (list.empty() ? " GROUP BY " : ", ") + Sorted(operand);
    }
    tail += list;
    scope.groupExpressions = &select.groupBy;
    scope.grouped = true;
}

// SQLite's LIMIT knows nothing of the query around it.
static bool MayAskOutside(const Expr& count, const Scope* outer) {
    return outer != nullptr && count.kind != ExprKind::kLiteral && count.kind != ExprKind::kVariable;
}

bool Translator::IsGrouped(const SelectBody& select, const Query* orderFrom, const Scope& scope) const {
    if (select.having || !select.groupBy.empty() || !select.grouping.empty()) return true;
    if (ways_.groups.contains(&select)) return true;
    const auto aggregates = [&](const ExprPtr& one) { return one && HasOwnAggregate(*one, scope); };
    if (std::any_of(select.items.begin(), select.items.end(),
                    [&](const SelectItem& item) { return aggregates(item.expression); })) {
        return true;
    }
    return orderFrom != nullptr &&
           std::any_of(orderFrom->orderBy.begin(), orderFrom->orderBy.end(),
                       [&](const OrderItem& item) { return aggregates(item.expression); });
}

static bool HasWindows(const SelectBody& select, const Query* orderFrom) {
    const auto holds = [](const ExprPtr& one) { return one && HasWindow(*one); };
    if (std::any_of(select.items.begin(), select.items.end(),
                    [&](const SelectItem& item) { return holds(item.expression); })) {
        return true;
    }
    return orderFrom != nullptr && std::any_of(orderFrom->orderBy.begin(), orderFrom->orderBy.end(),
                                               [&](const OrderItem& item) { return holds(item.expression); });
}

void Translator::AddItems(const SelectBody& select, Scope& scope, SelectParts& parts) {
    for (const SelectItem& item : select.items) {
        const auto* call = &select == into_ ? TryAs<FunctionExpr>(item.expression.get()) : nullptr;
        if (call != nullptr && SameName(call->name.Object(), "identity")) {
            AddIdentity(*call, item, parts);
        } else {
            AddItem(item, scope, parts);
        }
    }
}

void Translator::AddHaving(const SelectBody& select, Scope& scope, SelectParts& parts) {
    const bool isWhole = select.groupBy.empty() && select.grouping.empty();
    const GroupedPlace inHaving(scope, kUngroupedInHaving);
    if (scope.stage != nullptr) {
        parts.tail += " WHERE " + ConditionText(*select.having, scope);
        return;
    }
    parts.tail += " HAVING " + ConditionText(*select.having, scope);
    // Without a group all rows are one, which SQLite believes of a query that lists an aggregate only.
    Operand& first = parts.items.front();
    if (isWhole) first = Computed("iif(count(*) >= 0, " + Render(first) + ", NULL)", first.type);
}

// What makes a subquery ask for each row anew what a variable is.
void Translator::TakeAssigningRow(const Scope& scope) {
    if (assigningDepth_ != selectDepth_ || assigning_.empty()) return;
    const SourceColumn* taken = nullptr;
    for (const Source& source : scope.sources) {
        for (const SourceColumn& column : source.columns) {
            if (taken == nullptr || column.weight < taken->weight) taken = &column;
        }
    }
    if (taken != nullptr) assigningRow_ = taken->sql;
}

// FROM, WHERE and GROUP BY.
bool Translator::AddRows(const SelectBody& select, const Query* orderFrom, Scope& scope, SelectParts& parts) {
    parts.tail = From(select.from, scope);
    scope.whereAt = parts.tail.size();
    TakeAssigningRow(scope);
    if (select.where) {
        if (HasOwnAggregate(*select.where, scope)) throw MakeError(147, select.where->position);
        parts.tail += " WHERE " + ConditionText(*select.where, scope);
    }
    scope.isBehind = true;
    const bool groups = IsGrouped(select, orderFrom, scope);
    if (groups && assigningDepth_ == selectDepth_) assigningRow_ = std::string();
    if (!select.grouping.empty()) {
        GroupBySets(select, scope, parts.tail);
    } else if (groups) {
        CheckGroupBy(select, scope, parts.tail);
    }
    return groups;
}

SelectParts Translator::SelectOf(const SelectBody& select, const Query* orderFrom, const Scope* outer) {
    Scope scope;
    scope.outer = outer;
    scope.select = &select;
    SelectParts parts;
    const bool wantsRow = std::exchange(changed_.wantsRow, false);
    const std::string assigningOutside = assigning_;
    const std::size_t assignedOutside = assigned_.size();
    ++selectDepth_;
    // Of one row no other can see what it assigns.
    for (const SelectItem& item : select.items) {
        if (item.kind != SelectItemKind::kAssignment || select.from.empty()) continue;
        assigning_ += " " + LowerAscii(item.variable) + " ";
        assigningDepth_ = selectDepth_;
    }
    const bool groups = AddRows(select, orderFrom, scope, parts);
    const bool isWhole = groups && select.groupBy.empty() && select.grouping.empty();
    aggregateAllowed_ = true;
    const bool ordersFirst = orderFrom != nullptr && !scope.grouped && AssignsInOrder(select, *orderFrom);
    Stage stage;
    bool hasHaving = select.having != nullptr;
    const bool windows = ways_.stages && HasWindows(select, orderFrom);
    const bool mayStage = ways_.stages && !ordersFirst && (!wantsRow || changed_.isCursor);
    if (mayStage && (groups || windows)) {
        // Windows see the groups that HAVING leaves.
        if (windows && hasHaving) {
            const GroupedPlace inHaving(scope, kUngroupedInHaving);
            parts.tail += " HAVING " + ConditionText(*select.having, scope);
        }
        hasHaving = hasHaving && !windows;
        stage.alias = "\"stage$" + std::to_string(++aliasNumber_) + "\"";
        if (isWhole) stage.values = {"count(*)"};
        parts.tail = OpenStage(stage, parts.tail);
        scope.stage = &stage;
    }
    if (ordersFirst) {
        OrderRowsFirst(*orderFrom, select, scope, parts);
        TakeAssigningRow(scope);
    }
    AddItems(select, scope, parts);
    if (wantsRow) AddRowNumber(select, scope, parts);
    if (!parts.assignments.empty() && parts.assignments.size() != parts.items.size())
        throw MakeError(141, select.position);
    if (hasHaving) AddHaving(select, scope, parts);
    if (select.distinct) {
        CheckDistinct(parts.items, select.position);
        RefuseBytes(parts.items, "DISTINCT", select.position);
    }
    parts.head = select.distinct ? "SELECT DISTINCT" : "SELECT";
    parts.singleRow = select.from.empty() || isWhole;
    AddOrder(select, orderFrom, ordersFirst, scope, parts);
    if (scope.stage != nullptr) CloseStage(stage, parts);
    --selectDepth_;
    assigning_ = assigningOutside;
    assigned_.resize(assignedOutside);
    return parts;
}

// A query in the list, itself of some length.
static bool HoldsLongQuery(const SelectParts& parts) {
    constexpr std::size_t kLong = 500;
    return std::any_of(parts.items.begin(), parts.items.end(), [](const Operand& item) {
        return item.sql.size() > kLong && item.sql.find("(SELECT ") != std::string::npos;
    });
}

// ORDER BY, and what is taken of the rows.
void Translator::AddOrder(const SelectBody& select, const Query* orderFrom, bool ordersFirst, Scope& scope,
                          SelectParts& parts) {
    // SQLite's ORDER BY knows nothing of the query around it either.
    const bool asksOutside = OrdersByOutside(orderFrom, scope);
    if (asksOutside && !select.top)
        throw MakeError(40510, select.position, {"ORDER BY of a column of the query around"});
    if (select.top && (select.top->percent || select.top->withTies || asksOutside ||
                       MayAskOutside(*select.top->count, scope.outer))) {
        // A member of a set has no order of its own.
        const Query unordered;
        LimitByRank(select, orderFrom != nullptr ? *orderFrom : unordered, scope, parts);
    } else if (!ordersFirst) {
        if (orderFrom != nullptr && scope.outer != nullptr && HoldsLongQuery(parts)) {
            SortApart(*orderFrom, select, scope, parts);
        } else if (orderFrom != nullptr) {
            parts.order = OrderBy(*orderFrom, select, scope, parts);
        }
        parts.limit = LimitOf(&select, orderFrom, scope);
    }
    if (!scope.someRows.empty()) {
        if (!parts.limit.empty() || parts.head.empty())
            throw MakeError(40510, select.position, {"ROLLUP with TOP"});
        parts.limit = " LIMIT " + scope.someRows;
    }
    if (IsTopOne(select)) {
        context_.PinLiteral(As<LiteralExpr>(*select.top->count));
        parts.singleRow = true;
    }
}

}  // namespace vicenter::tsql::engine
