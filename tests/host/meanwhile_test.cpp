// What others do while a command waits for its user: for an answer, for its lines. The command then finds
// something else than the user was asked about, and writes nothing.

#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <streambuf>
#include <thread>

#include <gmock/gmock.h>

#include "tests/host/cli_fixture.h"
#include "tests/host/program_run.h"

namespace vicenter::host::test {
namespace {

using testing::HasSubstr;

constexpr const char* kOneLine =
    R"({"lines":[{"FNo":1,"FExp":"一","FDC":"借","FAccountNumber":"1001","FAcctountName":"库存现金"}]})";
constexpr const char* kOtherLine =
    R"({"lines":[{"FNo":1,"FExp":"二","FDC":"借","FAccountNumber":"1001","FAcctountName":"库存现金"}]})";

// An input that says nothing before something has happened elsewhere.
class LateInput : public std::streambuf {
  public:
    LateInput(std::function<void()> before, std::string text)
        : before_(std::move(before)), text_(std::move(text)) {}

  protected:
    int_type underflow() override {
        if (!before_) return traits_type::eof();
        std::exchange(before_, {})();
        setg(text_.data(), text_.data(), text_.data() + text_.size());
        return traits_type::to_int_type(text_.front());
    }

  private:
    std::function<void()> before_;
    std::string text_;
};

class Meanwhile : public CliFixture {
  protected:
    // The program in a process of its own.
    void Elsewhere(std::vector<std::string> arguments, const std::string& input = {}) {
        const std::string given = folder_.Path("input.txt");
        std::ofstream(system::PathFromUtf8(given), std::ios::binary) << input;
        arguments.insert(arguments.begin(), {"--account-set", file_, "--yes"});
        RunningProgram program(VICENTER_PROGRAM, arguments, given, folder_.Path("output.txt"));
        ASSERT_EQ(program.Wait().code, 0) << arguments[3];
    }
    // The command; once it waits for its input the other one happens, then the input comes.
    CliAnswer RunAround(std::vector<std::string> arguments, std::function<void()> meanwhile,
                        const std::string& input = "y\n") {
        LateInput late(std::move(meanwhile), input);
        std::istream in(&late);
        std::ostringstream out;
        std::ostringstream err;
        arguments.insert(arguments.begin(), {"--connect", Connect()});
        const int exitCode = RunCli(arguments, {in, out, err});
        return {exitCode, out.str(), err.str()};
    }
    // Nobody waits long for a lock.
    std::string Connect() const { return FileConnectString(file_) + ";Lock Timeout=20"; }
    std::string Text(const std::string& query) {
        const ado::RecordsetRef rows = ado::OpenConnection(FileConnectString(file_))->Execute(query);
        return rows->RecordCount() < 1 ? "none" : rows->Value(std::size_t{0}).ToTextOrEmpty();
    }
    // A template of the user's with the last id, and that id.
    std::string Make(const std::string& name) {
        Elsewhere({"new"});
        Elsewhere({"rename", "自定义模板(1)", name});
        Elsewhere({"save", name}, kOneLine);
        return Text("select FID from t_VchTemplate where FName = '" + name + "'");
    }
    // The template goes, and its id to another one.
    std::function<void()> Replaced(const std::string& name, const std::string& user) {
        return [this, name, user] {
            Elsewhere({"delete", name});
            Elsewhere({"--user", user, "new"});
            Elsewhere({"--user", user, "save", "自定义模板(1)"}, kOtherLine);
        };
    }
    void ExpectOfUser(const std::string& user, const std::string& id) {
        EXPECT_EQ(Text("select FUserID from t_VchTemplate where FID = " + id), user);
        EXPECT_EQ(Text("select FName from t_VchTemplate where FID = " + id), "自定义模板(1)");
        EXPECT_EQ(Text("select FExp from t_VchTemplateEntry where FID = " + id), "二");
    }
};

TEST_F(Meanwhile, AnImportDoesNotTakeAnotherUsersTemplateOver) {
    const std::string id = Make("甲");
    Elsewhere({"export", "甲", folder_.Path("甲.xlsx")});
    const CliAnswer answer = RunAround({"import", folder_.Path("甲.xlsx")}, Replaced("甲", "2"));
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("引入模板失败！模板 甲 已在别处被删除，没有引入，账套保持原样！"));
    ExpectOfUser("2", id);
    EXPECT_EQ(Text("select count(*) as n from t_VchTemplate where FName = '甲'"), "0");
}

TEST_F(Meanwhile, AnImportDoesNotOverwriteWhatWasSavedSince) {
    Make("甲");
    Elsewhere({"export", "甲", folder_.Path("甲.xlsx")});
    const CliAnswer answer = RunAround({"import", folder_.Path("甲.xlsx")}, [this] {
        Elsewhere({"save", "甲"}, kOtherLine);
    });
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("模板 甲 已在别处被修改，没有引入，账套保持原样！"));
    EXPECT_EQ(
        Text("select b.FExp from t_VchTemplate a inner join t_VchTemplateEntry b on a.FID = b.FID where "
             "a.FName = '甲'"),
        "二");
}

TEST_F(Meanwhile, AGenerationDoesNotTakeAnotherUsersTemplateOver) {
    const std::string id = Make("甲");
    const CliAnswer answer =
        RunAround({"generate", "--name", "甲", "--year", "2026", "--period", "10"}, Replaced("甲", "2"));
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("模板 甲 已在别处被删除，没有生成，账套保持原样！"));
    ExpectOfUser("2", id);
}

TEST_F(Meanwhile, ASaveDoesNotReachAnotherTemplateOfTheSameUser) {
    const std::string id = Make("甲");
    const CliAnswer answer = RunAround({"save", "甲"}, Replaced("甲", "1"), kOneLine);
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("模板 甲 已在别处被删除或改名，没有保存，账套保持原样！"));
    ExpectOfUser("1", id);
}

