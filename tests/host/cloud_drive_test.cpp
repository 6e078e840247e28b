// The upload of workbooks against the host's own cloud drive and its record of files.

#include <fstream>
#include <map>
#include <vector>

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include "automation/class_registry.h"
#include "entry/host_context.h"
#include "exchange/cloud_upload.h"
#include "host/components/cloud_folder.h"
#include "host/components/components.h"
#include "platform/scripting/file_system_object.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/host/demo_set.h"

namespace vicenter::host {
namespace {

namespace fs = std::filesystem;
using automation::CreateObject;
using automation::Variant;

class CloudDrive : public testing::Test {
  protected:
    CloudDrive() {
        Register(place_);
        fs::create_directories(system::PathFromUtf8(folder_.Path("out")));
        WriteFile("第一");
    }
    void Register(const std::string& place, std::int32_t user = 2) {
        session_ = RegisterHostComponents({connectString_, user, place});
        entry::SetCurrentUserId(std::to_string(user));
    }
    void WriteFile(const std::string& content) const { std::ofstream(PathOf(file_)) << content; }
    static fs::path PathOf(const std::string& name) { return system::PathFromUtf8(name); }
    static std::string ContentOf(const fs::path& path) {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::string Upload() const {
        std::string text;
        exchange::UploadTemplateFile(file_, "日常费用.xlsx", text);
        return text;
    }
    std::string Records() const {
        const auto rows = session_->Execute(
            "select FUserID,FFolderID,FFolderName,FFileID,FName,FExt,FBillID,FRemark from t_CloudFile order "
            "by FFileID");
        std::string text;
        for (; !rows->AtEnd(); rows->MoveNext()) {
            for (std::size_t i = 0; i < 8; ++i)
                text += rows->Value(i).ToText() + "|";
            text += "\n";
        }
        return text;
    }

    test::TestFolder folder_;
    std::string connectString_ = FileConnectString(test::CopySet(folder_));
    std::string place_ = folder_.Path("云盘");
    std::string file_ = folder_.Path("out/日常费用.xlsx");
    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    HostSessionRef session_;
};

TEST_F(CloudDrive, TheWithdrawnCommandTouchesNeitherDriveNorRecords) {
    exchange::UploadTemplateCommand();
    EXPECT_EQ(surroundings_.messageBoxes->Texts(), std::vector<std::string>{"此功能已停止使用！"});
    EXPECT_FALSE(fs::exists(PathOf(place_)));
    EXPECT_EQ("", Records());
}

TEST_F(CloudDrive, AnUploadMakesTheFolderStoresTheFileAndRecordsIt) {
    EXPECT_EQ("success", Upload());
    EXPECT_EQ("第一", ContentOf(PathOf(place_) / "2" / PathOf("凭证模板") / PathOf("日常费用.xlsx")));
    EXPECT_EQ("2|10001|凭证模板|10002|日常费用|xlsx|0||\n", Records());
}

TEST_F(CloudDrive, ASecondUploadOfTheNameReplacesFileAndRecord) {
    EXPECT_EQ("success", Upload());
    WriteFile("第二");
    EXPECT_EQ("success", Upload());
    EXPECT_EQ("第二", ContentOf(PathOf(place_) / "2" / PathOf("凭证模板") / PathOf("日常费用.xlsx")));
    EXPECT_EQ("2|10001|凭证模板|10002|日常费用|xlsx|0||\n", Records());
}

TEST_F(CloudDrive, EveryUserHasADriveOfHisOwn) {
    EXPECT_EQ("success", Upload());
    Register(place_, 1);
    EXPECT_EQ("success", Upload());
    EXPECT_EQ("2|10001|凭证模板|10002|日常费用|xlsx|0||\n1|10003|凭证模板|10004|日常费用|xlsx|0||\n",
              Records());
    const auto drive = CreateObject("VelaFRAPI.NXCloud");
    // The folder of user 2 holds nothing of user 1.
    EXPECT_EQ(Variant(2002), drive->Call("NXDrive_CheckDir", {1, 10001, "子"}));
    EXPECT_EQ(Variant(-1), drive->Call("NXDrive_NewDir", {1, 10001, "子"}));
    EXPECT_EQ(Variant(10005), drive->Call("NXDrive_NewDir", {2, 10001, "子"}));
    EXPECT_EQ(Variant(10005), drive->Call("NXDrive_CheckDir", {2, 10001, "子"}));
}

TEST_F(CloudDrive, AHostWithoutADriveFailsAtTheFirstStep) {
    Register("");
    EXPECT_EQ("个人云盘获取'凭证模板'目录时出现异常，查找目录失败！", Upload());
    EXPECT_EQ("", Records());
}

TEST_F(CloudDrive, ADriveThatTakesNoFolderFailsAtTheSecond) {
    std::ofstream(PathOf(place_)) << "a file where the drive should be";
    EXPECT_EQ("个人云盘创建'凭证模板'目录时出现异常，目录创建失败！", Upload());
    EXPECT_EQ("", Records());
}

TEST_F(CloudDrive, AFileThatIsNotThereFailsAtTheThird) {
    fs::remove(PathOf(file_));
    EXPECT_EQ("模板文件上传过程中出现异常，上传失败！", Upload());
    EXPECT_EQ("", Records());
}

TEST_F(CloudDrive, AFileWhoseRecordFailedIsTold) {
    session_->Execute("drop table t_CloudFile");
    EXPECT_EQ(
        "模板文件“日常费用.xlsx”已上传到个人云盘的'凭证模板'"
        "目录，但上传记录保存失败，请在云盘中删除该文件后重新上传！",
        Upload());
}

TEST_F(CloudDrive, NamesThatLeadElsewhereAreNoNames) {
    CloudFolder drive(place_);
    for (const char* name : {"", ".", "..", "a/b", "../a", "a\\b", "a\nb"}) {
        EXPECT_FALSE(drive.MakeFolder(1, 0, name)) << name;
        EXPECT_FALSE(drive.FindFolder(1, 0, name)) << name;
    }
    const auto own = drive.MakeFolder(1, 0, "a");
    ASSERT_TRUE(own);
    EXPECT_FALSE(drive.PutFile(*own, file_, "../b"));
    EXPECT_FALSE(drive.PutFile(9, file_, "b"));
    EXPECT_TRUE(drive.PutFile(*own, file_, "b"));
}

TEST_F(CloudDrive, IdsOutliveFoldersAndFolderMadeByHandGetsOne) {
    CloudFolder drive(place_);
    const auto id = drive.MakeFolder(1, 0, "a");
    fs::remove_all(PathOf(place_) / "1" / "a");
    EXPECT_FALSE(drive.FindFolder(1, 0, "a"));
    EXPECT_FALSE(drive.PutFile(*id, file_, "b"));
    EXPECT_EQ(id, drive.MakeFolder(1, 0, "a"));
    fs::create_directories(PathOf(place_) / "1" / "by hand");
    EXPECT_EQ(*id + 1, drive.FindFolder(1, 0, "by hand"));
}

TEST_F(CloudDrive, ALineThatWasBrokenOffIsNoFoldersId) {
    CloudFolder drive(place_);
    ASSERT_EQ(drive.MakeFolder(1, 0, "first"), 10001);
    std::ofstream(PathOf(place_) / "index.txt", std::ios::app) << "1/sec";
    EXPECT_EQ(drive.MakeFolder(1, 0, "second"), 10003);
    EXPECT_EQ(drive.FindFolder(1, 0, "first"), 10001);
    EXPECT_TRUE(drive.PutFile(10003, file_, "b"));
    EXPECT_TRUE(fs::exists(PathOf(place_) / "1" / "second" / "b"));
}

#ifndef _WIN32
TEST_F(CloudDrive, ProcessesThatMakeFoldersAtOnceAreGivenIdsOfTheirOwn) {
    constexpr int kProcesses = 4;
    constexpr int kFolders = 100;
    // Every second folder is made by all of them.
    const auto nameOf = [](int process, int i) {
        return i % 2 == 0 ? "all" + std::to_string(i) : std::to_string(process) + "-" + std::to_string(i);
    };
    int start[2];  // closed when all are there
    ASSERT_EQ(pipe(start), 0);
    std::vector<pid_t> children;
    for (int process = 0; process < kProcesses; ++process) {
        const pid_t child = fork();
        if (child != 0) {
            children.push_back(child);
            continue;
        }
        close(start[1]);
        char nothing = 0;
        while (read(start[0], &nothing, 1) > 0) {
        }
        CloudFolder drive(place_);
        std::ofstream told(folder_.Path("told" + std::to_string(process)));
        for (int i = 0; i < kFolders; ++i)
            told << drive.MakeFolder(1, 0, nameOf(process, i)).value_or(0) << ' ' << nameOf(process, i)
                 << '\n';
        told.close();
        _exit(0);
    }
    close(start[0]);
    close(start[1]);
    for (const pid_t child : children) {
        int status = -1;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    std::map<std::int32_t, std::string> names;
    CloudFolder drive(place_);
    for (int process = 0; process < kProcesses; ++process) {
        std::ifstream told(folder_.Path("told" + std::to_string(process)));
        std::int32_t id = 0;
        int count = 0;
        for (std::string name; told >> id >> name; ++count) {
            EXPECT_EQ(names.emplace(id, name).first->second, name) << id;
            EXPECT_EQ(drive.FindFolder(1, 0, name), id) << name;
        }
        EXPECT_EQ(count, kFolders);
    }
    EXPECT_EQ(names.size(), static_cast<std::size_t>(kFolders / 2 + kProcesses * kFolders / 2));
}
#endif

}  // namespace
}  // namespace vicenter::host
