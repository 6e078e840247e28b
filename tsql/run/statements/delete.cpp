#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

void Executor::Delete(const DeleteStatement& statement) {
    const TableInfo* table = FindTable(statement.target.Object());
    if (!statement.currentOf.IsEmpty()) TakeCurrentRow(statement.currentOf, statement.target);
    Modify(
        &statement, table != nullptr && table->temporary,
        [&](Translator& translator) { return translator.Delete(statement); },
        statement.output ? &*statement.output : nullptr);
    if (!statement.currentOf.IsEmpty() && rowCount_ == 0) throw MakeError(16947, statement.position);
}

void Executor::Truncate(const TruncateStatement& statement) {
    const TableInfo* known = FindTable(statement.table.Object());
    transactions_.Change(known != nullptr && known->temporary, [&] {
        // The change may have read the catalog anew.
        const TableInfo* table = FindTable(statement.table.Object());
        if (table == nullptr) throw MakeError(4701, statement.table.Where(), {statement.table.Object()});
        for (const TableInfo* other : catalog_.Tables()) {
            for (const ForeignKeyInfo& key : other->foreignKeys) {
                if (catalog_.FindTable(key.referencedTable) == table && other != table) {
                    throw MakeError(4712, statement.table.Where(), {table->name});
                }
            }
        }
        database_.Run("DELETE FROM " + table->Sql());
        if (const ColumnInfo* identity = table->IdentityColumn()) {
            catalog_.SetLastIdentity(*table, identity->seed - identity->increment);
        }
    });
    rowCount_ = 0;
}

}  // namespace vicenter::tsql::engine
