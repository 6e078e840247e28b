// What INSERT, UPDATE and DELETE share: the change itself, its atomicity, its counts and its identity values.

#include <limits>
#include <utility>

#include "tsql/base/error_table.h"
#include "tsql/run/executor.h"
#include "tsql/run/row_limit.h"
#include "tsql/run/statement_guard.h"

namespace vicenter::tsql::engine {

void Executor::CountRows(std::int64_t count) {
    rowCount_ = count;
    if (frame_->options.noCount) return;
    report_->rowsAffected = (report_->rowsAffected < 0 ? 0 : report_->rowsAffected) + count;
}

// The values are handed out or given while SQLite runs the statement; the account set gets the furthest when
// that is over.
void Executor::StartIdentity(const TableInfo& table) {
    furthestIdentity_ = catalog_.LastIdentity(table);
    identityStep_ = table.IdentityColumn()->increment;
    identityType_ = table.IdentityColumn()->type;
}

std::int64_t Executor::NextIdentity() const {
    const auto range = [this]() -> std::pair<std::int64_t, std::int64_t> {
        switch (identityType_.kind) {
            case TypeKind::kTinyInt:
                return {0, std::numeric_limits<std::uint8_t>::max()};
            case TypeKind::kSmallInt:
                return {std::numeric_limits<std::int16_t>::min(), std::numeric_limits<std::int16_t>::max()};
            case TypeKind::kInt:
                return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
            default:
                return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
        }
    };
    const auto [low, high] = range();
    const bool isOver = identityStep_ < 0 ? furthestIdentity_ < low - identityStep_
                                          : furthestIdentity_ > high - identityStep_;
    if (isOver) throw MakeError(8115, {}, {"IDENTITY", identityType_.Name()});
    return furthestIdentity_ + identityStep_;
}

void Executor::HandIdentity(std::int64_t value) {
    lastIdentity_ = value;
    // Values that are given move the counter on in the direction of its steps, never back.
    if (identityStep_ < 0 ? value < furthestIdentity_ : value > furthestIdentity_) furthestIdentity_ = value;
}

void Executor::KeepIdentity(const TableInfo& table) {
    if (furthestIdentity_ != catalog_.LastIdentity(table)) catalog_.SetLastIdentity(table, furthestIdentity_);
    identity_ = Value(lastIdentity_);
    frame_->scopeIdentity = identity_;
}

// Where a failure ends the batch and undoes all of it, no statement needs undoing by itself.
bool Executor::OutlivesFailure() const {
    return tryDepth_ > 0 || !options_.batchTransactions || !transactions_.IsOpen();
}

void Executor::RunModification(Plan& plan, std::vector<std::vector<Value>>* output) {
    const Translation& translation = plan.translation;
    const TableInfo* table = translation.table.empty() ? nullptr : catalog_.FindTable(translation.table);
    const bool identity = translation.FillsIdentity() && table != nullptr;
    if (identity) StartIdentity(*table);
    StatementGuard guard(database_, !translation.oneRow && OutlivesFailure() && database_.InTransaction());
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
    if (identity && changed > 0) KeepIdentity(*table);
    // As the server has it of the last INSERT of the session.
    if (table != nullptr && table->IdentityColumn() == nullptr && translation.operation == "INSERT")
        identity_ = Value();
    CheckRowLimit(frame_->options.rowCountLimit, changed);
    guard.Release();
    CountRows(changed);
}

// The rows that go into the target of OUTPUT are not those of the statement.
void Executor::OutputInto(const OutputClause& output, const std::vector<ResultColumn>& columns,
                          std::vector<std::vector<Value>>& rows, std::int64_t affectedBefore) {
    const std::int64_t changed = rowCount_;
    const std::int64_t affected = std::exchange(report_->rowsAffected, affectedBefore);
    std::vector<SqlType> types;
    types.reserve(columns.size());
    for (const ResultColumn& column : columns)
        types.push_back(column.type);
    InsertRows(&output, output.into, output.columns, types, rows);
    rowCount_ = changed;
    report_->rowsAffected = affected;
}

// The rows of OUTPUT are kept until the change has succeeded, since a failed statement gives no result. Those
// that go into a table are part of the statement: all of it is done or nothing.
void Executor::Modify(const void* key, bool temporary, const Make& make, const OutputClause* output) {
    std::vector<std::vector<Value>> rows;
    std::vector<ResultColumn> columns;
    const bool into = output != nullptr && !output->into.IsEmpty();
    const TableInfo* target = into ? FindTable(output->into.Object()) : nullptr;
    transactions_.Change(temporary && (target == nullptr || target->temporary), [&] {
        StatementGuard guard(database_, into && OutlivesFailure());
        const std::int64_t before = report_->rowsAffected;
        Plan& plan = PlanFor(key, make);
        RunModification(plan, output != nullptr ? &rows : nullptr);
        columns = plan.translation.columns;
        if (into) OutputInto(*output, columns, rows, before);
        guard.Release();
    });
    if (output == nullptr || into) return;
    sink_->BeginResult(columns);
    for (std::vector<Value>& row : rows)
        sink_->AddRow(row);
}

}  // namespace vicenter::tsql::engine
