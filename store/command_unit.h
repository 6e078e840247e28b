#pragma once

// The statements of one command as one whole, where the host's service can do that: after a failure, a wish
// of the user's to stop or a killed process either all of them have happened or none. Nothing is shown to the
// user while one is open, or others would wait for the user's answer. User-interface thread.

#include <memory>

#include "platform/ado/host_connection_service.h"
#include "store/stoppable_command.h"

namespace vicenter::store {

class CommandUnit {
  public:
    // Nothing is written yet. Undone at the end of the scope unless committed.
    CommandUnit();

    // False: it could not be begun, and each statement stands for itself.
    bool HasBegun() const { return begun_; }
    // False where each statement stands for itself, because the host's service has no units or this one is
    // part of another.
    bool IsOne() const { return unit_ != nullptr; }
    // False: what was written has been undone, or the account set was lost meanwhile;
    // clsVIData::LastFailure() says why. True as well where each statement stands for itself.
    bool Commit();

  private:
    StoppableCommand command_;
    std::unique_ptr<ado::UnitOfWork> unit_;
    bool begun_ = true;
};

}  // namespace vicenter::store
