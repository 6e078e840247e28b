// by hand
// Locks of an account set's log that somebody keeps for good, or that its file system refuses: SQLite tries
// for ten seconds whatever it is told; a batch waits as long as for any other lock, and can be stopped.

#include <functional>

#include "tests/fakes/held_log.h"
#include "tests/tsql/file/file_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class RefusedLockTest : public SetFileTest {
  protected:
    ExecutionReport RunWatched(Session& session, const char* batch,
                               std::function<bool(std::chrono::milliseconds)> watch) {
        ExecutionLimits limits;
        limits.watch = std::move(watch);
        TextSink sink;
        ExecutionReport report = session.Execute(batch, sink, limits);
        answer_ = sink.Text();
        return report;
    }
    std::unique_ptr<Session> Waiting(int milliseconds) {
        SessionOptions options = Existing();
        options.lockTimeoutMilliseconds = milliseconds;
        return std::make_unique<Session>(options);
    }

    std::string answer_;
};

constexpr const char* kRead = "select a from t";
constexpr const char* kWrite = "insert into t values(1)";

TEST_F(RefusedLockTest, ABatchThatWaitsForTheLogCanBeStopped) {
    MakeTable();
    const auto session = Waiting(kLongestLockTimeout);
    const fakes::HeldLog held(Path());
    for (const char* batch : {kRead, kWrite}) {
        int asked = 0;
        const ExecutionReport report =
            RunWatched(*session, batch, [&](std::chrono::milliseconds) { return ++asked < 3; });
        EXPECT_EQ(report.stopped, StopReason::kCancelled) << batch;
        ASSERT_EQ(report.errors.size(), 1U);
        EXPECT_EQ(report.errors.front().number, 3617);
    }
}

TEST_F(RefusedLockTest, ABatchWaitsForTheLogNoLongerThanForOtherLocks) {
    MakeTable();
    const auto session = Waiting(100);
    const fakes::HeldLog held(Path());
    for (const char* batch : {kRead, kWrite}) {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(RunOn(*session, batch).substr(0, 10), "error 1222") << batch;
        // By itself SQLite gives up after ten.
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(8)) << batch;
    }
}

TEST_F(RefusedLockTest, ABatchGoesOnWhenTheLogIsFreeAgain) {
    MakeTable();
    const auto session = Waiting(kLongestLockTimeout);
    const std::chrono::milliseconds moment(LongRuns() ? 12000 : 0);
    for (const char* batch : {kWrite, kRead}) {
        fakes::HeldLog held(Path());
        const ExecutionReport report = RunWatched(*session, batch, [&](std::chrono::milliseconds taken) {
            if (taken > moment) held.LetGo();
            return true;
        });
        EXPECT_TRUE(report.errors.empty()) << batch;
    }
    EXPECT_EQ(answer_, "a:int\n1");
}

}  // namespace
}  // namespace vicenter::tsql::engine
