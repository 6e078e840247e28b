// Generated batches on the embedded account set and on a server: the same rows, the same counts, the same
// errors, and the same tables afterwards. The server is the test server, or the one that
// VICENTER_TEST_CONNECT names, over ODBC. A batch that answers otherwise is told by its seed, without the
// statements that make no difference.
//
// VICENTER_GENERATED_BATCHES says how many, VICENTER_FIRST_SEED from which seed on. What another server
// refuses of the dialect is found out first and left out of every batch on both sides.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <regex>

#include <gtest/gtest.h>

#include "automation/error.h"
#include "generator/batch_generator.h"
#include "generator/forms.h"
#include "generator/seeds.h"
#include "generator/shrink.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "runner/lane.h"
#include "runner/result_text.h"

namespace vicenter::tsql_test {
namespace {

namespace fs = std::filesystem;

// Told whole; those behind them are counted.
constexpr int kMostTold = 40;

std::string WithFifteenDigits(const std::string& text, const std::regex& numbers) {
    std::string rounded;
    std::size_t at = 0;
    for (std::sregex_iterator number(text.begin(), text.end(), numbers); number != std::sregex_iterator();
         ++number) {
        const std::string digits = number->str();
        char least[64];
        std::snprintf(least, sizeof least, "%.15g", std::strtod(digits.c_str(), nullptr));
        const auto position = static_cast<std::size_t>(number->position());
        rounded += text.substr(at, position - at) + (digits.size() > 16 ? least : digits);
        at = position + digits.size();
    }
    return rounded + text.substr(at);
}

// How answers are compared with those of a server that is not SQL Server: numbers by their value, columns by
// their names, errors by being one, since it has types, scales, numbers and texts of its own.
std::string InCommon(const std::string& answer) {
    // Of a float the digits that it keeps; in which order they were added up tells in the last ones.
    static const std::regex lastDigits("-?\\d+\\.\\d+(?= \\| |\n)");
    static const std::regex types(":[a-z0-9]+(?= \\| |\n)");
    static const std::regex zeros("(\\.\\d*?)0+(?= \\| |\n)");
    static const std::regex point("\\.(?= \\| |\n)");
    static const std::regex error("error [^\n]*");
    std::string common = std::regex_replace(answer, types, "");
    common = WithFifteenDigits(common, lastDigits);
    common = std::regex_replace(common, zeros, "$1");
    common = std::regex_replace(common, point, "");
    return std::regex_replace(common, error, "error");
}

// Whether the tables g_one and g_two may be other ones behind that text.
bool MayChange(const std::string& text) {
    constexpr std::array<const char*, 5> kChanges = {"insert ", "update ", "delete ", "merge ", "sp_rename"};
    return std::any_of(kChanges.begin(), kChanges.end(),
                       [&](const char* word) { return text.find(word) != std::string::npos; });
}

class Side {
  public:
    explicit Side(ado::ConnectionRef connection) : connection_(std::move(connection)) {}

    void Begin() {
        for (const std::string& statement : BatchGenerator::Tables(0))
            connection_->Execute(statement);
        connection_->Execute("select * into g_first_one from g_one select * into g_first_two from g_two");
    }
    bool Takes(const Form& form) {
        bool takes = true;
        try {
            connection_->Execute(form.question);
        } catch (const automation::Error&) {
            takes = false;
        }
        connection_->Execute("if object_id('g_form') is not null drop table g_form");
        return takes;
    }
    // What the batch answers on tables with their first rows, and what it leaves in them.
    std::string AnswerOf(const Statements& statements) {
        if (changed_)
            connection_->Execute(
                "delete from g_one delete from g_two insert into g_one select * from g_first_one insert into "
                "g_two "
                "select * from g_first_two");
        const std::string text = BatchGenerator::Text(statements);
        changed_ = MayChange(text);
        const std::string state =
            changed_ ? " select * from g_one order by id select * from g_two order by id" : "";
        try {
            return Lines(connection_->Execute(text + state));
        } catch (const automation::Error& error) {
            const std::string told =
                connection_->Errors().empty() ? error.Text() : Told(connection_->Errors().front());
            connection_->Execute("while @@trancount > 0 rollback");
            return told + (changed_ ? Lines(connection_->Execute(state)) : std::string());
        }
    }
    std::string Version() { return connection_->Execute("select @@version as v")->Value("v").ToText(); }
    void Close() { connection_->Close(); }

