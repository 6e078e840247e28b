#include "tsql/base/interruption.h"

#include "tsql/base/error_table.h"

namespace vicenter::tsql::engine {

void Interruption::Begin(const ExecutionLimits& limits) {
    limits_ = &limits;
    reason_ = StopReason::kNone;
    calls_ = 0;
    begin_ = std::chrono::steady_clock::now();
    nextWatch_ = begin_ + kWatchInterval;
    cancelled_.store(false, std::memory_order_relaxed);
    running_ = true;
}

void Interruption::End() {
    running_ = false;
    limits_ = nullptr;
}

void Interruption::Check() {
    if (!running_) return;
    if (reason_ == StopReason::kNone) reason_ = Asked(false);
    if (reason_ != StopReason::kNone) throw MakeError(3617, {});
}

bool Interruption::Stops(bool look) noexcept {
    if (!running_ || reason_ != StopReason::kNone) return false;
    reason_ = Asked(look);
    return reason_ != StopReason::kNone;
}

StopReason Interruption::Asked(bool look) noexcept {
    if (cancelled_.load(std::memory_order_relaxed)) return StopReason::kCancelled;
    if (!look && ++calls_ < kCallsPerLook) return StopReason::kNone;
    calls_ = 0;
    const auto now = std::chrono::steady_clock::now();
    if (limits_->timeout.count() > 0 && now - begin_ >= limits_->timeout) return StopReason::kTimeout;
    if (!limits_->watch || now < nextWatch_) return StopReason::kNone;
    bool goOn = true;
    try {
        goOn = limits_->watch(std::chrono::duration_cast<std::chrono::milliseconds>(now - begin_));
    } catch (...) {
        goOn = false;  // nothing may pass through SQLite
    }
    nextWatch_ = std::chrono::steady_clock::now() + kWatchInterval;
    return goOn ? StopReason::kNone : StopReason::kCancelled;
}

}  // namespace vicenter::tsql::engine
