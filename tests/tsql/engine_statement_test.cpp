// by hand
#include "tests/tsql/engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

class EngineStatementTest : public EngineTest {
  protected:
    void MakeTemplates() {
        ASSERT_EQ(Run("create table t_VchTemplate (FID int not null constraint PK_T primary key, FName "
                      "nvarchar(255) not "
                      "null, FUserID int not null, FDate datetime null)"),
                  "");
        ASSERT_EQ(Run("create table t_VchTemplateEntry (FID int not null, FEntryID int not null, FNo int not "
                      "null, FExp "
                      "nvarchar(10) null, FFileCount int null, FAmount decimal(28, 4) null, constraint PK_E "
                      "primary key "
                      "(FID, FEntryID))"),
                  "");
        ASSERT_EQ(
            Run("create table t_VchTpControl (FID int not null, FNo int not null, FKey nvarchar(255) null, "
                "FFileCount int null, constraint PK_C primary key (FID, FNo))"),
            "");
    }
};

TEST_F(EngineStatementTest, A_union_of_two_queries_is_ordered_as_a_whole) {
    MakeTemplates();
    Run("insert into t_VchTemplate(FID,FName,FUserID) values(0,'标准模板',0) insert into "
        "t_VchTemplate(FID,FName,FUserID) "
        "values(2,'b',1) insert into t_VchTemplate(FID,FName,FUserID) values(1,'a',1)");
    EXPECT_EQ(Run("select a.* from (select FID,FName from t_VchTemplate where fid <> 0 and FUserID = 1\r\n "
                  "union all \r\n "
                  "select FID,FName from t_VchTemplate where FID = 0 ) a order by a.FID "),
              "FID:int FName:nvarchar(255)\n0|标准模板\n1|a\n2|b");
}

TEST_F(EngineStatementTest, A_thousand_rows_may_be_listed_by_union_all) {
    std::string rows = "select 0, N'零' collate database_default";
    for (int i = 1; i < 1000; ++i)
        rows += " union all select " + std::to_string(i) + ", null";
    EXPECT_EQ(Run("create table t (a int, b nvarchar(5)) insert into t " + rows), "");
    EXPECT_EQ(Run("select count(*) as n, sum(a) as s, count(b) as b from t"),
              "n:int s:int b:int\n1000|499500|1");
    EXPECT_EQ(Run("select top 2 a from (" + rows + ") x (a, b) order by a desc"), "a:int\n999\n998");
    EXPECT_EQ(Run(rows + " order by 1 offset 998 rows"), ":int :nvarchar(1)\n998|NULL\n999|NULL");
}

TEST_F(EngineStatementTest, A_cursor_variable_walks_the_numbers_and_a_declare_in_the_loop_keeps_its_value) {
    MakeTemplates();
    Run("insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FFileCount) values(7,1,3,'first',2) insert "
        "into "
        "t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FFileCount) values(7,2,3,'second',9) insert into "
        "t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FFileCount) values(7,3,5,'third',1)");
    EXPECT_EQ(Run(" declare @MaxFID int \r\n set @MaxFID = 7\r\n declare @FNo int \r\n declare @Vch_cursor "
                  "CURSOR \r\n Set "
                  "@Vch_cursor = CURSOR FOR \r\n     select distinct FNo from t_VchTemplateEntry where FID = "
                  "@MaxFID \r\n "
                  "OPEN @Vch_cursor \r\n FETCH @Vch_cursor into @FNo \r\n while @@fetch_status=0 \r\n Begin "
                  "\r\n     "
                  "declare @FFileCount int \r\n     declare @Exp nvarchar(255) \r\n     select Top 1 "
                  "@FFileCount=FFileCount,@Exp=FExp from t_VchTemplateEntry where FID = @MaxFID and FNo = "
                  "@FNo order by "
                  "FEntryID \r\n     insert into t_VchTpControl(FID,FNo,FKey,FFileCount) "
                  "values(@MaxFID,@FNo,@Exp,@FFileCount) \r\n     fetch next from @Vch_cursor into @FNo \r\n "
                  "End \r\n close "
                  "@Vch_cursor \r\n deallocate @Vch_cursor "),
              "");
    EXPECT_EQ(Run("select FNo, FKey, FFileCount from t_VchTpControl order by FNo"),
              "FNo:int FKey:nvarchar(255) FFileCount:int\n3|first|2\n5|third|1");
}

