#include "tsql/sqlite/database.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <new>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <sqlite3.h>

#include "tsql/base/error_table.h"
#include "tsql/sqlite/file_system.h"
#include "tsql/sqlite/lock_pause.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

PreparedStatement& PreparedStatement::operator=(PreparedStatement&& other) noexcept {
    if (this != &other) {
        sqlite3_finalize(handle_);
        handle_ = other.handle_;
        other.handle_ = nullptr;
    }
    return *this;
}

PreparedStatement::~PreparedStatement() {
    sqlite3_finalize(handle_);
}

namespace {

StepResult ResultOf(int code) {
    return code == SQLITE_ROW    ? StepResult::kRow
           : code == SQLITE_DONE ? StepResult::kDone
                                 : StepResult::kFailed;
}

}  // namespace

StepResult PreparedStatement::Step() {
    return ResultOf(sqlite3_step(handle_));
}

void PreparedStatement::Reset() {
    sqlite3_reset(handle_);
}

void PreparedStatement::Bind(int parameter, std::int64_t value) {
    sqlite3_bind_int64(handle_, parameter, value);
}

void PreparedStatement::Bind(int parameter, std::string_view value) {
    // Without an address it would be NULL.
    const char* at = value.empty() ? "" : value.data();
    CheckBound(sqlite3_bind_text64(handle_, parameter, at, value.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
}

void PreparedStatement::BindInPlace(int parameter, std::string_view text) {
    const char* at = text.empty() ? "" : text.data();
    CheckBound(sqlite3_bind_text64(handle_, parameter, at, text.size(), SQLITE_STATIC, SQLITE_UTF8));
}

void PreparedStatement::BindNull(int parameter) {
    sqlite3_bind_null(handle_, parameter);
}

std::int64_t PreparedStatement::Int(int column) const {
    return sqlite3_column_int64(handle_, column);
}

std::string PreparedStatement::Text(int column) const {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(handle_, column));
    if (text == nullptr) {
        if (!IsNull(column)) throw std::bad_alloc();
        return {};
    }
    return std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(handle_, column)));
}

bool PreparedStatement::IsNull(int column) const {
    return sqlite3_column_type(handle_, column) == SQLITE_NULL;
}

namespace {

// Before an automatic index is searched, SQLite 3.40 asks a filter that tells texts apart by their lengths;
// what the collation ts_text takes for equal is then not found. Decimals would be, since they have one text
// each, but what the filter saves is not worth a rule of where it may stand (joins of 200,000 rows take the
// same time with it and without it). The number is the filter's in SQLite's own list of what can be switched
// off.
constexpr int kBloomFilter = 0x00080000;

// Steps of a query between two questions whether it is to stop: some tens of microseconds.
constexpr int kStepsPerQuestion = 1000;

// While SQLite sleeps nobody could stop it.
constexpr std::chrono::milliseconds kLongestNap{25};

// How long a look at the file is good for batches that read: less than anybody can tell, and many answers.
constexpr std::chrono::milliseconds kGoodLook{1};

// SQLite takes some names for something else than a path.
std::string PlainPath(const std::string& path) {
    const bool special = path.rfind("file:", 0) == 0 || path.rfind(':', 0) == 0;
    return special ? "./" + path : path;
}

const char* TextOf(FileState state) {
    switch (state) {
        case FileState::kGone:
            return "账套文件已被删除或移走，请重新打开账套";
        case FileState::kReplaced:
            return "账套文件已被另一个文件替换，请重新打开账套";
        case FileState::kOverwritten:
            return "账套文件的内容已被其他程序覆盖，请重新打开账套";
        case FileState::kHeldAbroad:
            return "此处原来的账套文件仍在使用，请先关闭使用它的程序";
        case FileState::kLogLost:
            return "账套文件旁边的 -wal 或 -shm 文件已被删除或替换，请重新打开账套";
        case FileState::kLogAbroad:
            return "账套正在使用中，但使用时的名称不同（硬链接），或旁边的 -wal、-shm "
                   "文件已被删除；请先关闭使用它"
                   "的程序";
        case FileState::kSame:
            break;
    }
    return "";
}

constexpr const char* kLogWithoutFile =
    "账套文件不存在，旁边却有它的日志（-wal、-journal），其中可能有已保存的内容；请先移走，或放回账套文件旁边";

std::filesystem::path FileNamed(const std::string& name) {
    return {std::u8string(name.begin(), name.end())};
}

// The log of a file that has been moved away or deleted. SQLite removes it when a new file is begun there.
bool IsLogWithoutFile(const std::string& path) {
    std::error_code failed;
    if (std::filesystem::exists(FileNamed(path), failed)) return false;
    return std::ranges::any_of(std::initializer_list<const char*>{"-wal", "-journal"}, [&](const char* tail) {
        std::error_code none;
        const std::uintmax_t bytes = std::filesystem::file_size(FileNamed(path + tail), none);
        return !none && bytes > 0;
    });
}

// Failures that a file which is no more the one that was opened may show itself by.
bool MayComeOfLoss(int code) {
    return code == SQLITE_CANTOPEN || code == SQLITE_PERM || code == SQLITE_AUTH || code == SQLITE_NOTADB ||
           code == SQLITE_CORRUPT || code == SQLITE_IOERR;
}

}  // namespace

