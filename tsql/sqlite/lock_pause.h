#pragma once

// How long to sleep before asking for a lock again. Nobody queues for the lock of an account set: whoever
// asks when it is free has it. So who has just come asks now and then, and who has waited long asks more and
// more often, or a process that writes without a rest would keep it out until its time is up.

#include <algorithm>
#include <chrono>

namespace vicenter::tsql::engine {

// times: how often it has slept already. patience: how long it waits at most.
inline std::chrono::microseconds LockPause(int times, std::chrono::microseconds waited,
                                           std::chrono::microseconds patience) {
    using std::chrono::microseconds;
    constexpr microseconds kShortest{1000};
    constexpr microseconds kLongest{25000};
    constexpr microseconds kLong{5000000};  // waited so long, nobody is put off any more
    const microseconds usual = std::min(kShortest * (1 + 2 * std::min(times, 100)), kLongest);
    const microseconds end = std::max(kShortest, std::min(patience, kLong));
    const microseconds left = std::max(microseconds(0), end - waited);
    return std::max(kShortest, microseconds(usual.count() * left.count() / end.count()));
}

}  // namespace vicenter::tsql::engine
