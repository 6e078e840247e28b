// Parser goldens: tests/tsql/parser/*.golden hold a text, the tree that the parser makes of it, and the tree
// printed. VICENTER_UPDATE_GOLDENS=1 writes what the parser says now; whoever does that reads the difference.
// Never in CI.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "component_statements.h"
#include "tests/paths/source_folder.h"
#include "tests/tsql/tree_dump/tree_dump.h"
#include "tsql/base/diagnostic.h"
#include "tsql/syntax/parse/parser.h"
#include "tsql/syntax/print/printer.h"

namespace vicenter::tsql {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kTreeMark = "---- tree\n";
constexpr std::string_view kPrintedMark = "---- printed\n";

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

std::vector<fs::path> FilesBelow(const fs::path& folder, const std::string& extension) {
    std::vector<fs::path> files;
    if (!fs::exists(folder)) return files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == extension) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// The batches of a script: GO on a line of its own ends one.
std::vector<std::string> SplitBatches(const std::string& script) {
    std::vector<std::string> batches;
    std::string batch;
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);) {
        std::string word;
        for (const char c : line) {
            if (c != ' ' && c != '\t' && c != '\r')
                word += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        if (word == "go" || word == "go;") {
            batches.push_back(batch);
            batch.clear();
        } else {
            batch += line + "\n";
        }
    }
    if (!batch.empty()) batches.push_back(batch);
    return batches;
}

void ExpectPrintsBack(const std::string& text) {
    Batch batch;
    try {
        batch = ParseBatch(text);
    } catch (const SqlError& error) {
        FAIL() << error.Details().line << ":" << error.Details().column << " " << error.Details().text << "\n"
               << text;
    }
    const std::string printed = Print(batch);
    std::string again;
    try {
        again = DumpTree(ParseBatch(printed), false);
    } catch (const SqlError& error) {
        FAIL() << error.Details().line << ":" << error.Details().column << " " << error.Details().text << "\n"
               << printed << "\nfrom\n"
               << text;
    }
    EXPECT_EQ(DumpTree(batch, false), again) << text << "\nprinted\n" << printed;
}

TEST(ParserGoldenTest, TreesAndTextsAreAsRecorded) {
    const bool update = std::getenv("VICENTER_UPDATE_GOLDENS") != nullptr;
    ASSERT_TRUE(!update || std::getenv("CI") == nullptr) << "goldens are not recorded in CI";
    const std::vector<fs::path> files =
        FilesBelow(testing_paths::SourceFolder() / "tests/tsql/parser", ".golden");
    ASSERT_FALSE(files.empty());
    for (const fs::path& path : files) {
        SCOPED_TRACE(path.filename().string());
        const std::string content = ReadFile(path);
        ASSERT_TRUE(content.starts_with("# recorded") || content.starts_with("# by hand"));
        const std::size_t start = content.find('\n') + 1;
        const std::size_t end = std::min(content.find(kTreeMark), content.size());
        const std::string text = content.substr(start, end - start);
        const Batch batch = ParseBatch(text);
        const std::string made = content.substr(0, end) + std::string(kTreeMark) + DumpTree(batch, true) +
                                 std::string(kPrintedMark) + Print(batch);
        if (update) {
            std::ofstream(path, std::ios::binary) << made;
        } else {
            EXPECT_EQ(content, made);
        }
        ExpectPrintsBack(text);
    }
}

TEST(PrinterTest, ComponentStatementsPrintBackToTheSameTree) {
    for (const std::string& text : ComponentStatements())
        ExpectPrintsBack(text);
}

TEST(PrinterTest, HostScriptsPrintBackToTheSameTree) {
    for (const fs::path& path : FilesBelow(testing_paths::SourceFolder() / "host", ".sql")) {
        SCOPED_TRACE(path.string());
        for (const std::string& batch : SplitBatches(ReadFile(path)))
            ExpectPrintsBack(batch);
    }
}

