// Columns and types.

#include "tsql/catalog/views/view_list.h"

namespace vicenter::tsql::engine {

const char* const kColumnBytes =
    "(CASE c.type WHEN 'bit' THEN 1 WHEN 'tinyint' THEN 1 WHEN 'smallint' THEN 2 WHEN 'int' THEN 4 WHEN "
    "'bigint' THEN 8 WHEN 'smallmoney' THEN 4 WHEN 'money' THEN 8 WHEN 'real' THEN 4 WHEN 'float' THEN 8 "
    "WHEN 'decimal' THEN CASE WHEN c.precision < 10 THEN 5 WHEN c.precision < 20 THEN 9 WHEN c.precision < "
    "29 THEN 13 ELSE 17 END WHEN 'time' THEN 5 WHEN 'date' THEN 3 WHEN 'smalldatetime' THEN 4 WHEN "
    "'datetime' THEN 8 WHEN 'datetime2' THEN 8 WHEN 'uniqueidentifier' THEN 16 WHEN 'text' THEN 16 WHEN "
    "'ntext' THEN 16 ELSE CASE WHEN c.length < 0 THEN -1 WHEN c.type IN ('nchar', 'nvarchar') THEN c.length "
    "* 2 ELSE c.length END END)";
const char* const kColumnPrecision =
    "(CASE c.type WHEN 'bit' THEN 1 WHEN 'tinyint' THEN 3 WHEN 'smallint' THEN 5 WHEN 'int' THEN 10 WHEN "
    "'bigint' THEN 19 WHEN 'smallmoney' THEN 10 WHEN 'money' THEN 19 WHEN 'real' THEN 24 WHEN 'float' THEN "
    "53 WHEN 'decimal' THEN c.precision WHEN 'time' THEN ifnull(nullif(c.precision, 0), 16) WHEN 'date' THEN 10 WHEN 'smalldatetime' THEN "
    "16 WHEN 'datetime' THEN 23 WHEN 'datetime2' THEN ifnull(nullif(c.precision, 0), 27) ELSE 0 END)";
const char* const kColumnScale =
    "(CASE c.type WHEN 'smallmoney' THEN 4 WHEN 'money' THEN 4 WHEN 'decimal' THEN c.scale WHEN 'time' THEN "
    "iif(c.precision = 0, 7, c.scale) WHEN 'datetime' THEN 3 WHEN 'datetime2' THEN iif(c.precision = 0, 7, "
    "c.scale) ELSE 0 END)";
const char* const kColumnTypeId =
    "(CASE c.type WHEN 'text' THEN 35 WHEN 'uniqueidentifier' THEN 36 WHEN 'date' THEN 40 WHEN 'time' THEN "
    "41 WHEN 'datetime2' THEN 42 WHEN 'tinyint' THEN 48 WHEN 'smallint' THEN 52 WHEN 'int' THEN 56 WHEN "
    "'smalldatetime' THEN 58 WHEN 'real' THEN 59 WHEN 'money' THEN 60 WHEN 'datetime' THEN 61 WHEN 'float' "
    "THEN 62 WHEN 'ntext' THEN 99 WHEN 'bit' THEN 104 WHEN 'decimal' THEN 106 WHEN 'smallmoney' THEN 122 "
    "WHEN 'bigint' THEN 127 WHEN 'varbinary' THEN 165 WHEN 'varchar' THEN 167 WHEN 'binary' THEN 173 WHEN "
    "'char' THEN 175 WHEN 'nvarchar' THEN 231 WHEN 'nchar' THEN 239 END)";
const char* const kColumnCollation =
    "CASE WHEN c.type IN ('char', 'varchar', 'text', 'nchar', 'nvarchar', 'ntext') THEN 'Chinese_PRC_CI_AS' "
    "END";

const char* const kDefaultDefinition =
    "(CASE WHEN c.default_text = '' THEN NULL WHEN ltrim(c.default_text, '-') NOT GLOB '*[^0-9.]*' THEN '((' "
    "|| "
    "c.default_text || '))' ELSE '(' || c.default_text || ')' END)";

namespace {

const SqlType kInt = SqlType::Int();
constexpr const char* kColumns = "main.\"ts$columns\" AS c";
constexpr const char* kDefaultId =
    "CASE WHEN c.default_name <> '' THEN -(c.object * 4000 + 2000 + c.ordinal) ELSE 0 END";
constexpr const char* kIsComputed = "c.computed_text <> ''";

std::vector<ViewColumn> PlainColumns() {
    return {{"object_id", kInt, "c.object"},
            {"name", NameType(), "c.name"},
            {"column_id", kInt, "c.ordinal"},
            {"system_type_id", ByteType(), kColumnTypeId},
            {"user_type_id", kInt, kColumnTypeId},
            {"max_length", SmallType(), kColumnBytes},
            {"precision", ByteType(), kColumnPrecision},
            {"scale", ByteType(), kColumnScale},
            {"collation_name", NameType(), kColumnCollation},
            {"is_nullable", BitType(), "c.nullable"},
            {"is_ansi_padded", BitType(), "1"},
            {"is_rowguidcol", BitType(), "0"},
            {"is_identity", BitType(), "c.identity"},
            {"is_computed", BitType(), kIsComputed},
            {"default_object_id", kInt, kDefaultId}};
}

SystemView Syscolumns() {
    return MakeView(
        {{"name", NameType(), "c.name"},
         {"id", kInt, "c.object"},
         {"xtype", ByteType(), kColumnTypeId},
         {"typestat", ByteType(), "0"},
         {"xusertype", SmallType(), kColumnTypeId},
         {"length", SmallType(), kColumnBytes},
         {"xprec", ByteType(), kColumnPrecision},
         {"xscale", ByteType(), kColumnScale},
         {"colid", SmallType(), "c.ordinal"},
         {"cdefault", kInt, kDefaultId},
         {"domain", kInt, "0"},
         {"number", SmallType(), "0"},
         {"colorder", SmallType(), "c.ordinal"},
         {"colstat", SmallType(), "c.identity | CASE WHEN c.computed_text <> '' THEN 4 ELSE 0 END"},
         {"status", ByteType(), "c.identity * 128 | c.nullable * 8"},
         {"prec", SmallType(),
          std::string("CASE WHEN c.length <> 0 THEN c.length ELSE ") + kColumnPrecision + " END"},
         {"scale", kInt,
          std::string("CASE WHEN c.type IN ('bit', 'real', 'float') OR c.length <> 0 THEN NULL ELSE ") +
              kColumnScale + " END"},
         {"iscomputed", kInt, kIsComputed},
         {"isoutparam", kInt, "0"},
         {"isnullable", kInt, "c.nullable"},
         {"collation", NameType(), kColumnCollation}},
        kColumns);
}

// name, number, bytes, precision, scale, length may be given
constexpr const char* kTypes = R"((VALUES
('image', 34, 16, 0, 0, 0), ('text', 35, 16, 0, 0, 1), ('uniqueidentifier', 36, 16, 0, 0, 0),
('date', 40, 3, 10, 0, 0), ('time', 41, 5, 16, 7, 0), ('datetime2', 42, 8, 27, 7, 0),
('tinyint', 48, 1, 3, 0, 0), ('smallint', 52, 2, 5, 0, 0), ('int', 56, 4, 10, 0, 0),
('smalldatetime', 58, 4, 16, 0, 0), ('real', 59, 4, 24, 0, 0), ('money', 60, 8, 19, 4, 0),
('datetime', 61, 8, 23, 3, 0), ('float', 62, 8, 53, 0, 0), ('ntext', 99, 16, 0, 0, 1),
('bit', 104, 1, 1, 0, 0), ('decimal', 106, 17, 38, 38, 0), ('numeric', 108, 17, 38, 38, 0),
('smallmoney', 122, 4, 10, 4, 0), ('bigint', 127, 8, 19, 0, 0), ('varbinary', 165, 8000, 0, 0, 0),
('varchar', 167, 8000, 0, 0, 1), ('binary', 173, 8000, 0, 0, 0), ('char', 175, 8000, 0, 0, 1),
('nvarchar', 231, 8000, 0, 0, 1), ('sysname', 256, 256, 0, 0, 1), ('nchar', 239, 8000, 0, 0, 1)) AS t)";
constexpr const char* kTypeNumber = "CASE t.column2 WHEN 256 THEN 231 ELSE t.column2 END";
constexpr const char* kTypeCollation = "CASE t.column6 WHEN 1 THEN 'Chinese_PRC_CI_AS' END";

