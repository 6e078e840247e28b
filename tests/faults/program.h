#pragma once

// The program under test as a child process, with or without the shim that makes its calls fail.
//
// Every run works in one folder, which holds its home and its folder for temporary files, too; only calls on
// that folder's files are counted and struck. What the runs say is kept in a second folder beside it.

#include <chrono>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

namespace vicenter::faults {

// A strike of the shim, whose source explains the words.
struct Fault {
    std::string classes;
    long n = 0;
    std::string action;
    int code = 0;

    std::string Plan() const;
};

struct Outcome {
    bool timedOut = false;
    int signal = 0;
    int exitCode = -1;
    std::string output;
    std::string errors;
    std::string fired;  // operation and file of the strike; empty when the program did not get so far
    std::map<std::string, long> counts;  // calls by class, after an ordinary end
    std::chrono::milliseconds took{0};

    std::string Said() const { return output + errors; }
    std::string Ended() const;
};

// One start of the program.
struct Call {
    std::vector<std::string> arguments;
    std::string input;  // the file on its standard input; none without
    std::vector<std::string> environment;
};

class Workshop {
  public:
    Workshop();
    Workshop(const Workshop&) = delete;
    Workshop& operator=(const Workshop&) = delete;
    ~Workshop();

    const std::filesystem::path& Folder() const { return work_; }
    std::filesystem::path File(const std::string& name) const { return work_ / name; }
    // Kept from run to run, not watched.
    std::filesystem::path Kept(const std::string& name) const { return side_ / name; }
    // An empty working folder.
    void Clear() const;
    // What stands in it, by its path within; folders end in "/".
    std::vector<std::string> Listing() const;

    Outcome Run(const Call& call, const Fault& fault) const;
    Outcome Run(const Call& call) const { return Run(call, Fault{}); }
    // Without the shim and without being waited for; its errors go to a second file, `.errors`.
    pid_t Start(const Call& call, const std::string& outputFile = "/dev/null") const;

  private:
    std::filesystem::path root_;
    std::filesystem::path work_;
    std::filesystem::path side_;
};

// The status of a child's end; kills it when it has come to nothing more within the limit, or works without
// an end.
struct End {
    bool timedOut = false;
    int signal = 0;
    int exitCode = -1;
};
End WaitFor(pid_t child, std::chrono::milliseconds limit);

std::string ReadFile(const std::filesystem::path& file);
void WriteFile(const std::filesystem::path& file, const std::string& bytes);

// Everything rather than a sample, by VICENTER_LONG=1.
bool WholeDrill();
// VICENTER_SEED, or the usual one.
unsigned Seed();

}  // namespace vicenter::faults
