#include "store/command_unit.h"

#include "automation/error.h"
#include "entry/host_context.h"

namespace vicenter::store {

CommandUnit::CommandUnit() {
    try {
        unit_ = ado::HostFramework::Process().BeginUnit(entry::GetPropsString());
    } catch (const automation::Error&) {
        // No property string, no account set: the first statement meets it and tells it in its own way.
    }
}

bool CommandUnit::Commit() {
    const bool kept = unit_ == nullptr || unit_->Commit();
    unit_.reset();
    return kept;
}

}  // namespace vicenter::store
