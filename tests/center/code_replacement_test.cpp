// A code replaced in all templates of the demo set: which lines are offered, what is written, what others
// have done meanwhile, and back.

#include "center/search/code_replacement.h"

#include <gmock/gmock.h>

#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

using State = ReplacementLine::State;
using system::MessageResult;
using testing::ElementsAre;
using testing::HasSubstr;

class Replacement : public WindowOnSet {
  protected:
    void SetUp() override {
        WindowOnSet::SetUp();
        entry::SetCurrentUserId("1");
    }
    std::string Count(const std::string& where) {
        return Value("select count(*) as n from t_VchTemplateEntry where " + where);
    }
    std::string Told() { return TakeMessages().back(); }

    CodeReplacement replacement_{"1"};
    const ReplacementWish cash_{column::kAccountNumber, "1001", "1002.05"};
};

TEST_F(Replacement, NeverTouchesTheTemplatesOfOthers) {
    session_->Execute(
        "update t_VchTemplateEntry set FAccountNumber = '1001' where FID in (select FID from "
        "t_VchTemplate where FUserID = 2)");
    const std::string others = Count(
        "FAccountNumber = '1001' and FID in (select FID from t_VchTemplate where "
        "FUserID = 2)");
    ASSERT_NE(others, "0");
    ASSERT_TRUE(replacement_.List(cash_));
    for (const ReplacementLine& line : replacement_.Lines())
        EXPECT_NE(Value("select FUserID from t_VchTemplate where FID = " + line.templateId), "2");
    Answer(MessageResult::Yes);
    ASSERT_TRUE(replacement_.Replace());
    EXPECT_EQ(Count("FAccountNumber = '1001' and FID in (select FID from t_VchTemplate where FUserID = 2)"),
              others);
    // The standard template's line was not chosen.
    EXPECT_EQ(Count("FAccountNumber = '1001' and FID = 0"), "1");
}

TEST_F(Replacement, ACodeIsAskedForOnceAndItsIdAndNameComeWithIt) {
    ASSERT_TRUE(replacement_.List(cash_));
    Answer(MessageResult::Yes);
    ASSERT_TRUE(replacement_.Replace());
    EXPECT_EQ(Count("FAccountNumber = '1001' and FID in (select FID from t_VchTemplate where FUserID = 1)"),
              "0");
    EXPECT_EQ(
        Count("FAccountNumber = '1002.05' and FAcctountName = '建设银行一般户' and FAccountID = (select "
              "FAccountID from t_Account where FNumber = '1002.05') and FID = 1"),
        "3");
    EXPECT_TRUE(replacement_.Lines().empty());
    EXPECT_TRUE(replacement_.HasWritten());
}

TEST_F(Replacement, ALineThatWouldTurnRedElsewhereIsOfferedAndNotChosen) {
    // The new account has no items.
    ASSERT_TRUE(replacement_.List({column::kAccountNumber, "5602.03", "5602.07"}));
    ASSERT_EQ(replacement_.Lines().size(), 1U);
    EXPECT_EQ(replacement_.Lines()[0].state, State::Doubtful);
    EXPECT_EQ(replacement_.Lines()[0].note, "核算项目：科目不核算项目");
    EXPECT_FALSE(replacement_.Lines()[0].chosen);
    replacement_.ChooseAll(true);
    EXPECT_FALSE(replacement_.Lines()[0].chosen);
    replacement_.Choose(0, true);
    EXPECT_TRUE(replacement_.Lines()[0].chosen);
}

TEST_F(Replacement, AnItemIsReplacedInItsClassAlone) {
    // A customer of the department's code.
    session_->Execute("update t_VchTemplateEntry set FItemsInfo = 'D02' where FItemsInfo = 'C001'");
    ASSERT_TRUE(replacement_.List({column::kItems, "d02", "D06"}));
    int departments = 0;
    for (const ReplacementLine& line : replacement_.Lines()) {
        const bool customer = line.templateName == "销售与收款";
        EXPECT_EQ(line.state, customer ? State::Impossible : State::Ready) << line.templateName;
        departments += customer ? 0 : 1;
    }
    EXPECT_GT(departments, 0);
    Answer(MessageResult::Yes);
    ASSERT_TRUE(replacement_.Replace());
    EXPECT_EQ(Count("FItemsInfo = 'D06' and FID = 1"), std::to_string(departments));
}

