#include "tests/faults/set_content.h"

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

void AppendRows(engine::Database& database, const std::string& query, int columns, std::string& text) {
    engine::PreparedStatement rows = database.Prepare(query);
    while (database.Step(rows)) {
        for (int column = 0; column < columns; ++column)
            text += (column > 0 ? "|" : "") + (rows.IsNull(column) ? "NULL" : rows.Text(column));
        text += "\n";
    }
}

}  // namespace

SetContent ReadSet(const std::filesystem::path& file) {
    SetContent content;
    if (!std::filesystem::exists(file)) {
        content.fault = "there is no file";
        return content;
    }
    static const Chinese collation;
    engine::FunctionServices services;
    services.collation = &collation;
    try {
        engine::Database database;
        database.Open(system::PathToUtf8(file), false, 1000);
        engine::RegisterFunctions(database.Handle(), services);
        std::string found;
        AppendRows(database, "PRAGMA integrity_check", 1, found);
        if (found != "ok\n") content.fault = found;
        AppendRows(database, "SELECT FID, FName, FUserID, FNXUserID FROM t_VchTemplate ORDER BY FID", 4,
                   content.templates);
        AppendRows(database, "SELECT * FROM t_VchTemplateEntry ORDER BY FID, FEntryID", 23,
                   content.templates);
        AppendRows(database, "SELECT * FROM t_VchTpControl ORDER BY FID, FNo", 6, content.templates);
        AppendRows(database, "SELECT * FROM t_VchTpProfile ORDER BY FUserID", 2, content.templates);
    } catch (const tsql::SqlError& error) {
        content.fault = error.Text();
    }
    return content;
}

}  // namespace vicenter::faults
