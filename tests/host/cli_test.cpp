// Runs tests/host/cli/*.test, and sees to it that every command and option is in one of them.

#include "host/cli/cli.h"

#include <cstdlib>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "platform/system/files.h"
#include "tests/host/cli_script.h"
#include "tests/paths/source_folder.h"

namespace vicenter::host {
namespace {

const std::filesystem::path& Folder() {
    static const std::filesystem::path folder = testing_paths::SourceFolder() / "tests" / "host" / "cli";
    return folder;
}

std::vector<std::string> ScriptNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Folder())) {
        if (entry.path().extension() == ".test") names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string Help(const std::vector<std::string>& arguments) {
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(kExitDone, RunCli(arguments, {in, out, err}));
    return out.str();
}

class CommandLine : public testing::TestWithParam<std::string> {};

TEST_P(CommandLine, AnswersAsExpected) {
    const std::filesystem::path path = Folder() / (GetParam() + ".test");
    const test::CliScript expected = test::ReadCliScript(ReadFile(path));
    const test::CliScript actual = test::RunCliScript(expected);
    if (std::getenv("VICENTER_UPDATE_GOLDENS") != nullptr) {
        std::ofstream(path, std::ios::binary) << test::WriteCliScript(actual);
        return;
    }
    test::ExpectAlike(expected, actual, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Scripts, CommandLine, testing::ValuesIn(ScriptNames()),
                         [](const auto& script) { return script.param; });

// Adds the command's options and what stands below it, as its own help names them.
void AddWordsOf(std::vector<std::string> command, std::set<std::string>& words) {
    command.emplace_back("--help");
    const std::string help = Help(command);
    command.pop_back();
    const std::regex option(R"(--[a-z][a-z-]*)");
    for (std::sregex_iterator at(help.begin(), help.end(), option), end; at != end; ++at)
        words.insert(at->str());
    // Subcommands stand at the beginning of their lines.
    const std::regex subcommand(R"(\n  ([a-z][a-z-]*) )");
    for (std::sregex_iterator at(help.begin(), help.end(), subcommand), end; at != end; ++at) {
        words.insert((*at)[1].str());
        command.push_back((*at)[1].str());
        AddWordsOf(command, words);
        command.pop_back();
    }
}

std::set<std::string> CommandsAndOptions() {
    std::set<std::string> words;
    AddWordsOf({}, words);
    return words;
}

TEST(CommandLineTests, CoverEveryCommandAndOption) {
    std::string scripts;
    for (const std::string& name : ScriptNames()) {
        for (const test::CliStep& step : test::ReadCliScript(ReadFile(Folder() / (name + ".test"))).steps)
            scripts += " " + step.command + " ";
    }
    std::set<std::string> words = CommandsAndOptions();
    words.erase("--account-set");  // given to every command of the scripts
    words.erase("--version");      // below: its answer changes with every release
    EXPECT_GT(words.size(), 60U);
    for (const std::string& word : words)
        EXPECT_NE(std::string::npos, scripts.find(" " + word + " ")) << word << " has no test";
}

TEST(CommandLineTests, TellTheVersion) {
    EXPECT_EQ(Help({"--version"}), "vicenter " VICENTER_VERSION "\n");
}

TEST(CommandLineDocs, NameEveryCommandAndOption) {
    const std::filesystem::path root = testing_paths::SourceFolder();
    const std::string page = ReadFile(root / "docs" / "command-line.md");
    // troff writes a hyphen that is typed as such with a backslash.
    const std::string manual =
        std::regex_replace(ReadFile(root / "packaging" / "vicenter.1"), std::regex(R"(\\-)"), "-");
    for (const std::string& word : CommandsAndOptions()) {
        const std::regex whole("(^|[^a-z-])" + word + "($|[^a-z-])");
        EXPECT_TRUE(std::regex_search(page, whole)) << word << " is not in docs/command-line.md";
        EXPECT_TRUE(std::regex_search(manual, whole)) << word << " is not in packaging/vicenter.1";
    }
    EXPECT_NE(std::string::npos, manual.find("\"vicenter " VICENTER_VERSION "\"")) << "another version";
}

}  // namespace
}  // namespace vicenter::host
