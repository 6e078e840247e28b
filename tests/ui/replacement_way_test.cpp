// One code for another in all templates, by real mouse and key events on the demo ledger.

#include <QComboBox>

#include "tests/ui/tree_menu_fixture.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ReplacementWayTest : public TreeMenuTest {
  protected:
    static constexpr const char* kDialog = "frmReplaceCodes";

    static void ListLines(QDialog& dialog, int column, const char* from, const char* to) {
        dialog.findChild<QComboBox*>("column")->setCurrentIndex(column);
        dialog.findChild<QLineEdit*>("from")->setText(from);
        dialog.findChild<QLineEdit*>("to")->setText(to);
        QTest::keyClick(dialog.findChild<QLineEdit*>("to"), Qt::Key_Return);
    }
    static QString Ticks(QDialog& dialog) {
        QString ticks;
        const auto* table = dialog.findChild<QTableWidget*>("lines");
        for (int row = 0; row < table->rowCount(); ++row) {
            const QTableWidgetItem* item = table->item(row, 0);
            const bool offered = (item->flags() & Qt::ItemIsUserCheckable) != 0;
            ticks += !offered ? u'-' : item->checkState() == Qt::Checked ? u'x' : u'.';
        }
        return ticks;
    }
    // By the space key, as a keyboard's user does.
    static void Toggle(QDialog& dialog, int row) {
        auto* table = dialog.findChild<QTableWidget*>("lines");
        table->setCurrentCell(row, 0);
        QTest::keyClick(table, Qt::Key_Space);
    }
};

TEST_F(ReplacementWayTest, TickedLinesAreReplacedAndTheOpenTemplateShowsIt) {
    OpenTemplate("日常费用");
    ASSERT_EQ(Text(2, column::kAccountNumber), "1001");
    ASSERT_EQ(Text(4, column::kAccountNumber), "1001");
    ChooseInMenu(
        "ROOT", "mnuReplaceCodes",
        [&](QDialog& dialog) {
            EXPECT_FALSE(dialog.findChild<QPushButton*>("cmdReplace")->isEnabled());
            ListLines(dialog, 0, "1001", "1002.05");
            // The standard template's line is offered, not ticked.
            EXPECT_EQ(Rows(dialog, "lines", 1).front(),
                      "标准模板|1|1|提取备用金|1001 库存现金|1002.05 建设银行一般户|");
            EXPECT_EQ(Ticks(dialog).left(3), ".xx");
            Toggle(dialog, 2);
            EXPECT_EQ(Ticks(dialog).left(3), ".x.");
            Answer(system::MessageResult::Yes);
            TakeMessages();
            Press(dialog, "cmdReplace");
            EXPECT_EQ(dialog.findChild<QTableWidget*>("lines")->rowCount(), 0);
        },
        kDialog);
    ASSERT_TRUE(dialogShown_);
    const std::vector<std::string> told = TakeMessages();
    ASSERT_EQ(told.size(), 2U);
    EXPECT_THAT(told.back(), ::testing::StartsWith("替换成功："));
    ClickNode(KeyOf("日常费用"));
    EXPECT_EQ(Text(2, column::kAccountNumber), "1002.05");
    EXPECT_EQ(Text(2, column::kAccountName), "建设银行一般户");
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry e inner join t_Account a on a.FAccountID = "
                     "e.FAccountID where e.FID = 1 and e.FEntryID = 2 and a.FNumber = '1002.05'"),
              1);
    EXPECT_EQ(Text(4, column::kAccountNumber), "1001");
    // Once more by the key: taken back as one.
    WithDialog(
        {}, kDialog,
        [&](QDialog& dialog) {
            Answer(system::MessageResult::Yes);
            Press(dialog, "cmdUndo");
        },
        [&] { QTest::keyClick(window.data(), Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier); });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(
        Number("select count(*) from t_VchTemplateEntry where FAccountNumber = '1002.05' and FEntryID = 2"),
        0);
}

TEST_F(ReplacementWayTest, WhatCannotStandThereHasNoTickAndSaysWhy) {
    OpenTemplate("日常费用");
    ChooseInMenu(
        "ROOT", "mnuReplaceCodes",
        [&](QDialog& dialog) {
            ListLines(dialog, 0, "1001", "1002");
            EXPECT_FALSE(Ticks(dialog).contains(u'x'));
            EXPECT_THAT(Rows(dialog, "lines", 1).front().toStdString(),
                        ::testing::EndsWith("|不是明细科目，请选择明细科目"));
            // All of it is to be read.
            const auto* table = dialog.findChild<QTableWidget*>("lines");
            const int note = table->columnCount() - 1;
            EXPECT_GT(table->columnWidth(note),
                      table->fontMetrics().horizontalAdvance(table->item(0, note)->text()));
            Press(dialog, "cmdAll");
            EXPECT_FALSE(Ticks(dialog).contains(u'x'));
            EXPECT_FALSE(dialog.findChild<QPushButton*>("cmdReplace")->isEnabled());
            TakeMessages();
            ListLines(dialog, 1, "D02", "D06");
            EXPECT_THAT(TakeMessages(), IsEmpty());
            EXPECT_EQ(Rows(dialog, "lines", 5).front(), "D02|D06|");
            ListLines(dialog, 0, "no such account", "1001");
            EXPECT_THAT(TakeMessages(), ElementsAre("没有模板用到科目代码“no such account”。"));
            EXPECT_EQ(dialog.findChild<QTableWidget*>("lines")->rowCount(), 0);
        },
        kDialog);
    EXPECT_TRUE(dialogShown_);
}

TEST_F(ReplacementWayTest, TypingIsAskedAboutFirstAndWhoMayOnlyLookIsRefused) {
    OpenTemplate("日常费用");
    TypeInto(2, column::kExplanation, "typed");
    Answer(system::MessageResult::Yes);
    TakeMessages();
    ChooseInMenu(
        "ROOT", "mnuReplaceCodes",
        [&](QDialog& dialog) {
            ListLines(dialog, 0, "1001", "1002.05");
            EXPECT_EQ(Rows(dialog, "lines", 4)[1], "typed|1001 库存现金|1002.05 建设银行一般户|");
        },
        kDialog);
    Close();
    Enter(3);
    Open();
    TakeMessages();
    ChooseInMenu(
        "ROOT", "mnuReplaceCodes", [](QDialog&) {}, kDialog);
    EXPECT_FALSE(dialogShown_);
    EXPECT_THAT(TakeMessages(), ElementsAre("对不起，你没有相应的权限！"));
}

}  // namespace
}  // namespace vicenter::ui
