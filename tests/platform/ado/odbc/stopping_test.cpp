// Batches that take too long for their time-out, for the user or for both; and the windows meanwhile.

#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include <gmock/gmock.h>

#include "automation/error.h"
#include "both_back_ends.h"
#include "platform/system/surroundings.h"

namespace vicenter::ado_test {
namespace {

using automation::Error;
using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;
using tds_server::DeafFromBatch;
using tds_server::DeafToLogins;
using tds_server::Slow;
using tds_server::StallAtBatch;
using testing::AllOf;
using testing::HasSubstr;

constexpr int kEndless = 600'000;

// What the windows do meanwhile.
class Watcher final : public system::LongWork {
  public:
    bool GoOn(milliseconds) override {
        ++asked;
        EXPECT_EQ(std::this_thread::get_id(), owner_);
        if (whileWaiting) whileWaiting();
        return !stop || !stop();
    }
    void Done() noexcept override { ++done; }

    int asked = 0;
    int done = 0;
    std::function<void()> whileWaiting;
    std::function<bool()> stop;  // whether the user wishes to

  private:
    std::thread::id owner_ = std::this_thread::get_id();
};

class StoppingTest : public testing::Test {
  protected:
    void SetUp() override {
        books_.Open()->Execute("create table t (a nvarchar(20)) insert into t values (N'old')");
        ado::CloseIdleOdbcConnections();
        books_.Server().ForgetBatches();
    }
    // A window is open from here on.
    void Watch() {
        system::Surroundings watched = system::Surroundings::Current();
        watched.longWork = watcher_;
        scope_ = std::make_unique<system::SurroundingsScope>(watched);
    }
    // The user stops as soon as the server has been sent so many batches.
    void StopAtBatch(std::size_t count) {
        Watch();
        watcher_->stop = [this, count] { return books_.Server().Batches().size() >= count; };
    }
    // Nobody stops the reading, however long connecting anew takes.
    std::string Content() {
        const auto stop = std::exchange(watcher_->stop, nullptr);
        books_.Server().BehaveWell();
        std::string content;
        for (const ado::RecordsetRef rows = books_.Open()->Execute("select a from t order by a");
             !rows->AtEnd(); rows->MoveNext())
            content += rows->Value("a").ToText() + ";";
        watcher_->stop = stop;
        return content;
    }
    // Number and text of the failure; 0 when there is none.
    std::pair<std::int32_t, std::string> Try(const std::string& batch, const std::string& more = {}) {
        try {
            books_.Open("Pooling=no;" + more)->Execute(batch);
        } catch (const Error& error) {
            return {error.Number(), error.Text()};
        }
        return {0, {}};
    }

    ServedBooks books_;
    std::shared_ptr<Watcher> watcher_ = std::make_shared<Watcher>();
    std::unique_ptr<system::SurroundingsScope> scope_;
};

constexpr const char* kSave = "delete from t insert into t values (N'new 1') insert into t values (N'new 2')";

TEST_F(StoppingTest, WindowsAreKeptAliveWhileTheServerWorks) {
    // Connecting is not watched, however long it takes.
    const ado::ConnectionRef connection = books_.Open("Pooling=no");
    Watch();
    books_.Server().Behave(std::make_shared<Slow>(200));
    connection->Execute(kSave);
    EXPECT_GE(watcher_->asked, 3);
    EXPECT_EQ(watcher_->done, 3);  // of the three batches of a unit
    EXPECT_EQ(Content(), "new 1;new 2;");
}

TEST_F(StoppingTest, AnswersAndErrorsAreTheSameWhetherOrNotSomebodyWatches) {
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(books_.Open()->Execute("select a from t where a = N'old'")->RecordCount(), 1);
        EXPECT_EQ(Try("select * from nowhere"),
                  (std::pair<std::int32_t, std::string>(ado::error_number::kProviderError,
                                                        "Invalid object name 'nowhere'.")));
        EXPECT_THAT(Try("select 1", "Password=wrong").second, HasSubstr("Login failed"));
        Watch();
    }
}

TEST_F(StoppingTest, TheUserStopsABatchAndNothingIsSaved) {
    for (const std::size_t n : {1, 2}) {
        books_.Server().ForgetBatches();
        books_.Server().Behave(std::make_shared<StallAtBatch>(static_cast<int>(n)));
        StopAtBatch(n);
        const auto [number, text] = Try(kSave);
        EXPECT_EQ(number, ado::error_number::kOperationCancelled) << n;
        EXPECT_EQ(text, "操作已经取消，没有完成。") << n;
        EXPECT_EQ(Content(), "old;") << n;
        scope_.reset();
    }
    EXPECT_EQ(Try(kSave).second, "");
}

TEST_F(StoppingTest, TheSameConnectionWorksBehindABatchThatWasStopped) {
    const auto connection = books_.Open();
    connection->Execute("select 1 as a");
    books_.Server().ForgetBatches();
    books_.Server().Behave(std::make_shared<Slow>(kEndless));
    StopAtBatch(1);
    EXPECT_THROW(connection->Execute("select a from t"), Error);
    watcher_->stop = nullptr;
    books_.Server().BehaveWell();
    EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 1);
}

