// A driver that answers as ODBC 3 has it: SQL_NO_DATA for a batch whose first statement changes no row. What
// stands behind that statement belongs to the batch all the same.

#include <cstdlib>
#include <fstream>

#include <dlfcn.h>
#include <gmock/gmock.h>

#include "automation/error.h"
#include "both_back_ends.h"

namespace vicenter::ado_test {
namespace {

using automation::Error;

constexpr const char* kDriver = "FreeTDS telling of no rows";

// Has the driver manager look for its drivers in a file of this program's own; it looks once.
class OwnDrivers {
  public:
    OwnDrivers() {
        std::ofstream(folder_.Path() / "odbcinst.ini")
            << "[" << kDriver << "]\nDriver=" << VICENTER_NO_ROWS_DRIVER << "\n";
        // By its place: the name that our driver asks for is in no folder of the system's.
        dlopen(VICENTER_FREETDS, RTLD_LAZY);
        setenv("ODBCSYSINI", folder_.Path().c_str(), 1);
    }

  private:
    Folder folder_;
};

class NoRowsTest : public testing::TestWithParam<const char*> {
  protected:
    NoRowsTest() { Open()->Execute("create table t (a nvarchar(20) not null)"); }

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

TEST_P(NoRowsTest, WhatStandsBehindAnEmptyChangeIsDone) {
    std::int64_t changed = -1;
    Open()->Execute(
        "delete from t where a = N'nobody' insert into t values (N'1') insert into t values (N'2')",
        &changed);
    EXPECT_EQ(changed, 2);
    EXPECT_EQ(Content(), "1;2;");
}

TEST_P(NoRowsTest, AnErrorBehindAnEmptyChangeIsTold) {
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

TEST_P(NoRowsTest, AResultBehindAnEmptyChangeIsGiven) {
    const ado::RecordsetRef rows = Open()->Execute("update t set a = N'x' where a = N'nobody' select 7 as n");
    ASSERT_EQ(rows->RecordCount(), 1);
    EXPECT_EQ(rows->Value("n").ToInt32(), 7);
}

TEST_P(NoRowsTest, AnEmptyChangeAloneIsNoFailure) {
    std::int64_t changed = -1;
    Open()->Execute("delete from t where a = N'nobody'", &changed);
    EXPECT_EQ(changed, 0);
}

TEST_P(NoRowsTest, AUnitIsKeptWhole) {
    const auto connection = Open();
    ASSERT_TRUE(connection->BeginUnit());
    connection->Execute("delete from t where a = N'nobody' insert into t values (N'1')");
    connection->Execute("update t set a = N'x' where a = N'nobody' insert into t values (N'2')");
    EXPECT_TRUE(connection->CommitUnit());
    EXPECT_EQ(Content(), "1;2;");
}

INSTANTIATE_TEST_SUITE_P(Batches, NoRowsTest, testing::Values("", ";Transactions=none"),
                         [](const auto& one) { return one.index == 0 ? "AsUnits" : "Alone"; });

}  // namespace
}  // namespace vicenter::ado_test
