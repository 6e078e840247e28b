#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <utility>

#include "automation/object.h"
#include "tsql/run/constraint_error.h"
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
    if (statement.currentOf.IsEmpty()) return;
    if (rowCount_ == 0) throw MakeError(16947, statement.position);
    KeepCurrentRow(statement.currentOf, statement.target);
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

namespace {

enum class ShiftResult { kDone, kDuplicate, kCircle };

// Throws what the last step has run into.
using Fail = std::function<void()>;

// A foreign key of the table or to it, and how many rows break it.
struct CountedKey {
    const TableInfo* owner = nullptr;
    const ForeignKeyInfo* key = nullptr;
    std::int64_t broken = 0;
};

std::vector<CountedKey> CountBroken(Database& database, const Catalog& catalog, const TableInfo& table) {
    std::vector<CountedKey> keys;
    for (const TableInfo* owner : catalog.Tables()) {
        for (const ForeignKeyInfo& key : owner->foreignKeys) {
            if (owner != &table && !automation::SameName(key.referencedTable, table.name)) continue;
            std::string given;
            std::string met;
            for (std::size_t i = 0; i < key.columns.size() && i < key.referencedColumns.size(); ++i) {
                const std::string own = "child." + Quoted(key.columns[i]);
                given += (i == 0 ? "" : " AND ") + own + " IS NOT NULL";
                met += (i == 0 ? "" : " AND ") + ("parent." + Quoted(key.referencedColumns[i])) + " = " + own;
            }
            PreparedStatement count =
                database.Prepare("SELECT count(*) FROM " + owner->Sql() + " AS child WHERE " + given +
                                 " AND NOT EXISTS (SELECT 1 FROM main." + Quoted(key.referencedTable) +
                                 " AS parent WHERE " + met + ")");
            keys.push_back({owner, &key, database.Step(count) ? count.Int(0) : 0});
        }
    }
    return keys;
}

// Whether the key that a row is to have is that of another row which has yet to give it up.
bool WaitsForOther(Database& database, const TableInfo& table, const std::vector<ResultColumn>& columns,
                   const std::vector<Value>& row, const std::set<std::int64_t>& waiting) {
    for (const KeyInfo& key : table.keys) {
        if (!key.IsUnique()) continue;
        std::string where;
        std::vector<std::size_t> places;
        for (std::size_t i = 1; i < columns.size(); ++i) {
            const bool isPart = std::any_of(
                key.columns.begin(), key.columns.end(),
                [&](const std::string& name) { return automation::SameName(name, columns[i].name); });
            if (!isPart) continue;
            where += (where.empty() ? "" : " AND ") + Quoted(columns[i].name) + " IS ?";
            places.push_back(i);
        }
        PreparedStatement holder = database.Prepare("SELECT _rowid_ FROM " + table.Sql() + " WHERE " + where);
        for (std::size_t i = 0; i < places.size(); ++i)
            BindValue(holder.Handle(), static_cast<int>(i) + 1, row[places[i]], columns[places[i]].type);
        while (database.Step(holder)) {
            if (holder.Int(0) != row.front().Int() && waiting.contains(holder.Int(0))) return true;
        }
    }
    return false;
}

// Each row is changed where it is, and what refers to it follows, as soon as the key that it gets is free:
// there and back over the rows, so that those that move on by one take two rounds.
ShiftResult ShiftRows(Database& database, const TableInfo& table, const std::vector<ResultColumn>& columns,
                      const std::vector<std::vector<Value>>& rows, const Fail& fail) {
    std::string list;
    for (std::size_t i = 1; i < columns.size(); ++i)
        list += (i == 1 ? "" : ", ") + Quoted(columns[i].name) + " = ?";
    PreparedStatement change =
        database.Prepare("UPDATE " + table.Sql() + " SET " + list + " WHERE _rowid_ = ?");
    std::vector<const std::vector<Value>*> left;
    for (const std::vector<Value>& row : rows)
        left.push_back(&row);
    while (!left.empty()) {
        std::reverse(left.begin(), left.end());
        std::vector<const std::vector<Value>*> kept;
        for (const std::vector<Value>* row : left) {
            const auto count = static_cast<int>(columns.size());
            for (int i = 1; i < count; ++i)
                BindValue(change.Handle(), i, (*row)[static_cast<std::size_t>(i)],
                          columns[static_cast<std::size_t>(i)].type);
            change.Bind(count, row->front().Int());
            const StepResult result = change.Step();
            if (result == StepResult::kFailed && database.LastFailureKind() != FailureKind::kUniqueKey)
                fail();
            if (result == StepResult::kFailed) kept.push_back(row);
            change.Reset();
        }
        if (kept.size() == left.size()) {
            std::set<std::int64_t> waiting;
            for (const std::vector<Value>* row : left)
                waiting.insert(row->front().Int());
            const bool circle = std::any_of(left.begin(), left.end(), [&](const std::vector<Value>* row) {
                return WaitsForOther(database, table, columns, *row, waiting);
            });
            return circle ? ShiftResult::kCircle : ShiftResult::kDuplicate;
        }
        left = std::move(kept);
    }
    return ShiftResult::kDone;
}

ShiftResult ShiftedRows(Database& database, const Catalog& catalog, const TableInfo& table,
                        const Translation& translation, const std::vector<std::vector<Value>>& rows,
                        const Fail& fail) {
    const std::vector<CountedKey> before = CountBroken(database, catalog, table);
    // On the way rows may refer to what is not there any more or not yet.
    database.Run("PRAGMA defer_foreign_keys = ON");
    ShiftResult result = ShiftResult::kDone;
    try {
        result = ShiftRows(database, table, translation.columns, rows, fail);
        const std::vector<CountedKey> after = CountBroken(database, catalog, table);
        for (std::size_t i = 0; result == ShiftResult::kDone && i < after.size(); ++i) {
            if (after[i].broken > before[i].broken)
                throw BrokenKeyError(translation.operation, table, *after[i].owner, *after[i].key);
        }
    } catch (...) {
        database.RunQuietly("PRAGMA defer_foreign_keys = OFF");
        throw;
    }
    database.Run("PRAGMA defer_foreign_keys = OFF");
    return result;
}

}  // namespace

// The rows as they are to be are read, the old ones deleted and the new ones inserted. Rows that others refer
// to cannot be deleted on the way.
bool Executor::RewriteRows(const UpdateStatement& statement, bool temporary) {
    bool possible = false;
    transactions_.Change(temporary, [&] {
        Plan& plan = PlanFor(&statement.assignments,
                             [&](Translator& translator) { return translator.UpdatedRows(statement); });
        const TableInfo& table = *catalog_.FindTable(plan.translation.table);
        possible = true;
        std::vector<std::vector<Value>> rows;
        {
            const ResetAtEnd reset(plan.statement);
            Bind(plan);
            while (StepPlan(plan))
                ReadRow(plan, rows.emplace_back());
        }
        StatementGuard guard(database_, true);
        if (IsReferenced(table)) {
            const ShiftResult result =
                ShiftedRows(database_, catalog_, table, plan.translation, rows, [&] { FailStep(plan); });
            if (result == ShiftResult::kCircle)
                throw MakeError(40510, statement.position,
                                {"UPDATE that exchanges keys that others refer to"});
            possible = result == ShiftResult::kDone;
            if (!possible) return;
            CheckRowLimit(frame_->options.rowCountLimit, static_cast<std::int64_t>(rows.size()));
            guard.Release();
            return CountRows(static_cast<std::int64_t>(rows.size()));
        }
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
