#include <cstdlib>
#include <filesystem>
#include <string_view>

#include <dlfcn.h>
#include <spawn.h>
#include <sys/mman.h>
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

}  // namespace

std::int32_t ProcessId() {
    return static_cast<std::int32_t>(getpid());
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
    if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data != '\0') return data;
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
        return std::string(home) + "/.local/share";
    }
    return PathToUtf8(std::filesystem::temp_directory_path());
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

void* MapMemory(std::size_t bytes) {
    void* memory =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return memory == MAP_FAILED ? nullptr : memory;
}

void* RemapMemory(void* memory, std::size_t bytes, std::size_t newBytes) {
    void* moved = mremap(memory, bytes, newBytes, MREMAP_MAYMOVE);
    return moved == MAP_FAILED ? nullptr : moved;
}

void DiscardMemory(void* memory, std::size_t bytes) {
    madvise(memory, bytes, MADV_DONTNEED);
}

void UnmapMemory(void* memory, std::size_t bytes) {
    munmap(memory, bytes);
}

}  // namespace vicenter::system::os
