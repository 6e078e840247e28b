#pragma once

// A T-SQL text test: batches with the results or the error that each must give.
//
//   # name: tests/tsql/folder/file.test      the first line; the path from the root of the sources
//   # by hand                                or "# recorded: from where"
//   # setup: host/accountset/schema.sql      a script to run first (GO ends its batches); any number of these
//   # differs: why                           not replayed on a real server, which answers otherwise
//   # differs on Babelfish: why              the same of one server, by a word of its @@version
//   # covers: cast, datetime                 what docs/tsql-support.md lists the test under
//
//   batch                                    or "error 208", optionally "error 208 line 3"
//   select 1 as a, N'x' as b
//   go
//   ----
//   a:int | b:nvarchar
//   1 | x
//   ---- over ODBC: why                      what comes instead where a driver stands between, if it differs
//   a:int | b:nvarchar
//   1 | NULL
//   ---- on Babelfish: why                   run on that server, whatever comes instead
//
// Several result sets are separated by a blank line. NULL and (empty) stand for themselves; a text with
// blanks at its ends, or one that would read as something else, stands in double quotes; line breaks are \r
// and \n. A first line "affected: n" checks the number of rows changed. An error's text stands below the
// dashes.

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vicenter::tsql_test {

struct Step {
    int line = 0;  // of "batch" or "error" in the file
    std::string batch;
    std::optional<std::int32_t> errorNumber;
    std::optional<int> errorLine;
    std::vector<std::string> expected;  // lines below the dashes, trailing blank ones left out
    std::string overOdbcWhy;            // empty where a driver changes nothing
    std::vector<std::string> expectedOverOdbc;
    std::map<std::string, std::string> differsOn;  // why, by the word that names the server
};

struct TestFile {
    std::string name;  // as the first line says
    std::vector<std::string> setup;
    std::vector<std::string> covers;
    std::string differs;
    std::map<std::string, std::string> differsOn;  // why, by the word that names the server
    std::vector<Step> steps;
};

// Throws std::runtime_error with file and line for a file that is not of this form.
TestFile ReadTestFile(const std::filesystem::path& path);
TestFile ParseTestFile(const std::string& content);

// The batches of a script: GO on a line of its own ends one.
std::vector<std::string> SplitScript(const std::string& script);

std::string ReadWholeFile(const std::filesystem::path& path);

// Every *.test below the folder, in order.
std::vector<std::filesystem::path> FindTestFiles(const std::filesystem::path& folder);

}  // namespace vicenter::tsql_test
