// What makes entering lines quicker, on the demo account set and by real events: cells that an account has no
// use for, amounts that follow from other numbers, whole patterns, columns where the user wants them.

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QMenu>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTimer>
#include <QToolTip>
#include <set>

#include "tests/ui/demo_set_fixture.h"
#include "ui/look/center_style.h"
#include "ui/look/qt_text.h"
#include "ui/look/twips.h"
#include "ui/window/status_line.h"

namespace vicenter::ui {
namespace {

class EntryAidsWayTest : public DemoSetTest {
  protected:
    void OpenNew(const std::set<int>& shown) {
        Open();
        for (int c = 1; c <= center::kColumnCount; ++c)
            window->Presenter().Grid().SetColumnHidden(c, shown.count(c) == 0);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_N, Qt::ControlModifier);
        QApplication::processEvents();
        Type("Aids");
        Key(Qt::Key_Return);
        node = window->Presenter().SelectedNode();
        ClickCell(1, column::kNo);
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
        QApplication::processEvents();
    }
    int Column() { return window->Presenter().Grid().ActiveCell().column; }
    GridView& Grid() { return window->Grid(); }
    QHeaderView& Header() { return *Grid().horizontalHeader(); }
    // Chooses an entry of the grid's menu or of one of its submenus by its text before the key.
    void Choose(const char* text) {
        QTimer::singleShot(0, this->window, [this, text] {
            for (QMenu* menu : Grid().findChildren<QMenu*>()) {
                for (QAction* action : menu->actions()) {
                    static const QRegularExpression letter(QStringLiteral("\\(&.\\)"));
                    if (action->text().section('\t', 0, 0).remove(letter) == QString(text)) action->trigger();
                }
            }
            Grid().findChild<QMenu*>("gridMenu")->close();
        });
        const QPoint at = Grid().visualRect(Grid().currentIndex()).center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, at, Grid().viewport()->mapToGlobal(at));
        QApplication::sendEvent(Grid().viewport(), &event);
        // The menu has taken the keyboard along.
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        Grid().setFocus();
    }
    std::vector<std::string> Numbers() {
        std::vector<std::string> numbers;
        for (int row = 1; row <= window->Presenter().RowCount(); ++row)
            numbers.push_back(Text(row, column::kNo) + Text(row, column::kExplanation));
        return numbers;
    }
    bool HasInk(int row, int gridColumn, const QColor& ink) {
        const QModelIndex index = Grid().Model().IndexOf({row, gridColumn});
        Grid().scrollTo(index);
        const QRect rect = Grid().visualRect(index);
        const QImage picture = Grid().viewport()->grab(rect).toImage();
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (picture.pixelColor(x, y) == ink) return true;
            }
        }
        return false;
    }
    QString StatusText(const char* name) { return window->findChild<QToolButton*>(name)->text(); }

    const std::set<int> all{1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20, 21};
    std::string node;
};

TEST_F(EntryAidsWayTest, TabPassesByWhatTheAccountHasNoUseFor) {
    OpenNew(all);
    TypeLine(1, "1", "x", "j", "5602.03");
    EXPECT_EQ(Column(), column::kFileCount) << "the name came with the code";
    EXPECT_EQ(Text(1, column::kAccountName), "办公费");
    Key(Qt::Key_Return);
    EXPECT_EQ(Column(), column::kItems);
    Type("D02");
    Key(Qt::Key_Return);
    EXPECT_EQ(Column(), column::kAmount);
    Press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(Column(), column::kItems);

    TypeLine(2, "1", "x", "d", "1001");
    Key(Qt::Key_Tab);
    EXPECT_EQ(Column(), column::kAmount);
    // Arrows and the mouse go everywhere.
    Key(Qt::Key_Left);
    EXPECT_EQ(Column(), column::kPrice);
}

TEST_F(EntryAidsWayTest, SwitchedOffTabStopsEverywhereAndInTheNextWindowToo) {
    OpenNew(all);
    Choose("跳过科目用不到的单元格");
    TypeLine(1, "1", "x", "j", "5602.03");
    EXPECT_EQ(Column(), column::kAccountName);
    ClickTool("mnuSave");
    Close();
    Open();
    EXPECT_FALSE(window->Presenter().Cells().IsOn(center::EntryAid::PassingBy));
}

