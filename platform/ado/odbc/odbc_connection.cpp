#include "platform/ado/odbc/odbc_connection.h"

#include <algorithm>

#include "automation/error.h"
#include "platform/ado/odbc/batch_nature.h"
#include "platform/ado/odbc/national_marks.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/ado/odbc/odbc_result.h"
#include "platform/ado/running_batch.h"

namespace vicenter::ado {

using automation::Error;

namespace {

constexpr const char* kSource = "ODBC";
constexpr const char* kClosedText = "Operation is not allowed when the object is closed.";
constexpr const char* kUnitLostText = "事务没有开始或已经撤消，整个操作没有保存。请重新操作。";
constexpr std::int32_t kFirstErrorSeverity = 11;

// Three trips for a unit, one for what only reads or changes once. A transaction that a driver keeps open all
// the time would save one of the three and cost one more for every question, and a question would hold on to
// what it read.
constexpr std::string_view kBegin = "begin transaction";
constexpr std::string_view kCommit = "if @@trancount > 0 commit transaction";
constexpr std::string_view kRollback = "if @@trancount > 0 rollback transaction";

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
    OdbcConnection::Close();
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
    OdbcPool* pool = settings_.pooled ? OdbcPool::Process() : nullptr;
    if (pool != nullptr) link_ = pool->Take(connectString_);
    if (link_) return;
    link_ = std::make_unique<OdbcLink>(settings_, errors_);
    if (settings_.lockMilliseconds >= 0) {
        const Outcome set = Run("set lock_timeout " + std::to_string(settings_.lockMilliseconds));
        if (!set.errors.empty()) Fail(set, false);
    }
}

void OdbcConnection::Close() {
    open_ = false;
    if (!link_) return;
    // What was not committed goes with the line.
    if (inUnit_) link_.reset();
    inUnit_ = false;
    unitLost_ = false;
    if (!link_) return;
    OdbcPool* pool = settings_.pooled ? OdbcPool::Process() : nullptr;
    if (pool != nullptr) pool->Keep(connectString_, std::move(link_));
    link_.reset();
}

// Errors and messages apart, as callers look for them.
void OdbcConnection::Sort(std::vector<DriverError> records, Outcome& outcome) {
    for (DriverError& record : records) {
        if (IsBrokenLine(record)) outcome.broken = true;
        if (record.sqlState == "HYT00" || record.sqlState == "HYT01") outcome.timedOut = true;
        if (record.sqlState == "HY008") outcome.cancelled = true;
        const bool isError = record.severity >= kFirstErrorSeverity;
        // The driver's own remark that there was an error adds nothing.
        if (isError && record.native == 0 && !outcome.errors.empty() && !IsBrokenLine(record)) continue;
        (isError ? outcome.errors : outcome.messages).push_back(std::move(record));
    }
}

// A statement that another thread may take back, for as long as it runs.
class OdbcConnection::Running {
  public:
    Running(OdbcConnection& connection, SQLHSTMT statement) : connection_(connection) { Set(statement); }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() { Set(SQL_NULL_HSTMT); }

