// Indexes, keys and constraints.

#include "tsql/catalog/views/view_list.h"

namespace vicenter::tsql::engine {

// The lists stand one name a line, ascending columns marked '+', descending ones '-'.
const char* const kKeyMembers = R"((
WITH RECURSIVE part(object, ordinal, kind, name, place, this, rest) AS (
  SELECT object, ordinal, kind, name, 0, '', columns || char(10) FROM main."ts$keys" WHERE columns <> ''
  UNION ALL
  SELECT object, ordinal, kind, name, place + 1, substr(rest, 1, instr(rest, char(10)) - 1),
         substr(rest, instr(rest, char(10)) + 1) FROM part WHERE rest <> '')
SELECT object, ordinal, kind, name, place, CASE kind WHEN 'FK' THEN this ELSE substr(this, 2) END AS column,
       kind <> 'FK' AND substr(this, 1, 1) = '-' AS descending FROM part WHERE place > 0
) AS m)";
const char* const kReferencedMembers = R"((
WITH RECURSIVE part(object, ordinal, place, this, rest) AS (
  SELECT object, ordinal, 0, '', referenced_columns || char(10) FROM main."ts$keys" WHERE kind = 'FK'
  UNION ALL
  SELECT object, ordinal, place + 1, substr(rest, 1, instr(rest, char(10)) - 1),
         substr(rest, instr(rest, char(10)) + 1) FROM part WHERE rest <> '')
SELECT object, ordinal, place, this AS column FROM part WHERE place > 0) AS r)";

namespace {

const SqlType kInt = SqlType::Int();

// A table's keys with the number that the server counts indexes by: 0 is the heap, 1 the clustered one, which
// is the primary key where nothing else has been said.
constexpr const char* kIndexes = R"((
SELECT k.object, k.ordinal, k.name, k.kind, o.name AS owner, o.created,
       CASE WHEN k.kind = 'PK' THEN 1 ELSE 1 + (SELECT count(*) FROM main."ts$keys" e WHERE e.object = k.object
       AND e.kind IN ('UQ', 'UX', 'IX') AND e.ordinal <= k.ordinal) END AS number
FROM main."ts$keys" k JOIN main."ts$objects" o ON o.id = k.object WHERE k.kind IN ('PK', 'UQ', 'UX', 'IX')
UNION ALL
SELECT o.id, 0, NULL, '', o.name, o.created, 0 FROM main."ts$objects" o WHERE o.kind = 'U'
AND NOT EXISTS (SELECT 1 FROM main."ts$keys" k WHERE k.object = o.id AND k.kind = 'PK')
) AS i)";
constexpr const char* kIsUnique = "i.kind IN ('PK', 'UQ', 'UX')";
constexpr const char* kRows = "ts_table_rows(i.owner)";

SystemView Indexes() {
    return MakeView({{"object_id", kInt, "i.object"},
                     {"name", NameType(), "i.name"},
                     {"index_id", kInt, "i.number"},
                     {"type", ByteType(), "min(i.number, 2)"},
                     {"type_desc", SqlType::NVarChar(60),
                      "CASE i.number WHEN 0 THEN 'HEAP' WHEN 1 THEN 'CLUSTERED' ELSE 'NONCLUSTERED' END"},
                     {"is_unique", BitType(), kIsUnique},
                     {"is_primary_key", BitType(), "i.kind = 'PK'"},
                     {"is_unique_constraint", BitType(), "i.kind = 'UQ'"},
                     {"fill_factor", ByteType(), "0"},
                     {"is_disabled", BitType(), "0"},
                     {"has_filter", BitType(), "0"}},
                    kIndexes);
}

SystemView Sysindexes() {
    return MakeView(
        {{"id", kInt, "i.object"},
         {"status", kInt, "CASE i.kind WHEN 'PK' THEN 2066 WHEN 'UQ' THEN 4098 WHEN 'UX' THEN 2 ELSE 0 END"},
         {"indid", SmallType(), "i.number"},
         {"rowcnt", SqlType::Of(TypeKind::kBigInt), kRows},
         {"name", NameType(), "i.name"},
         {"rows", kInt, kRows}},
        kIndexes);
}

