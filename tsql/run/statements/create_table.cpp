// CREATE TABLE, and what it shares with ALTER TABLE and table variables: columns and constraints.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/definition_check.h"
#include "tsql/run/executor.h"
#include "tsql/run/identity_insert.h"
#include "tsql/syntax/print/printer.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

constexpr std::int32_t kMostColumns = 1024;

}  // namespace

std::string Executor::ExpressionText(const Expr& expression) const {
    return tsql::Print(expression);
}

namespace {

// The table has it already, whether it is in the catalog yet or not.
bool HasConstraintNamed(const TableInfo& table, std::string_view name) {
    const auto isIt = [name](const auto& entry) { return SameName(entry.name, name); };
    return std::ranges::any_of(table.keys, isIt) || std::ranges::any_of(table.foreignKeys, isIt) ||
           std::ranges::any_of(table.checks, isIt) ||
           std::ranges::any_of(table.columns, [name](const ColumnInfo& column) {
               return !column.defaultName.empty() && SameName(column.defaultName, name);
           });
}

}  // namespace

std::string Executor::ConstraintName(const TableInfo& table, const Constraint& constraint, const char* prefix,
                                     const std::string& detail) {
    if (!constraint.name.IsEmpty()) {
        if (HasConstraintNamed(table, constraint.name.text) ||
            (!table.temporary && catalog_.HasConstraint(constraint.name.text))) {
            throw MakeError(2714, constraint.position, {constraint.name.text});
        }
        return constraint.name.text;
    }
    // As the server does, cut names with a number that is the same on every run.
    std::string name = std::string(prefix) + "__" + std::string(NameInText(table.name));
    if (!detail.empty()) name += "__" + detail;
    std::string free = name;
    for (int number = 2;
         HasConstraintNamed(table, free) || (!table.temporary && catalog_.HasConstraint(free)); ++number) {
        free = name + "_" + std::to_string(number);
    }
    return free;
}

void Executor::CheckIdentityType(const SqlType& type, const Name& column) {
    const bool whole = type.IsInteger() || (type.kind == TypeKind::kDecimal && type.scale == 0);
    if (!whole || type.kind == TypeKind::kBit) throw MakeError(2749, column.position, {column.text});
}

void Executor::AddColumn(TableInfo& table, const ColumnDefinition& definition) {
    if (table.FindColumn(definition.name.text) != nullptr) {
        throw MakeError(2705, definition.name.position, {definition.name.text, table.name});
    }
    ColumnInfo column;
    column.name = definition.name.text;
    if (definition.computedAs) {
        column.computedText = ExpressionText(*definition.computedAs);
        column.type = SqlType::Int();  // until the columns that it names are all there: FindTypes
        table.columns.push_back(std::move(column));
        return;
    }
    column.type = Translator::ResolveType(definition.type);
    if (!definition.collation.IsEmpty()) Translator::CheckCollation(definition.collation);
    column.nullable = definition.nullable.value_or(true);
    if (definition.identity) {
        if (table.IdentityColumn() != nullptr) throw MakeError(2744, definition.name.position, {table.name});
        CheckIdentityType(column.type, definition.name);
        column.identity = true;
        column.seed = definition.identity->seed;
        column.increment = definition.identity->increment;
        column.nullable = false;
    }
    table.columns.push_back(std::move(column));
    for (const Constraint& constraint : definition.constraints)
        AddConstraint(table, constraint);
}

// The columns of a key by the names of the table.
std::vector<std::string> Executor::KeyColumns(TableInfo& table, const Constraint& constraint,
                                              const std::string& name, bool makeNotNull) {
    std::vector<std::string> names;
    for (const IndexColumn& entry : constraint.columns) {
        ColumnInfo* column = nullptr;
        for (ColumnInfo& candidate : table.columns) {
            if (SameName(candidate.name, entry.name.text)) column = &candidate;
        }
        if (column == nullptr && constraint.kind == ConstraintKind::kForeignKey)
            throw MakeError(1769, entry.name.position, {name, entry.name.text, table.name});
        if (column == nullptr) throw MakeError(1911, entry.name.position, {entry.name.text});
        if (!column->computedText.empty())
            throw MakeError(40510, entry.name.position, {"a key of computed column " + entry.name.text});
        if (makeNotNull) column->nullable = false;
        names.push_back(column->name);
    }
    return names;
}

