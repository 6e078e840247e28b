#include "tsql/run/transaction.h"

#include "automation/object.h"
#include "tsql/base/error_table.h"

namespace vicenter::tsql::engine {

void Transactions::Begin() {
    if (readOnly_) throw MakeError(3906, {}, {database_.Path()});
    // A look before reading is not enough to write upon.
    database_.CheckFile();
    database_.Run("BEGIN IMMEDIATE");
    open_ = true;
    // Nobody else can change the catalog from here on.
    catalog_.Refresh();
    generationAtBegin_ = catalog_.Generation();
    // A backup that is worked on is no copy of anything any more.
    if (catalog_.MayBeSealed()) database_.Run("DELETE FROM main.\"ts$digest\"");
    broughtUp_ = catalog_.IsOfOlderForm();
    if (broughtUp_) catalog_.BringUp();
}

void Transactions::Commit() {
    if (!open_) return;
    // Into a file that nobody will find again nothing is to be saved.
    database_.CheckFile();
    database_.Run("COMMIT");
    open_ = false;
    broughtUp_ = false;
}

void Transactions::Rollback() {
    if (database_.InTransaction()) database_.Run("ROLLBACK");
    open_ = false;
    count_ = 0;
    if (catalog_.Generation() != generationAtBegin_ || broughtUp_) {
        broughtUp_ = false;
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

bool Transactions::BeginChange(bool temporary) {
    catalog_.EndSnapshot();
    if (open_ || temporary) return false;
    Begin();
    return !batchIsUnit_ && count_ == 0;
}

void Transactions::StartBatch(bool mayWrite) {
    batchMayWrite_ = mayWrite;
    if (!mayWrite || open_ || (!batchIsUnit_ && count_ == 0)) return;
    catalog_.EndSnapshot();
    Begin();
}

void Transactions::Reset() {
    if (open_ || database_.InTransaction()) Rollback();
    count_ = 0;
}

void Transactions::EndBatch(bool failed) {
    if (failed) {
        if (open_ || count_ > 0) Rollback();
        return;
    }
    if (count_ > 0 || !open_) return;
    try {
        Commit();
    } catch (...) {
        Rollback();
        throw;
    }
}

void Transactions::Run(const TransactionStatement& statement) {
    switch (statement.action) {
        case TransactionAction::kBegin:
            if (batchMayWrite_ && !open_) {
                catalog_.EndSnapshot();
                Begin();
            }
            ++count_;
            break;
        case TransactionAction::kCommit:
            if (count_ == 0) throw MakeError(3902, statement.position);
            --count_;
            // A batch that is one unit commits at its end.
            if (count_ == 0 && !batchIsUnit_) Commit();
            break;
        case TransactionAction::kRollback: {
            if (!statement.name.IsEmpty() && open_) {
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
            if (count_ == 0) throw MakeError(3903, statement.position);
            Rollback();
            break;
        }
        case TransactionAction::kSave:
            if (count_ == 0) throw MakeError(628, statement.position);
            if (!open_) Begin();
            database_.Run("SAVEPOINT " + Quoted("ts_save_" + statement.name.text));
            break;
    }
}

}  // namespace vicenter::tsql::engine
