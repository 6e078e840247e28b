#include "tests/faults/set_content.h"

#include <vector>

#include <sqlite3.h>

#include "platform/system/collation.h"
#include "platform/system/files.h"
#include "tsql/functions/functions.h"
#include "tsql/sqlite/database.h"

namespace vicenter::faults {

namespace engine = tsql::engine;

namespace {

class Chinese final : public engine::TextCollation {
  public:
    int Compare(std::string_view a, std::string_view b) const override {
        return system::Collator::Chinese().Compare(a, b);
    }
    std::string Fold(std::string_view text) const override { return system::Collator::Chinese().Fold(text); }
};

void AppendRows(engine::Database& database, const std::string& query, std::string& text) {
    engine::PreparedStatement rows = database.Prepare(query);
    const int columns = sqlite3_column_count(rows.Handle());
    while (database.Step(rows)) {
        for (int column = 0; column < columns; ++column)
            text += (column > 0 ? "|" : "") + (rows.IsNull(column) ? "NULL" : rows.Text(column));
        text += "\n";
    }
}

// Opens it with what the tables' collations and checks call.
void OpenSet(engine::Database& database, const std::filesystem::path& file) {
    static const Chinese collation;
    static engine::FunctionServices services = [] {
        engine::FunctionServices made;
        made.collation = &collation;
        return made;
    }();
    database.Open(system::PathToUtf8(file), false, 1000);
    engine::RegisterFunctions(database.Handle(), services);
}

}  // namespace

SetContent ReadSet(const std::filesystem::path& file) {
    SetContent content;
    if (!std::filesystem::exists(file)) {
        content.fault = "there is no file";
        return content;
    }
    try {
        engine::Database database;
        OpenSet(database, file);
        std::string found;
        AppendRows(database, "PRAGMA integrity_check", found);
        if (found != "ok\n") content.fault = found;
        AppendRows(database, "SELECT FID, FName, FUserID, FNXUserID FROM t_VchTemplate ORDER BY FID",
                   content.templates);
        AppendRows(database, "SELECT * FROM t_VchTemplateEntry ORDER BY FID, FEntryID", content.templates);
        AppendRows(database, "SELECT * FROM t_VchTpControl ORDER BY FID, FNo", content.templates);
        AppendRows(database, "SELECT * FROM t_VchTpProfile ORDER BY FUserID", content.templates);
    } catch (const tsql::SqlError& error) {
        content.fault = error.Text();
    }
    return content;
}

std::string ReadEverything(const std::filesystem::path& file) {
    std::string text;
    try {
        engine::Database database;
        OpenSet(database, file);
        AppendRows(database,
                   "SELECT type, name, tbl_name, sql FROM sqlite_schema WHERE tbl_name <> 'ts$digest' "
                   "ORDER BY type, name",
                   text);
        std::vector<std::string> tables;
        engine::PreparedStatement names = database.Prepare(
            "SELECT name FROM sqlite_schema WHERE type = 'table' AND name <> 'ts$digest' ORDER BY name");
        while (database.Step(names))
            tables.push_back(names.Text(0));
        for (const std::string& table : tables) {
            text += table + "\n";
            AppendRows(database, "SELECT * FROM " + engine::Quoted(table) + " ORDER BY rowid", text);
        }
    } catch (const tsql::SqlError& error) {
        text += "unreadable: " + error.Text();
    }
    return text;
}

}  // namespace vicenter::faults
