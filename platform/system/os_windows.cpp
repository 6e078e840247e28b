#include <array>
#include <atomic>
#include <limits>

#include <malloc.h>

#include "platform/system/files.h"
#include "platform/system/os.h"
#include "platform/system/program.h"
#include "platform/system/windows_error.h"
#include "platform/system/windows_handle.h"
#include "platform/system/windows_text.h"

namespace vicenter::system::os {

namespace {

void AppendQuoted(std::wstring& line, const std::wstring& word) {
    if (!line.empty()) line += L' ';
    if (!word.empty() && word.find_first_of(L" \t\n\v\"") == std::wstring::npos) {
        line += word;
        return;
    }
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t c : word) {
        // Backslashes count as such only in front of a quotation mark.
        if (c == L'"') line.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        line += c;
    }
    line.append(backslashes, L'\\');
    line += L'"';
}

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// The program's whole path. A name without a folder is looked for where the system looks for programs.
std::optional<std::wstring> FindProgram(const std::string& program) {
    const std::wstring name = Wide(program);
    std::wstring found(std::numeric_limits<short>::max(), L'\0');
    const DWORD length =
        SearchPathW(nullptr, name.c_str(), L".exe", static_cast<DWORD>(found.size()), found.data(), nullptr);
    if (length == 0 || length > found.size()) return std::nullopt;
    found.resize(length);
    return found;
}

}  // namespace

std::wstring CommandLine(const std::vector<std::string>& words) {
    std::wstring line;
    for (const std::string& word : words)
        AppendQuoted(line, Wide(word));
    return line;
}

std::int32_t ProcessId() {
    return static_cast<std::int32_t>(GetCurrentProcessId());
}

std::string ProcessMark(std::int32_t processId) {
    if (processId == 0) return {};
    const Handle process(
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, static_cast<DWORD>(processId)));
    // One that has ended stays to be asked for as long as anybody holds it.
    if (!process || WaitForSingleObject(process.Get(), 0) != WAIT_TIMEOUT) return {};
    FILETIME begun{};
    FILETIME ended{};
    FILETIME kernel{};
    FILETIME user{};
    if (!GetProcessTimes(process.Get(), &begun, &ended, &kernel, &user)) return {};
    return std::to_string(std::uint64_t{begun.dwHighDateTime} << 32 | begun.dwLowDateTime);
}

bool StartProgram(const std::string& program, const std::vector<std::string>& arguments) {
    const auto found = FindProgram(program);
    if (!found) return false;
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), Narrow(*found));
    std::wstring line = CommandLine(words);
    STARTUPINFOW how{};
    how.cb = sizeof how;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(found->c_str(), line.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                        nullptr, &how, &started))
        return false;
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return true;
}

bool OpenWithDesktop(const std::string& path) {
    constexpr INT_PTR kLastFailure = 32;
    const HINSTANCE result =
        ShellExecuteW(nullptr, L"open", Wide(path).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(result) > kLastFailure;
}

std::optional<std::vector<unsigned char>> RandomBytes() {
    std::vector<unsigned char> bytes(16);
    if (BCryptGenRandom(nullptr, bytes.data(), static_cast<ULONG>(bytes.size()),
                        BCRYPT_USE_SYSTEM_PREFERRED_RNG) != 0)
        return std::nullopt;
    return bytes;
}

std::string UserDataFolder() {
    if (auto folder = EnvironmentVariable("APPDATA"); folder && !folder->empty()) return *folder;
    wchar_t* known = nullptr;
    std::string folder;
    if (SUCCEEDED(SHGetKnownFolderPath(FOLDERID_RoamingAppData, 0, nullptr, &known))) folder = Narrow(known);
    CoTaskMemFree(known);
    if (!folder.empty()) return folder;
    std::error_code failed;
    return PathToUtf8(std::filesystem::temp_directory_path(failed));
}

std::string ProgramFolder() {
    // The library or program that holds this very function.
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ProcessId), &module);
    std::wstring path(std::numeric_limits<short>::max(), L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path.empty() ? std::string(".") : PathToUtf8(std::filesystem::path(path).parent_path());
}

void StayLoaded() {
    // ICU is part of this very library and goes with it.
}

std::size_t BlockSize(void* block) {
    return _msize(block);
}

std::error_code CopyContent(const std::string& from, const std::string& to) {
    const std::wstring target = WidePath(to);
    if (!CopyFileW(WidePath(from).c_str(), target.c_str(), FALSE)) return LastError();
    // The content alone: a copy of what may not be written may be.
    SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_NORMAL);
    return {};
}

