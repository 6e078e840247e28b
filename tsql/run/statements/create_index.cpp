#include "automation/object.h"
#include "tsql/run/executor.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

void Executor::CreateIndex(const CreateIndexStatement& statement) {
    const bool temporary = statement.table.Object().front() == '#';
    transactions_.Define(temporary, [&] {
        const TableInfo& table = DefinedTable(statement.table, 1088);
        // Over all rows the index would refuse what its filter lets in.
        if (statement.unique && statement.where)
            throw MakeError(40510, statement.position, {"CREATE UNIQUE INDEX … WHERE"});
        KeyInfo key;
        key.name = statement.name.text;
        key.kind = statement.unique ? KeyKind::kUniqueIndex : KeyKind::kIndex;
        for (const KeyInfo& other : table.keys) {
            if (automation::SameName(other.name, key.name)) {
                throw MakeError(1913, statement.position, {key.name, "table", table.FullName()});
            }
        }
        for (const IndexColumn& column : statement.columns) {
            const ColumnInfo* found = table.FindColumn(column.name.text);
            if (found == nullptr) throw MakeError(1911, column.name.position, {column.name.text});
            // Rows that are there would have to be looked through for equal ones by each change.
            if (!found->computedText.empty() && statement.unique)
                throw MakeError(40510, column.name.position,
                                {"a unique index of computed column " + column.name.text});
            key.columns.push_back(found->name);
            key.descending.push_back(column.descending);
        }
        CheckKeyTypes(table, key, statement.position);
        MakeKey(table, key, statement.position);
    });
}

// "(1, x)": what two rows have in common.
std::string Executor::FirstDuplicate(const TableInfo& table, const KeyInfo& key) {
    std::string list;
    for (const std::string& column : key.columns)
        list += (list.empty() ? "" : ", ") + Quoted(table.FindColumn(column)->name);
    PreparedStatement twice = database_.Prepare("SELECT " + list + " FROM " + table.Sql() + " GROUP BY " +
                                                list + " HAVING count(*) > 1 ORDER BY " + list + " LIMIT 1");
    if (!database_.Step(twice)) return "()";
    std::string values;
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const SqlType& type = table.FindColumn(key.columns[i])->type;
        const Value value = ReadColumn(twice.Handle(), static_cast<int>(i), type);
        values += (i == 0 ? "(" : ", ") + KeyText(value, type);
    }
    return values + ")";
}

void Executor::MakeKey(const TableInfo& table, const KeyInfo& key, Position position) {
    // The names, since the catalog is read anew.
    const std::string tableName = table.FullName();
    const std::string keyName = key.name;
    try {
        catalog_.CreateIndex(table, key);
    } catch (const SqlError&) {
        if (database_.LastFailureKind() != FailureKind::kUniqueKey) throw;
        throw MakeError(1505, position, {tableName, keyName, FirstDuplicate(table, key)});
    }
}

}  // namespace vicenter::tsql::engine
