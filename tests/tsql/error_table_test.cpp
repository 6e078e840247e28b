#include "tsql/base/error_table.h"

#include <gtest/gtest.h>

namespace vicenter::tsql {
namespace {

TEST(ErrorTableTest, IsAscendingWithoutRepetition) {
    std::int32_t last = 0;
    for (const ErrorEntry& entry : ErrorTable()) {
        EXPECT_GT(entry.number, last);
        last = entry.number;
        EXPECT_FALSE(entry.message.empty());
        EXPECT_EQ(FindError(entry.number), &entry);
    }
}

TEST(ErrorTableTest, KnowsNothingOfOtherNumbers) {
    EXPECT_EQ(FindError(1), nullptr);
    EXPECT_EQ(FindError(50001), nullptr);
    EXPECT_EQ(FindError(-5), nullptr);
}

TEST(ErrorTableTest, FillsSlotsInOrder) {
    EXPECT_EQ(FormatMessage("a '%.*ls' b %ls c %d%%.", {"x", std::string("%d"), 7}), "a 'x' b %d c 7%.");
    EXPECT_EQ(FormatMessage("Cannot %S_MSG the %S_MSG '%.*ls'.", {"drop", "table", "t"}),
              "Cannot drop the table 't'.");
}

TEST(ErrorTableTest, LeavesSlotsWithoutArgumentsEmpty) {
    EXPECT_EQ(FormatMessage("'%ls' %d.", {}), "'' .");
}

TEST(ErrorTableTest, MakesErrorsWithTheServersTexts) {
    const SqlError error = MakeError(208, Position{10, 3, 5}, {"nowhere"});
    EXPECT_EQ(error.Number(), 208);
    EXPECT_EQ(error.Text(), "Invalid object name 'nowhere'.");
    EXPECT_EQ(error.Details().severity, 16);
    EXPECT_EQ(error.Details().line, 3);
    EXPECT_EQ(error.Details().column, 5);
    EXPECT_STREQ(
        MakeError(2627, {}, {"PRIMARY KEY", "PK_t", "dbo.t", "(1)"}).what(),
        "Violation of PRIMARY KEY constraint 'PK_t'. Cannot insert duplicate key in object 'dbo.t'. The "
        "duplicate key value is (1).");
    EXPECT_STREQ(MakeError(2812, {}, {"p"}).what(), "Could not find stored procedure 'p'.");
    EXPECT_STREQ(
        MakeError(547, {}, {"INSERT", "CHECK", "CK_t", "db", "dbo.t", ", column '", "a", "'"}).what(),
        "The INSERT statement conflicted with the CHECK constraint \"CK_t\". The conflict occurred in "
        "database "
        "\"db\", table \"dbo.t\", column 'a'.");
}

TEST(ErrorTableTest, KeepsTheNearestProcedure) {
    SqlError error = MakeError(8134, {});
    error.SetProcedure("inner");
    error.SetProcedure("outer");
    EXPECT_EQ(error.Details().procedure, "inner");
}

}  // namespace
}  // namespace vicenter::tsql
