// vicenter drivers

#include "host/cli/context.h"
#include "platform/ado/odbc/odbc_provider.h"

namespace vicenter::host {

int RunDrivers(const CliContext& context) {
    const std::vector<ado::OdbcDriver> drivers = ado::OdbcDrivers();
    bool chosen = false;
    VariantArray listed;
    std::string text;
    for (const ado::OdbcDriver& driver : drivers) {
        if (!driver.forSqlServer) continue;
        chosen = chosen || driver.chosen;
        listed.push_back(JsonObject({{"name", driver.name}, {"chosen", driver.chosen}}));
        text += (driver.chosen ? "* " : "  ") + driver.name + "\n";
    }
    if (!chosen) Refuse(ado::NoOdbcDriverText());
    if (context.options.json) {
        PrintJson(context, Variant(std::move(listed)));
    } else {
        context.streams.out << text;
    }
    return kExitDone;
}

}  // namespace vicenter::host