TEST_F(Replacement, NamesInCellsAreFoundByTheFormerCodeAndByWhatStandsThere) {
    ASSERT_TRUE(replacement_.List({column::kSettleName, "JF03", "JF04"}));
    const std::size_t byCode = replacement_.Lines().size();
    EXPECT_EQ(replacement_.Lines()[0].before, "电汇");
    EXPECT_EQ(replacement_.Lines()[0].after, "银行汇票");
    ASSERT_TRUE(replacement_.List({column::kSettleName, "电汇", "JF04"}));
    EXPECT_EQ(replacement_.Lines().size(), byCode);
}

TEST_F(Replacement, WhatHasChangedSinceTheListIsLeftAlone) {
    ASSERT_TRUE(replacement_.List(cash_));
    session_->Execute("update t_VchTemplateEntry set FRemark = 'theirs' where FID = 1 and FEntryID = 1");
    Answer(MessageResult::Yes);
    replacement_.Replace();
    EXPECT_THAT(Told(), HasSubstr("模板 日常费用 已在别处被修改，没有替换！"));
    EXPECT_EQ(Count("FAccountNumber = '1001' and FID = 1"), "2");
    EXPECT_EQ(Value("select FRemark from t_VchTemplateEntry where FID = 1 and FEntryID = 1"), "theirs");
}

TEST_F(Replacement, ATemplateThatCouldNotBeSavedIsNotOffered) {
    session_->Execute("update t_VchTemplateEntry set FExp = '' where FID = 1 and FEntryID = 1");
    ASSERT_TRUE(replacement_.List(cash_));
    for (const ReplacementLine& line : replacement_.Lines()) {
        if (line.templateId != "1") continue;
        EXPECT_EQ(line.state, State::Impossible);
        EXPECT_THAT(line.note, HasSubstr("模板不能保存：行1 "));
    }
}

TEST_F(Replacement, ARefusedBatchWritesNothingAndLeavesNoVersion) {
    ASSERT_TRUE(replacement_.List(cash_));
    session_->Execute("drop procedure pro_VchTpCanUsed");
    const std::string before = Count("FAccountNumber = '1001'");
    Answer(MessageResult::Yes);
    EXPECT_FALSE(replacement_.Replace());
    EXPECT_EQ(Told(), "替换失败，没有模板被修改！");
    EXPECT_EQ(Count("FAccountNumber = '1001'"), before);
    EXPECT_EQ(Value("select count(*) as n from t_VchTpHistory"), "0");
    EXPECT_FALSE(replacement_.HasWritten());
}

TEST_F(Replacement, IsTakenBackAsOneUnlessSomebodyHasWrittenSince) {
    ASSERT_TRUE(replacement_.List(cash_));
    for (std::size_t i = 0; i < replacement_.Lines().size(); ++i)
        replacement_.Choose(i, true);
    Answer(MessageResult::Yes);
    ASSERT_TRUE(replacement_.Replace());
    EXPECT_EQ(Value("select count(distinct FKeptAt) as n from t_VchTpHistory"), "1");
    EXPECT_NE(Value("select count(*) as n from t_VchTpHistory"), "1");
    Answer(MessageResult::Yes);
    ASSERT_TRUE(replacement_.Undo());
    EXPECT_EQ(Count("FAccountNumber = '1001' and FID = 1"), "2");
    EXPECT_EQ(Count("FAccountNumber = '1001' and FID = 0"), "1");
    TakeMessages();
    EXPECT_FALSE(replacement_.Undo());
    EXPECT_EQ(Told(), "上次替换已经撤消，或者所替换的模板之后都有改动，没有可以撤消的替换。");
}

TEST_F(Replacement, WithoutTablesForVersionsTheQuestionSaysSo) {
    session_->Execute("drop table t_VchTpHistoryRule");
    session_->Execute("drop table t_VchTpHistory");
    ASSERT_TRUE(replacement_.List(cash_));
    Answer(MessageResult::No);
    EXPECT_FALSE(replacement_.Replace());
    EXPECT_THAT(Told(), HasSubstr("当前账套没有开启模板历史，替换后不能撤消。"));
    EXPECT_FALSE(replacement_.Undo());
}

}  // namespace
}  // namespace vicenter::center::test