TEST_F(EntryAidsWayTest, ACurrencyOfItsOwnHasARateAndMakesTheAmount) {
    OpenNew(all);
    TypeLine(1, "1", "x", "d", "1002.02");
    for (int presses = 0; presses < 5 && Column() != column::kCurrencyName; ++presses)
        Key(Qt::Key_Tab);
    ASSERT_EQ(Column(), column::kCurrencyName);
    Type("USD");
    Key(Qt::Key_Tab);
    EXPECT_EQ(Column(), column::kRate);
    Type("7.1865");
    Key(Qt::Key_Tab);
    Type("500");
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(1, column::kCurrencyName), "美元");
    EXPECT_EQ(Text(1, column::kAmount), "3593.25");
    EXPECT_EQ(Column(), column::kAmount);
}

TEST_F(EntryAidsWayTest, TheLedgersOwnCurrencyHasNoRate) {
    OpenNew(all);
    TypeLine(1, "1", "x", "d", "1002.02");
    for (int presses = 0; presses < 5 && Column() != column::kCurrencyName; ++presses)
        Key(Qt::Key_Tab);
    Type("RMB");
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(1, column::kCurrencyName), "人民币");
    EXPECT_EQ(Column(), column::kAmount);
}

TEST_F(EntryAidsWayTest, QuantityTimesPriceIsTheAmountAndOneStepOfUndo) {
    OpenNew(all);
    TypeLine(1, "1", "x", "j", "1405.01");
    Key(Qt::Key_Tab);
    ASSERT_EQ(Column(), column::kUnitName);
    Type("KG");
    Key(Qt::Key_Tab);
    Type("120");
    Key(Qt::Key_Tab);
    Type("80");
    Key(Qt::Key_Tab);
    EXPECT_EQ(Text(1, column::kAmount), "9600");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Text(1, column::kAmount), "");
    EXPECT_EQ(Text(1, column::kPrice), "");
    EXPECT_EQ(Text(1, column::kQuantity), "120");
}

TEST_F(EntryAidsWayTest, AMismatchAndWhatTheAccountWantsAreMarkedAndDoNotKeepFromSaving) {
    OpenNew(all);
    TypeLine(1, "1", "x", "j", "5602.03");
    Key(Qt::Key_Tab);
    EXPECT_TRUE(HasInk(1, column::kItems, colors::kCaution));
    EXPECT_EQ(StatusText("cmdFaults"), QStringLiteral("提示 1 处"));
    EXPECT_TRUE(Grid()
                    .Model()
                    .IndexOf({1, column::kItems})
                    .data(Qt::ToolTipRole)
                    .toString()
                    .contains(QStringLiteral("尚未录入")));
    Type("D02");
    Key(Qt::Key_Tab);
    EXPECT_FALSE(HasInk(1, column::kItems, colors::kCaution));

    TypeLine(2, "1", "x", "d", "1405.01");
    for (const auto& [c, text] : {std::pair(column::kQuantity, "2"), std::pair(column::kPrice, "3"),
                                  std::pair(column::kAmount, "7")}) {
        ClickCell(2, c);
        Type(text);
        Key(Qt::Key_Return);
    }
    ClickCell(1, column::kNo);
    EXPECT_TRUE(HasInk(2, column::kAmount, colors::kCaution));
    EXPECT_EQ(StatusText("cmdFaults"), QStringLiteral("提示 2 处")) << "its number is unbalanced as well";
    TakeMessages();
    ClickTool("mnuSave");
    EXPECT_THAT(TakeMessages(), ::testing::ElementsAre(::testing::HasSubstr("保存成功")));
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FAmount = 7 and FQty = 2"), 1);
}

