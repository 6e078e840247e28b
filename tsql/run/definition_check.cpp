#include "tsql/run/definition_check.h"

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/syntax/ast_children.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

void CheckColumn(const DefinitionPlace& place, const ColumnExpr& column) {
    const std::string& name = column.name.Object();
    switch (place.kind) {
        case DefinitionKind::kDefault:
            throw MakeError(128, column.position, {column.name.Text()});
        case DefinitionKind::kComputed: {
            const ColumnInfo* found = place.table->FindColumn(name);
            if (found != nullptr && !found->computedText.empty())
                throw MakeError(1759, column.position, {found->name, place.table->name});
            return;
        }
        case DefinitionKind::kCheck:
            if (!place.column.empty() && !SameName(name, place.column))
                throw MakeError(8141, column.position, {"CHECK", place.column, place.table->name});
            return;
    }
}

void CheckCall(const DefinitionPlace& place, const FunctionExpr& call) {
    if (call.over) throw MakeError(4108, call.position);
    const FunctionEntry* entry = FindFunction(LowerAscii(call.name.Object()));
    if (entry != nullptr && entry->kind == FunctionKind::kAggregate) throw MakeError(175, call.position);
    // The first argument of DATEADD and its kin is no column.
    const std::size_t first = entry != nullptr ? entry->firstValue : 0;
    for (std::size_t i = first; i < call.arguments.size(); ++i)
        CheckDefinition(place, *call.arguments[i]);
}

}  // namespace

void CheckDefinition(const DefinitionPlace& place, const Expr& expression) {
    if (HasQuery(expression)) throw MakeError(1046, expression.position);
    if (const auto* variable = TryAs<VariableExpr>(&expression); variable != nullptr && !variable->IsGlobal())
        throw MakeError(112, expression.position, {place.statement});
    if (const auto* column = TryAs<ColumnExpr>(&expression)) return CheckColumn(place, *column);
    if (const auto* call = TryAs<FunctionExpr>(&expression)) return CheckCall(place, *call);
    ForEachChild(expression, [&](const Expr& child) { CheckDefinition(place, child); });
}

}  // namespace vicenter::tsql::engine
