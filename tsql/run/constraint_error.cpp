#include "tsql/run/constraint_error.h"

#include <vector>

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/syntax/lexer.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// "UNIQUE constraint failed: t.a, t.b" names the columns.
std::vector<std::string> FailedColumns(const std::string& text, const std::string& table) {
    std::vector<std::string> columns;
    const std::size_t colon = text.find(": ");
    if (colon == std::string::npos) return columns;
    const std::string prefix = table + ".";
    std::size_t at = colon + 2;
    while (at < text.size()) {
        std::size_t end = text.find(", " + prefix, at);
        if (end == std::string::npos) end = text.size();
        std::string column = text.substr(at, end - at);
        if (column.rfind(prefix, 0) == 0) column.erase(0, prefix.size());
        columns.push_back(std::move(column));
        at = end == text.size() ? end : end + 2;
    }
    return columns;
}

bool SameColumns(const std::vector<std::string>& a, const std::vector<std::string>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!SameName(a[i], b[i])) return false;
    }
    return true;
}

// The only column that the condition names; empty when there are several, or none.
std::string OnlyColumn(const TableInfo& table, const std::string& condition) {
    std::string only;
    Lexer lexer(condition);
    for (Token token = lexer.Next(); token.kind != TokenKind::kEnd; token = lexer.Next()) {
        const bool isName =
            token.kind == TokenKind::kIdentifier || token.kind == TokenKind::kQuotedIdentifier;
        const ColumnInfo* column = isName ? table.FindColumn(TokenValue(token)) : nullptr;
        if (column == nullptr || column->name == only) continue;
        if (!only.empty()) return {};
        only = column->name;
    }
    return only;
}

// A table variable bears a number before its own name.
std::string ShownName(const TableInfo& table) {
    if (table.name.front() != '@') return table.FullName();
    return "dbo." + std::string(NameInText(table.name));
}

}  // namespace

SqlError CheckError(std::string_view operation, const TableInfo& table, std::string_view check) {
    std::string column;
    for (const CheckInfo& entry : table.checks) {
        if (SameName(entry.name, check)) column = OnlyColumn(table, entry.text);
    }
    const bool single = !column.empty();
    return MakeError(547, {},
                     {operation, "CHECK", check, "accountset", ShownName(table), single ? ", column '" : "",
                      column, single ? "'" : ""});
}

SqlError ForeignKeyError(std::string_view operation, const ForeignKeyInfo& key) {
    const bool single = key.referencedColumns.size() == 1;
    return MakeError(
        547, {},
        {operation, "FOREIGN KEY", key.name, "accountset", "dbo." + key.referencedTable,
         single ? ", column '" : "", single ? key.referencedColumns.front() : "", single ? "'" : ""});
}

SqlError BrokenKeyError(std::string_view operation, const TableInfo& changed, const TableInfo& owner,
                        const ForeignKeyInfo& key) {
    const bool isOfItself = SameName(owner.name, key.referencedTable);
    if (SameName(owner.name, changed.name) && operation != "DELETE" && !isOfItself)
        return ForeignKeyError(operation, key);
    const char* kind = !isOfItself             ? "REFERENCE"
                       : operation == "DELETE" ? "SAME TABLE REFERENCE"
                                               : "FOREIGN KEY SAME TABLE";
    const bool refersFrom = !isOfItself || operation == "DELETE";
    const std::vector<std::string>& columns = refersFrom ? key.columns : key.referencedColumns;
    const bool single = columns.size() == 1;
    return MakeError(547, {},
                     {operation, kind, key.name, "accountset", owner.FullName(), single ? ", column '" : "",
                      single ? columns.front() : "", single ? "'" : ""});
}

SqlError ConstraintError(const Catalog& catalog, const FunctionServices& services,
                         const Translation& translation, FailureKind kind, const std::string& text) {
    const TableInfo* table = catalog.FindTable(translation.table);
    const std::string& operation = translation.operation;
    if (table == nullptr) return MakeError(8624, {}, {text});
    if (kind == FailureKind::kUniqueKey) {
        const std::vector<std::string> columns = FailedColumns(text, table->physical);
        for (const KeyInfo& key : table->keys) {
            if (!key.IsUnique()) continue;
            // An index over expressions is named itself: "UNIQUE constraint failed: index 't$UX$null'".
            const bool hit = SameColumns(key.columns, columns) ||
                             text.find("'" + PhysicalNullIndexName(*table, key) + "'") != std::string::npos;
            if (!hit) continue;
            std::string values;
            for (const std::string& column : key.columns) {
                const std::string* value = services.FindKey(table->FindColumn(column)->name);
                // What a row is not given is NULL.
                values += (values.empty() ? "(" : ", ") + (value != nullptr ? *value : std::string("<NULL>"));
            }
            values += ")";
            if (key.kind == KeyKind::kUniqueIndex)
                return MakeError(2601, {}, {ShownName(*table), key.name, values});
            const char* word = key.kind == KeyKind::kPrimary ? "PRIMARY KEY" : "UNIQUE KEY";
            return MakeError(2627, {}, {word, key.name, ShownName(*table), values});
        }
        return MakeError(2601, {}, {table->FullName(), text, "()"});
    }
    if (kind == FailureKind::kCheck) {
        const std::size_t colon = text.find(": ");
        const std::string name = colon == std::string::npos ? text : text.substr(colon + 2);
        return CheckError(operation, *table, name);
    }
    if (kind == FailureKind::kForeignKey) {
        if (operation != "DELETE" && !table->foreignKeys.empty())
            return BrokenKeyError(operation, *table, *table, table->foreignKeys.front());
        for (const TableInfo* other : catalog.Tables()) {
            for (const ForeignKeyInfo& key : other->foreignKeys) {
                if (SameName(key.referencedTable, table->name))
                    return BrokenKeyError(operation, *table, *other, key);
            }
        }
    }
    return MakeError(8624, {}, {text});
}

}  // namespace vicenter::tsql::engine
