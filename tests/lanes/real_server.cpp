#include "tests/lanes/real_server.h"

#include <cstdlib>
#include <random>
#include <utility>

#include <gtest/gtest.h>

#include "automation/error.h"
#include "host/account_set.h"
#include "host/account_set_setup.h"
#include "platform/ado/odbc/odbc_provider.h"

namespace vicenter::lanes {

std::optional<std::string> RealServer() {
    const char* connectString = std::getenv("VICENTER_TEST_CONNECT");
    if (connectString == nullptr || *connectString == '\0') return std::nullopt;
    return connectString;
}

bool HasOwnErrors() {
    static const bool own = [] {
        if (!RealServer()) return false;
        ado::RegisterOdbcProviders();
        const ado::ConnectionRef connection = ado::OpenConnection(*RealServer() + ";Pooling=no");
        const std::string version = connection->Execute("select @@version as v")->Value("v").ToText();
        return version.find("Babelfish") != std::string::npos;
    }();
    return own;
}

ScratchDatabase::ScratchDatabase(std::string server) : server_(std::move(server)) {
    std::random_device random;
    name_ = "vicenter_test_" + std::to_string(random()) + "_" + std::to_string(random());
    ado::RegisterOdbcProviders();
    Tell("create database " + name_ + " collate Chinese_PRC_CI_AS");
}

ScratchDatabase::~ScratchDatabase() {
    ado::CloseIdleOdbcConnections();
    try {
        // Not every server ends other connections that way; where none is left it need not.
        Tell("alter database " + name_ + " set single_user with rollback immediate");
    } catch (const automation::Error&) {
    }
    try {
        Tell("drop database " + name_);
    } catch (const automation::Error& error) {
        ADD_FAILURE() << "the database " << name_ << " stays: " << error.Text();
    }
}

std::string ScratchDatabase::ConnectText() const {
    return server_ + ";Initial Catalog=" + name_;
}

void ScratchDatabase::Take(const std::string& file) const {
    const ado::ConnectionRef from = ado::OpenConnection(host::FileConnectString(file));
    const ado::ConnectionRef to = ado::OpenConnection(ConnectText() + ";Pooling=no");
    host::CopyAccountSet(*from, *to);
}

void ScratchDatabase::Tell(const std::string& batch) const {
    ado::OpenConnection(server_ + ";Pooling=no")->Execute(batch);
}

}  // namespace vicenter::lanes
