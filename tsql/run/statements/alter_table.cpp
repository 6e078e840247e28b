#include <algorithm>

#include "automation/object.h"
#include "tsql/run/constraint_error.h"
#include "tsql/run/dependents.h"
#include "tsql/run/executor.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

bool IsEmpty(Database& database, const TableInfo& table) {
    PreparedStatement any = database.Prepare("SELECT 1 FROM " + table.Sql() + " LIMIT 1");
    return !database.Step(any);
}

bool Names(const std::vector<std::string>& columns, std::string_view name) {
    return std::any_of(columns.begin(), columns.end(),
                       [name](const std::string& column) { return SameName(column, name); });
}

}  // namespace

void Executor::DropConstraint(TableInfo& table, const Name& name, bool& found) {
    const std::size_t keys = table.keys.size();
    std::erase_if(table.keys,
                  [&](const KeyInfo& key) { return key.IsConstraint() && SameName(key.name, name.text); });
    const std::size_t foreignKeys = table.foreignKeys.size();
    std::erase_if(table.foreignKeys,
                  [&](const ForeignKeyInfo& key) { return SameName(key.name, name.text); });
    const std::size_t checks = table.checks.size();
    std::erase_if(table.checks, [&](const CheckInfo& check) { return SameName(check.name, name.text); });
    found =
        keys != table.keys.size() || foreignKeys != table.foreignKeys.size() || checks != table.checks.size();
    for (ColumnInfo& column : table.columns) {
        if (column.defaultName.empty() || !SameName(column.defaultName, name.text)) continue;
        column.defaultName.clear();
        column.defaultText.clear();
        found = true;
    }
}

void Executor::RunOnce(Translation translation) {
    Plan plan;
    plan.statement = Prepared(translation.sql);
    plan.translation = std::move(translation);
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    while (StepPlan(plan)) {
    }
}

// The rows that are there keep what the table is to have more than before: error 547.
void Executor::CheckRows(const TableInfo& table, const TableInfo& before, Position where) {
    for (std::size_t i = before.checks.size(); i < table.checks.size(); ++i) {
        const CheckInfo& check = table.checks[i];
        PreparedStatement broken =
            database_.Prepare("SELECT 1 FROM " + table.Sql() + " WHERE NOT (" + check.sqlText + ") LIMIT 1");
        if (database_.Step(broken)) {
            SqlError error = CheckError("ALTER TABLE", table, check.name);
            error.SetLine(static_cast<std::int32_t>(where.line));
            throw error;
        }
    }
    for (std::size_t i = before.foreignKeys.size(); i < table.foreignKeys.size(); ++i) {
        const ForeignKeyInfo& key = table.foreignKeys[i];
        std::string given;
        std::string met;
        for (std::size_t c = 0; c < key.columns.size() && c < key.referencedColumns.size(); ++c) {
            given += (c == 0 ? "" : " AND ") + ("child." + Quoted(key.columns[c])) + " IS NOT NULL";
            met += (c == 0 ? "" : " AND ") + ("parent." + Quoted(key.referencedColumns[c])) + " = child." +
                   Quoted(key.columns[c]);
        }
        PreparedStatement broken =
            database_.Prepare("SELECT 1 FROM " + table.Sql() + " AS child WHERE " + given +
                              " AND NOT EXISTS (SELECT 1 FROM main." + Quoted(key.referencedTable) +
                              " AS parent WHERE " + met + ") LIMIT 1");
        if (database_.Step(broken)) throw ForeignKeyError("ALTER TABLE", key);
    }
}

// The server tells what depends on the column, and then that it stays.
void Executor::FailDependent(const char* operation, std::string_view kind, std::string_view dependent,
                             const Name& column) {
    SqlError first = MakeError(5074, column.position, {kind, dependent, "column", column.text});
    if (tryDepth_ == 0)
        Report(Completed(first, static_cast<std::int32_t>(column.position.line)).Details(), true);
    throw MakeError(4922, column.position, {operation, column.text});
}

