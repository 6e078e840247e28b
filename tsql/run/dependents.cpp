#include "tsql/run/dependents.h"

#include <algorithm>

#include "automation/object.h"
#include "tsql/syntax/lexer.h"

namespace vicenter::tsql::engine {

using automation::SameName;

bool Mentions(const std::string& text, std::string_view name) {
    Lexer lexer(text);
    for (Token token = lexer.Next(); token.kind != TokenKind::kEnd; token = lexer.Next()) {
        const bool isName =
            token.kind == TokenKind::kIdentifier || token.kind == TokenKind::kQuotedIdentifier;
        if (isName && SameName(TokenValue(token), name)) return true;
    }
    return false;
}

const ModuleInfo* BoundView(const Catalog& catalog, ProgramStore& programs, std::string_view name,
                            std::string_view column) {
    for (const ModuleInfo* view : catalog.Views()) {
        const CreateViewStatement* statement = programs.ForView(*view);
        const bool isBound =
            statement != nullptr && std::find(statement->options.begin(), statement->options.end(),
                                              "schemabinding") != statement->options.end();
        if (!isBound || SameName(view->name, name) || !Mentions(view->text, name)) continue;
        if (column.empty() || Mentions(view->text, column)) return view;
    }
    return nullptr;
}

Reference ReferenceTo(const Catalog& catalog, const TableInfo& table, const KeyInfo& key) {
    const auto isOfKey = [&](const std::vector<std::string>& columns) {
        return std::equal(
            columns.begin(), columns.end(), key.columns.begin(), key.columns.end(),
            [](const std::string& one, const std::string& other) { return SameName(one, other); });
    };
    if (table.temporary || !key.IsUnique()) return {};
    for (const KeyInfo& other : table.keys) {
        if (other.IsUnique() && !SameName(other.name, key.name) && isOfKey(other.columns)) return {};
    }
    for (const TableInfo* other : catalog.Tables()) {
        for (const ForeignKeyInfo& foreign : other->foreignKeys) {
            if (SameName(foreign.referencedTable, table.name) && isOfKey(foreign.referencedColumns))
                return {other, &foreign};
        }
    }
    return {};
}

}  // namespace vicenter::tsql::engine
