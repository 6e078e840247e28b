// The window by keyboard alone, and what is being typed when a command comes.

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPointer>
#include <QScrollBar>
#include <QTableView>
#include <QTest>
#include <QToolButton>
#include <QToolTip>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/scripted_ledger.h"
#include "ui/grid/cell_editor.h"
#include "ui/window/vicenter_window.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::ScriptedLedger;

namespace column = center::column;

class KeyboardAreasTest : public ::testing::Test {
  protected:
    KeyboardAreasTest() {
        window = new VICenterWindow;
        window->Open();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        QApplication::processEvents();
    }
    ~KeyboardAreasTest() override {
        if (window) window->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    GridView& Grid() { return window->Grid(); }
    static QWidget* Focused() { return QApplication::focusWidget(); }
    static void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(Focused(), key, modifiers);
        QApplication::processEvents();
    }
    static void Type(const char* text) {
        for (const char* c = text; *c; ++c)
            QTest::keyClick(Focused(), *c);
    }
    void MoveTo(int row, int gridColumn) {
        Grid().setFocus();
        Grid().setCurrentIndex(Grid().Model().IndexOf({row, gridColumn}));
    }
    void ClickTool(const char* key) {
        QTest::mouseClick(window->findChild<QToolButton*>(QString(key) + "Button"), Qt::LeftButton);
    }
    bool Enabled(const char* key) { return window->findChild<QAction*>(key)->isEnabled(); }
    std::string Text(int row, int gridColumn) {
        return std::string(window->Presenter().Grid().Text(row, gridColumn));
    }
    std::vector<std::string> Messages() { return ledger.surroundings.messageBoxes->Texts(); }

    ScriptedLedger ledger;
    QPointer<VICenterWindow> window;
};

