// Connections that are kept: bounded, asked after a pause, closed when nobody needs them.

#include <thread>

#include <gmock/gmock.h>

#include "automation/error.h"
#include "both_back_ends.h"

namespace vicenter::ado_test {
namespace {

using automation::Error;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

class OdbcPoolTest : public testing::Test {
  protected:
    ~OdbcPoolTest() override { ado::SetOdbcPooling(usual_); }
    void Limit(const ado::OdbcPooling& limits) { ado::SetOdbcPooling(limits); }
    // The server notices the end of a connection in its own time.
    bool ComesTo(int connections) {
        const auto until = steady_clock::now() + std::chrono::seconds(20);
        while (books_.Server().OpenConnections() != connections) {
            if (steady_clock::now() > until) return false;
            std::this_thread::yield();
        }
        return true;
    }

    ServedBooks books_;
    const ado::OdbcPooling usual_ = ado::CurrentOdbcPooling();
};

TEST_F(OdbcPoolTest, WhatNobodyNeedsIsClosedInItsTime) {
    ado::OdbcPooling limits;
    limits.longestIdle = milliseconds(100);
    Limit(limits);
    for (int pass = 0; pass < 2; ++pass) {
        {
            const auto one = books_.Open();
            const auto two = books_.Open();
            EXPECT_EQ(books_.Server().OpenConnections(), 2);
        }
        // Without anybody asking for a connection meanwhile.
        EXPECT_TRUE(ComesTo(0));
    }
}

TEST_F(OdbcPoolTest, NoMoreAreKeptThanIsSaid) {
    ado::OdbcPooling limits;
    limits.most = 3;
    Limit(limits);
    {
        std::vector<ado::ConnectionRef> many;
        for (int i = 0; i < 6; ++i)
            many.push_back(books_.Open());
        EXPECT_EQ(books_.Server().OpenConnections(), 6);
    }
    EXPECT_TRUE(ComesTo(3));
    ado::CloseIdleOdbcConnections();
    EXPECT_TRUE(ComesTo(0));
}

TEST_F(OdbcPoolTest, OneThatDiedDuringAPauseIsNotHandedOut) {
    ado::OdbcPooling limits;
    limits.pause = milliseconds(0);
    Limit(limits);
    books_.Open();
    EXPECT_TRUE(ComesTo(1));
    books_.Server().CutAll();
    EXPECT_EQ(books_.Open()->Execute("select 1 as a")->RecordCount(), 1);
    // One that works is asked, and used again.
    const int before = books_.Server().Connections();
    books_.Server().ForgetBatches();
    EXPECT_EQ(books_.Open()->Execute("select 2 as a")->RecordCount(), 1);
    EXPECT_EQ(books_.Server().Connections(), before);
    EXPECT_EQ(books_.Server().RoundTrips(), 2);
}

TEST_F(OdbcPoolTest, OneThatHangsAfterAPauseIsGivenUpInTheTimeForConnecting) {
    ado::OdbcPooling limits;
    limits.pause = milliseconds(0);
    Limit(limits);
    books_.Open("Connect Timeout=1");
    // The question whether it still works gets no answer.
    books_.Server().Behave(std::make_shared<tds_server::StallAtBatch>(1));
    EXPECT_EQ(books_.Open("Connect Timeout=1")->Execute("select 1 as a")->RecordCount(), 1);
}

}  // namespace
}  // namespace vicenter::ado_test
