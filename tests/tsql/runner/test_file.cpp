#include "runner/test_file.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace vicenter::tsql_test {
namespace {

std::string Trimmed(const std::string& text) {
    const std::size_t from = text.find_first_not_of(" \t\r");
    if (from == std::string::npos) return {};
    return text.substr(from, text.find_last_not_of(" \t\r") + 1 - from);
}

bool IsGo(const std::string& line) {
    const std::string word = Trimmed(line);
    return word == "go" || word == "GO" || word == "Go";
}

bool StartsStep(const std::string& line) {
    return line == "batch" || line.starts_with("error ");
}

[[noreturn]] void Refuse(std::size_t line, const std::string& why) {
    throw std::runtime_error("line " + std::to_string(line) + ": " + why);
}

std::vector<std::string> Lines(const std::string& content) {
    std::vector<std::string> lines;
    std::istringstream stream(content);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> SplitCommas(const std::string& text) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');) {
        if (!Trimmed(part).empty()) parts.push_back(Trimmed(part));
    }
    return parts;
}

// "Babelfish: why"
std::pair<std::string, std::string> ServerAndWhy(const std::string& text) {
    const std::size_t colon = text.find(": ");
    if (colon == std::string::npos) throw std::runtime_error("a server and a reason expected: " + text);
    return {text.substr(0, colon), text.substr(colon + 2)};
}

void ReadComment(TestFile& file, const std::string& line) {
    const auto value = [&](const std::string& key) {
        return line.starts_with(key) ? Trimmed(line.substr(key.size())) : std::string();
    };
    if (const std::string name = value("# name:"); !name.empty()) file.name = name;
    if (const std::string script = value("# setup:"); !script.empty()) file.setup.push_back(script);
    if (const std::string why = value("# differs:"); !why.empty()) file.differs = why;
    if (const std::string named = value("# differs on "); !named.empty())
        file.differsOn.insert(ServerAndWhy(named));
    for (const std::string& topic : SplitCommas(value("# covers:")))
        file.covers.push_back(topic);
}

constexpr std::string_view kOverOdbc = "---- over ODBC:";
constexpr std::string_view kOnServer = "---- on ";

void DropBlankEnd(std::vector<std::string>& lines) {
    while (!lines.empty() && Trimmed(lines.back()).empty())
        lines.pop_back();
}

void ReadErrorHead(Step& step, const std::string& line) {
    std::istringstream words(line);
    std::string word;
    std::int32_t number = 0;
    words >> word >> number;
    step.errorNumber = number;
    int errorLine = 0;
    if (words >> word >> errorLine && word == "line") step.errorLine = errorLine;
}

}  // namespace

std::vector<std::string> SplitScript(const std::string& script) {
    std::vector<std::string> batches;
    std::string batch;
    for (const std::string& line : Lines(script)) {
        if (!IsGo(line)) {
            batch += line + "\n";
            continue;
        }
        if (batch.find_first_not_of(" \t\r\n") != std::string::npos) batches.push_back(batch);
        batch.clear();
    }
    if (batch.find_first_not_of(" \t\r\n") != std::string::npos) batches.push_back(batch);
    return batches;
}

TestFile ParseTestFile(const std::string& content) {
    TestFile file;
    const std::vector<std::string> lines = Lines(content);
    std::size_t at = 0;
    for (; at < lines.size() && (lines[at].empty() || lines[at][0] == '#'); ++at)
        ReadComment(file, lines[at]);
    if (file.name.empty()) Refuse(1, "the first line must be \"# name: …\"");
    while (at < lines.size()) {
        if (Trimmed(lines[at]).empty() || lines[at][0] == '#') {
            ++at;
            continue;
        }
        if (!StartsStep(lines[at])) Refuse(at + 1, "\"batch\" or \"error N\" expected: " + lines[at]);
        Step step;
        step.line = static_cast<int>(at + 1);
        if (lines[at] != "batch") ReadErrorHead(step, lines[at]);
        ++at;
        for (; at < lines.size() && !IsGo(lines[at]); ++at)
            step.batch += lines[at] + "\n";
        if (at >= lines.size()) Refuse(at, "\"go\" expected");
        if (++at >= lines.size() || lines[at] != "----") Refuse(at + 1, "\"----\" expected");
        std::vector<std::string>* expected = &step.expected;
        for (++at; at < lines.size() && !StartsStep(lines[at]); ++at) {
            if (lines[at].starts_with(kOverOdbc)) {
                step.overOdbcWhy = Trimmed(lines[at].substr(kOverOdbc.size()));
                if (step.overOdbcWhy.empty()) Refuse(at + 1, "a reason expected");
                expected = &step.expectedOverOdbc;
            } else if (lines[at].starts_with(kOnServer)) {
                step.differsOn.insert(ServerAndWhy(lines[at].substr(kOnServer.size())));
            } else {
                expected->push_back(lines[at]);
            }
        }
        DropBlankEnd(step.expected);
        DropBlankEnd(step.expectedOverOdbc);
        file.steps.push_back(std::move(step));
    }
    if (file.steps.empty()) Refuse(at, "no batch");
    return file;
}

std::string ReadWholeFile(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) throw std::runtime_error("cannot read " + path.string());
    std::stringstream content;
    content << stream.rdbuf();
    return content.str();
}

TestFile ReadTestFile(const std::filesystem::path& path) {
    try {
        return ParseTestFile(ReadWholeFile(path));
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path.string() + ": " + error.what());
    }
}

std::vector<std::filesystem::path> FindTestFiles(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".test") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

}  // namespace vicenter::tsql_test
