// UPDATE, in place and as rows that are put anew.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/syntax/ast_children.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

constexpr const char* kUpdate = "UPDATE";

}  // namespace

namespace {

bool Uses(const Expr& expression, const std::string& variable) {
    bool found = false;
    VisitAll(expression, [&](const Expr& one) {
        const auto* use = TryAs<VariableExpr>(&one);
        found = found || (use != nullptr && SameName(use->name, variable));
    });
    return found;
}

}  // namespace

bool Translator::ChangesRowByRow(const std::vector<tsql::Assignment>& assignments) {
    for (const tsql::Assignment& setting : assignments) {
        if (setting.variable.empty()) continue;
        if (!setting.column.IsEmpty()) return true;
        for (const tsql::Assignment& other : assignments) {
            if (other.column.IsEmpty()) continue;
            if (Uses(*other.value, setting.variable) || HoldsQuery(*other.value)) return true;
        }
    }
    return false;
}

Translator::Assigned Translator::AssignedOf(const tsql::Assignment& assignment, const TableInfo& table,
                                            Scope& scope, const std::string& alias) {
    const std::string name = BehindName(assignment.column.Object(), assignment.position);
    const ColumnInfo* column = table.FindColumn(name);
    if (column == nullptr) throw MakeError(207, assignment.position, {name});
    if (column->identity) throw MakeError(8102, assignment.position, {name});
    if (!column->computedText.empty()) throw MakeError(271, assignment.position, {name});
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
    return {column, std::move(value)};
}

void Translator::AddAssigned(Assigned assigned, Position where, std::vector<Assigned>& all) {
    for (const Assigned& other : all) {
        if (other.column == assigned.column) throw MakeError(264, where, {assigned.column->name});
    }
    all.push_back(std::move(assigned));
}

