#include "ui/grid/grid_model.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include "tests/ui/fakes.h"

namespace vicenter::ui {
namespace {

class GridModelTest : public ::testing::Test {
  protected:
    GridModelTest() { grid->SetRowTotal(100); }

    std::shared_ptr<center::EntryGrid> grid = std::make_shared<center::EntryGrid>();
    testing::PlainActions actions{grid};
};

TEST_F(GridModelTest, StandsUpToTheModelTesterThroughEveryKindOfChange) {
    GridModel model(grid, actions);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    grid->SetText(1, 2, "收到货款");
    grid->InsertRows(1, 3);
    grid->RemoveRows(2, 2);
    grid->SetRowTotal(152);
    grid->SetRowTotal(100);
    grid->SetForeColor({1, 5, 1, 6}, center::color::kRed);
    grid->SetReDraw(false);
    grid->SetText(2, 3, "借");
    grid->SetText(9, 20, "12.5");
    grid->SetReDraw(true);
    grid->Clear(100);
    EXPECT_EQ(model.rowCount(), 100);
    EXPECT_EQ(model.columnCount(), 21);
}

TEST_F(GridModelTest, ShowsDisplayTextsAndEditsPlainOnes) {
    GridModel model(grid, actions);
    grid->SetText(1, 20, "1234567.5");
    const QModelIndex amount = model.IndexOf({1, 20});
    EXPECT_EQ(amount.data(Qt::DisplayRole).toString(), "1,234,567.50");
    EXPECT_EQ(amount.data(Qt::EditRole).toString(), "1234567.5");
    EXPECT_TRUE(amount.data(Qt::TextAlignmentRole).value<Qt::Alignment>() & Qt::AlignRight);
    EXPECT_TRUE(model.IndexOf({1, 2}).data(Qt::TextAlignmentRole).value<Qt::Alignment>() & Qt::AlignLeft);
}

TEST_F(GridModelTest, NamesColumnsAsTheWorkbookDoesAndNumbersRows) {
    GridModel model(grid, actions);
    EXPECT_EQ(model.headerData(0, Qt::Horizontal).toString(), "模板编号(*)");
    EXPECT_EQ(model.headerData(4, Qt::Horizontal).toString(), "科目代码(*)");
    EXPECT_EQ(model.headerData(20, Qt::Horizontal).toString(), "备注");
    EXPECT_EQ(model.headerData(41, Qt::Vertical).toInt(), 42);
}

TEST_F(GridModelTest, LockedIdColumnsAreNotEditable) {
    GridModel model(grid, actions);
    for (int column = 1; column <= 21; ++column) {
        const bool locked = column == 4 || column == 8 || column == 12 || column == 16;
        EXPECT_EQ(model.flags(model.IndexOf({1, column})).testFlag(Qt::ItemIsEditable), !locked) << column;
    }
}

TEST_F(GridModelTest, NothingIsEditableOnceTheGridIsNotInteractive) {
    GridModel model(grid, actions);
    model.SetInteractive(false);
    EXPECT_FALSE(model.flags(model.IndexOf({1, 2})).testFlag(Qt::ItemIsEditable));
    EXPECT_FALSE(model.setData(model.IndexOf({1, 2}), "x"));
    EXPECT_EQ(grid->Text(1, 2), "");
}

TEST_F(GridModelTest, FaultyCellsAreRedAndSayWhy) {
    GridModel model(grid, actions);
    grid->SetText(3, 5, "9999");
    const QModelIndex cell = model.IndexOf({3, 5});
    EXPECT_FALSE(cell.data(Qt::ForegroundRole).isValid());
    EXPECT_FALSE(cell.data(Qt::ToolTipRole).isValid());
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    grid->SetForeColor({3, 5, 3, 5}, center::color::kRed);
    grid->SetFaultyCheck(3, 1, true);
    EXPECT_FALSE(changed.isEmpty());
    EXPECT_EQ(cell.data(Qt::ForegroundRole).value<QColor>(), QColor(255, 0, 0));
    EXPECT_EQ(cell.data(Qt::ToolTipRole).toString(), "科目不存在");
}

TEST_F(GridModelTest, GridColoursAreBlueGreenRed) {
    EXPECT_EQ(FromGridColor(255), QColor(255, 0, 0));
    EXPECT_EQ(FromGridColor(0xB9F7FF), QColor(255, 247, 185));
}

TEST_F(GridModelTest, ARefusedTextIsReportedAndLeavesTheCell) {
    GridModel model(grid, actions);
    QSignalSpy refused(&model, &GridModel::textRefused);
    EXPECT_FALSE(model.setData(model.IndexOf({1, 20}), "."));
    EXPECT_FALSE(model.setData(model.IndexOf({1, 20}), "x"));
    EXPECT_EQ(grid->Text(1, 20), "");
    ASSERT_EQ(refused.size(), 2);
    EXPECT_FALSE(refused[0][0].toString().isEmpty());
}

TEST_F(GridModelTest, FailuresOfTheRulesStayBehindTheModel) {
    actions.failure = automation::Error(13);
    GridModel model(grid, actions);
    EXPECT_FALSE(model.setData(model.IndexOf({1, 2}), "x"));
}

}  // namespace
}  // namespace vicenter::ui