SystemView Types() {
    return MakeView({{"name", NameType(), "t.column1"},
                     {"system_type_id", ByteType(), kTypeNumber},
                     {"user_type_id", kInt, "t.column2"},
                     {"schema_id", kInt, "4"},
                     {"principal_id", kInt, "NULL"},
                     {"max_length", SmallType(), "t.column3"},
                     {"precision", ByteType(), "t.column4"},
                     {"scale", ByteType(), "t.column5"},
                     {"collation_name", NameType(), kTypeCollation},
                     {"is_nullable", BitType(), "t.column2 <> 256"},
                     {"is_user_defined", BitType(), "0"},
                     {"is_assembly_type", BitType(), "0"},
                     {"default_object_id", kInt, "0"},
                     {"rule_object_id", kInt, "0"},
                     {"is_table_type", BitType(), "0"}},
                    kTypes);
}

SystemView Systypes() {
    return MakeView({{"name", NameType(), "t.column1"},
                     {"xtype", ByteType(), kTypeNumber},
                     {"status", ByteType(), "CASE t.column2 WHEN 256 THEN 1 ELSE 0 END"},
                     {"xusertype", SmallType(), "t.column2"},
                     {"length", SmallType(), "t.column3"},
                     {"xprec", ByteType(), "t.column4"},
                     {"xscale", ByteType(), "t.column5"},
                     {"uid", SmallType(), "4"},
                     {"collation", NameType(), kTypeCollation}},
                    kTypes);
}

