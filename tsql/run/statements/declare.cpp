#include "tsql/run/executor.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

// The variables are there already; what runs, each time, is the value that a declaration gives.
void Executor::DeclareVariables(const DeclareStatement& statement) {
    for (const VariableDeclaration& declared : statement.variables) {
        if (!declared.initial) continue;
        Variable& variable = FindVariable(declared.name, declared.position);
        Plan& plan = PlanFor(&declared, [&](Translator& translator) {
            return translator.Assignment(declared.name, variable.type, AssignOp::kSet, *declared.initial);
        });
        const ResetAtEnd reset(plan.statement);
        Bind(plan);
        StepPlan(plan);
        variable.value = ReadColumn(plan.statement.Handle(), 0, variable.type);
    }
}

}  // namespace vicenter::tsql::engine
