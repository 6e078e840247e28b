// A server that does wrong: nothing is half-saved, one clear message, and the next operation works.

#include <chrono>
#include <functional>
#include <thread>

#include <gmock/gmock.h>

#include "automation/error.h"
#include "both_back_ends.h"

namespace vicenter::ado_test {
namespace {

using automation::Error;
using tds_server::ByteByByte;
using tds_server::DropAtPacket;
using tds_server::FailBatch;
using tds_server::RefuseLogin;
using tds_server::Slow;
using tds_server::StallAtBatch;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kSave = "delete from t insert into t values (N'new 1') insert into t values (N'new 2')";

class MisbehaviourTest : public testing::Test {
  protected:
    void SetUp() override {
        books_.Open()->Execute("create table t (a nvarchar(20)) insert into t values (N'old')");
        ado::CloseIdleOdbcConnections();
    }
    std::string Content() {
        std::string content;
        for (const ado::RecordsetRef rows = books_.Open()->Execute("select a from t order by a");
             !rows->AtEnd(); rows->MoveNext())
            content += rows->Value("a").ToText() + ";";
        return content;
    }
    // What is said of a failed operation; the empty text when it did not fail.
    std::string Save(const std::string& more = {}) {
        try {
            books_.Open(more)->Execute(kSave);
        } catch (const Error& error) {
            EXPECT_THAT(error.Text(), Not(HasSubstr(tds_server::Server::kPassword)));
            return error.Text();
        }
        return {};
    }

    ServedBooks books_;
};

TEST_F(MisbehaviourTest, ALineThatIsCutAnywhereLeavesAllOrNothing) {
    int cuts = 0;
    for (int n = 1;; ++n) {
        const auto drop = std::make_shared<DropAtPacket>(n);
        books_.Server().Behave(drop);
        const std::string said = Save();
        const bool dropped = drop->HasDropped();
        books_.Server().BehaveWell();
        if (!dropped) {
            EXPECT_EQ(said, "");
            break;
        }
        ++cuts;
        ASSERT_NE(said, "") << n;
        EXPECT_THAT(said,
                    testing::AnyOf(HasSubstr("连接断开"), HasSubstr("连接已断开"), HasSubstr("不能连接")))
            << n;
        const std::string content = Content();
        EXPECT_THAT(content, testing::AnyOf("old;", "new 1;new 2;")) << n;
        // Whether it was saved is left open only where that cannot be known.
        if (content != "old;") {
            EXPECT_THAT(said, HasSubstr("无法确定")) << n;
        }
        books_.Open()->Execute("delete from t insert into t values (N'old')");
        ado::CloseIdleOdbcConnections();
    }
    // Greeting, login, three batches: two packets each at least.
    EXPECT_GE(cuts, 10);
    EXPECT_EQ(Content(), "new 1;new 2;");
}

TEST_F(MisbehaviourTest, ABrokenLineIsToldOnceAndTheSameConnectionGoesOn) {
    const auto connection = books_.Open();
    connection->Execute("select 1 as a");
    books_.Server().CutAll();
    EXPECT_THROW(connection->Execute("select a from t"), Error);
    EXPECT_TRUE(connection->IsOpen());
    EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 1);
}

TEST_F(MisbehaviourTest, AUnitOfSeveralBatchesIsKeptOrGoneWhereverTheLineIsCut) {
    int cuts = 0;
    for (int n = 1;; ++n) {
        ado::CloseIdleOdbcConnections();
        const auto connection = books_.Open();
        const auto drop = std::make_shared<DropAtPacket>(n);
        books_.Server().Behave(drop);
        bool kept = false;
        std::string said;
        try {
            EXPECT_TRUE(connection->BeginUnit());
            connection->Execute("delete from t");
            connection->Execute("insert into t values (N'new 1')");
            connection->Execute("insert into t values (N'new 2')");
            kept = connection->CommitUnit();
        } catch (const Error& error) {
            said = error.Text();
        }
        const bool dropped = drop->HasDropped();
        books_.Server().BehaveWell();
        connection->Close();
        const std::string content = Content();
        EXPECT_THAT(content, testing::AnyOf("old;", "new 1;new 2;")) << n;
        if (kept) {
            EXPECT_EQ(content, "new 1;new 2;") << n;
        } else {
            EXPECT_NE(said, "") << n;
        }
        if (!dropped) break;
        ++cuts;
        books_.Open()->Execute("delete from t insert into t values (N'old')");
    }
    EXPECT_GE(cuts, 8);
}

TEST_F(MisbehaviourTest, AFailedBatchUndoesItsUnit) {
    const auto connection = books_.Open();
    EXPECT_TRUE(connection->BeginUnit());
    connection->Execute("insert into t values (N'new')");
    EXPECT_THROW(connection->Execute("select * from nowhere"), Error);
    EXPECT_THROW(connection->Execute("insert into t values (N'alone')"), Error);
    EXPECT_FALSE(connection->CommitUnit());
    EXPECT_EQ(Content(), "old;");
    connection->Execute("insert into t values (N'again')");
    EXPECT_EQ(Content(), "again;old;");
}

TEST_F(MisbehaviourTest, ABatchIsCancelledFromAnotherThread) {
    const auto connection = books_.Open();
    connection->Execute("select 1 as a");
    constexpr int kSeconds = 5;
    books_.Server().ForgetBatches();
    books_.Server().Behave(std::make_shared<Slow>(kSeconds * 1000));
    const auto start = std::chrono::steady_clock::now();
    std::thread canceller([&] {
        while (books_.Server().Batches().empty())
            std::this_thread::yield();
        connection->Cancel();
    });
    try {
        connection->Execute("insert into t values (N'never')");
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_EQ(error.Number(), ado::error_number::kOperationCancelled) << error.Text();
    }
    canceller.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(kSeconds));
    books_.Server().BehaveWell();
    EXPECT_EQ(Content(), "old;");
}