TEST_F(EntryAidsWayTest, PatternsAreCopiedMovedSortedAndNumberedByKeys) {
    OpenNew({1, 2, 3, 5, 6, 20});
    TypeLine(1, "3", "a", "j", "1001");
    TypeLine(2, "5", "b", "j", "1001");
    TypeLine(3, "3", "c", "d", "1001");
    ClickCell(1, column::kExplanation);
    Press(Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Numbers(), (std::vector<std::string>{"3a", "5b", "3c", "6a", "6c"}));
    Press(Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(Numbers(), (std::vector<std::string>{"3a", "5a", "3c", "5c", "6b"}));
    EXPECT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{2, column::kExplanation}));
    Press(Qt::Key_Down, Qt::AltModifier);
    Press(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Numbers(), (std::vector<std::string>{"3a", "3c", "5b", "6a", "6c"}));
    Press(Qt::Key_R, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Numbers(), (std::vector<std::string>{"1a", "1c", "2b", "3a", "3c"}));
    for (int step = 0; step < 5; ++step)
        Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Numbers(), (std::vector<std::string>{"3a", "5b", "3c"}));
    Choose("分录按编号排序");
    EXPECT_EQ(Numbers(), (std::vector<std::string>{"3a", "3c", "5b"}));
}

TEST_F(EntryAidsWayTest, ColumnsAreMovedByKeysAndStayThereInTheNextWindow) {
    OpenNew({1, 2, 3, 5, 6});
    ClickCell(1, column::kAccountNumber);
    Press(Qt::Key_Left, Qt::AltModifier);
    Press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(Column(), column::kAccountNumber);
    EXPECT_LT(Header().sectionViewportPosition(column::kAccountNumber - 1),
              Header().sectionViewportPosition(column::kExplanation - 1));
    ClickCell(1, column::kNo);
    Key(Qt::Key_Tab);
    EXPECT_EQ(Column(), column::kAccountNumber);
    Key(Qt::Key_Tab);
    EXPECT_EQ(Column(), column::kExplanation);
    Key(Qt::Key_Home);
    EXPECT_EQ(Column(), column::kNo);
    const std::string profile = "select count(*) from t_VchTpProfile where FValue like '1|_|%,2|_|%,3|_|%'";
    Close();
    EXPECT_GT(Number(profile), 0) << "the profile has no order";

    Open();
    EXPECT_LT(Header().sectionViewportPosition(column::kAccountNumber - 1),
              Header().sectionViewportPosition(column::kExplanation - 1));
    ClickCell(1, column::kNo);
    Choose("恢复各列的顺序");
    for (int c = 1; c <= center::kColumnCount; ++c)
        EXPECT_EQ(Header().visualIndex(c - 1), c - 1);
}

