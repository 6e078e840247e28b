#include "automation/date_time.h"

#include <gtest/gtest.h>

namespace vicenter::automation {
namespace {

TEST(DateTime, CountsFrom1899December30) {
    EXPECT_EQ(DateTime().ToText(), "1899-12-30 00:00:00");
    EXPECT_EQ(DateTime::FromSerial(1).ToText(), "1899-12-31 00:00:00");
    EXPECT_EQ(DateTime::FromSerial(45000.5).ToText(), "2023-03-15 12:00:00");
}

TEST(DateTime, BeforeTheEpochTheFractionCountsForward) {
    EXPECT_EQ(DateTime::FromSerial(-1.25).ToText(), "1899-12-29 06:00:00");
    EXPECT_DOUBLE_EQ(DateTime::FromSerial(-1.25).ToSerial(), -1.25);
}

TEST(DateTime, ReadsTheFormsPeopleWrite) {
    for (const char* text :
         {"2026-01-31 08:05:00", "2026/1/31 8:05", "2026-01-31T08:05:00", " 2026-01-31 08:05:00.000 "}) {
        const auto value = DateTime::Parse(text);
        ASSERT_TRUE(value.has_value()) << text;
        EXPECT_EQ(value->ToText(), "2026-01-31 08:05:00") << text;
    }
    EXPECT_EQ(DateTime::Parse("2026-01-31 08:05:00.5")->ToText(), "2026-01-31 08:05:00.500");
    EXPECT_EQ(DateTime::Parse("2024-02-29")->ToText(), "2024-02-29 00:00:00");
}

TEST(DateTime, RefusesWhatIsNoDate) {
    for (const char* text : {"", "2026", "2026-13-01", "2026-02-29", "2026-01-31 25:00", "2026-01-31 08",
                             "2026-01/31", "31.01.2026", "2026-01-31 08:00:00 x", "0000-01-01"}) {
        EXPECT_FALSE(DateTime::Parse(text).has_value()) << text;
    }
}

TEST(DateTime, PartsAndTextAgreeThroughTheYears) {
    for (int year : {1, 1600, 1899, 1900, 2000, 2026, 9999}) {
        for (int month = 1; month <= 12; ++month) {
            const DateTimeParts parts{year, month, 28, 23, 59, 59, 999};
            const auto value = DateTime::FromParts(parts);
            ASSERT_TRUE(value.has_value());
            const DateTimeParts back = value->Parts();
            EXPECT_EQ(back.year, year);
            EXPECT_EQ(back.month, month);
            EXPECT_EQ(back.day, 28);
            EXPECT_EQ(back.millisecond, 999);
        }
    }
}

}  // namespace
}  // namespace vicenter::automation