TEST_F(KeyboardAreasTest, F6GoesFromTheGridToTheTreeAndBack) {
    MoveTo(1, 2);
    Key(Qt::Key_F6);
    EXPECT_TRUE(window->Tree().hasFocus());
    EXPECT_TRUE(Enabled("mnuNew"));
    Key(Qt::Key_Down);
    EXPECT_EQ(window->Tree().SelectedKey(), "detail-5");
    EXPECT_EQ(window->Presenter().TemplateId(), "5");
    Key(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_TRUE(Grid().hasFocus());
    EXPECT_TRUE(Enabled("mnuAddRow"));
}

TEST_F(KeyboardAreasTest, F6TakesWhatIsBeingTypedInACell) {
    MoveTo(1, 2);
    Type("rent");
    Key(Qt::Key_F6);
    EXPECT_TRUE(window->Tree().hasFocus());
    EXPECT_EQ(Text(1, 2), "rent");
}

TEST_F(KeyboardAreasTest, F10GivesTheKeyboardToTheCommandBarAndEscapeTakesItBack) {
    MoveTo(1, 2);
    Key(Qt::Key_F10);
    EXPECT_EQ(Focused()->objectName(), "mnuNewButton");
    Key(Qt::Key_Right);
    EXPECT_EQ(Focused()->objectName(), "mnuSaveButton") << "deleting is off";
    Key(Qt::Key_End);
    EXPECT_EQ(Focused()->objectName(), "mnuQuitButton");
    Key(Qt::Key_Left);
    EXPECT_EQ(Focused()->objectName(), "mnuCloudPButton") << "sharing is never enabled";
    Key(Qt::Key_Home);
    EXPECT_EQ(Focused()->objectName(), "mnuNewButton");
    Key(Qt::Key_Left);
    EXPECT_EQ(Focused()->objectName(), "mnuQuitButton");
    EXPECT_TRUE(Enabled("mnuAddRow")) << "the grid has not been left for good";
    Key(Qt::Key_Escape);
    EXPECT_TRUE(Grid().hasFocus());
    Key(Qt::Key_F10);
    Key(Qt::Key_F10);
    EXPECT_TRUE(Grid().hasFocus());
}

TEST_F(KeyboardAreasTest, F10OutOfAnOpenEditorGoesBackToTheGrid) {
    MoveTo(1, 2);
    Type("rent");
    ASSERT_TRUE(Grid().IsEditing());
    Key(Qt::Key_F10);
    EXPECT_EQ(Focused()->objectName(), "mnuNewButton");
    EXPECT_EQ(Text(1, 2), "rent");
    Key(Qt::Key_Escape);
    EXPECT_TRUE(Grid().hasFocus());
    Key(Qt::Key_F2);
    Key(Qt::Key_F10);
    Key(Qt::Key_F10);
    EXPECT_TRUE(Grid().hasFocus());
    Key(Qt::Key_F6);
    Key(Qt::Key_Down);
    Key(Qt::Key_F2);
    ASSERT_TRUE(window->Tree().IsEditingLabel());
    Key(Qt::Key_F10);
    Key(Qt::Key_Escape);
    EXPECT_TRUE(window->Tree().hasFocus());
}

TEST_F(KeyboardAreasTest, F6GoesToTheListThatIsShownAsWell) {
    MoveTo(1, 2);
    Key(Qt::Key_F8, Qt::ControlModifier);
    auto& faults = *window->findChild<FaultPanel*>("faultPanel");
    ASSERT_TRUE(faults.isVisible());
    Key(Qt::Key_F6);
    EXPECT_TRUE(window->Tree().hasFocus());
    Key(Qt::Key_F6);
    EXPECT_TRUE(faults.Table().hasFocus());
    Key(Qt::Key_F6);
    EXPECT_TRUE(Grid().hasFocus());
    Key(Qt::Key_F6, Qt::ShiftModifier);
    EXPECT_TRUE(faults.Table().hasFocus());
}

TEST_F(KeyboardAreasTest, AListThatIsHiddenGivesTheKeyboardToTheGrid) {
    MoveTo(1, 2);
    Key(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(Focused()->objectName(), "searchText");
    Key(Qt::Key_Escape);
    EXPECT_TRUE(Grid().hasFocus());
    Key(Qt::Key_F8, Qt::ControlModifier);
    Key(Qt::Key_F6, Qt::ShiftModifier);
    ASSERT_TRUE(window->findChild<FaultPanel*>("faultPanel")->Table().hasFocus());
    Key(Qt::Key_Escape);
    EXPECT_TRUE(Grid().hasFocus());
    Key(Qt::Key_Down);
    EXPECT_EQ(window->Presenter().TemplateId(), "0") << "nothing else was opened";
}

TEST_F(KeyboardAreasTest, TheCommandBarGivesTheKeyboardToTheGridWhenItsListIsHidden) {
    MoveTo(1, 2);
    Key(Qt::Key_F8, Qt::ControlModifier);
    Key(Qt::Key_F6, Qt::ShiftModifier);
    ASSERT_TRUE(window->findChild<FaultPanel*>("faultPanel")->Table().hasFocus());
    Key(Qt::Key_F10);
    ASSERT_EQ(Focused()->objectName(), "mnuNewButton");
    Key(Qt::Key_F8, Qt::ControlModifier);
    Key(Qt::Key_Escape);
    EXPECT_TRUE(Grid().hasFocus());
}

// 1366 x 768 at scale 2, less what a title bar and a panel take.
TEST_F(KeyboardAreasTest, AListLeavesCellsInSightOnASmallScreen) {
    constexpr int kRoom = 384 - 40;
    window->resize(683, kRoom);
    for (const Qt::Key key : {Qt::Key_F8, Qt::Key_F}) {
        Key(key, key == Qt::Key_F ? Qt::ControlModifier | Qt::ShiftModifier : Qt::ControlModifier);
        QApplication::processEvents();
        const int row = Grid().verticalHeader()->defaultSectionSize();
        EXPECT_GE(Grid().viewport()->height(), 2 * row);
        const auto* list = window->findChild<QTableView*>(key == Qt::Key_F ? "lstHits" : "lstFaults");
        ASSERT_TRUE(list->isVisible());
        EXPECT_GE(list->viewport()->height(), list->verticalHeader()->defaultSectionSize());
        EXPECT_LE(window->height(), kRoom);
    }
    Key(Qt::Key_Escape);
    window->resize(300, 6);
    EXPECT_LE(window->centralWidget()->minimumHeight(), 0) << "nothing keeps the window large";
}

TEST_F(KeyboardAreasTest, AnItemPanelThatIsScrolledAwayGivesTheKeyboardToTheGrid) {
    window->Presenter().GridObject()->SetColumnHidden(column::kItems, false);
    MoveTo(1, column::kItems);
    auto* items = window->findChild<QLineEdit*>("txtItem");
    QTest::mouseClick(items, Qt::LeftButton);
    ASSERT_TRUE(items->hasFocus());
    Grid().verticalScrollBar()->setValue(Grid().verticalScrollBar()->maximum());
    ASSERT_FALSE(items->isVisible());
    EXPECT_TRUE(Grid().hasFocus());
}

TEST_F(KeyboardAreasTest, WhatIsTypedIntoACellIsSeen) {
    const auto scrollAway = [this] {
        Grid().verticalScrollBar()->setValue(Grid().verticalScrollBar()->maximum());
    };
    const auto seen = [this] {
        return Grid().viewport()->rect().contains(Grid().visualRect(Grid().currentIndex()).center());
    };
    MoveTo(1, 2);
    scrollAway();
    ASSERT_FALSE(seen());
    Type("8");
    EXPECT_TRUE(seen());
    Key(Qt::Key_Escape);
    scrollAway();
    Key(Qt::Key_Delete);
    EXPECT_TRUE(seen());
    EXPECT_EQ(Text(1, 2), "");
    scrollAway();
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(seen());
    EXPECT_EQ(Text(1, 2), "收到货款");
}

TEST_F(KeyboardAreasTest, EnterAndSpaceOnTheCommandBarActOnWhatHadTheFocus) {
    MoveTo(1, 2);
    Key(Qt::Key_F6);
    Key(Qt::Key_F10);
    EXPECT_EQ(Focused()->objectName(), "mnuNewButton");
    Key(Qt::Key_Return);
    EXPECT_TRUE(window->Tree().IsEditingLabel()) << "a new template, its name open for typing";
    Key(Qt::Key_Escape);
    MoveTo(2, 2);
    const int rows = Grid().model()->rowCount();
    Key(Qt::Key_F10);
    while (Focused()->objectName() != "mnuDelRowButton")
        Key(Qt::Key_Right);
    Key(Qt::Key_Space);
    EXPECT_TRUE(Grid().hasFocus());
    EXPECT_EQ(Grid().model()->rowCount(), rows);
}

TEST_F(KeyboardAreasTest, SavingTakesTheItemsThatAreStillBeingTyped) {
    window->Presenter().GridObject()->SetColumnHidden(column::kItems, false);
    MoveTo(1, column::kItems);
    auto* items = window->findChild<QLineEdit*>("txtItem");
    ASSERT_TRUE(items->isVisible());
    QTest::mouseClick(items, Qt::LeftButton);
    Type("D01");
    ClickTool("mnuSave");
    EXPECT_THAT(ledger.Sent("delete t_VchTemplateEntry"), HasSubstr("'D01'"));
    EXPECT_THAT(Messages(), ElementsAre("模板 标准模板 保存成功！"));
}

TEST_F(KeyboardAreasTest, QuittingAsksAboutTheItemsThatAreStillBeingTyped) {
    window->Presenter().GridObject()->SetColumnHidden(column::kItems, false);
    MoveTo(1, column::kItems);
    QTest::mouseClick(window->findChild<QLineEdit*>("txtItem"), Qt::LeftButton);
    Type("D01");
    ledger.surroundings.messageBoxes->answers = {system::MessageResult::No};
    ClickTool("mnuQuit");
    EXPECT_THAT(Messages(), ElementsAre("当前凭证模板修改后未保存，您是否进行保存?"));
}

TEST_F(KeyboardAreasTest, SavingTakesWhatAnInputMethodIsStillComposing) {
    MoveTo(1, 2);
    QInputMethodEvent preedit("房租", {});
    QApplication::sendEvent(Focused(), &preedit);
    ASSERT_NE(Grid().findChild<CellEditor*>(), nullptr);
    ClickTool("mnuSave");
    EXPECT_THAT(ledger.Sent("delete t_VchTemplateEntry"), HasSubstr("'房租'"));
}

TEST_F(KeyboardAreasTest, WhatAnInputMethodHasGivenUpIsNotTaken) {
    MoveTo(1, 2);
    for (const char* composing : {"房租", ""}) {
        QInputMethodEvent preedit(composing, {});
        QApplication::sendEvent(Focused(), &preedit);
    }
    Grid().CommitOpenEditor();
    EXPECT_EQ(Text(1, 2), "收到货款");
}

TEST_F(KeyboardAreasTest, ATextThatItsColumnCutsOffIsShownAsATooltip) {
    const auto tipAt = [](QWidget* viewport, const QPoint& at) {
        QToolTip::hideText();
        EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
        QHelpEvent asked(QEvent::ToolTip, at, viewport->mapToGlobal(at));
        QApplication::sendEvent(viewport, &asked);
        return QToolTip::text();
    };
    const auto tip = [&] {
        return tipAt(Grid().viewport(), Grid().visualRect(Grid().Model().IndexOf({1, 2})).center());
    };
    MoveTo(3, 1);
    const std::string text = "支付 <b> 房租";
    window->Presenter().Cells().CommitText({1, 2}, text);
    EXPECT_EQ(tip(), "");
    Grid().setColumnWidth(1, 40);
    EXPECT_THAT(tip().toStdString(), HasSubstr("支付 &lt;b&gt; 房租"));
    auto* header = Grid().horizontalHeader();
    const QPoint at(header->sectionViewportPosition(1) + 10, header->height() / 2);
    EXPECT_EQ(tipAt(header->viewport(), at), "摘要(*)");
    Grid().setColumnWidth(1, 200);
    EXPECT_EQ(tipAt(header->viewport(), at), "");
    QToolTip::hideText();
}

}  // namespace
}  // namespace vicenter::ui
