#include "platform/ado/odbc/batch_nature.h"

#include <gmock/gmock.h>

namespace vicenter::ado {
namespace {

TEST(BatchNatureTest, OnlySeveralChangesNeedAUnit) {
    EXPECT_FALSE(NatureOf("select FID from t_VchTemplate where FName = 'delete'").needsUnit);
    EXPECT_FALSE(NatureOf("if not exists (select 1 from t) begin insert into t values (1) end").needsUnit);
    EXPECT_FALSE(
        NatureOf("declare @n int select @n = max(FID) + 1 from t insert into t values (@n)").needsUnit);
    EXPECT_TRUE(NatureOf("delete t where a = 1 insert into t values (1)").needsUnit);
    EXPECT_TRUE(NatureOf("exec pro_VchTpCanUsed 3").needsUnit);
    EXPECT_TRUE(NatureOf("while @i < 3 begin insert into t values (1) set @i = @i + 1 end").needsUnit);
    EXPECT_FALSE(NatureOf("create database a").needsUnit);
    EXPECT_TRUE(NatureOf("create database a").refusesUnit);
}

TEST(BatchNatureTest, WhatStaysBehindIsSeen) {
    EXPECT_FALSE(NatureOf("declare @c cursor set @c = cursor for select 1 select * from t").leavesTraces);
    EXPECT_FALSE(NatureOf("update t set nocount_column = 1").leavesTraces);
    EXPECT_FALSE(NatureOf("delete t update c set used += 1 from t c update c set c.used = 2").leavesTraces);
    for (const char* batch :
         {"set nocount on", "set lock_timeout 5", "select * into #a from t", "use other", "begin transaction",
          "declare c cursor for select 1", "execute as user = 'x'", "update t set a = 1 set lock_timeout 5"})
        EXPECT_TRUE(NatureOf(batch).leavesTraces) << batch;
}

TEST(BatchNatureTest, CountsAreToldApartOnlyWhereSomeMayBeOfReads) {
    EXPECT_TRUE(NatureOf("declare @n int select @n = 1 insert into t values (@n)").mayCountReads);
    EXPECT_TRUE(NatureOf("insert into t select a from u").mayCountReads);
    EXPECT_FALSE(NatureOf("delete t insert into t values ('select')").mayCountReads);
    EXPECT_FALSE(NatureOf("select @n = 1 from t while @n < 3 delete t").mayCountReads);
}

// Heads that are the same are read once; what stands behind each is not.
TEST(BatchNatureTest, LinesOfOneHeadAreReadToTheirEnd) {
    const std::string line = "insert into t(a, [values(], b) values(1, 'insert into t', N'x''')\r\n";
    EXPECT_TRUE(NatureOf(line + line + line).needsUnit);
    EXPECT_FALSE(NatureOf(line + line + line).leavesTraces);
    EXPECT_FALSE(NatureOf(line + line).mayCountReads);
    EXPECT_FALSE(NatureOf(line).needsUnit);
    EXPECT_TRUE(NatureOf(line + line + "set lock_timeout 5").leavesTraces);
    EXPECT_TRUE(
        NatureOf(line + line + "insert into t(a, [values(], b) values((select 1), 2, 3)").mayCountReads);
    EXPECT_TRUE(NatureOf(line + "insert into #t values(1) insert into #t values(2)").leavesTraces);
    EXPECT_TRUE(NatureOf(line + line + "use other").leavesTraces);
    EXPECT_TRUE(NatureOf(line + line + "insert into t(a, [values(], b) values('never closed").leavesTraces);
    EXPECT_TRUE(NatureOf(line + "insert into t(a, [values(], b) values(-1, --)\r\n 2.5, '') begin tran")
                    .leavesTraces);
    EXPECT_TRUE(
        NatureOf(line + "insert into t(a, [values(], b) values(1, '''', N')') begin tran").leavesTraces);
    EXPECT_FALSE(
        NatureOf(line + "insert into t(a, [values(], b) values(1, '); begin tran', 2)").leavesTraces);
}

TEST(BatchNatureTest, NamesThatLookLikeWordsSayNothing) {
    const BatchNature nature = NatureOf(
        "update t set nocount_column = 1, used = 2 where [use] = 3 and \"transaction\" = 4 and tranny = 5");
    EXPECT_FALSE(nature.leavesTraces);
    EXPECT_FALSE(nature.needsUnit);
}

TEST(BatchNatureTest, CountsAreToldApartInAStraightBatch) {
    EXPECT_THAT(
        CountsOfChanges("declare @a int select @a = 1 insert into t values (1) select * from t delete t"),
        testing::ElementsAre(false, true, true));
    EXPECT_TRUE(CountsOfChanges("while 1 = 1 delete t").empty());
}

}  // namespace
}  // namespace vicenter::ado