TEST_F(EntryAidsWayTest, ASelectedColumnIsDraggedToAnotherPlace) {
    OpenNew({1, 2, 3, 5, 6});
    const auto middle = [&](int gridColumn) {
        return QPoint(
            Header().sectionViewportPosition(gridColumn - 1) + Header().sectionSize(gridColumn - 1) / 2,
            Header().height() / 2);
    };
    QWidget* port = Header().viewport();
    QTest::mouseClick(port, Qt::LeftButton, {}, middle(column::kDirection));
    const QPoint from = middle(column::kDirection);
    const QPoint to(Header().sectionViewportPosition(column::kExplanation - 1) + 2, from.y());
    QTest::mousePress(port, Qt::LeftButton, {}, from);
    for (const QPoint& at : {from - QPoint(20, 0), (from + to) / 2, to}) {
        QMouseEvent move(QEvent::MouseMove, at, port->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(port, &move);
    }
    QTest::mouseRelease(port, Qt::LeftButton, {}, to);
    EXPECT_LT(Header().visualIndex(column::kDirection - 1), Header().visualIndex(column::kExplanation - 1));
    EXPECT_EQ(window->Presenter().Grid().Order()[1], column::kDirection);
}

TEST_F(EntryAidsWayTest, ADoubleClickOnAnEdgeAndAKeyFitAColumnToItsContent) {
    OpenNew({1, 2, 3, 5, 6});
    TypeLine(1, "1", "A text that is much longer than the column of the explanation is wide at first", "j",
             "1001");
    const int section = column::kExplanation - 1;
    const int wanted = Grid().fontMetrics().horizontalAdvance(ToQt(Text(1, column::kExplanation)));
    ASSERT_LT(Header().sectionSize(section), wanted);
    const int before = Header().sectionSize(section);
    const QPoint edge(Header().sectionViewportPosition(section) + before - 1, Header().height() / 2);
    QTest::mouseDClick(Header().viewport(), Qt::LeftButton, {}, edge);
    EXPECT_GE(Header().sectionSize(section), wanted);
    Header().resizeSection(section, before);
    ClickCell(1, column::kExplanation);
    Press(Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_GE(Header().sectionSize(section), wanted);
    EXPECT_GT(window->Presenter().Grid().Layout(column::kExplanation).width, 2820) << "remembered as a width";
}

TEST_F(EntryAidsWayTest, TheFirstColumnsStayInSightWhenTheyAreAskedTo) {
    OpenNew(all);
    window->resize(1100, 500);
    QApplication::processEvents();
    TypeLine(1, "1", "x", "j", "1001");
    auto* frozen = Grid().findChild<QWidget*>("frozenColumns");
    Grid().horizontalScrollBar()->setValue(Grid().horizontalScrollBar()->maximum());
    EXPECT_FALSE(frozen->isVisible());
    Grid().horizontalScrollBar()->setValue(0);
    for (const int c :
         {column::kExplanation, column::kAccountNumber, column::kAccountName, column::kDirection})
        window->Presenter().Grid().SetColumnWidth(c, 900);
    Choose("滚动时固定前六列");
    ClickCell(1, column::kAccountNumber);
    const QRect there = Grid().visualRect(Grid().Model().IndexOf({1, column::kAccountNumber}));
    const QImage before = Grid().viewport()->grab(there.adjusted(4, 4, -4, -4)).toImage();
    Grid().horizontalScrollBar()->setValue(Grid().horizontalScrollBar()->maximum());
    ASSERT_TRUE(frozen->isVisible());
    const QPoint head(0, Header().height());
    EXPECT_EQ(frozen->grab(there.adjusted(4, 4, -4, -4).translated(head)).toImage(), before);

    // The cursor is never below them.
    ClickCell(1, column::kRemark);
    Key(Qt::Key_Left);
    Key(Qt::Key_Left);
    EXPECT_GE(Grid().visualRect(Grid().currentIndex()).left(), Grid().FrozenWidth());
}

// What is done to a cell that is kept in sight leaves the grid where it has been scrolled to.
TEST_F(EntryAidsWayTest, TheFirstColumnsAreWorkedInWhereTheyStandAndTheGridStaysWhereItIs) {
    OpenNew(all);
    window->resize(1100, 500);
    QApplication::processEvents();
    TypeLine(1, "1", "x", "j", "1001");
    TypeLine(2, "1", "y", "d", "1001");
    for (const int c :
         {column::kExplanation, column::kAccountNumber, column::kAccountName, column::kDirection})
        window->Presenter().Grid().SetColumnWidth(c, 900);
    const auto place = [&](int row, int c) {
        return Grid().visualRect(Grid().Model().IndexOf({row, c})).center();
    };
    const QPoint account = place(1, column::kAccountNumber);
    const QPoint below = place(2, column::kExplanation);
    Choose("滚动时固定前六列");
    auto* frozen = Grid().findChild<QWidget*>("frozenColumns");
    QScrollBar& bar = *Grid().horizontalScrollBar();
    const QPoint head(0, Header().height());
    bar.setValue(bar.maximum());
    const int scrolled = bar.value();
    ASSERT_TRUE(frozen->isVisible());
    const auto active = [&] { return window->Presenter().Grid().ActiveCell(); };

    QTest::mouseClick(frozen, Qt::LeftButton, {}, account + head);
    EXPECT_EQ(active(), (center::CellAddress{1, column::kAccountNumber}));
    EXPECT_EQ(bar.value(), scrolled);
    EXPECT_TRUE(frozen->isVisible());

    // The editor stands where the cell is seen, and nothing lies over it.
    Type("1002.01");
    auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(window->childAt(editor->mapTo(window.data(), editor->rect().center())), editor);
    EXPECT_TRUE(editor->geometry().contains(account));
    bar.setValue(scrolled - 40);
    EXPECT_TRUE(editor->geometry().contains(account)) << "it stays there when the wheel turns";
    bar.setValue(scrolled);
    Key(Qt::Key_Escape);  // the list of accounts
    Key(Qt::Key_Down);
    EXPECT_EQ(Text(1, column::kAccountNumber), "1002.01");
    EXPECT_EQ(active(), (center::CellAddress{2, column::kAccountNumber}));
    EXPECT_EQ(bar.value(), scrolled);
    QTest::mouseClick(frozen, Qt::LeftButton, {}, below + head);
    QTest::mouseDClick(frozen, Qt::LeftButton, {}, below + head);
    ASSERT_TRUE(Grid().IsEditing());
    Key(Qt::Key_Escape);
    EXPECT_EQ(bar.value(), scrolled);

    // From one cell to another by Shift and by pulling; on the way out to the others nothing is left out.
    QTest::mouseClick(frozen, Qt::LeftButton, {}, account + head);
    QTest::mouseClick(frozen, Qt::LeftButton, Qt::ShiftModifier, below + head);
    EXPECT_EQ(Grid().SelectedBlock(),
              (center::CellRange{1, column::kExplanation, 2, column::kAccountNumber}));
    QTest::mousePress(frozen, Qt::LeftButton, {}, account + head);
    QMouseEvent move(QEvent::MouseMove, below + head, frozen->mapToGlobal(below + head), Qt::NoButton,
                     Qt::LeftButton, {});
    QApplication::sendEvent(frozen, &move);
    QTest::mouseRelease(frozen, Qt::LeftButton, {}, below + head);
    EXPECT_EQ(Grid().SelectedBlock(),
              (center::CellRange{1, column::kExplanation, 2, column::kAccountNumber}));
    EXPECT_EQ(bar.value(), scrolled);
    QTest::mouseClick(frozen, Qt::LeftButton, {}, account + head);
    QTest::mouseClick(Grid().viewport(), Qt::LeftButton, Qt::ShiftModifier, place(2, column::kRemark));
    EXPECT_EQ(Grid().SelectedBlock(), (center::CellRange{1, column::kAccountNumber, 2, column::kRemark}));
    // From a cell that they cover by now.
    bar.setValue(0);
    ClickCell(1, column::kFileCount);
    const int uncovered = bar.value();
    bar.setValue(Grid().visualRect(Grid().currentIndex()).left() + uncovered);
    QTest::mouseClick(Grid().viewport(), Qt::LeftButton, Qt::ShiftModifier, place(2, column::kRate));
    EXPECT_EQ(Grid().SelectedBlock(), (center::CellRange{1, column::kFileCount, 2, column::kRate}));

    // Their headers select them, and the first key of the row leads back to the beginning.
    bar.setValue(scrolled);
    QTest::mouseClick(frozen, Qt::LeftButton, {}, QPoint(account.x(), 5));
    EXPECT_EQ(Grid().SelectedBlock().firstColumn, column::kAccountNumber);
    EXPECT_EQ(Grid().SelectedBlock().lastColumn, column::kAccountNumber);
    EXPECT_GT(Grid().SelectedBlock().lastRow, 2);
    EXPECT_EQ(bar.value(), scrolled);
    QTest::keyClick(&Grid(), Qt::Key_Home);
    EXPECT_EQ(bar.value(), 0);
}

// The menu of a column, where those look for it who know spreadsheets.
TEST_F(EntryAidsWayTest, TheHeaderOfAColumnHasAMenu) {
    OpenNew({1, 2, 3, 5, 6, 7, 11, 20, 21});
    window->resize(900, 500);
    QApplication::processEvents();
    TypeLine(1, "1", "A text that is much longer than the column of the explanation is wide at first", "j",
             "1001");
    const auto at = [&](int gridColumn) {
        return QPoint(Header().sectionViewportPosition(gridColumn - 1) + 20, Header().height() / 2);
    };
    QStringList texts;
    const auto choose = [&](QWidget& target, const QPoint& where, const char* text) {
        texts.clear();
        bool chosen = false;
        QTimer::singleShot(0, window.data(), [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            for (QAction* action : menu->actions()) {
                if (action->isSeparator()) continue;
                texts << action->text().section('\t', 0, 0);
                if (texts.back().startsWith(QString(text)) && !chosen) {
                    chosen = true;
                    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
                }
            }
            menu->close();
        });
        QTest::mouseClick(&target, Qt::RightButton, {}, where);
        QContextMenuEvent event(QContextMenuEvent::Mouse, where, target.mapToGlobal(where));
        QApplication::sendEvent(&target, &event);
        EXPECT_TRUE(chosen) << text;
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    };
    const int before = Header().sectionSize(column::kExplanation - 1);
    choose(*Header().viewport(), at(column::kExplanation), "列宽适合内容");
    EXPECT_GT(Header().sectionSize(column::kExplanation - 1), before);
    EXPECT_EQ(Grid().SelectedBlock().firstColumn, column::kExplanation);
    EXPECT_EQ(Grid().SelectedBlock().lastColumn, column::kExplanation);
    // Each has a letter of its own.
    for (const QString& text : texts)
        EXPECT_TRUE(text.contains(u'&')) << text.toStdString();

    choose(*Header().viewport(), at(column::kExplanation), "右移");
    EXPECT_EQ(Header().visualIndex(column::kExplanation - 1), 2);
    choose(*Header().viewport(), at(column::kExplanation), "恢复各列的顺序");
    EXPECT_EQ(Header().visualIndex(column::kExplanation - 1), 1);
    choose(*Header().viewport(), at(column::kDirection), "恢复各列的宽度");
    EXPECT_EQ(Header().sectionSize(column::kExplanation - 1), before);

    choose(*Header().viewport(), at(column::kExplanation), "滚动时固定到此列");
    const int width = Header().sectionSize(0) + Header().sectionSize(1);
    EXPECT_EQ(Grid().FrozenWidth(), width);
    Grid().horizontalScrollBar()->setValue(Grid().horizontalScrollBar()->maximum());
    auto* frozen = Grid().findChild<QWidget*>("frozenColumns");
    ASSERT_TRUE(frozen->isVisible());
    EXPECT_EQ(frozen->width(), width);
    const int scrolled = Grid().horizontalScrollBar()->value();
    Close();
    Open();
    EXPECT_EQ(window->Grid().FrozenWidth(), width) << "the next window has it too";
    window->resize(900, 500);
    QApplication::processEvents();
    Grid().horizontalScrollBar()->setValue(scrolled);
    frozen = Grid().findChild<QWidget*>("frozenColumns");
    ASSERT_TRUE(frozen->isVisible());
    choose(*frozen, QPoint(20, 5), "取消固定");
    EXPECT_EQ(Grid().FrozenWidth(), 0);
    EXPECT_FALSE(frozen->isVisible());
}

TEST_F(EntryAidsWayTest, TheHeaderOfARowHasTheMenuOfItsRow) {
    OpenNew(all);
    TypeLine(1, "1", "x", "j", "1001");
    TypeLine(2, "1", "y", "d", "1001");
    QHeaderView& rows = *Grid().verticalHeader();
    const QPoint at(5, rows.sectionViewportPosition(0) + 5);
    QTimer::singleShot(0, window.data(), [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        EXPECT_EQ(menu->objectName(), "gridMenu");
        for (QAction* action : menu->actions()) {
            if (action->text().startsWith(QStringLiteral("删除分录"))) action->trigger();
        }
        menu->close();
    });
    QTest::mouseClick(rows.viewport(), Qt::RightButton, {}, at);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, rows.viewport()->mapToGlobal(at));
    QApplication::sendEvent(rows.viewport(), &event);
    EXPECT_EQ(Numbers(), std::vector<std::string>{"1y"});
}

TEST_F(EntryAidsWayTest, NothingOfACellThatTheFirstColumnsCoverLiesOverThem) {
    OpenNew(all);
    window->resize(1100, 500);
    QApplication::processEvents();
    TypeLine(1, "1", "x", "j", "5602.05");
    for (const int c :
         {column::kExplanation, column::kAccountNumber, column::kAccountName, column::kDirection})
        window->Presenter().Grid().SetColumnWidth(c, 900);
    Choose("滚动时固定前六列");
    ClickCell(1, column::kItems);
    Grid().horizontalScrollBar()->setValue(0);
    const auto* strip = window->findChild<QLineEdit*>("txtItem");
    ASSERT_TRUE(strip->isVisible());
    QScrollBar& bar = *Grid().horizontalScrollBar();
    const QModelIndex items = Grid().Model().IndexOf({1, column::kItems});
    bar.setValue(Grid().visualRect(items).left() - Grid().FrozenWidth() + 20);
    ASSERT_TRUE(Grid().findChild<QWidget*>("frozenColumns")->isVisible());
    EXPECT_FALSE(strip->isVisible());
    // F4 brings it into sight.
    Key(Qt::Key_F4);
    EXPECT_TRUE(strip->isVisible());
    EXPECT_TRUE(window->findChild<QWidget*>("picItem")->isVisible());
    EXPECT_GE(Grid().visualRect(items).left(), Grid().FrozenWidth());
}

TEST_F(EntryAidsWayTest, EscapeClosesTheItemPanelAndWhatWasTypedIsGone) {
    OpenNew(all);
    TypeLine(1, "1", "x", "j", "5602.05");
    ClickCell(1, column::kItems);
    Type("D03,E004");
    Key(Qt::Key_Tab);
    ClickCell(1, column::kItems);
    Key(Qt::Key_F4);
    const auto* panel = window->findChild<QWidget*>("picItem");
    ASSERT_TRUE(panel->isVisible());
    Type("ZZ");
    Key(Qt::Key_Escape);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &Grid());
    EXPECT_EQ(Text(1, column::kItems), "D03,E004");
    Key(Qt::Key_F4);
    EXPECT_EQ(window->findChild<QLineEdit*>("txtItemNumber1")->text(), "D03");
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "txtItemNumber1");
    // Enter in the last row has nothing more to ask.
    Type("D99");
    Key(Qt::Key_Return);
    Key(Qt::Key_Return);
    EXPECT_FALSE(panel->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &Grid());
    EXPECT_EQ(Text(1, column::kItems), "D99,E004");
    const auto* strip = window->findChild<QLineEdit*>("txtItem");
    EXPECT_EQ(strip->palette().color(QPalette::Text), QColor(colors::kFaulty)) << "as the cell that it hides";
}

