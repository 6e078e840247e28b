// A pattern as the voucher that it makes, and templates as PDF files, by real events on the demo account set.

#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>
#include <functional>

#include "platform/system/files.h"
#include "tests/ui/demo_set_fixture.h"
#include "ui/print/sheet_painter.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class VoucherWayTest : public DemoSetTest {
  protected:
    void SetUp() override { Open(); }

    // Runs when the dialog stands there, and sees to it that it goes.
    void InDialog(std::function<void(QDialog&)> look) {
        QTimer::singleShot(0, window, [this, look = std::move(look)] {
            auto* dialog = window->findChild<QDialog*>(QStringLiteral("frmVoucher"));
            ASSERT_NE(dialog, nullptr);
            shown_ = true;
            look(*dialog);
            dialog->reject();
        });
    }
    static std::string Head(const std::string& file) {
        std::ifstream in(system::PathFromUtf8(file), std::ios::binary);
        std::string head(5, '\0');
        in.read(head.data(), 5);
        return head;
    }
    std::string Hint() { return window->findChild<QLabel*>(QStringLiteral("lblHint"))->text().toStdString(); }
    bool shown_ = false;
};

TEST_F(VoucherWayTest, F9ShowsTheLinesTheSumsAndWhatIsOpen) {
    ClickNode("detail-3");
    ClickCell(6, column::kExplanation);
    InDialog([&](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle().toStdString(), "生成的凭证 - 外币业务（待核对） 3 号");
        auto* lines = dialog.findChild<QTableWidget*>(QStringLiteral("voucherLines"));
        const int last = lines->rowCount() - 1;
        EXPECT_EQ(lines->item(last, 0)->text().toStdString(), "合计");
        EXPECT_EQ(lines->item(0, 1)->text().toStdString().substr(0, 4), "1002");
        auto* open = dialog.findChild<QListWidget*>(QStringLiteral("voucherQuestions"));
        ASSERT_GT(open->count(), 0);
        EXPECT_THAT(open->item(0)->text().toStdString(), HasSubstr("第 1 行：科目代码 1002，不是明细科目"));
    });
    QTest::keyClick(&window->Grid(), Qt::Key_F9);
    EXPECT_TRUE(shown_);
}

TEST_F(VoucherWayTest, ItemsHaveTheirNamesBesideTheirCodes) {
    ClickNode("detail-1");
    ClickCell(3, column::kExplanation);
    InDialog([&](QDialog& dialog) {
        auto* lines = dialog.findChild<QTableWidget*>(QStringLiteral("voucherLines"));
        EXPECT_THAT(lines->item(0, 2)->text().toStdString(),
                    StartsWith("项目 D01 总经理办公室、E001 林晓岚"));
    });
    QTest::keyClick(&window->Grid(), Qt::Key_F9);
    EXPECT_TRUE(shown_);
}

TEST_F(VoucherWayTest, EveryTextOfTheVoucherIsReadAtItsFirstSize) {
    ClickNode("detail-3");
    ClickCell(1, column::kExplanation);
    InDialog([&](QDialog& dialog) {
        auto* lines = dialog.findChild<QTableWidget*>(QStringLiteral("voucherLines"));
        int broken = 0;
        for (int row = 0; row < lines->rowCount(); ++row) {
            for (int c = 0; c < lines->columnCount(); ++c) {
                const QRect cell = lines->visualItemRect(lines->item(row, c));
                const QString text = lines->item(row, c)->text();
                const QFontMetrics metrics(lines->item(row, c)->font());
                const QRect needed =
                    metrics.boundingRect(QRect(0, 0, cell.width() - 6, 10000), Qt::TextWordWrap, text);
                EXPECT_LE(needed.height(), cell.height()) << text.toStdString();
                EXPECT_LE(needed.width(), cell.width()) << text.toStdString();
                broken += needed.height() > metrics.height() + metrics.leading();
            }
        }
        EXPECT_GT(broken, 0) << "nothing was long enough to tell";
    });
    QTest::keyClick(&window->Grid(), Qt::Key_F9);
    EXPECT_TRUE(shown_);
}

