#include "store/stoppable_command.h"

#include "platform/ado/connection.h"

namespace vicenter::store {

namespace {

int underWay = 0;
bool stopped = false;

}  // namespace

StoppableCommand::StoppableCommand() noexcept {
    ++underWay;
}

StoppableCommand::~StoppableCommand() {
    if (--underWay == 0) stopped = false;
}

bool StoppableCommand::IsStopped() {
    return stopped;
}

void StoppableCommand::Stop() {
    stopped = underWay != 0;
}

void StoppableCommand::Note(const automation::Error& error) {
    if (error.Number() == ado::error_number::kOperationCancelled) Stop();
}

void StoppableCommand::Forget() {
    stopped = false;
}

void StoppableCommand::NeedGoingOn() {
    if (stopped) throw automation::Error(ado::error_number::kOperationCancelled, "操作已经取消，没有完成。");
}

}  // namespace vicenter::store
