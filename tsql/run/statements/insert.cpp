#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

namespace {

// Keeps the first result of an executed procedure or text instead of sending it out.
class RowCollector final : public ResultSink {
  public:
    explicit RowCollector(ResultSink& outer) : outer_(outer) {}
    void BeginResult(const std::vector<ResultColumn>& columns) override { columns_ = columns; }
    void AddRow(std::vector<Value>& row) override { rows_.push_back(std::move(row)); }
    void Message(const Diagnostic& message) override { outer_.Message(message); }

    const std::vector<ResultColumn>& Columns() const { return columns_; }
    std::vector<std::vector<Value>>& Rows() { return rows_; }

  private:
    ResultSink& outer_;
    std::vector<ResultColumn> columns_;
    std::vector<std::vector<Value>> rows_;
};

}  // namespace

void Executor::Insert(const InsertStatement& statement) {
    if (statement.source == InsertSource::kExecute) return InsertExecute(statement);
    const TableInfo* table = FindTable(statement.table.Object());
    Modify(
        &statement, table != nullptr && table->temporary,
        [&](Translator& translator) { return translator.Insert(statement); },
        statement.output ? &*statement.output : nullptr);
}

// INSERT … EXEC: all rows first, so that what runs may read the table that they go to.
void Executor::InsertExecute(const InsertStatement& statement) {
    RowCollector rows(*sink_);
    ResultSink* outer = sink_;
    sink_ = &rows;
    try {
        RunStatement(*statement.execute);
    } catch (...) {
        sink_ = outer;
        throw;
    }
    sink_ = outer;
    std::vector<SqlType> types;
    for (const ResultColumn& column : rows.Columns())
        types.push_back(column.type);
    if (rows.Columns().empty()) {
        rowCount_ = 0;
        return;
    }
    const TableInfo* table = FindTable(statement.table.Object());
    transactions_.Change(table != nullptr && table->temporary, [&] {
        InsertRows(&statement, statement.table, statement.columns, types, rows.Rows());
    });
}

}  // namespace vicenter::tsql::engine
