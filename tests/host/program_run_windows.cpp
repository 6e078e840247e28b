#include <utility>

#include <gtest/gtest.h>

#include "platform/system/windows_text.h"
#include "tests/host/program_run.h"

namespace vicenter::host::test {

namespace {

// Nothing that the program itself ends with.
constexpr DWORD kKilled = 0xDEAD;

HANDLE Inherited(const std::string& file, DWORD access) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const DWORD way = access == GENERIC_WRITE && !file.empty() ? CREATE_ALWAYS : OPEN_EXISTING;
    return CreateFileW(file.empty() ? L"NUL" : system::os::WidePath(file).c_str(), access,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited, way, 0, nullptr);
}

}  // namespace

const char* const kTemporaryFolderVariable = "TMP";

RunningProgram::RunningProgram(const std::string& program, const std::vector<std::string>& arguments,
                               const std::string& input, const std::string& output) {
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), program);
    std::wstring line = system::os::CommandLine(words);
    STARTUPINFOW how{};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESTDHANDLES;
    how.hStdInput = Inherited(input, GENERIC_READ);
    how.hStdOutput = Inherited(output, GENERIC_WRITE);
    how.hStdError = how.hStdOutput;
    PROCESS_INFORMATION started{};
    EXPECT_TRUE(CreateProcessW(system::os::WidePath(program).c_str(), line.data(), nullptr, nullptr, TRUE, 0,
                               nullptr, nullptr, &how, &started))
        << program << ": error " << GetLastError();
    CloseHandle(how.hStdInput);
    CloseHandle(how.hStdOutput);
    process_ = reinterpret_cast<std::intptr_t>(started.hProcess);
    waited_ = process_ == 0;
    if (!waited_) CloseHandle(started.hThread);
}

RunningProgram::RunningProgram(RunningProgram&& other) noexcept
    : process_(std::exchange(other.process_, 0)), waited_(std::exchange(other.waited_, true)) {}

RunningProgram::~RunningProgram() {
    if (waited_) return;
    Kill();
    Wait();
}

bool RunningProgram::Runs() {
    return !waited_ && WaitForSingleObject(reinterpret_cast<HANDLE>(process_), 0) == WAIT_TIMEOUT;
}

void RunningProgram::Kill() {
    TerminateProcess(reinterpret_cast<HANDLE>(process_), kKilled);
}

HowItEnded RunningProgram::Wait() {
    if (process_ == 0) return {-1, false};  // it has not begun
    const auto process = reinterpret_cast<HANDLE>(process_);
    DWORD code = 0;
    EXPECT_EQ(WaitForSingleObject(process, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(process, &code));
    CloseHandle(process);
    waited_ = true;
    if (code == kKilled) return {-1, true};
    return {static_cast<int>(code), false};
}

void SetVariable(const std::string& name, const std::string& value) {
    SetEnvironmentVariableW(system::os::Wide(name).c_str(), system::os::Wide(value).c_str());
}

void RemoveVariable(const std::string& name) {
    SetEnvironmentVariableW(system::os::Wide(name).c_str(), nullptr);
}

}  // namespace vicenter::host::test
