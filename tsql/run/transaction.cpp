// Transactions: BEGIN, COMMIT, ROLLBACK and SAVE TRANSACTION, and what stands behind them in SQLite.
//
// The lock for writing is taken before the first change and never by what only reads; so a change never
// starts on a snapshot that another process has overtaken. While a batch is one unit, its transaction ends
// with it.

#include "automation/object.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

void Executor::BeginPhysical() {
    database_.Run("BEGIN IMMEDIATE");
    physical_ = true;
    // Nobody else can change the catalog from here on.
    catalog_.Refresh();
    generationAtBegin_ = catalog_.Generation();
}

void Executor::CommitPhysical() {
    if (!physical_) return;
    database_.Run("COMMIT");
    physical_ = false;
}

void Executor::RollbackPhysical() {
    if (database_.InTransaction()) database_.Run("ROLLBACK");
    physical_ = false;
    transactionCount_ = 0;
    if (catalog_.Generation() != generationAtBegin_) {
        catalog_.Forget();
        catalog_.Refresh();
    }
    // Temporary tables made since the beginning are gone with it.
    for (const std::string& name : catalog_.TemporaryNames()) {
        const TableInfo* table = catalog_.FindTable(name);
        PreparedStatement exists =
            database_.Prepare("SELECT 1 FROM temp.sqlite_schema WHERE type = 'table' AND name = ?1");
        exists.Bind(1, table->physical);
        if (!database_.Step(exists)) catalog_.DropTemporary(name);
    }
}

bool Executor::BeginChange(bool temporary) {
    catalog_.EndSnapshot();
    if (physical_) return false;
    const bool unit = options_.batchTransactions || transactionCount_ > 0;
    // What only touches temporary tables leaves other processes alone.
    if (temporary) return false;
    BeginPhysical();
    return !unit;
}

void Executor::EndChange(bool own) {
    if (own) CommitPhysical();
}

void Executor::UndoChange(bool own) {
    if (own && physical_) RollbackPhysical();
}

void Executor::EndBatch(bool failed) {
    if (failed) {
        if (physical_ || transactionCount_ > 0) RollbackPhysical();
        return;
    }
    if (transactionCount_ > 0 || !physical_) return;
    try {
        CommitPhysical();
    } catch (const SqlError&) {
        RollbackPhysical();
        throw;
    }
}

void Executor::Transaction(const TransactionStatement& statement) {
    switch (statement.action) {
        case TransactionAction::kBegin:
            ++transactionCount_;
            break;
        case TransactionAction::kCommit:
            if (transactionCount_ == 0) throw MakeError(3902, statement.position);
            --transactionCount_;
            // A batch that is one unit commits at its end.
            if (transactionCount_ == 0 && !options_.batchTransactions) CommitPhysical();
            break;
        case TransactionAction::kRollback: {
            if (!statement.name.IsEmpty() && physical_) {
                const std::string savepoint = Quoted("ts_save_" + statement.name.text);
                try {
                    database_.Run("ROLLBACK TO " + savepoint);
                    catalog_.Forget();
                    catalog_.Refresh();
                    break;
                } catch (const SqlError&) {
                    // No savepoint of that name: the name of the transaction.
                }
            }
            if (transactionCount_ == 0) throw MakeError(3903, statement.position);
            RollbackPhysical();
            break;
        }
        case TransactionAction::kSave:
            if (transactionCount_ == 0) throw MakeError(628, statement.position);
            if (!physical_) BeginPhysical();
            database_.Run("SAVEPOINT " + Quoted("ts_save_" + statement.name.text));
            break;
    }
}

}  // namespace vicenter::tsql::engine
