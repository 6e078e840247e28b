#include "tsql/run/session.h"

#include <optional>

#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

class Session::Impl {
  public:
    explicit Impl(SessionOptions options)
        : options_(std::move(options)),
          catalog_(database_),
          executor_(database_, catalog_, services_, options_) {
        services_.collation = options_.collation;
        services_.stopping = &database_.Stopping();
        database_.Open(options_.path, options_.create, options_.lockTimeoutMilliseconds, options_.fileSystem);
        database_.Allow(options_.plans);
        RegisterFunctions(database_.Handle(), services_);
        catalog_.Prepare(options_.create);
        // What has been reported as done is on the disk: the log is synced at each commit, and where a set is
        // kept with a journal instead, its removal too.
        database_.Run("PRAGMA synchronous = EXTRA");
        database_.Run("PRAGMA foreign_keys = ON");
        database_.Run("PRAGMA temp_store = MEMORY");
        database_.Run("PRAGMA cache_size = -16000");
        catalog_.Refresh();
    }

    ExecutionReport Execute(std::string_view batch, ResultSink& sink, const ExecutionLimits& limits) {
        struct Stoppable {
            Interruption& stopping;
            Stoppable(Interruption& given, const ExecutionLimits& limitsOf) : stopping(given) {
                stopping.Begin(limitsOf);
            }
            Stoppable(const Stoppable&) = delete;
            Stoppable& operator=(const Stoppable&) = delete;
            ~Stoppable() { stopping.End(); }
        };
        const Stoppable stoppable(database_.Stopping(), limits);
        return executor_.Run(batch, sink);
    }
    Interruption& Stopping() { return database_.Stopping(); }
    void Reset() { executor_.Reset(); }
    bool IsStale() const { return database_.IsLost(); }
    bool BringHome() {
        // Nothing has happened since the last time, as far as this session knows.
        if (home_ && *home_ == database_.DataVersion()) return true;
        if (database_.InTransaction() || !database_.BringHome()) return false;
        home_ = database_.DataVersion();
        return true;
    }
    std::uint32_t DataVersion() {
        // What others have committed is noticed when the read lock is taken, which the pragma does.
        if (!version_) version_ = database_.Prepare("PRAGMA data_version");
        {
            const ResetAtEnd reset(version_);
            database_.Step(version_);
        }
        return database_.DataVersion();
    }

  private:
    SessionOptions options_;
    FunctionServices services_;
    Database database_;
    Catalog catalog_;
    Executor executor_;
    PreparedStatement version_;
    std::optional<std::uint32_t> home_;  // the data version that the file itself has
};

Session::Session(SessionOptions options) : impl_(std::make_unique<Impl>(std::move(options))) {}

Session::~Session() = default;

ExecutionReport Session::Execute(std::string_view batch, ResultSink& sink, const ExecutionLimits& limits) {
    return impl_->Execute(batch, sink, limits);
}

bool Session::IsRunning() const {
    return impl_->Stopping().IsRunning();
}

void Session::Cancel() noexcept {
    impl_->Stopping().Cancel();
}

void Session::Reset() {
    impl_->Reset();
}

bool Session::IsStale() const {
    return impl_->IsStale();
}

bool Session::BringHome() {
    return impl_->BringHome();
}

std::uint32_t Session::DataVersion() {
    return impl_->DataVersion();
}

}  // namespace vicenter::tsql::engine
