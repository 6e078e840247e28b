#include "tsql/translate/output_columns.h"

#include <algorithm>
#include <functional>

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

using Look = std::function<void(const std::string& qualifier, Position where)>;

void VisitQualifiers(const OutputClause& output, const Look& look) {
    for (const SelectItem& item : output.items) {
        if (!item.expression) {
            if (!item.qualifier.IsEmpty()) look(item.qualifier.Object(), item.position);
            continue;
        }
        VisitAll(*item.expression, [&](const Expr& one) {
            const auto* column = TryAs<ColumnExpr>(&one);
            if (column != nullptr) look(column->name.Schema(), column->position);
        });
    }
}

}  // namespace

bool TellsOfOldRows(const OutputClause& output) {
    bool found = false;
    VisitQualifiers(output, [&](const std::string& qualifier, Position) {
        found = found || SameName(qualifier, "deleted");
    });
    return found;
}

void RefuseColumnsOfFrom(const OutputClause& output, const Scope& scope) {
    VisitQualifiers(output, [&](const std::string& qualifier, Position where) {
        if (qualifier.empty() || SameName(qualifier, "inserted") || SameName(qualifier, "deleted")) return;
        const bool isOfFrom = std::ranges::any_of(
            scope.sources, [&](const Source& source) { return SameName(source.exposedName, qualifier); });
        if (isOfFrom) throw MakeError(40510, where, {"OUTPUT of columns of FROM"});
    });
}

}  // namespace vicenter::tsql::engine
