#include "entry/sql_text.h"

#include <gtest/gtest.h>

namespace vicenter::entry {
namespace {

TEST(SqlText, EscapeDoublesApostrophesOnly) {
    EXPECT_EQ(SqlEscape("O'Neil''s"), "O''Neil''''s");
    EXPECT_EQ(SqlEscape(""), "");
    EXPECT_EQ(SqlEscape("摘要\\%_"), "摘要\\%_");
}

TEST(SqlText, QuoteTrimsAndEncloses) {
    EXPECT_EQ(SqlQuote("  a'b ", true, true), "'a''b'");
    EXPECT_EQ(SqlQuote("  a'b ", false, true), "a''b");
    EXPECT_EQ(SqlQuote("  a ", true, false), "'  a '");
    EXPECT_EQ(SqlQuote("", true, true), "''");
    EXPECT_EQ(SqlQuote("\ta\n", true, true), "'\ta\n'");  // blanks only are trimmed
}

TEST(SqlText, NullCountsAsTheEmptyText) {
    EXPECT_EQ(SqlText(Variant::Null()), "''");
    EXPECT_EQ(SqlText(Variant()), "''");
    EXPECT_EQ(SqlText(12), "'12'");
    EXPECT_EQ(SqlText(" a'b "), "'a''b'");
}

TEST(SqlText, AValueThatIsNoTextGivesTheEmptyText) {
    EXPECT_EQ(SqlText(Variant(automation::VariantArray{})), "");
    EXPECT_EQ(SqlValue(Variant(automation::VariantArray{}), true, true, true), "");
}

TEST(SqlText, AnEmptyValueMayBeNull) {
    EXPECT_EQ(SqlValue("", true, true, true), "Null");
    EXPECT_EQ(SqlValue("   ", true, true, true), "Null");
    EXPECT_EQ(SqlValue("   ", true, true, false), "'   '");
    EXPECT_EQ(SqlValue(Variant::Null(), true, true, true), "Null");
    EXPECT_EQ(SqlValue("", true, false, true), "''");
    EXPECT_EQ(SqlValue("O'Neil", true, true, true), "'O''Neil'");
    EXPECT_EQ(SqlValue("O'Neil", false, true, true), "O''Neil");
}

TEST(SqlText, LeadingNumbersStopAtTheFirstOtherCharacter) {
    EXPECT_EQ(LeadingNumber("3a"), 3);
    EXPECT_EQ(LeadingNumber("  12.5pt"), 12.5);
    EXPECT_EQ(LeadingNumber("-4"), -4);
    EXPECT_EQ(LeadingNumber("a3"), 0);
    EXPECT_EQ(LeadingNumber(""), 0);
    EXPECT_EQ(LeadingNumber("."), 0);
    EXPECT_EQ(LeadingNumber("1,000"), 1);
}

TEST(AppendSqlQuotedTest, AppendsTheLiteral) {
    std::string sql = "values(";
    AppendSqlQuoted(sql, "  it's 'here' ");
    AppendSqlQuoted(sql, "");
    AppendSqlQuoted(sql, "''");
    EXPECT_EQ(sql,
              "values('it''s ''here'''"
              "''"
              "''''''");
}

}  // namespace
}  // namespace vicenter::entry
