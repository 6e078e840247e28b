// The main job on the embedded demo account set, by real events: open, pick, type, see red, save, close,
// reopen.

#include "tests/host/demo_set.h"

#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "host/components/components.h"
#include "store/component_classes.h"
#include "tests/fakes/fake_surroundings.h"
#include "ui/vicenter_window.h"
#include "ui/window_factory.h"

namespace vicenter::ui {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
namespace column = center::column;

class DemoSetTest : public ::testing::Test {
  protected:
    DemoSetTest() { Enter(1); }
    ~DemoSetTest() override {
        Close();
        entry::WindowFactory::SetProcess(nullptr);
    }

    void Enter(std::int32_t user) {
        store::RegisterComponentClasses();
        session = host::RegisterHostComponents({host::FileConnectString(file), user});
        entry::WindowFactory::SetProcess(std::make_shared<QtWindowFactory>());
    }

    // As a host opens it.
    void Open() {
        const QWidgetList before = QApplication::topLevelWidgets();
        automation::CreateObject("VelaVICenter.aplication")->Call("ShowVICenter");
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* candidate = qobject_cast<VICenterWindow*>(widget);
            if (candidate && !before.contains(widget)) window = candidate;
        }
        ASSERT_FALSE(window.isNull());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    void Close() {
        if (window) window->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    std::string Text(int row, int gridColumn) {
        return std::string(window->Presenter().Grid().Text(row, gridColumn));
    }
    void ClickTool(const char* key) {
        QTest::mouseClick(window->findChild<QToolButton*>(QString(key) + "Button"), Qt::LeftButton);
    }
    void ClickNode(const std::string& key) {
        window->Tree().setFocus();
        const QRect rect = window->Tree().visualItemRect(window->Tree().FindNode(key));
        QTest::mouseClick(window->Tree().viewport(), Qt::LeftButton, {}, rect.center());
    }
    void ClickCell(int row, int gridColumn) {
        const QModelIndex index = window->Grid().Model().IndexOf({row, gridColumn});
        window->Grid().setFocus();
        window->Grid().scrollTo(index);
        QTest::mouseClick(window->Grid().viewport(), Qt::LeftButton, {},
                          window->Grid().visualRect(index).center());
    }
    void Type(const char* text) {
        for (const char* c = text; *c; ++c)
            QTest::keyClick(QApplication::focusWidget(), *c);
    }
    void Key(Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key);
        QApplication::processEvents();
    }
    // Types one line by keyboard alone: number, explanation, direction, account.
    void TypeLine(int row, const char* number, const char* explanation, const char* direction,
                  const char* account) {
        ClickCell(row, column::kNo);
        Type(number);
        Key(Qt::Key_Tab);
        Type(explanation);
        Key(Qt::Key_Tab);
        Type(direction);
        Key(Qt::Key_Tab);
        Type(account);
        Key(Qt::Key_Tab);
    }
    std::vector<std::string> Contents() {
        std::vector<std::string> texts;
        for (int row = 1; row <= window->Presenter().RowCount(); ++row) {
            for (int c = 1; c <= center::kColumnCount; ++c)
                texts.push_back(Text(row, c));
        }
        return texts;
    }

    fakes::FakeSurroundings surroundings;
    automation::ClassRegistry::Restore restore;
    host::test::TestFolder folder;
    std::string file = host::test::CopySet(folder);
    host::HostSessionRef session;
    QPointer<VICenterWindow> window;
};

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
