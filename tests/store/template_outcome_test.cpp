#include "store/template_outcome.h"

#include "tests/store/store_fixture.h"

namespace vicenter::store {
namespace {

constexpr const char* kQuestion =
    "select FNo from t_VchTpControl where FIsCanUsed = 0 and FID = 12 order by fno";

TEST(TemplateOutcome, OnlyASavedOneCounts) {
    EXPECT_FALSE(TemplateOutcome());
    EXPECT_FALSE(TemplateOutcome{.state = TemplateOutcome::State::Refused});
    EXPECT_TRUE(TemplateOutcome{.state = TemplateOutcome::State::Saved});
}

TEST_F(StoreTest, UnusableNumbersComeInTheOrderOfTheAnswer) {
    set_.Answer("FIsCanUsed = 0", Rows({"FNo"}, {{3}, {12}}));
    EXPECT_EQ(ReadUnusableNumbers("12"), (Statements{"3", "12"}));
    EXPECT_EQ(set_.Statements(), Statements{kQuestion});
}

TEST_F(StoreTest, NoUnusableNumberIsNotTheSameAsNoAnswer) {
    set_.Answer("FIsCanUsed = 0", Rows({"FNo"}));
    EXPECT_EQ(ReadUnusableNumbers("12"), Statements());
    set_.Fail("FIsCanUsed = 0", "no");
    EXPECT_EQ(ReadUnusableNumbers("12"), std::nullopt);
}

TEST(UnusableNote, StandsBelowTheMessageAndNamesTheNumbers) {
    EXPECT_EQ(WithUnusableNote("成功！", Statements()), "成功！");
    EXPECT_EQ(WithUnusableNote("成功！", Statements{"3"}),
              "成功！\r\n\r\n注：编号为 3 的凭证模板存在异常(标红)，无法在当前账套中使用！");
    EXPECT_EQ(WithUnusableNote("成功！", Statements{"3", "12"}),
              "成功！\r\n\r\n注：编号为 3、12 的凭证模板存在异常(标红)，无法在当前账套中使用！");
}

TEST(UnusableNote, WhatCouldNotBeReadIsNotPassedForUsable) {
    EXPECT_EQ(WithUnusableNote("成功！", std::nullopt),
              "成功！\r\n\r\n注：哪些编号无法在当前账套中使用未能读取，请重新打开凭证模板查看！");
}

TEST(UnusableNote, NamesTheTemplateAmongSeveral) {
    std::string told = "已替换";
    AppendUnusableNote(told, "甲", Statements());
    EXPECT_EQ(told, "已替换");
    AppendUnusableNote(told, "乙", Statements{"3"});
    AppendUnusableNote(told, "丙", std::nullopt);
    EXPECT_EQ(told,
              "已替换\r\n注：模板 乙 编号为 3 的凭证模板存在异常(标红)，无法在当前账套中使用！"
              "\r\n注：模板 丙 哪些编号无法在当前账套中使用未能读取，请重新打开凭证模板查看！");
}

}  // namespace
}  // namespace vicenter::store
