// Recorded answers of generated batches: tests/tsql/generated/seed_<n>.test holds what the generator makes of
// a seed, statement by statement, and what each has answered. As text tests they run in every lane, on a
// named server too. VICENTER_UPDATE_GOLDENS=1 writes them anew, for reading; never in CI.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "automation/error.h"
#include "generator/batch_generator.h"
#include "generator/forms.h"
#include "runner/lane.h"
#include "runner/result_text.h"
#include "runner/test_file.h"
#include "tests/paths/source_folder.h"

namespace vicenter::tsql_test {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kSeeds = 24;

std::string Name(std::uint32_t seed) {
    return "tests/tsql/generated/seed_" + std::to_string(seed) + ".test";
}

std::string Step(ado::Connection& connection, const std::string& statement) {
    std::string lines;
    try {
        bool isHeader = true;
        for (const std::string& line : ResultLines(connection.Execute(statement))) {
            lines += (isHeader ? WithoutLengths(line) : line) + "\n";
            isHeader = line.empty();
        }
    } catch (const automation::Error&) {
        const ado::DriverError error = connection.Errors().front();
        return "error " + std::to_string(error.native) + "\n" + statement + "\ngo\n----\n" + error.text +
               "\n\n";
    }
    return "batch\n" + statement + "\ngo\n----\n" + lines + (lines.empty() ? "\n" : "\n");
}

// The mark of what cannot be replayed on that server: what it does not take changes the tables of what
// follows.
std::string DiffersOnBabelfish(const Statements& statements) {
    std::string why;
    for (const Form& form : kForms) {
        const bool has = std::any_of(statements.begin(), statements.end(),
                                     [&](const std::string& statement) { return Has(statement, form); });
        if (!has || form.otherOnBabelfish == nullptr || why.find(form.otherOnBabelfish) != std::string::npos)
            continue;
        why += (why.empty() ? "\n# differs on Babelfish: " : "; ") + std::string(form.otherOnBabelfish);
    }
    return why;
}

std::string Recorded(std::uint32_t seed) {
    const auto lane = MakeLane();
    const ado::ConnectionRef connection = lane->Open();
    Statements statements = BatchGenerator(seed).Batch();
    statements.push_back(BatchGenerator::Failing(seed));
    std::string text = "# name: " + Name(seed) +
                       "\n# recorded: by the embedded account set itself, no server was asked"
                       "\n# covers: generated" +
                       DiffersOnBabelfish(statements) + "\n\n";
    text += Step(*connection, BatchGenerator::Text(BatchGenerator::Tables(1)));
    for (const std::string& statement : statements)
        text += Step(*connection, statement);
    text += Step(*connection,
                 "select * from g_one order by id select * from g_two order by id select @@trancount as n");
    connection->Close();
    while (text.ends_with("\n\n"))
        text.pop_back();
    return text;
}

TEST(GeneratedAnswersTest, AreRecordedForEachSeed) {
    const bool update = std::getenv("VICENTER_UPDATE_GOLDENS") != nullptr;
    ASSERT_TRUE(!update || std::getenv("CI") == nullptr) << "goldens are not recorded in CI";
    for (std::uint32_t seed = 1; seed <= kSeeds; ++seed) {
        const fs::path path = testing_paths::SourceFolder() / Name(seed);
        const std::string text = Recorded(seed);
        if (update) {
            fs::create_directories(path.parent_path());
            std::ofstream(path, std::ios::binary) << text;
        } else {
            ASSERT_TRUE(fs::exists(path)) << path;
            EXPECT_EQ(ReadWholeFile(path), text) << path;
        }
    }
}

}  // namespace
}  // namespace vicenter::tsql_test