SystemView Partitions() {
    return MakeView({{"object_id", kInt, "i.object"},
                     {"index_id", kInt, "i.number"},
                     {"partition_number", kInt, "1"},
                     {"rows", SqlType::Of(TypeKind::kBigInt), kRows}},
                    kIndexes);
}

constexpr const char* kMemberColumn =
    "(SELECT c.ordinal FROM main.\"ts$columns\" c WHERE c.object = m.object AND c.name = m.column)";

SystemView IndexColumns() {
    return MakeView(
        {{"object_id", kInt, "m.object"},
         {"index_id", kInt, "i.number"},
         {"index_column_id", kInt, "m.place"},
         {"column_id", kInt, kMemberColumn},
         {"key_ordinal", ByteType(), "m.place"},
         {"is_descending_key", BitType(), "m.descending"},
         {"is_included_column", BitType(), "0"}},
        std::string(kKeyMembers) + " JOIN " + kIndexes + " ON i.object = m.object AND i.ordinal = m.ordinal");
}

SystemView Sysindexkeys() {
    return MakeView(
        {{"id", kInt, "m.object"},
         {"indid", SmallType(), "i.number"},
         {"colid", SmallType(), kMemberColumn},
         {"keyno", SmallType(), "m.place"}},
        std::string(kKeyMembers) + " JOIN " + kIndexes + " ON i.object = m.object AND i.ordinal = m.ordinal");
}

std::vector<ViewColumn> ConstraintColumns(const char* type, const char* word) {
    return {{"name", NameType(), "k.name"},
            {"object_id", kInt, "-(k.object * 4000 + k.ordinal)"},
            {"principal_id", kInt, "NULL"},
            {"schema_id", kInt, "1"},
            {"parent_object_id", kInt, "k.object"},
            {"type", KindType(), type},
            {"type_desc", SqlType::NVarChar(60), word},
            {"create_date", SqlType::DateTime(), "o.created || '.000'"},
            {"modify_date", SqlType::DateTime(), "o.created || '.000'"},
            {"is_ms_shipped", BitType(), "0"}};
}
constexpr const char* kConstraints = "main.\"ts$keys\" AS k JOIN main.\"ts$objects\" AS o ON o.id = k.object";

SystemView KeyConstraints() {
    std::vector<ViewColumn> columns =
        ConstraintColumns("k.kind",
                          "CASE k.kind WHEN 'PK' THEN 'PRIMARY_KEY_CONSTRAINT' ELSE "
                          "'UNIQUE_CONSTRAINT' END");
    columns.push_back({"unique_index_id", kInt,
                       std::string("(SELECT i.number FROM ") + kIndexes +
                           " WHERE i.object = k.object AND i.ordinal = k.ordinal)"});
    columns.push_back({"is_system_named", BitType(), "0"});
    return MakeView(columns, std::string(kConstraints) + " WHERE k.kind IN ('PK', 'UQ')");
}

SystemView CheckConstraints() {
    std::vector<ViewColumn> columns = ConstraintColumns("'C '", "'CHECK_CONSTRAINT'");
    columns.push_back({"is_disabled", BitType(), "0"});
    columns.push_back({"is_not_trusted", BitType(), "0"});
    columns.push_back({"parent_column_id", kInt, "0"});
    columns.push_back({"definition", SqlType::NVarChar(kMaxLength), "'(' || k.text || ')'"});
    return MakeView(columns, std::string(kConstraints) + " WHERE k.kind = 'CK'");
}