TEST_F(Meanwhile, ARestorationDoesNotReachAnotherTemplateOfTheSameUser) {
    const std::string id = Make("甲");
    Elsewhere({"save", "甲"}, kOtherLine);
    const std::string version = Text("select Max(FHistoryID) as FID from t_VchTpHistory where FID = " + id);
    const CliAnswer answer = RunAround({"restore", "甲", "--version-id", version}, Replaced("甲", "1"));
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("模板 甲 已在别处被删除或改名，没有恢复，账套保持原样！"));
    ExpectOfUser("1", id);
}

TEST_F(Meanwhile, UndoingAReplacementDoesNotOverwriteWhatWasSavedSince) {
    Elsewhere({"replace", "--column", "account", "--from", "1001", "--to", "1002.01"});
    const CliAnswer answer = RunAround({"replace", "--undo"}, [this] {
        Elsewhere({"save", "日常费用"}, kOtherLine);
    });
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("模板 日常费用 已在别处被修改，没有撤消替换，账套保持原样！"));
    EXPECT_EQ(Text("select FExp from t_VchTemplateEntry where FID = 1"), "二");
    EXPECT_EQ(Number("select count(*) as n from t_VchTpHistory where FCommand = 6"), 0);
}

TEST_F(Meanwhile, WhatIsGoneIsNotExportedAsATemplateWithoutLines) {
    Make("甲");
    const std::string folder = folder_.Path("out");
    Elsewhere({"export", "--all", folder});
    const auto sizeOf = [&](const std::string& name) {
        return std::filesystem::file_size(system::PathFromUtf8(folder + "/" + name + ".xlsx"));
    };
    const auto before = sizeOf("甲");
    const std::string yes = "y\ny\ny\ny\ny\ny\ny\ny\ny\ny\ny\ny\n";
    const CliAnswer answer = RunAround({"export", "--all", folder}, Replaced("甲", "1"), yes);
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("模板 甲 没有引出：模板 甲 已在别处被删除或改名！"));
    EXPECT_EQ(sizeOf("甲"), before);
    // The others have been.
    EXPECT_THAT(answer.output + answer.errors, HasSubstr("模板引出成功！"));
}

// --- another one writes, and takes its time

class Locked : public Meanwhile {
  protected:
    std::function<void()> Lock() {
        return [this] {
            other_ = ado::OpenConnection(FileConnectString(file_));
            ASSERT_TRUE(other_->BeginUnit());
            other_->Execute("update t_VchTemplate set FName = FName where FID = 1");
        };
    }
    std::string Held(const std::string& id) {
        return Text("select count(*) as n from t_VchTemplateEntry where FID = " + id);
    }

    ado::ConnectionRef other_;
};

TEST_F(Locked, WhatIsPromisedToBeKeptIsKeptOrNothingIsRestored) {
    Elsewhere({"save", "日常费用"}, kOtherLine);
    const std::string version = Text("select Max(FHistoryID) as FID from t_VchTpHistory where FID = 1");
    // Whoever holds the lock ends between the version and the command: all is as one.
    const CliAnswer answer = RunAround({"restore", "日常费用", "--version-id", version}, Lock());
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("现有分录未能保留为历史版本，没有恢复，账套保持原样！"));
    EXPECT_THAT(answer.errors, HasSubstr("账套正被其他用户锁定，请稍后再试！"));
    other_.reset();
    EXPECT_EQ(Text("select FExp from t_VchTemplateEntry where FID = 1"), "二");
}

// The user learns at once why nothing happens, and that it goes on when the others are through.
TEST_F(Locked, WhoeverWaitsForOthersIsToldAndGetsWhatHeWaitedFor) {
    Lock()();
    const std::string said = folder_.Path("said.txt");
    const auto text = [&] {
        std::ostringstream read;
        read << std::ifstream(system::PathFromUtf8(said)).rdbuf();
        return read.str();
    };
    RunningProgram program(VICENTER_PROGRAM, {"--account-set", file_, "new"}, {}, said);
    while (program.Runs() && text().find("正在执行") == std::string::npos)
        std::this_thread::yield();
    EXPECT_TRUE(program.Runs());
    other_.reset();
    EXPECT_EQ(program.Wait().code, 0);
    EXPECT_THAT(text(), testing::StartsWith("正在执行，请稍后...（按 Ctrl+C 中止）\n"));
    EXPECT_THAT(text(), testing::EndsWith("\t自定义模板(1)\n"));
}

// One wait and one message: nothing that comes behind the first waits once more.
TEST_F(Locked, ANewTemplateIsWaitedForOnce) {
    Lock()();
    const CliAnswer answer = RunVicenter({"--connect", Connect(), "new"});
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, testing::StartsWith("新增模板失败！\n\n账套正被其他用户锁定，请稍后再试！"));
    EXPECT_EQ(answer.errors.find("账套正被", answer.errors.find("账套正被") + 1), std::string::npos)
        << answer.errors;
    other_.reset();
    EXPECT_EQ(Text("select count(*) as n from t_VchTemplate"), "10");
}

TEST_F(Locked, ASaveThatCannotKeepAVersionFails) {
    const CliAnswer answer = RunAround({"save", "日常费用"}, Lock(), kOtherLine);
    EXPECT_EQ(answer.exitCode, 1);
    EXPECT_THAT(answer.errors, HasSubstr("没有保存，账套保持原样！"));
    EXPECT_THAT(answer.errors, HasSubstr("模板 日常费用 保存失败！"));
    other_.reset();
    EXPECT_EQ(Held("1"), "11");
}

}  // namespace
}  // namespace vicenter::host::test
