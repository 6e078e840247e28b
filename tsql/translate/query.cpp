// SELECT, UNION and what belongs to them: select lists, GROUP BY, ORDER BY, TOP.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

constexpr std::size_t kMostTerms = 400;

// The name that SQL Server gives to a column of a result.
std::string ItemName(const SelectItem& item) {
    if (!item.alias.IsEmpty()) return item.alias.text;
    if (const auto* column = TryAs<ColumnExpr>(item.expression.get())) return column->name.Object();
    return {};
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

// DISTINCT leaves nothing to sort by but what it lists.
bool IsListed(const Expr& expression, const Operand& operand, const SelectBody& select,
              const SelectParts& parts) {
    for (const SelectItem& item : select.items) {
        if (item.expression && SameExpression(*item.expression, expression)) return true;
    }
    return std::any_of(parts.items.begin(), parts.items.end(), [&](const Operand& item) {
        return !item.pending && !operand.pending && item.sql == operand.sql;
    });
}

const SelectBody* FirstSelect(const QueryBody& body) {
    const QueryBody* at = &body;
    while (at->kind == QueryBodyKind::kSetOperation)
        at = As<SetOperation>(*at).first.get();
    return &As<SelectBody>(*at);
}

}  // namespace

Translation Translator::Finished(std::string sql) {
    translation_.sql = std::move(sql);
    return std::move(translation_);
}

Translation Translator::Select(const Query& query) {
    QueryText text = QueryOf(query, nullptr, true);
    translation_.columns = std::move(text.columns);
    translation_.assignments = std::move(text.assignments);
    return Finished(std::move(text.sql));
}

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

Translation Translator::Condition(const Expr& condition) {
    Scope scope;
    translation_.columns.push_back({"", SqlType::Of(TypeKind::kBit)});
    return Finished("SELECT " + ConditionText(condition, scope));
}

QueryText Translator::QueryOf(const Query& query, const Scope* outer, bool ordered) {
    if (!query.with.empty()) commonTables_.push_back(&query.with);
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
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        // A NULL without a type of its own is an int.
        const SqlType& type = parts.items[i].type;
        result.columns.push_back({parts.names[i], type.IsUnknown() ? SqlType::Int() : type});
        // An item of its own has no collation that a column of it could pass on.
        result.natural.push_back(parts.items[i].column);
    }
    result.assignments = std::move(parts.assignments);
    result.singleRow = parts.singleRow;
    return result;
}

SelectParts Translator::BodyOf(const QueryBody& body, const Query* orderFrom, const Scope* outer) {
    if (body.kind == QueryBodyKind::kSelect) return SelectOf(As<SelectBody>(body), orderFrom, outer);
    return SetOf(As<SetOperation>(body), orderFrom, outer);
}

// The text of a SELECT; with types each item is converted to its own.
std::string Translator::Assemble(SelectParts& parts, const std::vector<SqlType>* types) {
    if (parts.head.empty()) return parts.tail + parts.order + parts.limit;
    std::string sql = parts.head;
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        const Operand& item = parts.items[i];
        sql += i == 0 ? " " : ", ";
        if (types != nullptr && !((*types)[i] == item.type)) {
            const SqlType& type = (*types)[i];
            sql += RenderAs(item, type);
            if (type.IsText()) sql += std::string(" COLLATE ") + kTextCollationName;
            if (type.IsExact()) sql += std::string(" COLLATE ") + kNumberCollationName;
        } else {
            sql += Collated(item);
        }
        sql += " AS c" + std::to_string(i + 1);
    }
    return sql + parts.tail + parts.order + parts.limit;
}