bool Append(const std::string& path, std::string_view bytes) {
    const Handle file(CreateFileW(WidePath(path).c_str(), FILE_APPEND_DATA, kShareAll, nullptr, OPEN_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    return file && WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
           written == bytes.size();
}

bool SyncFile(const std::string& path) {
    const Handle file(CreateFileW(WidePath(path).c_str(), GENERIC_READ | GENERIC_WRITE, kShareAll, nullptr,
                                  OPEN_EXISTING, 0, nullptr));
    return file && FlushFileBuffers(file.Get());
}

void SyncFolder(const std::string&) {
    // The moves below return when the names are on the disk.
}

namespace {

std::error_code Move(const std::string& from, const std::string& to, DWORD flags) {
    // Scanners open what has just been written, for a moment.
    constexpr int kTries = 10;
    constexpr DWORD kPauseMilliseconds = 20;
    const std::wstring source = WidePath(from);
    const std::wstring target = WidePath(to);
    for (int i = 1; !MoveFileExW(source.c_str(), target.c_str(), flags | MOVEFILE_WRITE_THROUGH); ++i) {
        const std::error_code failed = LastError();
        const DWORD attributes = GetFileAttributesW(target.c_str());
        const bool kept = attributes != INVALID_FILE_ATTRIBUTES &&
                          (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0;
        if (kept || i == kTries || failed != std::errc::permission_denied) return failed;
        Sleep(kPauseMilliseconds);
    }
    return {};
}

}  // namespace

std::error_code MoveOver(const std::string& from, const std::string& to) {
    return Move(from, to, MOVEFILE_REPLACE_EXISTING);
}

std::error_code MoveToNew(const std::string& from, const std::string& to) {
    return Move(from, to, 0);
}

std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    WIN32_FIND_DATAW entry{};
    const std::wstring pattern = (PathFromUtf8(folder) / L"*").native();
    const HANDLE search = FindFirstFileW(pattern.c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
        const std::wstring_view name = entry.cFileName;
        if (name != L"." && name != L"..") names.push_back(Narrow(name));
    } while (FindNextFileW(search, &entry));
    FindClose(search);
    return names;
}

bool MayMakeFilesIn(const std::string& folder) {
    const Handle opened(CreateFileW(WidePath(folder).c_str(), FILE_ADD_FILE, kShareAll, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return opened || (GetLastError() != ERROR_ACCESS_DENIED && GetLastError() != ERROR_WRITE_PROTECT);
}

bool IsNameOfDevice(const std::string& path) {
    wchar_t whole[MAX_PATH] = {};
    const DWORD length = GetFullPathNameW(Wide(path).c_str(), MAX_PATH, whole, nullptr);
    return length < MAX_PATH && std::wstring_view(whole, length).starts_with(L"\\\\.\\");
}

bool IsOpenInThisProcess(const std::string& path) {
    // Locks belong to the open file here and cannot be lost. But who has a file open, this process or
    // another, keeps it from being moved over unless he has allowed that: an account set's file is held so.
    const Handle file(
        CreateFileW(WidePath(path).c_str(), DELETE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    return !file && GetLastError() == ERROR_SHARING_VIOLATION;
}

namespace {

// Nobody else gets at the content. The name may be removed while the file is held.
HANDLE OpenAlone(const std::string& path, DWORD disposition) {
    return CreateFileW(WidePath(path).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_DELETE, nullptr,
                       disposition, FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

}  // namespace

std::unique_ptr<HeldFile> HeldFile::Make(const std::string& path) {
    const HANDLE handle = OpenAlone(path, CREATE_NEW);
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    return std::unique_ptr<HeldFile>(new HeldFile(reinterpret_cast<std::intptr_t>(handle)));
}

std::unique_ptr<HeldFile> HeldFile::Take(const std::string& path) {
    const HANDLE handle = OpenAlone(path, OPEN_EXISTING);
    if (handle == INVALID_HANDLE_VALUE) return nullptr;
    return std::unique_ptr<HeldFile>(new HeldFile(reinterpret_cast<std::intptr_t>(handle)));
}

HeldFile::~HeldFile() {
    CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

namespace {

std::atomic<void (*)()> onInterruptKey{nullptr};

// On a thread of the system's.
BOOL WINAPI InterruptKeyPressed(DWORD event) {
    if (event != CTRL_C_EVENT) return FALSE;
    const auto call = onInterruptKey.exchange(nullptr);
    if (call == nullptr) return FALSE;  // ends the process
    call();
    return TRUE;
}

}  // namespace

void OnInterruptKey(void (*handler)()) {
    onInterruptKey = handler;
    SetConsoleCtrlHandler(&InterruptKeyPressed, FALSE);
    if (handler != nullptr) SetConsoleCtrlHandler(&InterruptKeyPressed, TRUE);
}

}  // namespace vicenter::system::os