void Executor::AddConstraint(TableInfo& table, const Constraint& constraint) {
    switch (constraint.kind) {
        case ConstraintKind::kPrimaryKey:
        case ConstraintKind::kUnique:
            return AddKey(table, constraint);
        case ConstraintKind::kDefault:
            return AddDefault(table, constraint);
        case ConstraintKind::kCheck:
            return AddCheck(table, constraint);
        case ConstraintKind::kForeignKey:
            return AddForeignKey(table, constraint);
    }
}

void Executor::CheckKeyTypes(const TableInfo& table, const KeyInfo& key, Position where) const {
    for (const std::string& name : key.columns) {
        const ColumnInfo* column = table.FindColumn(name);
        if (column == nullptr) continue;
        if (column->type.IsMax()) throw MakeError(1919, where, {column->name, table.name});
        // Equal bytes may differ in zeros at their end, which SQLite would tell apart.
        if (key.IsUnique() && column->type.kind == TypeKind::kVarBinary)
            throw MakeError(40510, where, {"a unique key of varbinary"});
    }
}

// A new table makes the columns of its primary key NOT NULL; in one that has rows they must be so already.
void Executor::AddKey(TableInfo& table, const Constraint& constraint) {
    const bool primary = constraint.kind == ConstraintKind::kPrimaryKey;
    const bool isNew = table.id == 0;
    if (primary && table.PrimaryKey() != nullptr) {
        throw MakeError(isNew ? 8110 : 1779, constraint.position, {table.name});
    }
    KeyInfo key;
    key.kind = primary ? KeyKind::kPrimary : KeyKind::kUnique;
    key.columns = KeyColumns(table, constraint, {}, primary && isNew);
    CheckKeyTypes(table, key, constraint.position);
    for (const IndexColumn& column : constraint.columns)
        key.descending.push_back(column.descending);
    if (primary) {
        for (const std::string& name : key.columns) {
            if (table.FindColumn(name)->nullable) throw MakeError(8111, constraint.position, {table.name});
        }
    }
    key.name = ConstraintName(table, constraint, primary ? "PK" : "UQ", primary ? "" : key.columns.front());
    table.keys.push_back(std::move(key));
}

namespace {

// What the statement that defines the table is called in a message.
const char* DefinedBy(const TableInfo& table) {
    if (table.id != 0) return "ALTER TABLE";
    return table.name.front() == '@' ? "DECLARE" : "CREATE TABLE";
}

}  // namespace

void Executor::AddDefault(TableInfo& table, const Constraint& constraint) {
    const std::string& name = constraint.columns.front().name.text;
    for (ColumnInfo& column : table.columns) {
        if (!SameName(column.name, name)) continue;
        if (!column.defaultText.empty() && table.id == 0)
            throw MakeError(8148, constraint.position, {"DEFAULT", column.name, table.name});
        if (!column.defaultText.empty()) throw MakeError(1781, constraint.position);
        if (column.identity) throw MakeError(1754, constraint.position, {table.name, column.name});
        CheckDefinition({DefinitionKind::kDefault, &table, DefinedBy(table), column.name},
                        *constraint.expression);
        // Its functions are looked up where it is written, not by the first INSERT.
        Translated([&](Translator& translator) { return translator.Expression(*constraint.expression); });
        column.defaultText = ExpressionText(*constraint.expression);
        column.defaultName = ConstraintName(table, constraint, "DF", column.name);
        return;
    }
    throw MakeError(1752, constraint.position, {name, table.name});
}

// Kept twice: as it was written, for whoever asks, and as SQLite checks it.
void Executor::AddCheck(TableInfo& table, const Constraint& constraint) {
    CheckInfo check;
    const std::string detail = constraint.columns.empty() ? "" : constraint.columns.front().name.text;
    check.name = ConstraintName(table, constraint, "CK", detail);
    CheckDefinition({DefinitionKind::kCheck, &table, DefinedBy(table), detail}, *constraint.expression);
    check.text = ExpressionText(*constraint.expression);
    check.sqlText = Translated(
        [&](Translator& translator) { return translator.CheckText(table, *constraint.expression); });
    table.checks.push_back(std::move(check));
}

