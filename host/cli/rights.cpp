#include "host/cli/rights.h"

#include "automation/class_registry.h"
#include "automation/error.h"
#include "center/window_state.h"
#include "entry/host_context.h"

namespace vicenter::host {

namespace {

bool HasRight() {
    return automation::CreateObject("VelaEBSBase.SecurityInfo")
        ->Call("AccessCheck", {entry::GetPropsString(), std::int16_t{4}, std::int16_t{4}, 3145728})
        .ToBoolean();
}

}  // namespace

bool CheckRight() {
    try {
        if (HasRight()) return true;
        center::Tell("对不起，你没有相应的权限！");
    } catch (const automation::Error& error) {
        // A set that cannot be read is no missing right.
        center::Tell(error.Text());
    }
    return false;
}

}  // namespace vicenter::host
