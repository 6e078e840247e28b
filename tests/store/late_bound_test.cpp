// The public classes as a host reaches them: by ProgID and by the members' names.

#include "store/component_classes.h"
#include "store/statements.h"
#include "tests/store/store_fixture.h"

namespace vicenter::store {
namespace {

using automation::Argument;
using automation::CreateObject;

class LateBoundTest : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        RegisterComponentClasses();
        data_ = CreateObject("VelaVICenter.clsVIData");
    }
    automation::ObjectRef data_;
};

TEST_F(LateBoundTest, ThePublicClassesAreRegistered) {
    EXPECT_EQ(CreateObject("VelaVICenter.aplication")->TypeName(), "aplication");
    EXPECT_EQ(data_->TypeName(), "clsVIData");
    EXPECT_EQ(CreateObject("Scripting.Dictionary")->TypeName(), "Dictionary");
}

TEST_F(LateBoundTest, EveryMemberAnswersByName) {
    set_.Answer("count(*)", Rows({"FCount"}, {{3}}));
    set_.Answer("FNum", Rows({"FNum"}, {{"7"}}));
    set_.Answer("Max(FID) as FID", Rows({"FID"}, {{42}}));
    set_.Answer("select FValue", Rows({"FValue"}, {{"1|0|900"}}));
    EXPECT_EQ(data_->Get("mTransMode"), Variant(2));
    EXPECT_EQ(data_->Call("IsExecuteSql", {"update t set a = 1"}), Variant(true));
    EXPECT_EQ(data_->Call("GetRs", {"select 1"}).TypeName(), "Recordset");
    EXPECT_EQ(data_->Call("GetUserCloudInfo").TypeName(), "Nothing");
    EXPECT_EQ(data_->Call("GetVchTemplateByUserID", {16394}).TypeName(), "Recordset");
    EXPECT_EQ(data_->Call("GetVchTpProfileByUserID", {"16394"}), Variant("1|0|900"));
    EXPECT_EQ(data_->Call("GetVchEntryCount", {12}), Variant(3));
    EXPECT_EQ(data_->Call("CheckVchTemplateIsExist", {"无"}), Variant(false));
    EXPECT_EQ(data_->Call("DeleteVchTemplateInfo", {12}), Variant(true));
    EXPECT_EQ(data_->Call("GetVchTemplateEntryInfo", {12}).TypeName(), "Recordset");
    EXPECT_EQ(data_->Call("GetItemInfoByNumber", {5, "1001"}).TypeName(), "Recordset");
    EXPECT_EQ(data_->Call("GetItemInfoByNumber", {3, "1001"}).TypeName(), "Nothing");
    EXPECT_EQ(data_->Call("MergeItemsInfo", {17}), Variant(""));
    EXPECT_EQ(data_->Call("GetItems", {"1001"}).TypeName(), "Recordset");
    EXPECT_EQ(data_->Call("GetItemClassIDs", {17}).TypeName(), "Recordset");
    EXPECT_EQ(data_->Call("CheckErrorCell", {1, "", "", "", "", ""}), Variant(true));
    Variant number = 0;
    EXPECT_EQ(data_->Call("InsertVchTemplateInfo", {Argument::ByReference(number)}), Variant(42));
    EXPECT_EQ(number, Variant(7));
}

TEST_F(LateBoundTest, TheModuleRoutinesUseAFreshInstance) {
    EXPECT_NE(GetRecordset("select 1"), nullptr);
    EXPECT_TRUE(RunSql("update t set a = 1"));
    set_.Fail("nowhere", "Invalid object name 'nowhere'.");
    EXPECT_EQ(GetRecordset("select * from nowhere"), nullptr);
    EXPECT_FALSE(RunSql("delete nowhere"));
    EXPECT_EQ(surroundings_.messageBoxes->Texts(), Statements{"Invalid object name 'nowhere'."});
}

}  // namespace
}  // namespace vicenter::store
