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

}  // namespace vicenter::tsql::engine
