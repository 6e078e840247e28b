// Exports, imports and new account sets whose process is killed or finds the disk full: the old workbook or
// the new one is there, whole, and what was left in between is gone after the next start. VICENTER_KILLS in
// the environment sets how many processes are killed; 20 without it.

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

#include "host/cli/cli.h"
#include "platform/ado/account_set/account_set_copies.h"
#include "platform/office/workbook_file.h"
#include "platform/system/program.h"
#include "tests/host/demo_set.h"
#include "tests/host/program_run.h"

#ifndef _WIN32
#include "tests/tsql/child_process.h"
#endif

namespace vicenter::host {
namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

int Kills() {
    const char* asked = std::getenv("VICENTER_KILLS");
    return asked ? std::atoi(asked) : 20;
}

// Points the temporary folder of this process, and of those that it starts, into the test's.
class OwnTemporaryFolder {
  public:
    explicit OwnTemporaryFolder(const std::string& folder) {
        before_ = system::EnvironmentVariable(test::kTemporaryFolderVariable);
        std::error_code there;
        fs::create_directory(system::PathFromUtf8(folder), there);
        test::SetVariable(test::kTemporaryFolderVariable, folder);
    }
    OwnTemporaryFolder(const OwnTemporaryFolder&) = delete;
    OwnTemporaryFolder& operator=(const OwnTemporaryFolder&) = delete;
    ~OwnTemporaryFolder() {
        if (before_) {
            test::SetVariable(test::kTemporaryFolderVariable, *before_);
        } else {
            test::RemoveVariable(test::kTemporaryFolderVariable);
        }
    }

