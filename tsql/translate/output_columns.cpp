#include "tsql/translate/output_columns.h"

#include <functional>

#include "automation/object.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

using Look = std::function<void(const std::string& qualifier)>;

void VisitQualifiers(const OutputClause& output, const Look& look) {
    for (const auto* items : {&output.items, &output.beside}) {
        for (const SelectItem& item : *items) {
            if (!item.expression) {
                look(item.qualifier.IsEmpty() ? std::string() : item.qualifier.Object());
                continue;
            }
            VisitAll(*item.expression, [&](const Expr& one) {
                const auto* column = TryAs<ColumnExpr>(&one);
                if (column != nullptr) look(column->name.Schema());
            });
        }
    }
}

}  // namespace

bool TellsOnlyOf(std::string_view pseudoTable, const OutputClause& output, bool hasFrom) {
    bool only = true;
    VisitQualifiers(output, [&](const std::string& qualifier) {
        only = only && (qualifier.empty() ? !hasFrom : SameName(qualifier, pseudoTable));
    });
    return only;
}

bool MayTellOf(const OutputClause& output, std::string_view source) {
    bool may = false;
    VisitQualifiers(output, [&](const std::string& qualifier) {
        may = may || qualifier.empty() || SameName(qualifier, source);
    });
    return may;
}

}  // namespace vicenter::tsql::engine