  private:
    void Set(SQLHSTMT statement) {
        const std::lock_guard guard(connection_.runningLock_);
        connection_.running_ = statement;
    }
    OdbcConnection& connection_;
};

void OdbcConnection::Cancel() noexcept {
    cancelled_ = true;
    // Where the lock is held a statement is just beginning or ending.
    const std::unique_lock lock(runningLock_, std::try_to_lock);
    if (lock && running_ != SQL_NULL_HSTMT) SQLCancel(running_);
}

bool OdbcConnection::BeginUnit() {
    if (!open_) throw Error(error_number::kObjectClosed, kClosedText, kSource);
    inUnit_ = true;
    // Where it cannot be begun its batches are refused, which must not run each for itself then. A kept line
    // that is dead by now is no reason: nothing has run yet.
    unitLost_ = true;
    for (int attempt = 0; attempt < 2 && unitLost_; ++attempt) {
        try {
            if (!link_) Connect();
            Outcome begun = Run(kBegin);
            unitLost_ = !begun.errors.empty() || begun.broken;
            if (begun.broken) link_.reset();
        } catch (const Error&) {
            // No server: the first batch tells it.
        }
    }
    return true;
}

bool OdbcConnection::CommitUnit() {
    const bool lost = unitLost_ || !inUnit_ || !link_;
    inUnit_ = false;
    unitLost_ = false;
    if (lost) return false;
    errors_.clear();
    // There is nothing to commit where the server has undone it.
    Outcome committed = Run("commit transaction");
    if (committed.errors.empty() && !committed.broken) return true;
    Fail(std::move(committed), true);
}

OdbcConnection::Outcome OdbcConnection::Run(std::string_view batch) {
    Outcome outcome;
    const OdbcStatement statement(link_->Line());
    if (!statement) {
        Sort(OdbcDiagnostics(SQL_HANDLE_DBC, link_->Line()), outcome);
        outcome.broken = true;
        return outcome;
    }
    if (CommandTimeout() > 0) {
        SQLSetStmtAttrW(statement.Get(), SQL_ATTR_QUERY_TIMEOUT,
                        reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(CommandTimeout())), 0);
    }
    const Running running(*this, statement.Get());
    std::u16string text = OdbcWide(batch);
    SQLRETURN code = SQLExecDirectW(statement.Get(), reinterpret_cast<SQLWCHAR*>(text.data()),
                                    static_cast<SQLINTEGER>(text.size()));
    RecordsetRef last;
    const auto note = [&](SQLRETURN of) {
        // Before any other call, which would clear them.
        if (of == SQL_ERROR || of == SQL_SUCCESS_WITH_INFO)
            Sort(OdbcDiagnostics(SQL_HANDLE_STMT, statement.Get()), outcome);
    };
    for (;; code = SQLMoreResults(statement.Get())) {
        // No rows changed, nothing created that counts: all the same a batch that ran.
        if (code == SQL_NO_DATA || code == SQL_INVALID_HANDLE) break;
        note(code);
        if (outcome.broken || outcome.timedOut || outcome.cancelled) break;
        if (code == SQL_ERROR) continue;
        const bool hadFailed = !outcome.errors.empty();
        SQLSMALLINT columns = 0;
        SQLNumResultCols(statement.Get(), &columns);
        if (columns == 0) {
            SQLLEN rows = -1;
            if (SQL_SUCCEEDED(SQLRowCount(statement.Get(), &rows)) && rows >= 0)
                outcome.counts.push_back(rows);
            continue;
        }
        OdbcRows read = ReadOdbcResult(statement.Get(), columns);
        note(read.end);
        // The server goes on behind an error; what it gives from there on is undone with the rest.
        if (!hadFailed || !settings_.batchTransactions) {
            if (last) last->SetNext(read.recordset);
            if (!outcome.first) outcome.first = read.recordset;
            last = std::move(read.recordset);
        }
        if (outcome.broken || outcome.timedOut || outcome.cancelled) break;
    }
    // A line that was cut may come out as the mere end of the results.
    if (IsDead(link_->Line())) outcome.broken = true;
    return outcome;
}

OdbcConnection::Outcome OdbcConnection::RunAsUnit(std::string_view batch) {
    Outcome begun = Run(kBegin);
    if (!begun.errors.empty() || begun.broken) return begun;
    Outcome outcome = Run(batch);
    if (outcome.broken) return outcome;
    if (!outcome.errors.empty()) {
        if (Run(kRollback).broken) outcome.broken = true;
        return outcome;
    }
    Outcome committed = Run(kCommit);
    if (!committed.errors.empty() || committed.broken) {
        lostAtCommit_ = committed.broken;
        return committed;
    }
    return outcome;
}

