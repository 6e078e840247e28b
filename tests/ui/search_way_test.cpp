// Search and replacement, the operation log and the filter of the tree, by real events on the demo ledger.

#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QDrag>
#include <QDropEvent>
#include <QHeaderView>
#include <QMimeData>

#include "tests/ui/tree_menu_fixture.h"
#include "ui/grid/rows_badge.h"
#include "ui/grid/rows_format.h"
#include "ui/look/theme.h"
#include "ui/panels/tree_filter.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SearchWayTest : public TreeMenuTest {
  protected:
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        // Without a window manager nobody gives the keyboard back after a dialog.
        QWidget* at = QApplication::focusWidget();
        QTest::keyClick(at == nullptr ? window->focusWidget() : at, key, modifiers);
        QApplication::processEvents();
    }
    QStringList Hits() {
        QStringList rows;
        const auto* table = window->findChild<QTableWidget*>("lstHits");
        for (int row = 0; row < table->rowCount(); ++row)
            rows << table->item(row, 0)->text() + u' ' + table->item(row, 1)->text();
        return rows;
    }
    QStringList ShownNodes() {
        QStringList names;
        for (QTreeWidgetItemIterator it(&window->Tree()); *it; ++it) {
            if (!(*it)->isHidden()) names << (*it)->text(0);
        }
        return names;
    }
};

TEST_F(SearchWayTest, ALineIsSearchedForByKeysAndOpenedWhileThePanelStays) {
    Press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    auto* panel = window->findChild<QDockWidget*>("searchPanel");
    ASSERT_TRUE(panel->isVisible());
    ASSERT_EQ(QApplication::focusWidget()->objectName(), "searchText");
    window->findChild<QLineEdit*>("searchItem")->setText("E005");
    Key(Qt::Key_Return);
    EXPECT_EQ(Hits(), QStringList{"日常费用 8"});
    EXPECT_EQ(window->findChild<QLabel*>("lblHits")->text(), "共 1 个模板中的 1 行");
    ASSERT_EQ(QApplication::focusWidget()->objectName(), "lstHits");
    Key(Qt::Key_Return);
    EXPECT_EQ(window->Presenter().TemplateName(), "日常费用");
    EXPECT_EQ(window->Presenter().Grid().ActiveCell(), (center::CellAddress{8, column::kItems}));
    EXPECT_TRUE(window->Grid().HasFocusWithin());
    EXPECT_TRUE(panel->isVisible());
    // Nothing is found: told, and the list is empty.
    TakeMessages();
    Press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    window->findChild<QLineEdit*>("searchItem")->setText("E999");
    Key(Qt::Key_Return);
    EXPECT_THAT(TakeMessages(), ElementsAre("没有查找到对应的分录，请重新录入查找条件！"));
    EXPECT_THAT(Hits(), IsEmpty());
    Key(Qt::Key_Escape);
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(SearchWayTest, TextsAreReplacedInTheGridAndUndoneAtOnce) {
    OpenTemplate("日常费用");
    const std::vector<std::string> before = Contents();
    ClickCell(1, column::kExplanation);
    WithDialog(
        {}, "frmReplace",
        [&](QDialog& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>("with"), "x");
            dialog.findChild<QLineEdit*>("text")->setText("报销");
            EXPECT_EQ(dialog.findChild<QLabel*>("count")->text(), "共 2 处");
            dialog.findChild<QCheckBox*>("whole")->setChecked(true);
            EXPECT_EQ(dialog.findChild<QLabel*>("count")->text(), "共 0 处");
            dialog.findChild<QCheckBox*>("whole")->setChecked(false);
            TreeMenuTest::Press(dialog, "cmdReplaceAll");
            EXPECT_EQ(dialog.findChild<QLabel*>("count")->text(), "共 0 处");
        },
        [&] { Press(Qt::Key_H, Qt::ControlModifier); });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(Text(1, column::kExplanation), "x办公费");
    EXPECT_EQ(Text(3, column::kExplanation), "x差旅费");
    ClickCell(1, column::kExplanation);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Contents(), before);
}

