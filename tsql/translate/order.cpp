// ORDER BY, and TOP and OFFSET, which take the first of what it sorts.

#include <algorithm>

#include "automation/object.h"
#include "tsql/functions/function.h"
#include "tsql/syntax/ast_children.h"
#include "tsql/translate/comparable.h"
#include "tsql/translate/rows_apart.h"
#include "tsql/translate/same_expression.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// DISTINCT leaves nothing to sort by but what it lists.
std::optional<std::size_t> PlaceInList(TranslateContext& context, const Expr& expression,
                                       const Operand& operand, const SelectBody& select,
                                       const SelectParts& parts) {
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        // Behind a star the items are not those of the tree.
        const bool isItem = parts.items.size() == select.items.size() && select.items[i].expression;
        if (isItem && SameWithTheseLiterals(context, *select.items[i].expression, expression)) return i;
        const Operand& item = parts.items[i];
        if (!item.pending && !operand.pending && item.sql == operand.sql) return i;
    }
    return std::nullopt;
}

// Made of literals and variables alone, by operators.
bool IsFixed(const Expr& expression, bool& hasVariable) {
    switch (expression.kind) {
        case ExprKind::kLiteral:
            return true;
        case ExprKind::kVariable:
            hasVariable = true;
            return true;
        case ExprKind::kUnary:
        case ExprKind::kBinary: {
            bool fixed = true;
            ForEachChild(expression,
                         [&](const Expr& child) { fixed = IsFixed(child, hasVariable) && fixed; });
            return fixed;
        }
        default:
            return false;
    }
}

bool IsPlace(const Expr& expression) {
    const auto* literal = TryAs<LiteralExpr>(&expression);
    return literal != nullptr && literal->literal == LiteralKind::kInteger;
}

// Each item tells rows apart that those before it do not.
void CheckOrder(TranslateContext& context, const Query& query) {
    for (std::size_t i = 0; i < query.orderBy.size(); ++i) {
        const Expr& item = *query.orderBy[i].expression;
        const auto number = static_cast<int>(i) + 1;
        bool hasVariable = false;
        if (!IsPlace(item) && IsFixed(item, hasVariable))
            throw MakeError(hasVariable ? 1008 : 408, item.position, {number});
        if (!IsPlace(item) && item.kind != ExprKind::kColumn) continue;
        for (std::size_t earlier = 0; earlier < i; ++earlier) {
            if (SameWithTheseLiterals(context, *query.orderBy[earlier].expression, item))
                throw MakeError(169, item.position);
        }
    }
}

}  // namespace

// SELECT @v = @v + … ORDER BY: SQLite evaluates a select list before it sorts, so the sorted rows become a
// table of their own.
void Translator::OrderRowsFirst(const Query& query, const SelectBody& select, Scope& scope,
                                SelectParts& parts) {
    const std::string order = OrderBy(query, select, scope, parts);
    std::string limit = LimitOf(&select, &query, scope);
    if (limit.empty()) limit = " LIMIT -1";
    if (!query.offset) limit += " OFFSET 0";
    SetRowsApart(scope, parts.tail, order + limit, "ordered$");
}

std::string Translator::OrderItemText(const OrderItem& item, const std::string& sql, const Operand& operand) {
    CheckSorted(operand.type, item.expression->position);
    std::string text = sql;
    const bool isPlace = !sql.empty() && sql.find_first_not_of("0123456789") == std::string::npos;
    if (operand.type.IsBinary() && !isPlace) text = kBytesCall.Call({text});
    if (operand.type.IsGuid()) text += std::string(" COLLATE ") + kGuidCollationName;
    if (!operand.column) {
        if (operand.type.IsText()) text += std::string(" COLLATE ") + kTextCollationName;
        if (operand.type.IsExact()) text += std::string(" COLLATE ") + kNumberCollationName;
    }
    return item.descending ? text + " DESC" : text;
}

std::string Translator::OrderKey(const OrderItem& item, const Query& query, const SelectBody& select,
                                 Scope& scope, const SelectParts& parts, std::vector<Operand>* more) {
    const bool isSet = query.body->kind == QueryBodyKind::kSetOperation;
    const auto ofColumn = [&](std::size_t place, Operand operand) {
        operand.column = false;
        return OrderItemText(item, "c" + std::to_string(place + 1), operand);
    };
    const auto ofList = [&](std::size_t place) {
        const Operand& listed = parts.items[place];
        if (more != nullptr) return ofColumn(place, listed);
        const bool isSpelt = listed.type.IsBinary() && !isSet;
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
    const GroupedPlace inOrder(scope, kUngroupedInOrder);
    const Operand operand = Value(*item.expression, scope);
    if (select.distinct) {
        const std::optional<std::size_t> place =
            PlaceInList(context_, *item.expression, operand, select, parts);
        if (!place) throw MakeError(145, item.expression->position);
        if (more != nullptr) return ofList(*place);
    }
    if (more == nullptr) return OrderItemText(item, Render(operand), operand);
    more->push_back(operand);
    return ofColumn(parts.items.size() + more->size() - 1, operand);
}

std::string Translator::OrderBy(const Query& query, const SelectBody& select, Scope& scope,
                                const SelectParts& parts) {
    CheckOrder(context_, query);
    std::string sql;
    for (const OrderItem& item : query.orderBy)
        sql += (sql.empty() ? " ORDER BY " : ", ") + OrderKey(item, query, select, scope, parts, nullptr);
    return sql;
}

std::string Translator::RowsToSort(const Query& query, const SelectBody& select, Scope& scope,
                                   SelectParts& parts, std::string& keys) {
    CheckOrder(context_, query);
    std::vector<Operand> more;
    for (const OrderItem& item : query.orderBy)
        keys += (keys.empty() ? "ORDER BY " : ", ") + OrderKey(item, query, select, scope, parts, &more);
    std::string list;
    std::size_t number = 0;
    const auto add = [&](const Operand& item) {
        list += (number == 0 ? " " : ", ") + Collated(item) + " AS c" + std::to_string(number + 1);
        ++number;
    };
    for (Operand& item : parts.items) {
        add(item);
        const std::int64_t weight = item.weight;
        item = Computed("c" + std::to_string(number), item.type);
        item.weight = weight;
    }
    for (const Operand& item : more)
        add(item);
    return parts.head + list + parts.tail;
}

// SQLite makes a second one of what an item of the list is sorted by: of a query within a query within … so
// many that it takes forever. The bound keeps SQLite from merging the query with the one around it.
void Translator::SortApart(const Query& query, const SelectBody& select, Scope& scope, SelectParts& parts) {
    std::string keys;
    const std::string rows = RowsToSort(query, select, scope, parts, keys);
    parts.tail = " FROM (" + rows + " LIMIT -1 OFFSET 0)";
    parts.head = "SELECT";
    parts.order = " " + keys;
}

std::string Translator::RowCount(const Expr& expression, Scope& scope, RowLimit limit) {
    const Operand count = Value(expression, scope);
    const bool hasPlaces = count.type.IsNumber() && !count.type.IsInteger();
    if (hasPlaces) throw MakeError(limit == RowLimit::kOffset ? 10743 : 1060, expression.position);
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
