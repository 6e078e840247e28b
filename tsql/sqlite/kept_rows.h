#pragma once

// The rows of a table in memory, as SQLite keeps them. A plain holder: it outlives what becomes of the table.

#include <memory>
#include <string>
#include <vector>

#include "tsql/sqlite/database.h"

struct sqlite3_value;

namespace vicenter::tsql::engine {

class KeptRows {
  public:
    // The table is named as a statement of SQLite names it.
    KeptRows(Database& database, const std::string& table);
    // Into a table of the same columns that has none of these rows.
    void PutBack(Database& database, const std::string& table) const;

  private:
    struct Free {
        void operator()(sqlite3_value* value) const noexcept;
    };
    using Row = std::vector<std::unique_ptr<sqlite3_value, Free>>;
    std::vector<Row> rows_;
};

}  // namespace vicenter::tsql::engine
