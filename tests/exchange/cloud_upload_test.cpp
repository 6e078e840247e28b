#include "exchange/cloud_upload.h"

#include "tests/exchange/exchange_fixture.h"

namespace vicenter::exchange {
namespace {

class CloudUploadTest : public ExchangeTest {
  protected:
    void SetUp() override {
        ExchangeTest::SetUp();
        drive_ = fakes::RegisterScripted("VelaFRAPI.NXCloud");
        records_ = fakes::RegisterScripted("VelaBillDataAccess.SaveData");
        records_->Value("InsertCDFile", true);
        const auto result = std::make_shared<fakes::ScriptedObject>("Result");
        result->Value("folder_id", 12).Value("file_id", 34).Value("name", "模板").Value("ext", "xls");
        drive_->Value("NXDrive_CheckDir", 12).Value("NXDrive_PutFile", result).Value("NXDrive_NewDir", 55);
    }
    std::string Upload() {
        std::string text;
        UploadTemplateFile("/tmp/a.xls", "a.xls", text);
        return text;
    }

    fakes::ScriptedRef drive_;
    fakes::ScriptedRef records_;
};

TEST_F(CloudUploadTest, CommandSaysThatItIsWithdrawn) {
    UploadTemplateCommand();
    EXPECT_EQ(Messages(), Lines{"此功能已停止使用！"});
    EXPECT_EQ(LastTitle(), "Orbis提示");
    EXPECT_EQ(surroundings_.messageBoxes->shown[0].icon, system::MessageIcon::Information);
    EXPECT_TRUE(drive_->Calls().empty());
}

TEST_F(CloudUploadTest, PutsTheFileIntoTheFolderAndRecordsIt) {
    EXPECT_EQ(Upload(), "success");
    EXPECT_EQ(drive_->Calls(),
              (Lines{"NXDrive_CheckDir(16394, 0, 凭证模板)", "NXDrive_PutFile(12, /tmp/a.xls, a.xls)"}));
    EXPECT_EQ(records_->Calls(),
              Lines{"InsertCDFile(UserID=16394;, 16394, 12, 凭证模板, 34, 模板, xls, 0, )"});
}

TEST_F(CloudUploadTest, MakesTheFolderWhenItIsNotThere) {
    drive_->Value("NXDrive_CheckDir", 2002);
    EXPECT_EQ(Upload(), "success");
    EXPECT_EQ(drive_->Calls()[1], "NXDrive_NewDir(16394, 0, 凭证模板)");
    EXPECT_EQ(drive_->Calls()[2], "NXDrive_PutFile(55, /tmp/a.xls, a.xls)");
}

TEST_F(CloudUploadTest, TellsWhichStepFailed) {
    drive_->Value("NXDrive_CheckDir", -3);
    EXPECT_EQ(Upload(), "个人云盘获取'凭证模板'目录时出现异常，查找目录失败！");
    drive_->Value("NXDrive_CheckDir", 2002).Value("NXDrive_NewDir", -1);
    EXPECT_EQ(Upload(), "个人云盘创建'凭证模板'目录时出现异常，目录创建失败！");
    drive_->Value("NXDrive_NewDir", 55).Value("NXDrive_PutFile", Variant(automation::ObjectRef()));
    EXPECT_EQ(Upload(), "模板文件上传过程中出现异常，上传失败！");
    automation::ClassRegistry::Process().Unregister("VelaFRAPI.NXCloud");
    EXPECT_EQ(Upload(), "模板文件上传过程中出现异常，上传失败！");
    EXPECT_TRUE(records_->Calls().empty());
    EXPECT_TRUE(Messages().empty());
}

TEST_F(CloudUploadTest, TellsWhichStepFailedByAnException) {
    const auto fails = [](Arguments&) -> Variant { throw automation::Error(1, "network"); };
    drive_->On("NXDrive_CheckDir", fails);
    EXPECT_EQ(Upload(), "个人云盘获取'凭证模板'目录时出现异常，查找目录失败！");
    drive_->Value("NXDrive_CheckDir", 2002).On("NXDrive_NewDir", fails);
    EXPECT_EQ(Upload(), "个人云盘创建'凭证模板'目录时出现异常，目录创建失败！");
    drive_->Value("NXDrive_NewDir", 55).On("NXDrive_PutFile", fails);
    EXPECT_EQ(Upload(), "模板文件上传过程中出现异常，上传失败！");
    EXPECT_TRUE(records_->Calls().empty());
}

TEST_F(CloudUploadTest, TellsOfAFileOnTheDriveWhoseRecordFailed) {
    const std::string told =
        "模板文件“a.xls”已上传到个人云盘的'凭证模板'"
        "目录，但上传记录保存失败，请在云盘中删除该文件后重新上传！";
    records_->On("InsertCDFile", [](Arguments&) -> Variant { throw automation::Error(1, "no table"); });
    EXPECT_EQ(Upload(), told);
    const auto nameless = std::make_shared<fakes::ScriptedObject>("Result");
    nameless->Value("folder_id", 12);
    drive_->Value("NXDrive_PutFile", nameless);
    EXPECT_EQ(Upload(), told);
}

}  // namespace
}  // namespace vicenter::exchange