static void CheckSameTypes(const TableInfo& table, const TableInfo& referenced, const ForeignKeyInfo& key,
                           Position where) {
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const ColumnInfo& own = *table.FindColumn(key.columns[i]);
        const ColumnInfo& other = *referenced.FindColumn(key.referencedColumns[i]);
        if (own.type == other.type) continue;
        throw MakeError(own.type.kind == other.type.kind ? 1753 : 1778, where,
                        {referenced.name, other.name, table.name, own.name, key.name});
    }
}

// What is referred to is a key of the other table, by default its primary one. A table may refer to itself,
// which is not in the catalog yet.
void Executor::AddForeignKey(TableInfo& table, const Constraint& constraint) {
    ForeignKeyInfo key;
    const std::string& name = constraint.referencedTable.Object();
    key.name = ConstraintName(table, constraint, "FK", name);
    key.columns = KeyColumns(table, constraint, key.name, false);
    const TableInfo* referenced = SameName(name, table.name) ? &table : catalog_.FindTable(name);
    if (referenced == nullptr) throw MakeError(1767, constraint.position, {key.name, name});
    key.referencedTable = referenced->name;
    for (const Name& column : constraint.referencedColumns) {
        const ColumnInfo* found = referenced->FindColumn(column.text);
        if (found == nullptr)
            throw MakeError(1770, column.position, {key.name, column.text, referenced->name});
        key.referencedColumns.push_back(found->name);
    }
    if (key.referencedColumns.empty() && referenced->PrimaryKey() != nullptr) {
        key.referencedColumns = referenced->PrimaryKey()->columns;
    }
    const bool isKey = std::any_of(
        referenced->keys.begin(), referenced->keys.end(),
        [&](const KeyInfo& entry) { return entry.IsUnique() && entry.columns == key.referencedColumns; });
    if (!isKey) throw MakeError(1776, constraint.position, {referenced->name, key.name});
    if (key.columns.size() != key.referencedColumns.size())
        throw MakeError(8139, constraint.position, {table.name});
    CheckSameTypes(table, *referenced, key, constraint.position);
    key.onDelete = constraint.onDelete;
    key.onUpdate = constraint.onUpdate;
    // The server passes over those of temporary tables, too.
    if (!table.temporary) table.foreignKeys.push_back(std::move(key));
}

// What a foreign key is to put into its columns, they must take. SQLite has no defaults of its own but these.
void Executor::TakeActions(TableInfo& table, std::size_t first) {
    for (std::size_t i = 0; i < table.foreignKeys.size(); ++i) {
        ForeignKeyInfo& key = table.foreignKeys[i];
        key.defaults.clear();
        for (const std::string& name : key.columns) {
            const ColumnInfo& column = *table.FindColumn(name);
            const bool hasDefault = !column.defaultText.empty() && !SameName(column.defaultText, "NULL");
            const bool setsNull = key.onDelete == "set null" || key.onUpdate == "set null";
            if (i >= first && setsNull && !column.nullable) throw MakeError(1761, {}, {key.name});
            if (!key.SetsDefault()) continue;
            if (i >= first && !hasDefault && !column.nullable) throw MakeError(1762, {}, {key.name});
            key.defaults.emplace_back();
            if (!hasDefault) continue;
            key.defaults.back() =
                Translated([&](Translator& translator) { return translator.DefaultText(table, column); });
            // The catalog keeps one a line.
            if (key.defaults.back().find('\n') != std::string::npos)
                throw MakeError(40510, {}, {"SET DEFAULT of several lines"});
        }
    }
}

// The type of a computed column is that of its expression.
void Executor::FindComputedTypes(TableInfo& table, const std::vector<ColumnDefinition>& definitions) {
    for (const ColumnDefinition& definition : definitions) {
        if (!definition.computedAs) continue;
        CheckDefinition({DefinitionKind::kComputed, &table, DefinedBy(table), {}}, *definition.computedAs);
        for (ColumnInfo& column : table.columns) {
            if (!SameName(column.name, definition.name.text)) continue;
            column.type = Translated(
                [&](Translator& translator) { return translator.ComputedType(table, column.computedText); });
        }
    }
}