TEST_F(EngineStatementTest, Max_plus_one_of_an_empty_table_is_null_and_refused_by_the_key) {
    MakeTemplates();
    EXPECT_EQ(Run("declare @MaxFID int\r\nselect @MaxFID = MAX(FID)+1 from t_VchTemplate\r\ninsert into "
                  "t_VchTemplate(FID,FName,FUserID) values(@MaxFID,'x',1)"),
              "error 515 line 3: Cannot insert the value NULL into column 'FID', table 'dbo.t_VchTemplate'; "
              "column does "
              "not allow nulls. INSERT fails.");
}

TEST_F(EngineStatementTest, An_assignment_without_a_row_keeps_the_old_value_and_the_last_row_wins) {
    MakeTemplates();
    Run("insert into t_VchTemplate(FID,FName,FUserID) values(1,'a',1) insert into "
        "t_VchTemplate(FID,FName,FUserID) "
        "values(2,'b',1)");
    EXPECT_EQ(Run("declare @n nvarchar(20) set @n = 'old' select @n = FName from t_VchTemplate where FID = 9 "
                  "select @n as n"),
              "n:nvarchar(20)\nold");
    EXPECT_EQ(Run("declare @n nvarchar(20) select @n = FName from t_VchTemplate order by FID select @n as n"),
              "n:nvarchar(20)\nb");
}

TEST_F(EngineStatementTest, If_not_exists_inserts_once_and_updates_afterwards) {
    MakeTemplates();
    const std::string batch =
        "if Not exists(select 1 from t_VchTpControl where FID = 1 and FNo = 2) \r\nbegin \r\n    insert into "
        "t_VchTpControl(FID,FNo,FKey,FFileCount) values(1,2,'new',0) \r\nend \r\nelse \r\nbegin \r\n    "
        "update "
        "t_VchTpControl set FKey = 'changed' where FID = 1 and FNo = 2\r\nend \r\n";
    Run(batch);
    EXPECT_EQ(Run("select FKey from t_VchTpControl"), "FKey:nvarchar(255)\nnew");
    Run(batch);
    EXPECT_EQ(Run("select FKey from t_VchTpControl"), "FKey:nvarchar(255)\nchanged");
}

TEST_F(EngineStatementTest, A_list_that_ends_with_minus_one_spares_the_numbers_in_it) {
    MakeTemplates();
    Run("insert into t_VchTpControl(FID,FNo) values(1,1) insert into t_VchTpControl(FID,FNo) values(1,2)");
    EXPECT_EQ(Affected("Delete t_VchTpControl where FID = 1 and FNo not in (2,-1) "), 1);
    EXPECT_EQ(Affected("Delete t_VchTpControl where FID = 1 and FNo not in (-1) "), 1);
}

TEST_F(EngineStatementTest, Joined_items_take_an_empty_piece_for_what_is_missing) {
    Run("create table t_ItemDetail (FDetailID int not null primary key, F1 int null, F3 int null)");
    Run("create table t_Organization (FItemID int not null primary key, FNumber nvarchar(20) not null)");
    Run("create table t_Emp (FItemID int not null primary key, FNumber nvarchar(20) not null)");
    Run("insert into t_ItemDetail values(5, 11, 99) insert into t_Organization values(11, 'K01')");
    EXPECT_EQ(Run("select isnull(F1.FNumber,'')+','+isnull(F3.FNumber,'') as FItemsInfo from t_ItemDetail a  "
                  "left join "
                  "t_Organization F1 on a.F1 = F1.FItemID  left join t_Emp F3 on a.F3 = F3.FItemID  Where "
                  "FDetailID = 5"),
              "FItemsInfo:nvarchar(41)\nK01,");
}

