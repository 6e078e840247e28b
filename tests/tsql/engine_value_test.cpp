// by hand
#include "tests/tsql/engine_fixture.h"
#include "tsql/base/text_units.h"
#include "tsql/types/date_part.h"
#include "tsql/types/date_text.h"
#include "tsql/types/like_pattern.h"

namespace vicenter::tsql::engine {
namespace {

std::int32_t FailureOf(const std::function<void()>& body) {
    try {
        body();
    } catch (const SqlError& error) {
        return error.Number();
    }
    return 0;
}

std::string Text(const Value& value, const SqlType& type, int style = 0) {
    return Convert(value, type, SqlType::NVarChar(kMaxLength), style).Text();
}

TEST(EngineValueTest, Texts_become_whole_numbers_as_the_server_reads_them) {
    const SqlType text = SqlType::VarChar(20);
    EXPECT_EQ(Convert(Value(std::string(" 12 ")), text, SqlType::Int()).Int(), 12);
    EXPECT_EQ(Convert(Value(std::string("")), text, SqlType::Int()).Int(), 0);
    EXPECT_EQ(Convert(Value(std::string("-9223372036854775808")), text, SqlType::Of(TypeKind::kBigInt)).Int(),
              std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(FailureOf([&] { Convert(Value(std::string("1.5")), text, SqlType::Int()); }), 245);
    EXPECT_EQ(FailureOf([&] { Convert(Value(std::string("3000000000")), text, SqlType::Int()); }), 248);
    EXPECT_EQ(FailureOf([&] { Convert(Value(std::string("300")), text, SqlType::Of(TypeKind::kTinyInt)); }),
              244);
    EXPECT_EQ(FailureOf([&] {
                  Convert(Value(std::string("9223372036854775808")), text, SqlType::Of(TypeKind::kBigInt));
              }),
              8115);
}

TEST(EngineValueTest, Decimal_results_take_the_servers_precision_and_scale) {
    const SqlType a = SqlType::Decimal(10, 2);
    const SqlType b = SqlType::Decimal(5, 3);
    EXPECT_EQ(DecimalResult(Arithmetic::kAdd, a, b), SqlType::Decimal(12, 3));
    EXPECT_EQ(DecimalResult(Arithmetic::kMultiply, a, b), SqlType::Decimal(16, 5));
    EXPECT_EQ(DecimalResult(Arithmetic::kDivide, a, b), SqlType::Decimal(19, 8));
    EXPECT_EQ(DecimalResult(Arithmetic::kMultiply, SqlType::Decimal(38, 10), SqlType::Decimal(38, 10)),
              SqlType::Decimal(38, 6));
}

TEST(EngineValueTest, The_common_type_follows_precedence) {
    EXPECT_EQ(CommonType(SqlType::VarChar(5), SqlType::NVarChar(3)), SqlType::NVarChar(5));
    EXPECT_EQ(CommonType(SqlType::VarChar(5), SqlType::Int()), SqlType::Int());
    EXPECT_EQ(CommonType(SqlType::Int(), SqlType::Decimal(5, 2)), SqlType::Decimal(12, 2));
    EXPECT_EQ(CommonType(SqlType::VarChar(5), SqlType::DateTime()), SqlType::DateTime());
}

TEST(EngineValueTest, Dates_are_read_and_written_in_many_forms) {
    for (const char* text :
         {"2026-01-31 08:09:10", "20260131 08:09:10", "2026/1/31 8:09:10 AM", "2026-01-31T08:09:10",
          "2026年1月31日 08:09:10", "Jan 31, 2026 8:09:10AM", "01/31/2026 08:09:10"}) {
        const auto date = ParseDate(text);
        ASSERT_TRUE(date) << text;
        EXPECT_EQ(date->ToText(), "2026-01-31 08:09:10") << text;
    }
    EXPECT_FALSE(ParseDate("2026-02-30"));
    EXPECT_FALSE(ParseDate("tomorrow"));
    const Value date(*ParseDate("2026-01-31 18:09:10.123"));
    EXPECT_EQ(Text(date, SqlType::DateTime()), "Jan 31 2026  6:09PM");
    EXPECT_EQ(Text(date, SqlType::DateTime(), 112), "20260131");
    EXPECT_EQ(Text(date, SqlType::DateTime(), 120), "2026-01-31 18:09:10");
    EXPECT_EQ(Text(date, SqlType::DateTime(), 121), "2026-01-31 18:09:10.123");
    EXPECT_EQ(Text(date, SqlType::DateTime(), 103), "31/01/2026");
    EXPECT_EQ(FailureOf([&] { Text(date, SqlType::DateTime(), 77); }), 281);
}

TEST(EngineValueTest, Datetime_rounds_to_three_hundredths_of_a_second) {
    const auto rounded = [](const char* text) {
        return RoundToType(*ParseDate(text), SqlType::DateTime())->ToText();
    };
    EXPECT_EQ(rounded("2026-01-31 00:00:00.001"), "2026-01-31 00:00:00");
    EXPECT_EQ(rounded("2026-01-31 00:00:00.002"), "2026-01-31 00:00:00.003");
    EXPECT_EQ(rounded("2026-01-31 00:00:00.005"), "2026-01-31 00:00:00.007");
    EXPECT_EQ(rounded("2026-01-31 23:59:59.999"), "2026-02-01 00:00:00");
    EXPECT_FALSE(RoundToType(*ParseDate("1700-01-01"), SqlType::DateTime()));
}

TEST(EngineValueTest, Date_arithmetic_counts_boundaries_and_keeps_month_ends) {
    const DateTime end = *ParseDate("2026-01-31");
    EXPECT_EQ(AddToDate(DatePart::kMonth, 1, end)->ToText(), "2026-02-28 00:00:00");
    EXPECT_EQ(DateDifference(DatePart::kYear, *ParseDate("2025-12-31"), *ParseDate("2026-01-01")), 1);
    EXPECT_EQ(DateDifference(DatePart::kDay, *ParseDate("2026-01-01 23:59"), *ParseDate("2026-01-02 00:01")),
              1);
    EXPECT_EQ(DatePartOf(DatePart::kWeekday, *ParseDate("2026-01-31")), 7);
    EXPECT_EQ(DatePartOf(DatePart::kIsoWeek, *ParseDate("2026-01-01")), 1);
}

TEST(EngineValueTest, Patterns_know_sets_ranges_negation_and_escapes) {
    const PlainCollation collation;
    EXPECT_TRUE(MatchesPattern(collation, "自定义模板(3)", "%自定义模板(%"));
    EXPECT_TRUE(MatchesPattern(collation, "ABC", "a_c"));
    EXPECT_TRUE(MatchesPattern(collation, "b7", "[a-c][0-9]"));
    EXPECT_FALSE(MatchesPattern(collation, "b7", "[^a-c]%"));
    EXPECT_TRUE(MatchesPattern(collation, "50%", "50!%", "!"));
    EXPECT_FALSE(MatchesPattern(collation, "500", "50!%", "!"));
    EXPECT_TRUE(MatchesPattern(collation, "a]", "a[]]"));
    EXPECT_TRUE(MatchesPattern(collation, "ab  ", "ab"));
    EXPECT_TRUE(MatchesPattern(collation, std::string(2000, 'a'), "%a%a%a%a%a%a%"));
    EXPECT_EQ(FindPattern(collation, "xx12", "%[0-9]%"), 3U);
    EXPECT_EQ(FindPattern(collation, "axaby", "%a%b%"), 1U);
    EXPECT_EQ(FindPattern(collation, "axxay", "%a%b%"), 0U);
    EXPECT_EQ(FindPattern(collation, "aab", "%ab"), 2U);
    EXPECT_EQ(FindPattern(collation, "aab  ", "%ab"), 2U);
    EXPECT_EQ(FindPattern(collation, "aabc", "%ab"), 0U);
    EXPECT_EQ(FindPattern(collation, "aab", "ab%"), 0U);
    EXPECT_EQ(FindPattern(collation, "ab", "%"), 1U);
}

TEST(EngineValueTest, Lengths_count_utf16_units_and_never_cut_a_character) {
    EXPECT_EQ(UnitCount("中文a"), 3U);
    EXPECT_EQ(UnitCount("😀"), 2U);
    EXPECT_EQ(HeadUnits("a😀b", 2), "a");
    EXPECT_EQ(TailUnits("中文字", 1), "文字");
}

TEST(EngineValueTest, Plain_letters_and_digits_compare_without_asking_the_collation) {
    const PlainCollation collation;
    EXPECT_EQ(CompareTexts(collation, "abc  ", "ABC"), 0);
    EXPECT_LT(CompareTexts(collation, "1001", "1002"), 0);
    EXPECT_LT(CompareTexts(collation, "9", "a"), 0);
    EXPECT_LT(CompareTexts(collation, "10", "100"), 0);
}

TEST_F(EngineTest, Expressions_have_the_servers_types_and_values) {
    EXPECT_EQ(Run("select 7/2 as a, 7/2.0 as b, 7%3 as c, 1.5*2 as d, 'a'+'b' as e"),
              "a:int b:decimal(8,6) c:int d:decimal(4,1) e:varchar(2)\n3|3.500000|1|3.0|ab");
    EXPECT_EQ(
        Run("select 'a'+null as a, len('ab  ') as b, charindex('B','ab') as c, replace('aXbx','x','-') as d"),
        "a:varchar(1) b:int c:int d:varchar(8000)\nNULL|2|2|a-b-");
    EXPECT_EQ(Run("select 2147483647 + 1 as a"),
              "error 8115 line 1: Arithmetic overflow error converting expression to data type int.");
    EXPECT_EQ(
        Run("select cast(1 as money)/3 as a, cast(2.5 as float)/2 as b, round(2.345, 2) as c, -5/2 as d"),
        "a:money b:float c:decimal(4,3) d:int\n0.33|1.25|2.350|-2");
    EXPECT_EQ(Run("select isnull(null,'x') as a, coalesce(null, 2, 3) as b, nullif(1,1) as c, "
                  "iif(1=1,'y','n') as d"),
              "a:varchar(1) b:int c:int d:varchar(1)\nx|2|NULL|y");
    EXPECT_EQ(Run("select getdate() as a, dateadd(day, 1, '2026-01-31') as b, datediff(day, '2026-01-01', "
                  "'2026-02-01') as c"),
              "a:datetime b:datetime c:int\n2026-01-31 08:09:10.123|2026-02-01 00:00:00.000|31");
}

}  // namespace
}  // namespace vicenter::tsql::engine
