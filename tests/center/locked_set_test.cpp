// A window on an account set that another program is writing to for longer than anybody waits.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class LockedSet : public WindowOnSet {
  protected:
    void SetUp() override {}
    void OpenWindow() { OpenOn(host::FileConnectString(set_) + ";Lock Timeout=0"); }
    // Somebody else's transaction, open until it is let go.
    void Lock() {
        writer_ = ado::OpenConnection(host::FileConnectString(set_) + ";Transactions=none;Pooling=no");
        writer_->Execute("begin transaction");
        writer_->Execute("update t_VchTemplate set FName = FName");
    }
    void LetGo() {
        writer_->Execute("rollback");
        writer_.reset();
    }
    ado::ConnectionRef writer_;
};

TEST_F(LockedSet, ReadingWaitsForNobody) {
    OpenWindow();
    const std::size_t nodes = view_.tree.size();
    Texts widths;
    for (int c = 1; c <= kColumnCount; ++c)
        widths.push_back(std::to_string(Window().Grid().Layout(c).width));
    window_.reset();
    Lock();
    OpenWindow();
    EXPECT_EQ(view_.tree.size(), nodes);
    EXPECT_GT(nodes, 2U);
    EXPECT_EQ(view_.name, "标准模板");
    EXPECT_EQ(Window().RowCount(), 6);
    for (int c = 1; c <= kColumnCount; ++c)
        EXPECT_EQ(std::to_string(Window().Grid().Layout(c).width), widths[static_cast<std::size_t>(c - 1)]);
    Window().Tree().NodeClick("detail-1");
    EXPECT_EQ(view_.name, "日常费用");
    EXPECT_EQ(Window().RowCount(), 11);
    EXPECT_THAT(TakeMessages(), IsEmpty());
}

// The standard template is not there yet, and cannot be made.
TEST_F(LockedSet, ATreeThatCannotBeReadIsToldOnceTheWindowIsSeen) {
    OpenWindow();
    Window().Shown();
    EXPECT_THAT(TakeMessages(), IsEmpty());
    session_->Execute("delete t_VchTemplate where FID = 0");
    window_.reset();
    Lock();
    OpenWindow();
    EXPECT_EQ(view_.tree.size(), 1U);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    Window().Shown();
    EXPECT_THAT(
        TakeMessages(),
        ElementsAre(StartsWith("凭证模板未能读取，请检查账套连接后重新打开凭证模板！\r\n\r\n账套正被")));
}

TEST_F(LockedSet, ANewTemplateThatIsNotMadeIsTold) {
    OpenWindow();
    const std::size_t nodes = view_.tree.size();
    Lock();
    Window().ToolClick("mnuNew");
    EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("新增模板失败！\r\n\r\n")));
    EXPECT_EQ(view_.tree.size(), nodes);
    LetGo();
    EXPECT_EQ(Value("select count(*) as n from t_Log where FDescription = '凭证模板-新增模板成功'"), "0");
    Window().ToolClick("mnuNew");
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(view_.tree.size(), nodes + 1);
}

TEST_F(LockedSet, LinesThatWereToBecomeANewTemplateStayWhenItIsNotMade) {
    OpenWindow();
    Window().Tree().NodeClick("detail-1");
    Type(1, column::kRemark, "我的");
    session_->Execute("update t_VchTemplateEntry set FRemark = '别人的' where FID = 1 and FEntryID = 2");
    surroundings_.messageBoxes->meanwhile.emplace_back([this] { Lock(); });
    Answer(MessageResult::Yes);  // as a new template
    Window().ToolClick("mnuSave");
    const Texts told = TakeMessages();
    ASSERT_GE(told.size(), 2U);
    EXPECT_THAT(told[told.size() - 2], HasSubstr("没有保存"));
    EXPECT_EQ(told.back(), "模板 自定义模板(1) 保存失败！");
    EXPECT_EQ(Cell(1, column::kRemark), "我的");
    EXPECT_TRUE(Window().IsDirty());
}

}  // namespace
}  // namespace vicenter::center::test