std::string OdbcConnection::WithMarks(std::string_view batch) {
    const bool plain =
        std::all_of(batch.begin(), batch.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (plain) return std::string(batch);
    const system::CodePage* page = link_->Page();
    if (page == nullptr || page->FirstMissing(batch) == std::string_view::npos) return std::string(batch);
    try {
        return WithNationalMarks(batch, *page, link_->PageNumber(),
                                 [this](const std::string& table, const std::string& column) {
                                     return link_->TakesUnicode(table, column);
                                 });
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
    if (!link_) Connect();
    cancelled_ = false;
    const RunningBatch running(*this);
    const BatchNature nature = NatureOf(batch);
    if (nature.leavesTraces) link_->hasTraces = true;
    const std::string text = WithMarks(batch);
    Outcome outcome = settings_.batchTransactions && nature.needsUnit ? RunAsUnit(text) : Run(text);
    if (!outcome.errors.empty() || outcome.broken) {
        // As on the embedded account set a batch that fails undoes the transaction that it runs in.
        if (!outcome.broken && settings_.batchTransactions && (inUnit_ || link_->hasTraces)) {
            if (Run(kRollback).broken) outcome.broken = true;
        }
        unitLost_ = inUnit_;
        Fail(std::move(outcome), lostAtCommit_);
    }
    errors_ = std::move(outcome.messages);
    if (recordsAffected != nullptr) {
        *recordsAffected = -1;
        const std::vector<bool> ofChanges =
            outcome.counts.empty() ? std::vector<bool>() : CountsOfChanges(batch);
        for (std::size_t i = 0; i < outcome.counts.size(); ++i) {
            if (ofChanges.size() == outcome.counts.size() && !ofChanges[i]) continue;
            *recordsAffected = std::max<std::int64_t>(*recordsAffected, 0) + outcome.counts[i];
        }
    }
    return outcome.first ? outcome.first : std::make_shared<Recordset>();
}

void OdbcConnection::Fail(Outcome outcome, bool atCommit) {
    std::int32_t number = error_number::kProviderError;
    errors_ = std::move(outcome.errors);
    errors_.insert(errors_.end(), outcome.messages.begin(), outcome.messages.end());
    std::string text = errors_.empty() ? std::string() : errors_.front().text;
    if (outcome.broken) {
        if (OdbcPool* pool = OdbcPool::Process()) pool->Forget(connectString_);
        link_.reset();
        text = (atCommit ? "提交时与数据库服务器的连接断开，无法确定是否已经保存，请重新打开后检查。\n"
                         : "与数据库服务器的连接已断开，本次操作没有完成。请重新操作。\n") +
               text;
    } else if (outcome.timedOut) {
        // What the driver has made of the line after taking a batch back is not worth finding out.
        link_.reset();
        number = error_number::kTimeoutExpired;
        text = "操作超时，已经取消。\n" + text;
    } else if (outcome.cancelled || cancelled_) {
        link_.reset();
        number = error_number::kOperationCancelled;
        text = "Operation canceled";
    } else {
        despiteFailure_ = std::move(outcome.first);
        if (const std::string advice = errors_.empty() ? std::string() : Advice(errors_.front());
            !advice.empty())
            text = advice + "\n" + text;
    }
    throw Error(number, text, kSource);
}

void RegisterOdbcProviders() {
    for (const char* name : {"SQLOLEDB", "SQLOLEDB.1", "SQLNCLI", "SQLNCLI.1", "SQLNCLI10", "SQLNCLI10.1",
                             "SQLNCLI11", "SQLNCLI11.1", "MSOLEDBSQL", "MSOLEDBSQL.1", "MSOLEDBSQL19",
                             "MSOLEDBSQL19.1", "MSDASQL", "MSDASQL.1"}) {
        RegisterProvider(name, [] { return std::make_shared<OdbcConnection>(); });
    }
}

}  // namespace vicenter::ado
