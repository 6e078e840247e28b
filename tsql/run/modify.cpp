// What INSERT, UPDATE and DELETE share: the change itself, its atomicity, its counts and its identity values.

#include <algorithm>
#include <limits>
#include <utility>

#include "tsql/base/error_table.h"
#include "tsql/run/executor.h"
#include "tsql/run/number_list.h"
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

void Executor::RunModification(Plan& plan, std::vector<std::vector<Value>>* output,
                               const std::vector<Value>* given) {
    const Translation& translation = plan.translation;
    const TableInfo* table = translation.table.empty() ? nullptr : catalog_.FindTable(translation.table);
    const bool identity = translation.FillsIdentity() && table != nullptr;
    if (identity) StartIdentity(*table);
    StatementGuard guard(database_, !translation.oneRow && OutlivesFailure() && database_.InTransaction());
    std::int64_t changed = 0;
    {
        const ResetAtEnd reset(plan.statement);
        Bind(plan, given);
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

// The rows that go into the target of OUTPUT are not those of the statement. What is left of each row is the
// result.
void Executor::OutputInto(const OutputClause& output, Told& told, std::int64_t affectedBefore) {
    const std::int64_t changed = rowCount_;
    const std::int64_t affected = std::exchange(report_->rowsAffected, affectedBefore);
    const auto count = static_cast<std::ptrdiff_t>(told.goesInto);
    std::vector<SqlType> types;
    types.reserve(told.goesInto);
    for (std::size_t i = 0; i < told.goesInto; ++i)
        types.push_back(told.columns[i].type);
    std::vector<std::vector<Value>> rows;
    rows.reserve(told.rows.size());
    for (std::vector<Value>& row : told.rows) {
        rows.emplace_back(row.begin(), row.begin() + count);
        row.erase(row.begin(), row.begin() + count);
    }
    told.columns.erase(told.columns.begin(), told.columns.begin() + count);
    InsertRows(&output, output.into, output.columns, types, rows);
    rowCount_ = changed;
    report_->rowsAffected = affected;
}

// The rows of OUTPUT are kept until the change has succeeded, since a failed statement gives no result. Those
// that go into a table are part of the statement: all of it is done or nothing.
void Executor::Changing(bool temporary, const OutputClause* output,
                        const std::function<void(Told& told)>& work) {
    Told told;
    const bool into = output != nullptr && !output->into.IsEmpty();
    const TableInfo* target = into ? FindTable(output->into.Object()) : nullptr;
    transactions_.Change(temporary && (target == nullptr || target->temporary), [&] {
        StatementGuard guard(database_, into && OutlivesFailure());
        const std::int64_t before = report_->rowsAffected;
        work(told);
        if (into) OutputInto(*output, told, before);
        guard.Release();
    });
    if (output == nullptr || !output->GivesResult()) return;
    sink_->BeginResult(told.columns);
    for (std::vector<Value>& row : told.rows)
        sink_->AddRow(row);
}

// WITH CHECK OPTION: rows that have been written through the view are its own.
void Executor::CheckView(const std::string& view, const std::vector<std::int64_t>& numbers) {
    ObjectName name;
    name.parts.push_back(Name{view, {}, false});
    Plan plan;
    plan.translation = Translated([&](Translator& translator) { return translator.RowsBesideView(name); });
    plan.statement = Prepared(plan.translation.sql);
    const ResetAtEnd reset(plan.statement);
    const std::vector<Value> given{Value(NumberList(numbers))};
    Bind(plan, &given);
    if (StepPlan(plan)) throw MakeError(550, {});
}

void Executor::Modify(const void* key, bool temporary, const Make& make, const OutputClause* output) {
    Changing(temporary, output, [&](Told& told) {
        Plan& plan = PlanFor(key, make);
        told.columns = plan.translation.columns;
        told.goesInto = plan.translation.goesInto;
        if (plan.translation.checkedView.empty() || plan.translation.operation == "DELETE")
            return RunModification(plan, output != nullptr ? &told.rows : nullptr);
        StatementGuard guard(database_, OutlivesFailure());
        std::vector<std::vector<Value>> rows;
        RunModification(plan, &rows);
        std::vector<std::int64_t> numbers;
        numbers.reserve(rows.size());
        for (const std::vector<Value>& row : rows)
            numbers.push_back(row.front().Int());
        CheckView(plan.translation.checkedView, numbers);
        guard.Release();
    });
}

std::vector<Value> Executor::WholeRow(const OutputClause& output, const TableInfo& table,
                                      std::int64_t number) {
    Plan& plan = PlanFor(&output.into, [&](Translator& translator) { return translator.WholeRow(table); });
    const ResetAtEnd reset(plan.statement);
    const std::vector<Value> given{Value(number)};
    Bind(plan, &given);
    std::vector<Value> row(plan.translation.columns.size());
    if (StepPlan(plan)) ReadRow(plan, row);
    return row;
}

namespace {

bool AreOfOneForm(const std::vector<ToldSource>& some, const std::vector<ToldSource>& others) {
    return std::ranges::equal(some, others, [](const ToldSource& one, const ToldSource& other) {
        const auto isSame = [](const ResultColumn& a, const ResultColumn& b) {
            return a.name == b.name && a.type == b.type;
        };
        return one.name == other.name && std::ranges::equal(one.columns, other.columns, isSame);
    });
}

}  // namespace

// Of rows that have been changed, in their order.
void Executor::TellRows(const OutputClause& output, const TableInfo& table,
                        const std::vector<ToldSource>& sources, const std::vector<ChangedRow>& rows,
                        bool hasAction, Told& told) {
    // A source of the statement may be another one the next time, a temporary table of its name.
    std::unique_ptr<Plan>& known = frame_->program->plans[&output.columns];
    if (known && !AreOfOneForm(known->translation.told, sources)) known.reset();
    Plan& plan = PlanFor(&output.columns, [&](Translator& translator) {
        Translation translation = translator.OutputOfRow(output, table, sources, hasAction);
        translation.told = sources;
        return translation;
    });
    told.columns = plan.translation.columns;
    told.goesInto = plan.translation.goesInto;
    std::size_t beside = 0;
    for (const ToldSource& source : sources)
        beside += source.columns.size();
    std::vector<Value> given;
    for (const ChangedRow& row : rows) {
        given.clear();
        for (const auto* part : {&row.inserted, &row.deleted}) {
            given.insert(given.end(), part->begin(), part->end());
            if (part->empty()) given.resize(given.size() + table.columns.size());
        }
        given.insert(given.end(), row.beside.begin(), row.beside.end());
        given.resize(2 * table.columns.size() + beside);
        if (hasAction) given.emplace_back(row.action);
        const ResetAtEnd reset(plan.statement);
        Bind(plan, &given);
        if (StepPlan(plan)) ReadRow(plan, told.rows.emplace_back());
    }
}

}  // namespace vicenter::tsql::engine
