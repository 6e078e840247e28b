// What INSERT, UPDATE and DELETE share: the change itself, its atomicity and its counts.

#include <algorithm>

#include "automation/object.h"
#include "tsql/run/executor.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

namespace {

// Undoes what a failed statement has done so far. SQLite does so itself only where it expects a failure, and
// a function that fails is none.
class StatementGuard {
  public:
    StatementGuard(Database& database, bool needed) : database_(database), open_(needed) {
        if (open_) database_.Run("SAVEPOINT ts_statement");
    }
    StatementGuard(const StatementGuard&) = delete;
    StatementGuard& operator=(const StatementGuard&) = delete;
    ~StatementGuard() {
        if (!open_ || !database_.InTransaction()) return;
        database_.RunQuietly("ROLLBACK TO ts_statement; RELEASE ts_statement");
    }
    void Release() {
        if (open_) database_.Run("RELEASE ts_statement");
        open_ = false;
    }

  private:
    Database& database_;
    bool open_;
};

}  // namespace

void Executor::RunModification(Plan& plan, std::vector<std::vector<Value>>* output) {
    const Translation& translation = plan.translation;
    const TableInfo* table = translation.table.empty() ? nullptr : catalog_.FindTable(translation.table);
    const bool identity = translation.usesIdentity && table != nullptr;
    if (identity) {
        nextIdentity_ = catalog_.LastIdentity(*table);
        identityStep_ = table->IdentityColumn()->increment;
    }
    // Where a failure ends the batch and undoes all of it, no statement needs undoing by itself.
    const bool survivable = tryDepth_ > 0 || !options_.batchTransactions;
    StatementGuard guard(database_, !translation.oneRow && survivable && database_.InTransaction());
    std::int64_t changed = 0;
    {
        const ResetAtEnd reset(plan.statement);
        Bind(plan);
        std::vector<Value> row;
        while (StepPlan(plan)) {
            ReadRow(plan, row);
            for (std::size_t i = 0; i < translation.assignments.size(); ++i) {
                FindVariable(translation.assignments[i].variable, {}).value = row[i];
            }
            if (output != nullptr) output->push_back(row);
        }
        changed = database_.Changes();
    }
    if (identity) {
        catalog_.SetLastIdentity(*table, nextIdentity_);
        identity_ = Value(nextIdentity_);
        frame_->scopeIdentity = identity_;
    } else if (translation.givesIdentity && table != nullptr) {
        // Given values move the counter on.
        PreparedStatement highest = database_.Prepare("SELECT max(" + Quoted(table->IdentityColumn()->name) +
                                                      ") FROM " + table->Sql());
        if (database_.Step(highest) && !highest.IsNull(0)) {
            const std::int64_t last = highest.Int(0);
            highest.Reset();
            if (last > catalog_.LastIdentity(*table)) catalog_.SetLastIdentity(*table, last);
            identity_ = Value(last);
            frame_->scopeIdentity = identity_;
        }
    }
    guard.Release();
    rowCount_ = changed;
    if (!frame_->options.noCount) {
        report_->rowsAffected = (report_->rowsAffected < 0 ? 0 : report_->rowsAffected) + changed;
    }
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
        guard.Release();
        rowCount_ = static_cast<std::int64_t>(rows.size());
        if (!frame_->options.noCount)
            report_->rowsAffected = (report_->rowsAffected < 0 ? 0 : report_->rowsAffected) + rowCount_;
    });
    return possible;
}

void Executor::Modify(const void* key, bool temporary, const Make& make, const OutputClause* output) {
    std::vector<std::vector<Value>> rows;
    std::vector<ResultColumn> columns;
    transactions_.Change(temporary, [&] {
        Plan& plan = PlanFor(key, make);
        RunModification(plan, output != nullptr ? &rows : nullptr);
        columns = plan.translation.columns;
        if (output != nullptr && !output->into.IsEmpty()) {
            const std::int64_t changed = rowCount_;
            const std::int64_t affected = report_->rowsAffected;
            std::vector<SqlType> types;
            types.reserve(columns.size());
            for (const ResultColumn& column : columns)
                types.push_back(column.type);
            InsertRows(output, output->into, output->columns, types, rows);
            rowCount_ = changed;
            report_->rowsAffected = affected;
        }
    });
    if (output == nullptr || !output->into.IsEmpty()) return;
    sink_->BeginResult(columns);
    for (std::vector<Value>& row : rows)
        sink_->AddRow(row);
}

// The rows are here already, so that what gave them may have read the table. Each takes its identity value by
// itself: the counter is kept in the account set, not by the statement.
void Executor::InsertRows(const void* key, const ObjectName& name, const std::vector<Name>& columns,
                          const std::vector<SqlType>& types, std::vector<std::vector<Value>>& rows) {
    const TableInfo* table = FindTable(name.Object());
    if (table == nullptr) throw MakeError(208, name.Where(), {name.Text()});
    Plan& plan =
        PlanFor(key, [&](Translator& translator) { return translator.InsertRow(*table, columns, types); });
    std::int64_t count = 0;
    for (const std::vector<Value>& row : rows) {
        const ResetAtEnd reset(plan.statement);
        if (plan.translation.usesIdentity) {
            nextIdentity_ = catalog_.LastIdentity(*table);
            identityStep_ = table->IdentityColumn()->increment;
        }
        Bind(plan, &row);
        while (StepPlan(plan)) {
        }
        if (plan.translation.usesIdentity) {
            catalog_.SetLastIdentity(*table, nextIdentity_);
            identity_ = Value(nextIdentity_);
            frame_->scopeIdentity = identity_;
        }
        ++count;
    }
    rowCount_ = count;
    if (!frame_->options.noCount)
        report_->rowsAffected = (report_->rowsAffected < 0 ? 0 : report_->rowsAffected) + count;
}

}  // namespace vicenter::tsql::engine