// What the header and the cells below do of themselves, they do where they are kept in sight as well.
TEST_F(EntryAidsWayTest, FrozenColumnsHaveTheirTooltipsAndTheEdgesOfTheirHeader) {
    OpenNew(all);
    window->resize(1100, 500);
    QApplication::processEvents();
    TypeLine(1, "1", "A text that is longer than its column", "j", "1001");
    for (const int c :
         {column::kExplanation, column::kAccountNumber, column::kAccountName, column::kDirection})
        window->Presenter().Grid().SetColumnWidth(c, 900);
    Choose("滚动时固定前六列");
    const int section = column::kExplanation - 1;
    const QRect cell = Grid().visualRect(Grid().Model().IndexOf({1, column::kExplanation}));
    const QPoint head(0, Header().height());
    const QPoint edge(cell.right(), Header().height() / 2);
    auto* frozen = Grid().findChild<QWidget*>("frozenColumns");
    Grid().horizontalScrollBar()->setValue(Grid().horizontalScrollBar()->maximum() / 2);
    const int scrolled = Grid().horizontalScrollBar()->value();
    ASSERT_GT(scrolled, cell.right());
    ASSERT_TRUE(frozen->isVisible());
    const auto tipAt = [&](const QPoint& at) {
        QToolTip::hideText();
        QHelpEvent help(QEvent::ToolTip, at, frozen->mapToGlobal(at));
        QApplication::sendEvent(frozen, &help);
        return QToolTip::text().toStdString();
    };
    EXPECT_THAT(tipAt(cell.center() + head), ::testing::HasSubstr("A text that is longer than its column"));
    const QRect account = Grid().visualRect(Grid().Model().IndexOf({1, column::kAccountNumber}));
    EXPECT_EQ(tipAt({account.center().x(), 5}), "科目代码(*)");

    QTest::mouseMove(frozen, edge);
    QMouseEvent hover(QEvent::MouseMove, edge, frozen->mapToGlobal(edge), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(frozen, &hover);
    EXPECT_EQ(frozen->cursor().shape(), Qt::SplitHCursor);
    const int before = Header().sectionSize(section);
    QTest::mousePress(frozen, Qt::LeftButton, {}, edge);
    for (const int by : {10, 30}) {
        const QPoint at = edge + QPoint(by, 0);
        QMouseEvent move(QEvent::MouseMove, at, frozen->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(frozen, &move);
    }
    QTest::mouseRelease(frozen, Qt::LeftButton, {}, edge + QPoint(30, 0));
    EXPECT_EQ(Header().sectionSize(section), before + 30);
    EXPECT_EQ(window->Presenter().Grid().Layout(column::kExplanation).width,
              PixelsToTwips(before + 30, Grid()));
    EXPECT_TRUE(frozen->isVisible());
    EXPECT_EQ(Grid().horizontalScrollBar()->value(), scrolled) << "the grid stays where it is";
    // Behind it the mouse drags nothing any more.
    QMouseEvent after(QEvent::MouseMove, edge, frozen->mapToGlobal(edge), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(frozen, &after);
    EXPECT_EQ(Header().sectionSize(section), before + 30);

    const QPoint moved = edge + QPoint(30, 0);
    QTest::mouseClick(frozen, Qt::LeftButton, {}, moved);
    QTest::mouseDClick(frozen, Qt::LeftButton, {}, moved);
    EXPECT_GE(Header().sectionSize(section),
              Grid().fontMetrics().horizontalAdvance(ToQt(Text(1, column::kExplanation))));
    EXPECT_EQ(Grid().horizontalScrollBar()->value(), scrolled);
}

TEST_F(EntryAidsWayTest, CodesTellTheirNames) {
    OpenNew(all);
    TypeLine(1, "1", "x", "j", "5602.05");
    ClickCell(1, column::kItems);
    Type("D03,E004");
    Key(Qt::Key_Tab);
    const auto tip = [&](int c) { return Grid().Model().IndexOf({1, c}).data(Qt::ToolTipRole).toString(); };
    EXPECT_TRUE(tip(column::kAccountNumber).contains(QStringLiteral("5602.05 差旅费")));
    const std::string department = ado::OpenConnection(host::FileConnectString(file))
                                       ->Execute("select FName from t_Department where FNumber = 'D03'")
                                       ->Value(std::size_t{0})
                                       .ToText();
    EXPECT_TRUE(tip(column::kItems).contains(QString::fromStdString("D03 " + department)))
        << tip(column::kItems).toStdString();
    EXPECT_TRUE(tip(column::kItems).contains(QStringLiteral("E004")));
    EXPECT_EQ(tip(column::kExplanation), "");
    // The panel as well.
    ClickCell(1, column::kItems);
    Key(Qt::Key_F4);
    const auto* name = window->findChild<QLabel*>(QStringLiteral("lblItemName1"));
    ASSERT_NE(name, nullptr);
    EXPECT_TRUE(name->isVisible());
    EXPECT_EQ(name->text().toStdString(), department);
    Key(Qt::Key_Escape);
}

TEST_F(EntryAidsWayTest, NamesTellTheirCodes) {
    OpenNew(all);
    const auto put = [this](int row, int c, const char* text) {
        ClickCell(row, c);
        Type(text);
        Key(Qt::Key_Tab);
    };
    const auto tip = [&](int row, int c) {
        return Grid().Model().IndexOf({row, c}).data(Qt::ToolTipRole).toString();
    };
    TypeLine(1, "1", "x", "j", "1002.02");
    put(1, column::kSettleName, "JF03");
    put(1, column::kCurrencyName, "USD");
    TypeLine(2, "1", "x", "d", "1405.01");
    put(2, column::kUnitName, "KG");
    EXPECT_TRUE(tip(1, column::kAccountName).contains(QStringLiteral("1002.02 中国银行美元户")));
    EXPECT_TRUE(tip(1, column::kSettleName).contains(QStringLiteral("JF03 电汇")));
    EXPECT_TRUE(tip(1, column::kCurrencyName).contains(QStringLiteral("USD 美元")));
    EXPECT_TRUE(tip(2, column::kUnitName).contains(QStringLiteral("KG 千克")));
    EXPECT_EQ(tip(2, column::kCurrencyName), "");
}

}  // namespace
}  // namespace vicenter::ui