namespace {

bool IsPrimaryKey(const Constraint& constraint) {
    return constraint.kind == ConstraintKind::kPrimaryKey;
}

// A primary key makes its columns NOT NULL, unless they have been called NULL.
void RefuseKeyOfNulls(const TableInfo& table, const TableDefinition& definition) {
    for (const ColumnDefinition& column : definition.columns) {
        if (!column.nullable.value_or(false)) continue;
        bool isKey = std::ranges::any_of(column.constraints, IsPrimaryKey);
        for (const Constraint& constraint : definition.constraints) {
            for (const IndexColumn& part : constraint.columns)
                isKey = isKey || (IsPrimaryKey(constraint) && SameName(part.name.text, column.name.text));
        }
        if (isKey) throw MakeError(8111, column.name.position, {table.name});
    }
}

}  // namespace

TableInfo Executor::BuildTable(const std::string& name, const TableDefinition& definition, bool temporary) {
    TableInfo table;
    table.name = name;
    table.temporary = temporary;
    // Temporary names are made unique: a table dropped in a transaction that is undone comes back unseen.
    table.physical = temporary ? name + "$" + std::to_string(++tableVariables_) : name;
    for (const ColumnDefinition& column : definition.columns) {
        if (table.columns.size() == static_cast<std::size_t>(kMostColumns))
            throw MakeError(1702, column.name.position, {column.name.text, name, kMostColumns});
        AddColumn(table, column);
    }
    RefuseKeyOfNulls(table, definition);
    FindComputedTypes(table, definition.columns);
    for (const Constraint& constraint : definition.constraints)
        AddConstraint(table, constraint);
    TakeActions(table, 0);
    if (const ColumnInfo* identity = table.IdentityColumn())
        table.lastIdentity = identity->seed - identity->increment;
    return table;
}

namespace {

// Errors of a constraint that cannot be made: the server tells that after them.
bool IsOfConstraint(std::int32_t number) {
    constexpr std::int32_t kNumbers[] = {1505, 1752, 1753, 1754, 1761, 1762, 1767, 1769, 1770,
                                         1776, 1778, 1779, 1781, 1785, 1911, 1919, 2714, 8111};
    return std::ranges::find(kNumbers, number) != std::end(kNumbers);
}

}  // namespace

void Executor::Constraining(Position where, const std::function<void()>& work) {
    try {
        work();
    } catch (const SqlError& error) {
        if (!IsOfConstraint(error.Number())) throw;
        const SqlError first = Completed(error, static_cast<std::int32_t>(where.line));
        if (tryDepth_ == 0) Report(first.Details(), true);
        SqlError second = MakeError(1750, where);
        second.SetLine(first.Details().line - frame_->lineBase);
        firstError_ = first.Number();
        throw second;
    }
}

void Executor::CreateTable(const CreateTableStatement& statement) {
    const std::string& name = statement.table.Object();
    const bool temporary = !name.empty() && name.front() == '#';
    transactions_.Define(temporary, [&] {
        if (temporary ? !Shadow(name)
                      : catalog_.ObjectId(name, "").has_value() || catalog_.HasConstraint(name)) {
            throw MakeError(2714, statement.table.Where(), {name});
        }
        TableInfo table;
        Constraining(statement.position, [&] { table = BuildTable(name, statement.definition, temporary); });
        catalog_.CreateTable(std::move(table));
        BeginWithoutIdentityInsert(frame_, name);
        if (temporary && frame_->level > 0) frame_->temporaries.push_back(catalog_.FindTable(name)->id);
    });
}

const TableInfo& Executor::DefinedTable(const ObjectName& name, std::int32_t error) {
    const TableInfo* table = FindTable(name.Object());
    if (table == nullptr) throw MakeError(error, name.Where(), {name.Object()});
    return *table;
}

}  // namespace vicenter::tsql::engine
