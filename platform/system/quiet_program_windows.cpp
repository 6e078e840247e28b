#include <array>

#include "platform/system/files.h"
#include "platform/system/os.h"
#include "platform/system/path_in.h"
#include "platform/system/quiet_program.h"
#include "platform/system/windows_handle.h"
#include "platform/system/windows_text.h"

namespace vicenter::system {

namespace {

using os::Handle;

// For what a program says: of a pipe one could not see the end, as long as anything it has started holds it.
HANDLE NewTemporaryFile(SECURITY_ATTRIBUTES& inherited) {
    std::array<wchar_t, MAX_PATH + 1> folder{};
    std::array<wchar_t, MAX_PATH + 1> name{};
    if (GetTempPathW(static_cast<DWORD>(folder.size()), folder.data()) == 0 ||
        GetTempFileNameW(folder.data(), L"vic", 0, name.data()) == 0)
        return INVALID_HANDLE_VALUE;
    return CreateFileW(name.data(), GENERIC_READ | GENERIC_WRITE,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inherited, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
}

std::string ReadWhole(HANDLE file) {
    std::string text;
    std::array<char, 4096> bytes{};
    DWORD count = 0;
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    while (ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) && count > 0)
        text.append(bytes.data(), count);
    return text;
}

}  // namespace

std::optional<QuietRun> RunQuietly(const std::string& name, const std::vector<std::string>& arguments) {
    const std::string program = PathToUtf8(PathIn(PathFromUtf8(os::ProgramFolder()), name));
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), program);
    std::wstring line = os::CommandLine(words);
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const Handle said(NewTemporaryFile(inherited));
    const Handle nothing(CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                     &inherited, OPEN_EXISTING, 0, nullptr));
    STARTUPINFOW how{};
    how.cb = sizeof how;
    how.dwFlags = STARTF_USESTDHANDLES;
    how.hStdInput = nothing.Get();
    how.hStdOutput = nothing.Get();
    how.hStdError = said.Get();
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(os::WidePath(program).c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW,
                        nullptr, nullptr, &how, &started))
        return std::nullopt;
    CloseHandle(started.hThread);
    const Handle process(started.hProcess);
    AllowSetForegroundWindow(started.dwProcessId);
    WaitForSingleObject(process.Get(), INFINITE);
    QuietRun run;
    run.said = ReadWhole(said.Get());
    DWORD code = 1;
    GetExitCodeProcess(process.Get(), &code);
    run.code = static_cast<int>(code);
    return run;
}

void ShowProblem(const std::string& title, const std::string& text) {
    MessageBoxW(nullptr, os::Wide(text).c_str(), os::Wide(title).c_str(), MB_OK | MB_ICONERROR);
}

}  // namespace vicenter::system
