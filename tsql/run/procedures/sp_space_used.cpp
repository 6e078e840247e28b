// sp_spaceused: how much room the set or one of its tables takes, from the pages of its file.

#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/run/system_procedures.h"

namespace vicenter::tsql::engine {

const SystemProcedure kSpSpaceUsed = {"sp_spaceused", R"(create procedure sp_spaceused
    @objname nvarchar(776) = null, @updateusage varchar(5) = 'false'
as
return 0)"};

namespace {

constexpr std::int64_t kKilobyte = 1024;

Value Kilobytes(std::int64_t bytes) {
    return Value(std::to_string((bytes + kKilobyte - 1) / kKilobyte) + " KB");
}

Value Megabytes(std::int64_t bytes) {
    const std::int64_t hundredths = bytes * 100 / (kKilobyte * kKilobyte);
    std::string rest = std::to_string(hundredths % 100);
    if (rest.size() == 1) rest.insert(0, 1, '0');
    return Value(std::to_string(hundredths / 100) + "." + rest + " MB");
}

}  // namespace

std::int64_t Executor::NumberOf(const std::string& sql, std::string_view name) {
    PreparedStatement statement = database_.Prepare(sql);
    if (!name.empty()) statement.Bind(1, name);
    return database_.Step(statement) ? statement.Int(0) : 0;
}

void Executor::SpaceUsed() {
    const Value& object = frame_->variables.at("@objname").value;
    const SqlType size = SqlType::VarChar(18);
    const SqlType name = SqlType::NVarChar(128);
    // All of it, what rows take of it, and what is left over in their pages.
    if (object.IsNull()) {
        const std::int64_t page = NumberOf("PRAGMA page_size", {});
        const std::int64_t pages = NumberOf("PRAGMA page_count", {});
        const std::int64_t left = NumberOf("PRAGMA freelist_count", {});
        sink_->BeginResult({{"database_name", name}, {"database_size", size}, {"unallocated space", size}});
        std::vector<Value> whole{Value(std::string("accountset")), Megabytes(pages * page),
                                 Megabytes(left * page)};
        sink_->AddRow(whole);
        const std::int64_t indexes = NumberOf(
            "SELECT ifnull(sum(pgsize - unused), 0) FROM dbstat('main', 1) WHERE name IN (SELECT name "
            "FROM sqlite_schema WHERE type = 'index')",
            {});
        const std::int64_t unused = NumberOf("SELECT ifnull(sum(unused), 0) FROM dbstat('main', 1)", {});
        const std::int64_t reserved = (pages - left) * page;
        sink_->BeginResult({{"reserved", size}, {"data", size}, {"index_size", size}, {"unused", size}});
        std::vector<Value> parts{Kilobytes(reserved), Kilobytes(reserved - indexes - unused),
                                 Kilobytes(indexes), Kilobytes(unused)};
        sink_->AddRow(parts);
        return;
    }
    const auto found = catalog_.ObjectId(object.Text(), "U");
    const auto entry = found ? catalog_.FindObject(*found) : std::nullopt;
    if (!entry || entry->table->temporary) throw MakeError(15009, {}, {object.Text(), "accountset"});
    const TableInfo& table = *entry->table;
    const std::int64_t rows = NumberOf("SELECT count(*) FROM " + table.Sql(), {});
    const std::string of = " FROM dbstat('main', 1) WHERE name ";
    const std::string indexesOf =
        "IN (SELECT name FROM sqlite_schema WHERE type = 'index' AND tbl_name = ?1)";
    const std::string used = "SELECT ifnull(sum(pgsize - unused), 0)" + of;
    const std::int64_t data = NumberOf(used + "= ?1", table.physical);
    const std::int64_t indexes = NumberOf(used + indexesOf, table.physical);
    const std::int64_t unused =
        NumberOf("SELECT ifnull(sum(unused), 0)" + of + "= ?1 OR name " + indexesOf, table.physical);
    sink_->BeginResult({{"name", name},
                        {"rows", SqlType::Of(TypeKind::kChar, 20)},
                        {"reserved", size},
                        {"data", size},
                        {"index_size", size},
                        {"unused", size}});
    std::string count = std::to_string(rows);
    constexpr std::size_t kWide = 20;
    count.resize(kWide, ' ');
    std::vector<Value> row{Value(table.name), Value(count),       Kilobytes(data + indexes + unused),
                           Kilobytes(data),   Kilobytes(indexes), Kilobytes(unused)};
    sink_->AddRow(row);
}

}  // namespace vicenter::tsql::engine