// What holds a column whatever becomes of it: foreign keys, computed columns and bound views.
void Executor::CheckDependents(const char* operation, const TableInfo& table, const ColumnInfo& column,
                               const Name& name) {
    for (const TableInfo* other : catalog_.Tables()) {
        for (const ForeignKeyInfo& key : other->foreignKeys) {
            const bool own = SameName(other->name, table.name) && Names(key.columns, name.text);
            if (own || (SameName(key.referencedTable, table.name) && Names(key.referencedColumns, name.text)))
                FailDependent(operation, "object", key.name, name);
        }
    }
    for (const ColumnInfo& other : table.columns) {
        if (&other != &column && Mentions(other.computedText, name.text))
            FailDependent(operation, "column", other.name, name);
    }
    if (table.temporary) return;
    if (const ModuleInfo* view = BoundView(catalog_, programs_, table.name, name.text))
        FailDependent(operation, "object", view->name, name);
}

// As the server has it, a varchar may grow under a check or an index, and under a check and a default what is
// of the same type may have another length.
void Executor::CheckAlterable(const TableInfo& table, const ColumnInfo& column, const SqlType& type,
                              bool nullable, const Name& name) {
    constexpr const char* kOperation = "ALTER TABLE ALTER COLUMN";
    // Whether it may be NULL matters to the primary key alone.
    const bool isSame = column.type == type;
    const bool sameKind = column.type.kind == type.kind;
    const bool varies =
        sameKind && ((type.IsText() && !type.IsFixedText()) || type.kind == TypeKind::kVarBinary);
    const bool grows =
        varies && (type.IsMax() || (!column.type.IsMax() && type.length >= column.type.length));
    for (const KeyInfo& key : table.keys) {
        const bool isPrimary = key.kind == KeyKind::kPrimary;
        if (!Names(key.columns, name.text) || (isPrimary ? isSame && !nullable : isSame || grows)) continue;
        FailDependent(kOperation, key.IsConstraint() ? "object" : "index", key.name, name);
    }
    for (const CheckInfo& check : table.checks) {
        if (Mentions(check.text, name.text) && !varies && !isSame)
            FailDependent(kOperation, "object", check.name, name);
    }
    for (const ForeignKeyInfo& key : table.foreignKeys) {
        const bool sets = key.onDelete.starts_with("set") || key.onUpdate.starts_with("set");
        if (sets && column.nullable && !nullable && Names(key.columns, name.text))
            FailDependent(kOperation, "object", key.name, name);
    }
    if (!column.defaultText.empty() && !sameKind)
        FailDependent(kOperation, "object", column.defaultName, name);
    if (!isSame) CheckDependents(kOperation, table, column, name);
}

// The rows that are there get the first values of a new identity column.
void Executor::NumberRows(const TableInfo& table, const ColumnInfo& column) {
    const std::string first = std::to_string(column.seed);
    const std::string step = std::to_string(column.increment);
    database_.Run("UPDATE " + table.Sql() + " AS own SET " + Quoted(column.name) + " = numbered.value FROM " +
                  "(SELECT _rowid_ AS row, " + first + " + " + step +
                  " * (row_number() OVER (ORDER BY _rowid_) - 1) AS value FROM " + table.Sql() +
                  ") AS numbered WHERE own._rowid_ = numbered.row");
    // As the type keeps it.
    if (!column.type.IsInteger()) {
        RunOnce(Translated([&](Translator& translator) {
            return translator.RewriteColumn(table, column, SqlType::Of(TypeKind::kBigInt));
        }));
    }
    const std::int64_t rows = NumberOf("SELECT count(*) FROM " + table.Sql(), {});
    catalog_.SetLastIdentity(table, column.seed + column.increment * (rows - 1));
}

