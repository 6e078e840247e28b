// The same engine behind the test server, over a socket and FreeTDS's driver; with
// VICENTER_TEST_CONNECT=<connect string> a scratch database of that real server instead, to learn whether the
// files say what the server says.

#include <cstdlib>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include "platform/ado/odbc/odbc_provider.h"
#include "runner/lane.h"
#include "tds_server/server.h"

namespace vicenter::tsql_test {
namespace {

namespace fs = std::filesystem;

int NextNumber() {
    static int number = 0;
    return ++number;
}

// One server for all tests, a database each.
class TestServer {
  public:
    TestServer() { ado::RegisterOdbcProviders(); }
    tds_server::Server& Server() { return server_; }
    const fs::path& Folder() const { return folder_.path; }

  private:
    struct OwnFolder {
        OwnFolder() { fs::create_directories(path); }
        OwnFolder(const OwnFolder&) = delete;
        OwnFolder& operator=(const OwnFolder&) = delete;
        ~OwnFolder() {
            std::error_code ignored;
            fs::remove_all(path, ignored);
        }
        fs::path path =
            fs::temp_directory_path() / ("vicenter_odbc_text_test_" + std::to_string(std::random_device()()));
    };
    OwnFolder folder_;  // outlives the server
    tds_server::Server server_;
};

class ServedLane final : public Lane {
  public:
    bool IsOverOdbc() const override { return true; }
    ado::ConnectionRef Open() override {
        static TestServer server;
        const std::string name = "test" + std::to_string(NextNumber());
        server.Server().AddDatabase(name, server.Folder() / (name + ".vas"));
        return ado::OpenConnection(server.Server().ConnectText(name) + ";Pooling=no;Transactions=none");
    }
};

class RealServerLane final : public Lane {
  public:
    explicit RealServerLane(std::string connectString) : connectString_(std::move(connectString)) {
        ado::RegisterOdbcProviders();
        database_ = "vicenter_test_" + std::to_string(NextNumber());
    }
    ~RealServerLane() override {
        try {
            const ado::ConnectionRef connection = Connect();
            connection->Execute("drop database " + database_);
        } catch (const automation::Error& error) {
            ADD_FAILURE() << error.Text();
        }
    }

    ado::ConnectionRef Open() override {
        const ado::ConnectionRef connection = Connect();
        connection->Execute("create database " + database_ + " collate Chinese_PRC_CI_AS");
        connection->Execute("use " + database_);
        return connection;
    }
    bool IsOtherServer() const override { return true; }
    bool IsOverOdbc() const override { return true; }

  private:
    ado::ConnectionRef Connect() const {
        return ado::OpenConnection(connectString_ + ";Pooling=no;Transactions=none");
    }

    std::string connectString_;
    std::string database_;
};

}  // namespace

std::unique_ptr<Lane> MakeLane() {
    if (const char* server = std::getenv("VICENTER_TEST_CONNECT"))
        return std::make_unique<RealServerLane>(server);
    return std::make_unique<ServedLane>();
}

TEST(RealServer, IsAskedWhereOneIsNamed) {
    if (std::getenv("VICENTER_TEST_CONNECT") == nullptr)
        GTEST_SKIP() << "VICENTER_TEST_CONNECT is not set: no real SQL Server was asked.";
    EXPECT_TRUE(MakeLane()->Open()->IsOpen());
}

}  // namespace vicenter::tsql_test
