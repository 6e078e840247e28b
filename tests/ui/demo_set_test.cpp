// The main job on the embedded demo account set, by real events: open, pick, type, see red, save, close,
// reopen.

#include "tests/ui/demo_set_fixture.h"

namespace vicenter::ui {
namespace {

using ::testing::Contains;

TEST_F(DemoSetTest, WhatWasTypedAndSavedIsThereWhenTheWindowIsOpenedAgain) {
    Open();
    EXPECT_GE(window->Presenter().Nodes().size(), 4U);
    EXPECT_GT(window->Presenter().RowCount(), 0);
    window->Tree().setFocus();
    ClickTool("mnuNew");
    const std::string key = window->Presenter().SelectedNode();
    ASSERT_TRUE(window->Tree().IsEditingLabel());
    Type("Rent");
    Key(Qt::Key_Return);
    EXPECT_EQ(window->Presenter().TemplateName(), "Rent");

    TypeLine(1, "1", "cash", "j", "1001");
    EXPECT_EQ(Text(1, column::kAccountName), "库存现金");
    EXPECT_NE(Text(1, column::kAccountId), "");
    TypeLine(2, "1", "gone", "d", "99999");
    Type("none");
    Key(Qt::Key_Tab);
    EXPECT_EQ(window->Presenter().Grid().FaultyCheck(2, column::kAccountNumber), 1);
    const QModelIndex faulty = window->Grid().Model().IndexOf({2, column::kAccountNumber});
    EXPECT_EQ(faulty.data(Qt::ForegroundRole).value<QColor>(), QColor(255, 0, 0));
    EXPECT_FALSE(faulty.data(Qt::ToolTipRole).toString().isEmpty());

    ClickTool("mnuSave");
    EXPECT_THAT(
        surroundings.messageBoxes->Texts(),
        Contains(
            "模板 Rent 保存成功！\r\n\r\n注：编号为 1 的凭证模板存在异常(标红)，无法在当前账套中使用！"));
    window->Grid().horizontalHeader()->resizeSection(1, 240);
    const std::vector<std::string> before = Contents();
    EXPECT_EQ(before.size(), 2U * center::kColumnCount);
    Close();
    ASSERT_TRUE(window.isNull());

    Open();
    EXPECT_EQ(window->Grid().columnWidth(1), 240);
    ClickNode(key);
    EXPECT_EQ(window->findChild<QLineEdit*>("itName")->text(), "Rent");
    EXPECT_EQ(Contents(), before);
    EXPECT_EQ(window->Presenter().Grid().FaultyCheck(2, column::kAccountNumber), 1);
}

TEST_F(DemoSetTest, AnAmountReadsTheSameDigitForDigitAfterSaving) {
    Open();
    window->Presenter().Grid().SetColumnHidden(column::kAmount, false);
    window->Tree().setFocus();
    ClickTool("mnuNew");
    Key(Qt::Key_Escape);
    TypeLine(1, "1", "cash", "j", "1001");
    ClickCell(1, column::kAmount);
    Type("1234567.8");
    Key(Qt::Key_Return);
    ClickTool("mnuSave");
    EXPECT_EQ(Text(1, column::kAmount), "1234567.8");
    EXPECT_EQ(window->Grid().Model().IndexOf({1, column::kAmount}).data().toString(), "1,234,567.80");
}

TEST_F(DemoSetTest, ADeletedTemplateIsGoneForGood) {
    Open();
    const std::string key = window->Presenter().Nodes().back().key;
    const std::size_t count = window->Presenter().Nodes().size();
    ClickNode(key);
    surroundings.messageBoxes->answers = {system::MessageResult::Yes};
    ClickTool("mnuDel");
    EXPECT_EQ(window->Presenter().Nodes().size(), count - 1);
    Close();
    Open();
    EXPECT_EQ(window->Presenter().Nodes().size(), count - 1);
    EXPECT_EQ(window->Tree().FindNode(key), nullptr);
}

TEST_F(DemoSetTest, AUserWithoutTheRightLooksAndChangesNothing) {
    Enter(3);
    Open();
    EXPECT_FALSE(window->Presenter().HasRight());
    const std::vector<std::string> before = Contents();
    ClickCell(1, column::kExplanation);
    Type("x");
    Key(Qt::Key_Delete);
    EXPECT_EQ(Contents(), before);
    window->Tree().setFocus();
    ClickTool("mnuNew");
    EXPECT_THAT(surroundings.messageBoxes->Texts(), Contains("对不起，你没有相应的权限！"));
}

TEST_F(DemoSetTest, TwoWindowsOnOneSetSeeEachOthersSaves) {
    Open();
    const QPointer<VICenterWindow> first = window;
    Open();
    ASSERT_NE(first, window);
    window->Tree().setFocus();
    ClickTool("mnuNew");
    Key(Qt::Key_Escape);
    TypeLine(1, "7", "other", "j", "1001");
    ClickTool("mnuSave");
    const std::string id = window->Presenter().TemplateId();
    first->Presenter().RebuildTreeAndSelect(std::stoi(id));
    EXPECT_EQ(first->Presenter().Grid().Text(1, column::kNo), "7");
    first->close();
}

}  // namespace
}  // namespace vicenter::ui
