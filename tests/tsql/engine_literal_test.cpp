// Texts that differ in their literals alone share what was made of the first of them. Each answers as it does
// by itself, which a comment makes of it, in whatever order they come, those that are wrong among them.

#include <array>

#include "engine_fixture.h"

namespace vicenter::tsql::engine {
namespace {

using LiteralTest = EngineTest;

// With the literals in the places of A and B.
std::string With(std::string form, int a, int b) {
    for (const auto& [mark, number] : {std::pair{'A', a}, std::pair{'B', b}}) {
        for (std::size_t at = form.find(mark); at != std::string::npos; at = form.find(mark))
            form.replace(at, 1, std::to_string(number));
    }
    return form;
}

TEST_F(LiteralTest, Each_text_answers_as_by_itself) {
    constexpr const char* kForms[] = {
        "select n+A from t group by n+B",
        "select n,s from t order by A,B",
        "select n from t order by A",
        "select distinct n+A from t order by n+B",
        "select n+A, count(*) from t group by n+A order by n+B",
        "select n+A from t group by n+A having n+B>2",
        "select case when n=A then B else 'x' end from t",
        "select isnull('A',B), nullif(A,'B')",
        "select n from t union select s from t order by A",
        "select coalesce(A,'xB')",
        "select A union all select 'x'",
        "select round(1.5,A,B), str(12.5,BA,A)",
        "select n from t group by n order by max(n)+A, n%B",
        "select sum(n) over (order by A) from t",
        "select row_number() over (order by A+B) from t",
        "select top A n from t order by B",
        "select n%A, grouping(n%B) from t group by rollup(n%A)",
        "select n%A, grouping(n%A) from t group by cube(n%A, n%B) order by 1, 2",
        "select n%A from t group by n%B, n%A",
        "select case n%A when B then 1 end from t group by n%B",
        "select case when n between A and B then 1 end from t group by case when n between B and A then 1 end",
        "select case when n in (A, B) then 1 end from t group by case when n in (B, A) then 1 end",
        "select case when s like 'A%' then 1 end from t group by case when s like 'B%' then 1 end",
        "select max(n)+A, n%B+A from t group by n%B",
        "select max(n), substring(s,A,1) from t group by substring(s,B,1)",
        "select convert(varchar(10),n,A) from t group by convert(varchar(10),n,B)",
        "select lag(n,A,'xB') over (order by id) from t",
        "select ntile(A) over (order by id), n%B from t",
        "select cast(A00 as tinyint), cast(B00 as tinyint)",
        "select id from t where id in (select max(id) from t group by n%A having n%B=0)",
        "select (select max(n)%A from t where n%B=0 group by n%A)",
        "select n k from t group by n order by k+A, n+B",
        "select sum(n)+A from t order by sum(n)+B",
        "select replicate('a',A)+replicate('b',B), left('abc',A), space(B)+'x'",
        "select * from (select n k, id from t) p pivot (sum(id) for k in ([A],[B])) x",
        "select id from t order by id offset A rows fetch next B rows only",
        "with c as (select A x union all select x+A from c where x<B*5) select x from c",
        "select choose(A,'p','q','r'), iif(A>B,'a','b'), power(A,B), A.5*B, A/B.0",
    };
    constexpr std::array<std::pair<int, int>, 9> kLiterals{
        {{1, 1}, {1, 2}, {2, 2}, {2, 1}, {3, 3}, {3, 1}, {1, 3}, {3, 2}, {2, 3}}};
    Run("create table t (id int primary key, n int, s varchar(10)) "
        "insert into t values (1, 1, '1a'), (2, 2, '2b1'), (3, 3, 'a2'), (4, 2, '3c'), (5, 1, 'b3')");
    const auto other = Another();
    int number = 0;
    for (const char* form : kForms) {
        for (const auto& [a, b] : kLiterals) {
            const std::string text = With(form, a, b);
            EXPECT_EQ(Run(text), RunOn(*other, text + " -- " + std::to_string(++number))) << text;
        }
    }
}

}  // namespace
}  // namespace vicenter::tsql::engine