// The number and the word of ON DELETE or ON UPDATE.
std::string Action(const char* column) {
    return std::string("CASE lower(") + column +
           ") WHEN 'cascade' THEN 1 WHEN 'set null' THEN 2 WHEN 'set default' THEN 3 ELSE 0 END";
}
std::string ActionWord(const char* column) {
    return std::string("CASE lower(") + column +
           ") WHEN 'cascade' THEN 'CASCADE' WHEN 'set null' THEN 'SET_NULL' WHEN 'set default' THEN "
           "'SET_DEFAULT' ELSE 'NO_ACTION' END";
}
constexpr const char* kReferenced =
    "(SELECT t.id FROM main.\"ts$objects\" t WHERE t.name = k.referenced_table)";

SystemView ForeignKeys() {
    std::vector<ViewColumn> columns = ConstraintColumns("'F '", "'FOREIGN_KEY_CONSTRAINT'");
    columns.push_back({"referenced_object_id", kInt, kReferenced});
    columns.push_back({"is_disabled", BitType(), "0"});
    columns.push_back({"is_not_trusted", BitType(), "0"});
    columns.push_back({"delete_referential_action", ByteType(), Action("k.on_delete")});
    columns.push_back({"delete_referential_action_desc", SqlType::NVarChar(60), ActionWord("k.on_delete")});
    columns.push_back({"update_referential_action", ByteType(), Action("k.on_update")});
    columns.push_back({"update_referential_action_desc", SqlType::NVarChar(60), ActionWord("k.on_update")});
    return MakeView(columns, std::string(kConstraints) + " WHERE k.kind = 'FK'");
}

const std::string& ForeignMembers() {
    static const std::string text = std::string(kKeyMembers) + " JOIN " + kReferencedMembers +
                                    " ON r.object = m.object AND r.ordinal = m.ordinal AND r.place = m.place "
                                    "JOIN main.\"ts$keys\" AS k ON k.object = m.object AND k.ordinal = "
                                    "m.ordinal";
    return text;
}
constexpr const char* kReferencedColumn =
    "(SELECT c.ordinal FROM main.\"ts$columns\" c JOIN main.\"ts$objects\" t ON t.id = c.object WHERE t.name "
    "= "
    "k.referenced_table AND c.name = r.column)";

SystemView ForeignKeyColumns() {
    return MakeView({{"constraint_object_id", kInt, "-(m.object * 4000 + m.ordinal)"},
                     {"constraint_column_id", kInt, "m.place"},
                     {"parent_object_id", kInt, "m.object"},
                     {"parent_column_id", kInt, kMemberColumn},
                     {"referenced_object_id", kInt, kReferenced},
                     {"referenced_column_id", kInt, kReferencedColumn}},
                    ForeignMembers());
}

SystemView Sysforeignkeys() {
    return MakeView({{"constid", kInt, "-(m.object * 4000 + m.ordinal)"},
                     {"fkeyid", kInt, "m.object"},
                     {"rkeyid", kInt, kReferenced},
                     {"fkey", SmallType(), kMemberColumn},
                     {"rkey", SmallType(), kReferencedColumn},
                     {"keyno", SmallType(), "m.place"}},
                    ForeignMembers());
}

SystemView Sysreferences() {
    return MakeView({{"constid", kInt, "-(k.object * 4000 + k.ordinal)"},
                     {"fkeyid", kInt, "k.object"},
                     {"rkeyid", kInt, kReferenced}},
                    "main.\"ts$keys\" AS k WHERE k.kind = 'FK'");
}

}  // namespace

std::vector<NamedView> KeyViews() {
    return {
        {"sys", "indexes", Indexes()},
        {"dbo", "sysindexes", Sysindexes()},
        {"sys", "partitions", Partitions()},
        {"sys", "index_columns", IndexColumns()},
        {"dbo", "sysindexkeys", Sysindexkeys()},
        {"sys", "key_constraints", KeyConstraints()},
        {"sys", "check_constraints", CheckConstraints()},
        {"sys", "foreign_keys", ForeignKeys()},
        {"sys", "foreign_key_columns", ForeignKeyColumns()},
        {"dbo", "sysforeignkeys", Sysforeignkeys()},
        {"dbo", "sysreferences", Sysreferences()},
    };
}

}  // namespace vicenter::tsql::engine
