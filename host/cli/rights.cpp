#include "host/cli/rights.h"

#include <cstdint>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "center/frame/window_state.h"
#include "entry/host_context.h"
#include "host/components/host_session.h"

namespace vicenter::host {

namespace {

constexpr std::int32_t kTemplateRights = 3145728;
constexpr std::int32_t kAllRights = 2147483647;

bool HasRight(std::int32_t rights) {
    return automation::CreateObject("VelaEBSBase.SecurityInfo")
        ->Call("AccessCheck", {entry::GetPropsString(), std::int16_t{4}, std::int16_t{4}, rights})
        .ToBoolean();
}

}  // namespace

bool CheckRight() {
    try {
        if (HasRight(kTemplateRights)) return true;
        center::Tell("对不起，你没有相应的权限！");
    } catch (const automation::Error& error) {
        // A set that cannot be read is no missing right.
        center::Tell(error.Text());
    }
    return false;
}

bool MayAdministrate(HostSession& session) {
    const ado::RecordsetRef rights = session.Execute("select object_id('t_UserRight') as FID");
    return rights->AtEnd() || rights->Value("FID").IsNull() || HasRight(kAllRights);
}

}  // namespace vicenter::host
