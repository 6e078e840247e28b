#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

void Executor::SetVariable(const SetVariableStatement& statement) {
    Variable& variable = FindVariable(statement.name, statement.position);
    if (variable.isCursor) {
        const auto* source = TryAs<VariableExpr>(statement.value.get());
        if (source == nullptr) throw MakeError(16949, statement.position, {statement.name});
        variable.cursor = FindVariable(source->name, source->position).cursor;
        return;
    }
    Plan& plan = PlanFor(&statement, [&](Translator& translator) {
        return translator.Assignment(statement.name, variable.type, statement.op, *statement.value);
    });
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    StepPlan(plan);
    variable.value = ReadColumn(plan.statement.Handle(), 0, variable.type);
    rowCount_ = 1;
}

// Options without a meaning here (isolation levels, ANSI settings, …) are taken without a word.
void Executor::SetOption(const SetOptionStatement& statement) {
    for (const std::string& option : statement.options) {
        if (option == "nocount") {
            noCount_ = statement.on.value_or(false);
        } else if (option == "xact_abort") {
            exactAbort_ = statement.on.value_or(false);
        } else if (option == "rowcount") {
            rowCountLimit_ = statement.value ? EvaluateInt(*statement.value) : 0;
        } else if (option == "lock_timeout") {
            database_.SetLockTimeout(statement.value ? static_cast<int>(EvaluateInt(*statement.value)) : -1);
        } else if (option == "identity_insert") {
            const TableInfo* table = FindTable(statement.table.Object());
            if (table == nullptr) throw MakeError(208, statement.position, {statement.table.Text()});
            if (table->IdentityColumn() == nullptr) throw MakeError(8106, statement.position, {table->name});
            if (!statement.on.value_or(false)) {
                identityInsert_.clear();
            } else if (!identityInsert_.empty() && !automation::SameName(identityInsert_, table->name)) {
                throw MakeError(8107, statement.position,
                                {"accountset", "dbo", identityInsert_, table->name});
            } else {
                identityInsert_ = table->name;
            }
            // Whether a column list may name the identity column is part of a translation.
            frame_->unit->plans.clear();
        } else if (option == "dateformat") {
            // Texts of dates are read with the month before the day, by ymd as by mdy.
            const std::string format =
                statement.value ? LowerAscii(EvaluateText(*statement.value)) : statement.word;
            if (format != "mdy" && format != "ymd")
                throw MakeError(40510, statement.position, {"SET DATEFORMAT " + format});
        } else if (option == "datefirst") {
            constexpr std::int64_t kSunday = 7;
            const std::int64_t day = statement.value ? EvaluateInt(*statement.value) : 0;
            if (day != kSunday)
                throw MakeError(40510, statement.position, {"SET DATEFIRST " + std::to_string(day)});
        }
    }
}

}  // namespace vicenter::tsql::engine
