// Runs a program on the console that this one was started in, its standard streams those of the console:
//   in_console PROGRAM [ARGUMENT...]
// Not every system gives them to a program that is started on a console made by another program.

#include <string>

#include "platform/system/program.h"
#include "platform/system/windows_text.h"

namespace vicenter::host::test {
namespace {

HANDLE OfConsole(const wchar_t* which) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileW(which, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                       OPEN_EXISTING, 0, nullptr);
}

int Run(const std::vector<std::string>& words) {
    constexpr int kNotStarted = 99;
    std::wstring line = system::os::CommandLine(words);
    STARTUPINFOW how{};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESTDHANDLES;
    how.hStdInput = OfConsole(L"CONIN$");
    how.hStdOutput = OfConsole(L"CONOUT$");
    how.hStdError = how.hStdOutput;
    PROCESS_INFORMATION started{};
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &how, &started) ==
        0)
        return kNotStarted;
    WaitForSingleObject(started.hProcess, INFINITE);
    DWORD code = kNotStarted;
    GetExitCodeProcess(started.hProcess, &code);
    return static_cast<int>(code);
}

}  // namespace
}  // namespace vicenter::host::test

int main(int argc, char** argv) {
    return vicenter::host::test::Run(vicenter::system::ProgramArguments(argc, argv));
}
