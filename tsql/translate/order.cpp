// ORDER BY, and TOP and OFFSET, which take the first of what it sorts.

#include <algorithm>

#include "automation/object.h"
#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

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

}  // namespace

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

std::string Translator::OrderItemText(const OrderItem& item, const std::string& sql, const Operand& operand) {
    std::string text = sql;
    const bool isPlace = !sql.empty() && sql.find_first_not_of("0123456789") == std::string::npos;
    if (operand.type.IsBinary() && !isPlace) text = kBytesCall.Call({text});
    if (!operand.column) {
        if (operand.type.IsText()) text += std::string(" COLLATE ") + kTextCollationName;
        if (operand.type.IsExact()) text += std::string(" COLLATE ") + kNumberCollationName;
    }
    return item.descending ? text + " DESC" : text;
}

std::string Translator::OrderKey(const OrderItem& item, const Query& query, const SelectBody& select,
                                 Scope& scope, const SelectParts& parts, bool spelt) {
    const bool isSet = query.body->kind == QueryBodyKind::kSetOperation;
    const auto ofList = [&](std::size_t place) {
        const Operand& listed = parts.items[place];
        const bool isSpelt = spelt || (listed.type.IsBinary() && !isSet);
        return OrderItemText(item, isSpelt ? Render(listed) : std::to_string(place + 1), listed);
    };
    if (const auto* literal = TryAs<LiteralExpr>(item.expression.get());
        literal != nullptr && literal->literal == LiteralKind::kInteger) {
        context_.PinLiteral(*literal);
        const std::size_t number = literal->text.size() > 5 ? 0 : std::stoul(literal->text);
        if (number < 1 || number > parts.items.size())
            throw MakeError(108, literal->position, {literal->text});
        return ofList(number - 1);
    }
    // The name of a result comes before the name of a column.
    if (const auto* column = TryAs<ColumnExpr>(item.expression.get());
        column != nullptr && column->name.parts.size() == 1) {
        const auto isNamed = [&](const std::string& name) { return SameName(name, column->name.Object()); };
        if (std::count_if(parts.names.begin(), parts.names.end(), isNamed) > 1)
            throw MakeError(209, column->position, {column->name.Object()});
        for (std::size_t i = 0; i < parts.items.size(); ++i) {
            if (!isNamed(parts.names[i])) continue;
            const bool alias =
                isSet || (i < select.items.size() && !select.items[i].alias.IsEmpty()) || select.distinct;
            if (alias) return ofList(i);
        }
    }
    if (isSet) throw MakeError(104, item.expression->position);
    const Operand operand = Value(*item.expression, scope);
    if (select.distinct && !IsListed(*item.expression, operand, select, parts))
        throw MakeError(145, item.expression->position);
    return OrderItemText(item, Render(operand), operand);
}

std::string Translator::OrderBy(const Query& query, const SelectBody& select, Scope& scope,
                                const SelectParts& parts) {
    std::string sql;
    for (const OrderItem& item : query.orderBy)
        sql += (sql.empty() ? " ORDER BY " : ", ") + OrderKey(item, query, select, scope, parts, false);
    return sql;
}

std::string Translator::RowCount(const Expr& expression, Scope& scope, RowLimit limit) {
    const Operand count = Value(expression, scope);
    std::string sql = RenderAs(count, SqlType::Of(TypeKind::kBigInt));
    // TOP (-1) has a sign before its literal.
    const auto* literal = TryAs<LiteralExpr>(&expression);
    if (literal != nullptr && literal->literal == LiteralKind::kInteger && limit == RowLimit::kTop)
        return sql;
    return kRowCountCall.Call({sql, std::to_string(static_cast<int>(limit))});
}

std::string Translator::LimitOf(const SelectBody* select, const Query* query, Scope& scope) {
    const auto count = [&](const Expr& expression, RowLimit limit) {
        Scope none;
        none.outer = scope.outer;
        return RowCount(expression, none, limit);
    };
    if (select != nullptr && select->top) {
        const TopClause& top = *select->top;
        return " LIMIT " + count(*top.count, RowLimit::kTop);
    }
    if (query == nullptr || !query->offset) return {};
    const auto isPlain = [](const Expr& expression) {
        return expression.kind == ExprKind::kLiteral || expression.kind == ExprKind::kVariable;
    };
    if (scope.outer != nullptr && !(isPlain(*query->offset) && (!query->fetch || isPlain(*query->fetch))))
        throw MakeError(40510, query->offset->position, {"OFFSET by an expression in a subquery"});
    std::string sql = " LIMIT " + (query->fetch ? count(*query->fetch, RowLimit::kFetch) : "-1");
    return sql + " OFFSET " + count(*query->offset, RowLimit::kOffset);
}

}  // namespace vicenter::tsql::engine
