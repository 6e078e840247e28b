// The contract of ado::Connection, to both back ends alike, and to a real server where one is named.

#include <gmock/gmock.h>

#include "automation/error.h"
#include "both_back_ends.h"

namespace vicenter::ado_test {
namespace {

using ado::DataType;
using ado::RecordsetRef;
using automation::Decimal;
using automation::Error;
using automation::Variant;
using automation::VariantType;

std::string FailureOf(ado::Connection& connection, std::string_view batch) {
    try {
        connection.Execute(batch);
    } catch (const Error& error) {
        return error.Text();
    }
    return "no error";
}

class ConformanceTest : public BothBackEnds {};

TEST_P(ConformanceTest, ARecordsetOutlivesItsConnection) {
    auto connection = Open();
    const RecordsetRef rows = connection->Execute("select 1 as a, N'中文' as b union all select 2, N''");
    connection->Close();
    connection.reset();
    ASSERT_TRUE(rows->IsOpen());
    EXPECT_EQ(rows->RecordCount(), 2);
    EXPECT_EQ(rows->Value("A").ToInt32(), 1);
    EXPECT_EQ(rows->Value("b").ToText(), "中文");
    rows->MoveNext();
    EXPECT_EQ(rows->Value("b").ToText(), "");
}

TEST_P(ConformanceTest, ValuesHaveTheTypesOfTheirColumns) {
    const auto connection = Open();
    connection->Execute(
        "create table v (b bit, t tinyint, s smallint, i int, l bigint, r real, f float, n decimal(28,10), "
        "m money, sm smallmoney, d datetime, d2 datetime2(3), sd smalldatetime, day date, c char(5), vc "
        "varchar(20), nc nchar(5), nv nvarchar(20), vm varchar(max), nm nvarchar(max), x text, nx ntext, "
        "bi varbinary(10), g uniqueidentifier)");
    connection->Execute(
        "insert into v values (1, 255, -32768, 2147483647, 9223372036854775807, 0.5, 0.1, "
        "123456789012345678.0123456789, -922337203685477.5808, 214748.3647, '2024-02-29 23:59:59.997', "
        "'0001-01-01 10:20:30.123', '2024-05-06 07:08', '9999-12-31', 'ab', '中文', N'中', N'中文', 'x', "
        "N'y', "
        "'长文', N'长', 0x00FF, '6F9619FF-8B86-D011-B42D-00C04FC964FF')");
    const RecordsetRef row = connection->Execute("select * from v");
    ASSERT_EQ(row->RecordCount(), 1);
    EXPECT_EQ(row->Value("b").Type(), VariantType::Boolean);
    EXPECT_EQ(row->Value("t").Type(), VariantType::Int16);
    EXPECT_EQ(row->Value("t").ToInt32(), 255);
    EXPECT_EQ(row->Value("s").Type(), VariantType::Int16);
    EXPECT_EQ(row->Value("i").Type(), VariantType::Int32);
    EXPECT_EQ(row->Value("l").Type(), VariantType::Int64);
    EXPECT_EQ(row->Value("l").ToInt64(), 9223372036854775807);
    EXPECT_EQ(row->Value("r").Type(), VariantType::Double);
    EXPECT_EQ(row->Value("f").ToText(), "0.1");
    EXPECT_EQ(row->Value("n").Type(), VariantType::Decimal);
    EXPECT_EQ(row->Value("n").ToText(), "123456789012345678.0123456789");
    EXPECT_EQ(row->Value("m").Type(), VariantType::Decimal);
    EXPECT_EQ(row->Value("m").ToText(), "-922337203685477.5808");
    EXPECT_EQ(row->Value("sm").ToText(), "214748.3647");
    EXPECT_EQ(row->Value("d").Type(), VariantType::Date);
    EXPECT_EQ(row->Value("d").ToText(), "2024-02-29 23:59:59.997");
    EXPECT_EQ(row->Value("d2").ToText(), "0001-01-01 10:20:30.123");
    EXPECT_EQ(row->Value("sd").ToText(), "2024-05-06 07:08:00");
    EXPECT_EQ(row->Value("day").ToText(), "9999-12-31 00:00:00");
    EXPECT_EQ(row->Value("c").ToText(), "ab   ");
    EXPECT_EQ(row->Value("vc").ToText(), "中文");
    EXPECT_EQ(row->Value("nc").ToText(), "中    ");
    EXPECT_EQ(row->Value("nv").ToText(), "中文");
    EXPECT_EQ(row->Value("vm").ToText(), "x");
    EXPECT_EQ(row->Value("x").ToText(), "长文");
    EXPECT_EQ(row->Value("nx").ToText(), "长");
    EXPECT_EQ(row->Value("bi").ToText(), "0x00FF");
    EXPECT_EQ(row->Value("g").ToText(), "6F9619FF-8B86-D011-B42D-00C04FC964FF");
    const std::vector<DataType> types = {
        DataType::kBoolean,     DataType::kTinyInt,      DataType::kSmallInt,    DataType::kInteger,
        DataType::kBigInt,      DataType::kDouble,       DataType::kDouble,      DataType::kNumeric,
        DataType::kCurrency,    DataType::kCurrency,     DataType::kTimeStamp,   DataType::kTimeStamp,
        DataType::kTimeStamp,   DataType::kTimeStamp,    DataType::kChar,        DataType::kVarChar,
        DataType::kVarWChar,    DataType::kVarWChar,     DataType::kLongVarChar, DataType::kLongVarWChar,
        DataType::kLongVarChar, DataType::kLongVarWChar, DataType::kBinary,      DataType::kGuid,
    };
    for (std::size_t i = 0; i < types.size(); ++i)
        EXPECT_EQ(row->Columns()[i].type, types[i]) << row->Columns()[i].name;
}

TEST_P(ConformanceTest, EveryTypeMayBeNull) {
    const auto connection = Open();
    connection->Execute(
        "create table v (b bit, i int, l bigint, f float, n decimal(28,10), m money, d datetime, day date, "
        "vc varchar(20), nm nvarchar(max), x text, bi varbinary(10), g uniqueidentifier) "
        "insert into v(i) values (null)");
    const RecordsetRef row = connection->Execute("select * from v");
    ASSERT_EQ(row->RecordCount(), 1);
    for (std::size_t i = 0; i < row->ColumnCount(); ++i)
        EXPECT_TRUE(row->Value(i).IsNull()) << row->Columns()[i].name;
}

TEST_P(ConformanceTest, ALongTextArrivesWhole) {
    const auto connection = Open();
    connection->Execute("create table t (a nvarchar(max), b varchar(max))");
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += i % 7 == 0 ? "长" : "a";
    connection->Execute("insert into t values (N'" + text + "', '" + text + "')");
    const RecordsetRef row = connection->Execute("select a, b from t");
    EXPECT_EQ(row->Value("a").ToText(), text);
    EXPECT_EQ(row->Value("b").ToText(), text);
}

TEST_P(ConformanceTest, ABatchWithoutAResultGivesAClosedRecordset) {
    const auto connection = Open();
    for (const char* batch :
         {"create table t (a int)", "insert into t values (1)", "delete from t where a = 5",
          "declare @i int set @i = 1", "if not exists (select 1 from t) begin insert into t values (2) end",
          "create procedure p @n int as begin select @n = @n end", "exec p 3", "drop procedure p",
          "print 'x'", "drop table t"}) {
        const RecordsetRef result = connection->Execute(batch);
        ASSERT_TRUE(result) << batch;
        EXPECT_FALSE(result->IsOpen()) << batch;
        EXPECT_EQ(result->RecordCount(), -1) << batch;
    }
}

TEST_P(ConformanceTest, SeveralResultsHangOnEachOther) {
    const auto connection = Open();
    const RecordsetRef first = connection->Execute(
        "declare @t table (a int) insert into @t values (1) select a from @t update @t set a = 2 select a as "
        "b, 'x' as c "
        "from @t");
    ASSERT_TRUE(first->Next());
    EXPECT_EQ(first->Value("a").ToInt32(), 1);
    EXPECT_EQ(first->Next()->Value("b").ToInt32(), 2);
    EXPECT_EQ(first->Next()->Value("c").ToText(), "x");
    EXPECT_FALSE(first->Next()->Next());
}

TEST_P(ConformanceTest, RowsAffectedCountsChangesOnly) {
    const auto connection = Open();
    connection->Execute("create table t (a int)");
    std::int64_t rows = 0;
    connection->Execute("select 1 as a", &rows);
    EXPECT_EQ(rows, -1);
    connection->Execute("insert into t values (1) insert into t values (2)", &rows);
    EXPECT_EQ(rows, 2);
    connection->Execute("declare @n int select @n = count(*) from t update t set a = a + @n", &rows);
    EXPECT_EQ(rows, 2);
    connection->Execute("delete from t where a = 99", &rows);
    EXPECT_EQ(rows, 0);
}

TEST_P(ConformanceTest, AnErrorHasNumberLineAndProcedureOfTheServer) {
    const auto connection = Open();
    const std::string told = FailureOf(*connection, "\n\nselect * from nowhere");
    ASSERT_FALSE(connection->Errors().empty());
    if (HasOwnErrors()) {
        EXPECT_THAT(told, testing::HasSubstr("nowhere"));
        EXPECT_NE(connection->Errors().front().native, 0);
    } else {
        EXPECT_EQ(told, "Invalid object name 'nowhere'.");
        EXPECT_EQ(connection->Errors().front().native, 208);
    }
    EXPECT_EQ(connection->Errors().front().severity, 16);
    EXPECT_EQ(connection->Errors().front().line, 3);
    EXPECT_EQ(FailureOf(*connection, "select 1 as a"), "no error");
    EXPECT_TRUE(connection->Errors().empty());
}

TEST_P(ConformanceTest, AnErrorBehindTheFirstStatementIsFound) {
    const auto connection = Open();
    connection->Execute("create table t (a int primary key)");
    EXPECT_THAT(
        FailureOf(*connection, "insert into t values (1)\ninsert into t values (1)\nselect a from t\n"),
        testing::StartsWith(HasOwnErrors() ? "duplicate key" : "Violation of PRIMARY KEY constraint"));
    EXPECT_EQ(connection->Errors().front().native, 2627);
    EXPECT_EQ(connection->Errors().front().line, 2);
    EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 0);
}

TEST_P(ConformanceTest, MessagesStandBehindTheErrorsInOrder) {
    const auto connection = Open();
    connection->Execute("print 'one' select 1 as a raiserror('two', 10, 7) print N'三'");
    std::vector<std::string> texts;
    for (const ado::DriverError& record : connection->Errors())
        texts.push_back(record.text);
    EXPECT_THAT(texts, testing::ElementsAre("one", "two", "三"));
    FailureOf(*connection, "print 'before' raiserror('bad %d', 16, 3, 42)");
    ASSERT_EQ(connection->Errors().size(), 2U);
    EXPECT_EQ(connection->Errors()[0].text, "bad 42");
    EXPECT_EQ(connection->Errors()[0].native, 50000);
    EXPECT_EQ(connection->Errors()[1].text, "before");
}

TEST_P(ConformanceTest, ABatchIsOneUnit) {
    const auto connection = Open();
    connection->Execute("create table t (a nvarchar(3) not null) insert into t values (N'old')");
    EXPECT_NE(
        FailureOf(
            *connection,
            "delete from t\ninsert into t values (N'1')\ninsert into t values (N'much too long')\ninsert "
            "into t values (N'3')"),
        "no error");
    const RecordsetRef rows = connection->Execute("select a from t");
    ASSERT_EQ(rows->RecordCount(), 1);
    EXPECT_EQ(rows->Value("a").ToText(), "old");
}

TEST_P(ConformanceTest, StatementsStandAloneWhereTransactionsAreNone) {
    const auto connection = Open("Transactions=none");
    connection->Execute("create table t (a int primary key)");
    EXPECT_NE(
        FailureOf(*connection, "insert into t values (1) insert into t values (1) insert into t values (3)"),
        "no error");
    EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 2);
    // Also where the first statement is the one that fails.
    EXPECT_NE(FailureOf(*connection, "insert into t values (1) insert into t values (4)"), "no error");
    EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 3);
}