  private:
    std::optional<std::string> before_;
};

// To its end; the exit code.
int ExitCodeOf(const std::vector<std::string>& arguments, const std::string& input = {}) {
    return test::RunningProgram(VICENTER_PROGRAM, arguments, input).Wait().code;
}

class KilledExchange : public testing::Test {
  protected:
    // Hidden ones, too.
    std::vector<std::string> Files(const std::string& below = {}) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(system::PathFromUtf8(folder_.Path(below)))) {
            if (entry.is_regular_file()) names.push_back(system::PathToUtf8(entry.path().filename()));
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    // What a start finds to be left behind is gone after it.
    void StartOnce() { ASSERT_EQ(0, ExitCodeOf({"--account-set", set_, "list"})); }

    // The program's run, and then as many that are killed at moments that cover the whole of it.
    void KillAtEveryMoment(const std::vector<std::string>& arguments, const std::function<void()>& check) {
        const auto start = Clock::now();
        ASSERT_EQ(0, ExitCodeOf(arguments));
        const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
        int killed = 0;
        const int kills = Kills();
        for (int i = 0; i < kills; ++i) {
            test::RunningProgram program(VICENTER_PROGRAM, arguments);
            const auto delay = whole * ((i * 37) % 100 + 1) / 100;
            std::this_thread::sleep_for(delay);  // the moment of the kill is what is tested
            program.Kill();
            killed += program.Wait().killed ? 1 : 0;
            check();
            if (HasFatalFailure()) return;
        }
        EXPECT_GT(killed, 0);
        std::cout << kills << " processes, " << killed << " killed before their end\n";
    }

    test::TestFolder folder_;
    std::string set_ = test::CopySet(folder_);
    OwnTemporaryFolder temporary_{folder_.Path("temporary")};
};

TEST_F(KilledExchange, AnExportLeavesAWholeWorkbook) {
    const std::string book = folder_.Path("书.xlsx");
    KillAtEveryMoment({"--account-set", set_, "--yes", "export", "标准模板", book}, [&] {
        ASSERT_TRUE(fs::exists(system::PathFromUtf8(book)));
        ASSERT_EQ(office::ReadWorkbook(book)->Sheets().size(), 1U);
    });
    StartOnce();
    EXPECT_EQ(Files("temporary"), std::vector<std::string>{});
    // The target's own folder is tidied by the start on an account set in it.
    EXPECT_EQ(Files(), (std::vector<std::string>{"set.vas", "书.xlsx"}));
}

TEST_F(KilledExchange, AnImportLeavesNoCopyForLonger) {
    const std::string book = folder_.Path("书.xlsx");
    ASSERT_EQ(0, ExitCodeOf({"--account-set", set_, "export", "标准模板", book}));
    KillAtEveryMoment({"--account-set", set_, "--yes", "import", book}, [] {});
    StartOnce();
    EXPECT_EQ(Files("temporary"), std::vector<std::string>{});
}

TEST_F(KilledExchange, ABackupIsTheOldOneOrTheNewOneWhole) {
    const std::string backup = folder_.Path("backup.vas");
    KillAtEveryMoment({"--yes", "account-set", "backup", set_, backup},
                      [&] { ASSERT_EQ(ado::FindAccountSetDamage(backup), std::vector<std::string>{}); });
    StartOnce();
    EXPECT_EQ(Files(), (std::vector<std::string>{"backup.vas", "set.vas"}));
}

TEST_F(KilledExchange, ARestoredAccountSetIsTheOldOneOrTheNewOneWhole) {
    const std::string backup = folder_.Path("backup.vas");
    ado::BackUpAccountSet(set_, backup);
    // Open all the while, as a window has it.
    const ado::ConnectionRef open = ado::OpenConnection(FileConnectString(set_) + ";Pooling=no");
    const auto templates = [&] {
        return open->Execute("select count(*) as FCount from t_VchTemplate")->Value("FCount").ToInt32();
    };
    const std::int32_t whole = templates();
    int restored = 0;
    KillAtEveryMoment({"--yes", "account-set", "restore", backup, set_}, [&] {
        const std::int32_t now = templates();
        ASSERT_TRUE(now == whole || now == 1) << now;
        restored += now == whole ? 1 : 0;
        ASSERT_EQ(ado::FindAccountSetDamage(set_), std::vector<std::string>{});
        open->Execute("delete t_VchTemplate where FID > 0");
    });
    std::cout << restored << " times restored\n";
}

TEST_F(KilledExchange, ANewAccountSetIsThereWholeOrNotAtAll) {
    const std::string file = folder_.Path("neu.vas");
    const auto check = [&] {
        std::error_code ignored;
        if (fs::exists(system::PathFromUtf8(file))) {
            ASSERT_EQ(0, ExitCodeOf({"--account-set", file, "list"}));
        }
        fs::remove(system::PathFromUtf8(file), ignored);
    };
    const std::vector<std::string> arguments = {"account-set", "new", file};
    const auto start = Clock::now();
    ASSERT_EQ(0, ExitCodeOf(arguments));
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
    check();
    for (int i = 0; i < Kills(); ++i) {
        test::RunningProgram program(VICENTER_PROGRAM, arguments);
        std::this_thread::sleep_for(whole * ((i * 37) % 100 + 1) / 100);  // what is tested
        program.Kill();
        program.Wait();
        check();
        if (HasFatalFailure()) return;
    }
    StartOnce();
    EXPECT_EQ(Files(), std::vector<std::string>{"set.vas"});
}

#ifndef _WIN32  // where a process cannot be kept from making long files
TEST_F(KilledExchange, AFullDiskLeavesTheOldWorkbook) {
    // Long enough that its workbook is larger than what the account set needs to be opened.
    const std::string document = folder_.Path("lines.json");
    {
        std::ofstream out(system::PathFromUtf8(document), std::ios::binary);
        out << "{\"lines\":[";
        for (int i = 0; i < 4000; ++i)
            out << (i > 0 ? "," : "") << R"({"FNo":1,"FExp":")" << i * 7919
                << R"(","FDC":1,"FAccountNumber":"1001","FAcctountName":"库存现金","FAmount":")" << i
                << R"("})";
        out << "]}";
    }
    ASSERT_EQ(0, ExitCodeOf({"--account-set", set_, "save", "日常费用"}, document));
    const std::string book = folder_.Path("书.xlsx");
    ASSERT_EQ(0, ExitCodeOf({"--account-set", set_, "export", "日常费用", book}));
    const auto before = fs::last_write_time(system::PathFromUtf8(book));
    ASSERT_GT(fs::file_size(system::PathFromUtf8(book)), 60'000U);
    for (const std::uint64_t bytes : {std::uint64_t{40'000}, std::uint64_t{60'000}}) {
        const int code = testing_support::RunWithFileLimit(bytes, [&] {
            std::istringstream in;
            std::ostringstream out;
            std::ostringstream err;
            const int ended =
                RunCli({"--account-set", set_, "--yes", "export", "日常费用", book}, {in, out, err});
            if (ended == 1 && err.str().find("磁盘") != std::string::npos) return 42;
            std::cerr << err.str();
            return ended;
        });
        EXPECT_EQ(code, 42);
        EXPECT_EQ(fs::last_write_time(system::PathFromUtf8(book)), before);
        EXPECT_EQ(office::ReadWorkbook(book)->Sheets().size(), 1U);
    }
    EXPECT_EQ(Files("temporary"), std::vector<std::string>{});
}
#endif

TEST_F(KilledExchange, ATemporaryFolderThatIsAFileIsToldByName) {
    const std::string file = folder_.Path("file");
    std::ofstream(system::PathFromUtf8(file)) << "x";
    const OwnTemporaryFolder wrong(file);
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    const std::string book = folder_.Path("书.xlsx");
    EXPECT_EQ(RunCli({"--account-set", set_, "export", "标准模板", book}, {in, out, err}), 1);
    EXPECT_NE(err.str().find("临时文件夹不存在或不是文件夹：" + file + "（环境变量 " +
                             test::kTemporaryFolderVariable + "）"),
              std::string::npos)
        << err.str();
    EXPECT_FALSE(fs::exists(system::PathFromUtf8(book)));
    err.str({});
    std::ofstream(system::PathFromUtf8(book)) << "x";
    EXPECT_EQ(RunCli({"--account-set", set_, "import", book}, {in, out, err}), 1);
    EXPECT_NE((out.str() + err.str())
                  .find("临时文件夹不存在或不是文件夹：" + file + "（环境变量 " +
                        test::kTemporaryFolderVariable + "）"),
              std::string::npos)
        << out.str() << err.str();
}

}  // namespace
}  // namespace vicenter::host
