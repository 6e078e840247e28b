// by hand
#include <filesystem>

#include <gtest/gtest.h>

#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"
#include "platform/system/collation.h"
#include "tests/fakes/own_folder.h"

namespace vicenter::ado {
namespace {

class AdoAccountSetTest : public testing::Test {
  protected:
    AdoAccountSetTest() { RegisterAccountSetProvider(); }
    ~AdoAccountSetTest() override { CloseIdleAccountSets(); }
    std::string Path() const { return (folder_.Path() / "set.vas").string(); }
    std::string Connect(const std::string& more = "Create=yes") const {
        return "Provider=VelaAccountSet;Data Source=" + Path() + ";" + more;
    }

    const fakes::OwnFolder folder_;
};

TEST_F(AdoAccountSetTest, Values_arrive_as_automation_values_of_their_types) {
    const ConnectionRef connection = OpenConnection(Connect());
    const RecordsetRef rows = connection->Execute(
        "select cast(1 as bit) as a, cast(2 as tinyint) as b, cast(3 as smallint) as c, 4 as d, cast(5 as "
        "bigint) as e, "
        "cast(1.5 as float) as f, cast(12.5 as decimal(9, 4)) as g, N'文' as h, cast('2026-01-31' as "
        "datetime) as i, "
        "null as j");
    EXPECT_EQ(rows->Value("a").Type(), automation::VariantType::Boolean);
    EXPECT_EQ(rows->Value("b").Type(), automation::VariantType::Int16);
    EXPECT_EQ(rows->Value("c").Type(), automation::VariantType::Int16);
    EXPECT_EQ(rows->Value("d").Type(), automation::VariantType::Int32);
    EXPECT_EQ(rows->Value("e").Type(), automation::VariantType::Int64);
    EXPECT_EQ(rows->Value("f").Type(), automation::VariantType::Double);
    EXPECT_EQ(rows->Value("g").ToDecimal().ToText(), "12.5000");
    EXPECT_EQ(rows->Value("h").AsText(), "文");
    EXPECT_EQ(rows->Value("i").Type(), automation::VariantType::Date);
    EXPECT_TRUE(rows->Value("j").IsNull());
    EXPECT_EQ(rows->Columns()[6].serverType, "decimal(9,4)");
    EXPECT_EQ(rows->Columns()[6].type, DataType::kNumeric);
}

TEST_F(AdoAccountSetTest, A_misspelt_setting_of_the_connect_string_is_refused) {
    for (const char* wrong : {"Transactions=non", "Lock Timeout=soon", "Lock Timeout=5 s"}) {
        try {
            OpenConnection(Connect(std::string("Create=yes;") + wrong));
            FAIL() << wrong;
        } catch (const automation::Error& error) {
            const std::string attribute = std::string(wrong).substr(0, std::string(wrong).find('='));
            EXPECT_EQ(error.Text(),
                      "Invalid value specified for connection string attribute '" + attribute + "'.");
        }
    }
    EXPECT_FALSE(std::filesystem::exists(Path()));
    OpenConnection(Connect("Create=yes;Transactions=Batch;Lock Timeout=-1"));
    OpenConnection(Connect("Transactions=NONE;Lock Timeout="));
}

TEST_F(AdoAccountSetTest, Several_results_hang_on_each_other_and_rows_are_counted) {
    const ConnectionRef connection = OpenConnection(Connect());
    std::int64_t affected = 0;
    const RecordsetRef none = connection->Execute("create table t (a int)", &affected);
    EXPECT_FALSE(none->IsOpen());
    EXPECT_EQ(affected, -1);
    const RecordsetRef first = connection->Execute(
        "insert into t values(1) insert into t values(2) select 1 as a select 2 as b", &affected);
    EXPECT_EQ(affected, 2);
    EXPECT_EQ(first->Value("a").ToInt32(), 1);
    ASSERT_TRUE(first->Next());
    EXPECT_EQ(first->Next()->Value("b").ToInt32(), 2);
    EXPECT_FALSE(first->Next()->Next());
}

TEST_F(AdoAccountSetTest, A_failure_throws_the_first_record_and_keeps_them_all) {
    const ConnectionRef connection = OpenConnection(Connect());
    try {
        connection->Execute("print 'before'\nselect * from nowhere");
        FAIL() << "no error";
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Number(), error_number::kProviderError);
        EXPECT_EQ(error.Text(), "Invalid object name 'nowhere'.");
    }
    ASSERT_EQ(connection->Errors().size(), 2U);
    EXPECT_EQ(connection->Errors()[0].native, 208);
    EXPECT_EQ(connection->Errors()[0].line, 2);
    EXPECT_EQ(connection->Errors()[0].sqlState, "42S02");
    EXPECT_EQ(connection->Errors()[1].text, "before");
}

TEST_F(AdoAccountSetTest, Results_of_a_batch_that_fails_can_be_had_until_the_next_one) {
    const ConnectionRef connection = OpenConnection(Connect());
    EXPECT_EQ(connection->ResultsDespiteFailure(), nullptr);
    EXPECT_THROW(connection->Execute("select 7 as a select 8 as b select * from nowhere"), automation::Error);
    const RecordsetRef first = connection->ResultsDespiteFailure();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->Value("a").ToInt32(), 7);
    ASSERT_NE(first->Next(), nullptr);
    EXPECT_EQ(first->Next()->Value("b").ToInt32(), 8);
    EXPECT_EQ(first->Next()->Next(), nullptr);
    connection->Execute("select 9 as c");
    EXPECT_EQ(connection->ResultsDespiteFailure(), nullptr);
    EXPECT_THROW(connection->Execute("select * from nowhere"), automation::Error);
    EXPECT_EQ(connection->ResultsDespiteFailure(), nullptr);
}

