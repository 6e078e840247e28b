#pragma once

// A command-line test: a text file that holds commands, their input and the expected output.
//
//     # by hand                comments at the head, kept when the file is rewritten
//     set: demo                demo (the usual), empty, or none (nothing is made beforehand)
//
//     $ --json list            a command on the test's own copy of the set; 'a b' is one argument
//     < {"lines":[]}           lines of its standard input, if any
//     | [{"FID":0,…}]          expected standard output, line by line
//     ! vicenter: …            expected standard error, line by line
//     = 1                      expected exit code, when it is not 0
//     ~ on Babelfish: why      what that server answers otherwise
//
// "$FOLDER" stands for the test's folder, in commands, input and output, "$DEVICE" for the system's null
// device. Times of today are written as <now>. With VICENTER_UPDATE_GOLDENS=1 in the environment the
// expectations are written anew instead of compared.

#include <functional>
#include <string>
#include <vector>

namespace vicenter::host::test {

struct CliStep {
    int line = 0;
    std::string command;
    std::string file;  // then there is no command
    std::vector<std::string> input;
    std::vector<std::string> output;
    std::vector<std::string> errors;
    int exitCode = 0;
    std::string differsOnBabelfish;  // why; such a step runs there and fails where it is to fail

    friend bool operator==(const CliStep&, const CliStep&) = default;
};

struct CliScript {
    std::vector<std::string> head;  // comments and blank lines before the first setting
    std::string set = "demo";
    std::vector<CliStep> steps;
};

CliScript ReadCliScript(const std::string& text);
std::string WriteCliScript(const CliScript& script);

// The arguments of a command: blanks between them, '…' and "…" around those with blanks.
std::vector<std::string> SplitArguments(const std::string& command);

// The options by which a command gets to the account set in a file.
using WayIn = std::function<std::vector<std::string>(const std::string& file)>;

// Runs every step and puts what came out in the place of what was expected; straight at the file without
// another way.
CliScript RunCliScript(const CliScript& script, const WayIn& way = {});
// Every step as expected; name: the script's. Of a server that has errors of its own, but for the steps
// marked.
void ExpectAlike(const CliScript& expected, const CliScript& actual, const std::string& name,
                 bool onBabelfish = false);

}  // namespace vicenter::host::test
