#pragma once

// Back ends keep one of these for as long as a batch runs, so that CancelRunning() finds it. Batches run
// within each other or side by side; any thread.

#include "platform/ado/connection.h"

namespace vicenter::ado {

class RunningBatch {
  public:
    explicit RunningBatch(Connection& connection);
    RunningBatch(const RunningBatch&) = delete;
    RunningBatch& operator=(const RunningBatch&) = delete;
    ~RunningBatch();

  private:
    friend void CancelRunning() noexcept;

    Connection& connection_;
    RunningBatch* before_ = nullptr;
    RunningBatch* after_ = nullptr;
};

}  // namespace vicenter::ado