void Executor::AddColumnTo(const AlterTableStatement& statement, const ColumnDefinition& definition) {
    TableInfo changed = DefinedTable(statement.table, 4902);
    TableInfo probe = changed;
    AddColumn(probe, definition);
    FindComputedTypes(probe, statement.definition.columns);
    TakeActions(probe, changed.foreignKeys.size());
    const ColumnInfo column = *probe.FindColumn(definition.name.text);
    const bool needsValue = !column.nullable && column.computedText.empty();
    if (needsValue && column.defaultText.empty() && !column.identity && !IsEmpty(database_, changed)) {
        throw MakeError(4901, definition.name.position, {column.name, changed.name});
    }
    catalog_.AddColumn(changed, column);
    const bool withValues = std::ranges::any_of(
        definition.constraints, [](const Constraint& constraint) { return constraint.withValues; });
    if (!column.defaultText.empty() && (!column.nullable || withValues)) {
        const ExprPtr value = ParseExpression(column.defaultText);
        const TableInfo& now = DefinedTable(statement.table, 4902);
        RunOnce(Translated([&](Translator& translator) {
            return translator.FillColumn(now, *now.FindColumn(column.name), *value);
        }));
    }
    if (column.identity) NumberRows(DefinedTable(statement.table, 4902), column);
    // Keys and checks that came with the column.
    TableInfo now = DefinedTable(statement.table, 4902);
    for (std::size_t i = changed.keys.size(); i < probe.keys.size(); ++i) {
        MakeKey(now, probe.keys[i], statement.position);
        now = DefinedTable(statement.table, 4902);
    }
    if (probe.checks.size() > changed.checks.size() ||
        probe.foreignKeys.size() > changed.foreignKeys.size()) {
        now.checks = probe.checks;
        now.foreignKeys = probe.foreignKeys;
        CheckRows(now, changed, statement.position);
        catalog_.ChangeTable(now, true);
    }
}

void Executor::AddConstraintTo(const AlterTableStatement& statement, const Constraint& constraint) {
    const TableInfo current = DefinedTable(statement.table, 4902);
    TableInfo changed = current;
    AddConstraint(changed, constraint);
    if (changed.keys.size() > current.keys.size()) {
        MakeKey(current, changed.keys.back(), statement.position);
    } else {
        TakeActions(changed, current.foreignKeys.size());
        const bool rewrite =
            changed.checks.size() > current.checks.size() || changed.foreignKeys != current.foreignKeys;
        if (statement.withCheck.value_or(true)) CheckRows(changed, current, statement.position);
        catalog_.ChangeTable(changed, rewrite);
    }
}

void Executor::AlterColumn(const AlterTableStatement& statement) {
    const TableInfo before = DefinedTable(statement.table, 4902);
    const ColumnDefinition& definition = statement.definition.columns.front();
    const ColumnInfo* column = before.FindColumn(definition.name.text);
    if (column == nullptr) {
        throw MakeError(4924, statement.position,
                        {"ALTER TABLE ALTER COLUMN", definition.name.text, before.name});
    }
    if (!column->computedText.empty()) throw MakeError(4928, statement.position, {column->name, "COMPUTED"});
    const SqlType type = Translator::ResolveType(definition.type);
    // What numbers its rows goes on doing so.
    if (column->identity) CheckIdentityType(type, definition.name);
    if (column->identity && definition.nullable.value_or(false))
        throw MakeError(8147, statement.position, {column->name, before.name});
    const bool nullable = definition.nullable.value_or(!column->identity);
    CheckAlterable(before, *column, type, nullable, definition.name);
    const SqlType from = column->type;
    TableInfo changed = before;
    for (ColumnInfo& entry : changed.columns) {
        if (!SameName(entry.name, definition.name.text)) continue;
        entry.type = type;
        entry.nullable = nullable;
    }
    TakeActions(changed, changed.foreignKeys.size());
    catalog_.ChangeTable(changed, true);
    const TableInfo& now = DefinedTable(statement.table, 4902);
    RunOnce(Translated([&](Translator& translator) {
        return translator.RewriteColumn(now, *now.FindColumn(definition.name.text), from);
    }));
    catalog_.RemakeNullIndexes(now);
}

