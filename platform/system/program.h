#pragma once

// What a program takes from whoever started it, in UTF-8 on every system: arguments, variables, the standard
// streams.

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vicenter::system {

// Without the program's own name. Takes what main() was given; Windows has it in its own form as well.
std::vector<std::string> ProgramArguments(int count, char** arguments);

// A variable of the environment; nothing when there is none of that name.
std::optional<std::string> EnvironmentVariable(const std::string& name);

// The standard streams carry bytes as they stand, and UTF-8 to and from a console. For the length of main();
// to be made before the first use of a stream.
class StandardStreams {
  public:
    StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;
    ~StandardStreams();

  private:
    class Consoles;
    std::unique_ptr<Consoles> consoles_;
};

}  // namespace vicenter::system
