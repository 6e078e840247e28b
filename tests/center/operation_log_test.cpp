// The operation log in the window: what it shows, how it is narrowed, what an import's entry counts.

#include "center/search/operation_log.h"

#include <gmock/gmock.h>

#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Log : public WindowOnSet {
  protected:
    Texts Shown() {
        Texts texts;
        for (const store::LogEntry& entry : log_.Entries())
            texts.push_back(LogKindText(entry.kind) + " " + entry.text +
                            (entry.counts.empty() ? "" : " " + entry.counts));
        return texts;
    }
    void Write(const std::string& date, int user, int kind, const std::string& text) {
        session_->Execute("insert into t_Log(FDate,FUserID,FFunctionID,FKind,FDescription) values('" + date +
                          "'," + std::to_string(user) + ",'K831000'," + std::to_string(kind) + ",'" + text +
                          "')");
    }

    OperationLog log_;
};

TEST_F(Log, TheLatestEntryComesFirstAndConditionsNarrowTogether) {
    session_->Execute("delete from t_Log");
    Write("20260101 10:00:00", 1, 3, "凭证模板-保存模板 甲 成功");
    Write("20260102 23:59:59", 2, 4, "凭证模板-保存模板 乙 失败");
    Write("20260103 10:00:00", 1, 1, "凭证模板-打开");
    ASSERT_TRUE(log_.Load());
    EXPECT_THAT(Shown(), ElementsAre("请求 凭证模板-打开", "失败 凭证模板-保存模板 乙 失败",
                                     "成功 凭证模板-保存模板 甲 成功"));
    EXPECT_EQ(log_.Note(), "共 3 条");
    log_.Narrow({"2026-01-02", "2026-01-02", "", "", ""});
    EXPECT_THAT(Shown(), ElementsAre("失败 凭证模板-保存模板 乙 失败"));
    EXPECT_EQ(log_.Entries()[0].date, "2026-01-02 23:59:59");
    log_.Narrow({"", "", " 1 ", "3", "甲"});
    EXPECT_THAT(Shown(), ElementsAre("成功 凭证模板-保存模板 甲 成功"));
    log_.Narrow({"", "", "2", "3", ""});
    EXPECT_THAT(Shown(), IsEmpty());
}

TEST_F(Log, WhatIsNoDayAndNoUserIsToldAndChangesNothing) {
    ASSERT_TRUE(log_.Load());
    const std::size_t before = log_.Entries().size();
    ASSERT_GT(before, 0U);
    log_.Narrow({"yesterday", "", "", "", ""});
    EXPECT_EQ(TakeMessages().back(), "日期应为 yyyy-mm-dd，例如 2026-01-31！");
    log_.Narrow({"", "", "1 or 1=1", "", ""});
    EXPECT_EQ(TakeMessages().back(), "没有用户“1 or 1=1”，请录入用户的编号或姓名！");
    EXPECT_EQ(log_.Entries().size(), before);
}

TEST_F(Log, UsersAreShownWithTheirNamesAndFoundByThem) {
    session_->Execute("delete from t_Log");
    Write("20260101 10:00:00", 1, 3, "凭证模板-保存模板 甲 成功");
    Write("20260102 10:00:00", 2, 3, "凭证模板-保存模板 乙 成功");
    Write("20260103 10:00:00", 77, 3, "凭证模板-保存模板 丙 成功");
    const auto users = [this] {
        Texts texts;
        for (const store::LogEntry& entry : log_.Entries())
            texts.push_back(log_.UserText(entry));
        return texts;
    };
    const std::string name = Value("select FName from t_User where FUserID = 1");
    ASSERT_FALSE(name.empty());
    ASSERT_TRUE(log_.Load());
    EXPECT_THAT(users(),
                ElementsAre("77", "2 " + Value("select FName from t_User where FUserID = 2"), "1 " + name));
    log_.Narrow({"", "", " " + name, "", ""});
    EXPECT_THAT(users(), ElementsAre("1 " + name));
    EXPECT_THAT(TakeMessages(), IsEmpty());
    // A ledger without users has numbers.
    session_->Execute("drop table t_User");
    ASSERT_TRUE(log_.Load());
    EXPECT_THAT(users(), ElementsAre("77", "2", "1"));
}

TEST_F(Log, AnImportTellsHowManyLinesItBroughtEvenAfterLaterCommands) {
    session_->Execute("delete from t_Log");
    Write("20260101 10:00:00", 1, 3, "凭证模板-引入模板 日常费用 成功");
    Write("20260103 10:00:00", 1, 3, "凭证模板-通过凭证生成模板 日常费用 成功");
    Write("20260104 10:00:00", 1, 3, "凭证模板-引入模板 不在了 成功");
    Write("20260105 10:00:00", 2, 3, "凭证模板-引入模板 日常费用 成功");
    session_->Execute(
        "insert into t_VchTpHistory(FID,FName,FOwnerID,FCommand,FKeptBy,FKeptAt,FLines) "
        "values(1,'日常费用',1,1,1,'20260102 10:00:00',7)");
    ASSERT_TRUE(log_.Load());
    EXPECT_THAT(Shown(),
                ElementsAre("成功 凭证模板-引入模板 日常费用 成功", "成功 凭证模板-引入模板 不在了 成功",
                            "成功 凭证模板-通过凭证生成模板 日常费用 成功 11 行",
                            "成功 凭证模板-引入模板 日常费用 成功 7 行"));
    session_->Execute("drop table t_VchTpHistory");
    ASSERT_TRUE(log_.Load());
    EXPECT_EQ(Shown().back(), "成功 凭证模板-引入模板 日常费用 成功 11 行");  // as much as is known
}

TEST_F(Log, AHostThatKeepsNoneThereIsTold) {
    session_->Execute("drop table t_Log");
    EXPECT_FALSE(log_.Load());
    EXPECT_EQ(TakeMessages().back(), "当前账套中没有可以查看的操作日志！");
}

}  // namespace
}  // namespace vicenter::center::test
