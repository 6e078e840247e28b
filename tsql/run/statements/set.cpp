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
    SetOptions& options = frame_->options;
    for (const std::string& option : statement.options) {
        if (option == "nocount") {
            options.noCount = statement.on.value_or(false);
        } else if (option == "xact_abort") {
            options.exactAbort = statement.on.value_or(false);
        } else if (option == "rowcount") {
            options.rowCountLimit = statement.value ? EvaluateInt(*statement.value) : 0;
        } else if (option == "lock_timeout") {
            options.lockTimeoutMilliseconds =
                statement.value ? static_cast<int>(EvaluateInt(*statement.value)) : -1;
            database_.SetLockTimeout(options.lockTimeoutMilliseconds);
        } else if (option == "identity_insert") {
            const TableInfo* table = FindTable(statement.table.Object());
            if (table == nullptr) throw MakeError(208, statement.position, {statement.table.Text()});
            if (table->IdentityColumn() == nullptr) throw MakeError(8106, statement.position, {table->name});
            if (!statement.on.value_or(false)) {
                options.identityInsert.clear();
            } else if (!options.identityInsert.empty() &&
                       !automation::SameName(options.identityInsert, table->name)) {
                throw MakeError(8107, statement.position,
                                {"accountset", "dbo", options.identityInsert, table->name});
            } else {
                options.identityInsert = table->name;
            }
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
