#include "tests/store/store_fixture.h"

namespace vicenter::store {
namespace {

using automation::Arguments;

TEST_F(StoreTest, TheTransactionModeIsTwo) {
    EXPECT_EQ(clsVIData().mTransMode(), 2);
}

TEST_F(StoreTest, CreationTakesABrokerAndItsAuxiliaryObjectWithoutBinding) {
    clsVIData data;
    EXPECT_EQ(set_.Calls(), (Statements{"broker", "auxiliary"}));
}

TEST_F(StoreTest, AStatementSettlesTheBrokerAfterIt) {
    clsVIData data;
    set_.Forget();
    EXPECT_TRUE(data.IsExecuteSql("update t set a = 1"));
    EXPECT_EQ(set_.Calls(),
              (Statements{"broker", "bind UserID=16394;", "auxiliary", "connection", "execute", "settle"}));
    EXPECT_EQ(set_.Statements(), Statements{"update t set a = 1"});
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

TEST_F(StoreTest, AQuerySettlesTheBrokerBeforeIt) {
    clsVIData data;
    set_.Forget();
    EXPECT_NE(data.GetRs("select 1"), nullptr);
    EXPECT_EQ(set_.Calls(),
              (Statements{"broker", "bind UserID=16394;", "auxiliary", "settle", "connection", "execute"}));
}

TEST_F(StoreTest, ARejectedStatementShowsTheServersTextAndReturnsFalse) {
    set_.Fail("nowhere", "Invalid object name 'nowhere'.");
    EXPECT_FALSE(clsVIData().IsExecuteSql("delete nowhere"));
    ASSERT_EQ(surroundings_.messageBoxes->shown.size(), 1U);
    const auto& message = surroundings_.messageBoxes->shown.front();
    EXPECT_EQ(message.text, "Invalid object name 'nowhere'.");
    EXPECT_EQ(message.title, "信息提示");
    EXPECT_EQ(message.icon, system::MessageIcon::Information);
    EXPECT_EQ(message.buttons, system::MessageButtons::Ok);
}

TEST_F(StoreTest, NoRowsAreAnEmptyRecordsetAndARejectedQueryIsNone) {
    set_.Answer("from t_Account", Rows({"FAccountID"}));
    set_.Fail("nowhere", "Invalid object name 'nowhere'.");
    const RecordsetRef empty = clsVIData().GetRs("select * from t_Account");
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->RecordCount(), 0);
    EXPECT_TRUE(empty->AtEnd());
    EXPECT_EQ(clsVIData().GetRs("select * from nowhere"), nullptr);
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

TEST_F(StoreTest, RecordsetsOutliveTheInstance) {
    set_.Answer("from t_Account", Rows({"FName"}, {{"库存现金"}}));
    RecordsetRef rows;
    {
        clsVIData data;
        rows = data.GetRs("select FName from t_Account");
    }
    EXPECT_EQ(rows->Value("FName"), Variant("库存现金"));
}

TEST_F(StoreTest, CloudInformationIsTheFirstRowByColumnName) {
    const auto information = fakes::RegisterScripted("VelaBillDataAccess.SysInfo");
    information->On("GetUserCloudInfo", [](Arguments&) {
        return Variant(Rows({"FUserID", "FCloud"}, {{16394, "drive"}, {1, "other"}}));
    });
    const auto result = clsVIData().GetUserCloudInfo();
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(result->Keys(), (automation::VariantArray{"FUserID", "FCloud"}));
    EXPECT_EQ(*result->Item("FCloud"), Variant("drive"));
    EXPECT_EQ(information->Calls(), Statements{"GetUserCloudInfo(UserID=16394;, 16394)"});
}

TEST_F(StoreTest, WithoutACloudRecordThereIsNoObject) {
    EXPECT_EQ(clsVIData().GetUserCloudInfo(), nullptr);  // no such component
    const auto information = fakes::RegisterScripted("VelaBillDataAccess.SysInfo");
    information->On("GetUserCloudInfo", [](Arguments&) { return Variant(automation::ObjectRef()); });
    EXPECT_EQ(clsVIData().GetUserCloudInfo(), nullptr);
    information->On("GetUserCloudInfo", [](Arguments&) { return Variant(Rows({"FUserID"})); });
    EXPECT_EQ(clsVIData().GetUserCloudInfo(), nullptr);
    information->On("GetUserCloudInfo", [](Arguments&) {
        auto rows = Rows({"FUserID"}, {{1}});
        rows->MoveNext();
        return Variant(rows);
    });
    EXPECT_EQ(clsVIData().GetUserCloudInfo(), nullptr);  // at its end
}

}  // namespace
}  // namespace vicenter::store
