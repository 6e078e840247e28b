#pragma once

// A data connection to SQL Server; see odbc_provider.h for its connect string. Internal to this folder.

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/ado/connection.h"
#include "platform/ado/odbc/odbc_batch.h"
#include "platform/ado/odbc/odbc_link.h"

namespace vicenter::ado {

class OdbcConnection final : public Connection {
  public:
    OdbcConnection() = default;
    ~OdbcConnection() override;

    void Open(const std::string& connectString) override;
    // Also of one whose line broke: the next batch connects afresh.
    bool IsOpen() const override { return open_; }
    bool IsLost() const { return link_ == nullptr; }
    RecordsetRef Execute(std::string_view batch, std::int64_t* recordsAffected) override;
    void Close() override;
    void Cancel() noexcept override;
    bool BeginUnit() override;
    bool CommitUnit() override;
    RecordsetRef ResultsDespiteFailure() const override { return despiteFailure_; }
    const std::vector<DriverError>& Errors() const override { return errors_; }

  private:
    class Executing;
    // A commit is never taken back: nobody would know what became of it.
    enum class Stop { kMay, kMustNot };

    void Connect();
    OdbcOutcome Run(std::string text, Stop stop = Stop::kMay);
    // The batch within a transaction of its own.
    OdbcOutcome RunAsUnit(std::string batch);
    // The batch as it is sent.
    std::string Marked(std::string_view batch);
    [[noreturn]] void FailUnanswered(const UnansweredQuestion& question);
    [[noreturn]] void FailBatch(OdbcOutcome outcome);
    [[noreturn]] void Fail(OdbcOutcome outcome, bool atCommit);
    [[noreturn]] void FailStopped(const OdbcOutcome& outcome, bool atCommit);

    std::string connectString_;
    OdbcSettings settings_;
    bool open_ = false;
    bool executing_ = false;
    bool lostAtCommit_ = false;
    bool inUnit_ = false;     // of BeginUnit
    bool unitLost_ = false;   // a batch of it has failed, or its line is gone: nothing of it is kept
    std::mutex runningLock_;  // held for moments only
    std::shared_ptr<OdbcBatch> running_;
    std::atomic<bool> cancelled_ = false;
    std::shared_ptr<OdbcLink> link_;
    std::vector<DriverError> errors_;
    RecordsetRef despiteFailure_;
};

}  // namespace vicenter::ado