TEST_F(VoucherWayTest, TheVoucherGoesIntoAPdfFileAndTheStatusLineLinksIt) {
    ClickCell(1, column::kExplanation);
    const std::string pdf = folder.Path("凭证.pdf");
    surroundings.fileDialogs->choices.push_back(pdf.substr(0, pdf.size() - 4));
    InDialog([&](QDialog& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdPdf")), Qt::LeftButton);
    });
    QTest::keyClick(&window->Grid(), Qt::Key_F9);
    ASSERT_EQ(surroundings.fileDialogs->requests.size(), 1U);
    EXPECT_THAT(surroundings.fileDialogs->requests[0].proposedName, HasSubstr("标准模板-"));
    EXPECT_EQ(Head(pdf), "%PDF-");
    EXPECT_THAT(Hint(), HasSubstr("已另存为 PDF"));
    EXPECT_THAT(Hint(), HasSubstr(pdf));
}

TEST_F(VoucherWayTest, ARowWithoutANumberMakesNoVoucher) {
    ClickCell(window->Presenter().RowCount() + 1, column::kExplanation);
    QTest::keyClick(&window->Grid(), Qt::Key_F9);
    EXPECT_THAT(TakeMessages(), ElementsAre("请先选择一行有模板编号的分录！"));
}

TEST_F(VoucherWayTest, TheTreesMenuSavesTheTemplateAsPdf) {
    const std::string pdf = folder.Path("模板.pdf");
    surroundings.fileDialogs->choices.push_back(pdf);
    for (const center::TreeMenuItem& item : window->Presenter().Tree().MenuItems()) {
        if (item.name == "mnuPdf") item.run();
    }
    EXPECT_EQ(Head(pdf), "%PDF-");
    // A PDF of any spelling is one already.
    const std::string capital = folder.Path("模板二.PDF");
    surroundings.fileDialogs->choices.push_back(capital);
    for (const center::TreeMenuItem& item : window->Presenter().Tree().MenuItems()) {
        if (item.name == "mnuPdf") item.run();
    }
    EXPECT_EQ(Head(capital), "%PDF-");
    // What is none is not written over.
    const std::string letter = folder.Path("信.pdf");
    ASSERT_TRUE(QFile::copy(QString::fromStdString(file), QString::fromStdString(letter)));
    surroundings.fileDialogs->choices.push_back(letter);
    for (const center::TreeMenuItem& item : window->Presenter().Tree().MenuItems()) {
        if (item.name == "mnuPdf") item.run();
    }
    EXPECT_THAT(TakeMessages(),
                ::testing::Contains(::testing::HasSubstr("目标是账套或其他数据库文件，不能覆盖")));
    EXPECT_NE(Head(letter), "%PDF-");
    // What cannot be written is told, and what was there stays.
    surroundings.fileDialogs->choices.push_back(folder.Path("nowhere/x.pdf"));
    for (const center::TreeMenuItem& item : window->Presenter().Tree().MenuItems()) {
        if (item.name == "mnuPdf") item.run();
    }
    EXPECT_THAT(TakeMessages(), ::testing::Contains(StartsWith("PDF 文件未能写入！")));
}

TEST_F(VoucherWayTest, CtrlPWithoutLinesSaysSo) {
    window->Tree().setFocus();
    ClickTool("mnuNew");
    TakeMessages();
    ASSERT_EQ(window->Presenter().RowCount(), 0) << "there would be something to print";
    QTest::keyClick(&window->Grid(), Qt::Key_P, Qt::ControlModifier);
    EXPECT_THAT(TakeMessages(), ElementsAre("当前没有可打印的分录！"));
}

TEST_F(VoucherWayTest, TheAmountIsInSightAndTheLastColumnEndsAtTheWindowsEdge) {
    EXPECT_FALSE(window->Presenter().Grid().Layout(column::kAmount).hidden);
    EXPECT_EQ(window->Presenter().Grid().Layout(column::kRemark).width, 1800);
    GridView& grid = window->Grid();
    const QRect last = grid.visualRect(grid.Model().IndexOf({1, column::kRemark}));
    EXPECT_GE(last.right() + 1, grid.viewport()->width() - 1);
    EXPECT_TRUE(
        grid.viewport()->rect().contains(grid.visualRect(grid.Model().IndexOf({1, column::kAmount}))));
}

}  // namespace
}  // namespace vicenter::ui
