#pragma once

// Forms of the dialect that a server of T-SQL may lack, by the words that show them in a generated statement.

#include <array>
#include <string>
#include <string_view>

namespace vicenter::tsql_test {

struct Form {
    const char* words;
    const char* question;                    // whether a server takes it
    const char* otherOnBabelfish = nullptr;  // why its answers cannot be compared there
};

inline constexpr std::array<Form, 19> kForms{{
    {"merge ",
     "declare @t table (a int) merge @t as t using (values (1)) as s (a) on t.a = s.a when not matched then "
     "insert values (s.a);",
     "no MERGE"},
    {"unpivot", "select v from (select 1 as a, 2 as b) as s unpivot (v for w in (a, b)) as u", "no UNPIVOT"},
    {"pivot (", "select [1] from (select 1 as a, 2 as b) as s pivot (max(b) for a in ([1])) as p",
     "PIVOT over NULL ends its process"},
    {"with ties", "select top 1 with ties a from (select 1 as a) as q order by a", "no WITH TIES"},
    {" percent ", "select top 50 percent a from (select 1 as a) as q order by a", "no TOP PERCENT"},
    {" apply ", "select b from (select 1 as a) as q cross apply (select q.a + 1 as b) as x"},
    {"string_split", "select value from string_split(N'a,b', N',')",
     "the parts have the order of another collation"},
    {"grouping_id(",
     "select a, b, grouping_id(a, b) as i from (select 1 as a, 2 as b) as q group by cube (a, b)",
     "no GROUPING_ID"},
    {";with q as", "create table g_form (a int) ;with q as (select a from g_form) delete from q",
     "no change through WITH"},
    {"str(", "select str(1) as a", "a text behind STR is lost"},
    {"max(t.c)", "select max('a') as a", "no windows over char"},
    {"abs(o.d)", "select abs(1.5) as a", "the places of a decimal in ABS are lost"},
    {"0.5", "select 0.5 as a", "the places of a literal in CASE are lost"},
    {"2.25", "select 2.25 as a", "the places of a literal in CASE are lost"},
    {"else o.d", "select 1 as a", "CASE of an integer and a decimal breaks the line"},
    {"replicate(N'long'", "select 1 as a", "8152, the number of older servers"},
    {"where i < 500", "select 1 as a", "no limit of recursion"},
    {"goto ", "goto there there: select 1 as a"},
    {"grouping sets", "select a, count(*) as n from (select 1 as a) as q group by grouping sets ((a), ())"},
}};

inline bool Has(const std::string& statement, const Form& form) {
    return statement.find(form.words) != std::string::npos;
}

}  // namespace vicenter::tsql_test
