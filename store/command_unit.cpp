#include "store/command_unit.h"

#include "automation/error.h"
#include "entry/host_context.h"
#include "entry/kept_error.h"
#include "store/cls_vi_data.h"

namespace vicenter::store {

CommandUnit::CommandUnit() {
    try {
        unit_ = ado::HostFramework::Process().BeginUnit(entry::GetPropsString());
    } catch (const automation::Error& error) {
        // No property string, no account set: the first statement meets it and tells it in its own way.
        StoppableCommand::Note(error);
        clsVIData::NoteFailure(error);
        begun_ = false;
    }
}

bool CommandUnit::Commit() {
    bool kept = true;
    bool begun = false;
    try {
        if (unit_ != nullptr) StoppableCommand::NeedGoingOn();
        begun = true;
        kept = unit_ == nullptr || unit_->Commit();
    } catch (const automation::Error& error) {
        entry::KeepError(error);
        clsVIData::NoteFailure(error);
        kept = false;
    }
    // Who wished to stop by then is told what is known of it, not that nothing was stored.
    if (begun && !kept) StoppableCommand::Forget();
    unit_.reset();
    return kept;
}

}  // namespace vicenter::store
