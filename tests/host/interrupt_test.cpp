// Ctrl+C on the command line while a script runs.

#include <chrono>
#include <fstream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/host/demo_set.h"

extern char** environ;

namespace vicenter::host {
namespace {

class InterruptTest : public testing::Test {
  protected:
    pid_t StartSql(const std::string& set, const std::string& script) const {
        const std::string file = folder_.Path("script.sql");
        std::ofstream(system::PathFromUtf8(file), std::ios::binary) << script;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, Out().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_addopen(&actions, 2, Err().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        std::vector<std::string> arguments = {VICENTER_PROGRAM, "--account-set", set, "sql", file};
        std::vector<char*> argv;
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        pid_t pid = 0;
        EXPECT_EQ(0, posix_spawn(&pid, VICENTER_PROGRAM, &actions, nullptr, argv.data(), environ));
        posix_spawn_file_actions_destroy(&actions);
        return pid;
    }
    std::string Out() const { return folder_.Path("out"); }
    std::string Err() const { return folder_.Path("err"); }
    static std::string Text(const std::string& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    test::TestFolder folder_;
};

// The process takes Ctrl+C itself from now on; false when it is gone before.
bool TakesInterrupts(pid_t pid) {
    for (;;) {
        std::ifstream status("/proc/" + std::to_string(pid) + "/status");
        bool ended = true;
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("State:", 0) == 0) ended = line.find('Z') != std::string::npos;
            if (line.rfind("SigCgt:", 0) == 0 && (std::stoull(line.substr(7), nullptr, 16) & 2U) != 0)
                return true;
        }
        if (ended) return false;
        std::this_thread::yield();
    }
}

TEST_F(InterruptTest, EndsTheBatchAndTheScriptAndLeavesTheSetAsItWas) {
    const std::string set = test::CopySet(folder_);
    const pid_t pid = StartSql(set,
                               "delete from t_VchTemplateEntry\n"
                               "declare @i int set @i = 0\n"
                               "while 1 = 1 set @i = 1 - @i\n"
                               "go\n"
                               "delete from t_VchTemplate\n"
                               "go\n");
    ASSERT_TRUE(TakesInterrupts(pid)) << Text(Err());
    ASSERT_EQ(kill(pid, SIGINT), 0);
    int status = 0;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 130);
    EXPECT_EQ(Text(Err()), "消息 3617，第 3 行：The query has been canceled by the user.\n");
    const ado::ConnectionRef connection = ado::OpenConnection(FileConnectString(set));
    const ado::RecordsetRef left = connection->Execute(
        "select (select count(*) from t_VchTemplate) as a, (select count(*) from t_VchTemplateEntry) as b");
    EXPECT_GT(left->Value("a").ToInt32(), 0);
    EXPECT_GT(left->Value("b").ToInt32(), 0);
}

}  // namespace
}  // namespace vicenter::host