  private:
    static std::string Told(const ado::DriverError& error) {
        return "error " + std::to_string(error.native) + ": " + error.text + "\n";
    }
    static std::string Lines(const ado::RecordsetRef& first) {
        std::string text;
        bool isHeader = true;
        for (const std::string& line : ResultLines(first)) {
            text += (isHeader ? WithoutLengths(line) : line) + "\n";
            isHeader = line.empty();
        }
        return text;
    }
    ado::ConnectionRef connection_;
    bool changed_ = true;
};

class BothSidesTest : public testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(folder_);
        ado::RegisterAccountSetProvider();
        server_.Begin();
        embedded_.emplace(
            ado::OpenConnection("Provider=VelaAccountSet;Create=yes;Pooling=no;Transactions=none;"
                                "Data Source=" +
                                (folder_ / "generated.vas").string()));
        embedded_->Begin();
        isBabelfish_ = server_.Version().find("Babelfish") != std::string::npos;
        for (const Form& form : kForms) {
            ASSERT_TRUE(embedded_->Takes(form)) << form.words;
            if ((isBabelfish_ && form.otherOnBabelfish != nullptr) || !server_.Takes(form))
                leftOut_.push_back(form);
        }
    }
    void TearDown() override {
        server_.Close();
        if (embedded_) embedded_->Close();
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    Statements WhatBothTake(const Statements& statements) const {
        Statements taken;
        for (const std::string& statement : statements) {
            const bool out = std::any_of(leftOut_.begin(), leftOut_.end(),
                                         [&](const Form& form) { return Has(statement, form); });
            if (!out) taken.push_back(statement);
        }
        return taken;
    }
    std::string Disagreement(const Statements& statements) {
        const std::string here = embedded_->AnswerOf(statements);
        const std::string there = server_.AnswerOf(statements);
        const bool alike = here == there || (isBabelfish_ && InCommon(here) == InCommon(there));
        return alike ? std::string() : "embedded\n" + here + "server\n" + there;
    }

    const fs::path folder_ =
        fs::temp_directory_path() / ("vicenter_both_sides_" + std::to_string(std::random_device()()));
    const std::unique_ptr<Lane> lane_ = MakeLane();
    Side server_{lane_->Open()};
    std::optional<Side> embedded_;
    bool isBabelfish_ = false;
    std::vector<Form> leftOut_;
};

TEST_F(BothSidesTest, AnswerGeneratedBatchesAlike) {
    const std::uint32_t first = FromEnvironment("VICENTER_FIRST_SEED", 1);
    const std::uint32_t count = FromEnvironment("VICENTER_GENERATED_BATCHES", 60);
    std::uint32_t statementsRun = 0;
    int disagreements = 0;
    for (std::uint32_t seed = first; seed < first + count; ++seed) {
        const Statements batch = WhatBothTake(BatchGenerator(seed).Batch());
        statementsRun += static_cast<std::uint32_t>(batch.size());
        if (batch.empty() || Disagreement(batch).empty()) continue;
        if (++disagreements > kMostTold) continue;
        const Statements least =
            Shrunk(batch, [&](const Statements& fewer) { return !Disagreement(fewer).empty(); });
        ADD_FAILURE() << "seed " << seed << "\n" << BatchGenerator::Text(least) << Disagreement(least);
    }
    std::string left;
    for (const Form& form : leftOut_)
        left += std::string(left.empty() ? "; left out: " : ", ") + form.words;
    std::printf("%u batches of %u statements on both sides, %d answered otherwise%s\n", count, statementsRun,
                disagreements, left.c_str());
    EXPECT_EQ(disagreements, 0);
    EXPECT_GT(statementsRun, 0U);
}

}  // namespace
}  // namespace vicenter::tsql_test
