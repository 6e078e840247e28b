#pragma once

// One account set behind either back end: embedded, and the same engine as a SQL Server on the loopback that
// FreeTDS talks to; and behind a real server where one is named. What a test says of the one it says of the
// others.

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "tds_server/server.h"
#include "tests/lanes/real_server.h"

namespace vicenter::ado_test {

namespace fs = std::filesystem;

// A folder of its own for each test.
class Folder {
  public:
    Folder()
        : path_(fs::temp_directory_path() /
                ("vicenter_odbc_test_" + std::to_string(std::random_device()()))) {
        fs::create_directories(path_);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    const fs::path& Path() const { return path_; }

  private:
    fs::path path_;
};

enum class BackEnd { kEmbedded, kServer, kRealServer };

// The real one where it is named.
inline std::vector<BackEnd> BackEnds() {
    std::vector<BackEnd> all = {BackEnd::kEmbedded, BackEnd::kServer};
    if (lanes::RealServer()) all.push_back(BackEnd::kRealServer);
    return all;
}

// A database "books" on a server.
class ServedBooks {
  public:
    explicit ServedBooks(tds_server::Collation collation = tds_server::Collation::ChinesePrc())
        : server_(std::move(collation)) {
        ado::RegisterOdbcProviders();
        server_.AddDatabase("books", folder_.Path() / "books.vas");
    }
    ServedBooks(const ServedBooks&) = delete;
    ServedBooks& operator=(const ServedBooks&) = delete;
    // Connections that are kept would outlive their server.
    ~ServedBooks() { ado::CloseIdleOdbcConnections(); }

    tds_server::Server& Server() { return server_; }
    std::string ConnectText(const std::string& more = {}) const {
        return server_.ConnectText("books") + ";" + more;
    }
    ado::ConnectionRef Open(const std::string& more = {}) const {
        return ado::OpenConnection(ConnectText(more));
    }
    const fs::path& FolderPath() const { return folder_.Path(); }

  private:
    Folder folder_;
    tds_server::Server server_;
};

class BothBackEnds : public testing::TestWithParam<BackEnd> {
  protected:
    void SetUp() override {
        if (GetParam() == BackEnd::kServer) {
            books_ = std::make_unique<ServedBooks>();
        } else if (GetParam() == BackEnd::kRealServer) {
            database_ = std::make_unique<lanes::ScratchDatabase>(*lanes::RealServer());
        } else {
            ado::RegisterAccountSetProvider();
        }
    }
    // A further connection to the same account set.
    ado::ConnectionRef Open(const std::string& more = {}) {
        if (books_) return books_->Open(more);
        if (database_) return ado::OpenConnection(database_->ConnectText() + ";" + more);
        return ado::OpenConnection("Provider=VelaAccountSet;Pooling=no;Create=yes;Data Source=" +
                                   (folder_.Path() / "books.vas").string() + ";" + more);
    }

    // What it says of an error; of a server that is not SQL Server, that it says anything.
    bool HasOwnErrors() const { return GetParam() == BackEnd::kRealServer && lanes::HasOwnErrors(); }

    Folder folder_;
    std::unique_ptr<ServedBooks> books_;
    std::unique_ptr<lanes::ScratchDatabase> database_;
};

inline std::string BackEndName(const testing::TestParamInfo<BackEnd>& info) {
    if (info.param == BackEnd::kRealServer) return "RealServer";
    return info.param == BackEnd::kEmbedded ? "Embedded" : "Server";
}

}  // namespace vicenter::ado_test