TEST_F(EngineStatementTest, Many_inserts_of_one_kind_run_as_one_statement_with_every_kind_of_literal) {
    MakeTemplates();
    EXPECT_EQ(
        Run("insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FAmount) values(1,1,1,'a',1.5)\r\n"
            "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FAmount) values(1,2,-1,'it''s',-2)\r\n"
            "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FAmount) values(1,3,1,Null,.25)\r\n"
            "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FAmount) values(1,4,'7',N'中文',null)\r\n"
            "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FAmount) values(1,5,2,12,'3.1')"),
        "");
    EXPECT_EQ(Run("select FNo, FExp, FAmount from t_VchTemplateEntry order by FEntryID"),
              "FNo:int FExp:nvarchar(10) "
              "FAmount:decimal(28,4)\n1|a|1.5000\n-1|it's|-2.0000\n1|NULL|0.2500\n7|中文|NULL\n"
              "2|12|3.1000");
}

TEST_F(EngineStatementTest, Signs_belong_to_each_insert_of_a_long_batch_alone) {
    MakeTemplates();
    std::string batch;
    for (int i = 1; i <= 60; ++i) {
        batch += "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FAmount) values(1," +
                 std::to_string(i) + "," + (i % 2 == 1 ? "-" : "") + std::to_string(i) + ",'x'," +
                 (i % 3 == 1 ? "-" : "") + "1.5)\r\n";
    }
    EXPECT_EQ(Affected(batch), 60);
    EXPECT_EQ(Run("select sum(FNo) as a, sum(FAmount) as b from t_VchTemplateEntry"),
              "a:int b:decimal(38,4)\n30|30.0000");
}

TEST_F(EngineStatementTest, An_error_in_one_of_many_inserts_names_its_line) {
    MakeTemplates();
    EXPECT_EQ(Run("insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp) values(1,1,1,'a')\r\n"
                  "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp) values(1,2,1,'12345678901')"),
              "error 2628 line 2: String or binary data would be truncated in table "
              "'dbo.t_VchTemplateEntry', column "
              "'FExp'. Truncated value: '1234567890'.");
    EXPECT_EQ(Run("select count(*) as n from t_VchTemplateEntry"), "n:int\n0");
}

TEST_F(EngineStatementTest, A_procedure_takes_defaults_gives_output_and_returns) {
    ASSERT_EQ(
        Run("create procedure p @a int, @b int = 5, @c int output as begin set @c = @a + @b return 3 end"),
        "");
    EXPECT_EQ(Run("declare @r int, @c int exec @r = p 2, @c = @c output select @r as r, @c as c"),
              "r:int c:int\n3|7");
    EXPECT_EQ(Run("exec p"),
              "error 201 line 1: Procedure or function 'p' expects parameter '@a', which was not supplied.");
    EXPECT_EQ(Run("exec nothing"), "error 2812 line 1: Could not find stored procedure 'nothing'.");
}

TEST_F(EngineStatementTest, A_procedure_that_calls_itself_ends_at_the_nesting_limit) {
    Run("create procedure again as exec again");
    EXPECT_EQ(Run("exec again"),
              "error 217 line 1: Maximum stored procedure, function, trigger, or view nesting level exceeded "
              "(limit 32).");
}

TEST_F(EngineStatementTest, Executed_text_sees_parameters_and_temporary_tables_of_its_caller) {
    EXPECT_EQ(Run("create table #t (a int) insert into #t values(4) exec('update #t set a = a + 1') exec "
                  "sp_executesql "
                  "N'select a + @n as a from #t', N'@n int', @n = 10 drop table #t"),
              "a:int\n15");
}

