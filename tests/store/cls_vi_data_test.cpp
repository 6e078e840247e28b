#include <functional>
#include <tuple>

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

TEST_F(StoreTest, EveryOperationAsksTheConnectionServiceInTheOrderOfAQuery) {
    const Statements opened{"broker", "bind UserID=16394;", "auxiliary"};
    const Statements statement{"settle", "connection", "execute"};
    set_.Answer("FSQLTableName", Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Customer"}}));
    set_.Answer("from t_Settle", Rows({"FItemID"}, {{1}}));
    set_.Answer("from t_Currency", Rows({"FCurrencyID"}, {{1}}));
    set_.Answer("Max(FID) as FID", Rows({"FID"}, {{42}}));
    set_.Answer("as FNum", Rows({"FNum"}));
    std::int32_t number = 0;
    const std::tuple<const char*, int, std::function<void(clsVIData&)>> operations[] = {
        {"GetVchTemplateByUserID", 2, [](clsVIData& d) { d.GetVchTemplateByUserID("1"); }},
        {"GetVchTpProfileByUserID", 2, [](clsVIData& d) { d.GetVchTpProfileByUserID("1"); }},
        {"GetVchEntryCount", 1, [](clsVIData& d) { d.GetVchEntryCount("1"); }},
        {"CheckVchTemplateIsExist", 1, [](clsVIData& d) { d.CheckVchTemplateIsExist("a"); }},
        {"DeleteVchTemplateInfo", 1, [](clsVIData& d) { d.DeleteVchTemplateInfo("1"); }},
        {"InsertVchTemplateInfo", 3, [&](clsVIData& d) { d.InsertVchTemplateInfo(number); }},
        {"GetVchTemplateEntryInfo", 1, [](clsVIData& d) { d.GetVchTemplateEntryInfo("1"); }},
        {"GetItemInfoByNumber", 1, [](clsVIData& d) { d.GetItemInfoByNumber(5, "1001"); }},
        {"MergeItemsInfo", 2, [](clsVIData& d) { d.MergeItemsInfo("1"); }},
        {"GetItems", 1, [](clsVIData& d) { d.GetItems("1001"); }},
        {"GetItemClassIDs", 1, [](clsVIData& d) { d.GetItemClassIDs("1"); }},
        {"CheckErrorCell 1", 1, [](clsVIData& d) { d.CheckErrorCell(1, "1", "", "", "", ""); }},
        {"CheckErrorCell 2", 2, [](clsVIData& d) { d.CheckErrorCell(2, "1", "a", "", "", ""); }},
        {"CheckErrorCell 3", 2, [](clsVIData& d) { d.CheckErrorCell(3, "1", "", "a", "", ""); }},
        {"CheckErrorCell 4", 1, [](clsVIData& d) { d.CheckErrorCell(4, "1", "", "", "a", ""); }},
        {"CheckErrorCell 5", 2, [](clsVIData& d) { d.CheckErrorCell(5, "1", "", "", "", "a"); }},
    };
    for (const auto& [name, statements, run] : operations) {
        clsVIData data;
        set_.Forget();
        run(data);
        Statements expected = opened;
        for (int i = 0; i < statements; ++i)
            expected.insert(expected.end(), statement.begin(), statement.end());
        EXPECT_EQ(set_.Calls(), expected) << name;
    }
}

// A service whose objects say when they are dropped.
class DroppingFramework : public ado::HostFramework {
  public:
    explicit DroppingFramework(Statements& dropped) : dropped_(dropped) {}
    std::shared_ptr<ado::Broker> GiveBroker() override {
        return std::make_shared<DroppingBroker>(dropped_, ++brokers_);
    }
    automation::ObjectRef CreateObject(const std::string& progId) override {
        return automation::CreateObject(progId);
    }

  private:
    class Auxiliary : public fakes::ScriptedObject {
      public:
        Auxiliary(Statements& dropped, int number) : dropped_(dropped), number_(number) {}
        ~Auxiliary() override { dropped_.push_back("auxiliary " + std::to_string(number_)); }

      private:
        Statements& dropped_;
        int number_;
    };
    class DroppingBroker : public ado::Broker {
      public:
        DroppingBroker(Statements& dropped, int number) : dropped_(dropped), number_(number) {}
        ~DroppingBroker() override { dropped_.push_back("broker " + std::to_string(number_)); }
        void Bind(const std::string&) override {}
        automation::ObjectRef Auxiliary() override {
            return std::make_shared<DroppingFramework::Auxiliary>(dropped_, number_);
        }
        void Settle() override {}
        ado::ConnectionRef GiveConnection() override { throw automation::Error(5, "none"); }

      private:
        Statements& dropped_;
        int number_;
    };
    Statements& dropped_;
    int brokers_ = 0;
};

TEST_F(StoreTest, AStatementReplacesTheBrokerAndTheEndDropsTheAuxiliaryObjectFirst) {
    Statements dropped;
    ado::HostFramework::SetProcess(std::make_shared<DroppingFramework>(dropped));
    {
        clsVIData data;
        data.GetRs("select 1");
        EXPECT_EQ(dropped, (Statements{"broker 1", "auxiliary 1"}));
        dropped.clear();
    }
    EXPECT_EQ(dropped, (Statements{"auxiliary 2", "broker 2"}));
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

TEST_F(StoreTest, ACloudRecordCountsThoughItsRecordsetCannotCount) {
    const auto information = fakes::RegisterScripted("VelaBillDataAccess.SysInfo");
    const auto field = std::make_shared<fakes::ScriptedObject>("Field");
    field->Value("Name", "FCloud").Value("Value", "drive");
    const auto fields = std::make_shared<fakes::ScriptedObject>("Fields");
    fields->Value("Count", 1).Value("Item", Variant(field));
    const auto records = std::make_shared<fakes::ScriptedObject>("Recordset");
    records->Value("RecordCount", -1).Value("EOF", false).Value("Fields", Variant(fields));
    information->On("GetUserCloudInfo", [&](Arguments&) { return Variant(records); });
    const auto result = clsVIData().GetUserCloudInfo();
    ASSERT_NE(result, nullptr);
    EXPECT_EQ(*result->Item("FCloud"), Variant("drive"));
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
    information->On("GetUserCloudInfo", [](Arguments&) -> Variant { throw automation::Error(5); });
    EXPECT_EQ(clsVIData().GetUserCloudInfo(), nullptr);
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

}  // namespace
}  // namespace vicenter::store
