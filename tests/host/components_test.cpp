#include "host/components/components.h"

#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "entry/host_context.h"
#include "entry/host_services.h"
#include "platform/system/surroundings.h"
#include "store/user_settings.h"
#include "tests/host/demo_set.h"

namespace vicenter::host {
namespace {

using automation::CreateObject;
using automation::Error;
using automation::ObjectRef;
using automation::Variant;

class HostComponents : public testing::Test {
  protected:
    void Register(std::int32_t userId = 1) { session_ = RegisterHostComponents({connectString_, userId}); }
    static std::int32_t ProcessId() { return system::Surroundings::Current().processes->CurrentProcessId(); }
    static std::string Props() {
        return CreateObject("VelaPropsMgr.ShareProps")
            ->Call("GetProperty", {ProcessId(), "PropsString"})
            .ToText();
    }

    test::TestFolder folder_;
    std::string connectString_ = FileConnectString(test::CopySet(folder_));
    automation::ClassRegistry::Restore restore_;
    HostSessionRef session_;
};

TEST_F(HostComponents, SharePropsGivesUserAndConnectStringToItsOwnProcess) {
    Register(2);
    EXPECT_EQ("UserID=2;ConnectString={" + connectString_ + "};", Props());
    EXPECT_EQ(connectString_, entry::GetKeyValue(Props(), "ConnectString", ";"));
    EXPECT_EQ("2", entry::GetPropValue("UserID"));
}

TEST_F(HostComponents, SharePropsKnowsNoOtherProcessAndNoOtherName) {
    Register();
    const ObjectRef props = CreateObject("VelaPropsMgr.ShareProps");
    EXPECT_TRUE(props->Call("GetProperty", {ProcessId() + 1, "PropsString"}).IsEmpty());
    EXPECT_TRUE(props->Call("GetProperty", {ProcessId(), "Other"}).IsEmpty());
    EXPECT_EQ(Props(), props->Call("getproperty", {ProcessId(), "propsstring"}).ToText());
}

TEST_F(HostComponents, PropertyStringCarriesAClosingBraceOfThePath) {
    RegisterHostComponents({"Provider=X;Data Source=\"a}b\"", 1});
    EXPECT_EQ("Provider=X;Data Source=\"a}b\"", PropsValue(Props(), "ConnectString"));
}

TEST_F(HostComponents, TwoOfTheThreeDemoUsersMayChangeTemplates) {
    for (const auto& [user, may] : {std::pair{1, true}, {2, true}, {3, false}, {99, false}}) {
        Register(user);
        const Variant answer =
            CreateObject("VelaEBSBase.SecurityInfo")
                ->Call("AccessCheck", {Props(), std::int16_t{4}, std::int16_t{4}, std::int32_t{3145728}});
        EXPECT_EQ(Variant(may), answer) << user;
    }
}

TEST_F(HostComponents, AccessCheckWantsEveryBitOfTheFunction) {
    Register(3);
    const ObjectRef security = CreateObject("VelaEBSBase.SecurityInfo");
    EXPECT_TRUE(security->Call("AccessCheck", {Props(), 4, 4, 1}).ToBoolean());
    EXPECT_FALSE(security->Call("AccessCheck", {Props(), 4, 4, 1 + 2}).ToBoolean());
    EXPECT_FALSE(security->Call("AccessCheck", {Props(), 4, 5, 1}).ToBoolean());
}

TEST_F(HostComponents, AccessCheckRefusesAPropertyStringWithoutAUser) {
    Register();
    EXPECT_THROW(CreateObject("VelaEBSBase.SecurityInfo")->Call("AccessCheck", {"A=1;", 4, 4, 1}), Error);
}

TEST_F(HostComponents, SystemProfileHoldsTheLedgersCalendar) {
    Register();
    EXPECT_EQ(12, entry::GetSystemProfile("GL", "PeriodCount").ToInt16());
    EXPECT_EQ(2026, entry::GetSystemProfile("GL", "CurrentYear").ToInt16());
    EXPECT_EQ(10, entry::GetSystemProfile("GL", "CurrentPeriod").ToInt16());
    EXPECT_TRUE(entry::GetSystemProfile("GL", "Nothing").IsEmpty());
}

TEST_F(HostComponents, UserSettingsAreReadThroughAppConnection) {
    Register();
    EXPECT_EQ(9, store::GetUserSettingNumber(1, "BillFontSize", 9));
    session_->Execute(
        "insert into t_UserSetting(FUserID,FCategory,FKey,FValue) values(1,'Vela_APFC','BillFontSize','12')");
    EXPECT_EQ(12, store::GetUserSettingNumber(1, "BillFontSize", 9));
    EXPECT_EQ(9, store::GetUserSettingNumber(2, "BillFontSize", 9));
}

TEST_F(HostComponents, AppConnectionPassesTheServersErrors) {
    Register();
    EXPECT_THROW(CreateObject("VelaConnection.AppConnection")->Call("Execute", {"select * from nowhere"}),
                 Error);
}

TEST_F(HostComponents, OperationLogKeepsCodeKindUserAndTheWholeText) {
    Register(2);
    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-保存模板 ");
    entry::WriteOperationLog(entry::LogKind::Failed, "it's");
    const ado::RecordsetRef log = session_->Execute(
        "select FUserID,FFunctionID,FKind,FDescription,len(FDescription+'|') as FLen from t_Log order by "
        "FLogID");
    ASSERT_EQ(2, log->RecordCount());
    EXPECT_EQ(2, log->Value("FUserID").ToInt32());
    EXPECT_EQ("K831000", log->Value("FFunctionID").ToText());
    EXPECT_EQ(1, log->Value("FKind").ToInt32());
    EXPECT_EQ("凭证模板-保存模板 ", log->Value("FDescription").ToText());
    log->MoveNext();
    EXPECT_EQ(4, log->Value("FKind").ToInt32());
    EXPECT_EQ("it's", log->Value("FDescription").ToText());
}

TEST_F(HostComponents, FrameLogBelongsToTheUserOfItsPropertyString) {
    Register(3);
    entry::WriteFrameLog("C001C039", "AutoRunVch");
    const ado::RecordsetRef log = session_->Execute("select FUserID,FCode,FName from t_FrameLog");
    ASSERT_EQ(1, log->RecordCount());
    EXPECT_EQ(3, log->Value("FUserID").ToInt32());
    EXPECT_EQ("C001C039", log->Value("FCode").ToText());
    EXPECT_EQ("AutoRunVch", log->Value("FName").ToText());
    const ObjectRef frame = CreateObject("Vela_APFC.FrameData");
    EXPECT_THROW(frame->Call("WriteMGLog", {"C001C039", "AutoRunVch"}), Error);
    frame->Put("Propstring", "UserID=1;");
    EXPECT_EQ("UserID=1;", frame->Get("Propstring").ToText());
}

TEST_F(HostComponents, SysInfoGivesTheCloudAccountOfOneUser) {
    Register();
    const ObjectRef info = CreateObject("VelaBillDataAccess.SysInfo");
    const ObjectRef account = info->Call("GetUserCloudInfo", {Props(), "1"}).AsObject();
    EXPECT_EQ(1, account->Get("RecordCount").ToInt32());
    EXPECT_EQ("u100001", account->Get("Fields", {"FCloudUserID"}).ToText());
    EXPECT_EQ(0, info->Call("GetUserCloudInfo", {Props(), "2"}).AsObject()->Get("RecordCount").ToInt32());
}

TEST_F(HostComponents, ALostConnectionIsOpenedAnew) {
    Register();
    session_->Connection().Close();
    EXPECT_EQ(12, entry::GetSystemProfile("GL", "PeriodCount").ToInt16());
}

TEST_F(HostComponents, TheVersionOfTheNameListsChangesWithTheAccountSet) {
    Register();
    const auto version = [] {
        return CreateObject("VelaGLNameListLib.GLNameList")->Get("ListVersion").ToText();
    };
    const std::string before = version();
    EXPECT_NE(before, "");
    EXPECT_EQ(version(), before);
    const ado::ConnectionRef other = ado::OpenConnection(session_->Settings().connectString);
    other->Execute("update t_Account set FName = '现金' where FNumber = '1001'");
    const std::string changed = version();
    EXPECT_NE(changed, before);
    session_->Connection().Close();
    EXPECT_NE(version(), changed) << "versions of another connection do not compare";
}

}  // namespace
}  // namespace vicenter::host
