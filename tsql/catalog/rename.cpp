// Names that change. What refers to a table or column by a key follows; texts of views and procedures stay as
// they are, as on the server.

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/catalog/catalog.h"
#include "tsql/catalog/file_names.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

void Replace(std::vector<std::string>& names, const std::string& from, const std::string& to) {
    for (std::string& name : names) {
        if (SameName(name, from)) name = to;
    }
}

}  // namespace

// Indexes bear the name of their table.
void Catalog::DropPhysicalIndexes(const TableInfo& table) {
    for (const KeyInfo& key : table.keys) {
        for (const std::string& index : {PhysicalIndexName(table, key), PhysicalNullIndexName(table, key)})
            database_.Run("DROP INDEX IF EXISTS main." + Quoted(index));
    }
}

void Catalog::MakePhysicalIndexes(const TableInfo& table) {
    for (const KeyInfo& key : table.keys) {
        if (key.isRowNumber) continue;
        MakeIndex(table, key);
    }
}

void Catalog::RenameTable(const TableInfo& table, const std::string& name) {
    CheckTableName(name);
    TableInfo changed = table;
    std::vector<TableInfo> others;
    for (const auto& [key, other] : tables_) {
        bool refers = false;
        for (const ForeignKeyInfo& foreign : other->foreignKeys)
            refers = refers || SameName(foreign.referencedTable, table.name);
        if (refers && other->id != table.id) others.push_back(*other);
    }
    const auto follow = [&](TableInfo& info) {
        for (ForeignKeyInfo& foreign : info.foreignKeys) {
            if (SameName(foreign.referencedTable, table.name)) foreign.referencedTable = name;
        }
    };
    DropPhysicalIndexes(table);
    // To SQLite a name in other letters is taken.
    std::string before = table.Sql();
    if (SameName(table.name, name)) {
        const std::string between = Quoted("ts$renamed");
        database_.Run("ALTER TABLE " + before + " RENAME TO " + between);
        before = "main." + between;
    }
    database_.Run("ALTER TABLE " + before + " RENAME TO " + Quoted(name));
    changed.name = name;
    changed.physical = name;
    follow(changed);
    MakePhysicalIndexes(changed);
    PreparedStatement object = database_.Prepare("UPDATE \"ts$objects\" SET name = ?1 WHERE id = ?2");
    object.Bind(1, name);
    object.Bind(2, table.id);
    database_.Step(object);
    object.Reset();
    for (TableInfo& other : others) {
        follow(other);
        WriteTable(other);
    }
    ChangeTable(changed, false);
}

void Catalog::RenameColumn(const TableInfo& table, const std::string& from, const std::string& to) {
    CheckColumnName(to);
    TableInfo changed = table;
    std::vector<TableInfo> others;
    for (const auto& [key, other] : tables_) {
        bool refers = false;
        for (const ForeignKeyInfo& foreign : other->foreignKeys)
            refers = refers || SameName(foreign.referencedTable, table.name);
        if (refers && other->id != table.id) others.push_back(*other);
    }
    bool stored = true;
    for (ColumnInfo& column : changed.columns) {
        if (!SameName(column.name, from)) continue;
        stored = column.computedText.empty();
        column.name = to;
    }
    for (KeyInfo& key : changed.keys)
        Replace(key.columns, from, to);
    for (ForeignKeyInfo& key : changed.foreignKeys) {
        Replace(key.columns, from, to);
        if (SameName(key.referencedTable, table.name)) Replace(key.referencedColumns, from, to);
    }
    if (stored)
        database_.Run("ALTER TABLE " + table.Sql() + " RENAME COLUMN " + Quoted(from) + " TO " + Quoted(to));
    for (TableInfo& other : others) {
        for (ForeignKeyInfo& key : other.foreignKeys) {
            if (SameName(key.referencedTable, table.name)) Replace(key.referencedColumns, from, to);
        }
        WriteTable(other);
    }
    ChangeTable(changed, false);
}

void Catalog::RenameConstraint(const TableInfo& table, const std::string& from, const std::string& to) {
    TableInfo changed = table;
    for (const KeyInfo& key : table.keys) {
        if (SameName(key.name, to) && !SameName(from, to)) throw MakeError(15335, {}, {to, "INDEX"});
    }
    bool isText = false;
    for (KeyInfo& key : changed.keys) {
        if (SameName(key.name, from)) key.name = to;
    }
    for (ForeignKeyInfo& key : changed.foreignKeys) {
        if (!SameName(key.name, from)) continue;
        key.name = to;
        isText = true;
    }
    for (CheckInfo& check : changed.checks) {
        if (!SameName(check.name, from)) continue;
        check.name = to;
        isText = true;
    }
    for (ColumnInfo& column : changed.columns) {
        if (SameName(column.defaultName, from)) column.defaultName = to;
    }
    if (!isText) {
        DropPhysicalIndexes(table);
        MakePhysicalIndexes(changed);
    }
    ChangeTable(changed, isText);
}

void Catalog::RenameModule(const std::string& from, const std::string& to) {
    PreparedStatement object = database_.Prepare("UPDATE \"ts$objects\" SET name = ?1 WHERE name = ?2");
    object.Bind(1, to);
    object.Bind(2, from);
    database_.Step(object);
    object.Reset();
    Touch();
}

}  // namespace vicenter::tsql::engine
