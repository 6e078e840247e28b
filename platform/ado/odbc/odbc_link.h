#pragma once

// A line to a server, with what has been learned about the database at its end: used by one thread at a time.
// And the idle ones, kept by connect string: any thread.

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "automation/error.h"
#include "platform/ado/odbc/odbc_connect_string.h"
#include "platform/ado/odbc/odbc_handles.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/system/code_page.h"

namespace vicenter::ado {

// A question of ours that the server has not answered: what hangs on it must not be done.
class UnansweredQuestion : public automation::Error {
  public:
    explicit UnansweredQuestion(std::vector<DriverError> records);
    const std::vector<DriverError>& Records() const { return records_; }

  private:
    std::vector<DriverError> records_;
};

class OdbcLink {
  public:
    // Connects, to the failover partner when the server cannot be reached. Throws automation::Error; `errors`
    // then holds the driver's records.
    OdbcLink(const OdbcSettings& settings, std::vector<DriverError>& errors);
    OdbcLink(const OdbcLink&) = delete;
    OdbcLink& operator=(const OdbcLink&) = delete;
    ~OdbcLink();

    SQLHANDLE Line() const { return line_.Get(); }
    // Whether the server answers.
    bool Answers() const;

    // ---- asked of the server until it has answered; throws UnansweredQuestion
    // None when the server does not know it: it is trusted with every character then.
    const system::CodePage* Page();
    int PageNumber() const { return pageNumber_; }
    // As another line to the same database has learned it; 0 when none has.
    void KnowPage(int number);
    std::optional<bool> TakesUnicode(const std::string& table, const std::string& column);
    // Before each batch: a table that was not there may be by now.
    void ForgetUnknownTables();

    // Something has been left behind that the next user must not meet.
    bool hasTraces = false;

  private:
    SQLRETURN Connect(const OdbcSettings& settings, const std::string& driver, const std::string& server,
                      std::vector<DriverError>& errors);
    // Runs a batch that gives nothing.
    bool Did(const std::string& batch, std::vector<DriverError>& errors) const;
    // The texts of a small result, row by row.
    using Rows = std::vector<std::vector<std::string>>;
    Rows Ask(const std::string& query) const;

    OdbcLine line_;
    int answerSeconds_;  // after which a server that does not answer a question of ours is given up
    bool asked_ = false;
    int pageNumber_ = 0;
    std::unique_ptr<system::CodePage> page_;
    // By table and column in lower case: whether it takes Unicode; text columns only.
    std::map<std::string, std::map<std::string, bool>> columns_;
};

// Idle links; bounded, closed when they have been idle for long. Those that are left at the end of the
// process go with it.
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
