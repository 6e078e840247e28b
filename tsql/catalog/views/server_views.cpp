// The views of the server's that an account set does not have.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/catalog/system_views.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

constexpr std::string_view kOld[] = {
    "sysaltfiles",  "syscacheobjects", "sysconfigures", "sysconstraints", "syscursors",
    "sysdepends",   "sysdevices",      "sysfiles",      "sysfilegroups",  "sysfulltextcatalogs",
    "sysindexkeys", "syslanguages",    "syslockinfo",   "syslogins",      "sysmembers",
    "sysmessages",  "sysoledbusers",   "sysperfinfo",   "syspermissions", "sysprocesses",
    "sysprotects",  "sysremotelogins", "sysservers",    "sysusers"};
constexpr std::string_view kSchema[] = {"column_domain_usage", "column_privileges", "constraint_table_usage",
                                        "domain_constraints",  "domains",           "parameters",
                                        "routine_columns",     "sequences",         "table_privileges",
                                        "view_column_usage",   "view_table_usage"};

template <std::size_t N>
bool IsOneOf(std::string_view name, const std::string_view (&names)[N]) {
    return std::any_of(std::begin(names), std::end(names),
                       [&](std::string_view other) { return SameName(name, other); });
}

}  // namespace

bool IsServerView(const ObjectName& name) {
    const std::string& schema = name.Schema();
    // Nothing else has these schemas.
    if (SameName(schema, "sys")) return true;
    if (SameName(schema, "information_schema")) return IsOneOf(name.Object(), kSchema);
    return IsOneOf(name.Object(), kOld);
}

}  // namespace vicenter::tsql::engine
