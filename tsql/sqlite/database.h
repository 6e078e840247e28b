#pragma once

// SQLite behind two small classes: a connection and a prepared statement, with failures as SQL Server's
// errors.
//
// Both are used by one session on one thread. A statement must not outlive its database.

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "tsql/base/diagnostic.h"
#include "tsql/base/interruption.h"

struct sqlite3;
struct sqlite3_stmt;

namespace vicenter::tsql::engine {

// The collations by which SQLite keeps texts and decimals in order.
inline constexpr const char* kTextCollationName = "ts_text";
inline constexpr const char* kNumberCollationName = "ts_number";
// The order of uniqueidentifiers; whether they are equal their texts say.
inline constexpr const char* kGuidCollationName = "ts_guid";

// How long a batch waits for others who write, unless it is told otherwise; and what "for ever" means.
inline constexpr int kLockTimeout = 5000;
inline constexpr int kLongestLockTimeout = 24 * 60 * 60 * 1000;

// What error 40510 names when SQLite is to join more tables than it can.
inline constexpr const char* kManyTables = "FROM of more than 64 tables";

enum class StepResult { kRow, kDone, kFailed };

// How SQLite may run a query. The answers are the same: tests ask twice. kEvery is no choice where texts are
// compared, see Database::Open.
enum class QueryPlans : std::uint8_t { kUsual, kAsWritten, kEvery };

// What a step that failed has run into.
enum class FailureKind { kUniqueKey, kCheck, kForeignKey, kOtherConstraint, kOther };

class PreparedStatement {
  public:
    PreparedStatement() = default;
    explicit PreparedStatement(sqlite3_stmt* handle) : handle_(handle) {}
    PreparedStatement(PreparedStatement&& other) noexcept : handle_(other.handle_) {
        other.handle_ = nullptr;
    }
    PreparedStatement& operator=(PreparedStatement&& other) noexcept;
    PreparedStatement(const PreparedStatement&) = delete;
    PreparedStatement& operator=(const PreparedStatement&) = delete;
    ~PreparedStatement();

    sqlite3_stmt* Handle() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    StepResult Step();
    void Reset();

    void Bind(int parameter, std::int64_t value);
    void Bind(int parameter, std::string_view value);
    // The text stays where it is until the statement has run.
    void BindInPlace(int parameter, std::string_view text);
    void BindNull(int parameter);
    std::int64_t Int(int column) const;
    std::string Text(int column) const;
    bool IsNull(int column) const;

  private:
    sqlite3_stmt* handle_ = nullptr;
};

// Brings a statement back to its start at the end of a scope, so that it holds no lock.
class ResetAtEnd {
  public:
    explicit ResetAtEnd(PreparedStatement& statement) : statement_(statement) {}
    ResetAtEnd(const ResetAtEnd&) = delete;
    ResetAtEnd& operator=(const ResetAtEnd&) = delete;
    ~ResetAtEnd() { statement_.Reset(); }

  private:
    PreparedStatement& statement_;
};

class Database {
  public:
    Database() = default;
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;
    ~Database();

    // The path is a path, whatever it looks like. fileSystem is the name of one that SQLite knows; none is
    // the account sets' own. Throws SqlError: 5120 when the file cannot be opened or does not exist and is
    // not to be created.
    void Open(const std::string& path, bool create, int lockTimeoutMilliseconds,
              const char* fileSystem = nullptr);
    void Allow(QueryPlans plans);
    sqlite3* Handle() const { return handle_; }
    const std::string& Path() const { return path_; }
    // How long to wait for another process; below 0 without end. A batch that is stopped waits no longer.
    void SetLockTimeout(int milliseconds);
    // What stops the statements of the batch that runs.
    Interruption& Stopping() { return stopping_; }

    PreparedStatement Prepare(std::string_view sql);
    // One or several statements without results.
    void Run(const std::string& sql);
    // The same on the way out of a failure, whose error is the one to be told.
    void RunQuietly(const std::string& sql) noexcept;
    // Steps a statement: true for a row, false when it is done; throws for failures.
    bool Step(PreparedStatement& statement);
    // The same with the failure left to LastFailure.
    StepResult TryStep(PreparedStatement& statement);
    bool InTransaction() const;
    // Rows refer to what is not there, as far as the transaction that is open has made them so.
    bool HasBrokenKeys() const;
    std::int64_t Changes() const;
    // Of the row that was inserted last.
    std::int64_t LastRowNumber() const;
    // The column is what the file numbers the rows of the table by (INTEGER PRIMARY KEY), as far as the
    // statement that ran last has seen.
    bool IsRowNumber(const std::string& table, const std::string& column) const;
    // The last failure of SQLite: what it was, what SQLite says, and the server's error for it. Which error a
    // broken constraint is, the caller knows.
    FailureKind LastFailureKind() const;
    // Of the statement, not of the file: something that it names is missing, or a function has failed.
    bool IsLastFailureOfStatement() const;
    std::string LastMessage() const;
    SqlError LastFailure() const;
    // Another number whenever somebody has changed the file.
    std::uint32_t DataVersion() const;
    // Whether the file is no more the one that was opened.
    bool IsLost() const;
    // Throws SqlError 5120 with what became of the file when it is not the one that was opened.
    void CheckFile();
    // The same before a batch that may do no more than read: such a look is good for a moment, so that many
    // short questions in a row do not cost more for the looking than for the answers.
    void CheckFileBeforeReading();
    // Brings what stands in the log into the main file and empties the log, as far as nobody else is at work;
    // true when all is home. Never waits.
    bool BringHome();

  private:
    SqlError Failure(int code) const;
    // The file's own check finds nothing.
    bool IsSound() const;
    int State() const;
    void Close();
    static int Wait(void* database, int times);
    static void Nap(void* database, std::chrono::microseconds asked);
    bool MayWaitOn(std::chrono::steady_clock::time_point since);
    // A call of SQLite that waits for a log as long as for any lock.
    template <class Call>
    int Patiently(const Call& call);

    sqlite3* handle_ = nullptr;
    std::string path_;
    int lockTimeout_ = 0;
    Interruption stopping_;
    std::chrono::steady_clock::time_point waitingSince_;
    std::chrono::steady_clock::time_point nappingSince_;  // in the call that runs; none: 0
    std::chrono::steady_clock::time_point lookedAt_;      // before reading; nothing has been written since
};

// "name" with its quotes doubled.
std::string Quoted(std::string_view name);
// 'text' with its apostrophes doubled.
std::string QuotedText(std::string_view text);

}  // namespace vicenter::tsql::engine
