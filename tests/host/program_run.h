#pragma once

// The program in a process of its own, which a test may kill or starve.

#include <cstdint>
#include <string>
#include <vector>

namespace vicenter::host::test {

// How a process ended: by itself with an exit code, or killed.
struct HowItEnded {
    int code = -1;
    bool killed = false;
};

// Killed at the end of the scope at the latest.
class RunningProgram {
  public:
    // Reads that file as its input, nothing without one; what it says goes to another, nowhere without one.
    RunningProgram(const std::string& program, const std::vector<std::string>& arguments,
                   const std::string& input = {}, const std::string& output = {});
    RunningProgram(RunningProgram&& other) noexcept;
    RunningProgram& operator=(RunningProgram&&) = delete;
    ~RunningProgram();

    // Not ended yet.
    bool Runs();
    // Without warning.
    void Kill();
    HowItEnded Wait();

  private:
    std::intptr_t process_;
    bool waited_ = false;
};

// A variable of this process, and of those that it starts.
void SetVariable(const std::string& name, const std::string& value);
void RemoveVariable(const std::string& name);
// The one that names the folder for temporary files.
extern const char* const kTemporaryFolderVariable;

}  // namespace vicenter::host::test
