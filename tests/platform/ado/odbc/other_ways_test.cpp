// A driver that answers in other ways than FreeTDS: SQL_NO_DATA for a batch whose first statement changes no
// row, as ODBC 3 has it, whereas what stands behind that statement belongs to the batch all the same; and
// numbers as a country writes them.

#include <cstdlib>
#include <fstream>

#include <dlfcn.h>
#include <gmock/gmock.h>

#include "automation/error.h"
#include "both_back_ends.h"

namespace vicenter::ado_test {
namespace {

using automation::Error;

constexpr const char* kDriver = "FreeTDS of other ways";

// Has the driver manager look for its drivers in a file of this program's own; it looks once.
class OwnDrivers {
  public:
    OwnDrivers() {
        std::ofstream(folder_.Path() / "odbcinst.ini")
            << "[" << kDriver << "]\nDriver=" << VICENTER_OTHER_WAYS_DRIVER << "\n";
        // By its place: the name that our driver asks for is in no folder of the system's.
        dlopen(VICENTER_FREETDS, RTLD_LAZY);
        setenv("ODBCSYSINI", folder_.Path().c_str(), 1);
    }

  private:
    Folder folder_;
};

class OtherWaysTest : public testing::TestWithParam<const char*> {
  protected:
    OtherWaysTest() { Open()->Execute("create table t (a nvarchar(20) not null)"); }

    ado::ConnectionRef Open() {
        static const OwnDrivers drivers;
        return books_.Open(std::string("Pooling=no;Driver={") + kDriver + "}" + GetParam());
    }
    std::string Content() {
        std::string content;
        for (const ado::RecordsetRef rows = Open()->Execute("select a from t order by a"); !rows->AtEnd();
             rows->MoveNext())
            content += rows->Value("a").ToText() + ";";
        return content;
    }
    bool IsUnit() const { return std::string(GetParam()).empty(); }

    ServedBooks books_;
};

TEST_P(OtherWaysTest, WhatStandsBehindAnEmptyChangeIsDone) {
    std::int64_t changed = -1;
    Open()->Execute(
        "delete from t where a = N'nobody' insert into t values (N'1') insert into t values (N'2')",
        &changed);
    EXPECT_EQ(changed, 2);
    EXPECT_EQ(Content(), "1;2;");
}

TEST_P(OtherWaysTest, AnErrorBehindAnEmptyChangeIsTold) {
    const auto connection = Open();
    try {
        connection->Execute(
            "delete from t where a = N'nobody' insert into t values (N'1') insert into t values (null)");
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_THAT(error.Text(), testing::HasSubstr("NULL"));
    }
    EXPECT_EQ(Content(), IsUnit() ? "" : "1;");
    connection->Execute("insert into t values (N'3')");
    EXPECT_EQ(Content(), IsUnit() ? "3;" : "1;3;");
}

TEST_P(OtherWaysTest, AResultBehindAnEmptyChangeIsGiven) {
    const ado::RecordsetRef rows = Open()->Execute("update t set a = N'x' where a = N'nobody' select 7 as n");
    ASSERT_EQ(rows->RecordCount(), 1);
    EXPECT_EQ(rows->Value("n").ToInt32(), 7);
}

TEST_P(OtherWaysTest, AnEmptyChangeAloneIsNoFailure) {
    std::int64_t changed = -1;
    Open()->Execute("delete from t where a = N'nobody'", &changed);
    EXPECT_EQ(changed, 0);
}

TEST_P(OtherWaysTest, AUnitIsKeptWhole) {
    const auto connection = Open();
    ASSERT_TRUE(connection->BeginUnit());
    connection->Execute("delete from t where a = N'nobody' insert into t values (N'1')");
    connection->Execute("update t set a = N'x' where a = N'nobody' insert into t values (N'2')");
    EXPECT_TRUE(connection->CommitUnit());
    EXPECT_EQ(Content(), "1;2;");
}

// Nothing in its place would be an amount that is lost with the next save.
TEST_P(OtherWaysTest, AValueThatCannotBeReadIsAnError) {
    const auto connection = Open();
    const std::pair<const char*, const char*> values[] = {
        {"convert(decimal(9,2), 12.5)", "12,50"},
        {"convert(time(3), '10:20:30.5')", "10:20:30,5000000"},
    };
    for (const auto& [value, text] : values) {
        try {
            connection->Execute("insert into t values (N'1') insert into t values (N'2') select " +
                                std::string(value) + " as n");
            ADD_FAILURE() << value;
        } catch (const Error& error) {
            EXPECT_EQ(error.Text(), std::string("数据库驱动程序给出的字段“n”的值无法识别：") + text);
        }
        EXPECT_EQ(Content(), IsUnit() ? "" : "1;2;");
        connection->Execute("delete from t");
    }
    EXPECT_TRUE(connection->Execute("select convert(decimal(9,2), null) as n")->Value("n").IsNull());
    EXPECT_EQ(connection->Execute("select convert(decimal(9,0), 12) as n")->Value("n").ToText(), "12");
}

INSTANTIATE_TEST_SUITE_P(Batches, OtherWaysTest, testing::Values("", ";Transactions=none"),
                         [](const auto& one) { return one.index == 0 ? "AsUnits" : "Alone"; });

}  // namespace
}  // namespace vicenter::ado_test