// The text tests hold every statement that there is.
TEST(PrinterTest, BatchesOfTheTextTestsPrintBackToTheSameTree) {
    std::size_t printed = 0;
    for (const fs::path& path : FilesBelow(testing_paths::SourceFolder() / "tests/tsql", ".test")) {
        SCOPED_TRACE(path.string());
        std::istringstream lines(ReadFile(path));
        std::string batch;
        bool inside = false;
        for (std::string line; std::getline(lines, line);) {
            if (!inside) {
                inside = line == "batch" || line.starts_with("error ");
                batch.clear();
            } else if (line == "go") {
                inside = false;
                try {
                    ParseBatch(batch);
                } catch (const SqlError&) {
                    continue;  // a test of an error of the text
                }
                ExpectPrintsBack(batch);
                ++printed;
            } else {
                batch += line + "\n";
            }
        }
    }
    EXPECT_GT(printed, 300U);
}

TEST(PrinterTest, KeepsParenthesesThatMatter) {
    const std::vector<std::string> texts = {
        "select (1 + 2) * 3, 1 + 2 * 3, 1 - (2 - 3), -(1 + 2), - -1, -~+1, ~(1 | 2), (1 + 2) + 3, 1 + (2 + "
        "3)",
        "select 1 where (a = 1 or b = 2) and c = 3",
        "select 1 where a = 1 or b = 2 and c = 3",
        "select 1 where (a = 1 or b = 2) or c = 3",
        "select 1 where not (a = 1 and b = 2) and not c = 3 and not not d = 4",
        "select 1 where (a + 1) between 1 and 2 + 3 and b in (1 + 1, (select 2))",
        "select (a + b) collate Chinese_PRC_CI_AS, (-a) collate x, -a collate x",
        "select 1 union (select 2 union all select 3) except select 4 intersect select 5",
        "(select 1 union select 2) union all select 3",
        "select * from a left join (b inner join c on b.x = c.x) on a.x = b.x, d cross join e",
        "select * from a left join b inner join c on b.x = c.x on a.x = b.x",
        "select case (case 1 when 2 then 3 end) when 4 then 5 else 6 end",
    };
    for (const std::string& text : texts)
        ExpectPrintsBack(text);
}

TEST(PrinterTest, PrintsPartsForTheCatalog) {
    EXPECT_EQ(Print(*ParseExpression("( getdate( ) )")), "getdate()");
    EXPECT_EQ(Print(*ParseCondition("(FDC in (0,1)AND [a b]>'x')")), "FDC in (0, 1) and [a b] > 'x'");
    EXPECT_THROW(ParseExpression("1 2"), SqlError);
    EXPECT_THROW(ParseCondition("1"), SqlError);
    EXPECT_THROW(ParseExpression(""), SqlError);
}

TEST(StatementReaderTest, ReadsOneStatementAtATime) {
    const std::string text = "select 1; ; select 2\nselect 'a''b' ;";
    StatementReader reader(text);
    std::vector<std::string> found;
    while (const StatementPtr statement = reader.Next()) {
        found.push_back(
            text.substr(statement->position.offset, statement->endOffset - statement->position.offset));
    }
    EXPECT_EQ(found, (std::vector<std::string>{"select 1", "select 2", "select 'a''b'"}));
    EXPECT_EQ(reader.Where().offset, text.size());
    EXPECT_EQ(reader.Next(), nullptr);
}

TEST(StatementReaderTest, GoesOnWhereItIsTold) {
    const std::string text = "select 1\nselect nonsense from from\nselect 3";
    StatementReader reader(text);
    reader.Next();
    EXPECT_EQ(reader.Where(), (Position{9, 2, 1}));
    const auto third = static_cast<std::uint32_t>(text.find("select 3"));
    reader.Seek(Position{third, 3, 1});
    const StatementPtr statement = reader.Next();
    EXPECT_EQ(statement->position, (Position{third, 3, 1}));
    EXPECT_EQ(reader.Next(), nullptr);
}

TEST(StatementReaderTest, GivesTheTextOfAProcedureToTheEnd) {
    const std::string text = "-- note\ncreate procedure p @a int as\nselect @a;\nselect 2; -- end";
    const Batch batch = ParseBatch(text);
    ASSERT_EQ(batch.statements.size(), 1U);
    EXPECT_EQ(batch.statements[0]->position.offset, 8U);
    EXPECT_EQ(As<CreateProcedureStatement>(*batch.statements[0]).body.size(), 2U);
}

TEST(StatementReaderTest, FindsNothingInBlankTexts) {
    EXPECT_TRUE(ParseBatch("").statements.empty());
    EXPECT_TRUE(ParseBatch(" \r\n;; -- x\n/* y */").statements.empty());
}

}  // namespace
}  // namespace vicenter::tsql
