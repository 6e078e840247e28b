#include "host/cli/rights.h"

#include "center/frame/rights.h"
#include "center/frame/window_state.h"
#include "host/components/host_session.h"

namespace vicenter::host {

bool CheckRight() {
    const center::TemplateRight right = center::AskTemplateRight();
    // A set that cannot be read is no missing right.
    if (!right.granted) center::Tell(right.failure.empty() ? center::kNoRight : right.failure);
    return right.granted;
}

bool MayAdministrate(HostSession& session) {
    const ado::RecordsetRef rights = session.Execute("select object_id('t_UserRight') as FID");
    return rights->AtEnd() || rights->Value("FID").IsNull() || center::HasEveryRight();
}

}  // namespace vicenter::host
