// Objects: tables, views, procedures, and the constraints that belong to tables.

#include "tsql/catalog/views/view_list.h"

namespace vicenter::tsql::engine {

namespace {

// The numbers of constraints lie below zero, apart from those of objects; see Catalog::ConstraintId.
constexpr const char* kAllObjects = R"((
SELECT name, id, kind || ' ' AS kind, 0 AS parent, created FROM main."ts$objects"
UNION ALL
SELECT k.name, -(k.object * 4000 + k.ordinal),
       CASE k.kind WHEN 'CK' THEN 'C ' WHEN 'FK' THEN 'F ' ELSE k.kind END, k.object, o.created
FROM main."ts$keys" k JOIN main."ts$objects" o ON o.id = k.object WHERE k.kind IN ('PK', 'UQ', 'FK', 'CK')
UNION ALL
SELECT c.default_name, -(c.object * 4000 + 2000 + c.ordinal), 'D ', c.object, o.created
FROM main."ts$columns" c JOIN main."ts$objects" o ON o.id = c.object WHERE c.default_name <> ''
) AS e)";

constexpr const char* kKindWords =
    "CASE kind WHEN 'U ' THEN 'USER_TABLE' WHEN 'V ' THEN 'VIEW' WHEN 'P ' THEN 'SQL_STORED_PROCEDURE' "
    "WHEN 'C ' THEN 'CHECK_CONSTRAINT' WHEN 'F ' THEN 'FOREIGN_KEY_CONSTRAINT' WHEN 'PK' THEN "
    "'PRIMARY_KEY_CONSTRAINT' WHEN 'UQ' THEN 'UNIQUE_CONSTRAINT' ELSE 'DEFAULT_CONSTRAINT' END";
// The older table has one kind for both sorts of keys.
constexpr const char* kOldKind = "CASE kind WHEN 'PK' THEN 'K ' WHEN 'UQ' THEN 'K ' ELSE kind END";
constexpr const char* kCreated = "created || '.000'";

const SqlType kInt = SqlType::Int();

std::vector<ViewColumn> ObjectColumns() {
    return {{"name", NameType(), "name"},
            {"object_id", kInt, "id"},
            {"principal_id", kInt, "NULL"},
            {"schema_id", kInt, "1"},
            {"parent_object_id", kInt, "parent"},
            {"type", KindType(), "kind"},
            {"type_desc", SqlType::NVarChar(60), kKindWords},
            {"create_date", SqlType::DateTime(), kCreated},
            {"modify_date", SqlType::DateTime(), kCreated},
            {"is_ms_shipped", BitType(), "0"},
            {"is_published", BitType(), "0"},
            {"is_schema_published", BitType(), "0"}};
}

SystemView Sysobjects() {
    return MakeView({{"name", NameType(), "name"},
                     {"id", kInt, "id"},
                     {"xtype", KindType(), "kind"},
                     {"uid", SmallType(), "1"},
                     {"info", SmallType(), "0"},
                     {"status", kInt, "0"},
                     {"parent_obj", kInt, "parent"},
                     {"crdate", SqlType::DateTime(), kCreated},
                     {"refdate", SqlType::DateTime(), kCreated},
                     {"type", KindType(), kOldKind}},
                    kAllObjects);
}

SystemView ObjectsOf(const char* kind, std::vector<ViewColumn> more = {}) {
    std::vector<ViewColumn> columns = ObjectColumns();
    for (ViewColumn& column : more)
        columns.push_back(std::move(column));
    return MakeView(columns, std::string(kAllObjects) + " WHERE kind = '" + kind + "'");
}

SystemView Databases() {
    return MakeView({{"name", NameType(), "'accountset'"},
                     {"database_id", kInt, "5"},
                     {"compatibility_level", ByteType(), "120"},
                     {"collation_name", NameType(), "'Chinese_PRC_CI_AS'"},
                     {"is_read_only", BitType(), "0"},
                     {"state", ByteType(), "0"},
                     {"state_desc", SqlType::NVarChar(60), "'ONLINE'"}},
                    "(SELECT 1)");
}

SystemView Sysdatabases() {
    return MakeView({{"name", NameType(), "'accountset'"}, {"dbid", SmallType(), "5"}}, "(SELECT 1)");
}

SystemView Schemas() {
    return MakeView(
        {{"name", NameType(), "column1"}, {"schema_id", kInt, "column2"}, {"principal_id", kInt, "column2"}},
        "(VALUES ('dbo', 1), ('INFORMATION_SCHEMA', 3), ('sys', 4))");
}

}  // namespace

std::vector<NamedView> ObjectViews() {
    return {
        {"dbo", "sysobjects", Sysobjects()},
        {"sys", "objects", MakeView(ObjectColumns(), kAllObjects)},
        {"sys", "all_objects", MakeView(ObjectColumns(), kAllObjects)},
        {"sys", "tables",
         ObjectsOf("U ", {{"lob_data_space_id", kInt, "0"},
                          {"max_column_id_used", kInt,
                           "(SELECT max(ordinal) FROM main.\"ts$columns\" WHERE object = id)"}})},
        {"sys", "views", ObjectsOf("V ", {{"with_check_option", BitType(), "0"}})},
        {"sys", "procedures", ObjectsOf("P ", {{"is_auto_executed", BitType(), "0"}})},
        {"sys", "databases", Databases()},
        {"dbo", "sysdatabases", Sysdatabases()},
        {"sys", "schemas", Schemas()},
    };
}

}  // namespace vicenter::tsql::engine
