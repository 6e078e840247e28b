// The window and every dialog over it, opened by real events on the demo account set and looked at: no text
// is cut off. With VICENTER_PICTURES set to a folder the pictures of docs/pictures/ are written there.

#include <QAbstractButton>
#include <QDialog>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QTimer>
#include <QTreeWidget>

#include "host/window/look_up_window.h"
#include "tests/ui/demo_set_fixture.h"
#include "ui/window/center_commands.h"

namespace vicenter::ui {
namespace {

// Labels and buttons that are narrower than their texts.
QStringList CutOff(const QWidget& root) {
    QStringList found;
    for (const QWidget* widget : root.findChildren<QWidget*>()) {
        QString text;
        if (const auto* label = qobject_cast<const QLabel*>(widget); label && !label->wordWrap())
            text = label->text();
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) text = button->text();
        text.remove(u'&');  // marks a key and takes no room
        if (text.isEmpty() || !widget->isVisibleTo(&root)) continue;
        const bool clipped = widget->fontMetrics().horizontalAdvance(text) > widget->width() ||
                             !root.rect().contains(QRect(widget->mapTo(&root, QPoint()), widget->size()));
        if (clipped) found << text;
    }
    return found;
}

class PicturesTest : public DemoSetTest {
  protected:
    PicturesTest() {
        host::LookUpDialog::SetProcess(std::make_shared<host::QtLookUpDialog>());
        entry::WindowFactory::SetProcess(
            std::make_shared<QtWindowFactory>(std::make_shared<CenterCommands>()));
    }
    ~PicturesTest() override { host::LookUpDialog::SetProcess(nullptr); }

    void SetUp() override {
        Open();
        ClickNode("detail-1");
    }
    void Show(std::initializer_list<int> columns) {
        for (const int c : {7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20, 21})
            window->Presenter().Grid().SetColumnHidden(c, true);
        for (const int c : columns)
            window->Presenter().Grid().SetColumnHidden(c, false);
        QApplication::processEvents();
    }
    void Picture(const QString& stem, QWidget& of, const QSize& size = {}) {
        QApplication::processEvents();
        const QString pictures = qEnvironmentVariable("VICENTER_PICTURES");
        if (pictures.isEmpty()) return;
        const QPixmap picture = size.isValid() ? of.grab(QRect(QPoint(), size)) : of.grab();
        EXPECT_TRUE(picture.save(QDir(pictures).filePath(stem + ".png")));
    }
    // Opens a dialog, looks at it as `prepare` leaves it, and closes it with Esc.
    template <class Open, class Prepare>
    void Dialog(const QString& stem, Open open, Prepare prepare) {
        bool seen = false;
        QTimer::singleShot(0, window, [&] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr) << stem.toStdString();
            seen = true;
            QApplication::processEvents();
            prepare(*dialog);
            QApplication::processEvents();
            EXPECT_EQ(CutOff(*dialog), QStringList()) << stem.toStdString();
            Picture(stem, *dialog);
            qobject_cast<QDialog*>(dialog)->reject();
        });
        open();
        EXPECT_TRUE(seen) << stem.toStdString();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    void LookUp(const QString& stem, int row, int gridColumn, const char* typed = "") {
        ClickCell(row, gridColumn);
        Dialog(
            stem, [] { QTest::keyClick(QApplication::focusWidget(), Qt::Key_F7); },
            [&](QWidget& dialog) {
                QTest::keyClicks(dialog.findChild<QLineEdit*>("txtFilter"), typed);
                const auto* list = dialog.findChild<QTreeWidget*>("lstRecords");
                ASSERT_NE(list->currentItem(), nullptr);
                EXPECT_LE(list->header()->length(), list->viewport()->width());
            });
    }
};

TEST_F(PicturesTest, TheWindow) {
    EXPECT_EQ(CutOff(*window), QStringList());
    ClickCell(1, column::kExplanation);
    Show({9, 11, 20});
    Picture("main-window", *window);
}

TEST_F(PicturesTest, ANameListBelowItsCell) {
    Show({9, 11, 20});
    ClickCell(6, column::kAccountNumber);
    Type("yh");
    Key(Qt::Key_Down);
    auto* list = window->findChild<QWidget*>("nameList");
    ASSERT_TRUE(list->isVisible());
    Picture("name-list", *window, {window->width(), 500});
    Key(Qt::Key_Escape);
    EXPECT_FALSE(list->isVisible());
    EXPECT_EQ(qobject_cast<QLineEdit*>(QApplication::focusWidget())->text(), "yh");
    Key(Qt::Key_Escape);
}

TEST_F(PicturesTest, TheItemPanel) {
    Show({7, 11, 20});
    int row = 1;
    while (row < window->Presenter().RowCount() && Text(row, column::kItems).find(',') == std::string::npos)
        ++row;
    ClickCell(row, column::kItems);
    QTest::keyClick(&window->Grid(), Qt::Key_F4);
    EXPECT_TRUE(window->findChild<QWidget*>("picItem")->isVisible());
    EXPECT_EQ(CutOff(*window->findChild<QWidget*>("picItem")), QStringList());
    Picture("item-panel", *window, {window->width(), 460});
}

TEST_F(PicturesTest, TheLookUps) {
    Show({9, 11, 13, 17, 20});
    window->Presenter().Grid().SetText(12, column::kNo, "9");
    ClickCell(12, column::kAccountNumber);
    Type("1405.01");
    Key(Qt::Key_Tab);
    LookUp("look-up-explanation", 12, column::kExplanation);
    LookUp("look-up-account", 6, column::kAccountNumber);
    LookUp("look-up-account-filter", 6, column::kAccountNumber, "yh");
    LookUp("look-up-settlement", 12, column::kSettleName);
    LookUp("look-up-currency", 12, column::kCurrencyName);
    LookUp("look-up-unit", 12, column::kUnitName);
    ClickCell(1, column::kItems);
    QTest::keyClick(&window->Grid(), Qt::Key_F4);
    Dialog(
        "look-up-item",
        [this] { QTest::mouseClick(window->findChild<QWidget*>("cmdItemLookUp1"), Qt::LeftButton); },
        [](QWidget&) {});
    surroundings.messageBoxes->answers = {system::MessageResult::No};
}

TEST_F(PicturesTest, TheDialogs) {
    Dialog(
        "find-dialog", [this] { QTest::keyClick(&window->Grid(), Qt::Key_F, Qt::ControlModifier); },
        [](QWidget& dialog) { dialog.findChild<QLineEdit*>("txtExp")->setText("报销"); });
    Dialog(
        "column-dialog", [this] { ClickTool("mnuShowCol"); }, [](QWidget&) {});
    Dialog(
        "generation-dialog", [this] { QTest::keyClick(&window->Grid(), Qt::Key_F5); },
        [](QWidget& dialog) { dialog.findChild<QLineEdit*>("txtVchTpName")->setText("十月常用凭证"); });
}

TEST_F(PicturesTest, FaultyCellsSayWhatIsExpected) {
    const auto& nodes = window->Presenter().Nodes();
    ClickNode(nodes.back().key);
    Show({9, 13, 17, 20});
    const center::EntryGrid& grid = window->Presenter().Grid();
    for (int row = 1; row <= window->Presenter().RowCount(); ++row) {
        if (grid.FaultyCheck(row, column::kCurrencyName) == 0) continue;
        ClickCell(row, column::kCurrencyName);
        EXPECT_FALSE(window->findChild<QLabel*>("lblHint")->text().isEmpty());
        break;
    }
    Picture("faulty-cells", *window, {window->width(), window->height()});
}

}  // namespace
}  // namespace vicenter::ui
