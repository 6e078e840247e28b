#include "platform/ado/account_set/account_set_connection.h"

#include <charconv>
#include <chrono>
#include <new>

#include "automation/quietly.h"
#include "platform/ado/account_set/account_set_collation.h"
#include "platform/ado/account_set/account_set_copies.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/account_set/session_pool.h"
#include "platform/ado/file_care.h"
#include "platform/ado/long_work_watch.h"
#include "platform/ado/running_batch.h"
#include "platform/ado/unit_text.h"
#include "text/hex.h"

namespace vicenter::ado {

using automation::Error;
namespace engine = tsql::engine;

namespace {

constexpr const char* kClosedText = "Operation is not allowed when the object is closed.";
constexpr const char* kTimeoutText = "Query timeout expired";
constexpr std::int32_t kFirstErrorSeverity = 11;
constexpr std::int32_t kInsufficientMemory = 701;  // the server's number

DataType DataTypeOf(const engine::SqlType& type) {
    using engine::TypeKind;
    switch (type.kind) {
        case TypeKind::kBit:
            return DataType::kBoolean;
        case TypeKind::kTinyInt:
            return DataType::kTinyInt;
        case TypeKind::kSmallInt:
            return DataType::kSmallInt;
        case TypeKind::kInt:
            return DataType::kInteger;
        case TypeKind::kBigInt:
            return DataType::kBigInt;
        case TypeKind::kSmallMoney:
        case TypeKind::kMoney:
            return DataType::kCurrency;
        case TypeKind::kDecimal:
            return DataType::kNumeric;
        case TypeKind::kReal:
        case TypeKind::kFloat:
            return DataType::kDouble;
        case TypeKind::kTime:
        case TypeKind::kDate:
        case TypeKind::kSmallDateTime:
        case TypeKind::kDateTime:
        case TypeKind::kDateTime2:
            return DataType::kTimeStamp;
        case TypeKind::kBinary:
        case TypeKind::kVarBinary:
            return DataType::kBinary;
        case TypeKind::kUniqueIdentifier:
            return DataType::kGuid;
        case TypeKind::kChar:
            return DataType::kChar;
        case TypeKind::kVarChar:
            return type.IsMax() ? DataType::kLongVarChar : DataType::kVarChar;
        case TypeKind::kText:
            return DataType::kLongVarChar;
        case TypeKind::kNText:
            return DataType::kLongVarWChar;
        default:
            return type.IsMax() ? DataType::kLongVarWChar : DataType::kVarWChar;
    }
}

Variant VariantOf(engine::Value& value, const engine::SqlType& type) {
    using engine::TypeKind;
    switch (value.Raw().index()) {
        case 0:
            return Variant::Null();
        case 1:
            switch (type.kind) {
                case TypeKind::kBit:
                    return Variant(value.Int() != 0);
                case TypeKind::kTinyInt:
                case TypeKind::kSmallInt:
                    return Variant(static_cast<std::int16_t>(value.Int()));
                case TypeKind::kBigInt:
                    return Variant(value.Int());
                default:
                    return Variant(static_cast<std::int32_t>(value.Int()));
            }
        case 2:
            return Variant(value.Real());
        case 3:
            return Variant(value.Exact());
        case 4:
            return Variant(value.Date());
        case 5:
            return Variant(value.TakeText());
        default: {
            // As a text: bytes have no automation type of their own here.
            std::string text = "0x";
            for (const char byte : value.Blob())
                text::AppendHex(text, static_cast<unsigned char>(byte));
            return Variant(text);
        }
    }
}

// Builds recordsets of what the engine gives.
class RecordsetSink final : public engine::ResultSink {
  public:
    void BeginResult(const std::vector<engine::ResultColumn>& columns) override {
        std::vector<Column> fields;
        fields.reserve(columns.size());
        types_.clear();
        types_.reserve(columns.size());
        for (const engine::ResultColumn& column : columns) {
            Column& field = fields.emplace_back();
            field.name = column.name;
            field.type = DataTypeOf(column.type);
            field.serverType = column.TypeName();
            types_.push_back(column.type);
        }
        auto next = std::make_shared<Recordset>(std::move(fields));
        if (last_) last_->SetNext(next);
        if (!first_) first_ = next;
        last_ = std::move(next);
    }
    void AddRow(std::vector<engine::Value>& row) override {
        const std::span<Variant> values = last_->AppendRow();
        for (std::size_t i = 0; i < row.size(); ++i)
            values[i] = VariantOf(row[i], types_[i]);
    }
    void Message(const tsql::Diagnostic& message) override { messages_.push_back(message); }

