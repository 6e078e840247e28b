// docs/tsql-support.md and docs/error-numbers.md say what the text tests cover and what the error table
// holds. They are made here: VICENTER_UPDATE_DOCS=1 writes them, otherwise a stale one fails.

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "runner/test_file.h"
#include "tests/paths/source_folder.h"
#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::tsql_test {
namespace {

namespace fs = std::filesystem;

const fs::path kRoot = testing_paths::SourceFolder();

void ExpectDoc(const std::string& name, const std::string& text) {
    const fs::path path = kRoot / "docs" / name;
    if (std::getenv("VICENTER_UPDATE_DOCS")) {
        ASSERT_EQ(std::getenv("CI"), nullptr) << "docs are not written in CI";
        std::ofstream(path, std::ios::binary) << text;
        return;
    }
    ASSERT_TRUE(fs::exists(path)) << name;
    EXPECT_TRUE(ReadWholeFile(path) == text)
        << name << " is stale: run test_tsql_text with VICENTER_UPDATE_DOCS=1 and read the difference";
}

bool IsErrorNumber(const std::string& topic) {
    return std::all_of(topic.begin(), topic.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

constexpr std::int32_t kRefused = 40510;

struct Coverage {
    std::map<std::string, std::set<std::string>> topics;  // statement, function or type: tests
    std::map<std::int32_t, std::set<std::string>> errors;
    std::map<std::string, std::set<std::string>> refused;  // by the name that the message tells
};

// "Statement 'BACKUP' is not supported …": what stands between the first apostrophe and the last one.
std::string RefusedName(const std::string& message) {
    const std::size_t first = message.find('\'');
    const std::size_t last = message.rfind('\'');
    return first < last ? message.substr(first + 1, last - first - 1) : message;
}

// Of a text test, as the pages call it.
std::string NameOf(const fs::path& path) {
    return fs::relative(path, kRoot / "tests/tsql").replace_extension().generic_string();
}

Coverage Collect() {
    Coverage coverage;
    for (const fs::path& path : FindTestFiles(kRoot / "tests/tsql")) {
        const TestFile file = ReadTestFile(path);
        const std::string name = NameOf(path);
        for (const std::string& topic : file.covers) {
            if (!IsErrorNumber(topic)) coverage.topics[topic].insert(name);
        }
        for (const Step& step : file.steps) {
            if (step.errorNumber) coverage.errors[*step.errorNumber].insert(name);
            if (step.errorNumber == kRefused && !step.expected.empty())
                coverage.refused[RefusedName(step.expected.front())].insert(name);
        }
    }
    return coverage;
}

std::string Links(const std::set<std::string>& tests) {
    std::string text;
    for (const std::string& test : tests) {
        text += (text.empty() ? "" : ", ") + ("[" + test + "](../tests/tsql/" + test + ".test)");
    }
    return text;
}

// What would end a cell of a table or start an emphasis.
std::string Escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '|' || c == '*' || c == '_' || c == '<') result += '\\';
        result += c;
    }
    return result;
}

bool IsStatement(const std::string& topic) {
    return std::none_of(topic.begin(), topic.end(), [](unsigned char c) { return std::islower(c) != 0; }) &&
           std::any_of(topic.begin(), topic.end(), [](unsigned char c) { return std::isupper(c) != 0; });
}

// A test and the reasons why it comes out otherwise somewhere; nothing without one.
std::string RowOf(const std::string& name, const std::set<std::string>& whys) {
    if (whys.empty()) return {};
    std::string list;
    for (const std::string& why : whys)
        list += (list.empty() ? "" : "; ") + Escaped(why);
    return "| " + Links({name}) + " | " + list + " |\n";
}

std::string DifferencesOverOdbc() {
    std::string rows;
    for (const fs::path& path : FindTestFiles(kRoot / "tests/tsql")) {
        const TestFile file = ReadTestFile(path);
        std::set<std::string> whys;
        for (const Step& step : file.steps) {
            if (!step.overOdbcWhy.empty()) whys.insert(step.overOdbcWhy);
        }
        rows += RowOf(NameOf(path), whys);
    }
    return rows;
}

// By server: the test and why.
std::map<std::string, std::string> DifferencesOnServers() {
    std::map<std::string, std::string> rows;
    for (const fs::path& path : FindTestFiles(kRoot / "tests/tsql")) {
        const TestFile file = ReadTestFile(path);
        std::map<std::string, std::set<std::string>> reasons;
        for (const auto& [server, why] : file.differsOn)
            reasons[server].insert(why);
        for (const Step& step : file.steps) {
            for (const auto& [server, why] : step.differsOn)
                reasons[server].insert(why);
        }
        for (const auto& [server, whys] : reasons)
            rows[server] += RowOf(NameOf(path), whys);
    }
    return rows;
}

std::string AboutServer(const std::string& server) {
    if (server == "SQL Server")
        return "What an account set refuses or calls otherwise, and any server takes.";
    return "The same tests on a server of that name. Where it answers otherwise than SQL Server is "
           "documented to, the\ndocumentation's rule holds here; texts and lines of errors are not compared "
           "there.";
}

std::string OnServers() {
    std::string text;
    for (const auto& [server, rows] : DifferencesOnServers()) {
        text += "\n## On " + server + "\n\n" + AboutServer(server) + "\n\n| test | why |\n|---|---|\n" + rows;
    }
    return text;
}

