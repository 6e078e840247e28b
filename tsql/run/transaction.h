#pragma once

// Transactions: those of the text (BEGIN, COMMIT, ROLLBACK, SAVE), and the one of SQLite that stands behind
// them.
//
// The lock for writing is taken before the first change and never by what only reads; so a change never
// starts on a snapshot that another process has overtaken. While a batch is one unit, its transaction ends
// with it. One per session, used by its thread.

#include <cstdint>

#include "tsql/catalog/catalog.h"
#include "tsql/sqlite/database.h"
#include "tsql/syntax/ast.h"

namespace vicenter::tsql::engine {

class Transactions {
  public:
    Transactions(Database& database, Catalog& catalog, bool batchIsUnit)
        : database_(database), catalog_(catalog), batchIsUnit_(batchIsUnit) {}

    // @@TRANCOUNT
    int Count() const { return count_; }
    // A transaction of SQLite is open, as far as this program knows.
    bool IsOpen() const { return open_; }
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
    // The batch is done, or has failed as a whole.
    void EndBatch(bool failed);
    void Rollback();
    // Back to the state of a new session.
    void Reset();

  private:
    // True when the change itself has to be committed.
    bool BeginChange(bool temporary);
    void Begin();
    void Commit();

    Database& database_;
    Catalog& catalog_;
    const bool batchIsUnit_;
    int count_ = 0;
    bool open_ = false;
    std::uint64_t generationAtBegin_ = 0;  // of the catalog
};

}  // namespace vicenter::tsql::engine