TEST_F(AdoAccountSetTest, A_missing_file_is_not_made_unless_asked_for) {
    EXPECT_THROW(OpenConnection(Connect("")), automation::Error);
    EXPECT_FALSE(std::filesystem::exists(Path()));
}

TEST_F(AdoAccountSetTest, Texts_compare_in_chinese_order_without_case_and_width) {
    const ConnectionRef connection = OpenConnection(Connect());
    connection->Execute(
        "create table t (n nvarchar(20)) insert into t values('中') insert into t values('阿') insert into t "
        "values('b') "
        "insert into t values('A') insert into t values('1')");
    const RecordsetRef rows = connection->Execute("select n from t order by n");
    std::string order;
    for (; !rows->AtEnd(); rows->MoveNext())
        order += rows->Value(0).AsText();
    EXPECT_EQ(order, "1Ab阿中");
    EXPECT_EQ(connection->Execute("select n from t where n = 'ａ  '")->RecordCount(), 1);
}

TEST_F(AdoAccountSetTest, Letters_and_digits_stand_in_the_collator_as_the_engine_takes_for_granted) {
    const std::string order = "0123456789abcdefghijklmnopqrstuvwxyz";
    for (std::size_t i = 0; i + 1 < order.size(); ++i) {
        EXPECT_LT(system::Collator::Chinese().Compare(order.substr(i, 1), order.substr(i + 1, 1)), 0)
            << order[i];
    }
    EXPECT_EQ(system::Collator::Chinese().Compare("ABC1", "abc1"), 0);
    EXPECT_LT(system::Collator::Chinese().Compare("a9", "ab"), 0);
    EXPECT_LT(system::Collator::Chinese().Compare("a", "aa"), 0);
}

TEST_F(AdoAccountSetTest, A_pooled_session_comes_back_clean_and_never_for_another_file) {
    {
        const ConnectionRef first = OpenConnection(Connect());
        first->Execute("create table t (a int) create table #x (a int) begin tran");
    }
    {
        const ConnectionRef second = OpenConnection(Connect());
        EXPECT_THROW(second->Execute("select * from #x"), automation::Error);
        EXPECT_EQ(second->Execute("select @@trancount as n")->Value(0).ToInt32(), 0);
    }
    std::error_code held;
    for (const char* end : {"", "-wal", "-shm"})
        std::filesystem::remove(Path() + end, held);
#ifdef _WIN32  // where nobody takes away what the pool has open
    EXPECT_TRUE(held);
    CloseIdleAccountSets();
    for (const char* end : {"", "-wal", "-shm"})
        std::filesystem::remove(Path() + end);
#endif
    const ConnectionRef third = OpenConnection(Connect());
    EXPECT_THROW(third->Execute("select * from t"), automation::Error);
}

TEST_F(AdoAccountSetTest, The_data_version_changes_with_every_change_whoever_makes_it) {
    const ConnectionRef one = OpenConnection(Connect());
    const ConnectionRef other = OpenConnection(Connect());
    one->Execute("create table t (a int)");
    const auto version = one->DataVersion();
    ASSERT_TRUE(version.has_value());
    one->Execute("select * from t");
    other->Execute("select * from t");
    EXPECT_EQ(one->DataVersion(), version);

    one->Execute("insert into t values(1)");
    const auto afterOwn = one->DataVersion();
    EXPECT_NE(afterOwn, version);
    other->Execute("update t set a = 2");
    const auto afterOthers = one->DataVersion();
    EXPECT_NE(afterOthers, afterOwn);
    one->Execute("drop table t");
    EXPECT_NE(one->DataVersion(), afterOthers);
    EXPECT_EQ(one->DataVersion(), one->DataVersion());

    one->Close();
    EXPECT_EQ(one->DataVersion(), std::nullopt);
}

TEST_F(AdoAccountSetTest, No_batch_of_a_unit_that_is_gone_is_kept_by_itself) {
    const ConnectionRef connection = OpenConnection(Connect());
    connection->Execute("create table t (a int)");
    EXPECT_TRUE(connection->BeginUnit());
    connection->Execute("insert into t values (1)");
    EXPECT_THROW(connection->Execute("select * from nowhere"), automation::Error);
    EXPECT_THROW(connection->Execute("insert into t values (2)"), automation::Error);
    EXPECT_FALSE(connection->CommitUnit());
    EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 0);
    EXPECT_TRUE(connection->BeginUnit());
    connection->Execute("insert into t values (3)");
    EXPECT_TRUE(connection->CommitUnit());
    EXPECT_EQ(connection->Execute("select a from t")->RecordCount(), 1);
}

TEST_F(AdoAccountSetTest, A_closed_connection_says_so) {
    const ConnectionRef connection = OpenConnection(Connect());
    connection->Close();
    EXPECT_FALSE(connection->IsOpen());
    EXPECT_THROW(connection->Execute("select 1"), automation::Error);
}

}  // namespace
}  // namespace vicenter::ado
