// Fuzz target of whole T-SQL batches. The bytes choose batches by grammar; one input in eight is itself the
// text of a batch. Besides ending without a fault: a batch that fails leaves the tables as they were, and the
// session goes on.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <unistd.h>

#include "tests/fuzz/tsql_text.h"
#include "tests/tsql/plain_collation.h"
#include "tsql/run/session.h"

namespace {

namespace engine = vicenter::tsql::engine;

// Counts the rows and keeps the texts of the last result.
class Sink final : public engine::ResultSink {
  public:
    void BeginResult(const std::vector<engine::ResultColumn>&) override {}
    void AddRow(std::vector<engine::Value>& row) override {
        for (const engine::Value& value : row) {
            text += value.IsNull() ? "NULL" : std::to_string(value.Int());
            text += ' ';
        }
    }
    void Message(const vicenter::tsql::Diagnostic&) override {}

    std::string text;
};

class Discard final : public engine::ResultSink {
  public:
    void BeginResult(const std::vector<engine::ResultColumn>&) override {}
    void AddRow(std::vector<engine::Value>&) override {}
    void Message(const vicenter::tsql::Diagnostic&) override {}
};

[[noreturn]] void Broken(const char* rule, const std::string& batch) {
    std::fprintf(stderr, "%s:\n%s\n", rule, batch.c_str());
    std::abort();
}

class Ledger {
  public:
    Ledger() : file_(std::filesystem::temp_directory_path() / ("tsql_fuzz." + std::to_string(getpid()))) {
        Remove();
        engine::SessionOptions options;
        options.path = file_.string();
        options.create = true;
        options.collation = &collation_;
        options.now = [] { return vicenter::automation::DateTime(); };
        session_ = std::make_unique<engine::Session>(std::move(options));
    }
    Ledger(const Ledger&) = delete;
    Ledger& operator=(const Ledger&) = delete;
    ~Ledger() {
        session_.reset();
        Remove();
    }

    void StartOver() {
        session_->Reset();
        Run("if object_id('t') is not null drop table t");
        Run("if object_id('u') is not null drop table u");
        if (!Run(vicenter::fuzz::kTsqlTables))
            Broken("the tables cannot be made", vicenter::fuzz::kTsqlTables);
    }
    bool Run(const std::string& batch) {
        Discard sink;
        return session_->Execute(batch, sink).errors.empty();
    }
    // What the two tables hold, in numbers.
    std::string Fingerprint() {
        Sink sink;
        const auto report = session_->Execute(
            "select count(*), sum(a), sum(len(b)), count(c), sum(cast(c * 10000 as bigint)) from t\n"
            "select count(*), sum(a), sum(len(b)), count(c), sum(cast(c * 100 as bigint)), count(f) from u",
            sink);
        return report.errors.empty() ? sink.text : std::string();
    }

  private:
    void Remove() const {
        for (const char* tail : {"", "-wal", "-shm", "-journal"})
            std::filesystem::remove(file_.string() + tail);
    }

    std::filesystem::path file_;
    engine::PlainCollation collation_;
    std::unique_ptr<engine::Session> session_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kLongest = 4096;
    if (size > kLongest) return 0;
    static Ledger ledger;
    vicenter::fuzz::Choices choices(data, size);
    ledger.StartOver();
    const bool plain = choices.Below(8) == 7;
    for (int batches = 0; batches < 3 && (batches == 0 || choices.Any()); ++batches) {
        // A transaction that is open already is undone with the batch.
        const bool open = !ledger.Run("if @@trancount > 0 raiserror('open', 16, 1)");
        if (open) ledger.StartOver();
        const std::string before = ledger.Fingerprint();
        const std::string batch =
            plain ? std::string(reinterpret_cast<const char*>(data) + 1, size > 0 ? size - 1 : 0)
                  : vicenter::fuzz::MakeTsqlBatch(choices);
        const bool done = ledger.Run(batch);
        const std::string after = ledger.Fingerprint();
        if (plain) break;
        if (!done && before != after) Broken("a failed batch has changed something", batch);
    }
    if (!ledger.Run("select 1")) Broken("the session does not go on", "select 1");
    return 0;
}
