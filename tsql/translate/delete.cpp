// DELETE.

#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

constexpr const char* kDelete = "DELETE";

}  // namespace

Translation Translator::Delete(const DeleteStatement& statement) {
    if (!statement.currentOf.IsEmpty()) throw MakeError(40510, statement.position, {"WHERE CURRENT OF"});
    AddCommonTables(statement.with);
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
            limit = " LIMIT " + RowCount(*statement.top->count, none, RowLimit::kTop);
        }
        sql += " WHERE _rowid_ IN (SELECT " + alias + "._rowid_" + from + where + limit + ")";
    } else {
        sql += " AS " + alias + where;
    }
    if (statement.output) sql += Output(*statement.output, table, "deleted");
    return Finished(std::move(sql));
}

}  // namespace vicenter::tsql::engine
