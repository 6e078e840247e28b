// The same engine behind the test server, over a socket and FreeTDS's driver; with
// VICENTER_TEST_CONNECT=<connect string> a scratch database of that real server instead, to learn whether the
// files say what the server says.

#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include "platform/ado/odbc/odbc_provider.h"
#include "runner/lane.h"
#include "tds_server/server.h"
#include "tests/lanes/real_server.h"

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

  private:
    ado::ConnectionRef Open(const std::string& more) override {
        static TestServer server;
        const std::string name = "test" + std::to_string(NextNumber());
        server.Server().AddDatabase(name, server.Folder() / (name + ".vas"));
        return ado::OpenConnection(server.Server().ConnectText(name) + ";Pooling=no;" + more);
    }
};

class RealServerLane final : public Lane {
  public:
    explicit RealServerLane(const std::string& connectString) : database_(connectString) {}
    bool IsOtherServer() const override { return true; }
    bool IsOverOdbc() const override { return true; }
    std::string Version() const override {
        static const std::string version = ado::OpenConnection(database_.ConnectText() + ";Pooling=no")
                                               ->Execute("select @@version as v")
                                               ->Value("v")
                                               .ToText();
        return version;
    }

  private:
    ado::ConnectionRef Open(const std::string& more) override {
        return ado::OpenConnection(database_.ConnectText() + ";Pooling=no;" + more);
    }

    lanes::ScratchDatabase database_;
};

}  // namespace

std::unique_ptr<Lane> MakeLane() {
    if (const auto server = lanes::RealServer()) return std::make_unique<RealServerLane>(*server);
    return std::make_unique<ServedLane>();
}

TEST(RealServer, IsAskedWhereOneIsNamed) {
    if (!lanes::RealServer())
        GTEST_SKIP() << "VICENTER_TEST_CONNECT is not set: no real SQL Server was asked.";
    EXPECT_TRUE(MakeLane()->Open()->IsOpen());
}

}  // namespace vicenter::tsql_test
