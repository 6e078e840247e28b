#include <set>

#include "automation/object.h"
#include "tsql/run/executor.h"
#include "tsql/run/row_limit.h"
#include "tsql/run/statement_guard.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

// All rows are known, with the values that they get, before the first of them is changed: rows to be deleted
// go first, with them those whose keys change, which are then put anew among the others, unless others refer
// to them.
void Executor::Merge(const MergeStatement& statement) {
    const TableInfo* named = FindTable(statement.target.Object());
    transactions_.Change(named != nullptr && named->temporary, [&] {
        MergeChanges changes;
        Plan& joined =
            PlanFor(&statement, [&](Translator& translator) { return translator.MergeRows(statement); });
        changes.table = catalog_.FindTable(joined.translation.table);
        CheckMergeable(*changes.table, statement);
        if (joined.translation.FillsIdentity()) StartIdentity(*changes.table);
        CollectMerge(joined, changes);
        bool looksForMissed = false;
        for (const MergeClause& clause : statement.clauses)
            looksForMissed = looksForMissed || clause.match == MergeMatch::kNotMatchedBySource;
        if (looksForMissed) {
            Plan& missed = PlanFor(&statement.clauses,
                                   [&](Translator& translator) { return translator.MissedRows(statement); });
            CollectMerge(missed, changes);
        }
        StatementGuard guard(database_, true);
        ApplyMerge(joined, changes);
        if (joined.translation.FillsIdentity() && !changes.inserted.empty()) KeepIdentity(*changes.table);
        const auto changed = static_cast<std::int64_t>(changes.deleted.size() + changes.updated.size() +
                                                       changes.anew.size() + changes.inserted.size());
        CheckRowLimit(frame_->options.rowCountLimit, changed);
        guard.Release();
        CountRows(changed);
    });
}

// Rows that refer to each other would have to be changed all at once.
void Executor::CheckMergeable(const TableInfo& table, const MergeStatement& statement) const {
    for (const ForeignKeyInfo& key : table.foreignKeys) {
        if (automation::SameName(key.referencedTable, table.name))
            throw MakeError(40510, statement.position, {"MERGE of a table that refers to itself"});
    }
}

void Executor::CollectMerge(Plan& plan, MergeChanges& changes) {
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    std::vector<Value> row;
    while (StepPlan(plan)) {
        ReadRow(plan, row);
        if (row[0].IsNull()) continue;
        for (const MergeStep& step : plan.translation.steps) {
            if (step.clause != row[0].Int()) continue;
            MergeChanges::Row change;
            change.row = row[1].IsNull() ? 0 : row[1].Int();
            for (std::size_t i = 0; i < step.columns.size(); ++i)
                change.values.push_back(row[step.first + i]);
            change.columns = step.columns;
            if (step.action != MergeAction::kInsert && !changes.seen.insert(change.row).second)
                throw MakeError(8672, {});
            auto& list = step.action == MergeAction::kInsert   ? changes.inserted
                         : step.action == MergeAction::kDelete ? changes.deleted
                         : step.isWhole                        ? changes.anew
                                                               : changes.updated;
            list.push_back(std::move(change));
        }
    }
}

void Executor::ApplyMerge(const Plan& plan, const MergeChanges& changes) {
    const TableInfo& table = *changes.table;
    PreparedStatement remove = database_.Prepare("DELETE FROM " + table.Sql() + " WHERE _rowid_ = ?1");
    const auto removeAll = [&](const std::vector<MergeChanges::Row>& list) {
        for (const MergeChanges::Row& change : list) {
            remove.Bind(1, change.row);
            if (remove.Step() == StepResult::kFailed) FailStep(plan);
            remove.Reset();
        }
    };
    // Rows that others refer to stay where they are while their keys change.
    const bool staysInPlace = !changes.anew.empty() && IsReferenced(table);
    removeAll(changes.deleted);
    if (!staysInPlace) {
        removeAll(changes.anew);
    } else {
        std::vector<ResultColumn> columns{{"_rowid_", SqlType::Of(TypeKind::kBigInt)}};
        for (const std::string& name : changes.anew.front().columns)
            columns.push_back({name, table.FindColumn(name)->type});
        std::vector<std::vector<Value>> rows;
        for (const MergeChanges::Row& change : changes.anew) {
            std::vector<Value>& row = rows.emplace_back();
            row.emplace_back(change.row);
            row.insert(row.end(), change.values.begin(), change.values.end());
        }
        const std::int64_t affected = report_->rowsAffected;
        ChangeRows(plan, columns, rows, false, {});
        report_->rowsAffected = affected;
    }
    for (const MergeChanges::Row& change : changes.updated) {
        std::string sets;
        for (const std::string& column : change.columns)
            sets += (sets.empty() ? "" : ", ") + Quoted(column) + " = ?";
        RunMergeRow(
            plan, table, change,
            "UPDATE " + table.Sql() + " SET " + sets + " WHERE _rowid_ = " + std::to_string(change.row));
    }
    for (const auto* list : {&changes.anew, &changes.inserted}) {
        if (list == &changes.anew && staysInPlace) continue;
        for (const MergeChanges::Row& change : *list) {
            std::string names;
            std::string marks;
            for (const std::string& column : change.columns) {
                names += (names.empty() ? "" : ", ") + Quoted(column);
                marks += marks.empty() ? "?" : ", ?";
            }
            RunMergeRow(plan, table, change,
                        names.empty()
                            ? "INSERT INTO " + table.Sql() + " DEFAULT VALUES"
                            : "INSERT INTO " + table.Sql() + "(" + names + ") VALUES (" + marks + ")");
        }
    }
}

void Executor::RunMergeRow(const Plan& plan, const TableInfo& table, const MergeChanges::Row& change,
                           const std::string& sql) {
    PreparedStatement statement = database_.Prepare(sql);
    for (std::size_t i = 0; i < change.columns.size(); ++i) {
        const ColumnInfo& column = *table.FindColumn(change.columns[i]);
        if (table.IsInUniqueKey(column.name))
            services_.RememberKey(column.name, KeyText(change.values[i], column.type));
        BindValue(statement.Handle(), static_cast<int>(i) + 1, change.values[i], column.type);
    }
    if (statement.Step() == StepResult::kFailed) FailStep(plan);
}

}  // namespace vicenter::tsql::engine