std::string Limits() {
    const auto row = [](const std::string& limit, const char* number) {
        return "| " + limit + " | " + number + " |\n";
    };
    const auto count = [](int number) { return std::to_string(number); };
    return "\n## Limits\n\nBesides the server's own. What is written down here runs, what is more is that "
           "error.\n\n| limit | error |\n|---|---|\n" +
           row(count(tsql::kDepthLimit) + " operators in a row in one expression", "191") +
           row(count(tsql::kNestingLimit) + " calls, CASEs, subqueries, blocks and IFs within each other, " +
                   count(tsql::kNestingLimit * tsql::kParenthesesOfLevel) +
                   " pairs of parentheses around a value, half as many around a condition",
               "191") +
           row("fifteen calls within each other in a CHECK; operators do not count", "191") +
           row("10000 uses of views and of queries that WITH names, each with all uses within it", "8623") +
           row("16000000 bytes of a query as SQLite gets it", "8623");
}

std::string Otherwise() {
    const auto row = [](const char* what, const char* here, const std::set<std::string>& tests) {
        return std::string("| ") + what + " | " + here + " | " + Links(tests) + " |\n";
    };
    return "\n## Otherwise than on the server\n\n| what | here | tests |\n|---|---|---|\n" +
           row("cursors that are not STATIC, over a join, a view, TOP",
               "keep the rows that they had when they were opened; those over groups, DISTINCT and UNION do so "
               "on the server, too",
               {"cursor/keeps_its_rows"}) +
           row("rows that are inserted while a cursor is open", "are not fetched",
               {"cursor/sees_what_changes"}) +
           row("datetime2 and time", "keep milliseconds; as texts they have all digits of their type",
               {"convert/digits_of_dates"}) +
           row("lengths of varchar", "count characters, not the bytes of a code page",
               {"functions/text_of_null_and_codes"}) +
           row("GRANT, REVOKE", "change nothing: an account set has no users; DENY is refused",
               {"system/rights_change_nothing"}) +
           row("identity values handed out in what is undone", "are handed out again",
               {"transactions/identity_is_handed_out_again"}) +
           row("indexes of computed columns", "are kept by name and make nothing faster",
               {"definition/index_of_computed_column"});
}

std::string SupportText() {
    const Coverage coverage = Collect();
    std::string statements;
    std::string others;
    for (const auto& [topic, tests] : coverage.topics) {
        (IsStatement(topic) ? statements : others) += "| " + Escaped(topic) + " | " + Links(tests) + " |\n";
    }
    std::string refused;
    for (const auto& [name, tests] : coverage.refused)
        refused += "| " + Escaped(name) + " | " + Links(tests) + " |\n";
    return "# T-SQL of the embedded account set\n\n"
           "What an embedded account set takes, each with the tests that show it. Made from the `# covers:` "
           "lines of\n"
           "`tests/tsql/**/*.test` by the test `DocsTest`; whatever is not listed here is not promised. "
           "Error numbers\n"
           "are in [error-numbers.md](error-numbers.md).\n\n"
           "## Statements and clauses\n\n| statement or clause | tests |\n|---|---|\n" +
           statements + "\n## Functions, types, operators\n\n| name | tests |\n|---|---|\n" + others +
           "\n## What is refused\n\nT-SQL that the server takes and an account set does not: error 40510 "
           "with "
           "this name and the line, before the\nbatch runs where the text alone says it. Made from the "
           "answers "
           "of the tests.\n\n| name in the message | tests |\n|---|---|\n" +
           refused + Limits() + Otherwise() +
           "\n## Over ODBC\n\n"
           "All of these tests run through an ODBC driver (FreeTDS) against the test server as well. What "
           "comes out\n"
           "otherwise there, and why:\n\n| test | why |\n|---|---|\n" +
           DifferencesOverOdbc() +
           "\nBeside that `@@trancount` is one higher within a batch that is sent as a unit, and FreeTDS "
           "tells neither the\n"
           "state of an error nor the procedure in which it arose.\n" +
           OnServers();
}

const char* EndsText(tsql::Ends ends) {
    switch (ends) {
        case tsql::Ends::kStatement:
            return "statement";
        case tsql::Ends::kText:
            return "text";
        case tsql::Ends::kBatch:
            return "batch";
    }
    return "";
}

std::string ErrorsText() {
    const Coverage coverage = Collect();
    std::string text =
        "# Error numbers of the embedded account set\n\n"
        "SQL Server's numbers, severities and texts, from `tsql/base/error_table.cpp`. *Text*: the rest of "
        "the batch, the\n"
        "procedure or the dynamic text that it is in does not run, and who called that goes on; *batch*: "
        "nothing does. Other\n"
        "errors end their statement alone unless `XACT_ABORT` is on. Slots such as `%.*ls` are filled in. "
        "Made by the test\n"
        "`DocsTest`.\n\n"
        "| number | severity | ends | message | tests |\n|---|---|---|---|---|\n";
    for (const tsql::ErrorEntry& entry : tsql::ErrorTable()) {
        const auto tests = coverage.errors.find(entry.number);
        text += "| " + std::to_string(entry.number) + " | " + std::to_string(entry.severity) + " | " +
                EndsText(entry.ends) + " | " + Escaped(entry.message) + " | " +
                (tests == coverage.errors.end() ? "" : Links(tests->second)) + " |\n";
    }
    return text;
}

TEST(DocsTest, SupportTableListsWhatIsTested) {
    ExpectDoc("tsql-support.md", SupportText());
}

TEST(DocsTest, ErrorNumbersAreThoseOfTheTable) {
    ExpectDoc("error-numbers.md", ErrorsText());
}

TEST(DocsTest, EveryTextTestSaysItsNameAndWhatItCovers) {
    for (const fs::path& path : FindTestFiles(kRoot / "tests/tsql")) {
        const TestFile file = ReadTestFile(path);
        EXPECT_EQ(file.name, fs::relative(path, kRoot).generic_string());
        EXPECT_FALSE(file.covers.empty()) << file.name;
    }
}

}  // namespace
}  // namespace vicenter::tsql_test
