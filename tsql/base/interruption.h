#pragma once

// What ends a batch from outside: a cancel, a time limit, or whoever watches.
//
// Belongs to one session. Everything but Cancel() is for the session's thread. Asked by the interpreter
// before each statement, by SQLite every so many steps of a query, and while a lock is waited for. Once a
// batch is stopped SQLite is left alone, so that what cleans up behind it can run.

#include <atomic>
#include <chrono>
#include <functional>

namespace vicenter::tsql::engine {

enum class StopReason { kNone, kCancelled, kTimeout };

struct ExecutionLimits {
    std::chrono::milliseconds timeout{0};  // 0: none
    // Asked now and then how the batch fares that has run for so long; false stops it. Must not use the
    // session.
    std::function<bool(std::chrono::milliseconds)> watch;
};

class Interruption {
  public:
    Interruption() = default;
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    void Begin(const ExecutionLimits& limits);
    // From here on nothing is stopped: the batch is brought to its end, whichever that is.
    void End();
    bool IsRunning() const { return running_; }
    // Any thread, and handlers of signals. Stops the batch that runs; without one it does nothing.
    void Cancel() noexcept { cancelled_.store(true, std::memory_order_relaxed); }

    // Throws SqlError 3617 when the batch is to stop, or was stopped in a statement that went on.
    void Check();
    // True once, in the moment in which the batch is to stop. With `look` the clock is looked at in any case.
    bool Stops(bool look = false) noexcept;
    StopReason Reason() const { return reason_; }

  private:
    // The reason for which it is to stop now.
    StopReason Asked(bool look) noexcept;

    // The clock is looked at only so often, and the watcher asked still less often.
    static constexpr int kCallsPerLook = 16;
    static constexpr std::chrono::milliseconds kWatchInterval{50};

    std::atomic<bool> cancelled_{false};
    bool running_ = false;
    StopReason reason_ = StopReason::kNone;
    const ExecutionLimits* limits_ = nullptr;
    int calls_ = 0;
    std::chrono::steady_clock::time_point begin_;
    std::chrono::steady_clock::time_point nextWatch_;
};

}  // namespace vicenter::tsql::engine
