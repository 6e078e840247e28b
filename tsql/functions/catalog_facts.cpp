// What the account set's catalog says of its objects: OBJECT_ID and its kin, and the rows of a table for the
// server's views.

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"

namespace vicenter::tsql::engine {

namespace {

// ts_object_id(name, type)
void ObjectIdFunction(FunctionCall& call) {
    if (call.IsNull(0)) return;
    call.Return(call.Services().objectId(call.Text(0), call.Count() > 1 ? call.Text(1) : std::string_view()),
                SqlType::Int());
}

// ts_col_length(table, column)
void ColumnLengthFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(call.Services().columnLength(call.Text(0), call.Text(1)), SqlType::Int());
}

// ts_object_name(id)
void ObjectNameFunction(FunctionCall& call) {
    if (!call.AnyNull()) call.Return(call.Services().objectName(call.Int(0)), SqlType::NVarChar(128));
}

// ts_object_definition(id)
void ObjectDefinitionFunction(FunctionCall& call) {
    if (!call.AnyNull()) call.Return(call.Services().objectText(call.Int(0)), SqlType::NVarChar(kMaxLength));
}

// ts_object_property(id, property)
void ObjectPropertyFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(call.Services().objectProperty(call.Int(0), call.Text(1)), SqlType::Int());
}

// ts_column_property(id, column, property)
void ColumnPropertyFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(call.Services().columnProperty(call.Int(0), call.Text(1), call.Text(2)), SqlType::Int());
}

// ts_col_name(id, number)
void ColumnNameFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    call.Return(call.Services().columnName(call.Int(0), call.Int(1)), SqlType::NVarChar(128));
}

// ts_table_rows(table)
void TableRowsFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    std::string name;
    for (const char c : call.Text(0))
        name += c == '"' ? std::string("\"\"") : std::string(1, c);
    const std::string sql = "SELECT count(*) FROM main.\"" + name + "\"";
    sqlite3_stmt* count = nullptr;
    sqlite3* database = sqlite3_context_db_handle(call.Context());
    if (sqlite3_prepare_v2(database, sql.c_str(), -1, &count, nullptr) != SQLITE_OK) {
        sqlite3_finalize(count);
        throw MakeError(208, {}, {call.Text(0)});
    }
    const bool found = sqlite3_step(count) == SQLITE_ROW;
    const std::int64_t rows = found ? sqlite3_column_int64(count, 0) : 0;
    sqlite3_finalize(count);
    // A stopped batch says so by the statement around this one.
    if (found) call.Return(rows);
}

// Type rules.

Bound BindObjectId(Binding& call) {
    std::vector<std::string> arguments{call.Text(0)};
    if (call.Count() > 1) arguments.push_back(call.Text(1));
    return {call.Call(arguments), SqlType::Int()};
}

Bound BindColumnLength(Binding& call) {
    return {call.Call({call.Text(0), call.Text(1)}), SqlType::Of(TypeKind::kSmallInt)};
}

Bound BindIdentityOf(Binding& call) {
    // Of a table that has had no rows since it was made or emptied: the seed.
    return {
        "(SELECT CAST(CASE WHEN i.last <> c.seed - c.increment THEN i.last ELSE c.seed END AS TEXT) "
        "FROM main.\"ts$columns\" AS c LEFT JOIN main.\"ts$identity\" AS i ON i.object = c.object "
        "WHERE c.identity = 1 AND c.object = " +
            call.Call({call.Text(0)}) + ")",
        SqlType::Decimal(kMaxPrecision, 0)};
}

// The last argument of OBJECT_NAME and its kin would name the database: there is no other.
Bound BindObjectName(Binding& call) {
    return {call.Call({call.Int(0)}), SqlType::NVarChar(128)};
}

Bound BindObjectSchema(Binding& call) {
    return {"(CASE WHEN " + call.Call({call.Int(0)}) + " IS NOT NULL THEN 'dbo' END)",
            SqlType::NVarChar(128)};
}

Bound BindObjectDefinition(Binding& call) {
    return {call.Call({call.Int(0)}), SqlType::NVarChar(kMaxLength)};
}

Bound BindObjectProperty(Binding& call) {
    return {call.Call({call.Int(0), call.Text(1)}), SqlType::Int()};
}

Bound BindColumnProperty(Binding& call) {
    return {call.Call({call.Int(0), call.Text(1), call.Text(2)}), SqlType::Int()};
}

Bound BindColumnName(Binding& call) {
    return {call.Call({call.Int(0), call.Int(1)}), SqlType::NVarChar(128)};
}

Bound BindSchemaId(Binding& call) {
    if (call.Count() == 0) return {"1", SqlType::Int()};
    return {"(CASE lower(" + call.Text(0) +
                ") WHEN 'dbo' THEN 1 WHEN 'information_schema' THEN 3 WHEN 'sys' THEN 4 END)",
            SqlType::Int()};
}

constexpr SqlFunction kObjectId = Scalar<ObjectIdFunction>("ts_object_id", -1, false);
constexpr SqlFunction kColumnLength = Scalar<ColumnLengthFunction>("ts_col_length", 2, false);
constexpr SqlFunction kObjectName = Scalar<ObjectNameFunction>("ts_object_name", 1, false);
constexpr SqlFunction kObjectText = Scalar<ObjectDefinitionFunction>("ts_object_definition", 1, false);
constexpr SqlFunction kObjectProperty = Scalar<ObjectPropertyFunction>("ts_object_property", 2, false);
constexpr SqlFunction kColumnProperty = Scalar<ColumnPropertyFunction>("ts_column_property", 3, false);
constexpr SqlFunction kColumnName = Scalar<ColumnNameFunction>("ts_col_name", 2, false);
constexpr SqlFunction kTableRows = Scalar<TableRowsFunction>("ts_table_rows", 1, false);

constexpr FunctionEntry kEntries[] = {
    {"col_length", 2, 2, BindColumnLength, &kColumnLength},
    {"col_name", 2, 2, BindColumnName, &kColumnName},
    {"columnproperty", 3, 3, BindColumnProperty, &kColumnProperty},
    {"ident_current", 1, 1, BindIdentityOf, &kObjectId},
    {"object_definition", 1, 1, BindObjectDefinition, &kObjectText},
    {"object_id", 1, 2, BindObjectId, &kObjectId},
    {"object_name", 1, 2, BindObjectName, &kObjectName},
    {"object_schema_name", 1, 2, BindObjectSchema, &kObjectName},
    {"objectproperty", 2, 2, BindObjectProperty, &kObjectProperty},
    {"schema_id", 0, 1, BindSchemaId},
};

constexpr const SqlFunction* kOthers[] = {&kTableRows};

}  // namespace

FunctionSet CatalogFunctions() {
    return {kEntries, kOthers};
}

}  // namespace vicenter::tsql::engine