    const RecordsetRef& First() const { return first_; }
    const std::vector<tsql::Diagnostic>& Messages() const { return messages_; }

  private:
    RecordsetRef first_;
    RecordsetRef last_;
    std::vector<engine::SqlType> types_;
    std::vector<tsql::Diagnostic> messages_;
};

const char* SqlStateOf(std::int32_t number) {
    switch (number) {
        case 208:
        case 2812:
            return "42S02";
        case 207:
            return "42S22";
        case 2714:
            return "42S01";
        case 515:
        case 547:
        case 2601:
        case 2627:
            return "23000";
        case 220:
        case 232:
        case 8115:
            return "22003";
        case 2628:
        case 8152:
            return "22001";
        case 245:
        case 8114:
            return "22018";
        case 241:
        case 242:
            return "22007";
        case 8134:
            return "22012";
        case 1222:
            return "HYT00";
        case 3617:
            return "HY008";
        default:
            return "42000";
    }
}

DriverError RecordOf(const tsql::Diagnostic& diagnostic) {
    DriverError record;
    record.native = diagnostic.number;
    record.severity = diagnostic.severity;
    record.state = diagnostic.state;
    record.line = diagnostic.line;
    record.procedure = diagnostic.procedure;
    record.sqlState = diagnostic.severity < kFirstErrorSeverity ? "01000" : SqlStateOf(diagnostic.number);
    record.text = diagnostic.text;
    return record;
}

bool IsNo(const std::string& word) {
    return automation::SameName(word, "no") || automation::SameName(word, "false") || word == "0";
}

// A mode or a time that was misspelt must not quietly become the usual one.
[[noreturn]] void RefuseValue(const std::string& attribute) {
    throw Error(error_number::kProviderError,
                "Invalid value specified for connection string attribute '" + attribute + "'.",
                kAccountSetProvider);
}

// Leaves the number as it is when the connect string has none.
void ReadNumber(const ConnectString& settings, const char* attribute, std::int32_t& number) {
    const std::string text = settings.Value(attribute);
    if (text.empty()) return;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end) RefuseValue(attribute);
}

bool IsYes(const std::string& word) {
    return automation::SameName(word, "yes") || automation::SameName(word, "true") || word == "1";
}

}  // namespace

AccountSetConnection::~AccountSetConnection() {
    automation::Quietly([this] { AccountSetConnection::Close(); });
}

void AccountSetConnection::Open(const std::string& connectString) {
    Close();
    errors_.clear();
    const ConnectString settings(connectString);
    engine::SessionOptions options;
    options.path = settings.Value("Data Source");
    options.create = IsYes(settings.Value("Create"));
    const std::string transactions = settings.Value("Transactions");
    options.batchTransactions = !automation::SameName(transactions, "none");
    if (options.batchTransactions && !transactions.empty() && !automation::SameName(transactions, "batch"))
        RefuseValue("Transactions");
    if (const std::string access = settings.Value("Access"); automation::SameName(access, "read")) {
        options.readOnly = true;
    } else if (!access.empty() && !automation::SameName(access, "write")) {
        RefuseValue("Access");
    }
    options.collation = &AccountSetCollation();
    options.now = [] { return system::Surroundings::Current().clock->Now(); };
    if (settings.Has("User ID")) options.user = settings.Value("User ID");
    ReadNumber(settings, "Lock Timeout", options.lockTimeoutMilliseconds);
    std::int32_t commandTimeout = CommandTimeout();
    ReadNumber(settings, "Command Timeout", commandTimeout);
    if (commandTimeout < 0) RefuseValue("Command Timeout");
    SetCommandTimeout(commandTimeout);
    const bool pooled = !IsNo(settings.Value("Pooling"));
    if (SessionPool* pool = pooled ? SessionPool::Process() : nullptr) session_ = pool->Take(connectString);
    try {
        if (!session_) session_ = std::make_unique<engine::Session>(std::move(options));
    } catch (const tsql::SqlError& error) {
        errors_.push_back(RecordOf(error.Details()));
        throw Error(error_number::kProviderError, error.Text(), kAccountSetProvider);
    }
    poolKey_ = pooled ? connectString : std::string();
}