TEST_F(EngineStatementTest, Identity_counts_up_and_takes_given_values_only_when_asked) {
    Run("create table t (id int identity(10, 5) not null primary key, a int null)");
    EXPECT_EQ(Run("insert into t(a) values(1) insert into t(a) values(2) select scope_identity() as i, "
                  "@@identity as j"),
              "i:decimal(38,0) j:decimal(38,0)\n15|15");
    EXPECT_EQ(Run("insert into t(id, a) values(1, 1)"),
              "error 544 line 1: Cannot insert explicit value for identity column in table 't' when "
              "IDENTITY_INSERT is set "
              "to OFF.");
    EXPECT_EQ(Run("set identity_insert t on insert into t(id, a) values(100, 1) set identity_insert t off "
                  "insert into t(a) "
                  "values(9) select max(id) as m from t"),
              "m:int\n105");
}

TEST_F(EngineStatementTest, Columns_refuse_what_does_not_fit) {
    Run("create table t (a tinyint null, b smallint null, c int not null, d decimal(5, 2) null, e datetime "
        "null)");
    EXPECT_EQ(Run("insert into t(a, c) values(256, 1)"),
              "error 220 line 1: Arithmetic overflow error for data type tinyint, value = 256.");
    EXPECT_EQ(
        Run("insert into t(c) values('abc')"),
        "error 245 line 1: Conversion failed when converting the varchar value 'abc' to data type int.");
    EXPECT_EQ(Run("insert into t(c, d) values(1, 1000)"),
              "error 8115 line 1: Arithmetic overflow error converting int to data type numeric.");
    EXPECT_EQ(Run("insert into t(c, d) values(1, 'x')"),
              "error 8114 line 1: Error converting data type varchar to numeric.");
    EXPECT_EQ(Run("insert into t(c, e) values(1, 'no date')"),
              "error 241 line 1: Conversion failed when converting date and/or time from character string.");
    EXPECT_EQ(
        Run("insert into t(c, e) values(1, '2026-02-30')"),
        "error 242 line 1: The conversion of a varchar data type to a datetime data type resulted in an "
        "out-of-range value.");
    EXPECT_EQ(Run("insert into t(a) values(1)"),
              "error 515 line 1: Cannot insert the value NULL into column 'c', table 'dbo.t'; column does "
              "not allow nulls. "
              "INSERT fails.");
}

TEST_F(EngineStatementTest, Checks_and_foreign_keys_are_error_547) {
    Run("create table p (id int not null primary key) create table c (id int not null constraint FK_c "
        "references p(id), n "
        "int null constraint CK_n check (n > 0))");
    EXPECT_EQ(Run("insert into c values(1, 1)").substr(0, 9), "error 547");
    Run("insert into p values(1) insert into c values(1, 5)");
    EXPECT_EQ(Run("update c set n = 0").substr(0, 9), "error 547");
    EXPECT_EQ(Run("delete p").substr(0, 9), "error 547");
    EXPECT_EQ(Run("drop table p").substr(0, 10), "error 3726");
}

TEST_F(EngineStatementTest, Unknown_names_have_their_own_numbers) {
    Run("create table t (a int)");
    EXPECT_EQ(Run("select * from nowhere"), "error 208 line 1: Invalid object name 'nowhere'.");
    EXPECT_EQ(Run("select b from t"), "error 207 line 1: Invalid column name 'b'.");
    EXPECT_EQ(Run("select x.a from t"),
              "error 4104 line 1: The multi-part identifier \"x.a\" could not be bound.");
    EXPECT_EQ(Run("select @v"), "error 137 line 1: Must declare the scalar variable \"@v\".");
    EXPECT_EQ(Run("declare @v int declare @v int").substr(0, 9), "error 134");
    EXPECT_EQ(Run("create table t (a int)"),
              "error 2714 line 1: There is already an object named 't' in the database.");
    EXPECT_EQ(Run("drop table u").substr(0, 10), "error 3701");
}

TEST_F(EngineStatementTest, A_subquery_with_two_rows_is_no_value) {
    Run("create table t (a int) insert into t values(1) insert into t values(2)");
    EXPECT_EQ(Run("select 1 as x where 1 = (select a from t)").substr(0, 9), "error 512");
    EXPECT_EQ(Run("select 1 as x where 2 = (select max(a) from t)"), "x:int\n1");
}

