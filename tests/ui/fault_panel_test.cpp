// The list of faults, the mark of a faulty cell, and the ways to it by mouse and keys.

#include "ui/panels/fault_panel.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QHeaderView>

#include "tests/ui/window_fixture.h"

namespace vicenter::ui {
namespace {

namespace column = center::column;

class FaultPanelTest : public WindowTest {
  protected:
    void OpenWithFaults() {
        ledger->profile =
            "1|0|900,2|0|2000,3|0|700,4|1|0,5|0|1200,6|0|1200,7|0|900,8|1|0,9|0|900,10|0|900,11|0|900,"
            "12|1|0,13|0|900,14|0|900,15|0|900,16|1|0,17|0|900,18|0|900,19|0|900,20|0|900,21|0|900";
        Open();
        TypeAt(1, column::kAccountNumber, "9999");
        TypeAt(2, column::kFileCount, "-3");
        TypeAt(4, column::kFileCount, "1.5");
    }
    void TypeAt(int row, int gridColumn, const char* text) {
        Grid().setFocus();
        window->Presenter().Cells().MoveActiveCell({row, gridColumn});
        Type(text);
        Key(Qt::Key_Return);
    }
    FaultPanel& Panel() { return *window->findChild<FaultPanel*>("faultPanel"); }
    void Show() {
        QTest::mouseClick(window->findChild<QToolButton*>("cmdFaults"), Qt::LeftButton);
        QApplication::processEvents();
    }
    QStringList Rows() {
        QStringList rows;
        const QAbstractItemModel& model = *Panel().Table().model();
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList cells;
            for (int field = 0; field < model.columnCount(); ++field)
                cells << model.index(row, field).data().toString();
            rows << cells.join(u'|');
        }
        return rows;
    }
    center::CellAddress Active() { return window->Presenter().Grid().ActiveCell(); }
    void ClickRow(int row, Qt::KeyboardModifiers modifiers = {}) {
        QTableView& table = Panel().Table();
        QTest::mouseClick(table.viewport(), Qt::LeftButton, modifiers,
                          table.visualRect(table.model()->index(row, 3)).center());
    }
};

TEST_F(FaultPanelTest, TheStatusLineCountsThemAndItsCountShowsAndHidesTheList) {
    Open();
    auto* count = window->findChild<QToolButton*>("cmdFaults");
    ASSERT_NE(count, nullptr);
    EXPECT_FALSE(count->isVisible()) << "nothing is wrong";
    EXPECT_FALSE(Panel().isVisible());
    TypeAt(2, column::kFileCount, "-3");
    EXPECT_TRUE(count->isVisible());
    EXPECT_EQ(count->text(), "异常 1 处");
    Show();
    EXPECT_TRUE(Panel().isVisible());
    Show();
    EXPECT_FALSE(Panel().isVisible());
    Key(Qt::Key_F8, Qt::ControlModifier);
    EXPECT_TRUE(Panel().isVisible());
}

TEST_F(FaultPanelTest, ListsRowColumnValueAndReasonAndFollowsTheGrid) {
    OpenWithFaults();
    Show();
    EXPECT_EQ(Rows(), (QStringList{"1|科目代码(*)|9999|科目代码不存在", "2|附件数|-3|不能小于0",
                                   "4|附件数|1.5|必须是整数"}));
    TypeAt(2, column::kFileCount, "3");
    EXPECT_TRUE(QTest::qWaitFor([&] { return Rows().size() == 2; }));
    EXPECT_EQ(Rows()[1], "4|附件数|1.5|必须是整数");
}

TEST_F(FaultPanelTest, AClickGoesToTheCellWhereTypingMendsIt) {
    OpenWithFaults();
    Show();
    ClickRow(1);
    EXPECT_EQ(Active(), (center::CellAddress{2, column::kFileCount}));
    EXPECT_EQ(Focused(), &Grid());
    Type("7");
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(2, column::kFileCount), "7");
    EXPECT_TRUE(QTest::qWaitFor([&] { return Rows().size() == 2; }));
}

