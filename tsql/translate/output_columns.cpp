#include "tsql/translate/output_columns.h"

#include "automation/object.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

void VisitTold(const OutputClause& output, const LookAtTold& look) {
    for (const auto* items : {&output.items, &output.beside}) {
        for (const SelectItem& item : *items) {
            if (!item.expression) {
                look(item.qualifier.IsEmpty() ? std::string() : item.qualifier.Object(), {}, item.position);
                continue;
            }
            VisitAll(*item.expression, [&](const Expr& one) {
                const auto* column = TryAs<ColumnExpr>(&one);
                if (column != nullptr) look(column->name.Schema(), column->name.Object(), column->position);
            });
        }
    }
}

bool TellsOnlyOf(std::string_view pseudoTable, const OutputClause& output, bool hasFrom) {
    bool only = true;
    VisitTold(output, [&](const std::string& qualifier, const std::string&, Position) {
        only = only && (qualifier.empty() ? !hasFrom : SameName(qualifier, pseudoTable));
    });
    return only;
}

bool MayTellOf(const OutputClause& output, std::string_view source) {
    bool may = false;
    VisitTold(output, [&](const std::string& qualifier, const std::string&, Position) {
        may = may || qualifier.empty() || SameName(qualifier, source);
    });
    return may;
}

}  // namespace vicenter::tsql::engine
