// UPDATE, in place and as rows that are put anew.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

constexpr const char* kUpdate = "UPDATE";

}  // namespace

// The server works a variable out row by row, and what is made of it in the same row as well.
static void CheckVariableAlone(const tsql::Assignment& variable,
                               const std::vector<tsql::Assignment>& assignments) {
    for (const tsql::Assignment& other : assignments) {
        if (other.column.IsEmpty()) continue;
        VisitAll(*other.value, [&](const Expr& one) {
            const auto* use = TryAs<VariableExpr>(&one);
            if (use != nullptr && SameName(use->name, variable.variable))
                throw MakeError(40510, use->position, {"UPDATE … SET column = @variable that it sets"});
        });
    }
}

std::vector<Translator::Assigned> Translator::Assignments(const std::vector<tsql::Assignment>& assignments,
                                                          const TableInfo& table, Scope& scope,
                                                          const std::string& alias) {
    std::vector<Assigned> result;
    for (const tsql::Assignment& assignment : assignments) {
        if (assignment.column.IsEmpty()) {
            CheckVariableAlone(assignment, assignments);
            continue;
        }
        const std::string name = BehindName(assignment.column.Object(), assignment.position);
        const ColumnInfo* column = table.FindColumn(name);
        if (column == nullptr) throw MakeError(207, assignment.position, {name});
        if (column->identity) throw MakeError(8102, assignment.position, {name});
        if (!column->computedText.empty()) throw MakeError(271, assignment.position, {name});
        for (const Assigned& other : result) {
            if (other.column == column) throw MakeError(264, assignment.position, {name});
        }
        if (HasAggregate(*assignment.value)) throw MakeError(157, assignment.position);
        const auto* literal = TryAs<LiteralExpr>(assignment.value.get());
        Operand value = literal != nullptr && literal->literal == LiteralKind::kDefault
                            ? DefaultOf(*column)
                            : Value(*assignment.value, scope);
        // column += e is column = column + e, with the types of that sum.
        if (assignment.op != AssignOp::kSet) {
            Operand current;
            current.sql = alias + "." + Quoted(column->name);
            current.type = column->type;
            current.column = true;
            value = Binary(static_cast<BinaryOp>(static_cast<int>(assignment.op) - 1), assignment.position,
                           current, value);
        }
        result.push_back({column, std::move(value)});
    }
    return result;
}

// What an UPDATE says, translated: both its forms below are made of it. SQLite checks unique keys row by row,
// the server when all rows are changed, so an UPDATE that fails on a key is tried once more as reading the
// rows to be, deleting the old ones and inserting these.
struct Translator::UpdateParts {
    Scope scope;
    std::string from;
    const TableInfo* table = nullptr;
    std::string alias;
    std::vector<Assigned> assigned;
    std::string condition;
    std::string limit;
};

Translator::UpdateParts Translator::PartsOf(const UpdateStatement& statement) {
    AddCommonTables(statement.with);
    UpdateParts parts;
    const Source& target =
        ChangedSource(statement.target, statement.from, statement.position, parts.scope, parts.from);
    parts.table = target.table;
    parts.alias = target.alias;
    Begin(*parts.table, kUpdate);
    parts.assigned = Assignments(statement.assignments, *parts.table, parts.scope, parts.alias);
    if (statement.where) parts.condition = ConditionText(*statement.where, parts.scope);
    if (!statement.currentOf.IsEmpty()) parts.condition = CurrentRow(statement.currentOf, parts.alias);
    if (statement.top) {
        if (statement.top->percent) throw MakeError(40510, statement.position, {"UPDATE TOP … PERCENT"});
        Scope none;
        parts.limit = " LIMIT " + RowCount(*statement.top->count, none, RowLimit::kTop);
    }
    return parts;
}

Translation Translator::UpdatedRows(const UpdateStatement& statement) {
    const UpdateParts parts = PartsOf(statement);
    std::string sql = "SELECT " + parts.alias + "._rowid_";
    translation_.columns.push_back({"_rowid_", SqlType::Of(TypeKind::kBigInt)});
    // All columns, changed or not: the rows are deleted and put anew. What is computed comes by itself.
    for (const ColumnInfo& column : parts.table->columns) {
        if (!column.computedText.empty()) continue;
        const auto entry = std::find_if(parts.assigned.begin(), parts.assigned.end(),
                                        [&](const Assigned& other) { return other.column == &column; });
        sql +=
            ", " + (entry != parts.assigned.end() ? RenderStored(entry->value, *parts.table, column, kUpdate)
                                                  : parts.alias + "." + Quoted(column.name));
        translation_.columns.push_back({column.name, column.type});
    }
    // A row that FROM finds twice is changed once.
    sql += parts.from + Where(parts.condition) + " GROUP BY " + parts.alias + "._rowid_" + parts.limit;
    return Finished(std::move(sql));
}

