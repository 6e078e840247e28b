#include "tsql/run/transaction.h"

#include <vector>

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/sqlite/kept_rows.h"

namespace vicenter::tsql::engine {

void Transactions::Begin() {
    if (readOnly_) throw MakeError(3906, {}, {database_.Path()});
    // A look before reading is not enough to write upon.
    database_.CheckFile();
    database_.Run("BEGIN IMMEDIATE");
    open_ = true;
    NoteBegin();
}

void Transactions::NoteBegin() {
    // Nobody else can change the catalog from here on.
    catalog_.Refresh();
    generationAtBegin_ = catalog_.Generation();
    // A backup that is worked on is no copy of anything any more.
    if (catalog_.MayBeSealed()) database_.Run("DELETE FROM main.\"ts$digest\"");
    broughtUp_ = catalog_.IsOfOlderForm();
    if (broughtUp_) catalog_.BringUp();
}

void Transactions::BeginTemporary() {
    database_.Run("BEGIN");
    open_ = true;
    onlyTemporary_ = true;
    generationAtBegin_ = catalog_.Generation();
}

void Transactions::TakeLock() {
    if (readOnly_) throw MakeError(3906, {}, {database_.Path()});
    database_.CheckFile();
    // A change of nothing takes the lock; error 1222 when others have written since this transaction read.
    database_.Run("DELETE FROM main.\"ts$identity\" WHERE object IS NULL");
    onlyTemporary_ = false;
    NoteBegin();
}

void Transactions::CheckNotDoomed() const {
    if (doomed_) throw MakeError(3930, {});
}

template <class Undo>
void Transactions::KeepingVariables(Undo undo) {
    struct Kept {
        TableInfo table;
        KeptRows rows;
    };
    std::vector<Kept> kept;
    for (const std::string& name : catalog_.TemporaryNames()) {
        if (name.front() != '@') continue;
        const TableInfo& table = *catalog_.FindTable(name);
        kept.push_back({table, KeptRows(database_, table.Sql())});
    }
    undo();
    for (const Kept& entry : kept) {
        const TableInfo* now = catalog_.FindTable(entry.table.name);
        // Declared in the transaction, it is gone with it.
        if (now != nullptr) {
            database_.Run("DELETE FROM " + now->Sql());
        } else {
            catalog_.CreateTable(entry.table);
        }
        entry.rows.PutBack(database_, entry.table.Sql());
    }
}

void Transactions::Commit() {
    if (!open_) return;
    // Into a file that nobody will find again nothing is to be saved.
    if (!onlyTemporary_) database_.CheckFile();
    database_.Run("COMMIT");
    open_ = false;
    onlyTemporary_ = false;
    broughtUp_ = false;
}

void Transactions::Rollback() {
    if (database_.InTransaction()) database_.Run("ROLLBACK");
    open_ = false;
    onlyTemporary_ = false;
    doomed_ = false;
    count_ = 0;
    if (catalog_.Generation() != generationAtBegin_ || broughtUp_) {
        broughtUp_ = false;
        catalog_.Forget();
        catalog_.Refresh();
    }
    ForgetTemporaries();
}

// Temporary tables made since the beginning are gone with it.
void Transactions::ForgetTemporaries() {
    for (const std::string& name : catalog_.TemporaryNames()) {
        const TableInfo* table = catalog_.FindTable(name);
        PreparedStatement exists =
            database_.Prepare("SELECT 1 FROM temp.sqlite_schema WHERE type = 'table' AND name = ?1");
        exists.Bind(1, table->physical);
        if (!database_.Step(exists)) catalog_.DropTemporary(name);
    }
}

bool Transactions::BeginChange(bool temporary) {
    CheckNotDoomed();
    catalog_.EndSnapshot();
    if (temporary) {
        // What ROLLBACK is to undo must be begun.
        if (count_ > 0 && !open_) BeginTemporary();
        return false;
    }
    if (open_ && onlyTemporary_) TakeLock();
    if (open_) return false;
    Begin();
    return !batchIsUnit_ && count_ == 0;
}

void Transactions::StartBatch(bool mayWrite) {
    batchMayWrite_ = mayWrite;
    if (mayWrite && open_ && onlyTemporary_ && !doomed_) {
        catalog_.EndSnapshot();
        TakeLock();
    }
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
            if (count_ == 0) name_ = statement.name.text;
            ++count_;
            break;
        case TransactionAction::kCommit:
            CheckNotDoomed();
            if (count_ == 0) throw MakeError(3902, statement.position);
            --count_;
            // A batch that is one unit commits at its end.
            if (count_ == 0 && !batchIsUnit_) Commit();
            break;
        case TransactionAction::kRollback: {
            if (!statement.name.IsEmpty() && open_) {
                const std::string savepoint = Quoted("ts_save_" + statement.name.text);
                try {
                    KeepingVariables([&] {
                        database_.Run("ROLLBACK TO " + savepoint);
                        catalog_.Forget();
                        catalog_.Refresh();
                        ForgetTemporaries();
                    });
                    break;
                } catch (const SqlError&) {
                    // No savepoint of that name: the name of the transaction.
                }
            }
            if (count_ == 0) throw MakeError(3903, statement.position);
            // By its name the outermost transaction alone is undone. A variable's value is not known here.
            if (!statement.name.IsEmpty() && statement.name.text != name_ &&
                !statement.name.text.starts_with('@') && !name_.starts_with('@'))
                throw MakeError(6401, statement.position, {statement.name.text});
            KeepingVariables([&] { Rollback(); });
            break;
        }
        case TransactionAction::kSave:
            if (count_ == 0) throw MakeError(628, statement.position);
            CheckNotDoomed();
            if (!open_) Begin();
            database_.Run("SAVEPOINT " + Quoted("ts_save_" + statement.name.text));
            break;
    }
}

}  // namespace vicenter::tsql::engine
