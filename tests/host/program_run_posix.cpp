#include <csignal>
#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>

#include "tests/host/program_run.h"

extern char** environ;  // NOLINT: POSIX declares it so

namespace vicenter::host::test {

const char* const kTemporaryFolderVariable = "TMPDIR";

RunningProgram::RunningProgram(const std::string& program, const std::vector<std::string>& arguments,
                               const std::string& input, const std::string& output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, input.empty() ? "/dev/null" : input.c_str(), O_RDONLY, 0);
    const std::string said = output.empty() ? "/dev/null" : output;
    posix_spawn_file_actions_addopen(&actions, 1, said.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), program);
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_t pid = 0;
    EXPECT_EQ(0, posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ));
    posix_spawn_file_actions_destroy(&actions);
    process_ = pid;
}

RunningProgram::RunningProgram(RunningProgram&& other) noexcept
    : process_(std::exchange(other.process_, 0)), waited_(std::exchange(other.waited_, true)) {}

RunningProgram::~RunningProgram() {
    if (waited_) return;
    Kill();
    Wait();
}

bool RunningProgram::Runs() {
    siginfo_t ended{};  // looked at, not taken: Wait() takes it
    return !waited_ && waitid(P_PID, static_cast<id_t>(process_), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           ended.si_pid == 0;
}

void RunningProgram::Kill() {
    kill(static_cast<pid_t>(process_), SIGKILL);
}

HowItEnded RunningProgram::Wait() {
    int status = 0;
    EXPECT_EQ(process_, waitpid(static_cast<pid_t>(process_), &status, 0));
    waited_ = true;
    if (WIFEXITED(status)) return {WEXITSTATUS(status), false};
    return {-1, WIFSIGNALED(status)};
}

void SetVariable(const std::string& name, const std::string& value) {
    setenv(name.c_str(), value.c_str(), 1);
}

void RemoveVariable(const std::string& name) {
    unsetenv(name.c_str());
}

}  // namespace vicenter::host::test
