// DELETE.

#include "tsql/translate/output_columns.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

constexpr const char* kDelete = "DELETE";

}  // namespace

Translation Translator::Delete(const DeleteStatement& statement) {
    AddCommonTables(statement.with);
    Scope scope;
    std::string from;
    const Source& target = ChangedSource(statement.target, statement.from, statement.position, scope, from);
    const bool joined = !statement.from.empty() || changed_.table != nullptr;
    const TableInfo& table = *target.table;
    const std::string alias = target.alias;
    Begin(table, kDelete);
    std::string condition = statement.where ? ConditionText(*statement.where, scope) : std::string();
    if (!statement.currentOf.IsEmpty()) condition = CurrentRow(statement.currentOf, alias);
    std::string where = Where(condition);
    std::string sql = "DELETE FROM " + table.Sql();
    if (joined || statement.top) {
        std::string limit;
        if (statement.top) {
            if (statement.top->percent) throw MakeError(40510, statement.position, {"DELETE TOP … PERCENT"});
            Scope none;
            limit = " LIMIT " + RowCount(*statement.top->count, none, RowLimit::kTop);
        }
        sql += " WHERE _rowid_ IN (SELECT " + alias + "._rowid_" + from + where + limit + ")";
    } else {
        sql += " AS " + alias + where;
    }
    if (statement.output) {
        CheckOutputBehind(*statement.output);
        RefuseColumnsOfFrom(*statement.output, scope);
    }
    if (statement.output) sql += Output(*statement.output, table, "deleted");
    return Finished(sql);
}

}  // namespace vicenter::tsql::engine
