// The generation dialog driven by real key and mouse events on a scripted ledger.

#include "ui/dialogs/auto_vch_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include "tests/autovch/autovch_fixture.h"
#include "ui/dialogs/pattern_dialog.h"

namespace vicenter::ui {
namespace {

using automation::Arguments;
using automation::Variant;
using fakes::Rows;

class AutoVchDialogTest : public autovch::AutoVchTest {
  protected:
    void SetUp() override {
        AutoVchTest::SetUp();
        const auto profile = fakes::RegisterScripted("VelaEBSBase.SystemProfile");
        profile->On("GetProfile", [](Arguments& a) {
            const std::string key = a[2].Value().ToText();
            return key == "PeriodCount" ? Variant(12) : key == "CurrentYear" ? Variant(2024) : Variant(3);
        });
        set_.Answer("t_VoucherGroup order", Rows({"FGroupID", "FName"}, {{1, "记"}, {2, "收"}}));
        set_.Answer("FMinNum", Rows({"FMinNum", "FMaxNum"}, {{2, 31}}));
        set_.Answer("as FLines", Rows({"FNumbers", "FVouchers", "FLines", "FMissing"}, {{4, 6, 25, 0}}));
        dialog_ = std::make_unique<AutoVchDialog>();
        dialog_->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog_.get()));
    }
    template <class Widget>
    Widget* Child(const char* name) {
        auto* widget = dialog_->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    QLineEdit* Box(int index) { return Child<QLineEdit>(("txtPeriod" + std::to_string(index)).c_str()); }

    std::unique_ptr<AutoVchDialog> dialog_;
};

TEST_F(AutoVchDialogTest, CannotBeLostBehindItsWindowAndFitsASmallScreen) {
    EXPECT_FALSE(dialog_->windowFlags() & Qt::WindowMinimizeButtonHint);
    EXPECT_TRUE(dialog_->windowFlags() & Qt::WindowCloseButtonHint);
    EXPECT_LE(dialog_->minimumSizeHint().width(), 683);
    EXPECT_LE(dialog_->minimumSizeHint().height(), 324);
}

TEST_F(AutoVchDialogTest, ShowsTheLedgersDefaults) {
    EXPECT_EQ(dialog_->windowTitle(), QStringLiteral("根据凭证生成凭证模板"));
    EXPECT_EQ(Box(0)->text(), QStringLiteral("2024"));
    EXPECT_EQ(Box(1)->text(), QStringLiteral("3"));
    EXPECT_EQ(Box(2)->text(), QStringLiteral("2"));
    EXPECT_EQ(Box(3)->text(), QStringLiteral("31"));
    EXPECT_EQ(Child<QComboBox>("cmbCheckState")->count(), 3);
    EXPECT_EQ(Child<QPushButton>("Command0")->text(), QStringLiteral("生成(&O)"));
    EXPECT_EQ(Child<QPushButton>("Command2")->text(), QStringLiteral("取消(&C)"));
    EXPECT_EQ(Child<QLabel>("lblSelected")->text(),
              QStringLiteral("将生成 4 个凭证模板编号（6 张凭证，25 条分录）"));
}

TEST_F(AutoVchDialogTest, NumberBoxesTakeDigitsOnly) {
    Box(1)->setFocus();
    Box(1)->selectAll();
    QTest::keyClicks(Box(1), QStringLiteral("-a1.2x"));
    EXPECT_EQ(Box(1)->text(), QStringLiteral("12"));
    QTest::keyClicks(Box(1), QStringLiteral("3"));  // two digits at most
    EXPECT_EQ(Box(1)->text(), QStringLiteral("12"));
}

TEST_F(AutoVchDialogTest, CopiedCellsComeInWithoutTheirLineEnds) {
    auto* name = Child<QLineEdit>("txtVchTpName");
    QApplication::clipboard()->setText(QStringLiteral("报销办公费\r\n"));
    name->setFocus();
    name->selectAll();
    name->paste();
    EXPECT_EQ(name->text(), QStringLiteral("报销办公费"));
    QApplication::clipboard()->setText(QStringLiteral("a\tb"));
    name->paste();
    EXPECT_EQ(name->text(), QStringLiteral("报销办公费"));
    QApplication::clipboard()->setText(QStringLiteral("12\r\n"));
    Box(2)->selectAll();
    Box(2)->paste();
    EXPECT_EQ(Box(2)->text(), QStringLiteral("12"));
}

TEST_F(AutoVchDialogTest, AFocusedBoxSelectsItsWholeText) {
    Box(3)->setFocus();
    QCoreApplication::processEvents();
    EXPECT_EQ(Box(3)->selectedText(), QStringLiteral("31"));
}

TEST_F(AutoVchDialogTest, UpDownButtonsAndArrowKeysStep) {
    auto* upDown = Child<QWidget>("updBPeriod");
    QTest::mouseClick(upDown->findChild<QToolButton*>(QStringLiteral("up")), Qt::LeftButton);
    EXPECT_EQ(Box(1)->text(), QStringLiteral("4"));
    QTest::mouseClick(upDown->findChild<QToolButton*>(QStringLiteral("down")), Qt::LeftButton);
    QTest::keyClick(Box(1), Qt::Key_Down);
    EXPECT_EQ(Box(1)->text(), QStringLiteral("2"));
}

TEST_F(AutoVchDialogTest, EscCloses) {
    QTest::keyClick(dialog_.get(), Qt::Key_Escape);
    EXPECT_FALSE(dialog_->isVisible());
    EXPECT_FALSE(dialog_->Result().outcome);
}

TEST_F(AutoVchDialogTest, GeneratesByKeyboard) {
    set_.Answer("'' as FRemark", Rows(autovch::VoucherColumns(), {autovch::VoucherRow(2, "提现", 0)}));
    set_.Respond("@Vch_cursor", [this](const std::string&) {
        set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{9}}));
        return Rows({});
    });
    auto* name = Child<QLineEdit>("txtVchTpName");
    name->setFocus();
    QTest::keyClicks(name, QStringLiteral("March"));
    QTest::keyClick(name, Qt::Key_Return);
    EXPECT_FALSE(dialog_->isVisible());
    EXPECT_TRUE(dialog_->Result().outcome);
    EXPECT_EQ(dialog_->Result().outcome.id, 9);
}

