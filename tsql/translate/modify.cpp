// INSERT, UPDATE and DELETE.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/syntax/parse/parser.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

constexpr const char* kInsert = "INSERT";
constexpr const char* kUpdate = "UPDATE";
constexpr const char* kDelete = "DELETE";

// The place of the target among the sources of FROM: by alias, or by name when it stands there once.
const Source* FindTarget(const ObjectName& target, const Scope& scope) {
    for (const Source& source : scope.sources) {
        if (target.parts.size() == 1 && SameName(source.exposedName, target.Object())) return &source;
    }
    for (const Source& source : scope.sources) {
        if (source.table != nullptr && SameName(source.tableName, target.Object())) return &source;
    }
    return nullptr;
}

}  // namespace

void Translator::Begin(const TableInfo& table, const char* operation) {
    translation_.table = table.name;
    translation_.operation = operation;
    translation_.changesTemporary = table.temporary;
    // A later table of the same name is another one.
    if (table.temporary) translation_.temporaries.emplace_back(table.name, table.id);
}

const TableInfo& Translator::TargetTable(const ObjectName& name) {
    const TableInfo* table = FindTable(name.Object());
    if (table != nullptr) return *table;
    if (name.Object().front() == '@') throw MakeError(1087, name.Where(), {name.Object()});
    if (context_.ViewDefinition(name.Object()) != nullptr)
        throw MakeError(4406, name.Where(), {name.Object()});
    throw MakeError(208, name.Where(), {name.Text()});
}

std::vector<const ColumnInfo*> Translator::TargetColumns(const TableInfo& table,
                                                         const std::vector<Name>& columns) {
    std::vector<const ColumnInfo*> result;
    for (const Name& name : columns) {
        const ColumnInfo* column = table.FindColumn(name.text);
        if (column == nullptr) throw MakeError(207, name.position, {name.text});
        if (!column->computedText.empty()) throw MakeError(271, name.position, {name.text});
        for (const ColumnInfo* other : result) {
            if (other == column) throw MakeError(264, name.position, {name.text});
        }
        result.push_back(column);
    }
    if (columns.empty()) {
        for (const ColumnInfo& column : table.columns) {
            if (column.computedText.empty() && !column.identity) result.push_back(&column);
        }
        return result;
    }
    for (const ColumnInfo* column : result) {
        if (!column->identity) continue;
        if (!context_.TakesIdentity(table)) throw MakeError(544, columns.front().position, {table.name});
        translation_.givesIdentity = true;
    }
    return result;
}

Operand Translator::DefaultOf(const ColumnInfo& column) {
    if (column.defaultText.empty()) return Computed("NULL", {});
    ownedExpressions_.push_back(ParseExpression(column.defaultText));
    Scope none;
    ++foreignDepth_;
    Operand value = Value(*ownedExpressions_.back(), none);
    --foreignDepth_;
    return value;
}

void Translator::AddDefaults(const TableInfo& table, std::vector<const ColumnInfo*>& columns,
                             std::vector<std::string>& values) {
    const std::size_t given = columns.size();
    for (const ColumnInfo& column : table.columns) {
        bool present = !column.computedText.empty();
        for (std::size_t i = 0; i < given; ++i)
            present = present || columns[i] == &column;
        if (present) continue;
        if (column.identity) {
            translation_.usesIdentity = true;
            columns.push_back(&column);
            const Operand next = Computed(kNextIdentityCall.Call({}), SqlType::Of(TypeKind::kBigInt));
            values.push_back(RenderStored(next, table, column, kInsert));
        } else if (!column.defaultText.empty() || !column.nullable) {
            columns.push_back(&column);
            values.push_back(RenderStored(DefaultOf(column), table, column, kInsert));
        }
    }
}

std::string Translator::InsertHead(const TableInfo& table,
                                   const std::vector<const ColumnInfo*>& columns) const {
    std::string sql = "INSERT INTO " + table.Sql() + "(";
    for (std::size_t i = 0; i < columns.size(); ++i)
        sql += (i == 0 ? "" : ", ") + Quoted(columns[i]->name);
    return sql + ")";
}

