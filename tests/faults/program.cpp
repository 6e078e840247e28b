#include "tests/faults/program.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace vicenter::faults {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kLongestRun{120};
constexpr std::chrono::seconds kLongestWork{60};  // on a processor
constexpr unsigned kUsualSeed = 20261122;

// What a process has come to: the time that its threads have had of a processor, and whether it waits for a
// disk.
struct Progress {
    std::chrono::nanoseconds work{0};
    bool waitsForDisk = false;
};

Progress ProgressOf(pid_t process) {
    Progress progress;
    const fs::path about = "/proc/" + std::to_string(process);
    std::error_code ended;
    for (const auto& thread : fs::directory_iterator(about / "task", ended)) {
        std::ifstream schedule(thread.path() / "schedstat");
        long long nanoseconds = 0;
        if (schedule >> nanoseconds) progress.work += std::chrono::nanoseconds(nanoseconds);
        std::ifstream stat(thread.path() / "stat");
        const std::string line{std::istreambuf_iterator<char>(stat), {}};
        const std::size_t name = line.rfind(')');
        if (name != std::string::npos && line.compare(name, 3, ") D") == 0) progress.waitsForDisk = true;
    }
    return progress;
}

void TakeReport(const std::string& report, Outcome& outcome) {
    std::istringstream lines(report);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("fired ")) {
            outcome.fired = line.substr(6);
        } else if (const std::size_t blank = line.find(' '); blank != std::string::npos) {
            outcome.counts[line.substr(0, blank)] = std::atol(line.c_str() + blank);
        }
    }
}

pid_t Spawn(const Call& call, std::vector<std::string> environment, const std::string& output,
            const std::string& errors) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const std::string input = call.input.empty() ? "/dev/null" : call.input;
    posix_spawn_file_actions_addopen(&actions, 0, input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    std::vector<std::string> arguments = {VICENTER_PROGRAM};
    arguments.insert(arguments.end(), call.arguments.begin(), call.arguments.end());
    const auto pointers = [](std::vector<std::string>& texts) {
        std::vector<char*> result;
        for (std::string& text : texts)
            result.push_back(text.data());
        result.push_back(nullptr);
        return result;
    };
    pid_t pid = -1;
    EXPECT_EQ(0, posix_spawn(&pid, VICENTER_PROGRAM, &actions, nullptr, pointers(arguments).data(),
                             pointers(environment).data()));
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

// This process's own environment, but for what decides where the program works.
std::vector<std::string> Surroundings(const fs::path& work) {
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string name = text.substr(0, text.find('='));
        if (name == "HOME" || name == "TMPDIR" || name == "LD_PRELOAD" || name.starts_with("XDG_") ||
            name.starts_with("VICENTER_FAULT"))
            continue;
        result.push_back(text);
    }
    result.push_back("HOME=" + (work / "home").string());
    result.push_back("XDG_DATA_HOME=" + (work / "home").string());
    result.push_back("XDG_CONFIG_HOME=" + (work / "home").string());
    result.push_back("XDG_CACHE_HOME=" + (work / "home").string());
    result.push_back("TMPDIR=" + (work / "tmp").string());
    return result;
}

}  // namespace

std::string Fault::Plan() const {
    return classes + "," + std::to_string(n) + "," + action + "," + std::to_string(code);
}

std::string Outcome::Ended() const {
    if (timedOut) return "hung";
    if (signal != 0) return "signal " + std::to_string(signal);
    return "exit code " + std::to_string(exitCode);
}

Workshop::Workshop() {
    std::string pattern = (fs::temp_directory_path() / "vicenter-faults-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
    root_ = fs::canonical(pattern);
    work_ = root_ / "work";
    side_ = root_ / "side";
    fs::create_directories(side_);
    Clear();
}

Workshop::~Workshop() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

void Workshop::Clear() const {
    fs::remove_all(work_);
    fs::create_directories(work_ / "home");
    fs::create_directories(work_ / "tmp");
}

std::vector<std::string> Workshop::Listing() const {
    std::vector<std::string> result;
    for (const auto& entry : fs::recursive_directory_iterator(work_))
        result.push_back(entry.path().lexically_relative(work_).string() + (entry.is_directory() ? "/" : ""));
    std::sort(result.begin(), result.end());
    return result;
}

Outcome Workshop::Run(const Call& call, const Fault& fault) const {
    const std::string output = Kept("output").string();
    const std::string errors = Kept("errors").string();
    const std::string report = Kept("report").string();
    fs::remove(report);
    std::vector<std::string> environment = Surroundings(work_);
    environment.insert(environment.end(), call.environment.begin(), call.environment.end());
    environment.push_back(std::string("LD_PRELOAD=") + VICENTER_FAULT_SHIM);
    environment.push_back("VICENTER_FAULT_FOLDER=" + work_.string());
    environment.push_back("VICENTER_FAULT_REPORT=" + report);
    if (!fault.classes.empty()) environment.push_back("VICENTER_FAULT=" + fault.Plan());

    const auto start = std::chrono::steady_clock::now();
    const End end = WaitFor(Spawn(call, std::move(environment), output, errors), kLongestRun);
    Outcome outcome;
    outcome.took =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    outcome.timedOut = end.timedOut;
    outcome.signal = end.signal;
    outcome.exitCode = end.exitCode;
    outcome.output = ReadFile(output);
    outcome.errors = ReadFile(errors);
    TakeReport(ReadFile(report), outcome);
    return outcome;
}

pid_t Workshop::Start(const Call& call, const std::string& outputFile) const {
    std::vector<std::string> environment = Surroundings(work_);
    environment.insert(environment.end(), call.environment.begin(), call.environment.end());
    return Spawn(call, std::move(environment), outputFile,
                 outputFile == "/dev/null" ? outputFile : outputFile + ".errors");
}

End WaitFor(pid_t child, std::chrono::milliseconds limit) {
    End end;
    const int watch = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    pollfd ready{watch, POLLIN, 0};
    Progress before = ProgressOf(child);
    // Where others keep the processors or the disk busy a run takes long; what hangs does nothing any more,
    // or the same for ever.
    while (poll(&ready, 1, static_cast<int>(limit.count())) == 0) {
        const Progress now = ProgressOf(child);
        const bool works = now.waitsForDisk || now.work != before.work;
        if (works && now.work < kLongestWork) {
            before = now;
            continue;
        }
        end.timedOut = true;
        kill(child, SIGKILL);
        break;
    }
    close(watch);
    int status = 0;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    if (WIFSIGNALED(status)) end.signal = WTERMSIG(status);
    if (WIFEXITED(status)) end.exitCode = WEXITSTATUS(status);
    return end;
}

std::string ReadFile(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void WriteFile(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
}

bool WholeDrill() {
    const char* value = std::getenv("VICENTER_LONG");
    return value != nullptr && *value != 0 && std::string(value) != "0";
}

unsigned Seed() {
    const char* value = std::getenv("VICENTER_SEED");
    return value != nullptr ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : kUsualSeed;
}

}  // namespace vicenter::faults
