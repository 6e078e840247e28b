#pragma once

// The windows' own waiting without its clock: what a test lets hang for good shows its box at once, and
// nothing else ever does, however long it takes.

#include <chrono>
#include <memory>

#include "tests/tds_server/misbehaviour.h"
#include "ui/run/long_work.h"

namespace vicenter::ui {

class WorkAtOnce final : public QtLongWork {
  public:
    bool GoOn(std::chrono::milliseconds) override {
        return QtLongWork::GoOn(std::chrono::seconds(stall && stall->Hangs() ? 1 : 0));
    }
    std::shared_ptr<tds_server::StallAtBatch> stall;
};

}  // namespace vicenter::ui
