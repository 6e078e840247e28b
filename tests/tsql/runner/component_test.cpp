// The component's own statements, to the character, on the host's schema.

#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include "component_statements.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"
#include "runner/test_file.h"
#include "tests/paths/source_folder.h"

namespace vicenter::tsql_test {
namespace {

namespace fs = std::filesystem;

class ComponentStatementsTest : public testing::Test {
  protected:
    void SetUp() override {
        folder_ =
            fs::temp_directory_path() / ("vicenter_component_test_" + std::to_string(std::random_device()()));
        fs::create_directories(folder_);
        ado::RegisterAccountSetProvider();
        connection_ =
            ado::OpenConnection("Provider=VelaAccountSet;Data Source=" + (folder_ / "test.vca").string() +
                                ";Create=yes;Pooling=no");
        for (const char* script : {"host/accountset/schema.sql", "host/accountset/procedures.sql"}) {
            for (const std::string& batch :
                 SplitScript(ReadWholeFile(testing_paths::SourceFolder() / script))) {
                ASSERT_NO_THROW(connection_->Execute(batch)) << script << "\n" << batch;
            }
        }
    }

    void TearDown() override {
        if (connection_) connection_->Close();
        connection_ = nullptr;
        fs::remove_all(folder_);
    }

    fs::path folder_;
    ado::ConnectionRef connection_;
};

TEST_F(ComponentStatementsTest, RunInOrderOnTheHostsSchema) {
    for (const std::string& text : tsql::ComponentStatements()) {
        try {
            connection_->Execute(text);
        } catch (const automation::Error& error) {
            ADD_FAILURE() << error.Text() << "\n" << text;
        }
    }
}

TEST_F(ComponentStatementsTest, RunTwiceAlike) {
    for (int pass = 0; pass < 2; ++pass) {
        for (const std::string& text : tsql::ComponentStatements()) {
            ASSERT_NO_THROW(connection_->Execute(text)) << "pass " << pass << "\n" << text;
        }
    }
}

TEST_F(ComponentStatementsTest, AnImportWritesLinesAndControlRows) {
    for (const std::string& text : tsql::ComponentStatements()) {
        if (text.find("values(@MaxFID,2,1,'提现'") != std::string::npos) {
            connection_->Execute(
                "insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
                "values(0,'标准模板',0,'0',GETDATE())");
            connection_->Execute(text);
        }
    }
    const ado::RecordsetRef control =
        connection_->Execute("select FID,FNo,FUseFrequency,FKey,FFileCount from t_VchTpControl");
    ASSERT_EQ(control->RecordCount(), 1);
    EXPECT_EQ(control->Value("FID").ToInt32(), 1);
    EXPECT_EQ(control->Value("FNo").ToInt32(), 1);
    EXPECT_EQ(control->Value("FUseFrequency").ToInt32(), 0);
    EXPECT_EQ(control->Value("FKey").ToText(), "提现");
    EXPECT_EQ(control->Value("FFileCount").ToInt32(), 0);
}

}  // namespace
}  // namespace vicenter::tsql_test
