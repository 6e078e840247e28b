// What a server answers, as bytes: tests/data/answers/ holds the answers of the test server to statements of
// each kind. Cut off anywhere behind the description of their columns they are an error, never half a result
// taken for a whole one, and the next question works. (Within that description FreeTDS ends the process; a
// line that is cut there comes up only where a packet ends in it.)
//
// VICENTER_UPDATE_GOLDENS=1 writes the answers anew.

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "automation/error.h"
#include "both_back_ends.h"
#include "tests/paths/source_folder.h"

namespace vicenter::ado_test {
namespace {

using tds_server::AnswerWith;

const fs::path& AnswersFolder() {
    static const fs::path folder = testing_paths::SourceFolder() / "tests" / "data" / "answers";
    return folder;
}

struct Asked {
    const char* name;
    const char* batch;
};

constexpr Asked kAsked[] = {
    {"numbers",
     "select cast(1 as bit) as b, cast(255 as tinyint) as t, cast(-1 as smallint) as s, 7 as i, "
     "cast(9223372036854775807 as bigint) as l, cast(0.5 as real) as r, cast(0.1 as float) as f, "
     "cast(-12345678901234567890.1234 as decimal(28,4)) as n, cast(-1.5 as money) as m, "
     "cast(2.5 as smallmoney) as sm"},
    {"dates",
     "select cast('2024-02-29 23:59:59.997' as datetime) as d, cast('2024-05-06 07:08' as smalldatetime) as "
     "s, cast('0001-01-01 10:20:30.123' as datetime2(3)) as d2, cast('9999-12-31' as date) as day"},
    {"texts",
     "select 'abc' as v, N'中文𠮷' as n, cast('x' as char(3)) as c, cast(N'y' as nchar(2)) as nc, "
     "cast('长' as varchar(max)) as vm, cast(N'长文' as nvarchar(max)) as nm, '' as e"},
    {"nothing",
     "select cast(null as int) as i, cast(null as nvarchar(9)) as n, cast(null as decimal(9,2)) as "
     "d, cast(null as nvarchar(max)) as m, cast(null as datetime) as t"},
    {"bytes",
     "select 0x00FF as b, cast(0x01 as binary(3)) as f, "
     "cast('6F9619FF-8B86-D011-B42D-00C04FC964FF' as uniqueidentifier) as g"},
    {"no_rows", "select a, b from t where a = 99"},
    {"rows", "select a, b from t order by a"},
    {"results", "select 1 as a select 'x' as b update t set b = b select a from t"},
    {"messages", "print 'one' raiserror('two', 10, 1) select 3 as a print N'三'"},
    {"error", "select * from nowhere"},
    {"error_behind", "select 1 as a insert into t values (1, N'again')"},
    {"counts", "insert into t values (7, N'x') update t set b = N'y' where a = 7 delete from t where a = 7"},
    {"variables", "declare @n int select @n = count(*) from t select @n as n"},
};

std::string ReadBytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class AnswersTest : public testing::Test {
  protected:
    void SetUp() override {
        connection_ = books_.Open("Pooling=no;Transactions=none");
        connection_->Execute("create table t (a int primary key, b nvarchar(20))");
        connection_->Execute("insert into t values (1, N'一') insert into t values (2, null)");
    }
    // All that came, and how it ended.
    std::string Ask(const std::string& batch) {
        std::string text;
        try {
            for (ado::RecordsetRef rows = connection_->Execute(batch); rows; rows = rows->Next()) {
                for (const ado::Column& column : rows->Columns())
                    text += column.name + ":" + column.serverType + "|";
                for (std::size_t row = 0; static_cast<std::int64_t>(row) < rows->RecordCount(); ++row) {
                    for (std::size_t column = 0; column < rows->ColumnCount(); ++column)
                        text += rows->ValueAt(row, column).ToTextOrEmpty() + "|";
                    text += "\n";
                }
            }
        } catch (const automation::Error& error) {
            return "error: " + error.Text();
        }
        return text;
    }

    ServedBooks books_;
    ado::ConnectionRef connection_;
};

TEST_F(AnswersTest, AreWhatTheServerSends) {
    const auto recorded = std::make_shared<tds_server::Recorded>();
    books_.Server().Behave(recorded);
    for (const auto& [name, batch] : kAsked) {
        Ask(batch);
        const std::string sent = recorded->Take();
        const fs::path path = AnswersFolder() / (std::string(name) + ".tokens");
        if (std::getenv("VICENTER_UPDATE_GOLDENS") != nullptr) {
            ASSERT_EQ(std::getenv("CI"), nullptr);
            std::ofstream(path, std::ios::binary) << sent;
        }
        EXPECT_TRUE(ReadBytes(path) == sent) << name;
    }
}

// Behind the description of the columns, if there is one; nowhere in answers with several.
std::size_t FirstCut(const std::string& tokens) {
    constexpr char kColumns = '\x81';
    constexpr char kRows[] = {'\xD1', '\xD2', '\xFD', '\0'};
    const std::size_t columns = tokens.find(kColumns);
    if (columns == std::string::npos) return 0;
    const std::size_t rows = tokens.find_first_of(kRows, columns);
    return tokens.find(kColumns, rows) == std::string::npos ? rows + 1 : tokens.size();
}

TEST_F(AnswersTest, AreReadWholeOrNotAtAll) {
    int cuts = 0;
    for (const auto& [name, batch] : kAsked) {
        connection_->Execute("delete from t where a > 2");
        const std::string whole = Ask(batch);
        const std::string tokens = ReadBytes(AnswersFolder() / (std::string(name) + ".tokens"));
        ASSERT_FALSE(tokens.empty()) << name;
        for (std::size_t size = FirstCut(tokens); size < tokens.size(); size += size / 20 + 1) {
            books_.Server().Behave(std::make_shared<AnswerWith>("the question", tokens.substr(0, size),
                                                                AnswerWith::Line::kIsCut));
            const std::string answer = Ask("the question");
            books_.Server().BehaveWell();
            EXPECT_TRUE(answer.starts_with("error: ")) << name << " cut at " << size << ": " << answer;
            EXPECT_EQ(Ask("select 7 as a"), "a:int|7|\n") << name << " cut at " << size;
            ++cuts;
        }
        books_.Server().Behave(
            std::make_shared<AnswerWith>("the question", tokens, AnswerWith::Line::kStays));
        EXPECT_EQ(Ask("the question"), whole) << name;
        books_.Server().BehaveWell();
    }
    EXPECT_GT(cuts, 100);
}

}  // namespace
}  // namespace vicenter::ado_test
