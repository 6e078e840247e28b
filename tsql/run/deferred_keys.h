#pragma once

// Foreign keys that hold when a statement is over, not row by row: on its way rows may refer to what is not
// there any more or not yet. Lives within a transaction; what was done since it began is undone unless
// Check() has been passed.

#include <string>

#include "tsql/catalog/catalog.h"
#include "tsql/sqlite/database.h"

namespace vicenter::tsql::engine {

class DeferredKeys {
  public:
    DeferredKeys(Database& database, const Catalog& catalog, const TableInfo& table, std::string operation);
    DeferredKeys(const DeferredKeys&) = delete;
    DeferredKeys& operator=(const DeferredKeys&) = delete;
    ~DeferredKeys();
    // Error 547 when rows break a key that they did not break before.
    void Check();

  private:
    void Undo();

    Database& database_;
    const Catalog& catalog_;
    const TableInfo& table_;
    const std::string operation_;
    bool isOpen_ = true;
};

}  // namespace vicenter::tsql::engine
