#pragma once

// One batch on its way through a driver, drained to its end. Internal to this folder; Run() on one thread,
// Cancel() from any.

#include <memory>
#include <string>
#include <vector>

#include "platform/ado/connection.h"
#include "platform/ado/odbc/odbc_link.h"

namespace vicenter::ado {

// What a batch gave.
struct OdbcOutcome {
    RecordsetRef first;
    std::vector<std::int64_t> counts;  // of statements without a result, in order
    std::vector<DriverError> errors;
    std::vector<DriverError> messages;
    bool broken = false;
    bool timedOut = false;
    bool cancelled = false;

    bool HasFailed() const { return !errors.empty() || HasStopped(); }
    // The line is not to be used any more; what ran on it in a transaction is undone with it.
    bool HasStopped() const { return broken || timedOut || cancelled; }
    // Sorts what a driver says: errors and messages apart, as callers look for them.
    void Take(std::vector<DriverError> records);
};

class OdbcBatch {
  public:
    // 0 seconds: no limit. Results behind an error are kept only where they are said to be.
    OdbcBatch(std::shared_ptr<OdbcLink> link, std::string text, int seconds, bool keepsResultsBehindErrors);
    OdbcBatch(const OdbcBatch&) = delete;
    OdbcBatch& operator=(const OdbcBatch&) = delete;

    void Run();
    // Does nothing while no statement runs.
    void Cancel() noexcept { running_.Cancel(); }
    OdbcOutcome& Outcome() { return outcome_; }

  private:
    void Note(SQLHSTMT statement, SQLRETURN code);
    void Drain(SQLHSTMT statement, SQLRETURN code);

    std::shared_ptr<OdbcLink> link_;
    std::string text_;
    int seconds_;
    bool keepsResultsBehindErrors_;
    OdbcOutcome outcome_;
    OdbcRunning running_;
};

}  // namespace vicenter::ado
