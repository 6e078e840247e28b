#include "center/frame/account_names.h"

#include "automation/error.h"
#include "entry/host_context.h"
#include "platform/ado/connection.h"
#include "platform/ado/file_care.h"
#include "platform/ado/host_connection_service.h"
#include "platform/system/files.h"

namespace vicenter::center {

namespace {

std::string PlaceOf(const std::string& connectString) {
    if (const auto file = ado::FileOf(connectString))
        return system::PathToUtf8(system::PathFromUtf8(*file).stem());
    const ado::ConnectString settings(connectString);
    for (const char* key : {"Initial Catalog", "Database"}) {
        if (std::string name = settings.Value(key); !name.empty()) return name;
    }
    return {};
}

}  // namespace

AccountNames NamesOfAccount(const std::string& propsString) {
    AccountNames names;
    try {
        const ado::ConnectString props(propsString);
        names = {props.Value("AcctName"), props.Value("UserName")};
        const std::string id = props.Value("UserID");
        if (names.user.empty() && !id.empty()) names.user = "用户 " + id;
        if (names.accountSet.empty()) names.accountSet = PlaceOf(ado::ConnectStringOf(propsString));
    } catch (const automation::Error&) {
        // A text of a form of its own: the window goes without what it would have said.
    }
    return names;
}

AccountNames NamesOfAccount() {
    try {
        return NamesOfAccount(entry::GetPropsString());
    } catch (const automation::Error&) {
        return {};
    }
}

}  // namespace vicenter::center
