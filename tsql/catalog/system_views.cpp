// The server's own views, as far as scripts ask them whether something exists.

#include "tsql/catalog/system_views.h"

#include <string_view>

#include "automation/object.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

struct NamedView {
    std::string_view schema;  // "sys", "dbo" for the old names, "information_schema"
    std::string_view name;
    SystemView view;
};

const SqlType kName = SqlType::NVarChar(128);
const SqlType kKind = SqlType::Of(TypeKind::kChar, 2);
const SqlType kInt = SqlType::Int();

constexpr const char* kObjectsSql =
    "SELECT name, id, id AS object_id, CASE kind WHEN 'U' THEN 'U ' WHEN 'V' THEN 'V ' ELSE 'P ' END AS "
    "xtype, "
    "CASE kind WHEN 'U' THEN 'U ' WHEN 'V' THEN 'V ' ELSE 'P ' END AS type, "
    "CASE kind WHEN 'U' THEN 'USER_TABLE' WHEN 'V' THEN 'VIEW' ELSE 'SQL_STORED_PROCEDURE' END AS type_desc, "
    "1 AS uid, 1 AS schema_id, 0 AS parent_obj, 0 AS parent_object_id, created || '.000' AS crdate, "
    "created || '.000' AS create_date FROM main.\"ts$objects\" "
    "UNION ALL SELECT k.name, -k.object * 1000 - k.ordinal, -k.object * 1000 - k.ordinal, "
    "CASE k.kind WHEN 'CK' THEN 'C ' WHEN 'FK' THEN 'F ' ELSE k.kind END, "
    "CASE k.kind WHEN 'CK' THEN 'C ' WHEN 'FK' THEN 'F ' ELSE k.kind END, "
    "CASE k.kind WHEN 'CK' THEN 'CHECK_CONSTRAINT' WHEN 'FK' THEN 'FOREIGN_KEY_CONSTRAINT' WHEN 'PK' THEN "
    "'PRIMARY_KEY_CONSTRAINT' ELSE 'UNIQUE_CONSTRAINT' END, 1, 1, k.object, k.object, o.created || '.000', "
    "o.created || '.000' FROM main.\"ts$keys\" k JOIN main.\"ts$objects\" o ON o.id = k.object "
    "WHERE k.kind IN ('PK', 'UQ', 'FK', 'CK')";

const std::vector<ResultColumn>& ObjectColumns() {
    static const std::vector<ResultColumn> columns = {
        {"name", kName},
        {"id", kInt},
        {"object_id", kInt},
        {"xtype", kKind},
        {"type", kKind},
        {"type_desc", SqlType::NVarChar(60)},
        {"uid", kInt},
        {"schema_id", kInt},
        {"parent_obj", kInt},
        {"parent_object_id", kInt},
        {"crdate", SqlType::DateTime()},
        {"create_date", SqlType::DateTime()},
    };
    return columns;
}

constexpr const char* kTablesSql =
    "SELECT name, id AS object_id, 1 AS schema_id, 'U ' AS type, created || '.000' AS create_date "
    "FROM main.\"ts$objects\" WHERE kind = 'U'";
constexpr const char* kViewsSql =
    "SELECT name, id AS object_id, 1 AS schema_id, 'V ' AS type, created || '.000' AS create_date "
    "FROM main.\"ts$objects\" WHERE kind = 'V'";
constexpr const char* kProceduresSql =
    "SELECT name, id AS object_id, 1 AS schema_id, 'P ' AS type, created || '.000' AS create_date "
    "FROM main.\"ts$objects\" WHERE kind = 'P'";

const std::vector<ResultColumn>& TableColumns() {
    static const std::vector<ResultColumn> columns = {
        {"name", kName},
        {"object_id", kInt},
        {"schema_id", kInt},
        {"type", kKind},
        {"create_date", SqlType::DateTime()},
    };
    return columns;
}

constexpr const char* kColumnsSql =
    "SELECT c.name, c.object AS id, c.object AS object_id, c.ordinal AS colid, c.ordinal AS column_id, "
    "c.length AS length, c.length AS max_length, c.precision AS prec, c.precision AS precision, c.scale AS "
    "scale, "
    "c.nullable AS isnullable, c.nullable AS is_nullable, c.identity AS is_identity, c.type AS type_name "
    "FROM main.\"ts$columns\" c";

constexpr const char* kIndexesSql =
    "SELECT k.name, k.object AS id, k.object AS object_id, k.ordinal AS indid, k.ordinal AS index_id, "
    "k.kind IN ('PK', 'UQ', 'UX') AS is_unique, k.kind = 'PK' AS is_primary_key FROM main.\"ts$keys\" k "
    "WHERE k.kind IN ('PK', 'UQ', 'UX', 'IX')";

constexpr const char* kSchemaTablesSql =
    "SELECT 'accountset' AS TABLE_CATALOG, 'dbo' AS TABLE_SCHEMA, name AS TABLE_NAME, CASE kind WHEN 'U' "
    "THEN "
    "'BASE TABLE' ELSE 'VIEW' END AS TABLE_TYPE FROM main.\"ts$objects\" WHERE kind IN ('U', 'V')";

