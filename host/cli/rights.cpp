#include "host/cli/rights.h"

#include "automation/class_registry.h"
#include "automation/error.h"
#include "center/window_state.h"
#include "entry/host_context.h"

namespace vicenter::host {

namespace {

bool HasRight() {
    try {
        return automation::CreateObject("VelaEBSBase.SecurityInfo")
            ->Call("AccessCheck", {entry::GetPropsString(), std::int16_t{4}, std::int16_t{4}, 3145728})
            .ToBoolean();
    } catch (const automation::Error&) {
        return false;
    }
}

}  // namespace

bool CheckRight() {
    if (HasRight()) return true;
    center::Tell("对不起，你没有相应的权限！");
    return false;
}

}  // namespace vicenter::host