RecordsetRef AccountSetConnection::Execute(std::string_view batch, std::int64_t* recordsAffected) try {
    if (!session_) throw Error(error_number::kObjectClosed, kClosedText, kAccountSetProvider);
    errors_.clear();
    despiteFailure_.reset();
    if (session_->IsRunning()) {
        throw Error(error_number::kStillExecuting,
                    "Operation cannot be performed while executing asynchronously.", kAccountSetProvider);
    }
    // A batch of a unit that is gone must not be kept by itself.
    if (unitLost_) throw Error(error_number::kProviderError, kUnitLostText, kAccountSetProvider);
    unitLost_ = inUnit_;  // until this one has come to its end
    RecordsetSink sink;
    engine::ExecutionLimits limits;
    limits.timeout = std::chrono::seconds(CommandTimeout());
    LongWorkWatch watched;
    if (watched) limits.watch = [&](std::chrono::milliseconds taken) { return watched.GoOn(taken); };
    const engine::ExecutionReport report = [&] {
        const RunningBatch running(*this);
        return session_->Execute(batch, sink, limits);
    }();
    if (report.stopped == engine::StopReason::kTimeout) {
        errors_.push_back({0, kFirstErrorSeverity, 0, report.errors.front().line, {}, "HYT00", kTimeoutText});
        despiteFailure_ = sink.First();
        throw Error(error_number::kTimeoutExpired, kTimeoutText, kAccountSetProvider);
    }
    for (const tsql::Diagnostic& diagnostic : report.errors)
        errors_.push_back(RecordOf(diagnostic));
    for (const tsql::Diagnostic& message : sink.Messages())
        errors_.push_back(RecordOf(message));
    if (!report.errors.empty()) {
        despiteFailure_ = sink.First();
        if (session_->IsStale()) LeaveLostFile();
        const tsql::Diagnostic& first = report.errors.front();
        throw Error(first.number == kInsufficientMemory           ? automation::error_number::kOutOfMemory
                    : report.stopped != engine::StopReason::kNone ? error_number::kOperationCancelled
                                                                  : error_number::kProviderError,
                    first.text, kAccountSetProvider);
    }
    unitLost_ = false;
    if (recordsAffected != nullptr) *recordsAffected = report.rowsAffected;
    return sink.First() ? sink.First() : std::make_shared<Recordset>();
} catch (const std::bad_alloc&) {
    throw Error(automation::error_number::kOutOfMemory, {}, kAccountSetProvider);
}

void AccountSetConnection::Cancel() noexcept {
    if (session_) session_->Cancel();
}

// The file is told to be lost once; whoever opens the account set again gets what is there now.
void AccountSetConnection::LeaveLostFile() {
    session_.reset();
    if (SessionPool* pool = SessionPool::Process()) pool->Forget(poolKey_);
}

void AccountSetConnection::Close() {
    inUnit_ = false;
    unitLost_ = false;
    if (!session_) return;
    SessionPool* pool = poolKey_.empty() ? nullptr : SessionPool::Process();
    if (pool != nullptr) pool->Keep(poolKey_, std::move(session_));
    session_.reset();
}

bool AccountSetConnection::BeginUnit() {
    AccountSetConnection::Execute("begin transaction", nullptr);
    inUnit_ = true;
    return true;
}

bool AccountSetConnection::CommitUnit() {
    // There is nothing to commit when a batch has failed since, which has undone everything.
    const bool lost = unitLost_ || !inUnit_;
    inUnit_ = false;
    unitLost_ = false;
    if (lost) return false;
    AccountSetConnection::Execute("commit transaction", nullptr);
    return true;
}

std::optional<std::uint32_t> AccountSetConnection::DataVersion() {
    if (!session_) return std::nullopt;
    try {
        return session_->DataVersion();
    } catch (const tsql::SqlError&) {
        // A file that is locked or gone: whoever asks reads again and meets the error there.
        return std::nullopt;
    }
}

void RestAccountSets() {
    if (SessionPool* pool = SessionPool::Process()) pool->BringHome();
}

namespace {

class AccountSetCare final : public FileCare {
  public:
    std::optional<std::string> FileOf(const std::string& connectString) const override {
        return AccountSetFile(connectString);
    }
    void BackUp(const std::string& file, const std::string& to) const override { BackUpAccountSet(file, to); }
    std::vector<std::string> FindDamage(const std::string& file) const override {
        return FindAccountSetDamage(file);
    }
};

}  // namespace

void RegisterAccountSetProvider() {
    static const AccountSetCare care;
    RegisterFileCare(care);
    RegisterProvider(
        kAccountSetProvider, [] { return std::make_shared<AccountSetConnection>(); }, RestAccountSets);
}

void CloseIdleAccountSets() {
    if (SessionPool* pool = SessionPool::Process()) pool->Clear();
}

}  // namespace vicenter::ado
