// DELETE.

#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

constexpr const char* kDelete = "DELETE";

}  // namespace

struct Translator::DeleteParts {
    Scope scope;
    std::string from;
    std::string tail;  // from WHERE on
    const TableInfo* table = nullptr;
    std::string alias;
    std::string exposed;  // the name of the target in FROM
    bool joined = false;
    std::string limit;
};

Translator::DeleteParts Translator::PartsOf(const DeleteStatement& statement) {
    AddCommonTables(statement.with);
    DeleteParts parts;
    const Source& target =
        ChangedSource(statement.target, statement.from, statement.position, parts.scope, parts.from);
    parts.joined = !statement.from.empty() || changed_.table != nullptr;
    parts.table = target.table;
    parts.alias = target.alias;
    parts.exposed = target.exposedName;
    Begin(*parts.table, kDelete);
    std::string condition = statement.where ? ConditionText(*statement.where, parts.scope) : std::string();
    if (!statement.currentOf.IsEmpty()) condition = CurrentRow(statement.currentOf, parts.alias);
    parts.tail = Where(condition);
    if (statement.top) parts.limit = ChangeLimit(*statement.top, parts.from + parts.tail, parts.alias);
    return parts;
}

Translation Translator::Delete(const DeleteStatement& statement) {
    const DeleteParts parts = PartsOf(statement);
    std::string sql = "DELETE FROM " + parts.table->Sql();
    if (parts.joined || statement.top) {
        sql += " WHERE _rowid_ IN (SELECT " + parts.alias + "._rowid_" + parts.from + parts.tail +
               parts.limit + ")";
    } else {
        sql += " AS " + parts.alias + parts.tail;
    }
    if (statement.output) sql += Output(*statement.output, *parts.table, "deleted");
    return Finished(sql);
}

Translation Translator::DeletedRows(const DeleteStatement& statement) {
    const DeleteParts parts = PartsOf(statement);
    translation_.columns.push_back({"_rowid_", SqlType::Of(TypeKind::kBigInt)});
    std::string list = parts.alias + "._rowid_";
    if (statement.output) {
        CheckOutputBehind(*statement.output);
        list += ToldColumns(*statement.output, parts.scope, parts.exposed);
    }
    // A row that FROM finds twice is deleted once.
    return Finished("SELECT " + list + parts.from + parts.tail + " GROUP BY " + parts.alias + "._rowid_" +
                    parts.limit);
}

Translation Translator::DeleteByNumber(const TableInfo& table) {
    Begin(table, kDelete);
    Operand numbers = System("", SqlType::NVarChar(kMaxLength));
    numbers.pending->source = Parameter::Source::kRow;
    numbers.pending->ordinal = 0;
    return Finished("DELETE FROM " + table.Sql() + " WHERE _rowid_ IN (SELECT value FROM json_each(" +
                    Render(numbers) + "))");
}

}  // namespace vicenter::tsql::engine