std::string Translator::Output(const OutputClause& output, const TableInfo& table, const char* pseudoTable) {
    Scope scope;
    Source source = SourceOf(table, pseudoTable);
    for (SourceColumn& column : source.columns)
        column.sql = Quoted(column.name);
    scope.sources.push_back(std::move(source));
    SelectParts parts;
    for (const SelectItem& item : output.items)
        AddItem(item, scope, parts);
    std::string sql;
    for (std::size_t i = 0; i < parts.items.size(); ++i) {
        sql += (i == 0 ? " RETURNING " : ", ") + Render(parts.items[i]);
        const SqlType& type = parts.items[i].type;
        translation_.columns.push_back({parts.names[i], type.IsUnknown() ? SqlType::Int() : type});
    }
    translation_.hasOutput = true;
    return sql;
}

Translation Translator::Insert(const InsertStatement& statement) {
    const TableInfo& table = TargetTable(statement.table);
    Begin(table, kInsert);
    if (!statement.with.empty()) commonTables_.push_back(&statement.with);
    if (statement.source == InsertSource::kQuery) {
        Translation result = InsertQuery(table, statement.columns, *statement.query);
        if (!statement.output) return result;
        translation_ = std::move(result);
        return Finished(translation_.sql + Output(*statement.output, table, "inserted"));
    }
    std::vector<const ColumnInfo*> columns;
    if (statement.source != InsertSource::kDefaultValues) columns = TargetColumns(table, statement.columns);
    const std::size_t given = columns.size();
    std::vector<std::string> rows;
    Scope scope;
    for (const auto& row : statement.rows) {
        if (row.size() != given) {
            if (statement.columns.empty()) throw MakeError(213, statement.position);
            throw MakeError(row.size() < given ? 109 : 110, statement.position);
        }
        std::string values;
        for (std::size_t i = 0; i < given; ++i) {
            const auto* literal = TryAs<LiteralExpr>(row[i].get());
            const bool isDefault = literal != nullptr && literal->literal == LiteralKind::kDefault;
            const Operand value = isDefault ? DefaultOf(*columns[i]) : Value(*row[i], scope);
            values += (i == 0 ? "" : ", ") + RenderStored(value, table, *columns[i], kInsert);
        }
        rows.push_back(std::move(values));
    }
    if (statement.source == InsertSource::kDefaultValues) rows.emplace_back();
    std::string sql;
    std::vector<const ColumnInfo*> all;
    for (const std::string& row : rows) {
        all = columns;
        std::vector<std::string> defaults;
        AddDefaults(table, all, defaults);
        std::string values = row;
        for (const std::string& value : defaults)
            values += (values.empty() ? "" : ", ") + value;
        sql += (sql.empty() ? " VALUES (" : ", (") + values + ")";
    }
    translation_.oneRow = rows.size() == 1;
    if (all.empty()) return Finished("INSERT INTO " + table.Sql() + " DEFAULT VALUES");
    sql = InsertHead(table, all) + sql;
    if (statement.output) sql += Output(*statement.output, table, "inserted");
    return Finished(std::move(sql));
}

Translation Translator::InsertRow(const TableInfo& table, const std::vector<Name>& names,
                                  const std::vector<SqlType>& types) {
    Begin(table, kInsert);
    std::vector<const ColumnInfo*> columns = TargetColumns(table, names);
    if (types.size() != columns.size()) throw MakeError(213, Position{});
    std::vector<std::string> values;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        Operand row = System("", types[i]);
        row.pending->source = Parameter::Source::kRow;
        row.pending->ordinal = static_cast<int>(i);
        values.push_back(RenderStored(row, table, *columns[i], kInsert));
    }
    AddDefaults(table, columns, values);
    std::string sql;
    for (const std::string& value : values)
        sql += (sql.empty() ? " VALUES (" : ", ") + value;
    translation_.oneRow = true;
    return Finished(InsertHead(table, columns) + sql + ")");
}

