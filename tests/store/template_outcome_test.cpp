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
    EXPECT_EQ(WithUnusableNote("成功！", {}), "成功！");
    EXPECT_EQ(WithUnusableNote("成功！", {"3"}),
              "成功！\r\n\r\n注：编号为 3 的凭证模板存在异常(标红)，无法在当前账套中使用！");
    EXPECT_EQ(WithUnusableNote("成功！", {"3", "12"}),
              "成功！\r\n\r\n注：编号为 3、12 的凭证模板存在异常(标红)，无法在当前账套中使用！");
}

}  // namespace
}  // namespace vicenter::store
