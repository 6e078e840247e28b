#include "store/column_room.h"

#include <gtest/gtest.h>

namespace vicenter::store {
namespace {

std::string Why(int number, const std::string& text) {
    return WhyNoRoom(Column(number), text);
}

TEST(ColumnRoom, CountsTextsAsTheServerDoes) {
    EXPECT_EQ(Why(column::kCurrencyName, std::string(30, 'x')), "");
    EXPECT_EQ(Why(column::kCurrencyName, " " + std::string(30, 'x') + " "), "");
    EXPECT_EQ(Why(column::kCurrencyName, std::string(31, 'x')), "长度不能超过30个字符");
    EXPECT_EQ(Why(column::kCurrencyName, "币币币币币币币币币币币"), "");
}

TEST(ColumnRoom, KeepsNumbersThatRoundIntoIt) {
    EXPECT_EQ(Why(column::kAmount, "999999999999999999999999.9999"), "");
    EXPECT_EQ(Why(column::kAmount, "-999999999999999999999999.99994"), "");
    const std::string tooLarge = "数字过大，整数部分不能超过24位";
    for (const char* text : {"999999999999999999999999.99995", "1000000000000000000000000", "1e24", "-1E+300",
                             "-1000000000000000000000000", "99999999999999999999999999999999999999999999"}) {
        EXPECT_EQ(Why(column::kAmount, text), tooLarge) << text;
    }
    EXPECT_EQ(Why(column::kRate, "999999999999999999.9999999999"), "");
    EXPECT_EQ(Why(column::kRate, "1000000000000000000"), "数字过大，整数部分不能超过18位");
    EXPECT_EQ(Why(column::kFileCount, "2147483647"), "");
    EXPECT_EQ(Why(column::kFileCount, "2147483648"), "数字过大，不能大于2147483647");
    EXPECT_EQ(Why(column::kNo, "-2147483648"), "");
    EXPECT_EQ(Why(column::kNo, "-2147483649"), "数字过大，不能大于2147483647");
    for (const char* text : {"", "abc", "借"})
        EXPECT_EQ(Why(column::kAmount, text), "");
}

}  // namespace
}  // namespace vicenter::store
