// A server: the test server, which serves the file, or a database of the real one that VICENTER_TEST_CONNECT
// names, into which the file's rows were copied.

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ado/connection.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/system/files.h"
#include "tds_server/server.h"
#include "tests/lanes/real_server.h"
#include "tests/lanes/set_lane.h"

namespace vicenter::lanes {

namespace {

// What the test at hand has been given.
struct Given {
    std::unique_ptr<tds_server::Server> server;
    int sets = 0;
    std::vector<std::unique_ptr<ScratchDatabase>> databases;
};

Given& OfTest() {
    static Given given;
    return given;
}

class EndWithTheTest final : public testing::EmptyTestEventListener {
  public:
    void OnTestEnd(const testing::TestInfo&) override {
        // Connections that are kept would outlive their server.
        ado::CloseIdleOdbcConnections();
        OfTest() = Given();
    }
};

[[maybe_unused]] const bool kListens = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new EndWithTheTest);
    return true;
}();

}  // namespace

std::string ConnectTextOf(const std::string& file) {
    ado::RegisterOdbcProviders();
    Given& given = OfTest();
    if (const std::optional<std::string> server = RealServer()) {
        given.databases.push_back(std::make_unique<ScratchDatabase>(*server));
        given.databases.back()->Take(file);
        return given.databases.back()->ConnectText();
    }
    if (!given.server) given.server = std::make_unique<tds_server::Server>();
    const std::string name = "books" + std::to_string(++given.sets);
    given.server->AddDatabase(name, system::PathFromUtf8(file));
    return given.server->ConnectText(name);
}

bool RefusesInOwnWords() {
    return HasOwnErrors();
}

TEST(RealServer, IsAskedWhereOneIsNamed) {
    if (!RealServer()) GTEST_SKIP() << "VICENTER_TEST_CONNECT is not set: no real SQL Server was asked.";
    ado::RegisterOdbcProviders();
    EXPECT_TRUE(ado::OpenConnection(*RealServer())->IsOpen());
}

}  // namespace vicenter::lanes
