#pragma once

// The few calls that differ between operating systems; one source a system (os_posix.cpp,
// os_windows.cpp). Not for callers
// outside this folder: they go through Surroundings.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace vicenter::system::os {

std::int32_t ProcessId();
// What a running process has to itself as long as it runs; empty when there is no such process.
std::string ProcessMark(std::int32_t processId);
// Starts a program without waiting for it; false when it is not found. Arguments without the program's own
// name.
bool StartProgram(const std::string& program, const std::vector<std::string>& arguments);
// Opens a document with the program that the desktop has for it; false when there is none.
bool OpenWithDesktop(const std::string& path);
// 16 bytes from the system's random source; nothing when it fails.
std::optional<std::vector<unsigned char>> RandomBytes();
std::string UserDataFolder();
// The folder of the running program.
std::string ProgramFolder();

// The names of what stands in a folder, without "." and ".."; none when it cannot be read.
std::vector<std::string> NamesIn(const std::string& folder);
// Copies a file's content into a new file. The library's own copying tells a full disk as a failing one.
std::error_code CopyContent(const std::string& from, const std::string& to);
// Adds to the end of a file, which is made when it is not there; what others add meanwhile stands before it
// or behind. False when not all of it could be written.
bool Append(const std::string& path, std::string_view bytes);
// What was written to the file is on the disk afterwards. False when it cannot be brought there.
bool SyncFile(const std::string& path);
// The names of a folder are on the disk afterwards, as far as its file system does that at all.
void SyncFolder(const std::string& path);
// Moves a file to another name of the same folder, over what is there, in one step.
std::error_code MoveOver(const std::string& from, const std::string& to);
// The same, refused with file_exists when something is there.
std::error_code MoveToNew(const std::string& from, const std::string& to);
// This process may make files in that folder, as far as can be told.
bool MayMakeFilesIn(const std::string& folder);
// The name is a device's wherever it stands, as NUL and CON are on Windows.
bool IsNameOfDevice(const std::string& path);
// This process has the file open, by whatever name. Opening and closing it once more may then cost the locks
// that it holds. On Windows: anybody has it open who keeps it from being replaced.
bool IsOpenInThisProcess(const std::string& path);

// A file that one process holds: nobody else can take it until it is let go or its holder has ended, however
// that came.
class HeldFile {
  public:
    // Makes the file. Nothing when it is there already or cannot be made.
    static std::unique_ptr<HeldFile> Make(const std::string& path);
    // Nothing when somebody holds it or it is not there.
    static std::unique_ptr<HeldFile> Take(const std::string& path);
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;
    ~HeldFile();

  private:
    explicit HeldFile(std::intptr_t handle) : handle_(handle) {}
    std::intptr_t handle_;
};

// The library that holds this code is never unloaded: somebody keeps addresses of its functions.
void StayLoaded();
// How many bytes a block of malloc has.
std::size_t BlockSize(void* block);

// The next Ctrl+C calls the handler instead of ending the process, in the handler of a signal or on a thread
// of the system's; the one behind it ends the process. No handler puts things back.
void OnInterruptKey(void (*handler)());

}  // namespace vicenter::system::os
