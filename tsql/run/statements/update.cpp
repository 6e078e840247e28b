#include <algorithm>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "automation/object.h"
#include "tsql/run/constraint_error.h"
#include "tsql/run/deferred_keys.h"
#include "tsql/run/executor.h"
#include "tsql/run/row_limit.h"
#include "tsql/run/statement_guard.h"
#include "tsql/sqlite/stored_value.h"
#include "tsql/translate/output_columns.h"

namespace vicenter::tsql::engine {

namespace {

bool IsDuplicate(const SqlError& error) {
    return error.Number() == 2627 || error.Number() == 2601;
}

bool SetsColumns(const UpdateStatement& statement) {
    return std::any_of(statement.assignments.begin(), statement.assignments.end(),
                       [](const Assignment& assignment) { return !assignment.column.IsEmpty(); });
}

bool SetsVariables(const UpdateStatement& statement) {
    return std::any_of(statement.assignments.begin(), statement.assignments.end(),
                       [](const Assignment& assignment) { return !assignment.variable.empty(); });
}

}  // namespace

void Executor::Update(const UpdateStatement& statement) {
    const TableInfo* table = FindTable(statement.target.Object());
    const bool temporary = table != nullptr && table->temporary;
    if (!statement.currentOf.IsEmpty()) {
        TakeCurrentRow(statement.currentOf, statement.target);
        CheckUpdateColumns(statement);
    }
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
    // SQLite gives back what a row has become, not what it was, and nothing of other tables.
    if (statement.output && !TellsOnlyOf("inserted", *statement.output, !statement.from.empty()))
        return RewriteRows(statement, temporary, false);
    // Whether the rows are the view's own is asked by their numbers.
    const bool isOther = FindTable(statement.target.Object()) == nullptr;
    if (isOther && !PlanFor(&statement, [&](Translator& translator) {
                        return translator.Update(statement);
                    }).translation.checkedView.empty())
        return RewriteRows(statement, temporary, false);
    try {
        Modify(
            &statement, temporary, [&](Translator& translator) { return translator.Update(statement); },
            statement.output ? &*statement.output : nullptr);
    } catch (const SqlError& error) {
        // SQLite looks at keys row by row, the server when all rows are changed: FNo = FNo + 1 is no
        // duplicate.
        if (!IsDuplicate(error)) throw;
        RewriteRows(statement, temporary, true);
    }
}

// SET @v = e: from the rows as they are before the change, which a SELECT of the same rows finds. The change
// itself sees the variables as they were, or, where columns take what the variables are in their row, has the
// values of that SELECT.
void Executor::UpdateVariables(const UpdateStatement& statement, bool temporary) {
    const bool rowByRow = Translator::ChangesRowByRow(statement.assignments);
    if (statement.output && (rowByRow || !SetsColumns(statement)))
        throw MakeError(40510, statement.position, {"OUTPUT of UPDATE … SET @variable = expression"});
    transactions_.Change(temporary, [&] {
        Plan& plan = PlanFor(&statement.assignments.front(),
                             [&](Translator& translator) { return translator.UpdatedVariables(statement); });
        const std::vector<ResultColumn>& columns = plan.translation.columns;
        const auto number = static_cast<std::size_t>(
            std::find_if(columns.begin(), columns.end(),
                         [](const ResultColumn& column) { return !column.name.empty(); }) -
            columns.begin());
        std::set<std::int64_t> numbers;
        std::vector<std::vector<Value>> rows;
        std::map<Variable*, Value> before;
        std::map<Variable*, Value> behind;
        {
            const ResetAtEnd reset(plan.statement);
            Bind(plan);
            std::vector<Value> row;
            while (StepPlan(plan)) {
                ReadRow(plan, row);
                for (const VariableAssignment& assignment : plan.translation.assignments) {
                    Variable& variable = FindVariable(assignment.variable, statement.position);
                    before.emplace(&variable, variable.value);
                    variable.value = Convert(row[assignment.place], columns[assignment.place].type,
                                             variable.type, 0, frame_->options.dateFormat);
                }
                // A row that FROM finds twice is changed once.
                if (numbers.insert(row[number].Int()).second && rowByRow)
                    rows.emplace_back(row.begin() + static_cast<std::ptrdiff_t>(number), row.end());
            }
        }
        for (auto& [variable, value] : before)
            behind[variable] = std::exchange(variable->value, std::move(value));
        if (rowByRow) {
            const std::string& view = plan.translation.checkedView;
            StatementGuard guard(database_, !view.empty() && OutlivesFailure());
            const std::vector<std::int64_t> changed =
                ChangeRows(plan, {columns.begin() + static_cast<std::ptrdiff_t>(number), columns.end()}, rows,
                           false, statement.position);
            if (!view.empty()) CheckView(view, changed);
            guard.Release();
        } else if (SetsColumns(statement)) {
            UpdateColumns(statement, temporary);
        } else {
            CountRows(static_cast<std::int64_t>(numbers.size()));
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

enum class ShiftResult { kDone, kCircle };

// Throws what the last step has run into.
using Fail = std::function<void()>;
// Hears of the row that is written next, whose keys a failure may have to name.
using Tell = std::function<void(const std::vector<Value>&)>;

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

// Writes rows in the place where they are.
class RowWriter {
  public:
    RowWriter(Database& database, const TableInfo& table, const std::vector<ResultColumn>& columns)
        : columns_(columns) {
        std::string list;
        for (std::size_t i = 1; i < columns.size(); ++i)
            list += (i == 1 ? "" : ", ") + Quoted(columns[i].name) + " = ?";
        change_ = database.Prepare("UPDATE " + table.Sql() + " SET " + list + " WHERE _rowid_ = ?");
    }
    StepResult Put(const std::vector<Value>& row) {
        change_.Reset();
        const auto count = static_cast<int>(columns_.size());
        for (int i = 1; i < count; ++i) {
            const auto at = static_cast<std::size_t>(i);
            BindValue(change_.Handle(), i, row[at], columns_[at].type);
        }
        change_.Bind(count, row.front().Int());
        return change_.Step();
    }
    void Reset() { change_.Reset(); }

  private:
    const std::vector<ResultColumn>& columns_;
    PreparedStatement change_;
};

// False when a key is another row's.
bool PutInPlace(Database& database, const TableInfo& table, const std::vector<ResultColumn>& columns,
                const std::vector<std::vector<Value>>& rows, const Fail& fail) {
    RowWriter writer(database, table, columns);
    for (const std::vector<Value>& row : rows) {
        if (writer.Put(row) != StepResult::kFailed) continue;
        if (database.LastFailureKind() == FailureKind::kUniqueKey) return false;
        fail();
    }
    return true;
}

// A key of one integer that has changed is another number of the row.
std::vector<std::int64_t> NumbersInPlace(const TableInfo& table, const std::vector<ResultColumn>& columns,
                                         const std::vector<std::vector<Value>>& rows) {
    const auto key = std::find_if(columns.begin() + 1, columns.end(),
                                  [&](const ResultColumn& column) { return table.IsRowNumber(column.name); });
    const std::size_t place = key == columns.end() ? 0 : static_cast<std::size_t>(key - columns.begin());
    std::vector<std::int64_t> numbers;
    numbers.reserve(rows.size());
    for (const std::vector<Value>& row : rows)
        numbers.push_back(row[place].Int());
    return numbers;
}

// A row of a circle gives up its key: a column of it gets, until its own value is free, one that no row has,
// and what refers to it follows there. The number of the row is one more than all, anything else bytes, which
// no key holds. The number of the row then; nothing where it cannot be.
std::optional<std::int64_t> PutAside(Database& database, const TableInfo& table, std::int64_t row) {
    std::int64_t number = row;
    for (const KeyInfo& key : table.keys) {
        if (!key.IsUnique()) continue;
        const std::string& name = key.columns.front();
        const bool isNumber = key.columns.size() == 1 && table.IsRowNumber(name);
        PreparedStatement most = database.Prepare("SELECT max(_rowid_) FROM " + table.Sql());
        const std::int64_t last = database.Step(most) ? most.Int(0) : 0;
        most.Reset();
        if (isNumber && last == std::numeric_limits<std::int64_t>::max()) return std::nullopt;
        PreparedStatement change =
            database.Prepare("UPDATE " + table.Sql() + " SET " + Quoted(name) +
                             (isNumber ? " = ?1" : " = CAST('ts$' || ?1 AS BLOB)") + " WHERE _rowid_ = ?2");
        change.Bind(1, isNumber ? last + 1 : number);
        change.Bind(2, number);
        if (change.Step() == StepResult::kFailed) return std::nullopt;
        if (isNumber) number = last + 1;
    }
    return number;
}

// Conditions hold when all rows have got their keys.
class WithoutChecks {
  public:
    explicit WithoutChecks(Database& database) : database_(database) {
        database_.Run("PRAGMA ignore_check_constraints = ON");
    }
    WithoutChecks(const WithoutChecks&) = delete;
    WithoutChecks& operator=(const WithoutChecks&) = delete;
    ~WithoutChecks() { database_.RunQuietly("PRAGMA ignore_check_constraints = OFF"); }

  private:
    Database& database_;
};

// Each row is changed where it is, and what refers to it follows, as soon as the key that it gets is free:
// there and back over the rows, so that those that move on by one take two rounds.
ShiftResult ShiftRows(Database& database, const TableInfo& table, const std::vector<ResultColumn>& columns,
                      const std::vector<std::vector<Value>>& rows, const Tell& tell, const Fail& fail) {
    RowWriter writer(database, table, columns);
    std::vector<const std::vector<Value>*> left;
    left.reserve(rows.size());
    for (const std::vector<Value>& row : rows)
        left.push_back(&row);
    std::deque<std::vector<Value>> aside;
    while (!left.empty()) {
        std::reverse(left.begin(), left.end());
        std::vector<const std::vector<Value>*> kept;
        for (const std::vector<Value>* row : left) {
            const StepResult result = writer.Put(*row);
            if (result == StepResult::kFailed && database.LastFailureKind() != FailureKind::kUniqueKey)
                fail();
            if (result == StepResult::kFailed) kept.push_back(row);
        }
        writer.Reset();
        if (kept.size() == left.size()) {
            std::set<std::int64_t> waiting;
            for (const std::vector<Value>* row : left)
                waiting.insert(row->front().Int());
            const auto waits = std::find_if(left.begin(), left.end(), [&](const std::vector<Value>* row) {
                return WaitsForOther(database, table, columns, *row, waiting);
            });
            if (waits != left.end()) {
                const auto isAside = [&](const std::vector<Value>& row) { return &row == *waits; };
                if (std::any_of(aside.begin(), aside.end(), isAside)) return ShiftResult::kCircle;
                const WithoutChecks anyValue(database);
                const auto number = PutAside(database, table, (*waits)->front().Int());
                if (!number) return ShiftResult::kCircle;
                aside.push_back(**waits);
                aside.back().front() = Value(*number);
                *waits = &aside.back();
                continue;
            }
            tell(*left.front());
            writer.Put(*left.front());
            fail();
        }
        left = std::move(kept);
    }
    return ShiftResult::kDone;
}

}  // namespace

// The rows as they are and as they are to be are read before the first of them is changed. What OUTPUT tells
// of them is worked out when all are.
void Executor::RewriteRows(const UpdateStatement& statement, bool temporary, bool collides) {
    const OutputClause* output = statement.output ? &*statement.output : nullptr;
    Changing(temporary, output, [&](Told& told) {
        Plan& plan = PlanFor(&statement.assignments,
                             [&](Translator& translator) { return translator.UpdatedRows(statement); });
        const Translation& translation = plan.translation;
        const TableInfo& table = *catalog_.FindTable(translation.table);
        const std::size_t stored = translation.columns.size() - translation.ToldColumns();
        std::vector<std::vector<Value>> rows;
        std::vector<ChangedRow> changed;
        {
            const ResetAtEnd reset(plan.statement);
            Bind(plan);
            while (StepPlan(plan)) {
                std::vector<Value>& row = rows.emplace_back();
                ReadRow(plan, row);
                if (output == nullptr) continue;
                const auto beside = row.begin() + static_cast<std::ptrdiff_t>(stored);
                changed.emplace_back().beside.assign(beside, row.end());
                row.erase(beside, row.end());
            }
        }
        for (std::size_t i = 0; i < changed.size(); ++i)
            changed[i].deleted = WholeRow(*output, table, rows[i].front().Int());
        const std::vector<ResultColumn> columns(
            translation.columns.begin(), translation.columns.begin() + static_cast<std::ptrdiff_t>(stored));
        const bool isChecked = !translation.checkedView.empty();
        StatementGuard guard(database_, isChecked && OutlivesFailure());
        const std::vector<std::int64_t> numbers =
            ChangeRows(plan, columns, rows, collides, statement.position);
        if (isChecked) CheckView(translation.checkedView, numbers);
        guard.Release();
        if (output == nullptr) return;
        for (std::size_t i = 0; i < changed.size(); ++i)
            changed[i].inserted = WholeRow(*output, table, numbers[i]);
        TellRows(*output, table, translation.told, changed, false, told);
    });
}

// Each row is its number and all columns that are stored. Where keys collide on the way they may do so when
// all rows are changed, or not.
std::vector<std::int64_t> Executor::ChangeRows(const Plan& plan, const std::vector<ResultColumn>& columns,
                                               const std::vector<std::vector<Value>>& rows, bool collides,
                                               Position where, bool areDeferred) {
    const TableInfo& table = *catalog_.FindTable(plan.translation.table);
    const Tell tell = [&](const std::vector<Value>& row) {
        for (std::size_t i = 1; i < columns.size(); ++i) {
            if (table.IsInUniqueKey(columns[i].name))
                services_.RememberKey(columns[i].name, KeyText(row[i], columns[i].type));
        }
    };
    const Fail fail = [&] { FailStep(plan); };
    const auto count = static_cast<std::int64_t>(rows.size());
    const auto change = [&](const std::function<bool()>& work) {
        StatementGuard guard(database_, true);
        if (!work()) return false;
        CheckRowLimit(frame_->options.rowCountLimit, count);
        guard.Release();
        CountRows(count);
        return true;
    };
    if (IsReferenced(table)) {
        // Rows that others refer to cannot be deleted on the way.
        const bool done = change([&] {
            std::optional<DeferredKeys> keys;
            if (!areDeferred) keys.emplace(database_, catalog_, table, plan.translation.operation);
            if (ShiftRows(database_, table, columns, rows, tell, fail) == ShiftResult::kCircle) return false;
            if (keys) keys->Check();
            return true;
        });
        if (!done) throw MakeError(40510, where, {"UPDATE that exchanges keys that others refer to"});
        return NumbersInPlace(table, columns, rows);
    }
    if (!collides && change([&] { return PutInPlace(database_, table, columns, rows, fail); }))
        return NumbersInPlace(table, columns, rows);
    std::vector<std::int64_t> numbers;
    change([&] {
        numbers = PutAnew(plan, columns, rows, tell);
        return true;
    });
    return numbers;
}

// The old rows are deleted and the new ones inserted.
std::vector<std::int64_t> Executor::PutAnew(const Plan& plan, const std::vector<ResultColumn>& columns,
                                            const std::vector<std::vector<Value>>& rows, const Tell& tell) {
    const TableInfo& table = *catalog_.FindTable(plan.translation.table);
    PreparedStatement remove = database_.Prepare("DELETE FROM " + table.Sql() + " WHERE _rowid_ = ?1");
    for (const std::vector<Value>& row : rows) {
        remove.Bind(1, row.front().Int());
        database_.Step(remove);
        remove.Reset();
    }
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
    std::vector<std::int64_t> numbers;
    for (const std::vector<Value>& row : rows) {
        tell(row);
        for (std::size_t i = first; i < columns.size(); ++i)
            BindValue(add.Handle(), static_cast<int>(i - first) + 1, row[i], columns[i].type);
        if (add.Step() == StepResult::kFailed) FailStep(plan);
        add.Reset();
        numbers.push_back(database_.LastRowNumber());
    }
    return numbers;
}

}  // namespace vicenter::tsql::engine
