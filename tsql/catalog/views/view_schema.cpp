// INFORMATION_SCHEMA.

#include "tsql/catalog/views/view_list.h"

namespace vicenter::tsql::engine {

namespace {

const SqlType kInt = SqlType::Int();
constexpr const char* kSet = "'accountset'";
constexpr const char* kOwner = "'dbo'";

SystemView Tables() {
    return MakeView(
        {{"TABLE_CATALOG", NameType(), kSet},
         {"TABLE_SCHEMA", NameType(), kOwner},
         {"TABLE_NAME", NameType(), "o.name"},
         {"TABLE_TYPE", SqlType::VarChar(10), "CASE o.kind WHEN 'U' THEN 'BASE TABLE' ELSE 'VIEW' END"}},
        "main.\"ts$objects\" AS o WHERE o.kind IN ('U', 'V')");
}

SystemView Views() {
    return MakeView(
        {{"TABLE_CATALOG", NameType(), kSet},
         {"TABLE_SCHEMA", NameType(), kOwner},
         {"TABLE_NAME", NameType(), "o.name"},
         {"VIEW_DEFINITION", SqlType::NVarChar(4000), "CASE WHEN length(o.text) <= 4000 THEN o.text END"},
         {"CHECK_OPTION", SqlType::VarChar(7), "'NONE'"},
         {"IS_UPDATABLE", SqlType::VarChar(2), "'NO'"}},
        "main.\"ts$objects\" AS o WHERE o.kind = 'V'");
}

constexpr const char* kIsText = "c.type IN ('char', 'varchar', 'text', 'nchar', 'nvarchar', 'ntext')";

SystemView Columns() {
    const std::string bytes =
        std::string(
            "CASE WHEN c.type = 'text' THEN 2147483647 WHEN c.type = 'ntext' THEN 2147483646 WHEN "
            "c.length <> 0 THEN ") +
        kColumnBytes + " END";
    const std::string number =
        "c.type IN ('bit', 'tinyint', 'smallint', 'int', 'bigint', 'smallmoney', 'money', 'decimal', 'real', "
        "'float') AND c.type <> 'bit'";
    return MakeView(
        {{"TABLE_CATALOG", NameType(), kSet},
         {"TABLE_SCHEMA", NameType(), kOwner},
         {"TABLE_NAME", NameType(), "o.name"},
         {"COLUMN_NAME", NameType(), "c.name"},
         {"ORDINAL_POSITION", kInt, "c.ordinal"},
         {"COLUMN_DEFAULT", SqlType::NVarChar(4000), kDefaultDefinition},
         {"IS_NULLABLE", SqlType::VarChar(3), "CASE c.nullable WHEN 1 THEN 'YES' ELSE 'NO' END"},
         {"DATA_TYPE", NameType(), "c.type"},
         {"CHARACTER_MAXIMUM_LENGTH", kInt,
          "CASE WHEN c.type = 'text' THEN 2147483647 WHEN c.type = 'ntext' THEN 1073741823 WHEN c.length <> "
          "0 "
          "THEN c.length END"},
         {"CHARACTER_OCTET_LENGTH", kInt, bytes},
         {"NUMERIC_PRECISION", ByteType(), "CASE WHEN " + number + " THEN " + kColumnPrecision + " END"},
         {"NUMERIC_PRECISION_RADIX", SmallType(),
          "CASE WHEN c.type IN ('real', 'float') THEN 2 WHEN " + number + " THEN 10 END"},
         {"NUMERIC_SCALE", kInt,
          "CASE WHEN c.type IN ('real', 'float') THEN NULL WHEN " + number + " THEN " + kColumnScale +
              " END"},
         {"DATETIME_PRECISION", SmallType(),
          std::string(
              "CASE WHEN c.type IN ('datetime', 'smalldatetime', 'datetime2', 'date', 'time') THEN ") +
              kColumnScale + " END"},
         {"CHARACTER_SET_NAME", NameType(),
          std::string("CASE WHEN c.type IN ('nchar', 'nvarchar', 'ntext') THEN 'UNICODE' WHEN ") + kIsText +
              " THEN 'cp936' END"},
         {"COLLATION_NAME", NameType(), kColumnCollation}},
        "main.\"ts$columns\" AS c JOIN main.\"ts$objects\" AS o ON o.id = c.object");
}

SystemView Routines() {
    return MakeView({{"SPECIFIC_CATALOG", NameType(), kSet},
                     {"SPECIFIC_SCHEMA", NameType(), kOwner},
                     {"SPECIFIC_NAME", NameType(), "o.name"},
                     {"ROUTINE_CATALOG", NameType(), kSet},
                     {"ROUTINE_SCHEMA", NameType(), kOwner},
                     {"ROUTINE_NAME", NameType(), "o.name"},
                     {"ROUTINE_TYPE", SqlType::NVarChar(20), "'PROCEDURE'"},
                     {"ROUTINE_DEFINITION", SqlType::NVarChar(4000), "substr(o.text, 1, 4000)"},
                     {"CREATED", SqlType::DateTime(), "o.created || '.000'"},
                     {"LAST_ALTERED", SqlType::DateTime(), "o.created || '.000'"}},
                    "main.\"ts$objects\" AS o WHERE o.kind = 'P'");
}

std::vector<ViewColumn> ConstraintNames() {
    return {{"CONSTRAINT_CATALOG", NameType(), kSet},
            {"CONSTRAINT_SCHEMA", NameType(), kOwner},
            {"CONSTRAINT_NAME", NameType(), "k.name"}};
}
constexpr const char* kKeys = "main.\"ts$keys\" AS k JOIN main.\"ts$objects\" AS o ON o.id = k.object";

SystemView TableConstraints() {
    std::vector<ViewColumn> columns = ConstraintNames();
    columns.push_back({"TABLE_CATALOG", NameType(), kSet});
    columns.push_back({"TABLE_SCHEMA", NameType(), kOwner});
    columns.push_back({"TABLE_NAME", NameType(), "o.name"});
    columns.push_back({"CONSTRAINT_TYPE", SqlType::VarChar(11),
                       "CASE k.kind WHEN 'PK' THEN 'PRIMARY KEY' WHEN 'UQ' THEN 'UNIQUE' WHEN 'FK' THEN "
                       "'FOREIGN KEY' ELSE 'CHECK' END"});
    columns.push_back({"IS_DEFERRABLE", SqlType::VarChar(2), "'NO'"});
    columns.push_back({"INITIALLY_DEFERRED", SqlType::VarChar(2), "'NO'"});
    return MakeView(columns, std::string(kKeys) + " WHERE k.kind IN ('PK', 'UQ', 'FK', 'CK')");
}

SystemView KeyColumnUsage() {
    std::vector<ViewColumn> columns = {
        {"CONSTRAINT_CATALOG", NameType(), kSet},  {"CONSTRAINT_SCHEMA", NameType(), kOwner},
        {"CONSTRAINT_NAME", NameType(), "m.name"}, {"TABLE_CATALOG", NameType(), kSet},
        {"TABLE_SCHEMA", NameType(), kOwner},      {"TABLE_NAME", NameType(), "o.name"},
        {"COLUMN_NAME", NameType(), "m.column"},   {"ORDINAL_POSITION", kInt, "m.place"}};
    return MakeView(columns, std::string(kKeyMembers) +
                                 " JOIN main.\"ts$objects\" AS o ON o.id = m.object WHERE m.kind IN ('PK', "
                                 "'UQ', 'FK')");
}

SystemView ConstraintColumnUsage() {
    std::vector<ViewColumn> columns = {
        {"TABLE_CATALOG", NameType(), kSet},      {"TABLE_SCHEMA", NameType(), kOwner},
        {"TABLE_NAME", NameType(), "o.name"},     {"COLUMN_NAME", NameType(), "m.column"},
        {"CONSTRAINT_CATALOG", NameType(), kSet}, {"CONSTRAINT_SCHEMA", NameType(), kOwner},
        {"CONSTRAINT_NAME", NameType(), "m.name"}};
    return MakeView(columns, std::string(kKeyMembers) +
                                 " JOIN main.\"ts$objects\" AS o ON o.id = m.object WHERE m.kind IN ('PK', "
                                 "'UQ', 'FK')");
}

// The key that a foreign key refers to: the primary key or unique constraint of those columns.
SystemView ReferentialConstraints() {
    std::vector<ViewColumn> columns = ConstraintNames();
    columns.push_back({"UNIQUE_CONSTRAINT_CATALOG", NameType(), kSet});
    columns.push_back({"UNIQUE_CONSTRAINT_SCHEMA", NameType(), kOwner});
    columns.push_back(
        {"UNIQUE_CONSTRAINT_NAME", NameType(),
         "(SELECT u.name FROM main.\"ts$keys\" u JOIN main.\"ts$objects\" t ON t.id = u.object WHERE t.name "
         "= "
         "k.referenced_table AND u.kind IN ('PK', 'UQ', 'UX') AND lower(replace(replace(char(10) || "
         "u.columns, "
         "char(10) || '+', char(10)), char(10) || '-', char(10))) = lower(char(10) || k.referenced_columns) "
         "ORDER BY u.ordinal LIMIT 1)"});
    columns.push_back({"MATCH_OPTION", SqlType::VarChar(7), "'SIMPLE'"});
    columns.push_back({"UPDATE_RULE", SqlType::VarChar(11),
                       "CASE k.on_update WHEN '' THEN 'NO ACTION' ELSE upper(k.on_update) END"});
    columns.push_back({"DELETE_RULE", SqlType::VarChar(11),
                       "CASE k.on_delete WHEN '' THEN 'NO ACTION' ELSE upper(k.on_delete) END"});
    return MakeView(columns, std::string(kKeys) + " WHERE k.kind = 'FK'");
}

SystemView CheckConstraints() {
    std::vector<ViewColumn> columns = ConstraintNames();
    columns.push_back({"CHECK_CLAUSE", SqlType::NVarChar(4000), "'(' || k.text || ')'"});
    return MakeView(columns, std::string(kKeys) + " WHERE k.kind = 'CK'");
}

SystemView Schemata() {
    return MakeView({{"CATALOG_NAME", NameType(), kSet},
                     {"SCHEMA_NAME", NameType(), "column1"},
                     {"SCHEMA_OWNER", NameType(), "column1"}},
                    "(VALUES ('dbo'), ('INFORMATION_SCHEMA'), ('sys'))");
}

}  // namespace

std::vector<NamedView> SchemaViews() {
    constexpr std::string_view kSchema = "information_schema";
    return {
        {kSchema, "tables", Tables()},
        {kSchema, "views", Views()},
        {kSchema, "columns", Columns()},
        {kSchema, "routines", Routines()},
        {kSchema, "table_constraints", TableConstraints()},
        {kSchema, "key_column_usage", KeyColumnUsage()},
        {kSchema, "constraint_column_usage", ConstraintColumnUsage()},
        {kSchema, "referential_constraints", ReferentialConstraints()},
        {kSchema, "check_constraints", CheckConstraints()},
        {kSchema, "schemata", Schemata()},
    };
}

}  // namespace vicenter::tsql::engine