SelectParts Translator::SetOf(const SetOperation& operation, const Query* orderFrom, const Scope* outer) {
    std::vector<SelectParts> members;
    members.push_back(BodyOf(*operation.first, nullptr, outer));
    for (const SetOperation::Term& term : operation.rest)
        members.push_back(BodyOf(*term.body, nullptr, outer));
    std::vector<SqlType> types;
    for (const Operand& item : members.front().items)
        types.push_back(item.type);
    for (const SelectParts& member : members) {
        if (member.items.size() != types.size()) throw MakeError(205, operation.position);
        for (std::size_t i = 0; i < types.size(); ++i)
            types[i] = CommonType(types[i], member.items[i].type);
    }
    SelectParts parts;
    // Scripts list hundreds of rows by UNION ALL; SQLite takes 500 terms at a time.
    const bool isLong =
        members.size() > kMostTerms &&
        std::all_of(operation.rest.begin(), operation.rest.end(),
                    [](const SetOperation::Term& term) { return term.op == SetOp::kUnionAll; });
    if (isLong) parts.tail = "SELECT * FROM (";
    for (std::size_t i = 0; i < members.size(); ++i) {
        SelectParts& member = members[i];
        const bool nested = member.head.empty() || !member.limit.empty() || !member.order.empty();
        std::string sql = Assemble(member, &types);
        if (nested) {
            std::string items;
            for (std::size_t c = 0; c < types.size(); ++c) {
                const Operand column = Computed("c" + std::to_string(c + 1), member.items[c].type);
                const std::string text = member.head.empty() ? RenderAs(column, types[c]) : column.sql;
                items += (c == 0 ? "" : ", ") + text + " AS c" + std::to_string(c + 1);
            }
            sql = "SELECT " + items + " FROM (" + sql + ")";
        }
        if (i > 0 && isLong && i % kMostTerms == 0) {
            parts.tail += ") UNION ALL SELECT * FROM (";
        } else if (i > 0) {
            switch (operation.rest[i - 1].op) {
                case SetOp::kUnion:
                    parts.tail += " UNION ";
                    break;
                case SetOp::kUnionAll:
                    parts.tail += " UNION ALL ";
                    break;
                case SetOp::kExcept:
                    parts.tail += " EXCEPT ";
                    break;
                case SetOp::kIntersect:
                    parts.tail += " INTERSECT ";
                    break;
            }
        }
        parts.tail += sql;
    }
    if (isLong) parts.tail += ")";
    parts.names = members.front().names;
    for (std::size_t i = 0; i < types.size(); ++i) {
        Operand item = Computed("c" + std::to_string(i + 1), types[i]);
        item.column = false;
        parts.items.push_back(std::move(item));
    }
    if (orderFrom != nullptr) {
        Scope named;
        named.outer = outer;
        Source results;
        for (std::size_t i = 0; i < parts.items.size(); ++i) {
            results.columns.push_back({parts.names[i], types[i], parts.items[i].sql, false});
        }
        parts.order = OrderBy(*orderFrom, *FirstSelect(operation), named, parts);
        parts.limit = LimitOf(nullptr, orderFrom, named);
    }
    return parts;
}

void Translator::AddStar(const SelectItem& item, Scope& scope, SelectParts& parts) {
    const std::string qualifier = item.qualifier.IsEmpty() ? std::string() : item.qualifier.Object();
    bool found = false;
    for (const Source& source : scope.sources) {
        if (!qualifier.empty() && !SameName(source.exposedName, qualifier)) continue;
        found = true;
        for (const SourceColumn& column : source.columns) {
            Operand operand;
            operand.sql = column.sql;
            operand.type = column.type;
            operand.column = column.natural;
            CheckGrouped(scope, operand.sql, item.position, source, column);
            parts.items.push_back(std::move(operand));
            parts.names.push_back(column.name);
        }
    }
    if (!found) throw MakeError(qualifier.empty() ? 263 : 107, item.position, {qualifier});
}

void Translator::AddItem(const SelectItem& item, Scope& scope, SelectParts& parts) {
    if (item.kind == SelectItemKind::kStar) return AddStar(item, scope, parts);
    Operand operand = Value(*item.expression, scope);
    if (operand.literal != nullptr) context_.PinLiteral(*operand.literal);
    if (item.kind == SelectItemKind::kAssignment) {
        const std::string name = LowerAscii(item.variable);
        const auto type = context_.VariableType(name);
        if (!type) throw MakeError(137, item.position, {item.variable});
        if (item.assign != AssignOp::kSet) {
            const Operand current = Computed(kVariableCall.Call({QuotedText(name), Code(*type)}), *type);
            operand = Binary(static_cast<BinaryOp>(static_cast<int>(item.assign) - 1), item.position, current,
                             operand);
        }
        const std::string text = RenderAs(operand, *type);
        operand = Computed(text, *type);
        parts.assignments.push_back({name, AssignOp::kSet});
    }
    parts.items.push_back(std::move(operand));
    parts.names.push_back(ItemName(item));
}

void Translator::CheckGroupBy(const SelectBody& select, Scope& scope, std::string& tail) {
    std::string list;
    for (const ExprPtr& group : select.groupBy) {
        const Operand operand = Value(*group, scope);
        if (operand.column || group->kind == ExprKind::kColumn) scope.groupColumns.push_back(operand.sql);
        list += (list.empty() ? " GROUP BY " : ", ") + Collated(operand);
    }
    tail += list;
    scope.groupExpressions = &select.groupBy;
    scope.grouped = true;
}

// SELECT @v = @v + … ORDER BY: SQLite evaluates a select list before it sorts, so the sorted rows become a
// table of their own. The offset keeps SQLite from merging it with the query around it.
void Translator::OrderRowsFirst(const Query& query, const SelectBody& select, Scope& scope,
                                SelectParts& parts) {
    const std::string order = OrderBy(query, select, scope, parts);
    std::string limit = LimitOf(&select, &query, scope);
    if (limit.empty()) limit = " LIMIT -1";
    if (!query.offset) limit += " OFFSET 0";
    std::string columns;
    int number = 0;
    for (Source& source : scope.sources) {
        for (SourceColumn& column : source.columns) {
            const std::string name = "k" + std::to_string(++number);
            columns += (columns.empty() ? "" : ", ") + column.sql + " AS " + name;
            column.sql = "\"ordered$\"." + name;
        }
    }
    parts.tail = " FROM (SELECT " + columns + parts.tail + order + limit + ") AS \"ordered$\"";
}

