#include "tsql/syntax/print/printer_core.h"

namespace vicenter::tsql {

std::string_view AssignText(AssignOp op) {
    switch (op) {
        case AssignOp::kSet:
            return " = ";
        case AssignOp::kAdd:
            return " += ";
        case AssignOp::kSubtract:
            return " -= ";
        case AssignOp::kMultiply:
            return " *= ";
        case AssignOp::kDivide:
            return " /= ";
        case AssignOp::kModulo:
            return " %= ";
        case AssignOp::kBitAnd:
            return " &= ";
        case AssignOp::kBitOr:
            return " |= ";
        case AssignOp::kBitXor:
            return " ^= ";
    }
    return {};
}

void Printer::PutWith(const std::vector<CommonTable>& with) {
    for (const CommonTable& table : with) {
        Text(&table == &with.front() ? "with " : ", ");
        Put(table.name);
        PutNameList(table.columns);
        Text(" as (");
        Put(*table.query);
        Text(")");
    }
    if (!with.empty()) Text(" ");
}

void Printer::PutOrderBy(const std::vector<OrderItem>& items) {
    for (const OrderItem& item : items) {
        Text(&item == &items.front() ? "order by " : ", ");
        Put(*item.expression);
        if (item.descending) Text(" desc");
    }
}

void Printer::PutHints(const std::vector<std::string>& hints) {
    for (const std::string& hint : hints) {
        Text(&hint == &hints.front() ? " with (" : ", ");
        Text(hint);
    }
    if (!hints.empty()) Text(")");
}

void Printer::PutOptions(const std::vector<std::string>& options) {
    for (const std::string& option : options) {
        Text(&option == &options.front() ? " option (" : ", ");
        Text(option);
    }
    if (!options.empty()) Text(")");
}

void Printer::Put(const Query& query) {
    PutWith(query.with);
    Put(*query.body);
    if (!query.orderBy.empty()) {
        Text(" ");
        PutOrderBy(query.orderBy);
    }
    if (query.offset) {
        Text(" offset ");
        Put(*query.offset);
        Text(" rows");
    }
    if (query.fetch) {
        Text(" fetch next ");
        Put(*query.fetch);
        Text(" rows only");
    }
    PutOptions(query.options);
}

void Printer::PutTerm(const QueryBody& body) {
    if (body.kind == QueryBodyKind::kSelect) return Put(body);
    Text("(");
    Put(body);
    Text(")");
}

void Printer::Put(const QueryBody& body) {
    if (body.kind == QueryBodyKind::kSelect) return Put(As<SelectBody>(body));
    const auto& operation = As<SetOperation>(body);
    PutTerm(*operation.first);
    for (const SetOperation::Term& term : operation.rest) {
        switch (term.op) {
            case SetOp::kUnion:
                Text(" union ");
                break;
            case SetOp::kUnionAll:
                Text(" union all ");
                break;
            case SetOp::kExcept:
                Text(" except ");
                break;
            case SetOp::kIntersect:
                Text(" intersect ");
                break;
        }
        PutTerm(*term.body);
    }
}

void Printer::Put(const TopClause& top) {
    Text("top ");
    if (top.parentheses) Text("(");
    Put(*top.count);
    if (top.parentheses) Text(")");
    if (top.percent) Text(" percent");
    if (top.withTies) Text(" with ties");
    Text(" ");
}

void Printer::Put(const SelectItem& item) {
    if (item.kind == SelectItemKind::kStar) {
        if (!item.qualifier.IsEmpty()) {
            Put(item.qualifier);
            Text(".");
        }
        return Text("*");
    }
    if (item.kind == SelectItemKind::kAssignment) {
        Text(item.variable);
        Text(AssignText(item.assign));
    }
    Put(*item.expression);
    if (item.alias.IsEmpty() && !item.alias.quoted) return;
    Text(" as ");
    Put(item.alias);
}

void Printer::Put(const SelectBody& select) {
    Text("select ");
    if (select.distinct) Text("distinct ");
    if (select.top) Put(*select.top);
    for (const SelectItem& item : select.items) {
        if (&item != &select.items.front()) Text(", ");
        Put(item);
    }
    if (!select.into.IsEmpty()) {
        Text(" into ");
        Put(select.into);
    }
    PutFrom(select.from);
    if (select.where) {
        Text(" where ");
        Put(*select.where);
    }
    if (!select.groupBy.empty()) {
        Text(" group by ");
        PutList(select.groupBy);
    }
    if (!select.grouping.empty()) {
        Text(" group by ");
        Put(select.grouping);
    }
    if (select.having) {
        Text(" having ");
        Put(*select.having);
    }
}

void Printer::Put(const std::vector<GroupingItem>& grouping) {
    static constexpr std::string_view kWords[] = {"", "rollup ", "cube ", "grouping sets "};
    for (const GroupingItem& item : grouping) {
        if (&item != &grouping.front()) Text(", ");
        Text(kWords[static_cast<std::size_t>(item.kind)]);
        const bool bare = item.kind == GroupingKind::kExpressions && item.expressions.size() == 1;
        if (!bare) Text("(");
        PutList(item.expressions);
        Put(item.parts);
        if (!bare) Text(")");
    }
}

void Printer::PutFrom(const std::vector<TableSourcePtr>& from) {
    for (const TableSourcePtr& source : from) {
        Text(&source == &from.front() ? " from " : ", ");
        Put(*source);
    }
}

void Printer::PutAlias(const Name& name, const std::vector<Name>& columns) {
    if (name.IsEmpty()) return;
    Text(" as ");
    Put(name);
    PutNameList(columns);
}

void Printer::Put(const TableSource& source) {
    switch (source.kind) {
        case SourceKind::kTable: {
            const auto& table = As<TableRef>(source);
            Put(table.name);
            PutAlias(table.alias, {});
            return PutHints(table.hints);
        }
        case SourceKind::kDerived: {
            const auto& derived = As<DerivedTable>(source);
            Text("(");
            Put(*derived.query);
            Text(")");
            return PutAlias(derived.alias, derived.columns);
        }
        case SourceKind::kValues: {
            const auto& values = As<ValuesTable>(source);
            for (const auto& row : values.rows) {
                Text(&row == &values.rows.front() ? "(values (" : ", (");
                PutList(row);
                Text(")");
            }
            Text(")");
            return PutAlias(values.alias, values.columns);
        }
        case SourceKind::kFunction: {
            const auto& function = As<FunctionTable>(source);
            Put(function.name);
            Text("(");
            PutList(function.arguments);
            Text(")");
            return PutAlias(function.alias, function.columns);
        }
        case SourceKind::kJoin:
            return Put(As<JoinedTable>(source));
        case SourceKind::kPivot:
            return Put(As<PivotTable>(source));
        case SourceKind::kUnpivot:
            return Put(As<UnpivotTable>(source));
    }
}

// PIVOT takes the source before it alone.
void Printer::PutPivoted(const TableSource& source) {
    const bool nested = source.kind == SourceKind::kJoin;
    if (nested) Text("(");
    Put(source);
    if (nested) Text(")");
}

void Printer::Put(const PivotTable& pivot) {
    PutPivoted(*pivot.source);
    Text(" pivot (");
    Put(pivot.function);
    Text("(");
    Put(pivot.value);
    Text(") for ");
    Put(pivot.spread);
    Text(" in (");
    PutNames(pivot.columns);
    Text("))");
    PutAlias(pivot.alias, {});
}

void Printer::Put(const UnpivotTable& unpivot) {
    PutPivoted(*unpivot.source);
    Text(" unpivot (");
    Put(unpivot.value);
    Text(" for ");
    Put(unpivot.name);
    Text(" in (");
    PutNames(unpivot.columns);
    Text("))");
    PutAlias(unpivot.alias, {});
}

void Printer::Put(const JoinedTable& join) {
    static constexpr std::string_view kWords[] = {"inner join", "left join",   "right join", "full join",
                                                  "cross join", "cross apply", "outer apply"};
    Put(*join.left);
    Text(" ");
    Text(kWords[static_cast<std::size_t>(join.join)]);
    Text(" ");
    const bool nested = join.right->kind == SourceKind::kJoin;
    if (nested) Text("(");
    Put(*join.right);
    if (nested) Text(")");
    if (!join.on) return;
    Text(" on ");
    Put(*join.on);
}

void Printer::Put(const OutputClause& output) {
    const auto putItems = [this](const std::vector<SelectItem>& items) {
        Text(" output ");
        for (const SelectItem& item : items) {
            if (&item != &items.front()) Text(", ");
            Put(item);
        }
    };
    putItems(output.items);
    if (output.into.IsEmpty()) return;
    Text(" into ");
    Put(output.into);
    PutNameList(output.columns);
    if (!output.beside.empty()) putItems(output.beside);
}

}  // namespace vicenter::tsql
