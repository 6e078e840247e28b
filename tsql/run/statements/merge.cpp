#include <algorithm>
#include <optional>

#include "tsql/run/deferred_keys.h"
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
    const OutputClause* output = statement.output ? &*statement.output : nullptr;
    Changing(named != nullptr && named->temporary, output, [&](Told& told) {
        Plan& joined =
            PlanFor(&statement, [&](Translator& translator) { return translator.MergeRows(statement); });
        MergeChanges changes;
        changes.table = catalog_.FindTable(joined.translation.table);
        const TableInfo& table = *changes.table;
        const bool fillsIdentity = joined.translation.FillsIdentity();
        if (fillsIdentity) StartIdentity(table);
        std::vector<std::vector<Value>> matched;
        std::vector<std::vector<Value>> missed;
        CollectMerge(joined, matched);
        const Plan* missing = nullptr;
        const bool looksForMissed = std::ranges::any_of(statement.clauses, [](const MergeClause& clause) {
            return clause.match == MergeMatch::kNotMatchedBySource;
        });
        if (looksForMissed) {
            Plan& plan = PlanFor(&statement.clauses,
                                 [&](Translator& translator) { return translator.MissedRows(statement); });
            CollectMerge(plan, missed);
            missing = &plan;
        }
        if (statement.top) {
            LimitMerge(statement, matched, missed);
            // Rows that are left out take no values.
            if (fillsIdentity) StartIdentity(table);
        }
        SortMerge(joined, matched, changes);
        if (missing != nullptr) SortMerge(*missing, missed, changes);
        if (output != nullptr) {
            for (std::size_t i = 0; i < changes.told.size(); ++i) {
                if (changes.numbers[i] != 0)
                    changes.told[i].deleted = WholeRow(*output, table, changes.numbers[i]);
            }
        }
        StatementGuard guard(database_, true);
        // The table's own rows may refer to each other, and others to a row that goes and comes again.
        const bool areDeferred = IsReferenced(table) || table.foreignKeys.size() > 1;
        std::optional<DeferredKeys> keys;
        if (areDeferred) keys.emplace(database_, catalog_, table, joined.translation.operation);
        ApplyMerge(joined, changes, areDeferred);
        if (keys) keys->Check();
        if (fillsIdentity && !changes.inserted.empty()) KeepIdentity(table);
        if (!joined.translation.checkedView.empty()) {
            std::vector<std::int64_t> written;
            for (std::size_t i = 0; i < changes.told.size(); ++i) {
                if (changes.told[i].action != "DELETE") written.push_back(changes.numbers[i]);
            }
            CheckView(joined.translation.checkedView, written);
        }
        const auto changed = static_cast<std::int64_t>(changes.deleted.size() + changes.updated.size() +
                                                       changes.anew.size() + changes.inserted.size());
        CheckRowLimit(frame_->options.rowCountLimit, changed);
        guard.Release();
        CountRows(changed);
        if (output == nullptr) return;
        for (std::size_t i = 0; i < changes.told.size(); ++i) {
            if (changes.told[i].action != "DELETE")
                changes.told[i].inserted = WholeRow(*output, table, changes.numbers[i]);
        }
        TellRows(*output, table, joined.translation.told, changes.told, true, told);
    });
}

// Each row that some WHEN takes.
void Executor::CollectMerge(Plan& plan, std::vector<std::vector<Value>>& rows) {
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    std::vector<Value> row;
    while (StepPlan(plan)) {
        ReadRow(plan, row);
        if (!row[0].IsNull()) rows.push_back(row);
    }
}

void Executor::LimitMerge(const MergeStatement& statement, std::vector<std::vector<Value>>& matched,
                          std::vector<std::vector<Value>>& missed) {
    Plan& plan =
        PlanFor(&statement.top, [&](Translator& translator) { return translator.TopOf(*statement.top); });
    const ResetAtEnd reset(plan.statement);
    const std::vector<Value> given{Value(static_cast<std::int64_t>(matched.size() + missed.size()))};
    Bind(plan, &given);
    const auto most = StepPlan(plan) ? static_cast<std::size_t>(plan.statement.Int(0)) : 0;
    if (matched.size() > most) matched.resize(most);
    if (missed.size() > most - matched.size()) missed.resize(most - matched.size());
}

void Executor::SortMerge(const Plan& plan, const std::vector<std::vector<Value>>& rows,
                         MergeChanges& changes) {
    static constexpr const char* kActions[] = {"UPDATE", "DELETE", "INSERT"};
    const Translation& translation = plan.translation;
    const auto told = static_cast<std::ptrdiff_t>(translation.ToldColumns());
    const ColumnInfo* identity = translation.FillsIdentity() ? changes.table->IdentityColumn() : nullptr;
    for (const std::vector<Value>& row : rows) {
        const auto step = std::ranges::find_if(
            translation.steps, [&](const MergeStep& one) { return one.clause == row[0].Int(); });
        const bool inserts = step->action == MergeAction::kInsert;
        MergeChanges::Row change;
        change.row = row[1].IsNull() ? 0 : row[1].Int();
        change.place = changes.told.size();
        change.columns = step->columns;
        for (std::size_t i = 0; i < step->columns.size(); ++i) {
            change.values.push_back(row[step->first + i]);
            const bool isIdentity = identity != nullptr && step->columns[i] == identity->name;
            if (isIdentity && inserts) HandIdentity(change.values.back().Int());
        }
        if (!inserts && !changes.seen.insert(change.row).second) throw MakeError(8672, {});
        ChangedRow& entry = changes.told.emplace_back();
        entry.action = kActions[static_cast<int>(step->action)];
        entry.beside.assign(row.end() - told, row.end());
        changes.numbers.push_back(inserts ? 0 : change.row);
        auto& list = inserts                                ? changes.inserted
                     : step->action == MergeAction::kDelete ? changes.deleted
                     : step->isWhole                        ? changes.anew
                                                            : changes.updated;
        list.push_back(std::move(change));
    }
}

void Executor::ApplyMerge(const Plan& plan, MergeChanges& changes, bool areDeferred) {
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
        const std::vector<std::int64_t> numbers = ChangeRows(plan, columns, rows, false, {}, areDeferred);
        report_->rowsAffected = affected;
        for (std::size_t i = 0; i < changes.anew.size(); ++i)
            changes.numbers[changes.anew[i].place] = numbers[i];
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
            changes.numbers[change.place] = database_.LastRowNumber();
        }
    }
}

void Executor::RunMergeRow(const Plan& plan, const TableInfo& table, const MergeChanges::Row& change,
                           const std::string& sql) {
    PreparedStatement statement = database_.Prepare(sql);
    services_.keyValues.clear();
    for (std::size_t i = 0; i < change.columns.size(); ++i) {
        const ColumnInfo& column = *table.FindColumn(change.columns[i]);
        if (table.IsInUniqueKey(column.name))
            services_.RememberKey(column.name, KeyText(change.values[i], column.type));
        BindValue(statement.Handle(), static_cast<int>(i) + 1, change.values[i], column.type);
    }
    if (statement.Step() == StepResult::kFailed) FailStep(plan);
}

}  // namespace vicenter::tsql::engine
