// by hand
// Several programs that make templates in one account set at once: every one gets a number of its own.

#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include "tests/host/demo_set.h"

extern char** environ;

namespace vicenter::host {
namespace {

pid_t StartNew(const std::string& set) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    std::vector<std::string> words = {VICENTER_PROGRAM, "--account-set", set, "new"};
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t process = 0;
    EXPECT_EQ(0, posix_spawn(&process, VICENTER_PROGRAM, &actions, nullptr, arguments.data(), environ));
    posix_spawn_file_actions_destroy(&actions);
    return process;
}

TEST(ConcurrentCreation, GivesEachTemplateANumberOfItsOwn) {
    const int rounds = std::getenv("VICENTER_LONG") != nullptr ? 50 : 3;
    constexpr int kPrograms = 6;
    test::TestFolder folder;
    const std::string set = test::CopySet(folder);
    const auto count = [&] {
        const ado::ConnectionRef connection = ado::OpenConnection(FileConnectString(set));
        const ado::RecordsetRef numbers =
            connection->Execute("select count(*) as n, count(distinct FID) as ids from t_VchTemplate");
        EXPECT_EQ(numbers->Value("n").ToInt32(), numbers->Value("ids").ToInt32());
        return numbers->Value("n").ToInt32();
    };
    const int before = count();
    for (int round = 0; round < rounds; ++round) {
        std::vector<pid_t> processes;
        for (int i = 0; i < kPrograms; ++i)
            processes.push_back(StartNew(set));
        for (const pid_t process : processes) {
            int status = 0;
            EXPECT_EQ(process, waitpid(process, &status, 0));
            EXPECT_TRUE(WIFEXITED(status));
        }
    }
    EXPECT_EQ(count(), before + rounds * kPrograms);
}

}  // namespace
}  // namespace vicenter::host
