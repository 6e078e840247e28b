#include "platform/ado/passwords.h"

#include <gtest/gtest.h>

namespace vicenter::ado {
namespace {

TEST(PasswordsTest, AreHiddenHoweverTheyAreWritten) {
    const std::pair<const char*, const char*> texts[] = {
        {"", ""},
        {"Provider=X;Password=abc;User ID=sa", "Provider=X;Password=***;User ID=sa"},
        {"PWD = abc", "PWD = ***"},
        {"pwd=\"a;\"\"b}\";UID=u", "pwd=***;UID=u"},
        {"Password='a;b';x", "Password=***;x"},
        {"PWD={a}};b};UID=u", "PWD=***;UID=u"},
        {"Password=\"never closed;UID=u", "Password=***"},
        {"one Password=a\nnext line", "one Password=***\nnext line"},
        {"Password=;UID=u", "Password=;UID=u"},
        {"Password=a;PWD=b", "Password=***;PWD=***"},
        {"ConnectString={Provider=X;Password=a;}", "ConnectString={Provider=X;Password=***;}"},
        {"密码Password=密;码", "密码Password=***;码"},
        // No password is meant.
        {"Show_Password=no", "Show_Password=no"},
        {"the password is wrong", "the password is wrong"},
        {"pwd", "pwd"},
    };
    for (const auto& [text, hidden] : texts)
        EXPECT_EQ(PasswordsHidden(text), hidden);
}

TEST(PasswordsTest, ASetIsTheSameWhereverItsPasswordComesFrom) {
    const std::string set = WithoutPassword("Provider=X;Data Source=h;User ID=u");
    EXPECT_EQ(WithoutPassword("Provider=X;Data Source=h;Password=\"a;b\";User ID=u"), set);
    EXPECT_EQ(WithoutPassword("Provider=X;Data Source=h;User ID=u;PWD=other"), set);
    EXPECT_NE(WithoutPassword("Provider=X;Data Source=other;User ID=u"), set);
}

}  // namespace
}  // namespace vicenter::ado