SelectParts Translator::SelectOf(const SelectBody& select, const Query* orderFrom, const Scope* outer) {
    Scope scope;
    scope.outer = outer;
    SelectParts parts;
    const std::string assigningOutside = assigning_;
    for (const SelectItem& item : select.items) {
        if (item.kind == SelectItemKind::kAssignment) assigning_ += " " + LowerAscii(item.variable) + " ";
    }
    parts.tail = From(select.from, scope);
    if (select.where) {
        if (HasAggregate(*select.where)) throw MakeError(147, select.where->position);
        parts.tail += " WHERE " + ConditionText(*select.where, scope);
    }
    bool aggregates = select.having != nullptr;
    for (const SelectItem& item : select.items) {
        aggregates = aggregates || (item.expression && HasAggregate(*item.expression));
    }
    if (orderFrom != nullptr) {
        for (const OrderItem& item : orderFrom->orderBy)
            aggregates = aggregates || HasAggregate(*item.expression);
    }
    if (!select.groupBy.empty() || aggregates) CheckGroupBy(select, scope, parts.tail);
    aggregateAllowed_ = true;
    const bool ordersFirst = orderFrom != nullptr && !scope.grouped && AssignsInOrder(select, *orderFrom);
    if (ordersFirst) OrderRowsFirst(*orderFrom, select, scope, parts);
    for (const SelectItem& item : select.items)
        AddItem(item, scope, parts);
    if (!parts.assignments.empty() && parts.assignments.size() != parts.items.size()) {
        throw MakeError(141, select.position);
    }
    if (select.having) parts.tail += " HAVING " + ConditionText(*select.having, scope);
    parts.head = select.distinct ? "SELECT DISTINCT" : "SELECT";
    if (!ordersFirst) {
        if (orderFrom != nullptr) parts.order = OrderBy(*orderFrom, select, scope, parts);
        parts.limit = LimitOf(&select, orderFrom, scope);
    }
    parts.singleRow = select.from.empty() || (aggregates && select.groupBy.empty());
    if (IsTopOne(select)) {
        context_.PinLiteral(As<LiteralExpr>(*select.top->count));
        parts.singleRow = true;
    }
    assigning_ = assigningOutside;
    return parts;
}

std::string Translator::OrderItemText(const OrderItem& item, const std::string& sql, const Operand& operand) {
    std::string text = sql;
    if (!operand.column) {
        if (operand.type.IsText()) text += std::string(" COLLATE ") + kTextCollationName;
        if (operand.type.IsExact()) text += std::string(" COLLATE ") + kNumberCollationName;
    }
    return item.descending ? text + " DESC" : text;
}

std::string Translator::OrderBy(const Query& query, const SelectBody& select, Scope& scope,
                                const SelectParts& parts) {
    std::string sql;
    const bool isSet = query.body->kind == QueryBodyKind::kSetOperation;
    for (const OrderItem& item : query.orderBy) {
        sql += sql.empty() ? " ORDER BY " : ", ";
        if (const auto* literal = TryAs<LiteralExpr>(item.expression.get());
            literal != nullptr && literal->literal == LiteralKind::kInteger) {
            context_.PinLiteral(*literal);
            const std::size_t number = literal->text.size() > 5 ? 0 : std::stoul(literal->text);
            if (number < 1 || number > parts.items.size()) {
                throw MakeError(108, literal->position, {literal->text});
            }
            sql += OrderItemText(item, std::to_string(number), parts.items[number - 1]);
            continue;
        }
        // The name of a result comes before the name of a column.
        std::size_t named = parts.items.size();
        if (const auto* column = TryAs<ColumnExpr>(item.expression.get());
            column != nullptr && column->name.parts.size() == 1) {
            for (std::size_t i = 0; i < parts.items.size(); ++i) {
                if (!SameName(parts.names[i], column->name.Object())) continue;
                const bool alias =
                    isSet || (i < select.items.size() && !select.items[i].alias.IsEmpty()) || select.distinct;
                if (alias) {
                    named = i;
                    break;
                }
            }
        }
        if (named < parts.items.size()) {
            sql += OrderItemText(item, std::to_string(named + 1), parts.items[named]);
            continue;
        }
        if (isSet) throw MakeError(104, item.expression->position);
        const Operand operand = Value(*item.expression, scope);
        if (select.distinct && !IsListed(*item.expression, operand, select, parts))
            throw MakeError(145, item.expression->position);
        sql += OrderItemText(item, Render(operand), operand);
    }
    return sql;
}

std::string Translator::LimitOf(const SelectBody* select, const Query* query, Scope& scope) {
    const auto count = [&](const Expr& expression) {
        Scope none;
        none.outer = scope.outer;
        return RenderAs(Value(expression, none), SqlType::Of(TypeKind::kBigInt));
    };
    if (select != nullptr && select->top) {
        const TopClause& top = *select->top;
        if (top.percent || top.withTies) throw MakeError(40510, select->position, {"TOP"});
        return " LIMIT " + count(*top.count);
    }
    if (query == nullptr || !query->offset) return {};
    std::string sql = " LIMIT " + (query->fetch ? count(*query->fetch) : "-1");
    return sql + " OFFSET " + count(*query->offset);
}

}  // namespace vicenter::tsql::engine
