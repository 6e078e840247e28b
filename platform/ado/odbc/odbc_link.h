#pragma once

// A line to a server, with what has been learned about the database at its end; and the idle ones, kept by
// connect string. User-interface thread.

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/odbc/odbc_connect_string.h"
#include "platform/ado/odbc/odbc_handles.h"
#include "platform/system/code_page.h"

namespace vicenter::ado {

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

    // ---- asked of the server once
    // None when it is not known: the server is trusted with every character then.
    const system::CodePage* Page();
    int PageNumber() const { return pageNumber_; }
    std::optional<bool> TakesUnicode(const std::string& table, const std::string& column);

    // Something has been left behind that the next user must not meet.
    bool hasTraces = false;

  private:
    SQLRETURN Connect(const OdbcSettings& settings, const std::string& driver, const std::string& server,
                      std::vector<DriverError>& errors);
    // The texts of a small result, row by row.
    std::vector<std::vector<std::string>> Ask(const std::string& query) const;

    OdbcLine line_;
    bool asked_ = false;
    int pageNumber_ = 0;
    std::unique_ptr<system::CodePage> page_;
    // By table and column in lower case: whether it takes Unicode; text columns only.
    std::map<std::string, std::map<std::string, bool>> columns_;
};

// Idle links; bounded, closed when they have been idle for long and at the end of the process.
class OdbcPool {
  public:
    // None once the process is ending.
    static OdbcPool* Process();

    OdbcPool();
    OdbcPool(const OdbcPool&) = delete;
    OdbcPool& operator=(const OdbcPool&) = delete;
    ~OdbcPool();

    // A kept link that still works, or none.
    std::unique_ptr<OdbcLink> Take(const std::string& key);
    void Keep(const std::string& key, std::unique_ptr<OdbcLink> link);
    // The server has gone away: what is kept of that connect string is as dead.
    void Forget(const std::string& key);
    void Clear() { idle_.clear(); }

  private:
    using Clock = std::chrono::steady_clock;
    struct Idle {
        std::string key;
        std::unique_ptr<OdbcLink> link;
        Clock::time_point since;
    };
    void DropOld();

    static bool ended_;
    std::vector<Idle> idle_;
};

}  // namespace vicenter::ado