TEST_F(SearchWayTest, TheLogIsNarrowedInItsWindow) {
    OpenTemplate("日常费用");
    TypeInto(1, column::kExplanation, "typed");
    ClickTool("mnuSave");
    ChooseInMenu(
        "ROOT", "mnuLog",
        [&](QDialog& dialog) {
            const QStringList all = Rows(dialog, "entries", 1);
            EXPECT_GT(all.size(), 2);
            dialog.findChild<QComboBox*>("kind")->setCurrentIndex(3);
            dialog.findChild<QLineEdit*>("template")->setText("日常费用");
            QTest::keyClick(dialog.findChild<QLineEdit*>("template"), Qt::Key_Return);
            EXPECT_EQ(Rows(dialog, "entries", 1),
                      QStringList{"1 林晓岚|成功|凭证模板-保存模板 日常费用 成功|"});
            EXPECT_EQ(dialog.findChild<QLabel*>("note")->text(), "共 1 条");
            dialog.findChild<QLineEdit*>("user")->setText("陈静宜");
            QTest::keyClick(dialog.findChild<QLineEdit*>("user"), Qt::Key_Return);
            EXPECT_EQ(dialog.findChild<QLabel*>("note")->text(), "共 0 条");
        },
        "frmLog");
    EXPECT_TRUE(dialogShown_);
}

TEST_F(SearchWayTest, ATemplateIsSavedUnderTheNameThatIsTyped) {
    OpenTemplate("日常费用");
    const std::vector<std::string> before = Contents();
    window->Grid().setFocus();
    WithDialog(
        {}, "frmName",
        [&](QDialog& dialog) {
            EXPECT_EQ(dialog.findChild<QLineEdit*>("name")->text(), "日常费用(副本)");
            QTest::keyClicks(dialog.findChild<QLineEdit*>("name"), "new one");
            QTest::keyClick(dialog.findChild<QLineEdit*>("name"), Qt::Key_Return);
        },
        [&] { Press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier); });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(window->Presenter().TemplateName(), "new one");
    EXPECT_EQ(window->Tree().SelectedKey(), KeyOf("new one"));
    EXPECT_EQ(Contents(), before);
}

TEST_F(SearchWayTest, TheFilterComesWithTheTenthTemplateAndKeepsTheLitNode) {
    auto* filter = window->findChild<TreeFilter*>("txtTreeFilter");
    OpenTemplate("日常费用");
    const QRect whole = window->Tree().geometry();
    while (window->Presenter().Nodes().size() < 11) {
        EXPECT_TRUE(filter->isHidden());
        for (const center::TreeMenuItem& item : window->Presenter().Tree().MenuItems()) {
            if (item.name == "mnuDuplicate") item.run();
        }
    }
    ASSERT_TRUE(filter->isVisible());
    EXPECT_EQ(filter->geometry().topLeft(), whole.topLeft());
    EXPECT_GT(window->Tree().geometry().top(), filter->geometry().bottom());
    EXPECT_EQ(window->Tree().geometry().bottom(), whole.bottom());
    OpenTemplate("标准模板");
    Press(Qt::Key_K, Qt::ControlModifier);
    ASSERT_EQ(QApplication::focusWidget(), filter);
    Type("xsy");
    EXPECT_EQ(ShownNodes(), (QStringList{"凭证模板", "标准模板", "销售与收款"}));
    Key(Qt::Key_Return);
    ASSERT_EQ(QApplication::focusWidget(), &window->Tree());
    Key(Qt::Key_Down);
    EXPECT_EQ(window->Presenter().TemplateName(), "销售与收款");
    // The node that was lit before goes now.
    EXPECT_EQ(ShownNodes(), (QStringList{"凭证模板", "销售与收款"}));
    Press(Qt::Key_K, Qt::ControlModifier);
    Key(Qt::Key_Escape);
    EXPECT_EQ(ShownNodes().size(), 11);
    EXPECT_EQ(filter->text(), "");
}

