#include "tsql/run/executor.h"
#include "tsql/run/number_list.h"
#include "tsql/translate/output_columns.h"

namespace vicenter::tsql::engine {

void Executor::Delete(const DeleteStatement& statement) {
    const TableInfo* table = FindTable(statement.target.Object());
    const bool temporary = table != nullptr && table->temporary;
    if (!statement.currentOf.IsEmpty()) TakeCurrentRow(statement.currentOf, statement.target);
    if (statement.output && !TellsOnlyOf("deleted", *statement.output, !statement.from.empty())) {
        DeleteTold(statement, temporary);
    } else {
        Modify(
            &statement, temporary, [&](Translator& translator) { return translator.Delete(statement); },
            statement.output ? &*statement.output : nullptr);
    }
    if (!statement.currentOf.IsEmpty() && rowCount_ == 0) throw MakeError(16947, statement.position);
}

// What OUTPUT tells of other tables is read with the rows, before the first of them is gone.
void Executor::DeleteTold(const DeleteStatement& statement, bool temporary) {
    const OutputClause& output = *statement.output;
    Changing(temporary, &output, [&](Told& told) {
        Plan& found = PlanFor(&statement.hints,
                              [&](Translator& translator) { return translator.DeletedRows(statement); });
        const TableInfo& table = *catalog_.FindTable(found.translation.table);
        std::vector<std::int64_t> numbers;
        std::vector<ChangedRow> changed;
        {
            const ResetAtEnd reset(found.statement);
            Bind(found);
            std::vector<Value> row;
            while (StepPlan(found)) {
                ReadRow(found, row);
                numbers.push_back(row.front().Int());
                changed.emplace_back().beside.assign(row.begin() + 1, row.end());
            }
        }
        for (std::size_t i = 0; i < numbers.size(); ++i)
            changed[i].deleted = WholeRow(output, table, numbers[i]);
        Plan& removal = PlanFor(&statement.from,
                                [&](Translator& translator) { return translator.DeleteByNumber(table); });
        const std::vector<Value> given{Value(NumberList(numbers))};
        RunModification(removal, nullptr, &given);
        TellRows(output, table, found.translation.told, changed, false, told);
    });
}

void Executor::Truncate(const TruncateStatement& statement) {
    const TableInfo* known = FindTable(statement.table.Object());
    transactions_.Change(known != nullptr && known->temporary, [&] {
        // The change may have read the catalog anew.
        const TableInfo* table = FindTable(statement.table.Object());
        if (table == nullptr) throw MakeError(4701, statement.table.Where(), {statement.table.Object()});
        for (const TableInfo* other : catalog_.Tables()) {
            for (const ForeignKeyInfo& key : other->foreignKeys) {
                if (catalog_.FindTable(key.referencedTable) == table && other != table) {
                    throw MakeError(4712, statement.table.Where(), {table->name});
                }
            }
        }
        database_.Run("DELETE FROM " + table->Sql());
        if (const ColumnInfo* identity = table->IdentityColumn()) {
            catalog_.SetLastIdentity(*table, identity->seed - identity->increment);
        }
    });
    rowCount_ = 0;
}

}  // namespace vicenter::tsql::engine