TEST_F(EngineStatementTest, Existence_tests_of_schema_scripts_find_tables) {
    Run("create table t (a int)");
    EXPECT_EQ(Run("if exists(select * from sysobjects where name='T' and xtype='U') select 1 as a"),
              "a:int\n1");
    EXPECT_EQ(Run("if object_id('dbo.t') is not null select 1 as a"), "a:int\n1");
    EXPECT_EQ(Run("if object_id('u') is null select 1 as a"), "a:int\n1");
    EXPECT_EQ(Run("select COLUMN_NAME from INFORMATION_SCHEMA.COLUMNS where TABLE_NAME = 't'"),
              "COLUMN_NAME:nvarchar(128)\na");
}

TEST_F(EngineStatementTest, A_text_read_twice_with_other_literals_gives_other_rows) {
    Run("create table t (a int not null primary key, b nvarchar(20))");
    Run("insert into t values(1, 'one') insert into t values(2, 'two')");
    EXPECT_EQ(Run("select b from t where a = 1"), "b:nvarchar(20)\none");
    EXPECT_EQ(Run("select b from t where a = 2"), "b:nvarchar(20)\ntwo");
    EXPECT_EQ(Run("select top 1 b + '!' as c from t where b = 'ONE  '"), "c:nvarchar(21)\none!");
    EXPECT_EQ(Run("select top 1 b + '?!' as c from t where b = 'TWO'"), "c:nvarchar(22)\ntwo?!");
    Run("alter table t add c int null");
    EXPECT_EQ(Run("select * from t where a = 2"), "a:int b:nvarchar(20) c:int\n2|two|NULL");
}

TEST_F(EngineStatementTest, Alter_table_adds_changes_and_drops_columns) {
    Run("create table t (a int not null) insert into t values(7)");
    EXPECT_EQ(Run("alter table t add b nvarchar(5) not null constraint DF_b default ('x')"), "");
    EXPECT_EQ(Run("select * from t"), "a:int b:nvarchar(5)\n7|x");
    EXPECT_EQ(Run("alter table t alter column a nvarchar(20) null"), "");
    EXPECT_EQ(Run("select a + 'b' as c from t"), "c:nvarchar(21)\n7b");
    EXPECT_EQ(Run("alter table t drop column b").substr(0, 10), "error 5074");
    EXPECT_EQ(Run("alter table t drop constraint DF_b alter table t drop column b"), "");
    EXPECT_EQ(Run("select * from t"), "a:nvarchar(20)\n7");
}

TEST_F(EngineStatementTest, Print_and_mild_raiserror_are_messages) {
    EXPECT_EQ(Messages("print N'你好' raiserror('%s is %d', 10, 1, 'x', 5)"), "你好\nx is 5\n");
    EXPECT_EQ(Run("\nraiserror('bad %s', 16, 1, 'thing')"), "error 50000 line 2: bad thing");
}

TEST_F(EngineStatementTest, A_caught_error_can_be_asked_about_and_thrown_on) {
    EXPECT_EQ(Run("begin try select 1/0 as a end try begin catch select error_number() as n, error_line() as "
                  "l end catch"),
              "n:int l:int\n8134|1");
    EXPECT_EQ(Run("begin try select 1/0 as a end try begin catch throw end catch"),
              "error 8134 line 1: Divide by zero error encountered.");
}

TEST_F(EngineStatementTest, Updates_and_deletes_with_joins_touch_the_right_rows) {
    Run("create table a (id int not null primary key, n int) create table b (id int not null primary key, m "
        "decimal(9, 2))");
    Run("insert into a values(1, 10) insert into a values(2, 20) insert into b values(2, 5.5)");
    EXPECT_EQ(Affected("update x set n = n + m from a x inner join b on x.id = b.id"), 1);
    EXPECT_EQ(Run("select n from a order by id"), "n:int\n10\n25");
    EXPECT_EQ(Affected("delete a from a inner join b on a.id = b.id where b.m > 1"), 1);
    EXPECT_EQ(Run("select id from a"), "id:int\n1");
}

}  // namespace
}  // namespace vicenter::tsql::engine