TEST_F(AutoVchDialogTest, WhileItGeneratesOnlyCancelCanBeUsed) {
    set_.Answer("'' as FRemark", Rows(autovch::VoucherColumns(), {autovch::VoucherRow(2, "提现", 0)}));
    QString progress;
    set_.Respond("@Vch_cursor", [&](const std::string&) {
        for (const char* name :
             {"txtPeriod0", "cmbCheckState", "chkJZVch", "txtVchTpName", "cmdCols", "Command0"})
            EXPECT_FALSE(Child<QWidget>(name)->isEnabled()) << name;
        EXPECT_TRUE(Child<QWidget>("Command2")->isEnabled());
        progress = Child<QProgressBar>("progress")->text();
        return Rows({});  // the name is not found afterwards: nothing was generated
    });
    QTest::keyClicks(Child<QLineEdit>("txtVchTpName"), QStringLiteral("March"));
    QTest::mouseClick(Child<QPushButton>("Command0"), Qt::LeftButton);
    EXPECT_EQ(progress, QStringLiteral("已读取 1 行，已生成 1 行"));
    EXPECT_TRUE(dialog_->isVisible());
    EXPECT_TRUE(Child<QWidget>("txtVchTpName")->isEnabled());
    EXPECT_TRUE(Child<QWidget>("cmdCols")->isEnabled());
    EXPECT_TRUE(Child<QProgressBar>("progress")->isHidden());
}

TEST_F(AutoVchDialogTest, CancelDuringTheGenerationKeepsTheDialogAndWritesNothing) {
    set_.Respond("'' as FRemark", [this](const std::string&) {
        // As soon as the first progress lets events through.
        QTimer::singleShot(0, dialog_.get(),
                           [this] { QTest::mouseClick(Child<QPushButton>("Command2"), Qt::LeftButton); });
        return Rows(autovch::VoucherColumns(), {autovch::VoucherRow(2, "提现", 0)});
    });
    QTest::keyClicks(Child<QLineEdit>("txtVchTpName"), QStringLiteral("March"));
    QTest::mouseClick(Child<QPushButton>("Command0"), Qt::LeftButton);
    EXPECT_TRUE(dialog_->isVisible());
    EXPECT_FALSE(dialog_->Result().outcome);
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
    for (const std::string& sql : set_.Statements())
        EXPECT_EQ(sql.find("insert into"), std::string::npos) << sql;
}

TEST_F(AutoVchDialogTest, AllOrNoneOfManyPatternsAreTickedAtOnce) {
    constexpr int kPatterns = 20'000;
    autovch::GenerationPreview preview;
    for (int i = 1; i <= kPatterns; ++i)
        preview.patterns.push_back({{std::to_string(i)}, "摘要", {"借1001"}, "借1001 现金", {}});
    PatternDialog dialog(preview, {}, dialog_.get());
    const auto* note = dialog.findChild<QLabel*>(QStringLiteral("note"));
    QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdNone")), Qt::LeftButton);
    EXPECT_EQ(note->text(), QStringLiteral("20000 种凭证，将生成 0 个编号，20000 个不生成"));
    EXPECT_EQ(dialog.Without().size(), static_cast<std::size_t>(kPatterns));
    QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdAll")), Qt::LeftButton);
    EXPECT_EQ(note->text(), QStringLiteral("20000 种凭证，将生成 20000 个编号"));
}

TEST_F(AutoVchDialogTest, AMissingNameKeepsItOpen) {
    QTest::mouseClick(Child<QPushButton>("Command0"), Qt::LeftButton);
    EXPECT_TRUE(dialog_->isVisible());
    EXPECT_EQ(surroundings_.messageBoxes->Texts(), std::vector<std::string>{"凭证模板名称不允许为空！"});
}

}  // namespace
}  // namespace vicenter::ui
