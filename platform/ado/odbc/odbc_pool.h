#pragma once

// Idle links, kept by connect string; bounded, closed when they have been idle for long. Those that are left
// at the end of the process go with it. Any thread.

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/ado/odbc/odbc_link.h"
#include "platform/ado/odbc/odbc_provider.h"

namespace vicenter::ado {

class OdbcPool {
  public:
    static OdbcPool& Process();

    OdbcPool() = default;
    OdbcPool(const OdbcPool&) = delete;
    OdbcPool& operator=(const OdbcPool&) = delete;

    // A kept link that still works, or none.
    std::shared_ptr<OdbcLink> Take(const std::string& key);
    void Keep(const std::string& key, std::shared_ptr<OdbcLink> link);
    // How many are kept for that connect string.
    std::size_t Count(const std::string& key) const;
    // The code page of that database as far as one of its links has learned it, else 0.
    int PageOf(const std::string& key) const;
    // The server has gone away: what is kept of that connect string is as dead.
    void Forget(const std::string& key);
    // The thread that watches the time ends as well, in its own time.
    void Clear();
    OdbcPooling Limits() const;
    void SetLimits(const OdbcPooling& limits);

  private:
    using Clock = std::chrono::steady_clock;
    struct Idle {
        std::string key;
        std::shared_ptr<OdbcLink> link;
        Clock::time_point since;
    };
    using Links = std::vector<Idle>;  // the longest idle first
    // What has been idle for too long or is too much, taken out: to be closed without the lock, since closing
    // may take its time.
    Links TakeOld();
    // Has a thread watch what is idle, unless one does. Under the lock.
    void StartWatching();
    // Closes what has been idle for long, whether or not anybody asks for a link; ends when nothing is idle.
    void WatchTime();

    mutable std::mutex mutex_;
    OdbcPooling limits_;
    Links idle_;
    std::map<std::string, int> pages_;
    std::condition_variable changed_;
    bool watched_ = false;
    bool closing_ = false;  // the thread closes links, without the lock
};

}  // namespace vicenter::ado