void Executor::DropColumnOf(const AlterTableStatement& statement, const Name& name) {
    const TableInfo now = DefinedTable(statement.table, 4902);
    const ColumnInfo* column = now.FindColumn(name.text);
    if (column == nullptr) {
        if (statement.ifExists) return;
        throw MakeError(4924, name.position, {"ALTER TABLE DROP COLUMN", name.text, now.name});
    }
    constexpr const char* kOperation = "ALTER TABLE DROP COLUMN";
    if (!column->defaultText.empty()) FailDependent(kOperation, "object", column->defaultName, name);
    for (const KeyInfo& key : now.keys) {
        if (Names(key.columns, name.text))
            FailDependent(kOperation, key.IsConstraint() ? "object" : "index", key.name, name);
    }
    for (const CheckInfo& check : now.checks) {
        if (Mentions(check.text, name.text)) FailDependent(kOperation, "object", check.name, name);
    }
    CheckDependents(kOperation, now, *column, name);
    const auto isStored = [](const ColumnInfo& other) { return other.computedText.empty(); };
    if (isStored(*column) && std::ranges::count_if(now.columns, isStored) == 1)
        throw MakeError(4923, name.position, {"ALTER TABLE DROP COLUMN", column->name, now.name});
    catalog_.DropColumn(now, column->name);
}

void Executor::DropConstraintOf(const AlterTableStatement& statement, const Name& name) {
    const TableInfo now = DefinedTable(statement.table, 4902);
    TableInfo changed = now;
    bool found = false;
    DropConstraint(changed, name, found);
    if (!found) {
        if (statement.ifExists) return;
        throw MakeError(3728, name.position, {name.text});
    }
    for (const KeyInfo& key : now.keys) {
        if (!SameName(key.name, name.text) || !key.IsConstraint()) continue;
        if (const Reference reference = ReferenceTo(catalog_, now, key); reference.table != nullptr)
            throw MakeError(3725, name.position, {key.name, reference.table->name, reference.key->name});
        if (key.isRowNumber) {
            throw MakeError(40510, name.position, {"ALTER TABLE DROP CONSTRAINT " + name.text});
        }
    }
    if (changed.keys.size() < now.keys.size()) {
        catalog_.DropIndex(now, name.text);
    } else {
        TakeActions(changed, changed.foreignKeys.size());
        catalog_.ChangeTable(
            changed, changed.checks.size() < now.checks.size() || changed.foreignKeys != now.foreignKeys);
    }
}

// Part by part: each sees the table as the one before it has left it.
void Executor::AlterTable(const AlterTableStatement& statement) {
    const bool temporary = statement.table.Object().front() == '#';
    transactions_.Define(temporary, [&] {
        DefinedTable(statement.table, 4902);
        switch (statement.action) {
            case AlterTableAction::kAdd:
                Constraining(statement.position, [&] {
                    for (const ColumnDefinition& column : statement.definition.columns)
                        AddColumnTo(statement, column);
                    for (const Constraint& constraint : statement.definition.constraints)
                        AddConstraintTo(statement, constraint);
                });
                break;
            case AlterTableAction::kAlterColumn:
                AlterColumn(statement);
                break;
            case AlterTableAction::kDropColumn:
                for (const Name& name : statement.names)
                    DropColumnOf(statement, name);
                break;
            case AlterTableAction::kDropConstraint:
                for (const Name& name : statement.names)
                    DropConstraintOf(statement, name);
                break;
            case AlterTableAction::kCheckConstraint:
                // Constraints are always checked here.
                break;
            case AlterTableAction::kNoCheckConstraint:
                throw MakeError(40510, statement.position, {"ALTER TABLE … NOCHECK CONSTRAINT"});
        }
    });
}

}  // namespace vicenter::tsql::engine