// The line asks for the server's code page before it sends the first batch that is not ASCII.
TEST_F(StoppingTest, AQuestionOfTheLineItselfIsTakenBackAndLeavesNothingLocked) {
    const auto connection = books_.Open("Pooling=no");
    connection->BeginUnit();
    connection->Execute("delete from t");
    books_.Server().ForgetBatches();
    books_.Server().Behave(std::make_shared<StallAtBatch>(1));
    StopAtBatch(1);
    try {
        connection->Execute("insert into t values (N'新')");
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), ado::error_number::kOperationCancelled) << error.Text();
    }
    EXPECT_THAT(books_.Server().Batches(), testing::ElementsAre(HasSubstr("collationproperty")));
    EXPECT_FALSE(connection->CommitUnit());
    EXPECT_EQ(Content(), "old;");
    watcher_->stop = nullptr;
    EXPECT_EQ(Try("insert into t values (N'next')").second, "");
    EXPECT_EQ(Content(), "next;old;");
}

TEST_F(StoppingTest, AServerThatTakesNoWishIsLeftToItself) {
    books_.Server().Behave(std::make_shared<DeafFromBatch>(1));
    StopAtBatch(1);
    const auto start = steady_clock::now();
    EXPECT_EQ(Try("delete from t").first, ado::error_number::kOperationCancelled);
    EXPECT_LT(steady_clock::now() - start, seconds(10));
    EXPECT_EQ(Content(), "old;");
}

TEST_F(StoppingTest, ACommitIsNotTakenBackAndWhatBecameOfItIsSaidToBeUnknown) {
    books_.Server().Behave(std::make_shared<StallAtBatch>(3));
    EXPECT_THAT(Try(kSave, "Command Timeout=1").second, HasSubstr("无法确定是否已经保存"));
    EXPECT_EQ(Content(), "old;");
    books_.Server().ForgetBatches();
    books_.Server().Behave(std::make_shared<DeafFromBatch>(3));
    StopAtBatch(3);
    const auto [number, text] = Try(kSave);
    EXPECT_EQ(number, ado::error_number::kOperationCancelled);
    EXPECT_THAT(text, HasSubstr("无法确定是否已经保存"));
    scope_.reset();
    // The line that was left to itself holds its locks for as long as it lives.
    books_.Server().CutAll();
    EXPECT_EQ(Content(), "old;");
}

TEST_F(StoppingTest, AServerThatIsDeafToTheEndIsGivenUpAfterTheTime) {
    books_.Server().Behave(std::make_shared<DeafFromBatch>(2));
    const auto start = steady_clock::now();
    EXPECT_THAT(Try(kSave, "Command Timeout=1").second, HasSubstr("操作超时，已经取消。"));
    EXPECT_LT(steady_clock::now() - start, seconds(20));
    EXPECT_EQ(Content(), "old;");
}

TEST_F(StoppingTest, ConnectingIsGivenUpByTheUserAndByTheTimeOfTheConnectString) {
    books_.Server().Behave(std::make_shared<DeafToLogins>());
    Watch();
    watcher_->stop = [] { return true; };
    auto start = steady_clock::now();
    EXPECT_EQ(Try("select 1"), (std::pair<std::int32_t, std::string>(ado::error_number::kOperationCancelled,
                                                                     "已经取消，没有连接到数据库服务器。")));
    EXPECT_LT(steady_clock::now() - start, seconds(5));
    scope_.reset();
    start = steady_clock::now();
    EXPECT_THAT(Try("select 1", "Connect Timeout=1").second, HasSubstr("不能连接到数据库服务器"));
    EXPECT_LT(steady_clock::now() - start, seconds(20));
    books_.Server().BehaveWell();
    EXPECT_EQ(Try("select 1").second, "");
}

TEST_F(StoppingTest, ABatchThatTakesTooLongEndsAfterTheTimeOfItsConnection) {
    const auto connection = books_.Open();
    EXPECT_EQ(connection->CommandTimeout(), 0);
    EXPECT_EQ(books_.Open("Command Timeout=7")->CommandTimeout(), 7);
    connection->SetCommandTimeout(1);
    books_.Server().Behave(std::make_shared<Slow>(kEndless));
    try {
        connection->Execute("delete from t");
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), ado::error_number::kTimeoutExpired);
        EXPECT_THAT(error.Text(), HasSubstr("操作超时，已经取消。"));
    }
    EXPECT_EQ(Content(), "old;");
}

TEST_F(StoppingTest, WhatAPaintedWindowAsksForMeanwhileNeedsAConnectionOfItsOwn) {
    const auto connection = books_.Open();
    int own = 0;
    int others = 0;
    Watch();
    watcher_->whileWaiting = [&] {
        if (others > 0) return;
        try {
            connection->Execute("select 2 as a");
        } catch (const Error& error) {
            EXPECT_EQ(error.Number(), ado::error_number::kStillExecuting);
            ++own;
        }
        ++others;
        EXPECT_EQ(books_.Open()->Execute("select 3 as a")->Value("a").ToInt32(), 3);
    };
    books_.Server().Behave(std::make_shared<Slow>(100));
    EXPECT_EQ(connection->Execute("select 1 as a")->Value("a").ToInt32(), 1);
    EXPECT_EQ(own, 1);
    EXPECT_EQ(others, 1);
}

TEST_F(StoppingTest, WhoeverCancelsWhatRunsReachesTheServer) {
    const auto connection = books_.Open();
    connection->Execute("select 1 as a");
    books_.Server().ForgetBatches();
    books_.Server().Behave(std::make_shared<Slow>(kEndless));
    std::thread canceller([&] {
        while (books_.Server().Batches().empty())
            std::this_thread::yield();
        ado::CancelRunning();
    });
    EXPECT_THROW(connection->Execute("delete from t"), Error);
    canceller.join();
    EXPECT_EQ(Content(), "old;");
}

}  // namespace
}  // namespace vicenter::ado_test