TEST_F(FaultPanelTest, F8GoesFromFaultToFaultAlsoOutOfAnOpenEditor) {
    OpenWithFaults();
    window->Presenter().Cells().MoveActiveCell({1, 1});
    Key(Qt::Key_F8);
    EXPECT_EQ(Active(), (center::CellAddress{1, column::kAccountNumber}));
    Type("1001");
    ASSERT_TRUE(Grid().IsEditing());
    Key(Qt::Key_F8);
    EXPECT_EQ(Active(), (center::CellAddress{2, column::kFileCount}));
    EXPECT_EQ(Text(1, column::kAccountNumber), "1001") << "what was being typed counts";
    Key(Qt::Key_F8, Qt::ShiftModifier);
    EXPECT_EQ(Active(), (center::CellAddress{4, column::kFileCount}));
    window->Tree().setFocus();
    Key(Qt::Key_F8);
    EXPECT_EQ(Focused(), &Grid());
}

TEST_F(FaultPanelTest, IsSortedByItsHeadings) {
    OpenWithFaults();
    Show();
    Panel().Table().sortByColumn(2, Qt::AscendingOrder);
    EXPECT_EQ(Rows()[0], "2|附件数|-3|不能小于0");
    Panel().Table().sortByColumn(0, Qt::DescendingOrder);
    EXPECT_EQ(Rows()[0], "4|附件数|1.5|必须是整数");
    ClickRow(0);
    EXPECT_EQ(Active(), (center::CellAddress{4, column::kFileCount}));
}

TEST_F(FaultPanelTest, IsCopiedWithItsHeadings) {
    OpenWithFaults();
    Show();
    QTest::keyClick(&Panel().Table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(),
              "行\t列\t内容\t原因\r\n1\t科目代码(*)\t9999\t科目代码不存在\r\n2\t附件数\t-3\t不能小于0\r\n"
              "4\t附件数\t1.5\t必须是整数\r\n");
    Panel().Table().selectRow(1);
    QTest::keyClick(&Panel().Table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "行\t列\t内容\t原因\r\n2\t附件数\t-3\t不能小于0\r\n");
}

TEST_F(FaultPanelTest, GatheringRowsStaysWithTheList) {
    OpenWithFaults();
    Show();
    const center::CellAddress before = Active();
    ClickRow(0);
    ASSERT_FALSE(Active() == before);
    Panel().Table().setFocus();
    ClickRow(2, Qt::ControlModifier);
    EXPECT_EQ(Active(), (center::CellAddress{1, column::kAccountNumber}));
    EXPECT_EQ(Focused(), &Panel().Table());
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(),
              "行\t列\t内容\t原因\r\n1\t科目代码(*)\t9999\t科目代码不存在\r\n"
              "4\t附件数\t1.5\t必须是整数\r\n");
}

