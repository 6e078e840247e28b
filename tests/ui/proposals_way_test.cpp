// A row that is proposed, on the demo account set: seen grey, taken by Tab, refused by Esc, never stored.

#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTimer>
#include <set>

#include "tests/ui/demo_set_fixture.h"
#include "ui/look/center_style.h"

namespace vicenter::ui {
namespace {

class ProposalsWayTest : public DemoSetTest {
  protected:
    // One line of a new template: number 8, debit 750 of an account.
    void OpenWithOneLine() {
        Open();
        const std::set<int> shown{1, 2, 3, 5, 6, 20};
        for (int c = 1; c <= center::kColumnCount; ++c)
            window->Presenter().Grid().SetColumnHidden(c, shown.count(c) == 0);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_N, Qt::ControlModifier);
        QApplication::processEvents();
        Type("Cash");
        Key(Qt::Key_Return);
        node = window->Presenter().SelectedNode();
        TypeLine(1, "8", "Cash", "j", "1001");
        ClickCell(1, column::kAmount);
        Type("750");
        Key(Qt::Key_Return);
        ASSERT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{2, 1}));
    }
    // Dark or faint ink anywhere in a cell of a row that is not the active one.
    bool HasInk(int row, int gridColumn, const QColor& ink) {
        GridView& grid = window->Grid();
        const QRect rect = grid.visualRect(grid.Model().IndexOf({row, gridColumn}));
        const QImage picture = grid.viewport()->grab(rect).toImage();
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (picture.pixelColor(x, y) == ink) return true;
            }
        }
        return false;
    }
    void CtrlEnter() {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return, Qt::ControlModifier);
        QApplication::processEvents();
    }
    QString ToolTip(int row, int gridColumn) {
        return window->Grid().Model().IndexOf({row, gridColumn}).data(Qt::ToolTipRole).toString();
    }

    std::string node;
};

TEST_F(ProposalsWayTest, IsPaintedGreyAndIsNoTextOfTheModel) {
    OpenWithOneLine();
    EXPECT_TRUE(HasInk(2, column::kAmount, colors::kFaintInk));
    EXPECT_FALSE(HasInk(2, column::kAmount, colors::kInk));
    EXPECT_FALSE(HasInk(3, column::kAmount, colors::kFaintInk));
    const QModelIndex amount = window->Grid().Model().IndexOf({2, column::kAmount});
    EXPECT_EQ(amount.data().toString(), "");
    EXPECT_EQ(amount.data(Qt::EditRole).toString(), "");
    EXPECT_TRUE(ToolTip(2, column::kAmount).contains(QStringLiteral("750.00")));
    EXPECT_EQ(ToolTip(2, column::kAccountName), "");
}

TEST_F(ProposalsWayTest, TabAndEnterTakeItCellByCellAndTheLineIsStored) {
    OpenWithOneLine();
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(2, column::kNo), "8");
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(2, column::kExplanation), "Cash");
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(2, column::kDirection), "贷");
    Type("1002.01");
    Key(Qt::Key_Tab);
    EXPECT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{2, column::kAmount}));
    EXPECT_EQ(Text(2, column::kAmount), "");
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(2, column::kAmount), "750");
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FNo = 8 and FExp = 'Cash'"), 0);
    ClickTool("mnuSave");
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FNo = 8 and FAmount = 750"), 2);
}

TEST_F(ProposalsWayTest, WhatWasPassedByIsProposedAgainWhereTheCursorComesBackToTheLine) {
    OpenWithOneLine();
    Key(Qt::Key_Tab);
    Key(Qt::Key_Tab);
    ASSERT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{2, column::kDirection}));
    Key(Qt::Key_Right);
    Type("1002.01");
    Key(Qt::Key_Tab);
    Type("750");
    Key(Qt::Key_Return);
    ASSERT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{3, column::kNo}));
    EXPECT_EQ(Text(2, column::kDirection), "");
    ClickCell(2, column::kDirection);
    EXPECT_TRUE(ToolTip(2, column::kDirection).contains(QStringLiteral("建议“贷”")));
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(2, column::kDirection), "贷");
    // A line of before proposes nothing.
    ClickCell(1, column::kAmount);
    EXPECT_EQ(ToolTip(2, column::kRemark), "");
}

TEST_F(ProposalsWayTest, CtrlEnterTakesTheRowAndGoesToTheAccount) {
    OpenWithOneLine();
    CtrlEnter();
    EXPECT_EQ(Text(2, column::kNo), "8");
    EXPECT_EQ(Text(2, column::kExplanation), "Cash");
    EXPECT_EQ(Text(2, column::kDirection), "贷");
    EXPECT_EQ(Text(2, column::kAmount), "");
    EXPECT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{2, column::kAccountNumber}));
}

