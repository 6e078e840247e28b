#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "center/grid/entry_grid.h"
#include "platform/scripting/file_system_object.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"
#include "ui/dialogs/column_dialog.h"
#include "ui/dialogs/find_dialog.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;

class DialogTest : public ::testing::Test {
  protected:
    DialogTest() {
        scripting::RegisterScripting();
        grid->SetRowTotal(100);
        grid->SetText(1, 2, "收到货款");
        grid->SetText(2, 2, "支付房租");
        grid->SetText(3, 2, "收到利息");
    }
    static void Press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QAbstractButton*>(button), Qt::LeftButton);
    }

    fakes::FakeSurroundings surroundings;
    automation::ClassRegistry::Restore restore;
    std::shared_ptr<center::EntryGrid> grid = std::make_shared<center::EntryGrid>();
};

TEST_F(DialogTest, FindGoesFromMatchToMatchByEnterAndStaysOpen) {
    dialogs::FrmSearch search;
    search.SetGrid(grid);
    search.SetEntryCount(3);
    FindDialog dialog(search, {});
    dialog.show();
    dialog.findChild<QLineEdit*>("txtExp")->setText("收到");
    QTest::keyClick(dialog.findChild<QLineEdit*>("txtExp"), Qt::Key_Return);
    EXPECT_EQ(grid->ActiveCell(), (center::CellAddress{1, 1}));
    QTest::keyClick(dialog.findChild<QLineEdit*>("txtExp"), Qt::Key_Return);
    EXPECT_EQ(grid->ActiveCell(), (center::CellAddress{3, 1}));
    EXPECT_NE(grid->Look(3, 5).backColor, center::color::kWhite);
    EXPECT_EQ(grid->Look(1, 5).backColor, center::color::kWhite);
    EXPECT_EQ(dialog.findChild<QLabel*>("lblHits")->text(), "共 2 条");
    QTest::keyClicks(dialog.findChild<QLineEdit*>("txtExp"), "?");
    EXPECT_EQ(dialog.findChild<QLabel*>("lblHits")->text(), "");
    EXPECT_TRUE(dialog.isVisible());
    Press(dialog, "cmdCancel");
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(DialogTest, FindTakesACopiedCellWithoutItsLineEnd) {
    dialogs::FrmSearch search;
    search.SetGrid(grid);
    search.SetEntryCount(3);
    FindDialog dialog(search, {});
    dialog.show();
    QApplication::clipboard()->setText("支付房租\r\n");
    for (const char* name : {"txtExp", "txtAcct", "txtBZ"}) {
        auto* box = dialog.findChild<QLineEdit*>(name);
        box->paste();
        EXPECT_EQ(box->text(), "支付房租") << name;
        if (box->objectName() != "txtExp") box->clear();
    }
    QTest::keyClick(dialog.findChild<QLineEdit*>("txtExp"), Qt::Key_Return);
    EXPECT_EQ(grid->ActiveCell(), (center::CellAddress{2, 1}));
    QApplication::clipboard()->setText("a\tb");
    dialog.findChild<QLineEdit*>("txtExp")->selectAll();
    dialog.findChild<QLineEdit*>("txtExp")->paste();
    EXPECT_EQ(dialog.findChild<QLineEdit*>("txtExp")->text(), "支付房租") << "a tab is refused";
}

TEST_F(DialogTest, FindTellsWhenNothingIsAskedFor) {
    dialogs::FrmSearch search;
    search.SetGrid(grid);
    search.SetEntryCount(3);
    FindDialog dialog(search, {});
    dialog.show();
    Press(dialog, "cmdOK");
    EXPECT_THAT(surroundings.messageBoxes->Texts(), ElementsAre("请输入过滤信息！"));
}

TEST_F(DialogTest, FindTakesTheAccountOfTheLookUp) {
    const auto record = std::make_shared<fakes::ScriptedObject>("Record");
    record->Value("Number", "1001");
    const auto result = std::make_shared<fakes::ScriptedObject>("Result");
    result->Value("ReturnOK", true);
    result->Value("ReturnObject", automation::Variant(record));
    const auto view = std::make_shared<fakes::ScriptedObject>("GLView");
    view->On("AccountLookup", [result](automation::Arguments&) { return automation::Variant(result); });
    automation::ClassRegistry::Process().Register("VelaEBCGLView.GLView",
                                                  [view] { return automation::ObjectRef(view); });
    dialogs::FrmSearch search;
    search.SetGrid(grid);
    search.SetEntryCount(3);
    FindDialog dialog(search, {});
    dialog.show();
    Press(dialog, "cmdAcct");
    EXPECT_EQ(dialog.findChild<QLineEdit*>("txtAcct")->text(), "1001");
}

TEST_F(DialogTest, FindMovesOffTheRowThatItFound) {
    dialogs::FrmSearch search;
    search.SetGrid(grid);
    search.SetEntryCount(3);
    QRect row(0, 100, 700, 20);
    FindDialog dialog(search, [&row] { return row; });
    dialog.show();
    dialog.move(50, 90);
    dialog.findChild<QLineEdit*>("txtExp")->setText("收到");
    Press(dialog, "cmdOK");
    EXPECT_FALSE(dialog.frameGeometry().intersects(row));
}

TEST_F(DialogTest, ColumnsAreTickedBySpaceAndAppliedAtOnce) {
    grid->SetColumnHidden(7, true);
    grid->SetColumnHidden(9, true);
    dialogs::frmSetColume columns;
    columns.SetGrid(grid);
    ColumnDialog dialog(columns);
    dialog.show();
    auto* list = dialog.findChild<QListWidget*>("ColList");
    ASSERT_EQ(list->count(), 12);
    EXPECT_EQ(list->item(0)->text(), "附件数");
    EXPECT_EQ(list->item(0)->checkState(), Qt::Unchecked);
    EXPECT_EQ(list->item(11)->checkState(), Qt::Checked);
    list->setCurrentRow(0);
    QTest::keyClick(list, Qt::Key_Space);
    EXPECT_EQ(list->item(0)->checkState(), Qt::Checked);
    EXPECT_TRUE(grid->Layout(7).hidden);
    Press(dialog, "Command1");
    EXPECT_FALSE(grid->Layout(7).hidden);
    EXPECT_TRUE(dialog.isVisible());
    Press(dialog, "Command2");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_FALSE(grid->Layout(7).hidden);
}

TEST_F(DialogTest, SelectionModeHasItsCaptionElevenRowsAndNoApply) {
    dialogs::frmSetColume columns;
    columns.SetSelectionMode(true);
    columns.SetSelection(automation::CreateObject("Scripting.Dictionary"));
    ColumnDialog dialog(columns);
    dialog.show();
    EXPECT_EQ(dialog.windowTitle(), "模板字段设置");
    EXPECT_EQ(dialog.findChild<QListWidget*>("ColList")->count(), 11);
    EXPECT_EQ(dialog.findChild<QPushButton*>("Command1"), nullptr);
    QTest::keyClick(dialog.findChild<QListWidget*>("ColList"), Qt::Key_Space);
    Press(dialog, "Command0");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(columns.Selection()->Get("Item", {automation::Argument("7")}).ToInt32(), 1);
    EXPECT_EQ(columns.Selection()->Get("Item", {automation::Argument("9")}).ToInt32(), 0);
}

}  // namespace
}  // namespace vicenter::ui
