#pragma once

// Transactions: those of the text (BEGIN, COMMIT, ROLLBACK, SAVE), and the one of SQLite that stands behind
// them.
//
// What may write takes the lock for writing before it reads: a batch that is one unit before its first
// statement, BEGIN TRANSACTION at once, a statement that stands alone before itself. So what is written never
// rests on what another process has changed since. What only reads never takes it, nor does an IF that is a
// batch by itself and has nothing to write. While a batch is one unit, its transaction ends with it; a
// transaction of the text that begins in the middle of one is a place in it that ROLLBACK returns to.
// Whatever is undone, the catalog is as it was there, with its temporary tables. One per session, used by its
// thread.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tsql/catalog/catalog.h"
#include "tsql/sqlite/database.h"
#include "tsql/syntax/ast.h"

namespace vicenter::tsql::engine {

// Temporary tables of callers, in lower case, whose names mean a table of the call that runs.
using ShadowedTables = std::map<std::string, TableInfo, std::less<>>;

class Transactions {
  public:
    Transactions(Database& database, Catalog& catalog, bool batchIsUnit, bool readOnly)
        : database_(database), catalog_(catalog), batchIsUnit_(batchIsUnit), readOnly_(readOnly) {}

    // @@TRANCOUNT
    int Count() const { return count_; }
    // Nothing but ROLLBACK can end it any more: a statement of it has failed in a way that TRY cannot mend.
    void Doom() { doomed_ = true; }
    bool IsDoomed() const { return doomed_; }
    // A transaction of SQLite is open, as far as this program knows.
    bool IsOpen() const { return open_; }
    // Nobody else can change the account set.
    bool HoldsLock() const { return open_ && !onlyTemporary_; }
    // Before the first statement of a batch that may write, or may not.
    void StartBatch(bool mayWrite);
    void Run(const TransactionStatement& statement);
    // Does a change with what it needs around it: its own transaction when there is no other. What only
    // touches temporary tables leaves other processes alone.
    template <class Body>
    void Change(bool temporary, Body body) {
        const bool own = BeginChange(temporary);
        try {
            body();
            if (own) Commit();
        } catch (...) {
            if (own && open_) Rollback();
            throw;
        }
    }
    // The same for a definition, which is several changes: one that fails leaves nothing behind, even where
    // what is around it goes on.
    template <class Body>
    void Define(bool temporary, Body body) {
        Change(temporary, [&] {
            const Mark before = StartDefinition();
            try {
                body();
            } catch (...) {
                UndoDefinition(before);
                throw;
            }
            database_.Run("RELEASE ts_definition");
        });
    }
    // A temporary table whose frame is gone, by its number: no rollback brings it back. Where its name meant
    // it, the name means the caller's.
    void DropForGood(std::int64_t id, const ShadowedTables& shadowed);
    // The batch is done, or has failed as a whole.
    void EndBatch(bool failed);
    void Rollback();
    // Back to the state of a new session.
    void Reset();

  private:
    // What can be returned to: SQLite's transaction from its beginning, or a savepoint in it, which bears the
    // number of its place among them all; and the catalog of that moment.
    struct Mark {
        std::string name;  // by SAVE TRANSACTION; its letters count
        std::uint64_t generation = 0;
        Catalog::Temporaries temporaries;
    };

    // True when the change itself has to be committed.
    bool BeginChange(bool temporary);
    void Begin();
    // Without the lock for writing, for temporary tables alone; and the lock when it is needed after all.
    void BeginTemporary();
    void TakeLock();
    void NoteBegin();
    void CheckNotDoomed() const;
    void Commit();
    Mark Now(const std::string& name = {}) const;
    Mark StartDefinition();
    void UndoDefinition(const Mark& before);
    void SetMark(const std::string& name);
    void ReturnTo(std::size_t mark);
    // The savepoints from this one on are no more; what has been done since stays.
    void ReleaseMarks(std::size_t first);
    void RollbackOutermost();
    // False when there is no savepoint of that name.
    bool RollbackToSavepoint(const std::string& name);
    // The catalog as it was.
    void Restore(const Mark& mark);
    void ForgetTemporaries();
    // Table variables are no part of a transaction: they stay as they are while it is undone.
    template <class Undo>
    void KeepingVariables(Undo undo);

    Database& database_;
    Catalog& catalog_;
    const bool batchIsUnit_;
    const bool readOnly_;
    int count_ = 0;
    std::string name_;  // of the outermost
    bool open_ = false;
    bool batchMayWrite_ = false;
    bool onlyTemporary_ = false;  // the open transaction has no lock yet
    bool changed_ = false;        // something since the open transaction's beginning
    bool doomed_ = false;
    bool broughtUp_ = false;   // the set got the form of today in the transaction that is open
    std::vector<Mark> marks_;  // the first is the beginning of SQLite's transaction
    std::size_t begin_ = 0;    // the mark of the outermost BEGIN TRANSACTION
};

}  // namespace vicenter::tsql::engine
