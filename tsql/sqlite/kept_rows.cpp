#include "tsql/sqlite/kept_rows.h"

#include <new>

#include <sqlite3.h>

#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

void KeptRows::Free::operator()(sqlite3_value* value) const noexcept {
    sqlite3_value_free(value);
}

KeptRows::KeptRows(Database& database, const std::string& table) {
    PreparedStatement rows = database.Prepare("SELECT * FROM " + table + " ORDER BY _rowid_");
    while (database.Step(rows)) {
        Row row;
        for (int column = 0; column < sqlite3_column_count(rows.Handle()); ++column) {
            row.emplace_back(sqlite3_value_dup(sqlite3_column_value(rows.Handle(), column)));
            if (!row.back()) throw std::bad_alloc();
        }
        rows_.push_back(std::move(row));
    }
}

void KeptRows::PutBack(Database& database, const std::string& table) const {
    if (rows_.empty()) return;
    std::string marks;
    for (std::size_t i = 0; i < rows_.front().size(); ++i)
        marks += i == 0 ? "?" : ", ?";
    PreparedStatement insert = database.Prepare("INSERT INTO " + table + " VALUES (" + marks + ")");
    for (const Row& row : rows_) {
        int parameter = 0;
        for (const auto& value : row)
            CheckBound(sqlite3_bind_value(insert.Handle(), ++parameter, value.get()));
        database.Step(insert);
        insert.Reset();
    }
}

}  // namespace vicenter::tsql::engine
