#include "platform/ado/odbc/odbc_connection.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

#include "automation/error.h"
#include "automation/quietly.h"
#include "platform/ado/odbc/batch_nature.h"
#include "platform/ado/odbc/national_marks.h"
#include "platform/ado/odbc/odbc_pool.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/ado/odbc/odbc_side_by_side.h"
#include "platform/ado/odbc/watched_work.h"
#include "platform/ado/running_batch.h"
#include "platform/ado/side_by_side.h"
#include "platform/ado/unit_text.h"

namespace vicenter::ado {

using automation::Error;

namespace {

constexpr const char* kSource = "ODBC";
constexpr const char* kClosedText = "Operation is not allowed when the object is closed.";
constexpr const char* kStillExecutingText = "Operation cannot be performed while executing asynchronously.";
constexpr const char* kConnectCancelledText = "已经取消，没有连接到数据库服务器。";
constexpr const char* kCancelledText = "操作已经取消，没有完成。";
constexpr const char* kTimeoutText = "操作超时，已经取消。";
constexpr const char* kLostText = "与数据库服务器的连接已断开，本次操作没有完成。请重新操作。";
constexpr const char* kLostAtCommitText =
    "提交时与数据库服务器的连接断开，无法确定是否已经保存，请重新打开后检查。";
constexpr const char* kUnknownAtCommitText =
    "提交时数据库服务器没有回答，无法确定是否已经保存，请重新打开后检查。";
constexpr std::int32_t kFirstErrorSeverity = 11;

// Three trips for a unit, one for what only reads or changes once. A transaction that a driver keeps open all
// the time would save one of the three and cost one more for every question, and a question would hold on to
// what it read.
constexpr const char* kBegin = "begin transaction";
constexpr const char* kCommit = "if @@trancount > 0 commit transaction";
constexpr const char* kRollback = "if @@trancount > 0 rollback transaction";

constexpr std::int32_t kDeadlock = 1205;
constexpr std::int32_t kLockTimeout = 1222;
constexpr std::int32_t kSnapshotConflict = 3960;

// What the user can do about it; the empty text when the server's own words say enough.
std::string Advice(const DriverError& error) {
    switch (error.native) {
        case kDeadlock:
            return "本次操作与其他用户的操作互相等待（死锁），已被服务器撤消。请稍后重新操作。";
        case kLockTimeout:
            return "其他用户正在使用相关数据，等待超时，本次操作已撤消。请稍后重新操作。";
        case kSnapshotConflict:
            return "相关数据刚被其他用户修改，本次操作已撤消。请重新打开后再操作。";
        default:
            return {};
    }
}

}  // namespace

OdbcConnection::~OdbcConnection() {
    automation::Quietly([this] { OdbcConnection::Close(); });
}

void OdbcConnection::Open(const std::string& connectString) {
    Close();
    errors_.clear();
    settings_ = ReadOdbcSettings(connectString);
    SetCommandTimeout(settings_.commandSeconds);
    connectString_ = connectString;
    Connect();
    open_ = true;
}

void OdbcConnection::Connect() {
    // Its own: a server that does not answer may be left to itself.
    struct Attempt {
        OdbcSettings settings;
        std::string key;
        std::shared_ptr<OdbcLink> link;
        std::vector<DriverError> errors;
    };
    const auto attempt = std::make_shared<Attempt>(Attempt{settings_, connectString_, nullptr, {}});
    const auto connect = [attempt] {
        OdbcPool* pool = attempt->settings.pooled ? &OdbcPool::Process() : nullptr;
        if (pool != nullptr) attempt->link = pool->Take(attempt->key);
        if (attempt->link) return;
        attempt->link = std::make_shared<OdbcLink>(attempt->settings, attempt->errors);
        if (pool != nullptr) attempt->link->KnowPage(pool->PageOf(attempt->key));
    };
    const auto nothing = [] {};
    bool ended = true;
    try {
        // No driver can be told to give up connecting.
        ended = RunWatched(connect, nothing, std::chrono::milliseconds(0));
    } catch (const Error&) {
        errors_ = attempt->errors;
        throw;
    }
    if (!ended) throw Error(error_number::kOperationCancelled, kConnectCancelledText, kSource);
    link_ = attempt->link;
}

void OdbcConnection::Close() {
    open_ = false;
    if (!link_) return;
    // What was not committed goes with the line.
    if (inUnit_) link_.reset();
    inUnit_ = false;
    unitLost_ = false;
    if (!link_) return;
    if (settings_.pooled) OdbcPool::Process().Keep(connectString_, std::move(link_));
    link_.reset();
}

// One batch at a time: whatever a window that is painted meanwhile asks for needs a connection of its own.
class OdbcConnection::Executing {
  public:
    explicit Executing(OdbcConnection& connection) : connection_(connection) {
        if (connection_.executing_) throw Error(error_number::kStillExecuting, kStillExecutingText, kSource);
        connection_.executing_ = true;
        connection_.cancelled_ = false;
    }
    Executing(const Executing&) = delete;
    Executing& operator=(const Executing&) = delete;
    ~Executing() { connection_.executing_ = false; }

