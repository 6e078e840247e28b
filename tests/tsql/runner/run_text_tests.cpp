// Runs every tests/tsql/**/*.test, each on a new account set of the lane that this program is linked with.

#include <algorithm>

#include <gtest/gtest.h>

#include "runner/lane.h"
#include "runner/result_text.h"
#include "runner/test_file.h"
#include "tests/paths/source_folder.h"

namespace vicenter::tsql_test {
namespace {

namespace fs = std::filesystem;

const fs::path kRoot = testing_paths::SourceFolder();
constexpr std::int32_t kRefusedHere = 40510;
constexpr std::int32_t kOtherDatabaseHere = 40515;

class TextTest : public testing::TestWithParam<fs::path> {
  protected:
    void SetUp() override {
        lane_ = MakeLane();
        connection_ = lane_->Open();
    }

    void TearDown() override {
        if (connection_) connection_->Close();
        connection_ = nullptr;
        lane_ = nullptr;
    }

    std::unique_ptr<Lane> lane_;
    ado::ConnectionRef connection_;
};

TEST_P(TextTest, GivesWhatTheFileSays) {
    const TestFile file = ReadTestFile(GetParam());
    EXPECT_EQ(file.name, fs::relative(GetParam(), kRoot).generic_string());
    if (lane_->IsOtherServer() && !file.differs.empty()) GTEST_SKIP() << file.differs;
    for (const std::string& script : file.setup) {
        for (const std::string& batch : SplitScript(ReadWholeFile(kRoot / script))) {
            ASSERT_NO_THROW(connection_->Execute(batch)) << script << "\n" << batch;
        }
    }
    const std::string version = lane_->Version();
    const auto differs = [&version](const std::map<std::string, std::string>& on) {
        return std::any_of(on.begin(), on.end(),
                           [&](const auto& entry) { return version.find(entry.first) != std::string::npos; });
    };
    if (differs(file.differsOn)) GTEST_SKIP() << file.differsOn.begin()->second;
    // Its errors have SQL Server's numbers where they have any, and texts of their own.
    constexpr std::int32_t kBabelfishNumber = 33557097;
    const bool ownErrors = version.find("Babelfish") != std::string::npos;
    const ErrorDetail detail = ownErrors ? ErrorDetail{false, kBabelfishNumber} : ErrorDetail();
    for (Step step : file.steps) {
        // What is refused here is sound there.
        const bool refusedHere = step.errorNumber == kRefusedHere || step.errorNumber == kOtherDatabaseHere;
        if (lane_->IsOtherServer() && refusedHere) continue;
        if (lane_->IsOverOdbc() && !step.overOdbcWhy.empty()) step.expected = step.expectedOverOdbc;
        const std::string difference = RunStep(*connection_, step, detail);
        if (differs(step.differsOn)) continue;
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
