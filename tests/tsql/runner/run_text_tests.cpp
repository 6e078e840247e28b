// Runs every tests/tsql/**/*.test on a new embedded account set; with VICENTER_SQLSERVER=<connect string> on
// a scratch database of that server instead, to learn whether the files say what the server says.

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"
#include "runner/result_text.h"
#include "runner/test_file.h"
#include "tests/paths/source_folder.h"

namespace vicenter::tsql_test {
namespace {

namespace fs = std::filesystem;

const fs::path kRoot = testing_paths::SourceFolder();

class TextTest : public testing::TestWithParam<fs::path> {
  protected:
    void SetUp() override {
        static std::atomic<int> counter = 0;
        const int number = ++counter;
        if (const char* server = std::getenv("VICENTER_SQLSERVER")) {
            database_ = "vicenter_test_" + std::to_string(number);
            connection_ = ado::OpenConnection(server);
            connection_->Execute("create database " + database_ + " collate Chinese_PRC_CI_AS");
            connection_->Execute("use " + database_);
            return;
        }
        folder_ =
            fs::temp_directory_path() /
            ("vicenter_text_test_" + std::to_string(std::random_device()()) + "_" + std::to_string(number));
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        // Statement by statement, as the server runs a batch without a transaction around it.
        ado::RegisterAccountSetProvider();
        connection_ =
            ado::OpenConnection("Provider=VelaAccountSet;Data Source=" + (folder_ / "test.vca").string() +
                                ";Create=yes;Pooling=no;Transactions=none");
    }

    void TearDown() override {
        if (connection_ && !database_.empty()) {
            connection_->Execute("use master");
            connection_->Execute("drop database " + database_);
        }
        if (connection_) connection_->Close();
        connection_ = nullptr;
        if (!folder_.empty()) fs::remove_all(folder_);
    }

    fs::path folder_;
    std::string database_;
    ado::ConnectionRef connection_;
};

TEST_P(TextTest, GivesWhatTheFileSays) {
    const TestFile file = ReadTestFile(GetParam());
    EXPECT_EQ(file.name, fs::relative(GetParam(), kRoot).generic_string());
    if (!database_.empty() && !file.differs.empty()) GTEST_SKIP() << file.differs;
    for (const std::string& script : file.setup) {
        for (const std::string& batch : SplitScript(ReadWholeFile(kRoot / script))) {
            ASSERT_NO_THROW(connection_->Execute(batch)) << script << "\n" << batch;
        }
    }
    for (const Step& step : file.steps) {
        const std::string difference = RunStep(*connection_, step);
        EXPECT_EQ(difference, "") << file.name << ":" << step.line << "\n" << step.batch << difference;
    }
}

std::string TestName(const testing::TestParamInfo<fs::path>& info) {
    std::string name = fs::relative(info.param, kRoot / "tests/tsql").replace_extension().generic_string();
    for (char& c : name) {
        if (c == '/' || c == '-' || c == '.') c = '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Tsql, TextTest, testing::ValuesIn(FindTestFiles(kRoot / "tests/tsql")), TestName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(TextTest);

}  // namespace
}  // namespace vicenter::tsql_test
