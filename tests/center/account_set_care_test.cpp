#include "center/frame/account_set_care.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "entry/host_context.h"
#include "platform/ado/account_set/account_set_copies.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::center {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Texts = std::vector<std::string>;

class AccountSetCareTest : public testing::Test {
  protected:
    void SetUp() override {
        ado::RegisterAccountSetProvider();
        log_ = fakes::RegisterScripted("VelaEBCGLView.GLData");
        log_->Value("WriteLog", true);
        const auto set = ado::OpenConnection(Connect() + ";Create=yes");
        set->Execute(
            "create table t_VchTemplate(FID int,FName nvarchar(255),FUserID int)\n"
            "create table t_VchTemplateEntry(FID int,FEntryID int,FNo int,FDC int)\n"
            "create table t_VchTpControl(FID int,FNo int)\n"
            "create table t_User(FUserID int)");
        entry::PresetPropsString("UserID=1;ConnectString={" + Connect() + "};");
    }
    void TearDown() override {
        entry::PresetPropsString("");
        ado::CloseIdleAccountSets();
    }
    std::string Connect() const { return "Provider=VelaAccountSet;Pooling=no;Data Source=" + file_; }
    Texts TakeMessages() {
        Texts texts = surroundings_.messageBoxes->Texts();
        surroundings_.messageBoxes->shown.clear();
        return texts;
    }

    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    fakes::TemporaryFolder folder_;
    std::string file_ = folder_.File("账套.vas");
    std::string target_ = folder_.File("备份.vas");
    fakes::ScriptedRef log_;
};

TEST_F(AccountSetCareTest, IsOfferedForFilesOnly) {
    EXPECT_TRUE(AccountSetCare::IsOffered());
    entry::PresetPropsString("UserID=1;ConnectString={Provider=SQLOLEDB;Data Source=x};");
    EXPECT_FALSE(AccountSetCare::IsOffered());
    AccountSetCare::BackUp(false);
    AccountSetCare::Verify();
    EXPECT_THAT(surroundings_.fileDialogs->requests, IsEmpty());
    EXPECT_THAT(TakeMessages(), IsEmpty());
}

TEST_F(AccountSetCareTest, ABackupIsAskedForWrittenToldAndLogged) {
    surroundings_.fileDialogs->choices = {target_, target_};
    AccountSetCare::BackUp(false);
    ASSERT_EQ(surroundings_.fileDialogs->requests.size(), 1U);
    const system::FileRequest& request = surroundings_.fileDialogs->requests[0];
    EXPECT_EQ(request.title, "备份账套");
    EXPECT_EQ(request.proposedName, "账套-备份-20260131.vas");
    EXPECT_EQ(request.flags, 0x80806U);
    EXPECT_THAT(TakeMessages(), ElementsAre("账套备份成功！\r\n\r\n" + target_));
    EXPECT_THAT(ado::FindAccountSetDamage(target_), IsEmpty());
    EXPECT_THAT(log_->Calls(), ElementsAre("WriteLog(K831000, 3, 凭证模板-备份账套 成功)"));
    AccountSetCare::BackUp(true);
    EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("备份中没有这些修改。")));
}

TEST_F(AccountSetCareTest, CancelledItDoesNothing) {
    AccountSetCare::BackUp(false);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_THAT(log_->Calls(), IsEmpty());
}

TEST_F(AccountSetCareTest, ABackupThatCannotBeWrittenIsToldAndLogged) {
    surroundings_.fileDialogs->choices = {file_};
    AccountSetCare::BackUp(false);
    EXPECT_THAT(TakeMessages(), ElementsAre("账套备份失败！\r\n\r\n两个文件是同一个文件：" + file_));
    EXPECT_THAT(log_->Calls(), ElementsAre("WriteLog(K831000, 4, 凭证模板-备份账套 失败)"));
}

TEST_F(AccountSetCareTest, CheckingTellsWhatIsWrongOrThatNothingIs) {
    AccountSetCare::Verify();
    EXPECT_THAT(TakeMessages(), ElementsAre("账套检查完毕，没有发现问题。"));
    ado::OpenConnection(Connect())->Execute(
        "insert into t_VchTemplateEntry values(9,1,1,1) insert into t_VchTpControl values(8,1)");
    AccountSetCare::Verify();
    EXPECT_THAT(TakeMessages(),
                ElementsAre("账套检查发现以下问题，请先备份，再与管理员联系：\r\n"
                            "凭证模板分录没有模板：FID 9，1 处\r\n凭证模板控制行没有模板：FID 8，1 处"));
}

}  // namespace
}  // namespace vicenter::center
