#include "automation/object.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

void Executor::CreateIndex(const CreateIndexStatement& statement) {
    const bool temporary = statement.table.Object().front() == '#';
    transactions_.Change(temporary, [&] {
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
            key.columns.push_back(found->name);
            key.descending.push_back(column.descending);
        }
        MakeKey(table, key, statement.position);
    });
}

void Executor::MakeKey(const TableInfo& table, const KeyInfo& key, Position position) {
    // The names, since the catalog is read anew.
    const std::string tableName = table.FullName();
    const std::string keyName = key.name;
    try {
        catalog_.CreateIndex(table, key);
    } catch (const SqlError&) {
        if (database_.LastFailureKind() != FailureKind::kUniqueKey) throw;
        throw MakeError(1505, position, {tableName, keyName, "()"});
    }
}

}  // namespace vicenter::tsql::engine
