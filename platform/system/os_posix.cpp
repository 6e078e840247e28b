#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <pwd.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/system/files.h"
#include "platform/system/os.h"

extern char** environ;  // NOLINT: POSIX declares it so

namespace vicenter::system::os {

namespace {

std::optional<std::string> FindOnPath(const std::string& program) {
    if (program.find('/') != std::string::npos) {
        return access(program.c_str(), X_OK) == 0 ? std::optional(program) : std::nullopt;
    }
    const char* path = std::getenv("PATH");
    std::string_view rest = path != nullptr ? path : "/usr/bin:/bin";
    while (!rest.empty()) {
        const std::size_t colon = rest.find(':');
        const std::string candidate = std::string(rest.substr(0, colon)) + "/" + program;
        if (access(candidate.c_str(), X_OK) == 0) return candidate;
        if (colon == std::string_view::npos) break;
        rest.remove_prefix(colon + 1);
    }
    return std::nullopt;
}

constexpr std::size_t kRoomForPasswordEntry = 16384;

std::string HomeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
    // A timer's job may have no environment. The temporary folder is everybody's; the user's own is known.
    std::vector<char> room(kRoomForPasswordEntry);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, room.data(), room.size(), &found) != 0 || found == nullptr) return {};
    std::error_code failed;
    return std::filesystem::is_directory(found->pw_dir, failed) ? found->pw_dir : std::string();
}

}  // namespace

std::int32_t ProcessId() {
    return static_cast<std::int32_t>(getpid());
}

std::string ProcessMark(std::int32_t processId) {
    if (processId <= 0) return {};
    std::ifstream stat("/proc/" + std::to_string(processId) + "/stat");
    const std::string line{std::istreambuf_iterator<char>(stat), std::istreambuf_iterator<char>()};
    // The name stands in brackets and may hold anything; the start time is the 20th word behind it, and the
    // first tells a process that has ended and waits to be asked for.
    const std::size_t name = line.rfind(')');
    if (name == std::string::npos) return {};
    std::istringstream words(line.substr(name + 1));
    std::string word;
    for (int i = 0; i < 20 && words >> word; ++i) {
        if (i == 0 && (word == "Z" || word == "X")) return {};
    }
    return word;
}

bool StartProgram(const std::string& program, const std::vector<std::string>& arguments) {
    const auto found = FindOnPath(program);
    if (!found) return false;
    // The shell leaves at once and hands its child to init: nothing stays behind to be waited for.
    std::vector<std::string> line{"/bin/sh", "-c", "\"$0\" \"$@\" </dev/null >/dev/null 2>&1 &", *found};
    line.insert(line.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    pointers.reserve(line.size() + 1);
    for (std::string& word : line)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawn(&child, "/bin/sh", nullptr, nullptr, pointers.data(), environ) != 0) return false;
    int status = 0;
    return waitpid(child, &status, 0) == child && status == 0;
}

bool OpenWithDesktop(const std::string& path) {
    for (const char* opener : {"xdg-open", "gio", "sensible-browser"}) {
        std::vector<std::string> arguments{path};
        if (std::string_view(opener) == "gio") arguments.insert(arguments.begin(), "open");
        if (StartProgram(opener, arguments)) return true;
    }
    return false;
}

std::optional<std::vector<unsigned char>> RandomBytes() {
    std::vector<unsigned char> bytes(16);
    if (getentropy(bytes.data(), bytes.size()) != 0) return std::nullopt;
    return bytes;
}

std::string UserDataFolder() {
    if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data == '/') return data;
    if (const std::string home = HomeFolder(); !home.empty()) return home + "/.local/share";
    std::error_code failed;
    const auto temporary = std::filesystem::temp_directory_path(failed);
    return failed ? std::string("/tmp") : PathToUtf8(temporary);
}

std::string ProgramFolder() {
    // The library or program that holds this very function.
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&ProcessId), &info) != 0 && info.dli_fname != nullptr) {
        std::error_code error;
        const auto path = std::filesystem::canonical(info.dli_fname, error);
        if (!error) return PathToUtf8(path.parent_path());
    }
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::string(".") : PathToUtf8(path.parent_path());
}

void StayLoaded() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&ProcessId), &info) != 0 && info.dli_fname != nullptr)
        dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

std::size_t BlockSize(void* block) {
    return malloc_usable_size(block);
}

