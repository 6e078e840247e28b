#include "tsql/sqlite/copy.h"

#include <array>
#include <cstdio>
#include <string_view>

#include <sqlite3.h>

#include "text/fnv.h"

namespace vicenter::tsql::engine {

namespace {

class Hash {
  public:
    void Add(const void* data, std::size_t size) {
        state_.Add(std::string_view(static_cast<const char*>(data), size));
    }
    void Add(std::uint64_t number) { Add(&number, sizeof number); }
    std::string Text() const {
        std::array<char, 17> text{};
        std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(state_.Value()));
        return text.data();
    }

  private:
    text::Fnv state_;
};

void AddValue(Hash& hash, sqlite3_stmt* statement, int column) {
    const int type = sqlite3_column_type(statement, column);
    hash.Add(static_cast<std::uint64_t>(type));
    switch (type) {
        case SQLITE_NULL:
            break;
        case SQLITE_INTEGER:
            hash.Add(static_cast<std::uint64_t>(sqlite3_column_int64(statement, column)));
            break;
        case SQLITE_FLOAT: {
            const double number = sqlite3_column_double(statement, column);
            hash.Add(&number, sizeof number);
            break;
        }
        default: {
            const void* bytes = sqlite3_column_blob(statement, column);
            const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement, column));
            hash.Add(size);
            hash.Add(bytes, bytes == nullptr ? 0 : size);
        }
    }
}

}  // namespace

void CopyContent(Database& from, Database& to) {
    sqlite3_backup* copy = sqlite3_backup_init(to.Handle(), "main", from.Handle(), "main");
    if (copy == nullptr) throw to.LastFailure();
    constexpr int kAllPages = -1;
    sqlite3_backup_step(copy, kAllPages);
    if (sqlite3_backup_finish(copy) != SQLITE_OK) throw to.LastFailure();
}

Digest DigestOf(Database& database, const std::string& query) {
    PreparedStatement rows = database.Prepare(query);
    Hash hash;
    Digest digest;
    while (database.Step(rows)) {
        const int columns = sqlite3_column_count(rows.Handle());
        for (int column = 0; column < columns; ++column)
            AddValue(hash, rows.Handle(), column);
        ++digest.rows;
    }
    digest.text = hash.Text();
    return digest;
}

}  // namespace vicenter::tsql::engine
