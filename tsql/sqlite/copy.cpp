#include "tsql/sqlite/copy.h"

#include <array>
#include <cstdio>
#include <cstring>

#include <sqlite3.h>

namespace vicenter::tsql::engine {

namespace {

// FNV-1a of 64 bits: each step maps states one to one, so that two inputs of equal length that differ in one
// byte can never meet again.
class Hash {
  public:
    void Add(const void* data, std::size_t size) {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < size; ++i)
            state_ = (state_ ^ bytes[i]) * 0x100000001B3ULL;
    }
    void Add(std::uint64_t number) { Add(&number, sizeof number); }
    std::string Text() const {
        std::array<char, 17> text{};
        std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(state_));
        return text.data();
    }

  private:
    std::uint64_t state_ = 0xCBF29CE484222325ULL;
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