TEST_F(ProposalsWayTest, CtrlEnterFromLineToLineEntersThemByTheirAccounts) {
    OpenWithOneLine();
    ClickCell(1, column::kAmount);
    CtrlEnter();
    ASSERT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{2, column::kAccountNumber}));
    EXPECT_EQ(window->Presenter().RowCount(), 1);
    Type("1405.01");
    Key(Qt::Key_Tab);
    EXPECT_TRUE(ToolTip(2, column::kDirection).contains(QStringLiteral("建议“借”"))) << "its usual side";
    Type("250");
    CtrlEnter();
    EXPECT_EQ(Text(2, column::kDirection), "借");
    EXPECT_EQ(Text(2, column::kExplanation), "Cash");
    ASSERT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{3, column::kAccountNumber}));
    // Always below it in this user's templates: proposed, and taken as any other cell.
    EXPECT_TRUE(ToolTip(3, column::kAccountNumber).contains(QStringLiteral("建议“2202.01”")));
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(3, column::kAccountName), "应付货款");
    CtrlEnter();
    EXPECT_EQ(Text(3, column::kNo), "8");
    EXPECT_EQ(Text(3, column::kDirection), "贷");
    EXPECT_EQ(Text(3, column::kAmount), "1000");
    EXPECT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{4, column::kNo}));
    EXPECT_EQ(window->Presenter().RowCount(), 3);
    ClickTool("mnuSave");
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FNo = 8 and FExp = 'Cash'"), 3);
}

TEST_F(ProposalsWayTest, ALineThatEndsWithItsAccountShowsTheSideBeforeItIsLeft) {
    OpenWithOneLine();
    for (const int c : {column::kAccountName, column::kAmount})
        window->Presenter().Grid().SetColumnHidden(c, true);
    ClickCell(1, column::kAccountNumber);
    CtrlEnter();
    Type("1405.01");
    Key(Qt::Key_Tab);
    EXPECT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{2, column::kDirection}));
    EXPECT_EQ(Text(2, column::kNo), "8");
    EXPECT_EQ(Text(2, column::kDirection), "");
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(2, column::kDirection), "借");
    Key(Qt::Key_Tab);
    EXPECT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{3, 1}));
}

TEST_F(ProposalsWayTest, EscapeRefusesItAndArrowsPassItBy) {
    OpenWithOneLine();
    Key(Qt::Key_Right);
    Key(Qt::Key_Right);
    Key(Qt::Key_Left);
    EXPECT_EQ(window->Presenter().RowCount(), 1);
    Key(Qt::Key_Escape);
    EXPECT_FALSE(HasInk(2, column::kAmount, colors::kFaintInk));
    Key(Qt::Key_Tab);
    Key(Qt::Key_Tab);
    EXPECT_EQ(window->Presenter().RowCount(), 1);
    EXPECT_EQ(ToolTip(2, column::kAmount), "");
}

// Esc means the row in which it was pressed, wherever that stands by then.
TEST_F(ProposalsWayTest, ARefusalGoesAlongWithItsRow) {
    OpenWithOneLine();
    Key(Qt::Key_Escape);
    ClickCell(1, column::kExplanation);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Plus, Qt::ControlModifier);
    QApplication::processEvents();
    ASSERT_EQ(window->Presenter().RowCount(), 2);
    EXPECT_FALSE(HasInk(3, column::kAmount, colors::kFaintInk));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Z, Qt::ControlModifier);
    QApplication::processEvents();
    ASSERT_EQ(window->Presenter().RowCount(), 1);
    EXPECT_FALSE(HasInk(2, column::kAmount, colors::kFaintInk));
}

TEST_F(ProposalsWayTest, UntakenItIsNeitherStoredNorCopied) {
    OpenWithOneLine();
    window->Grid().selectAll();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_FALSE(QApplication::clipboard()->text().contains(QStringLiteral("\t贷\t")));
    ClickTool("mnuSave");
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FNo = 8"), 1);
    EXPECT_EQ(window->Presenter().RowCount(), 1);
}

TEST_F(ProposalsWayTest, TheMenuSwitchesItOffForThisUser) {
    OpenWithOneLine();
    QTimer::singleShot(0, [] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (menu == nullptr) return;
        for (QAction* action : menu->actions()) {
            if (action->text() == QStringLiteral("建议下一行的内容")) action->trigger();
        }
        menu->close();
    });
    const QPoint at = window->Grid().visualRect(window->Grid().currentIndex()).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, window->Grid().viewport()->mapToGlobal(at));
    QApplication::sendEvent(window->Grid().viewport(), &event);
    EXPECT_FALSE(HasInk(2, column::kAmount, colors::kFaintInk));
    QTest::keyClick(&window->Grid(), Qt::Key_Tab);
    EXPECT_EQ(window->Presenter().RowCount(), 1);
}

}  // namespace
}  // namespace vicenter::ui