// SELECT the values of @v = e, and the number of the row: the last one's stay.
Translation Translator::UpdatedVariables(const UpdateStatement& statement) {
    UpdateParts parts = PartsOf(statement);
    for (const tsql::Assignment& assignment : statement.assignments) {
        if (assignment.column.IsEmpty()) assigning_ += " " + LowerAscii(assignment.variable) + " ";
    }
    std::string list;
    SelectParts items;
    for (const tsql::Assignment& assignment : statement.assignments) {
        if (!assignment.column.IsEmpty()) continue;
        if (HasAggregate(*assignment.value)) throw MakeError(157, assignment.position);
        AddAssignment(assignment.variable, assignment.op, Value(*assignment.value, parts.scope),
                      assignment.position, items);
        translation_.columns.push_back({"", items.items.back().type});
        list += items.items.back().sql + ", ";
    }
    translation_.assignments = std::move(items.assignments);
    translation_.columns.push_back({"_rowid_", SqlType::Of(TypeKind::kBigInt)});
    return Finished("SELECT " + list + parts.alias + "._rowid_" + parts.from + Where(parts.condition) +
                    parts.limit);
}

Translation Translator::Update(const UpdateStatement& statement) {
    const UpdateParts parts = PartsOf(statement);
    const TableInfo& table = *parts.table;
    const std::string& alias = parts.alias;
    const std::vector<Assigned>& assigned = parts.assigned;
    // @v = column = e: SQLite gives the new value back, and the last row's stays.
    std::string variables;
    for (const tsql::Assignment& assignment : statement.assignments) {
        if (assignment.variable.empty() || assignment.column.IsEmpty()) continue;
        const ColumnInfo* column =
            table.FindColumn(BehindName(assignment.column.Object(), assignment.position));
        translation_.assignments.push_back({LowerAscii(assignment.variable), AssignOp::kSet});
        translation_.columns.push_back({"", column->type});
        variables += (variables.empty() ? " RETURNING " : ", ") + Quoted(column->name);
    }
    // SQLite changes row after row: a value that asks the table itself has to be known before the first.
    const bool asksItself = std::any_of(assigned.begin(), assigned.end(), [&](const Assigned& entry) {
        return entry.value.sql.find(table.Sql()) != std::string::npos;
    });
    std::string sql;
    if (statement.from.empty() && changed_.table == nullptr && !asksItself) {
        for (const Assigned& entry : assigned) {
            sql += (sql.empty() ? "" : ", ") + Quoted(entry.column->name) + " = " +
                   RenderStored(entry.value, table, *entry.column, kUpdate);
        }
        std::string where = Where(parts.condition);
        // LIMIT of an UPDATE is an option of SQLite's build; a query has it always.
        if (!parts.limit.empty()) {
            where =
                " WHERE _rowid_ IN (SELECT " + alias + "._rowid_" + parts.from + where + parts.limit + ")";
        }
        sql = "UPDATE " + table.Sql() + " AS " + alias + " SET " + sql + where;
    } else {
        // All new values are worked out first, under the names ts$s.c1 and on, and joined to their rows by
        // number. Of several for one row SQLite takes one, as the server does.
        std::string inner = "SELECT " + alias + "._rowid_ AS r";
        for (std::size_t i = 0; i < assigned.size(); ++i) {
            const Operand& value = assigned[i].value;
            inner += ", " + Render(value) + " AS c" + std::to_string(i + 1);
            const Operand outside = Computed("ts$s.c" + std::to_string(i + 1), value.type);
            Operand quoted = outside;
            quoted.sql = "\"ts$s\".c" + std::to_string(i + 1);
            sql += (i == 0 ? "" : ", ") + Quoted(assigned[i].column->name) + " = " +
                   RenderStored(quoted, table, *assigned[i].column, kUpdate);
        }
        // SQLite would join the target with all tables of FROM, which may be as many as it joins.
        const std::string limit = ways_.separates && parts.limit.empty() ? " LIMIT -1 OFFSET 0" : parts.limit;
        sql = "UPDATE " + table.Sql() + " AS \"ts$t\" SET " + sql + " FROM (" + inner + parts.from +
              Where(parts.condition) + limit + ") AS \"ts$s\" WHERE \"ts$t\"._rowid_ = \"ts$s\".r";
    }
    sql += variables;
    if (statement.output) {
        CheckOutputBehind(*statement.output);
        for (const SelectItem& item : statement.output->items) {
            const auto* column = TryAs<ColumnExpr>(item.expression.get());
            const std::string& qualifier =
                column != nullptr ? column->name.Schema() : item.qualifier.Schema();
            if (SameName(qualifier, "deleted")) throw MakeError(40510, item.position, {"OUTPUT deleted"});
        }
        sql += Output(*statement.output, table, "inserted");
    }
    return Finished(std::move(sql));
}

}  // namespace vicenter::tsql::engine
