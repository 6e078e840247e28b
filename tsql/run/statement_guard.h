#pragma once

// Undoes what a failed statement has done so far, where the batch goes on after it. SQLite does so itself
// only where it expects a failure, and a function that fails is none.

#include "tsql/sqlite/database.h"

namespace vicenter::tsql::engine {

class StatementGuard {
  public:
    // A savepoint is two more statements for SQLite: not where nothing can go on, or nothing was changed.
    StatementGuard(Database& database, bool needed) : database_(database), open_(needed) {
        if (open_) database_.Run("SAVEPOINT ts_statement");
    }
    StatementGuard(const StatementGuard&) = delete;
    StatementGuard& operator=(const StatementGuard&) = delete;
    ~StatementGuard() {
        if (!open_ || !database_.InTransaction()) return;
        database_.RunQuietly("ROLLBACK TO ts_statement; RELEASE ts_statement");
    }
    void Release() {
        if (open_) database_.Run("RELEASE ts_statement");
        open_ = false;
    }

  private:
    Database& database_;
    bool open_;
};

}  // namespace vicenter::tsql::engine
