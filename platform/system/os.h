#pragma once

// The few calls that differ between operating systems; one source a system (os_posix.cpp). Not for callers
// outside this folder: they go through Surroundings.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vicenter::system::os {

std::int32_t ProcessId();
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

// Address space, in multiples of 64 KiB, that becomes memory page by page as it is written to; nullptr when
// there is none or the system has no such service.
void* MapMemory(std::size_t bytes);
// The same memory under more address space, perhaps elsewhere; nullptr leaves everything as it was.
void* RemapMemory(void* memory, std::size_t bytes, std::size_t newBytes);
// Gives memory back and keeps its address space; the content is gone.
void DiscardMemory(void* memory, std::size_t bytes);
void UnmapMemory(void* memory, std::size_t bytes);

}  // namespace vicenter::system::os
