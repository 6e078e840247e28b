// What the gate before a command leaves lit: a save that becomes a new template lights that one, and the
// command is meant for another.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class GateTarget : public WindowOnSet {
  protected:
    // 日常费用 is edited here and saved elsewhere: the next gate asks whether to save, then how.
    void SetUp() override {
        WindowOnSet::SetUp();
        Window().Tree().NodeClick("detail-1");
        Type(1, column::kRemark, "我的");
        session_->Execute("update t_VchTemplateEntry set FRemark = '别人的' where FID = 1 and FEntryID = 2");
        TakeMessages();
        Answer(MessageResult::Yes);  // save
        Answer(MessageResult::Yes);  // as a new template
    }
    std::string NewTemplatesRemark() {
        return Value(
            "select FRemark from t_VchTemplateEntry where FID = (select max(FID) from t_VchTemplate) and "
            "FEntryID = 1");
    }
};

TEST_F(GateTarget, ANodeThatIsClickedIsLitAndOpened) {
    Window().Tree().NodeClick("detail-2");
    EXPECT_EQ(Window().SelectedNode(), "detail-2");
    EXPECT_EQ(Window().TemplateId(), "2");
    EXPECT_EQ(view_.name, "销售与收款");
    EXPECT_EQ(NewTemplatesRemark(), "我的");
    EXPECT_EQ(Cell(1, column::kExplanation), "销售绿茶");
}

TEST_F(GateTarget, ANodeThatVanishedMeanwhileIsToldByItsName) {
    session_->Execute("delete t_VchTemplate where FID = 2");
    Window().Tree().NodeClick("detail-2");
    EXPECT_EQ(TakeMessages().back(), "模板 销售与收款 已在别处被删除！");
    EXPECT_EQ(Window().SelectedNode(), "detail-" + Window().TemplateId());
    EXPECT_EQ(Cell(1, column::kRemark), "我的");
}

TEST_F(GateTarget, TheRootIsLitWithWhatWasSavedOpen) {
    Window().Tree().NodeClick("ROOT");
    EXPECT_EQ(Window().SelectedNode(), "ROOT");
    EXPECT_EQ(Cell(1, column::kRemark), "我的");
}

TEST_F(GateTarget, WhatIsDeletedIsWhatWasLit) {
    Answer(MessageResult::No);  // and not deleted in the end
    Window().ToolClick("mnuDel");
    EXPECT_EQ(TakeMessages().back(), "模板删除将无法还原，是否删除？\r\n\r\n凭证模板：日常费用");
    EXPECT_EQ(Window().SelectedNode(), "detail-1");
    EXPECT_EQ(Window().TemplateId(), "1");
    EXPECT_EQ(Cell(1, column::kRemark), "附发票");
}

TEST_F(GateTarget, WhatIsRenamedIsWhatWasLit) {
    Window().Tree().DoubleClick();
    EXPECT_EQ(Window().SelectedNode(), "detail-1");
    ASSERT_TRUE(Window().Tree().AfterLabelEdit("办公费用"));
    EXPECT_EQ(Value("select FName from t_VchTemplate where FID = 1"), "办公费用");
    EXPECT_EQ(Window().TemplateId(), "1");
}

TEST_F(GateTarget, WhatIsCopiedIsWhatWasLit) {
    for (const TreeMenuItem& item : Window().Tree().MenuItems()) {
        if (item.name == "mnuDuplicate") item.run();
    }
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplate where FName like '日常费用%副本%'"), "1");
    EXPECT_EQ(NewTemplatesRemark(), "附发票");
}

}  // namespace
}  // namespace vicenter::center::test