constexpr const char* kSchemaColumnsSql =
    "SELECT 'accountset' AS TABLE_CATALOG, 'dbo' AS TABLE_SCHEMA, o.name AS TABLE_NAME, c.name AS "
    "COLUMN_NAME, "
    "c.ordinal AS ORDINAL_POSITION, nullif(c.default_text, '') AS COLUMN_DEFAULT, "
    "CASE c.nullable WHEN 1 THEN 'YES' ELSE 'NO' END AS IS_NULLABLE, c.type AS DATA_TYPE, "
    "CASE WHEN c.length = 0 THEN NULL ELSE c.length END AS CHARACTER_MAXIMUM_LENGTH, "
    "CASE WHEN c.precision = 0 THEN NULL ELSE c.precision END AS NUMERIC_PRECISION, "
    "CASE WHEN c.precision = 0 THEN NULL ELSE c.scale END AS NUMERIC_SCALE "
    "FROM main.\"ts$columns\" c JOIN main.\"ts$objects\" o ON o.id = c.object";

constexpr const char* kRoutinesSql =
    "SELECT 'dbo' AS ROUTINE_SCHEMA, name AS ROUTINE_NAME, 'PROCEDURE' AS ROUTINE_TYPE, text AS "
    "ROUTINE_DEFINITION "
    "FROM main.\"ts$objects\" WHERE kind = 'P'";

const std::vector<NamedView>& Views() {
    static const std::vector<ResultColumn> columnColumns = {
        {"name", kName},       {"id", kInt},         {"object_id", kInt},  {"colid", kInt},
        {"column_id", kInt},   {"length", kInt},     {"max_length", kInt}, {"prec", kInt},
        {"precision", kInt},   {"scale", kInt},      {"isnullable", kInt}, {"is_nullable", kInt},
        {"is_identity", kInt}, {"type_name", kName},
    };
    static const std::vector<ResultColumn> indexColumns = {
        {"name", kName},    {"id", kInt},        {"object_id", kInt},      {"indid", kInt},
        {"index_id", kInt}, {"is_unique", kInt}, {"is_primary_key", kInt},
    };
    static const std::vector<ResultColumn> schemaTables = {
        {"TABLE_CATALOG", kName}, {"TABLE_SCHEMA", kName}, {"TABLE_NAME", kName}, {"TABLE_TYPE", kName}};
    static const std::vector<ResultColumn> schemaColumns = {
        {"TABLE_CATALOG", kName},    {"TABLE_SCHEMA", kName},    {"TABLE_NAME", kName},
        {"COLUMN_NAME", kName},      {"ORDINAL_POSITION", kInt}, {"COLUMN_DEFAULT", SqlType::NVarChar(4000)},
        {"IS_NULLABLE", kName},      {"DATA_TYPE", kName},       {"CHARACTER_MAXIMUM_LENGTH", kInt},
        {"NUMERIC_PRECISION", kInt}, {"NUMERIC_SCALE", kInt}};
    static const std::vector<ResultColumn> routines = {{"ROUTINE_SCHEMA", kName},
                                                       {"ROUTINE_NAME", kName},
                                                       {"ROUTINE_TYPE", kName},
                                                       {"ROUTINE_DEFINITION", SqlType::NVarChar(4000)}};
    static const std::vector<NamedView> views = {
        {"dbo", "sysobjects", {kObjectsSql, ObjectColumns()}},
        {"sys", "objects", {kObjectsSql, ObjectColumns()}},
        {"sys", "all_objects", {kObjectsSql, ObjectColumns()}},
        {"sys", "tables", {kTablesSql, TableColumns()}},
        {"sys", "views", {kViewsSql, TableColumns()}},
        {"sys", "procedures", {kProceduresSql, TableColumns()}},
        {"dbo", "syscolumns", {kColumnsSql, columnColumns}},
        {"sys", "columns", {kColumnsSql, columnColumns}},
        {"dbo", "sysindexes", {kIndexesSql, indexColumns}},
        {"sys", "indexes", {kIndexesSql, indexColumns}},
        {"information_schema", "tables", {kSchemaTablesSql, schemaTables}},
        {"information_schema", "columns", {kSchemaColumnsSql, schemaColumns}},
        {"information_schema", "routines", {kRoutinesSql, routines}},
    };
    return views;
}

}  // namespace

const SystemView* FindSystemView(const ObjectName& name) {
    for (const NamedView& entry : Views()) {
        if (!SameName(entry.name, name.Object())) continue;
        const std::string& schema = name.Schema();
        // The old names need no schema, and take both.
        if (entry.schema == "dbo" ? schema.empty() || SameName(schema, "dbo") || SameName(schema, "sys")
                                  : SameName(schema, entry.schema)) {
            return &entry.view;
        }
    }
    return nullptr;
}

}  // namespace vicenter::tsql::engine