std::vector<Translator::Assigned> Translator::Assignments(const std::vector<tsql::Assignment>& assignments,
                                                          const TableInfo& table, Scope& scope,
                                                          const std::string& alias) {
    std::vector<Assigned> result;
    for (const tsql::Assignment& assignment : assignments) {
        if (!assignment.column.IsEmpty())
            AddAssigned(AssignedOf(assignment, table, scope, alias), assignment.position, result);
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
    std::string exposed;  // the name of the target in FROM
    std::vector<Assigned> assigned;
    std::string condition;
    std::string limit;
};

Translator::UpdateParts Translator::PartsOf(const UpdateStatement& statement, bool withColumns) {
    AddCommonTables(statement.with);
    for (const tsql::Assignment& assignment : statement.assignments) {
        if (!assignment.column.IsEmpty()) changed_.assigned.push_back(assignment.column.Object());
    }
    UpdateParts parts;
    const Source& target =
        ChangedSource(statement.target, statement.from, statement.position, parts.scope, parts.from);
    parts.table = target.table;
    parts.alias = target.alias;
    parts.exposed = target.exposedName;
    Begin(*parts.table, kUpdate);
    if (withColumns)
        parts.assigned = Assignments(statement.assignments, *parts.table, parts.scope, parts.alias);
    if (statement.where) parts.condition = ConditionText(*statement.where, parts.scope);
    if (!statement.currentOf.IsEmpty()) parts.condition = CurrentRow(statement.currentOf, parts.alias);
    if (statement.top)
        parts.limit = ChangeLimit(*statement.top, parts.from + Where(parts.condition), parts.alias);
    return parts;
}

// All columns, changed or not, since the rows may have to be put anew. What is computed comes by itself.
std::string Translator::StoredColumns(const UpdateParts& parts) {
    std::string sql;
    for (const ColumnInfo& column : parts.table->columns) {
        if (!column.computedText.empty()) continue;
        const auto entry = std::find_if(parts.assigned.begin(), parts.assigned.end(),
                                        [&](const Assigned& other) { return other.column == &column; });
        sql +=
            ", " + (entry != parts.assigned.end() ? RenderStored(entry->value, *parts.table, column, kUpdate)
                                                  : parts.alias + "." + Quoted(column.name));
        translation_.columns.push_back({column.name, column.type});
    }
    return sql;
}

Translation Translator::UpdatedRows(const UpdateStatement& statement) {
    const UpdateParts parts = PartsOf(statement);
    if (statement.output) CheckOutputBehind(*statement.output);
    std::string sql = "SELECT " + parts.alias + "._rowid_";
    translation_.columns.push_back({"_rowid_", SqlType::Of(TypeKind::kBigInt)});
    sql += StoredColumns(parts);
    if (statement.output) sql += ToldColumns(*statement.output, parts.scope, parts.exposed);
    // A row that FROM finds twice is changed once.
    sql += parts.from + Where(parts.condition) + " GROUP BY " + parts.alias + "._rowid_" + parts.limit;
    return Finished(sql);
}

// SELECT the values of @v = e, and the number of the row: the last one's stay. Where columns take what the
// variables are in their row, all columns of the row as they are to be stand behind the number.
Translation Translator::UpdatedVariables(const UpdateStatement& statement) {
    const std::vector<tsql::Assignment>& assignments = statement.assignments;
    const bool rowByRow = ChangesRowByRow(assignments);
    UpdateParts parts = PartsOf(statement, !rowByRow);
    for (const tsql::Assignment& assignment : assignments) {
        if (!assignment.variable.empty()) assigning_ += " " + LowerAscii(assignment.variable) + " ";
    }
    assigningRow_ = parts.alias + "._rowid_";
    std::string list;
    SelectParts items;
    std::vector<const ColumnInfo*> taken;  // by each assignment of a variable; none for a value of its own
    for (const tsql::Assignment& assignment : assignments) {
        if (assignment.column.IsEmpty()) {
            if (HasAggregate(*assignment.value)) throw MakeError(157, assignment.position);
            AddAssignment(assignment.variable, assignment.op, Value(*assignment.value, parts.scope),
                          assignment.position, items);
            translation_.columns.push_back({"", items.items.back().type});
            list += items.items.back().sql + ", ";
            taken.push_back(nullptr);
        } else if (rowByRow) {
            const Assigned entry = AssignedOf(assignment, *parts.table, parts.scope, parts.alias);
            AddAssigned(entry, assignment.position, parts.assigned);
            if (assignment.variable.empty()) continue;
            const SqlType& type = entry.column->type;
            AssignVariable(assignment.variable, Computed(RenderAs(entry.value, type), type),
                           assignment.position, items);
            taken.push_back(entry.column);
        }
    }
    translation_.columns.push_back({"_rowid_", SqlType::Of(TypeKind::kBigInt)});
    const std::string stored = rowByRow ? StoredColumns(parts) : std::string();
    translation_.assignments = std::move(items.assignments);
    std::size_t own = 0;
    for (std::size_t i = 0; i < taken.size(); ++i) {
        std::size_t& place = translation_.assignments[i].place;
        if (taken[i] == nullptr) {
            place = own++;
            continue;
        }
        const auto column =
            std::find_if(translation_.columns.begin(), translation_.columns.end(),
                         [&](const ResultColumn& other) { return other.name == taken[i]->name; });
        place = static_cast<std::size_t>(column - translation_.columns.begin());
    }
    return Finished("SELECT " + list + parts.alias + "._rowid_" + stored + parts.from +
                    Where(parts.condition) + parts.limit);
}

Translation Translator::Update(const UpdateStatement& statement) {
    const UpdateParts parts = PartsOf(statement);
    const TableInfo& table = *parts.table;
    const std::string& alias = parts.alias;
    const std::vector<Assigned>& assigned = parts.assigned;
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
    if (statement.output) sql += Output(*statement.output, table, "inserted");
    return Finished(sql);
}

}  // namespace vicenter::tsql::engine