Translation Translator::InsertQuery(const TableInfo& table, const std::vector<Name>& names,
                                    const Query& query) {
    Begin(table, kInsert);
    std::vector<const ColumnInfo*> columns = TargetColumns(table, names);
    const QueryText rows = QueryOf(query, nullptr, true);
    if (rows.columns.size() != columns.size()) {
        if (names.empty()) throw MakeError(213, query.position);
        throw MakeError(rows.columns.size() < columns.size() ? 120 : 121, query.position);
    }
    std::vector<std::string> values;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Operand value = Computed("c" + std::to_string(i + 1), rows.columns[i].type);
        values.push_back(RenderStored(value, table, *columns[i], kInsert));
    }
    AddDefaults(table, columns, values);
    std::string list;
    for (const std::string& value : values)
        list += (list.empty() ? " SELECT " : ", ") + value;
    return Finished(InsertHead(table, columns) + list + " FROM (" + rows.sql + ") WHERE true");
}

std::vector<Translator::Assigned> Translator::Assignments(const UpdateStatement& statement,
                                                          const TableInfo& table, Scope& scope,
                                                          const std::string& alias) {
    std::vector<Assigned> result;
    for (const tsql::Assignment& assignment : statement.assignments) {
        if (assignment.column.IsEmpty())
            throw MakeError(40510, assignment.position, {"UPDATE … SET @variable = expression"});
        const std::string& name = assignment.column.Object();
        const ColumnInfo* column = table.FindColumn(name);
        if (column == nullptr) throw MakeError(207, assignment.position, {name});
        if (column->identity) throw MakeError(8102, assignment.position, {name});
        if (!column->computedText.empty()) throw MakeError(271, assignment.position, {name});
        for (const Assigned& other : result) {
            if (other.column == column) throw MakeError(264, assignment.position, {name});
        }
        const auto* literal = TryAs<LiteralExpr>(assignment.value.get());
        Operand value = literal != nullptr && literal->literal == LiteralKind::kDefault
                            ? DefaultOf(*column)
                            : Value(*assignment.value, scope);
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

// What UPDATE or DELETE changes: one of the sources of its FROM, or a table that is added to them.
const Source& Translator::ChangedSource(const ObjectName& name, Position where, Scope& scope,
                                        std::string& from) {
    const Source* target = FindTarget(name, scope);
    if (target == nullptr) {
        const TableInfo& named = TargetTable(name);
        scope.sources.push_back(SourceOf(named, named.name));
        target = &scope.sources.back();
        from += (from.empty() ? " FROM " : ", ") + named.Sql() + " AS " + target->alias;
    }
    if (target->table == nullptr) throw MakeError(4406, where, {name.Text()});
    return *target;
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
    if (!statement.currentOf.IsEmpty()) throw MakeError(40510, statement.position, {"WHERE CURRENT OF"});
    if (!statement.with.empty()) commonTables_.push_back(&statement.with);
    UpdateParts parts;
    parts.from = From(statement.from, parts.scope);
    const Source& target = ChangedSource(statement.target, statement.position, parts.scope, parts.from);
    parts.table = target.table;
    parts.alias = target.alias;
    Begin(*parts.table, kUpdate);
    parts.assigned = Assignments(statement, *parts.table, parts.scope, parts.alias);
    if (statement.where) parts.condition = ConditionText(*statement.where, parts.scope);
    if (statement.top) {
        if (statement.top->percent) throw MakeError(40510, statement.position, {"TOP"});
        Scope none;
        parts.limit =
            " LIMIT " + RenderAs(Value(*statement.top->count, none), SqlType::Of(TypeKind::kBigInt));
    }
    return parts;
}

Translation Translator::UpdatedRows(const UpdateStatement& statement) {
    const UpdateParts parts = PartsOf(statement);
    std::string sql = "SELECT " + parts.alias + "._rowid_";
    translation_.columns.push_back({"_rowid_", SqlType::Of(TypeKind::kBigInt)});
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

Translation Translator::Update(const UpdateStatement& statement) {
    const UpdateParts parts = PartsOf(statement);
    const TableInfo& table = *parts.table;
    const std::string& alias = parts.alias;
    const std::vector<Assigned>& assigned = parts.assigned;
    std::string variables;
    for (const tsql::Assignment& assignment : statement.assignments) {
        if (assignment.variable.empty()) continue;
        const ColumnInfo* column = table.FindColumn(assignment.column.Object());
        translation_.assignments.push_back({LowerAscii(assignment.variable), AssignOp::kSet});
        translation_.columns.push_back({"", column->type});
        variables += (variables.empty() ? " RETURNING " : ", ") + Quoted(column->name);
    }
    // SQLite changes row after row: a value that asks the table itself has to be known before the first.
    const bool asksItself = std::any_of(assigned.begin(), assigned.end(), [&](const Assigned& entry) {
        return entry.value.sql.find(table.Sql()) != std::string::npos;
    });
    std::string sql;
    if (statement.from.empty() && !asksItself) {
        for (const Assigned& entry : assigned) {
            sql += (sql.empty() ? "" : ", ") + Quoted(entry.column->name) + " = " +
                   RenderStored(entry.value, table, *entry.column, kUpdate);
        }
        std::string where = Where(parts.condition);
        if (!parts.limit.empty()) {
            where =
                " WHERE _rowid_ IN (SELECT " + alias + "._rowid_" + parts.from + where + parts.limit + ")";
        }
        sql = "UPDATE " + table.Sql() + " AS " + alias + " SET " + sql + where;
    } else {
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
        sql = "UPDATE " + table.Sql() + " AS \"ts$t\" SET " + sql + " FROM (" + inner + parts.from +
              Where(parts.condition) + parts.limit + ") AS \"ts$s\" WHERE \"ts$t\"._rowid_ = \"ts$s\".r";
    }
    sql += variables;
    if (statement.output) {
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

Translation Translator::Delete(const DeleteStatement& statement) {
    if (!statement.currentOf.IsEmpty()) throw MakeError(40510, statement.position, {"WHERE CURRENT OF"});
    if (!statement.with.empty()) commonTables_.push_back(&statement.with);
    Scope scope;
    std::string from = From(statement.from, scope);
    const Source& target = ChangedSource(statement.target, statement.position, scope, from);
    const bool joined = !statement.from.empty();
    const TableInfo& table = *target.table;
    const std::string alias = target.alias;
    Begin(table, kDelete);
    const std::string condition = statement.where ? ConditionText(*statement.where, scope) : std::string();
    std::string where = Where(condition);
    std::string sql = "DELETE FROM " + table.Sql();
    if (joined || statement.top) {
        std::string limit;
        if (statement.top) {
            if (statement.top->percent) throw MakeError(40510, statement.position, {"TOP"});
            Scope none;
            limit = " LIMIT " + RenderAs(Value(*statement.top->count, none), SqlType::Of(TypeKind::kBigInt));
        }
        sql += " WHERE _rowid_ IN (SELECT " + alias + "._rowid_" + from + where + limit + ")";
    } else {
        sql += " AS " + alias + where;
    }
    if (statement.output) sql += Output(*statement.output, table, "deleted");
    return Finished(std::move(sql));
}

std::string Translator::CheckText(const TableInfo& table, const Expr& condition) {
    inlineLiterals_ = true;
    Scope scope;
    Source source = SourceOf(table, table.name);
    for (SourceColumn& column : source.columns) {
        if (column.natural) column.sql = Quoted(column.name);
    }
    scope.sources.push_back(std::move(source));
    return ConditionText(condition, scope);
}

Translation Translator::FillColumn(const TableInfo& table, const ColumnInfo& column, const Expr& value) {
    Begin(table, kUpdate);
    Scope none;
    const std::string stored = RenderStored(Value(value, none), table, column, kUpdate);
    return Finished("UPDATE " + table.Sql() + " SET " + Quoted(column.name) + " = " + stored);
}

Translation Translator::RewriteColumn(const TableInfo& table, const ColumnInfo& column, const SqlType& from) {
    Begin(table, kUpdate);
    const std::string stored = RenderStored(Computed(Quoted(column.name), from), table, column, kUpdate);
    return Finished("UPDATE " + table.Sql() + " SET " + Quoted(column.name) + " = " + stored);
}

}  // namespace vicenter::tsql::engine
