#pragma once

// Copies of a whole account set, and a digest of what a table holds.

#include <cstdint>
#include <string>

#include "tsql/sqlite/database.h"

namespace vicenter::tsql::engine {

// Puts the content of one account set in the place of another's, in one transaction, by SQLite's backup
// interface: as of one moment, while others work on both. Throws SqlError; nothing has changed then.
void CopyContent(Database& from, Database& to);

struct Digest {
    std::int64_t rows = 0;
    std::string text;

    friend bool operator==(const Digest&, const Digest&) = default;
};

// Of all values of a query's rows, in their order. Any one byte that is another gives another digest.
Digest DigestOf(Database& database, const std::string& query);

}  // namespace vicenter::tsql::engine
