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
