// Groups and windows in a query of their own, below the one that lists what becomes of their values: where an
// aggregate stands in a subquery of the list, and where more becomes of a value than SQLite lets nest.

#include <algorithm>

#include "automation/object.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// Where the columns of a stage come, once all are known.
constexpr const char* kColumns = "\x02";

// The scope that a column's name means: the nearest that knows it.
const Scope* ScopeOf(const ColumnExpr& column, const Scope& scope) {
    const std::string& name = column.name.Object();
    const std::string qualifier = column.name.parts.size() > 1 ? column.name.Schema() : std::string();
    for (const Scope* level = &scope; level != nullptr; level = level->outer) {
        for (const Source& source : level->sources) {
            if (!qualifier.empty() && !SameName(source.exposedName, qualifier)) continue;
            const bool known =
                std::any_of(source.columns.begin(), source.columns.end(),
                            [&](const SourceColumn& other) { return SameName(other.name, name); });
            if (known) return level;
        }
    }
    return nullptr;
}

}  // namespace

Operand Translator::Staged(const Scope& scope, Operand operand) {
    if (scope.stage == nullptr || scope.belowStage > 0) return operand;
    Stage& stage = *scope.stage;
    const std::string text = Render(operand);
    const auto known = std::find(stage.values.begin(), stage.values.end(), text);
    const auto number = known - stage.values.begin() + 1;
    if (known == stage.values.end()) stage.values.push_back(text);
    Operand value = Computed(stage.alias + ".k" + std::to_string(number), operand.type);
    value.column = operand.column;
    return value;
}

std::string Translator::OpenStage(const Stage& stage, const std::string& tail) {
    return std::string(" FROM (SELECT ") + kColumns + tail + ") AS " + stage.alias;
}

void Translator::CloseStage(const Stage& stage, SelectParts& parts) {
    std::string list;
    for (std::size_t i = 0; i < stage.values.size(); ++i)
        list += (i == 0 ? "" : ", ") + stage.values[i] + " AS k" + std::to_string(i + 1);
    parts.tail.replace(parts.tail.find(kColumns), 1, list);
}

const Scope& Translator::OwnerOf(const FunctionExpr& call, const Scope& scope) const {
    const Scope* owner = nullptr;
    bool isOwn = false;
    bool isMixed = false;
    for (const ExprPtr& argument : call.arguments) {
        VisitAll(*argument, [&](const Expr& one) {
            const auto* column = TryAs<ColumnExpr>(&one);
            const Scope* level = column != nullptr ? ScopeOf(*column, scope) : nullptr;
            if (level == nullptr) return;
            isOwn = isOwn || level == &scope;
            isMixed = isMixed || (owner != nullptr && owner != level);
            if (owner == nullptr) owner = level;
            // The nearer one of two.
            for (const Scope* outer = level->outer; outer != nullptr; outer = outer->outer) {
                if (outer == owner) owner = level;
            }
        });
    }
    if (isMixed) throw MakeError(8124, call.position);
    return isOwn || owner == nullptr ? scope : *owner;
}

bool Translator::HasOwnAggregate(const Expr& expression, const Scope& scope) const {
    bool found = false;
    VisitAll(expression, [&](const Expr& one) {
        if (!found && IsAggregate(one)) found = &OwnerOf(As<FunctionExpr>(one), scope) == &scope;
    });
    return found;
}

Translator::Names Translator::NamesOf(const Expr& expression, const Scope& scope) {
    Names names;
    VisitAll(expression, [&](const Expr& one) {
        const auto* column = TryAs<ColumnExpr>(&one);
        const Scope* level = column != nullptr ? ScopeOf(*column, scope) : nullptr;
        names.own = names.own || level == &scope;
        names.outside = names.outside || (level != nullptr && level != &scope);
    });
    return names;
}

bool Translator::OrdersByOutside(const Query* orderFrom, const Scope& scope) {
    return orderFrom != nullptr &&
           std::any_of(orderFrom->orderBy.begin(), orderFrom->orderBy.end(),
                       [&](const OrderItem& item) { return NamesOf(*item.expression, scope).outside; });
}

// An aggregate in a subquery is a value of the query around it, which is grouped by it.
Operand Translator::OuterAggregate(const FunctionExpr& call, const Scope& owner) {
    if (!owner.isBehind) throw MakeError(147, call.position);
    if (!ways_.stages || !owner.grouped) {
        if (ways_.groups.contains(owner.select)) throw MakeError(147, call.position);
        Ways ways = ways_;
        ways.stages = true;
        ways.groups.insert(owner.select);
        throw NeedsWays{ways};
    }
    if (owner.stage == nullptr)
        throw MakeError(40510, call.position, {"an aggregate of the query around a subquery"});
    Scope own = owner;
    return Function(call, own);
}

}  // namespace vicenter::tsql::engine
