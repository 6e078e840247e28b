#pragma once

// One piece of work as the surroundings watch it: whoever runs it asks between its steps whether to go on,
// and the watching ends with the scope. User-interface thread.

#include <chrono>
#include <memory>

#include "platform/system/surroundings.h"

namespace vicenter::ado {

class LongWorkWatch {
  public:
    LongWorkWatch() : work_(system::Surroundings::Current().longWork) {}
    LongWorkWatch(const LongWorkWatch&) = delete;
    LongWorkWatch& operator=(const LongWorkWatch&) = delete;
    ~LongWorkWatch() {
        if (asked_) work_->Done();
    }
    // Somebody watches.
    explicit operator bool() const { return work_ != nullptr; }
    // False when the work is to be stopped. Only while somebody watches.
    bool GoOn(std::chrono::milliseconds taken) {
        asked_ = true;
        return work_->GoOn(taken);
    }

  private:
    std::shared_ptr<system::LongWork> work_;
    bool asked_ = false;
};

}  // namespace vicenter::ado