Database::~Database() {
    Close();
}

void Database::Close() {
    // A file that has been moved takes with it what stands in its log; the next one at its place must not.
    const auto state = static_cast<FileState>(State());
    if (state == FileState::kGone || state == FileState::kReplaced) BringHome();
    sqlite3_close_v2(handle_);
    handle_ = nullptr;
}

void Database::Open(const std::string& path, bool create, int lockTimeoutMilliseconds,
                    const char* fileSystem) {
    path_ = path;
    if (path.empty()) throw MakeError(5120, {}, {path_, sqlite3_errstr(SQLITE_CANTOPEN)});
    if (create && IsLogWithoutFile(path)) throw MakeError(5120, {}, {path_, kLogWithoutFile});
    const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0) | SQLITE_OPEN_NOMUTEX;
    const int code = sqlite3_open_v2(PlainPath(path).c_str(), &handle_, flags,
                                     fileSystem != nullptr ? fileSystem : AccountSetFileSystem());
    if (code != SQLITE_OK) {
        SqlError failure = Failure(code);
        Close();
        throw failure;
    }
    sqlite3_extended_result_codes(handle_, 1);
    // A name that there is not is an error and no text.
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    Allow(QueryPlans::kUsual);
    sqlite3_progress_handler(
        handle_, kStepsPerQuestion,
        [](void* stopping) { return static_cast<Interruption*>(stopping)->Stops() ? 1 : 0; }, &stopping_);
    sqlite3_busy_handler(handle_, &Database::Wait, this);
    SetLockTimeout(lockTimeoutMilliseconds);
}

void Database::Allow(QueryPlans plans) {
    constexpr int kEverything = -1;
    const int withheld = plans == QueryPlans::kUsual   ? kBloomFilter
                         : plans == QueryPlans::kEvery ? 0
                                                       : kEverything;
    sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, handle_, withheld);
}

void Database::SetLockTimeout(int milliseconds) {
    // A negative time waits for ever on the server; a day comes near enough.
    lockTimeout_ = milliseconds < 0 ? kLongestLockTimeout : milliseconds;
}

// Asked by SQLite whether to go on waiting for a lock: 0 for no longer.
int Database::Wait(void* database, int times) {
    auto& self = *static_cast<Database*>(database);
    const auto now = std::chrono::steady_clock::now();
    if (times == 0) self.waitingSince_ = now;
    const std::chrono::milliseconds patience(self.lockTimeout_);
    const auto waited = std::chrono::duration_cast<std::chrono::microseconds>(now - self.waitingSince_);
    const std::chrono::microseconds left = patience - waited;
    if (left <= left.zero() || self.stopping_.Stops(true)) return 0;
    std::this_thread::sleep_for(std::min(LockPause(times, waited, patience), left));
    return 1;
}

bool Database::MayWaitOn(std::chrono::steady_clock::time_point since) {
    if (stopping_.Stops(true) || stopping_.Reason() != StopReason::kNone) return false;
    return std::chrono::steady_clock::now() - since < std::chrono::milliseconds(lockTimeout_);
}

// Sleeps no longer than the lock time-out lets it, and not at all once the batch is stopped: SQLite then
// tries its hundred times and gives up.
void Database::Nap(void* database, std::chrono::microseconds asked) {
    auto& self = *static_cast<Database*>(database);
    const auto begin = std::chrono::steady_clock::now();
    if (self.nappingSince_ == std::chrono::steady_clock::time_point()) self.nappingSince_ = begin;
    const auto end = begin + asked;
    for (auto now = begin; now < end && self.MayWaitOn(self.nappingSince_);
         now = std::chrono::steady_clock::now()) {
        std::this_thread::sleep_for(std::min<std::chrono::nanoseconds>(end - now, kLongestNap));
    }
}

template <class Call>
int Database::Patiently(const Call& call) {
    const NapRule rule(&Database::Nap, this);
    nappingSince_ = {};
    int code = call();
    while ((code & 0xFF) == SQLITE_PROTOCOL && MayWaitOn(nappingSince_))
        code = call();
    return code;
}

