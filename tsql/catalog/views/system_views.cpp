// The server's own views: which there are, and how one is found.

#include "tsql/catalog/system_views.h"

#include <string_view>

#include "automation/object.h"
#include "tsql/catalog/views/view_list.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

const std::vector<NamedView>& Views() {
    static const std::vector<NamedView> views = [] {
        std::vector<NamedView> all;
        for (auto* list : {ObjectViews, ColumnViews, KeyViews, ModuleViews, SchemaViews}) {
            for (NamedView& view : list())
                all.push_back(std::move(view));
        }
        return all;
    }();
    return views;
}

}  // namespace

SystemView MakeView(const std::vector<ViewColumn>& columns, const std::string& from) {
    std::string select;
    for (const ViewColumn& column : columns)
        select += (select.empty() ? "SELECT " : ", ") + column.sql + " AS " + column.name;
    return MakeUnion(columns, {select + " FROM " + from});
}

SystemView MakeUnion(const std::vector<ViewColumn>& columns, const std::vector<std::string>& selects) {
    SystemView view;
    for (const ViewColumn& column : columns)
        view.columns.push_back({column.name, column.type});
    for (const std::string& select : selects)
        view.sql += (view.sql.empty() ? "" : " UNION ALL ") + select;
    return view;
}

namespace {

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

// The members of a list within the tables' JSON as rows with these columns.
std::string RowsOf(const std::string& tables, std::string_view list,
                   const std::vector<std::string_view>& columns) {
    std::string sql;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        sql += (i == 0 ? "(SELECT json_extract(value, '$[" : ", json_extract(value, '$[") +
               std::to_string(i) + "]') AS " + std::string(columns[i]);
    }
    return sql + " FROM json_each(" + tables + ", '$." + std::string(list) + "'))";
}

}  // namespace

SystemView OfTemporary(const SystemView& view, const std::string& tables) {
    SystemView own = view;
    std::erase_if(own.columns, [](const ResultColumn& column) { return column.type.IsDate(); });
    ReplaceAll(own.sql, "'accountset'", "'tempdb'");
    ReplaceAll(own.sql, "main.\"ts$objects\"",
               RowsOf(tables, "objects", {"id", "name", "kind", "text", "created"}));
    ReplaceAll(own.sql, "main.\"ts$columns\"",
               RowsOf(tables, "columns",
                      {"object", "ordinal", "name", "type", "length", "precision", "scale", "nullable",
                       "identity", "seed", "increment", "default_name", "default_text", "computed_text"}));
    ReplaceAll(own.sql, "main.\"ts$keys\"",
               RowsOf(tables, "keys",
                      {"object", "ordinal", "name", "kind", "columns", "referenced_table",
                       "referenced_columns", "on_delete", "on_update", "text", "sql_text"}));
    ReplaceAll(own.sql, "main.\"ts$identity\"", RowsOf(tables, "identities", {"object", "last"}));
    return own;
}

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
