#include "tsql/run/executor.h"
#include "tsql/run/row_limit.h"
#include "tsql/run/statement_guard.h"

namespace vicenter::tsql::engine {

namespace {

// Keeps the results of an executed procedure or text instead of sending them out.
class RowCollector final : public ResultSink {
  public:
    struct Result {
        std::vector<SqlType> types;
        std::vector<std::vector<Value>> rows;
    };

    explicit RowCollector(ResultSink& outer) : outer_(outer) {}
    void BeginResult(const std::vector<ResultColumn>& columns) override {
        Result& result = results_.emplace_back();
        for (const ResultColumn& column : columns)
            result.types.push_back(column.type);
    }
    void AddRow(std::vector<Value>& row) override { results_.back().rows.push_back(std::move(row)); }
    void Message(const Diagnostic& message) override { outer_.Message(message); }
    void Failed(const Diagnostic& error, bool goesOn) override { outer_.Failed(error, goesOn); }

    std::vector<Result>& Results() { return results_; }

  private:
    ResultSink& outer_;
    std::vector<Result> results_;
};

// The plan takes rows of these types.
bool TakesRowsOf(const Translation& translation, const std::vector<SqlType>& types) {
    std::size_t count = 0;
    for (const Parameter& parameter : translation.parameters) {
        if (parameter.source != Parameter::Source::kRow) continue;
        const auto place = static_cast<std::size_t>(parameter.ordinal);
        if (place >= types.size() || parameter.from != types[place]) return false;
        ++count;
    }
    return count == types.size();
}

}  // namespace

void Executor::Insert(const InsertStatement& statement) {
    if (statement.source == InsertSource::kExecute) return InsertExecute(statement);
    const TableInfo* table = FindTable(statement.table.Object());
    Modify(
        &statement, table != nullptr && table->temporary,
        [&](Translator& translator) { return translator.Insert(statement); },
        statement.output ? &*statement.output : nullptr);
}

void Executor::Transaction(const TransactionStatement& statement) {
    if (!countsBeforeInsert_.empty()) {
        const bool undoes = statement.action == TransactionAction::kRollback && statement.name.IsEmpty();
        if (undoes) throw MakeError(3915, statement.position);
        const bool isOuters = transactions_.Count() <= countsBeforeInsert_.back();
        if (statement.action == TransactionAction::kCommit && isOuters)
            throw MakeError(3916, statement.position);
    }
    transactions_.Run(statement);
}

// INSERT … EXEC: all rows first, so that what runs may read the table that they go to.
void Executor::InsertExecute(const InsertStatement& statement) {
    if (statement.top) throw MakeError(40510, statement.position, {"INSERT TOP … EXEC"});
    if (!countsBeforeInsert_.empty()) throw MakeError(8164, statement.position);
    RowCollector rows(*sink_);
    ResultSink* outer = sink_;
    sink_ = &rows;
    countsBeforeInsert_.push_back(transactions_.Count());
    const auto end = [&] {
        sink_ = outer;
        countsBeforeInsert_.pop_back();
    };
    try {
        // An error of the call itself is one of this statement.
        Dispatch(*statement.execute);
    } catch (...) {
        end();
        throw;
    }
    end();
    if (rows.Results().empty()) {
        rowCount_ = 0;
        return;
    }
    const TableInfo* table = FindTable(statement.table.Object());
    transactions_.Change(table != nullptr && table->temporary, [&] {
        StatementGuard guard(database_, OutlivesFailure());
        const std::int64_t before = report_->rowsAffected;
        std::int64_t count = 0;
        for (RowCollector::Result& result : rows.Results()) {
            InsertRows(&statement, statement.table, statement.columns, result.types, result.rows);
            count += rowCount_;
        }
        report_->rowsAffected = before;
        CountRows(count);
        guard.Release();
        const TableInfo* filled = FindTable(statement.table.Object());
        if (filled->IdentityColumn() == nullptr) identity_ = Value();
    });
}

// The rows are here already, so that what gave them may have read the table. Each takes its identity value by
// itself: the counter is kept in the account set, not by the statement.
void Executor::InsertRows(const void* key, const ObjectName& name, const std::vector<Name>& columns,
                          const std::vector<SqlType>& types, std::vector<std::vector<Value>>& rows) {
    const TableInfo* table = FindTable(name.Object());
    if (table == nullptr && catalog_.FindView(name.Object()) != nullptr)
        throw MakeError(40510, name.Where(), {"INSERT … EXEC of view " + name.Object()});
    if (table == nullptr) throw MakeError(208, name.Where(), {name.Text()});
    CheckRowLimit(frame_->options.rowCountLimit, static_cast<std::int64_t>(rows.size()));
    // What gives the rows may give others the next time.
    std::unique_ptr<Plan>& known = frame_->program->plans[key];
    if (known && !TakesRowsOf(known->translation, types)) known.reset();
    Plan& plan =
        PlanFor(key, [&](Translator& translator) { return translator.InsertRow(*table, columns, types); });
    // All of them or none.
    StatementGuard guard(database_, OutlivesFailure());
    std::int64_t count = 0;
    for (const std::vector<Value>& row : rows) {
        const ResetAtEnd reset(plan.statement);
        if (plan.translation.FillsIdentity()) StartIdentity(*table);
        Bind(plan, &row);
        while (StepPlan(plan)) {
        }
        if (plan.translation.FillsIdentity()) KeepIdentity(*table);
        ++count;
    }
    guard.Release();
    CountRows(count);
}

}  // namespace vicenter::tsql::engine