  private:
    OdbcConnection& connection_;
};

void OdbcConnection::Cancel() noexcept {
    cancelled_ = true;
    // Where the lock is held a batch is just beginning or ending.
    const std::unique_lock lock(runningLock_, std::try_to_lock);
    if (lock && running_) running_->Cancel();
}

bool OdbcConnection::BeginUnit() {
    if (!open_) throw Error(error_number::kObjectClosed, kClosedText, kSource);
    const Executing executing(*this);
    const RunningBatch running(*this);
    inUnit_ = true;
    // Where it cannot be begun its batches are refused, which must not run each for itself then. A kept line
    // that is dead by now is no reason: nothing has run yet.
    unitLost_ = true;
    for (int attempt = 0; attempt < 2 && unitLost_; ++attempt) {
        try {
            if (!link_) Connect();
            const OdbcOutcome begun = Run(kBegin);
            unitLost_ = begun.HasFailed();
            if (begun.HasStopped()) link_.reset();
            if (begun.cancelled) break;
        } catch (const Error& error) {
            // No server: the first batch tells it. Nobody wishes to stop twice.
            if (error.Number() == error_number::kOperationCancelled) break;
        }
    }
    return true;
}

bool OdbcConnection::CommitUnit() {
    const bool lost = unitLost_ || !inUnit_ || !link_;
    inUnit_ = false;
    unitLost_ = false;
    if (lost) return false;
    const Executing executing(*this);
    errors_.clear();
    // There is nothing to commit where the server has undone it.
    OdbcOutcome committed = Run("commit transaction", Stop::kMustNot);
    if (!committed.HasFailed()) return true;
    const bool unknown = committed.HasStopped();
    // A line with a transaction on it must not come to the next user.
    if (!unknown && Run(kRollback, Stop::kMustNot).HasStopped()) committed.broken = true;
    Fail(std::move(committed), unknown);
}

OdbcOutcome OdbcConnection::Run(std::string text, Stop stop) {
    OdbcOutcome stopped;
    stopped.cancelled = true;
    if (stop == Stop::kMay && cancelled_) return stopped;
    const auto batch =
        std::make_shared<OdbcBatch>(link_, std::move(text), CommandTimeout(), !settings_.batchTransactions);
    const auto setRunning = [this](std::shared_ptr<OdbcBatch> running) {
        const std::lock_guard guard(runningLock_);
        running_ = std::move(running);
    };
    if (stop == Stop::kMay) setRunning(batch);
    // What must not be taken back is taken back when it is given up, so that it holds no locks any more.
    std::optional<std::chrono::steady_clock::time_point> asked;
    const auto stopIt = [&] {
        const auto now = std::chrono::steady_clock::now();
        if (!asked) asked = now;
        if (stop == Stop::kMay) {
            Cancel();
        } else if (now - *asked >= kStopGrace) {
            batch->Cancel();
        }
    };
    const bool ended =
        RunWatched([batch] { batch->Run(); }, stopIt, stop == Stop::kMay ? kStopGrace : 2 * kStopGrace);
    setRunning(nullptr);
    return ended ? std::move(batch->Outcome()) : stopped;
}

OdbcOutcome OdbcConnection::RunAsUnit(std::string batch) {
    OdbcOutcome begun = Run(kBegin);
    if (begun.HasFailed()) return begun;
    OdbcOutcome outcome = Run(std::move(batch));
    if (outcome.HasStopped()) return outcome;
    if (outcome.HasFailed()) {
        if (Run(kRollback, Stop::kMustNot).HasStopped()) outcome.broken = true;
        return outcome;
    }
    OdbcOutcome committed = Run(kCommit, Stop::kMustNot);
    if (!committed.HasFailed()) return outcome;
    lostAtCommit_ = committed.HasStopped();
    // A line with a transaction on it must not come to the next user.
    if (!lostAtCommit_ && Run(kRollback, Stop::kMustNot).HasStopped()) committed.broken = true;
    return committed;
}

std::string OdbcConnection::Marked(std::string_view batch) {
    const bool plain =
        std::all_of(batch.begin(), batch.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (plain) return std::string(batch);
    // It may ask the server for its code page and its columns. Without an answer nothing is sent: a server
    // puts question marks for what it does not know.
    const auto marked = std::make_shared<std::string>(batch);
    const auto mark = [link = link_, marked] {
        const system::CodePage* page = link->Page();
        link->ForgetUnknownTables();
        if (page == nullptr || page->FirstMissing(*marked) == std::string_view::npos) return;
        *marked = WithNationalMarks(*marked, *page, link->PageNumber(),
                                    [link](const std::string& table, const std::string& column) {
                                        return link->TakesUnicode(table, column);
                                    });
    };
    bool stopped = false;
    const auto stop = [&stopped, link = link_] {
        stopped = true;
        link->StopAsking();
    };
    // A line with a transaction on it goes with whatever it has locked.
    const auto fail = [this] {
        link_.reset();
        unitLost_ = inUnit_;
        throw Error(error_number::kOperationCancelled, kCancelledText, kSource);
    };
    try {
        if (!RunWatched(mark, stop) || stopped) fail();
        return std::move(*marked);
    } catch (const UnansweredQuestion& question) {
        if (stopped) fail();
        FailUnanswered(question);
    } catch (const Error& error) {
        DriverError record;
        record.severity = kFirstErrorSeverity;
        record.sqlState = "22018";
        record.text = error.Text();
        errors_.push_back(std::move(record));
        throw;
    }
}

RecordsetRef OdbcConnection::Execute(std::string_view batch, std::int64_t* recordsAffected) {
    if (!open_) throw Error(error_number::kObjectClosed, kClosedText, kSource);
    errors_.clear();
    despiteFailure_.reset();
    lostAtCommit_ = false;
    // A batch of a unit that is gone must not be kept by itself.
    if (inUnit_ && unitLost_) throw Error(error_number::kProviderError, kUnitLostText, kSource);
    const Executing executing(*this);
    const RunningBatch running(*this);
    if (!link_) Connect();
    const BatchNature nature = NatureOf(batch);
    if (nature.leavesTraces) link_->hasTraces = true;
    std::string text = Marked(batch);
    OdbcOutcome outcome = settings_.batchTransactions && nature.needsUnit && !inUnit_
                              ? RunAsUnit(std::move(text))
                              : Run(std::move(text));
    if (outcome.HasFailed()) FailBatch(std::move(outcome));
    errors_ = std::move(outcome.messages);
    if (recordsAffected != nullptr) {
        *recordsAffected = -1;
        const std::vector<bool> ofChanges =
            outcome.counts.empty() || !nature.mayCountReads ? std::vector<bool>() : CountsOfChanges(batch);
        for (std::size_t i = 0; i < outcome.counts.size(); ++i) {
            if (ofChanges.size() == outcome.counts.size() && !ofChanges[i]) continue;
            *recordsAffected = std::max<std::int64_t>(*recordsAffected, 0) + outcome.counts[i];
        }
    }
    return outcome.first ? outcome.first : std::make_shared<Recordset>();
}

void OdbcConnection::FailUnanswered(const UnansweredQuestion& question) {
    if (inUnit_) {
        // A deadlock's victim loses its transaction by a question as by anything else.
        Run(kRollback, Stop::kMustNot);
        unitLost_ = true;
        throw Error(error_number::kProviderError, kUnitLostText, kSource);
    }
    OdbcOutcome unanswered;
    unanswered.Take(question.Records());
    if (IsDead(link_->Line()) || !unanswered.HasFailed()) unanswered.broken = true;
    FailBatch(std::move(unanswered));
}

void OdbcConnection::FailBatch(OdbcOutcome outcome) {
    // As on the embedded account set a batch that fails undoes the transaction that it runs in.
    if (!outcome.HasStopped() && settings_.batchTransactions && (inUnit_ || link_->hasTraces)) {
        if (Run(kRollback, Stop::kMustNot).HasStopped()) outcome.broken = true;
    }
    unitLost_ = inUnit_;
    Fail(std::move(outcome), lostAtCommit_);
}

void OdbcConnection::Fail(OdbcOutcome outcome, bool atCommit) {
    errors_ = std::move(outcome.errors);
    errors_.insert(errors_.end(), outcome.messages.begin(), outcome.messages.end());
    if (outcome.HasStopped()) FailStopped(outcome, atCommit);
    std::string text = errors_.empty() ? std::string() : errors_.front().text;
    despiteFailure_ = std::move(outcome.first);
    if (const std::string advice = errors_.empty() ? std::string() : Advice(errors_.front()); !advice.empty())
        text = advice + "\n" + text;
    throw Error(error_number::kProviderError, text, kSource);
}

// What the driver has made of a line after taking a batch back is not worth finding out.
void OdbcConnection::FailStopped(const OdbcOutcome& outcome, bool atCommit) {
    link_.reset();
    const std::string said = errors_.empty() ? std::string() : "\n" + errors_.front().text;
    // One that times out may be given up with its line.
    if (outcome.timedOut)
        throw Error(error_number::kTimeoutExpired, (atCommit ? kUnknownAtCommitText : kTimeoutText) + said,
                    kSource);
    if (outcome.broken) {
        OdbcPool::Process().Forget(connectString_);
        throw Error(error_number::kProviderError, (atCommit ? kLostAtCommitText : kLostText) + said, kSource);
    }
    throw Error(error_number::kOperationCancelled, atCommit ? kUnknownAtCommitText : kCancelledText, kSource);
}

void RegisterOdbcProviders() {
    for (const char* name : {"SQLOLEDB", "SQLOLEDB.1", "SQLNCLI", "SQLNCLI.1", "SQLNCLI10", "SQLNCLI10.1",
                             "SQLNCLI11", "SQLNCLI11.1", "MSOLEDBSQL", "MSOLEDBSQL.1", "MSOLEDBSQL19",
                             "MSOLEDBSQL19.1", "MSDASQL", "MSDASQL.1"}) {
        RegisterProvider(name, [] { return std::make_shared<OdbcConnection>(); });
        RegisterSideBySide(name, AskOdbcSideBySide);
    }
}

}  // namespace vicenter::ado
