#pragma once

// The engine's front: one session on one account set. T-SQL batches go in; rows, messages and errors come
// out.
//
// A session belongs to one thread. Several sessions, in this process or in others, may share an account set.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "automation/date_time.h"
#include "tsql/base/diagnostic.h"
#include "tsql/base/interruption.h"
#include "tsql/sqlite/database.h"
#include "tsql/types/collation.h"
#include "tsql/types/result_column.h"
#include "tsql/types/value.h"

namespace vicenter::tsql {
enum class StatementKind;
}

namespace vicenter::tsql::engine {

struct SessionOptions {
    std::string path;
    bool create = false;
    int lockTimeoutMilliseconds = kLockTimeout;
    // True: a batch is one unit, undone as a whole by its first failure. False: each statement stands alone.
    bool batchTransactions = true;
    // Whatever would change the account set is refused with error 3906; temporary tables are free.
    bool readOnly = false;
    const TextCollation* collation = nullptr;  // outlives the session
    std::function<automation::DateTime()> now;
    std::string user = "dbo";
    QueryPlans plans = QueryPlans::kUsual;
    const char* fileSystem = nullptr;  // by SQLite's name for it; none: the account sets' own
    // Of tests: how deep a statement of SQLite may nest before it is taken apart, see Flattened; 0 for as
    // deep as SQLite lets it.
    int deepestText = 0;
    // Of tests: false has every text read and every statement planned anew each time it runs, and no
    // temporary table put aside.
    bool keepsPlans = true;
};

// A statement that has run.
struct StatementEnd {
    StatementKind kind;
    std::int64_t rows = -1;  // -1: not counted, as after SET NOCOUNT ON
    bool inProcedure = false;
};

// Takes what a batch gives, in order.
class ResultSink {
  public:
    ResultSink() = default;
    ResultSink(const ResultSink&) = delete;
    ResultSink& operator=(const ResultSink&) = delete;
    virtual ~ResultSink() = default;

    virtual void BeginResult(const std::vector<ResultColumn>& columns) = 0;
    virtual void AddRow(std::vector<Value>& row) = 0;  // may move the values out
    virtual void Message(const Diagnostic& message) = 0;
    // For whoever retells a batch statement by statement, as a server does: an error, when it comes up and is
    // not caught, whether another one of the same statement follows it, and the end of each statement that
    // did not fail.
    virtual void Failed(const Diagnostic& /*error*/, bool /*goesOn*/) {}
    virtual void StatementEnded(const StatementEnd& /*end*/) {}
};

struct ExecutionReport {
    std::vector<Diagnostic> errors;  // in the order in which they came up
    std::int64_t rowsAffected = -1;  // -1 when no statement changes rows
    // Why the batch was ended from outside; its error is then 3617 alone.
    StopReason stopped = StopReason::kNone;
};

class Session {
  public:
    // Throws SqlError when the account set cannot be opened.
    explicit Session(SessionOptions options);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    ExecutionReport Execute(std::string_view batch, ResultSink& sink, const ExecutionLimits& limits = {});
    // A batch is running: whoever watches it must not start another one.
    bool IsRunning() const;
    // Any thread, and handlers of signals: ends the batch that runs.
    void Cancel() noexcept;
    // Back to the state of a new session: open transactions are undone, temporary tables, cursors and
    // settings go.
    void Reset();
    // The file has been moved, deleted, replaced or overwritten since it was opened, or its log has; batches
    // then end with error 5120.
    bool IsStale() const;
    // Brings what stands in the log into the set's own file, so that a copy of it is whole; nothing while
    // others are at work. True when all is home.
    bool BringHome();
    // Another number whenever anything in the account set has changed, by this session or by another;
    // compares with earlier numbers of the same session only. Takes the read lock for a moment; throws
    // SqlError.
    std::uint32_t DataVersion();

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace vicenter::tsql::engine