int Database::State() const {
    int state = static_cast<int>(FileState::kSame);
    if (handle_ != nullptr) sqlite3_file_control(handle_, "main", kAskFileState, &state);
    return state;
}

bool Database::IsLost() const {
    return static_cast<FileState>(State()) != FileState::kSame;
}

void Database::CheckFile() {
    lookedAt_ = {};
    const auto state = static_cast<FileState>(State());
    if (state != FileState::kSame) throw MakeError(5120, {}, {path_, TextOf(state)});
}

void Database::CheckFileBeforeReading() {
    const auto now = std::chrono::steady_clock::now();
    if (now - lookedAt_ < kGoodLook) return;
    CheckFile();
    lookedAt_ = now;
}

bool Database::BringHome() {
    const int patience = std::exchange(lockTimeout_, 0);
    int frames = 0;
    int home = 0;
    const int code = sqlite3_wal_checkpoint_v2(handle_, "main", SQLITE_CHECKPOINT_TRUNCATE, &frames, &home);
    lockTimeout_ = patience;
    return code == SQLITE_OK && frames == home;
}

PreparedStatement Database::Prepare(std::string_view sql) {
    sqlite3_stmt* statement = nullptr;
    const int code = Patiently([&] {
        return sqlite3_prepare_v3(handle_, sql.data(), static_cast<int>(sql.size()),
                                  SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    });
    if (code != SQLITE_OK) throw Failure(code);
    return PreparedStatement(statement);
}

void Database::Run(const std::string& sql) {
    const int code = Patiently([&] { return sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr); });
    if (code != SQLITE_OK) throw Failure(code);
}

void Database::RunQuietly(const std::string& sql) noexcept {
    sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr);
}

StepResult Database::TryStep(PreparedStatement& statement) {
    return ResultOf(Patiently([&] { return sqlite3_step(statement.Handle()); }));
}

bool Database::Step(PreparedStatement& statement) {
    const StepResult result = TryStep(statement);
    if (result != StepResult::kFailed) return result == StepResult::kRow;
    SqlError failure = LastFailure();
    statement.Reset();
    throw failure;
}

bool Database::InTransaction() const {
    return sqlite3_get_autocommit(handle_) == 0;
}

bool Database::HasBrokenKeys() const {
    int broken = 0;
    int highest = 0;
    sqlite3_db_status(handle_, SQLITE_DBSTATUS_DEFERRED_FKS, &broken, &highest, 0);
    return broken != 0;
}

std::int64_t Database::Changes() const {
    return sqlite3_changes64(handle_);
}

std::int64_t Database::LastRowNumber() const {
    return sqlite3_last_insert_rowid(handle_);
}

bool Database::IsRowNumber(const std::string& table, const std::string& column) const {
    const char* type = nullptr;
    int isKey = 0;
    const int code = sqlite3_table_column_metadata(handle_, "main", table.c_str(), column.c_str(), &type,
                                                   nullptr, nullptr, &isKey, nullptr);
    // That there is no such table or column, others find.
    if (code == SQLITE_ERROR) return false;
    if (code != SQLITE_OK) throw Failure(code);
    return isKey != 0 && type != nullptr && std::string_view(type) == "INTEGER";
}

FailureKind Database::LastFailureKind() const {
    const int code = sqlite3_extended_errcode(handle_);
    switch (code) {
        case SQLITE_CONSTRAINT_UNIQUE:
        case SQLITE_CONSTRAINT_PRIMARYKEY:
        case SQLITE_CONSTRAINT_ROWID:
            return FailureKind::kUniqueKey;
        case SQLITE_CONSTRAINT_CHECK:
            return FailureKind::kCheck;
        case SQLITE_CONSTRAINT_FOREIGNKEY:
            return FailureKind::kForeignKey;
        default:
            return (code & 0xFF) == SQLITE_CONSTRAINT ? FailureKind::kOtherConstraint : FailureKind::kOther;
    }
}

bool Database::IsLastFailureOfStatement() const {
    const int code = sqlite3_errcode(handle_) & 0xFF;
    return code == SQLITE_ERROR || code == SQLITE_SCHEMA;
}

std::string Database::LastMessage() const {
    return sqlite3_errmsg(handle_);
}

SqlError Database::LastFailure() const {
    return Failure(sqlite3_extended_errcode(handle_));
}

std::uint32_t Database::DataVersion() const {
    std::uint32_t version = 0;
    // Without a name it is the main file's.
    sqlite3_file_control(handle_, nullptr, SQLITE_FCNTL_DATA_VERSION, &version);
    return version;
}