SystemView IdentityColumns() {
    std::vector<ViewColumn> columns = PlainColumns();
    columns.push_back({"seed_value", SqlType::Of(TypeKind::kBigInt), "c.seed"});
    columns.push_back({"increment_value", SqlType::Of(TypeKind::kBigInt), "c.increment"});
    columns.push_back({"last_value", SqlType::Of(TypeKind::kBigInt),
                       "(SELECT last FROM main.\"ts$identity\" WHERE object = c.object)"});
    return MakeView(columns, std::string(kColumns) + " WHERE c.identity = 1");
}

SystemView ComputedColumns() {
    std::vector<ViewColumn> columns = PlainColumns();
    columns.push_back({"definition", SqlType::NVarChar(kMaxLength), "'(' || c.computed_text || ')'"});
    columns.push_back({"is_persisted", BitType(), "0"});
    return MakeView(columns, std::string(kColumns) + " WHERE c.computed_text <> ''");
}

SystemView DefaultConstraints() {
    return MakeView({{"name", NameType(), "c.default_name"},
                     {"object_id", kInt, "-(c.object * 4000 + 2000 + c.ordinal)"},
                     {"schema_id", kInt, "1"},
                     {"parent_object_id", kInt, "c.object"},
                     {"type", KindType(), "'D '"},
                     {"type_desc", SqlType::NVarChar(60), "'DEFAULT_CONSTRAINT'"},
                     {"create_date", SqlType::DateTime(), "o.created || '.000'"},
                     {"parent_column_id", kInt, "c.ordinal"},
                     {"definition", SqlType::NVarChar(kMaxLength), kDefaultDefinition}},
                    std::string(kColumns) +
                        " JOIN main.\"ts$objects\" AS o ON o.id = c.object WHERE c.default_name <> ''");
}

}  // namespace

std::vector<NamedView> ColumnViews() {
    return {
        {"sys", "columns", MakeView(PlainColumns(), kColumns)},
        {"sys", "all_columns", MakeView(PlainColumns(), kColumns)},
        {"dbo", "syscolumns", Syscolumns()},
        {"sys", "types", Types()},
        {"dbo", "systypes", Systypes()},
        {"sys", "identity_columns", IdentityColumns()},
        {"sys", "computed_columns", ComputedColumns()},
        {"sys", "default_constraints", DefaultConstraints()},
    };
}

}  // namespace vicenter::tsql::engine
