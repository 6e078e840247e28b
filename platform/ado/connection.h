#pragma once

// Connections to account sets, whatever stands behind them.
//
// A back end is a folder beside this header that implements Connection and registers itself under the name
// that a connect string gives as Provider=. Callers ask OpenConnection() and never name a back end. A
// connection belongs to the user-interface thread; the recordsets that it returns outlive it.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ado/recordset.h"

namespace vicenter::ado {

namespace error_number {
inline constexpr std::int32_t kProviderError =
    static_cast<std::int32_t>(0x80040E14);  // a statement was refused
inline constexpr std::int32_t kItemNotFound = 3265;
inline constexpr std::int32_t kNoCurrentRecord = 3021;
inline constexpr std::int32_t kObjectClosed = 3704;
inline constexpr std::int32_t kProviderNotFound = 3706;
inline constexpr std::int32_t kStillExecuting = 3711;
inline constexpr std::int32_t kTimeoutExpired = static_cast<std::int32_t>(0x80040E31);
inline constexpr std::int32_t kOperationCancelled = static_cast<std::int32_t>(0x80040E4E);
}  // namespace error_number

// One diagnostic record of the server.
struct DriverError {
    std::int32_t native = 0;  // the server's message number, for instance 208
    std::int32_t severity = 0;
    std::int32_t state = 0;
    std::int32_t line = 0;  // within the batch or procedure, from 1
    std::string procedure;  // empty outside a procedure
    std::string sqlState;
    std::string text;
};

// Seconds after which a batch is ended, unless a connection is told otherwise; 0 stands for no limit.
inline constexpr std::int32_t kUsualCommandTimeout = 30;

class Connection {
  public:
    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    virtual ~Connection() = default;

    // Throws automation::Error when the account set cannot be opened.
    virtual void Open(const std::string& connectString) = 0;
    virtual bool IsOpen() const = 0;
    // Runs one batch. The recordset of its first result; further results hang on Recordset::Next(). A batch
    // without any result gives a closed recordset. recordsAffected gets the rows changed by the whole batch,
    // or -1 when no statement changed any. Throws automation::Error (kProviderError, the text of the first
    // diagnostic record); Errors() then holds all of them.
    virtual RecordsetRef Execute(std::string_view batch, std::int64_t* recordsAffected = nullptr) = 0;
    virtual void Close() = 0;
    // The results that the last batch gave although it failed: those before the failure, and those behind it
    // where the batch went on. None after a batch that did not fail.
    virtual RecordsetRef ResultsDespiteFailure() const { return nullptr; }
    // Ends the batch that runs, as if it had failed: error kOperationCancelled. Does nothing when none runs.
    // May be called from any thread and from a handler of a signal, as long as the connection stays open.
    virtual void Cancel() noexcept {}
    // Batches end after so many seconds with error kTimeoutExpired; error 5 for a number below 0.
    void SetCommandTimeout(std::int32_t seconds);
    std::int32_t CommandTimeout() const { return commandTimeout_; }
    // Another number whenever anything in the account set may have changed since, by whomever; compares with
    // earlier numbers of the same open connection only. Nothing when the back end cannot tell.
    virtual std::optional<std::uint32_t> DataVersion() { return std::nullopt; }
    // From here on the batches are one unit, kept by CommitUnit and undone by the first that fails, by Close
    // or by a killed process. False when the back end has no such thing; each batch then stands for itself.
    virtual bool BeginUnit() { return false; }
    // False when the unit has been undone.
    virtual bool CommitUnit() { return false; }
    // The records of the last Execute or Open.
    virtual const std::vector<DriverError>& Errors() const = 0;

  private:
    std::int32_t commandTimeout_ = kUsualCommandTimeout;
};

// Cancels the batches that run, whoever started them. Any thread.
void CancelRunning() noexcept;

using ConnectionRef = std::shared_ptr<Connection>;
using ConnectionFactory = std::function<ConnectionRef()>;
// What a back end does while nobody waits for it.
using RestFunction = std::function<void()>;

// A connect string: key=value pairs, ";" between them, keys without case; a value may stand in braces or
// quotes.
class ConnectString {
  public:
    explicit ConnectString(std::string_view text);
    // The last value of that key, or the empty text.
    std::string Value(std::string_view key) const;
    bool Has(std::string_view key) const;
    // As they stand, in order.
    const std::vector<std::pair<std::string, std::string>>& Pairs() const { return pairs_; }

  private:
    std::vector<std::pair<std::string, std::string>> pairs_;
};

// The back end that a connect string means: one that names a Driver= or DSN= instead of a provider is
// MSDASQL's, as ever. The empty text when it names none.
std::string ProviderOf(const ConnectString& settings);

// Back ends by provider name; compared without case. A later registration replaces the earlier one.
void RegisterProvider(std::string name, ConnectionFactory factory, RestFunction rest = nullptr);

// Called when the user rests and when a window has closed: files are left such that a copy of them is whole.
// Never throws.
void RestConnections() noexcept;

// Opens a new connection by the connect string's provider. An unknown or missing one is error 3706.
ConnectionRef OpenConnection(const std::string& connectString);

}  // namespace vicenter::ado
