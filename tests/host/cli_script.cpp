#include "tests/host/cli_script.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string_view>

#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "host/cli/cli.h"
#include "platform/system/surroundings.h"
#include "tests/host/demo_set.h"

namespace vicenter::host::test {

namespace {

constexpr std::string_view kOnBabelfish = "~ on Babelfish: ";
constexpr char kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);
// What can be written to and is no file.
constexpr const char* kDevice = kSeparator == '/' ? "/dev/null" : "NUL";

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// $FOLDER for the folder and slashes in what follows of the path, whose separator the system chooses. A path
// ends at a quotation mark or with its line.
std::string WithFolderAs(const std::string& folder, const std::string& separator, std::string text) {
    for (std::size_t at = text.find(folder); at != std::string::npos; at = text.find(folder, at)) {
        text.replace(at, folder.size(), "$FOLDER");
        const std::size_t end = std::min(text.find_first_of("\"\n", at), text.size());
        text.replace(at, end - at, Replaced(text.substr(at, end - at), separator, "/"));
    }
    return text;
}

// Also as JSON writes a folder with backslashes.
std::string WithoutFolder(const std::string& text, const std::string& folder) {
    const std::string plain = WithFolderAs(folder, std::string(1, kSeparator), text);
    return WithFolderAs(Replaced(folder, "\\", "\\\\"), "\\\\", plain);
}

// Dates of yesterday to tomorrow, whatever zone the clock is asked in.
std::string WithoutNow(std::string text) {
    for (const std::time_t offset : {-1, 0, 1}) {
        const std::time_t moment = std::time(nullptr) + offset * 86'400;
        char day[16];
        std::strftime(day, sizeof day, "%Y-%m-%d", std::gmtime(&moment));
        text = std::regex_replace(text, std::regex(std::string(day) + R"( \d\d:\d\d:\d\d(\.\d{1,3})?)"),
                                  "<now>");
    }
    return text;
}

// The folders of the user's own data lie in the test's folder, too.
class TestFolders : public system::Folders {
  public:
    explicit TestFolders(std::string path) : path_(std::move(path)) {}
    std::string Temporary() override { return path_; }
    std::string UserData() override { return path_ + "/data"; }
    std::string Component() override { return path_; }

  private:
    std::string path_;
};

}  // namespace

std::vector<std::string> SplitArguments(const std::string& command) {
    std::vector<std::string> arguments;
    bool open = false;
    char quote = '\0';
    for (const char c : command) {
        if (quote != '\0') {
            if (c == quote)
                quote = '\0';
            else
                arguments.back() += c;
        } else if (c == ' ') {
            open = false;
        } else {
            if (!open) arguments.emplace_back();
            open = true;
            if (c == '\'' || c == '"')
                quote = c;
            else
                arguments.back() += c;
        }
    }
    return arguments;
}

CliScript ReadCliScript(const std::string& text) {
    CliScript script;
    int number = 0;
    for (const std::string& line : Lines(text)) {
        ++number;
        const std::string rest = line.size() > 2 ? line.substr(2) : std::string();
        if (line.starts_with("set: "))
            script.set = line.substr(5);
        else if (line.starts_with("$ "))
            script.steps.push_back({number, rest, {}, {}, {}, {}, 0, {}});
        else if (line.starts_with("% "))
            script.steps.push_back({number, {}, rest, {}, {}, {}, 0, {}});
        else if (script.steps.empty())
            script.head.push_back(line);
        else if (line.starts_with("<"))
            script.steps.back().input.push_back(rest);
        else if (line.starts_with("|"))
            script.steps.back().output.push_back(rest);
        else if (line.starts_with("!"))
            script.steps.back().errors.push_back(rest);
        else if (line.starts_with("= "))
            script.steps.back().exitCode = std::stoi(rest);
        else if (line.starts_with(kOnBabelfish))
            script.steps.back().differsOnBabelfish = line.substr(kOnBabelfish.size());
        else if (!line.empty())
            ADD_FAILURE() << "line " << number << " is not understood: " << line;
    }
    return script;
}

std::string WriteCliScript(const CliScript& script) {
    std::string text;
    for (const std::string& line : script.head) {
        if (!line.empty()) text += line + "\n";
    }
    text += "set: " + script.set + "\n";
    const auto block = [&text](const char* mark, const std::vector<std::string>& lines) {
        for (const std::string& line : lines)
            text += line.empty() ? std::string(mark) + "\n" : std::string(mark) + " " + line + "\n";
    };
    for (const CliStep& step : script.steps) {
        text += step.file.empty() ? "\n$ " + step.command + "\n" : "\n% " + step.file + "\n";
        block("<", step.input);
        block("|", step.output);
        block("!", step.errors);
        if (step.exitCode != 0) text += "= " + std::to_string(step.exitCode) + "\n";
        if (!step.differsOnBabelfish.empty())
            text += std::string(kOnBabelfish) + step.differsOnBabelfish + "\n";
    }
    return text;
}

CliScript RunCliScript(const CliScript& script, const WayIn& way) {
    TestFolder folder;
    const automation::ClassRegistry::Restore registry;
    system::Surroundings surroundings = system::Surroundings::OfSystem();
    surroundings.folders = std::make_shared<TestFolders>(folder.Path());
    const system::SurroundingsScope scope(surroundings);
    std::vector<std::string> common;
    if (script.set != "none") {
        const std::string file = CopySet(folder, script.set == "demo");
        common = way ? way(file) : std::vector<std::string>{"--account-set", file};
    }

    CliScript result = script;
    for (CliStep& step : result.steps) {
        if (!step.file.empty()) {
            std::ofstream file(system::PathFromUtf8(folder.Path(step.file)), std::ios::binary);
            for (const std::string& line : step.input)
                file << line << "\n";
            continue;
        }
        std::vector<std::string> arguments = common;
        for (const std::string& argument : SplitArguments(step.command))
            arguments.push_back(Replaced(Replaced(argument, "$FOLDER", folder.Path()), "$DEVICE", kDevice));
        std::string input;
        for (const std::string& line : step.input)
            input += Replaced(line, "$FOLDER", folder.Path()) + "\n";
        std::istringstream in(input);
        std::ostringstream out;
        std::ostringstream err;
        step.exitCode = RunCli(arguments, {in, out, err});
        const bool toDevice = step.command.find("$DEVICE") != std::string::npos;
        const auto answer = [&folder, toDevice](const std::ostringstream& said) {
            const std::string text = WithoutNow(WithoutFolder(said.str(), folder.Path()));
            return Lines(toDevice ? Replaced(text, kDevice, "$DEVICE") : text);
        };
        step.output = answer(out);
        step.errors = answer(err);
    }
    return result;
}

void ExpectAlike(const CliScript& expected, const CliScript& actual, const std::string& name,
                 bool onBabelfish) {
    ASSERT_FALSE(expected.steps.empty());
    for (std::size_t i = 0; i < expected.steps.size(); ++i) {
        const CliStep& step = expected.steps[i];
        if (onBabelfish && !step.differsOnBabelfish.empty()) {
            if (step.exitCode != 0) {
                EXPECT_EQ(step.exitCode, actual.steps[i].exitCode);
            }
            continue;
        }
        SCOPED_TRACE(name + ".test:" + std::to_string(step.line) + ": " + step.command);
        EXPECT_EQ(step.output, actual.steps[i].output);
        EXPECT_EQ(step.errors, actual.steps[i].errors);
        EXPECT_EQ(step.exitCode, actual.steps[i].exitCode);
    }
}

}  // namespace vicenter::host::test