TEST_P(ConformanceTest, ResultsOfAFailedBatchAreKept) {
    const auto connection = Open();
    EXPECT_EQ(connection->ResultsDespiteFailure(), nullptr);
    FailureOf(*connection, "select 7 as a exec nothing select 8 as c");
    const RecordsetRef first = connection->ResultsDespiteFailure();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->Value("a").ToInt32(), 7);
    EXPECT_FALSE(first->Next());
}

TEST_P(ConformanceTest, ATransactionOfTheCallerSpansItsBatches) {
    const auto connection = Open();
    connection->Execute("create table t (a int)");
    connection->Execute("begin transaction");
    connection->Execute("insert into t values (1) insert into t values (2)");
    connection->Execute("rollback transaction");
    EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 0);
    connection->Execute("begin transaction");
    connection->Execute("insert into t values (1) insert into t values (2)");
    connection->Execute("commit transaction");
    EXPECT_EQ(Open()->Execute("select a from t")->RecordCount(), 2);
}

TEST_P(ConformanceTest, ACaughtErrorUndoesNothing) {
    const auto connection = Open();
    connection->Execute("create table t (a int primary key)");
    connection->Execute(
        "insert into t values (1) begin try insert into t values (1) end try begin catch insert into t "
        "values (2) end "
        "catch");
    EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 2);
}

TEST_P(ConformanceTest, AWrongConnectStringIsToldInWords) {
    EXPECT_THROW(Open("Transactions=sometimes"), Error);
}

INSTANTIATE_TEST_SUITE_P(Ado, ConformanceTest, testing::ValuesIn(BackEnds()), BackEndName);

TEST(RealServer, IsAskedWhereOneIsNamed) {
    if (!lanes::RealServer())
        GTEST_SKIP() << "VICENTER_TEST_CONNECT is not set: no real SQL Server was asked.";
    EXPECT_EQ(BackEnds().back(), BackEnd::kRealServer);
}

}  // namespace
}  // namespace vicenter::ado_test
