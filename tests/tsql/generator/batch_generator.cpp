#include "batch_generator.h"

namespace vicenter::tsql_test {

Statements BatchGenerator::Tables(int indexes) {
    Statements tables = {
        "create table g_one (id int primary key, n int, d decimal(12,2), s nvarchar(12), w datetime)",
        "create table g_two (id int primary key, one_id int, m money, r float, c char(4) not null default "
        "'none')",
        "insert into g_one values (1, 5, 12.50, N'a', '20260131'), (2, null, -3, N'银行', '20250101 "
        "08:09:10.123'), "
        "(3, -7, 0.01, null, null), (4, 5, 1200, N'zz', '20260131 23:59:59'), (5, 0, null, N'b c', "
        "'19000101')",
        "insert into g_two values (1, 1, 12.5, 1.5, 'x'), (2, 1, -1, 2e10, 'y'), (3, 4, 0, null, 'x'), "
        "(4, null, 1200, -0.25, 'q'), (5, 9, null, 3, 'none')",
    };
    if ((indexes & 1) != 0)
        tables.push_back("create index g_ix1 on g_one (d, n) create index g_ix2 on g_two (one_id)");
    if ((indexes & 2) != 0)
        tables.push_back("create index g_ix3 on g_one (s desc) create index g_ix4 on g_two (m desc)");
    return tables;
}

std::string BatchGenerator::Number(int depth) {
    if (depth <= 0)
        return One({"o.n", "o.d", "o.id", "7", "-3", "0.5", "2.25", "null", "cast(3 as bigint)", "len(o.s)"});
    switch (Below(7)) {
        case 0:
            return "(" + Number(depth - 1) + " + " + Number(depth - 1) + ")";
        case 1:
            return "(" + Number(depth - 1) + " * 2 - " + Number(depth - 1) + ")";
        case 2:
            return "isnull(" + Number(depth - 1) + ", 0)";
        case 3:
            return "case when " + Condition(depth - 1) + " then " + Number(depth - 1) + " else " +
                   Number(depth - 1) + " end";
        case 4:
            return std::string("abs(") + One({"o.n", "o.d", "-5"}) + ")";
        case 5:
            return "cast(" + Number(depth - 1) + " as decimal(20,3))";
        default:
            return Number(0);
    }
}

std::string BatchGenerator::Text(int depth) {
    if (depth <= 0)
        return One({"o.s", "N'x'", "'plain'", "N'银行'", "convert(varchar(30), o.w, 120)", "str(o.id)"});
    switch (Below(4)) {
        case 0:
            return "(" + Text(depth - 1) + " + " + Text(depth - 1) + ")";
        case 1:
            return "upper(" + Text(depth - 1) + ")";
        case 2:
            return "substring(" + Text(depth - 1) + ", 1, 3)";
        default:
            return "coalesce(" + Text(depth - 1) + ", N'none')";
    }
}

std::string BatchGenerator::Condition(int depth) {
    switch (Below(depth > 0 ? 10 : 6)) {
        case 0:
            return Number(0) + One({" = ", " <> ", " < ", " >= "}) + Number(0);
        case 1:
            return "o.s " + std::string(One(
                                {"is null", "is not null", "like N'%a%'", "= N'银行'", "in (N'a', N'zz')"}));
        case 2:
            return "o.n " + std::string(One({"in (5, 0, null)", "not in (5, -7)", "between -7 and 4"}));
        case 3:
            return "exists (select * from g_two as e where e.one_id = o.id)";
        case 4:
            return "o.id in (select one_id from g_two)";
        case 5:
            return "o.w > '20251231'";
        case 6:
        case 7:
            return "(" + Condition(depth - 1) + " and " + Condition(depth - 1) + ")";
        case 8:
            return "(" + Condition(depth - 1) + " or " + Condition(depth - 1) + ")";
        default:
            return "not " + Condition(0);
    }
}

// Rows that look at other rows: windows and their frames, ranks, sets of groups.
std::string BatchGenerator::WindowQuery() {
    switch (Below(6)) {
        case 0:
            return "select o.id, " +
                   std::string(One({"row_number()", "rank()", "dense_rank()", "ntile(2)", "cume_dist()",
                                    "percent_rank()"})) +
                   " over (" + One({"", "partition by o.n "}) + "order by o." +
                   One({"id", "n, o.id", "d desc, o.id"}) + ") as x from g_one as o order by o.id";
        case 1:
            return "select o.id, " +
                   std::string(One({"lag(o.d)", "lead(o.s, 1, N'none')", "lag(o.id, 2, 0)",
                                    "first_value(o.w)", "last_value(o.n)"})) +
                   " over (order by o.id) as x from g_one as o where " + Condition(1) + " order by o.id";
        case 2:
            return "select t.id, " +
                   std::string(
                       One({"sum(t.m)", "avg(t.m)", "count(*)", "max(t.c)", "sum(t.r)", "var(t.m)"})) +
                   " over (order by t.id " +
                   One({"rows 1 preceding", "rows between 1 preceding and 1 following",
                        "rows between current row and unbounded following", "range unbounded preceding",
                        "rows between 2 following and 3 following"}) +
                   ") as x from g_two as t order by t.id";
        case 3:
            return "select top " + std::string(One({"1", "2", "3"})) +
                   " with ties o.n from g_one as o order by o.n" + One({"", " desc"});
        case 4:
            return "select count(*) as c from (select top " + std::string(One({"0", "25", "50", "100"})) +
                   " percent o.id from g_one as o order by o.id) as q";
        default:
            return "if exists (select * from g_one) select o.n, t.c, count(*) as x, sum(t.m) as y, "
                   "grouping_id(o.n, t.c) as i "
                   "from g_one as o cross join g_two as t group by " +
                   std::string(One({"rollup (o.n, t.c)", "cube (o.n, t.c)", "grouping sets ((o.n), (t.c))",
                                    "o.n, rollup (t.c)"})) +
                   " having count(*) > 0 order by i, o.n, t.c";
    }
}

// Sources beside tables: what is applied to each row, recursion, pivots, texts taken apart.
std::string BatchGenerator::SourceQuery() {
    switch (Below(6)) {
        case 0:
            return "select o.id, x.m from g_one as o " + std::string(One({"cross", "outer"})) +
                   " apply (select top 1 t.m from g_two as t where t.one_id = o.id order by t.id) as x order "
                   "by o.id";
        case 1:
            return "select o.id, x.n, x.total from g_one as o outer apply (select count(*) as n, sum(m) as "
                   "total "
                   "from g_two where one_id = o.id) as x where " +
                   Condition(0) + " order by o.id";
        case 2:
            return ";with c (i, s) as (select o.id, cast(o.s as nvarchar(60)) from g_one as o where o.id < 3 "
                   "union "
                   "all select c.i + 2, cast(c.s + N'-' as nvarchar(60)) from c where c.i < " +
                   std::to_string(3 + Below(8)) + ") select * from c order by i, s";
        case 3:
            return "select [1], [2], id from (select id, one_id, m from g_two) as s pivot (" +
                   std::string(One({"sum", "max", "count"})) +
                   "(m) for one_id in ([1], [2])) as p order by id";
        case 4:
            return "select o.id, p.value from g_one as o cross apply string_split(isnull(o.s, N'') + N',x', "
                   "N',') as p "
                   "order by o.id, p.value";
        default:
            return "select id, what, amount from (select id, m, cast(one_id as money) as i from g_two) as s "
                   "unpivot (amount "
                   "for what in (m, i)) as u order by id, what";
    }
}

std::string BatchGenerator::Query() {
    switch (Below(12)) {
        case 8:
        case 9:
            return WindowQuery();
        case 10:
        case 11:
            return SourceQuery();
        case 0:
            return "select o.id, " + Number(2) + " as x, " + Text(1) + " as y from g_one as o where " +
                   Condition(2) + " order by o.id";
        case 1:
            return "select o.id, t.id as t, t.m from g_one as o " +
                   std::string(One({"inner", "left", "right", "full"})) +
                   " join g_two as t on t.one_id = o.id order by 1, 2";
        case 2:
            return "select o.n, count(*) as c, sum(o.d) as x, max(o.w) as y from g_one as o where " +
                   Condition(1) + " group by o.n having count(*) < 3 order by o.n";
        case 3:
            return "select distinct " + Number(1) + " as x from g_one as o where " + Condition(1) +
                   " order by x";
        case 4:
            return "select d as x from g_one " +
                   std::string(One({"union", "intersect", "except", "union all"})) +
                   " select m from g_two order by x";
        case 5:
            return "select top " + std::to_string(Below(4)) + " o.id, o.d from g_one as o order by o.id desc";
        case 6:
            return ";with c as (select one_id, sum(m) as total from g_two group by one_id) select o.id, "
                   "c.total from "
                   "g_one as o left join c on c.one_id = o.id order by o.id";
        default:
            return "select count(*) as n, avg(o.d) as a, min(0 + " + Number(1) +
                   ") as m from g_one as o where " + Condition(2);
    }
}

std::string BatchGenerator::Change() {
    const std::string id = std::to_string(10 + names_++);
    switch (Below(11)) {
        case 8:
            return "merge g_one as t using (select id, one_id, m from g_two where id < 6) as s on t.id = "
                   "s.id when "
                   "matched and t.id > 3 then delete when matched then update set d = s.m, n = isnull(t.n, "
                   "0) + 1 "
                   "when not matched then insert (id, d) values (s.id + 50, s.m)" +
                   std::string(One({"", " when not matched by source and t.id > 4 then delete"})) + ";";
        case 9:
            return ";with q as (select *, row_number() over (partition by one_id order by id) as nr from "
                   "g_two) " +
                   std::string(
                       One({"delete from q where nr > 1", "update q set m = nr, c = 'via' where nr = 1"}));
        case 10:
            return "declare @t" + id + " table (k int primary key, v nvarchar(20)) insert into @t" + id +
                   " select o.id, o.s from g_one as o merge @t" + id +
                   " as t using g_two as s on t.k = s.id when matched "
                   "then update set v = s.c when not matched then insert values (s.id + 1000, s.c); select "
                   "count(*) "
                   "as n, max(v) as v from @t" +
                   id;
        case 0:
            return "insert into g_one (id, n, d) values (" + id + ", " + std::to_string(Below(9)) +
                   ", 1.005)";
        case 1:
            return "insert into g_two (id, one_id, m) select o.id + 100 * " + id +
                   ", o.id, o.d from g_one as o where " + Condition(1);
        case 2:
            return "update o set n = isnull(o.n, 0) + 1, s = N'u' from g_one as o where " + Condition(1);
        case 3:
            return "update g_two set m = m * 2, c = 'new' where id in (select id from g_one)";
        case 4:
            return "delete t from g_two as t inner join g_one as o on o.id = t.one_id where " + Condition(0);
        case 5:
            return "delete from g_one where id > 4 and id < 10";
        case 6:
            return "update g_one set d = (select sum(m) from g_two where one_id = g_one.id) where id < 3";
        default:
            return "select o.id, o.d into #t" + id + " from g_one as o where " + Condition(1) +
                   " select count(*) as n from #t" + id + " drop table #t" + id;
    }
}

std::string BatchGenerator::Flow() {
    const std::string name = "@v" + std::to_string(names_++);
    switch (Below(7)) {
        case 6:
            return "declare " + name + " int = 0 again_" + name.substr(1) + ": set " + name + " += 1 if " +
                   name + " < 3 begin update g_two set m = m + 1 where id = " + name + " goto again_" +
                   name.substr(1) + " end select " + name + " as v";
        case 0:
            return "declare " + name + " int = 0 while " + name + " < 3 begin set " + name + " += 1 if " +
                   name + " = 2 continue update g_two set m = m + " + name + " where id < 4 end select " +
                   name + " as v";
        case 1:
            return "if exists (select * from g_one as o where " + Condition(1) + ") begin " + Query() +
                   " end else begin " + Change() + " end";
        case 2: {
            const std::string cursor = "c" + name.substr(1);
            return "declare " + cursor + " cursor local for select id from g_one order by id declare " +
                   name + " int open " + cursor + " fetch next from " + cursor + " into " + name +
                   " while @@fetch_status = 0 begin update g_two set r = isnull(r, 0) + 1 where one_id = " +
                   name + " fetch next from " + cursor + " into " + name + " end close " + cursor +
                   " deallocate " + cursor;
        }
        case 3:
            return "begin tran " + Change() + " " + One({"commit", "rollback"}) + " select @@trancount as n";
        case 4:
            return "begin try " + Change() +
                   " select 1 / 0 as x end try begin catch select error_number() as e end catch";
        default:
            return "declare " + name + " table (a int, b nvarchar(20)) insert into " + name +
                   " select o.id, o.s from g_one as o where " + Condition(1) + " select count(*) as n from " +
                   name;
    }
}

std::string BatchGenerator::Statement() {
    switch (Below(4)) {
        case 0:
            return Query();
        case 1:
            return Flow();
        default:
            return Change() + " select @@rowcount as n, @@error as e";
    }
}

Statements BatchGenerator::Batch() {
    Statements statements;
    const int count = 2 + Below(5);
    for (int i = 0; i < count; ++i)
        statements.push_back(Statement());
    return statements;
}

std::string BatchGenerator::Failing(std::size_t number) {
    static const char* const kForms[] = {
        "select 1 / 0 as x",
        "insert into g_one (id) values (77), (1)",
        "insert into g_one (id, n) select id + 200, 10 / (id - 3) from g_one",
        "update g_one set n = 1 / (id - 2)",
        "update g_one set id = 3 where id in (1, 2)",
        "delete from g_one where 1 / (id - 2) > -5",
        "insert into g_two (id, c) values (500, null)",
        "insert into g_one (id, s) values (501, replicate(N'long', 9))",
        "declare @failing tinyint set @failing = 300",
        "exec no_such_procedure",
        "raiserror ('told', 16, 1)",
        "select (select id from g_one) as x",
        "merge g_one as t using (values (700), (700)) as s (id) on t.id = s.id when not matched then insert "
        "(id) "
        "values (s.id);",
        "merge g_one as t using (values (1, 0), (2, 1), (3, 0)) as s (id, z) on t.id = s.id when matched "
        "then update "
        "set n = 1 / s.z;",
        ";with q as (select *, row_number() over (order by id) as nr from g_one) update q set n = 1 / (nr - "
        "2)",
        ";with c (i) as (select 1 union all select i + 1 from c where i < 500) insert into g_one (id) select "
        "i + 800 "
        "from c",
        "exec sp_rename 'g_one', 'g_two'",
    };
    return kForms[number % std::size(kForms)];
}

std::string BatchGenerator::Text(const Statements& statements) {
    std::string text;
    for (const std::string& statement : statements)
        text += statement + "\n";
    return text;
}

}  // namespace vicenter::tsql_test