TEST_F(MisbehaviourTest, TheErrorsOfAVictimAreToldWithWhatToDo) {
    const std::pair<std::int32_t, const char*> kinds[] = {
        {1205, "死锁"}, {1222, "等待超时"}, {3960, "刚被其他用户修改"}};
    for (const auto& [number, words] : kinds) {
        for (int n = 1; n <= 3; ++n) {
            books_.Server().Behave(std::make_shared<FailBatch>(n, number));
            const std::string said = Save("Pooling=no");
            books_.Server().BehaveWell();
            EXPECT_THAT(said, HasSubstr(words)) << number << " at " << n;
            EXPECT_EQ(Content(), "old;") << number << " at " << n;
        }
    }
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(Content(), "new 1;new 2;");
}

TEST_F(MisbehaviourTest, AServerThatHangsIsGivenUpAfterTheTimeOfTheConnectString) {
    books_.Server().Behave(std::make_shared<StallAtBatch>(2));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THAT(Save("Command Timeout=1;Pooling=no"), HasSubstr("操作超时"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    books_.Server().BehaveWell();
    EXPECT_EQ(Content(), "old;");
}

TEST_F(MisbehaviourTest, AnswersInSingleBytesAreUnderstood) {
    books_.Server().Behave(std::make_shared<ByteByByte>());
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(Content(), "new 1;new 2;");
}

TEST_F(MisbehaviourTest, ASlowServerIsWaitedFor) {
    books_.Server().Behave(std::make_shared<Slow>(5));
    EXPECT_EQ(Save(), "");
    EXPECT_EQ(Content(), "new 1;new 2;");
}

TEST_F(MisbehaviourTest, ARefusedLoginSaysWhatTheServerSaid) {
    books_.Server().Behave(std::make_shared<RefuseLogin>());
    EXPECT_THAT(Save(), HasSubstr("Login failed for user 'sa'."));
    books_.Server().BehaveWell();
    EXPECT_EQ(Save(), "");
    for (const auto& [text, words] :
         {std::pair{"Provider=SQLOLEDB;User ID=sa;Password=Geheim1;Data Source=", "Login failed"},
          std::pair{"Driver={No Such Driver};UID=sa;PWD=Geheim1;Server=", "驱动程序"}}) {
        try {
            ado::OpenConnection(text + books_.Server().Address());
            ADD_FAILURE() << text;
        } catch (const Error& error) {
            EXPECT_THAT(error.Text(), HasSubstr(words));
            EXPECT_THAT(error.Text(), Not(HasSubstr("Geheim1")));
        }
    }
}

#ifndef _WIN32
TEST_F(MisbehaviourTest, IntegratedSecurityWithoutATicketSaysWhatItNeeds) {
    // Whatever ticket this machine may have is not for this server.
    try {
        ado::OpenConnection("Provider=SQLOLEDB;Integrated Security=SSPI;Initial Catalog=books;Data Source=" +
                            books_.Server().Address());
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_THAT(error.Text(), HasSubstr("kinit"));
    }
}
#endif

TEST_F(MisbehaviourTest, APartnerStandsInForAServerThatIsGone) {
    const std::string gone =
        "Provider=SQLOLEDB;User ID=sa;Password=\"" + std::string(tds_server::Server::kPassword) +
        "\";Initial Catalog=books;Data Source=127.0.0.1,1;Failover Partner=" + books_.Server().Address() +
        ";Connect Timeout=2";
    EXPECT_EQ(ado::OpenConnection(gone)->Execute("select a from t")->RecordCount(), 1);
}

// ---- one connection for many

TEST_F(MisbehaviourTest, ConnectionsAreUsedAgain) {
    const int before = books_.Server().Connections();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(books_.Open()->Execute("select a from t")->RecordCount(), 1);
    EXPECT_EQ(books_.Server().Connections(), before + 1);
    // Two at once are two.
    const auto one = books_.Open();
    const auto two = books_.Open();
    EXPECT_EQ(books_.Server().Connections(), before + 2);
}

TEST_F(MisbehaviourTest, WhatWasLeftBehindIsNeverMetByTheNext) {
    books_.Open()->Execute("select 1 as a into #left");
    EXPECT_THROW(books_.Open()->Execute("select * from #left"), Error);
    books_.Open()->Execute("begin transaction");
    EXPECT_EQ(books_.Open()->Execute("select @@trancount as n")->Value("n").ToInt32(), 0);
    books_.Open()->Execute("set nocount on");
    std::int64_t rows = -1;
    books_.Open()->Execute("insert into t values (N'x')", &rows);
    EXPECT_EQ(rows, 1);
}

TEST_F(MisbehaviourTest, AQuestionCostsOneTripAndAUnitThree) {
    const auto connection = books_.Open();
    books_.Server().ForgetBatches();
    connection->Execute("select a from t where a = N'x'");
    EXPECT_EQ(books_.Server().RoundTrips(), 1);
    connection->Execute("update t set a = N'y' where a = N'x'");
    EXPECT_EQ(books_.Server().RoundTrips(), 2);
    connection->Execute(kSave);
    EXPECT_EQ(books_.Server().RoundTrips(), 5);
    // Within a longer unit a batch is no unit of its own.
    EXPECT_TRUE(connection->BeginUnit());
    connection->Execute(kSave);
    connection->Execute(kSave);
    EXPECT_TRUE(connection->CommitUnit());
    EXPECT_EQ(books_.Server().RoundTrips(), 9);
}

TEST_F(MisbehaviourTest, TextsOfAStatementArriveToTheCharacter) {
    const std::string text = "select a\r\n from t -- 注释\r\n where a = '现金'";
    const auto connection = books_.Open();
    books_.Server().ForgetBatches();
    connection->Execute(text);
    EXPECT_THAT(books_.Server().Batches(), testing::Contains(text));
}

// ---- a database that does not know our characters

class LatinTest : public testing::Test {
  protected:
    ServedBooks books_{tds_server::Collation::Latin1()};
};

TEST_F(LatinTest, UnicodeColumnsKeepWhatTheCodePageLacks) {
    const auto connection = books_.Open();
    connection->Execute("create table t (a nvarchar(20), old varchar(20))");
    connection->Execute("insert into t(a,old) values('库存现金','abc')");
    const ado::RecordsetRef rows = connection->Execute("select a from t where a = '库存现金'");
    ASSERT_EQ(rows->RecordCount(), 1);
    EXPECT_EQ(rows->Value("a").ToText(), "库存现金");
    connection->Execute("update t set a = '银行'");
    EXPECT_EQ(connection->Execute("select a from t")->Value("a").ToText(), "银行");
}

// A server that is busy for a moment is no server that knows every character.
TEST_F(LatinTest, WithoutAnAnswerToItsQuestionsABatchIsNotSentAndTheyAreAskedAgain) {
    books_.Open()->Execute("create table t (a nvarchar(20), old varchar(20))");
    ado::CloseIdleOdbcConnections();
    const std::string insert = "insert into t(a,old) values('库存现金','abc')";
    const std::pair<const char*, std::function<std::shared_ptr<tds_server::Misbehaviour>()>> kinds[] = {
        {"the page, no answer", [] { return std::make_shared<StallAtBatch>(1); }},
        {"the columns, no answer", [] { return std::make_shared<StallAtBatch>(2); }},
        {"the page, locked", [] { return std::make_shared<FailBatch>(1, 1222); }},
        {"the columns, locked", [] { return std::make_shared<FailBatch>(2, 1222); }},
        {"the page, victim", [] { return std::make_shared<FailBatch>(1, 1205); }},
        {"the page, cut", [] { return std::make_shared<DropAtPacket>(2); }},
    };
    for (const auto& [what, make] : kinds) {
        const auto connection = books_.Open("Connect Timeout=3;Pooling=no");
        books_.Server().ForgetBatches();
        books_.Server().Behave(make());
        std::string said;
        try {
            connection->Execute(insert);
            ADD_FAILURE() << what;
        } catch (const Error& error) {
            said = error.Text();
        }
        EXPECT_NE(said, "") << what;
        books_.Server().BehaveWell();
        EXPECT_THAT(books_.Server().Batches(), Not(testing::Contains(HasSubstr("insert")))) << what;
        connection->Execute(insert);
        EXPECT_EQ(connection->Execute("select a from t")->Value("a").ToText(), "库存现金") << what;
        EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 1) << what;
        connection->Execute("delete from t");
    }
}

TEST_F(LatinTest, ATableThatOthersMakeLaterIsAskedForAgain) {
    const auto connection = books_.Open();
    EXPECT_THROW(connection->Execute("insert into later(a) values('库存')"), Error);
    books_.Open()->Execute("create table later (a nvarchar(20))");
    connection->Execute("insert into later(a) values('库存')");
    EXPECT_EQ(connection->Execute("select a from later")->Value("a").ToText(), "库存");
}

TEST_F(LatinTest, WhatWouldBecomeQuestionMarksIsNeverSent) {
    const auto connection = books_.Open();
    connection->Execute("create table t (a nvarchar(20), old varchar(20))");
    connection->Execute("select a from t where a = '问'");
    books_.Server().ForgetBatches();
    try {
        connection->Execute(
            "delete from t insert into t(a,old) values('x','y') insert into t(a,old) values('x','z现')");
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_EQ(error.Text(),
                  "字符“现”不在账套数据库的代码页（1252）中，不能保存到字段 old 中（第 2 行）。");
    }
    EXPECT_THAT(books_.Server().Batches(), Not(testing::Contains(HasSubstr("delete"))));
}

TEST(OdbcDriversTest, ADriverForSqlServerIsTaken) {
    const auto drivers = ado::OdbcDrivers();
    ASSERT_FALSE(drivers.empty());
    EXPECT_TRUE(drivers.front().chosen);
    EXPECT_TRUE(drivers.front().forSqlServer);
    EXPECT_EQ(std::count_if(drivers.begin(), drivers.end(), [](const auto& driver) { return driver.chosen; }),
              1);
    EXPECT_THAT(ado::NoOdbcDriverText(), HasSubstr("tdsodbc"));
}

}  // namespace
}  // namespace vicenter::ado_test