namespace {

// What SQLite refuses of a statement that the translator found nothing wrong with: the server's error for it,
// or the limit by its name.
SqlError RefusedStatement(const std::string& text) {
    const auto says = [&text](std::string_view part) { return text.find(part) != std::string::npos; };
    if (says("misuse of window function") || says("misuse of aliased window function"))
        return MakeError(4108, {});
    if (says("misuse of aggregate") || says("misuse of aliased aggregate") ||
        says("aggregate functions are not allowed")) {
        return MakeError(147, {});
    }
    if (says("Expression tree is too large") || says("parser stack overflow")) return MakeError(191, {});
    if (says("tables in a join") || says("too many FROM clause terms"))
        return MakeError(40510, {}, {kManyTables});
    if (says("too many columns in result set"))
        return MakeError(40510, {}, {"SELECT of more than 2000 columns"});
    if (says("too many columns"))
        return MakeError(40510, {}, {"a table, view or key of more than 2000 columns"});
    if (says("too many terms in compound SELECT"))
        return MakeError(40510, {}, {"UNION of more than 500 queries"});
    if (says("too many terms in"))
        return MakeError(40510, {}, {"ORDER BY or GROUP BY of more than 2000 columns"});
    if (says("too many SQL variables") || says("variable number must be") || says("too many references") ||
        says("too many arguments on") || says("no query solution")) {
        return MakeError(8623, {});
    }
    return MakeError(8624, {}, {text});
}

// SQLite says the same of every file that it cannot open. Looked at by its name alone: whoever opens and
// closes a file that is open here loses its locks.
std::optional<std::string> WhyNotOpened(const std::string& path, sqlite3* handle) {
    const std::filesystem::path file = FileNamed(path);
    std::error_code failed;
    const std::filesystem::file_status status = std::filesystem::status(file, failed);
    const std::error_code told(handle == nullptr ? 0 : sqlite3_system_errno(handle), std::system_category());
    if (std::filesystem::is_directory(status)) return "是文件夹，不是账套文件";
    if (failed == std::errc::permission_denied || told == std::errc::permission_denied)
        return "没有读取或写入它的权限";
    if (status.type() != std::filesystem::file_type::not_found) return std::nullopt;
    const std::filesystem::path folder = file.parent_path();
    return folder.empty() || std::filesystem::is_directory(folder, failed) ? "文件不存在" : "文件夹不存在";
}

}  // namespace

bool Database::IsSound() const {
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(handle_, "PRAGMA main.integrity_check(1)", -1, &prepared, nullptr) != SQLITE_OK)
        return false;
    PreparedStatement check(prepared);
    return check.Step() == StepResult::kRow && check.Text(0) == "ok";
}

SqlError Database::Failure(int code) const {
    // The connection's text tells of its last call, which need not be the one that failed.
    const bool own = handle_ != nullptr && (sqlite3_errcode(handle_) & 0xFF) == (code & 0xFF);
    const std::string text = own ? sqlite3_errmsg(handle_) : sqlite3_errstr(code);
    if (MayComeOfLoss(code & 0xFF)) {
        const auto state = static_cast<FileState>(State());
        if (state != FileState::kSame) return MakeError(5120, {}, {path_, TextOf(state)});
    }
    switch (code & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
        case SQLITE_PROTOCOL:  // the log stayed locked for longer than SQLite waits
            return MakeError(1222, {});
        case SQLITE_FULL:
            return MakeError(9002, {}, {path_, "DISK_FULL"});
        case SQLITE_READONLY:
            return MakeError(3906, {}, {path_});
        case SQLITE_CANTOPEN:
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return MakeError(5120, {}, {path_, WhyNotOpened(path_, handle_).value_or(text)});
        case SQLITE_NOTADB:
            return MakeError(5172, {}, {path_});
        case SQLITE_CORRUPT:
            // SQLite says so of tables of its own as well.
            if (IsSound()) return MakeError(8624, {}, {text});
            return MakeError(824, {}, {path_, text});
        case SQLITE_IOERR:
            if (code == SQLITE_IOERR_NOMEM) return MakeError(701, {});
            return MakeError(823, {}, {path_, sqlite3_errstr(code)});
        case SQLITE_NOMEM:
            return MakeError(701, {});
        case SQLITE_TOOBIG:
            return MakeError(8152, {});
        case SQLITE_INTERRUPT:
            return MakeError(3617, {});
        default:
            return RefusedStatement(text);
    }
}

namespace {

std::string Doubled(std::string_view text, char mark) {
    std::string result(1, mark);
    for (const char c : text) {
        if (c == mark) result += mark;
        result += c;
    }
    return result + mark;
}

}  // namespace

std::string Quoted(std::string_view name) {
    return Doubled(name, '"');
}

std::string QuotedText(std::string_view text) {
    return Doubled(text, '\'');
}

}  // namespace vicenter::tsql::engine
