#include "host/window/look_up_window.h"

#include <QApplication>
#include <QClipboard>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace vicenter::host {
namespace {

class LookUpWindowTest : public ::testing::Test {
  protected:
    LookUpWindowTest() {
        request_.title = "会计科目";
        request_.headers = {"代码", "名称", "余额方向", "核算项目"};
        request_.tree = true;
        request_.records = {{"1001", "库存现金", {"借", ""}, 0, true},
                            {"1002", "银行存款", {"借", ""}, 0, false},
                            {"1002.01", "工商银行", {"借", ""}, 1, true},
                            {"1122", "应收账款", {"借", "客户"}, 0, true}};
    }
    static QLineEdit* Filter(LookUpWindow& dialog) { return dialog.findChild<QLineEdit*>("txtFilter"); }
    static QTreeWidget* List(LookUpWindow& dialog) { return dialog.findChild<QTreeWidget*>("lstRecords"); }
    static QString Current(LookUpWindow& dialog) {
        const QTreeWidgetItem* item = List(dialog)->currentItem();
        return item == nullptr ? QString() : item->text(0);
    }
    LookUpRequest request_;
};

TEST_F(LookUpWindowTest, ShowsAccountsAsATreeWithTheirFurtherColumns) {
    LookUpWindow dialog(request_);
    EXPECT_EQ(dialog.windowTitle(), "会计科目");
    EXPECT_EQ(List(dialog)->topLevelItemCount(), 3);
    EXPECT_EQ(List(dialog)->topLevelItem(1)->child(0)->text(1), "工商银行");
    EXPECT_EQ(List(dialog)->topLevelItem(2)->text(3), "客户");
    EXPECT_EQ(List(dialog)->headerItem()->text(2), "余额方向");
}

TEST_F(LookUpWindowTest, TypingNarrowsAndEnterTakesTheFirstThatFits) {
    LookUpWindow dialog(request_);
    EXPECT_NE(Filter(dialog)->accessibleName(), "");
    EXPECT_EQ(List(dialog)->accessibleName(), dialog.windowTitle());
    dialog.show();
    QTest::keyClicks(Filter(dialog), "gsyh");
    EXPECT_TRUE(List(dialog)->topLevelItem(0)->isHidden());
    EXPECT_FALSE(List(dialog)->topLevelItem(1)->isHidden());
    EXPECT_EQ(Current(dialog), "1002.01");
    QTest::keyClick(Filter(dialog), Qt::Key_Return);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(dialog.Chosen(), std::optional<std::size_t>(2));
}

TEST_F(LookUpWindowTest, ACopiedCodeFiltersWithoutItsLineEnd) {
    LookUpWindow dialog(request_);
    dialog.show();
    QApplication::clipboard()->setText("1122\r\n");
    Filter(dialog)->paste();
    EXPECT_EQ(Filter(dialog)->text(), "1122");
    EXPECT_EQ(Current(dialog), "1122");
}

TEST_F(LookUpWindowTest, ArrowsMoveWhileTheFilterBoxKeepsTheFocus) {
    LookUpWindow dialog(request_);
    dialog.show();
    EXPECT_EQ(Current(dialog), "1001");
    QTest::keyClick(Filter(dialog), Qt::Key_Down);
    EXPECT_EQ(Current(dialog), "1002");
    QTest::keyClick(Filter(dialog), Qt::Key_Return);  // a group account
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_FALSE(dialog.findChild<QPushButton*>("cmdOK")->isEnabled());
    QTest::keyClick(Filter(dialog), Qt::Key_Down);
    QTest::keyClick(Filter(dialog), Qt::Key_Return);
    EXPECT_EQ(dialog.Chosen(), std::optional<std::size_t>(2));
}

TEST_F(LookUpWindowTest, EscCancels) {
    LookUpWindow dialog(request_);
    dialog.show();
    QTest::keyClick(Filter(dialog), Qt::Key_Escape);
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.Chosen(), std::nullopt);
}

TEST_F(LookUpWindowTest, StartsAtTheSelectedRecord) {
    request_.selected = 3;
    LookUpWindow dialog(request_);
    EXPECT_EQ(Current(dialog), "1122");
}

TEST_F(LookUpWindowTest, NothingThatFitsLeavesNothingToTake) {
    LookUpWindow dialog(request_);
    dialog.show();
    QTest::keyClicks(Filter(dialog), "zzz");
    EXPECT_EQ(Current(dialog), "");
    QTest::keyClick(Filter(dialog), Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
    Filter(dialog)->clear();
    EXPECT_EQ(Current(dialog), "1001");
}

}  // namespace
}  // namespace vicenter::host
