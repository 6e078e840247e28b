#pragma once

// A line to a server, with what has been learned about the database at its end: used by one thread at a time.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/error.h"
#include "platform/ado/odbc/odbc_connect_string.h"
#include "platform/ado/odbc/odbc_handles.h"
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
    // Takes back the question that is being asked, which is unanswered then; from any thread.
    void StopAsking() noexcept { asking_.Cancel(); }

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
    mutable OdbcRunning asking_;
    int answerSeconds_;  // after which a server that does not answer a question of ours is given up
    bool asked_ = false;
    int pageNumber_ = 0;
    std::unique_ptr<system::CodePage> page_;
    // By table and column in lower case: whether it takes Unicode; text columns only.
    std::map<std::string, std::map<std::string, bool>> columns_;
};

}  // namespace vicenter::ado