TEST_F(SearchWayTest, RowsAreDroppedOnANodeAndNothingElseIs) {
    OpenTemplate("日常费用");
    const auto rows = window->Presenter().Cells().CopyBlock(center::CellSelection::Rows({{1, 2}}));
    ASSERT_TRUE(rows.has_value());
    QMimeData mime;
    mime.setText(QString::fromStdString(rows->text));
    QWidget* port = window->Tree().viewport();
    const auto drop = [&](const std::string& node) {
        const QPoint at = window->Tree().visualItemRect(window->Tree().FindNode(node)).center();
        QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(port, &enter);
        QDropEvent dropped(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(port, &dropped);
        QApplication::processEvents();
        return dropped.isAccepted();
    };
    drop(KeyOf("销售与收款"));
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FID = 2"), 8);
    mime.setData(RowsFormat(), QByteArray::fromStdString(rows->rows));
    Answer(system::MessageResult::Yes);
    EXPECT_TRUE(drop(KeyOf("销售与收款")));
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FID = 2"), 10);
    EXPECT_FALSE(drop(KeyOf("日常费用")));
    EXPECT_FALSE(drop("ROOT"));
    EXPECT_EQ(window->Presenter().TemplateName(), "日常费用");
}

// What hangs at the cursor, and where it may be dropped. The platform of the tests ends every drag at once.
TEST_F(SearchWayTest, DraggedRowsTellHowManyTheyAre) {
    OpenTemplate("日常费用");
    QHeaderView* header = window->Grid().verticalHeader();
    const QPoint from(header->width() / 2, header->sectionViewportPosition(0) + header->sectionSize(0) / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, from);
    QTest::mousePress(header->viewport(), Qt::LeftButton, Qt::NoModifier, from);
    const QPoint to = from + QPoint(-3 * QApplication::startDragDistance(), 0);
    QMouseEvent move(QEvent::MouseMove, to, header->viewport()->mapToGlobal(to), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(header->viewport(), &move);
    const auto* drag = window->Grid().findChild<QDrag*>();
    ASSERT_NE(drag, nullptr);
    EXPECT_EQ(CountOfRows(*drag->mimeData()), 1);
    EXPECT_EQ(drag->pixmap().toImage(), RowsBadge(1, window->Grid()).toImage());
    EXPECT_NE(RowsBadge(2, window->Grid()).toImage(), RowsBadge(1, window->Grid()).toImage());
}

TEST_F(SearchWayTest, TheTreeShowsWhereDraggedRowsMayGo) {
    OpenTemplate("日常费用");
    const auto rows = window->Presenter().Cells().CopyBlock(center::CellSelection::Rows({{1, 2}}));
    ASSERT_TRUE(rows.has_value());
    QMimeData mime;
    mime.setText(QString::fromStdString(rows->text));
    mime.setData(RowsFormat(), QByteArray::fromStdString(rows->rows));
    EXPECT_EQ(CountOfRows(mime), 2);
    const TemplateTree& tree = window->Tree();
    QWidget* port = tree.viewport();
    const auto over = [&](const std::string& key) {
        const QPoint at = tree.visualItemRect(tree.FindNode(key)).center();
        QDragMoveEvent move(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(port, &move);
        return move.isAccepted();
    };
    // How many points of a node's row have that colour.
    const auto points = [&](const std::string& key, const QColor& color) {
        const QImage row = port->grab(tree.visualItemRect(tree.FindNode(key))).toImage();
        int count = 0;
        for (int y = 0; y < row.height(); ++y) {
            for (int x = 0; x < row.width(); ++x)
                count += row.pixelColor(x, y) == color ? 1 : 0;
        }
        return count;
    };
    const std::string taking = KeyOf("销售与收款");
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(port, &enter);
    EXPECT_TRUE(over(taking));
    EXPECT_GT(points(taking, colors::kAccent), 50);
    // Neither the open template nor the root.
    for (const std::string& refusing : {KeyOf("日常费用"), std::string("ROOT")}) {
        EXPECT_FALSE(over(refusing));
        EXPECT_GT(points(refusing, colors::kRefusal), 50) << refusing;
        EXPECT_LT(points(taking, colors::kAccent), 10);
    }
    QDragLeaveEvent leave;
    QApplication::sendEvent(port, &leave);
    EXPECT_LT(points("ROOT", colors::kRefusal), 10);
}

}  // namespace
}  // namespace vicenter::ui