TEST_F(FaultPanelTest, WhatWasReportedStandsThereWithItsSource) {
    OpenWithFaults();
    const QString file = QDir::tempPath() + "/fault_panel_test.xlsx";
    window->Presenter().ReportFaults({center::FaultSource::Workbook,
                                      file.toStdString(),
                                      {{5, 6, "金额", "x", "必须是数字"}, {0, 0, "", "", "文件不完整"}}});
    window->Presenter().ReportFaults(
        {center::FaultSource::Vouchers, "十月", {{3, 0, "摘要(*)", "长", "长度不能超过255个字符"}}});
    EXPECT_TRUE(Panel().isVisible()) << "they are nowhere else to be seen";
    EXPECT_EQ(window->findChild<QToolButton*>("cmdFaults")->text(), "异常 6 处");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Rows().size() == 6; }));
    EXPECT_EQ(Rows()[2], "4|附件数|1.5|必须是整数|当前模板");
    EXPECT_EQ(Rows()[3], "|||文件不完整|fault_panel_test.xlsx");
    EXPECT_EQ(Rows()[4], "3|摘要(*)|长|长度不能超过255个字符|凭证（十月）");
    EXPECT_EQ(Rows()[5], "5|金额（F 列）|x|必须是数字|fault_panel_test.xlsx");
    // A click leads to where it can be mended; gathering rows to copy them does not.
    QFile(file).open(QIODevice::WriteOnly);
    ClickRow(5);
    EXPECT_EQ(ledger->surroundings.processes->opened, std::vector<std::string>{file.toStdString()});
    QTableView& table = Panel().Table();
    QTest::mouseClick(table.viewport(), Qt::LeftButton, Qt::ControlModifier,
                      table.visualRect(table.model()->index(3, 3)).center());
    EXPECT_EQ(ledger->surroundings.processes->opened.size(), 1U);
    QTest::keyClick(&table, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(),
              "行\t列\t内容\t原因\t来源\r\n\t\t\t文件不完整\tfault_panel_test.xlsx\r\n"
              "5\t金额（F 列）\tx\t必须是数字\tfault_panel_test.xlsx\r\n");
    QTest::keyClick(&table, Qt::Key_Delete);
    EXPECT_EQ(Rows().size(), 4);
    table.selectAll();
    QTest::keyClick(&table, Qt::Key_Delete);
    EXPECT_EQ(Rows(), (QStringList{"1|科目代码(*)|9999|科目代码不存在", "2|附件数|-3|不能小于0",
                                   "4|附件数|1.5|必须是整数"}));
    QFile::remove(file);
}

TEST_F(FaultPanelTest, AValueOfSeveralLinesIsOneLineOfTheListAndNothingOfItIsHidden) {
    Open();
    window->Presenter().ReportFaults(
        {center::FaultSource::Workbook, "/a.xlsx", {{5, 6, "摘要", "a\r\nb\x01  c", "太长"}}});
    ASSERT_TRUE(QTest::qWaitFor([&] { return Rows().size() == 1; }));
    EXPECT_EQ(Rows()[0], "5|摘要（F 列）|a↵b□  c|太长|a.xlsx");
}

TEST_F(FaultPanelTest, F8ShowsTheListWhenNothingIsInACell) {
    Open();
    window->Presenter().ReportFaults(
        {center::FaultSource::Workbook, "/a.xls", {{0, 0, "", "", "文件已加密"}}});
    Panel().hide();
    Grid().setFocus();
    Key(Qt::Key_F8);
    EXPECT_TRUE(Panel().isVisible());
}

TEST_F(FaultPanelTest, AFaultyCellIsTintedAndHasAMarkInItsCorner) {
    OpenWithFaults();
    window->Presenter().Cells().MoveActiveCell({3, 1});
    const auto cellPicture = [&](int row) {
        const QRect cell = Grid().visualRect(Grid().Model().IndexOf({row, column::kFileCount}));
        return Grid().viewport()->grab(cell).toImage();
    };
    const QImage faulty = cellPicture(2);
    const QImage sound = cellPicture(6);  // a row of the same shade
    const QPoint inside(3, faulty.height() - 4);
    EXPECT_NE(faulty.pixelColor(inside), sound.pixelColor(inside)) << "tinted";
    const QPoint corner(faulty.width() - 4, 2);
    EXPECT_NE(faulty.pixelColor(corner), faulty.pixelColor(inside)) << "marked";
    EXPECT_GT(faulty.pixelColor(corner).red(), faulty.pixelColor(corner).green() + 60);
}

TEST_F(FaultPanelTest, TheTreeMarksTemplatesWithNumbersThatCannotBeUsed) {
    ledger->set.Answer("select distinct a.FID from t_VchTpControl",
                       fakes::Rows({"FID"}, {{automation::Variant(5)}}));
    Open();
    EXPECT_TRUE(QTest::qWaitFor([&] { return window->Tree().ShowsUnusable("detail-5"); }));
    EXPECT_FALSE(window->Tree().ShowsUnusable("detail-0"));
    EXPECT_EQ(window->Tree().FindNode("detail-5")->text(0), "自定义模板(1)");
    EXPECT_EQ(window->Tree().FindNode("detail-5")->toolTip(0), "自定义模板(1)（有不能使用的编号）");
}

}  // namespace
}  // namespace vicenter::ui
