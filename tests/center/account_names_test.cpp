#include "center/frame/account_names.h"

#include <gtest/gtest.h>

namespace vicenter::center {
namespace {

TEST(AccountNames, AreThoseThatTheHostGives) {
    const AccountNames names = NamesOfAccount(
        "UserID=7;ConnectString={Provider=SQLOLEDB;Initial Catalog=AIS2026};AcctName=林氏茶礼;"
        "UserName=林晓岚;");
    EXPECT_EQ(names.accountSet, "林氏茶礼");
    EXPECT_EQ(names.user, "林晓岚");
}

TEST(AccountNames, AreTheDatabaseAndTheUsersNumberWhereTheHostGivesNone) {
    const AccountNames names = NamesOfAccount(
        "UserID=7;ConnectString={Provider=SQLOLEDB;Data Source=s;Database=AIS2026;Password=geheim};");
    EXPECT_EQ(names.accountSet, "AIS2026");
    EXPECT_EQ(names.user, "用户 7");
}

// What stands within the connect string is the driver's.
TEST(AccountNames, AreNotTakenFromTheConnectString) {
    const AccountNames names = NamesOfAccount("UserID=7;ConnectString={Provider=X;UserName=sa;AcctName=y};");
    EXPECT_EQ(names.accountSet, "");
    EXPECT_EQ(names.user, "用户 7");
}

TEST(AccountNames, OfAHostThatSaysNothingAreEmpty) {
    EXPECT_EQ(NamesOfAccount("").accountSet, "");
    EXPECT_EQ(NamesOfAccount("").user, "");
}

}  // namespace
}  // namespace vicenter::center
