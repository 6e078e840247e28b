// The component's own statements, to the character, on the host's schema, in every lane.

#include <gtest/gtest.h>

#include "automation/error.h"
#include "component_statements.h"
#include "runner/lane.h"
#include "runner/test_file.h"
#include "tests/paths/source_folder.h"

namespace vicenter::tsql_test {
namespace {

class ComponentStatementsTest : public testing::Test {
  protected:
    void SetUp() override {
        for (const char* script : {"host/accountset/schema.sql", "host/accountset/procedures.sql"}) {
            for (const std::string& batch :
                 SplitScript(ReadWholeFile(testing_paths::SourceFolder() / script))) {
                ASSERT_NO_THROW(connection_->Execute(batch)) << script << "\n" << batch;
            }
        }
    }

    // Closed before its lane is gone.
    const std::unique_ptr<Lane> lane_ = MakeLane();
    const ado::ConnectionRef connection_ = lane_->OpenInUnits();
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