std::error_code CopyContent(const std::string& from, const std::string& to) {
    constexpr mode_t kUsual = 0666;
    const auto failure = [] { return std::error_code(errno, std::generic_category()); };
    const int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (source < 0) return failure();
    const int target = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kUsual);
    std::error_code failed = target < 0 ? failure() : std::error_code();
    std::vector<char> buffer(256U << 10);
    ssize_t count = 0;
    while (!failed && (count = read(source, buffer.data(), buffer.size())) > 0) {
        for (ssize_t done = 0; !failed && done < count;) {
            const ssize_t written =
                write(target, buffer.data() + done, static_cast<std::size_t>(count - done));
            if (written < 0) failed = failure();
            done += written;
        }
    }
    if (!failed && count < 0) failed = failure();
    close(source);
    if (target >= 0 && close(target) != 0 && !failed) failed = failure();
    return failed;
}

bool Append(const std::string& path, std::string_view bytes) {
    constexpr mode_t kUsual = 0666;
    const int handle = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, kUsual);
    if (handle < 0) return false;
    // In one piece: a second one might find something between.
    const bool whole = write(handle, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    return close(handle) == 0 && whole;
}

bool SyncFile(const std::string& path) {
    const int handle = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle < 0) return false;
    // A file system without syncing says so; everything else means that data may be lost.
    const bool good = fsync(handle) == 0 || errno == EINVAL || errno == ENOTSUP;
    return close(handle) == 0 && good;
}

void SyncFolder(const std::string& path) {
    const int handle = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0) return;
    fsync(handle);
    close(handle);
}

std::error_code MoveOver(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0 ? std::error_code()
                                                      : std::error_code(errno, std::generic_category());
}

std::error_code MoveToNew(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
    if (errno != EINVAL && errno != ENOSYS) return {errno, std::generic_category()};
    // A file system that does not know the flag: a second name is refused where one stands.
    if (link(from.c_str(), to.c_str()) == 0) {
        unlink(from.c_str());
        return {};
    }
    return {errno, std::generic_category()};
}

std::vector<std::string> NamesIn(const std::string& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> open(opendir(folder.c_str()), closedir);
    std::vector<std::string> names;
    if (!open) return names;
    while (const dirent* entry = readdir(open.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") names.emplace_back(name);
    }
    return names;
}

bool MayMakeFilesIn(const std::string& folder) {
    return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ||
           (errno != EACCES && errno != EROFS);
}

bool IsNameOfDevice(const std::string& /*path*/) {
    return false;  // devices are files, and known as what they are
}

bool IsOpenInThisProcess(const std::string& path) {
    struct stat wanted {};
    if (stat(path.c_str(), &wanted) != 0) return false;
    for (const std::string& handle : NamesIn("/proc/self/fd")) {
        struct stat open {};
        if (stat(("/proc/self/fd/" + handle).c_str(), &open) == 0 && open.st_dev == wanted.st_dev &&
            open.st_ino == wanted.st_ino) {
            return true;
        }
    }
    return false;
}

std::unique_ptr<HeldFile> HeldFile::Make(const std::string& path) {
    constexpr mode_t kOwnerOnly = 0600;
    const int handle = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, kOwnerOnly);
    if (handle < 0) return nullptr;
    struct stat now {};
    // Between the two calls somebody may have tidied it up.
    if (flock(handle, LOCK_EX | LOCK_NB) == 0 && fstat(handle, &now) == 0 && now.st_nlink > 0)
        return std::unique_ptr<HeldFile>(new HeldFile(handle));
    close(handle);
    return nullptr;
}

std::unique_ptr<HeldFile> HeldFile::Take(const std::string& path) {
    const int handle = open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0) return nullptr;
    struct stat now {};
    if (fstat(handle, &now) == 0 && S_ISREG(now.st_mode) && now.st_uid == geteuid() &&
        flock(handle, LOCK_EX | LOCK_NB) == 0) {
        return std::unique_ptr<HeldFile>(new HeldFile(handle));
    }
    close(handle);
    return nullptr;
}

HeldFile::~HeldFile() {
    close(static_cast<int>(handle_));
}

namespace {

std::atomic<void (*)()> onInterruptKey{nullptr};
struct sigaction beforeInterruptKey;  // while a handler is set

}  // namespace

void OnInterruptKey(void (*handler)()) {
    const bool wasSet = onInterruptKey.exchange(handler) != nullptr;
    if (handler == nullptr) {
        if (wasSet) sigaction(SIGINT, &beforeInterruptKey, nullptr);
        return;
    }
    struct sigaction action {};
    action.sa_handler = [](int) {
        if (const auto call = onInterruptKey.load()) call();
    };
    sigemptyset(&action.sa_mask);
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    sigaction(SIGINT, &action, wasSet ? nullptr : &beforeInterruptKey);
}

}  // namespace vicenter::system::os
