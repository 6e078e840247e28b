#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "automation/object.h"
#include "tsql/run/executor.h"
#include "tsql/run/row_limit.h"
#include "tsql/run/statement_guard.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

namespace {

bool IsDuplicate(const SqlError& error) {
    return error.Number() == 2627 || error.Number() == 2601;
}

bool TellsRows(const UpdateStatement& statement) {
    if (statement.output) return true;
    for (const Assignment& assignment : statement.assignments) {
        if (!assignment.variable.empty() && !assignment.column.IsEmpty()) return true;
    }
    return false;
}

bool SetsColumns(const UpdateStatement& statement) {
    return std::any_of(statement.assignments.begin(), statement.assignments.end(),
                       [](const Assignment& assignment) { return !assignment.column.IsEmpty(); });
}

bool SetsVariables(const UpdateStatement& statement) {
    return std::any_of(statement.assignments.begin(), statement.assignments.end(),
                       [](const Assignment& assignment) { return assignment.column.IsEmpty(); });
}

}  // namespace

void Executor::Update(const UpdateStatement& statement) {
    const TableInfo* table = FindTable(statement.target.Object());
    const bool temporary = table != nullptr && table->temporary;
    if (!statement.currentOf.IsEmpty()) TakeCurrentRow(statement.currentOf, statement.target);
    if (SetsVariables(statement)) {
        UpdateVariables(statement, temporary);
    } else {
        UpdateColumns(statement, temporary);
    }
    if (!statement.currentOf.IsEmpty() && rowCount_ == 0) throw MakeError(16947, statement.position);
}

void Executor::UpdateColumns(const UpdateStatement& statement, bool temporary) {
    try {
        Modify(
            &statement, temporary, [&](Translator& translator) { return translator.Update(statement); },
            statement.output ? &*statement.output : nullptr);
    } catch (const SqlError& error) {
        // SQLite looks at keys row by row, the server when all rows are changed: FNo = FNo + 1 is no
        // duplicate.
        if (!IsDuplicate(error) || TellsRows(statement) || !RewriteRows(statement, temporary)) throw;
    }
}

// SET @v = e: from the rows as they are before the change, which a SELECT of the same rows finds. The change
// itself sees the variables as they were.
void Executor::UpdateVariables(const UpdateStatement& statement, bool temporary) {
    if (statement.output && !SetsColumns(statement))
        throw MakeError(40510, statement.position, {"OUTPUT of UPDATE … SET @variable = expression"});
    transactions_.Change(temporary, [&] {
        Plan& plan = PlanFor(&statement.assignments.front(),
                             [&](Translator& translator) { return translator.UpdatedVariables(statement); });
        std::set<std::int64_t> rows;
        std::map<Variable*, Value> before;
        std::map<Variable*, Value> behind;
        {
            const ResetAtEnd reset(plan.statement);
            Bind(plan);
            const std::vector<VariableAssignment>& assignments = plan.translation.assignments;
            std::vector<Value> row;
            while (StepPlan(plan)) {
                ReadRow(plan, row);
                rows.insert(row.back().Int());
                for (std::size_t i = 0; i < assignments.size(); ++i) {
                    Variable& variable = FindVariable(assignments[i].variable, statement.position);
                    before.emplace(&variable, variable.value);
                    variable.value = std::move(row[i]);
                }
            }
        }
        for (auto& [variable, value] : before)
            behind[variable] = std::exchange(variable->value, std::move(value));
        if (SetsColumns(statement)) {
            UpdateColumns(statement, temporary);
        } else {
            CountRows(static_cast<std::int64_t>(rows.size()));
        }
        for (auto& [variable, value] : behind)
            variable->value = std::move(value);
    });
}

bool Executor::IsReferenced(const TableInfo& table) const {
    if (table.temporary) return false;
    for (const TableInfo* other : catalog_.Tables()) {
        for (const ForeignKeyInfo& key : other->foreignKeys) {
            if (automation::SameName(key.referencedTable, table.name)) return true;
        }
    }
    return false;
}

// The rows as they are to be are read, the old ones deleted and the new ones inserted. Rows that others refer
// to cannot be deleted on the way.
bool Executor::RewriteRows(const UpdateStatement& statement, bool temporary) {
    bool possible = false;
    transactions_.Change(temporary, [&] {
        Plan& plan = PlanFor(&statement.assignments,
                             [&](Translator& translator) { return translator.UpdatedRows(statement); });
        const TableInfo& table = *catalog_.FindTable(plan.translation.table);
        if (IsReferenced(table)) return;
        possible = true;
        std::vector<std::vector<Value>> rows;
        {
            const ResetAtEnd reset(plan.statement);
            Bind(plan);
            while (StepPlan(plan))
                ReadRow(plan, rows.emplace_back());
        }
        StatementGuard guard(database_, true);
        PreparedStatement remove = database_.Prepare("DELETE FROM " + table.Sql() + " WHERE _rowid_ = ?1");
        for (const std::vector<Value>& row : rows) {
            remove.Bind(1, row.front().Int());
            database_.Step(remove);
            remove.Reset();
        }
        const std::vector<ResultColumn>& columns = plan.translation.columns;
        // A key of one integer is the number of the row itself.
        const bool named = std::any_of(columns.begin() + 1, columns.end(), [&](const ResultColumn& column) {
            return table.IsRowNumber(column.name);
        });
        const std::size_t first = named ? 1 : 0;
        std::string list;
        std::string marks;
        for (std::size_t i = first; i < columns.size(); ++i) {
            list += (i == first ? "" : ", ") + Quoted(columns[i].name);
            marks += i == first ? "?" : ", ?";
        }
        PreparedStatement add =
            database_.Prepare("INSERT INTO " + table.Sql() + "(" + list + ") VALUES (" + marks + ")");
        for (const std::vector<Value>& row : rows) {
            for (std::size_t i = first; i < columns.size(); ++i) {
                const ResultColumn& column = columns[i];
                if (table.IsInUniqueKey(column.name))
                    services_.RememberKey(column.name, KeyText(row[i], column.type));
                BindValue(add.Handle(), static_cast<int>(i - first) + 1, row[i], column.type);
            }
            if (add.Step() == StepResult::kFailed) FailStep(plan);
            add.Reset();
        }
        CheckRowLimit(frame_->options.rowCountLimit, static_cast<std::int64_t>(rows.size()));
        guard.Release();
        CountRows(static_cast<std::int64_t>(rows.size()));
    });
    return possible;
}

}  // namespace vicenter::tsql::engine
