#include "ui/panels/item_panel.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include "ui/panels/name_list_popup.h"

namespace vicenter::ui {
namespace {

class ItemPanelTest : public ::testing::Test {
  protected:
    ItemPanelTest() {
        window.resize(600, 400);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        panel.PlaceAt(QRect(100, 100, 140, 20));
    }

    static center::ItemPanelState TwoClasses() {
        center::ItemPanelState state;
        state.visible = true;
        state.expanded = true;
        state.text = "C01,D02";
        state.rows = {{1, "客户", "C01", false}, {2, "部门", "D02", true}};
        return state;
    }
    template <class Widget>
    Widget* Find(const char* name) {
        return window.findChild<Widget*>(name);
    }

    QWidget window;
    ItemPanel panel{&window};
};

TEST_F(ItemPanelTest, IsHiddenUntilTheItemsColumnIsActive) {
    EXPECT_FALSE(Find<QLineEdit>("txtItem")->isVisible());
    EXPECT_FALSE(Find<QFrame>("picItem")->isVisible());
    center::ItemPanelState state = TwoClasses();
    state.expanded = false;
    panel.SetState(state);
    EXPECT_TRUE(Find<QLineEdit>("txtItem")->isVisible());
    EXPECT_TRUE(Find<QToolButton>("cmdItem")->isVisible());
    EXPECT_FALSE(Find<QFrame>("picItem")->isVisible());
    panel.PlaceAt({});
    EXPECT_FALSE(Find<QLineEdit>("txtItem")->isVisible());
}

TEST_F(ItemPanelTest, ANumberThatIsStillBeingComposedIsHandedOver) {
    panel.SetState(TwoClasses());
    const QSignalSpy numbers(&panel, &ItemPanel::numberCommitted);
    auto* second = Find<QLineEdit>("txtItemNumber2");
    second->setFocus();
    second->selectAll();
    QInputMethodEvent composing("kh001", {});
    QApplication::sendEvent(second, &composing);
    panel.CommitTyping();
    ASSERT_EQ(numbers.size(), 1);
    EXPECT_EQ(numbers[0][1].toString(), "kh001");
    auto* first = Find<QLineEdit>("txtItemNumber1");
    first->setFocus();
    first->selectAll();
    QApplication::sendEvent(first, &composing);
    QTest::mouseClick(Find<QToolButton>("cmdItemLookUp1"), Qt::LeftButton);
    ASSERT_EQ(numbers.size(), 2);
    EXPECT_EQ(numbers[1][1].toString(), "kh001");
}

TEST_F(ItemPanelTest, ShowsOneLabelledRowPerItemClass) {
    panel.SetState(TwoClasses());
    EXPECT_EQ(Find<QLineEdit>("txtItem")->text(), "C01,D02");
    EXPECT_EQ(Find<QLabel>("lblItem1")->text(), "客户：");
    EXPECT_EQ(Find<QLabel>("lblItem2")->text(), "部门：");
    EXPECT_EQ(Find<QLabel>("lblID2")->text(), "2");
    EXPECT_FALSE(Find<QLabel>("lblID2")->isVisible());
    EXPECT_EQ(Find<QLineEdit>("txtItemNumber2")->text(), "D02");
}

TEST_F(ItemPanelTest, TheNameBehindANumberStandsBesideIt) {
    panel.SetState(TwoClasses());
    panel.SetNames({"<b>甲</b>公司", ""});
    const auto* name = Find<QLabel>("lblItemName1");
    EXPECT_TRUE(name->isVisible());
    EXPECT_EQ(name->text(), "<b>甲</b>公司");
    EXPECT_EQ(name->textFormat(), Qt::PlainText);
    EXPECT_GT(name->width(), 60);
    EXPECT_GE(name->geometry().left(), Find<QToolButton>("cmdItemLookUp1")->geometry().right());
    EXPECT_EQ(Find<QLabel>("lblItemName2")->text(), "");
    panel.SetNames({});
    EXPECT_EQ(name->text(), "");
}

TEST_F(ItemPanelTest, ANumberThatDoesNotResolveIsRed) {
    panel.SetState(TwoClasses());
    EXPECT_EQ(Find<QLineEdit>("txtItemNumber2")->palette().color(QPalette::Text), QColor(255, 0, 0));
    EXPECT_NE(Find<QLineEdit>("txtItemNumber1")->palette().color(QPalette::Text), QColor(255, 0, 0));
}

TEST_F(ItemPanelTest, FourRowsFitAndMoreScroll) {
    center::ItemPanelState state = TwoClasses();
    state.rows.assign(4, {1, "客户", "", false});
    panel.SetState(state);
    const int four = Find<QFrame>("picItem")->height();
    state.rows.assign(7, {1, "客户", "", false});
    panel.SetState(state);
    EXPECT_EQ(Find<QFrame>("picItem")->height(), four);
    EXPECT_NE(Find<QLineEdit>("txtItemNumber7"), nullptr);
}

TEST_F(ItemPanelTest, TypedNumbersAndTextsAreHandedOverOnce) {
    panel.SetState(TwoClasses());
    QSignalSpy numbers(&panel, &ItemPanel::numberCommitted);
    QSignalSpy texts(&panel, &ItemPanel::textCommitted);
    QSignalSpy left(&panel, &ItemPanel::leaveRequested);
    auto* first = Find<QLineEdit>("txtItemNumber1");
    first->setFocus();
    first->selectAll();
    QTest::keyClicks(first, "C02");
    QTest::keyClick(first, Qt::Key_Return);
    ASSERT_EQ(numbers.size(), 1);
    EXPECT_EQ(numbers[0][0].toInt(), 0);
    EXPECT_EQ(numbers[0][1].toString(), "C02");
    EXPECT_TRUE(Find<QLineEdit>("txtItemNumber2")->hasFocus());
    QTest::keyClick(Find<QLineEdit>("txtItemNumber2"), Qt::Key_Return);
    EXPECT_EQ(left.size(), 1);
    auto* text = Find<QLineEdit>("txtItem");
    text->setFocus();
    text->selectAll();
    QTest::keyClicks(text, "C03,'D01");
    QTest::keyClick(text, Qt::Key_Return);
    ASSERT_EQ(texts.size(), 1);
    EXPECT_EQ(texts[0][0].toString(), "C03,D01");
}

TEST_F(ItemPanelTest, LookUpAndOpenButtonsAskForTheirs) {
    panel.SetState(TwoClasses());
    QSignalSpy lookUps(&panel, &ItemPanel::lookUpRequested);
    QSignalSpy toggles(&panel, &ItemPanel::toggled);
    QTest::mouseClick(Find<QToolButton>("cmdItemLookUp2"), Qt::LeftButton);
    QTest::keyClick(Find<QLineEdit>("txtItemNumber1"), Qt::Key_F7);
    QTest::mouseClick(Find<QToolButton>("cmdItem"), Qt::LeftButton);
    ASSERT_EQ(lookUps.size(), 2);
    EXPECT_EQ(lookUps[0][0].toInt(), 1);
    EXPECT_EQ(lookUps[1][0].toInt(), 0);
    EXPECT_EQ(toggles.size(), 1);
}

TEST_F(ItemPanelTest, ALookUpStartsAtWhatHasBeenTyped) {
    panel.SetState(TwoClasses());
    QStringList order;
    QObject::connect(&panel, &ItemPanel::numberCommitted, &panel,
                     [&](int row, const QString& number) { order << QString("%1 %2").arg(row).arg(number); });
    QObject::connect(&panel, &ItemPanel::lookUpRequested, &panel,
                     [&](int row) { order << QString("look-up %1").arg(row); });
    auto* first = Find<QLineEdit>("txtItemNumber1");
    first->setFocus();
    first->selectAll();
    QTest::keyClicks(first, "C1");
    QTest::keyClick(first, Qt::Key_F7);
    auto* second = Find<QLineEdit>("txtItemNumber2");
    second->setFocus();
    second->selectAll();
    QTest::keyClicks(second, "D0");
    QTest::mouseClick(Find<QToolButton>("cmdItemLookUp2"), Qt::LeftButton);
    EXPECT_EQ(order, (QStringList{"0 C1", "look-up 0", "1 D0", "look-up 1"}));
}

TEST_F(ItemPanelTest, WhatNoNumberMayHoldIsRefusedWhileItIsTyped) {
    panel.SetState(TwoClasses());
    auto* number = Find<QLineEdit>("txtItemNumber1");
    number->setFocus();
    number->clear();
    QTest::keyClicks(number, "C'0,1|2");
    EXPECT_EQ(number->text(), "C012");
    auto* text = Find<QLineEdit>("txtItem");
    text->clear();
    QTest::keyClicks(text, "C'1|,D2");
    EXPECT_EQ(text->text(), "C1,D2") << "the separator belongs to the whole text";
}

TEST_F(ItemPanelTest, InsertWithShiftPastesAndOpensNoLookUp) {
    panel.SetState(TwoClasses());
    QSignalSpy lookUps(&panel, &ItemPanel::lookUpRequested);
    QApplication::clipboard()->setText("C09");
    auto* number = Find<QLineEdit>("txtItemNumber1");
    number->setFocus();
    number->selectAll();
    QTest::keyClick(number, Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(number->text(), "C09");
    EXPECT_TRUE(lookUps.isEmpty());
    QTest::keyClick(number, Qt::Key_Insert);
    EXPECT_EQ(lookUps.size(), 1);
}

TEST_F(ItemPanelTest, MakesRoomForTheCellsOwnEditorAndIsAwayWithoutTheRight) {
    panel.SetState(TwoClasses());
    panel.SetCellEditing(true);
    EXPECT_FALSE(Find<QLineEdit>("txtItem")->isVisible());
    panel.SetCellEditing(false);
    EXPECT_TRUE(Find<QLineEdit>("txtItem")->isVisible());
    panel.SetInteractive(false);
    EXPECT_FALSE(Find<QLineEdit>("txtItem")->isVisible());
}

TEST(NameListPopupTest, ShowsTheEntriesBelowTheCellAndNeverTakesTheKeyboard) {
    QWidget window;
    window.resize(600, 400);
    window.show();
    NameListPopup popup(&window);
    center::NameListState state;
    state.open = true;
    state.selected = 1;
    state.entries = {{"1001", "库存现金", true}, {"1002", "银行存款", false}, {"1012", "其他货币资金", true}};
    popup.SetState(state);
    popup.PlaceAt(QRect(50, 60, 100, 20));
    popup.show();
    EXPECT_EQ(popup.geometry().top(), 80);
    popup.PlaceAt(QRect(50, 370, 100, 20));
    EXPECT_LE(popup.geometry().bottom(), 370);
    auto* list = popup.findChild<QListView*>();
    EXPECT_EQ(list->model()->rowCount(), 3);
    EXPECT_EQ(list->currentIndex().row(), 1);
    EXPECT_EQ(list->focusPolicy(), Qt::NoFocus);
    QSignalSpy chosen(&popup, &NameListPopup::chosen);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(2, 0)).center());
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen[0][0].toInt(), 2);
}

}  // namespace
}  // namespace vicenter::ui
