// The pictures of the entry window, of its look-ups and of the dialogs behind the commands of the band.

#include <QTreeWidget>

#include "tests/ui/pictures_fixture.h"

namespace vicenter::ui {
namespace {

class WindowPicturesTest : public PicturesTest {
  protected:
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

TEST_F(WindowPicturesTest, TheWindow) {
    EXPECT_EQ(CutOff(*window), QStringList());
    ClickCell(1, column::kExplanation);
    Show({9, 11, 20});
    Picture("main-window", *window);
}

TEST_F(WindowPicturesTest, ANameListBelowItsCell) {
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

TEST_F(WindowPicturesTest, TheItemPanel) {
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

TEST_F(WindowPicturesTest, TheLookUps) {
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

TEST_F(WindowPicturesTest, TheDialogs) {
    Dialog(
        "find-dialog", [this] { QTest::keyClick(&window->Grid(), Qt::Key_F, Qt::ControlModifier); },
        [](QWidget& dialog) { dialog.findChild<QLineEdit*>("txtExp")->setText("报销"); });
    Dialog(
        "column-dialog", [this] { ClickTool("mnuShowCol"); }, [](QWidget&) {});
    Dialog(
        "generation-dialog", [this] { QTest::keyClick(&window->Grid(), Qt::Key_F5); },
        [](QWidget& dialog) { dialog.findChild<QLineEdit*>("txtVchTpName")->setText("十月常用凭证"); });
}

TEST_F(WindowPicturesTest, FaultyCellsSayWhatIsExpected) {
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
