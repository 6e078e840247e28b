// A template's whole way by real events on the embedded demo account set: generated from posted vouchers,
// seen in the tree, edited, saved, exported and imported back.

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/demo_set_fixture.h"
#include "tests/ui/rest.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;

constexpr int kOptionalFieldCount = 11;

// Takes the steps as soon as a modal window of that name is up, and sees to it that it closes again.
void WhenModal(const char* name, std::function<void(QDialog&)> steps) {
    auto* watch = new QTimer(qApp);
    QObject::connect(watch, &QTimer::timeout, watch, [watch, name, steps = std::move(steps)] {
        const QPointer<QDialog> dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || dialog->objectName() != QLatin1String(name)) return;
        watch->stop();
        watch->deleteLater();
        steps(*dialog);
        if (dialog && dialog->isVisible()) dialog->reject();
    });
    watch->start(5);
}

void Click(QWidget& parent, const char* name) {
    auto* button = parent.findChild<QAbstractButton*>(QString::fromLatin1(name));
    ASSERT_NE(button, nullptr) << name;
    QTest::mouseClick(button, Qt::LeftButton);
}

void TypeInto(QWidget& parent, const char* name, const char* text) {
    auto* box = parent.findChild<QLineEdit*>(QString::fromLatin1(name));
    ASSERT_NE(box, nullptr) << name;
    QTest::mouseClick(box, Qt::LeftButton);
    QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(box, QString::fromLatin1(text));
}

class GenerationWayTest : public DemoSetTest {
  protected:
    void SetUp() override { Open(); }

    std::string NodeText(const std::string& key) {
        const auto* node = window->Tree().FindNode(key);
        return node == nullptr ? "no such node" : node->text(0).toStdString();
    }
    // Every line as the grid has it, without the hidden ids, which a workbook does not carry.
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        for (int row = 1; row <= window->Presenter().RowCount(); ++row) {
            std::string line;
            for (int c = 1; c <= center::kColumnCount; ++c) {
                if (c == column::kAccountId || c == column::kSettleId || c == column::kCurrencyId ||
                    c == column::kUnitId)
                    continue;
                line.append(window->Presenter().Grid().Text(row, c)).append("|");
            }
            lines.push_back(line);
        }
        return lines;
    }
};

// October 2026, group 收, numbers 1 and 2, with every optional field.
void FillIn(QDialog& dialog) {
    TypeInto(dialog, "txtPeriod0", "2026");
    TypeInto(dialog, "txtPeriod1", "10");
    TypeInto(dialog, "txtPeriod2", "1");
    TypeInto(dialog, "txtPeriod3", "2");
    auto* groups = dialog.findChild<QComboBox*>(QStringLiteral("cmbCheckState"));
    groups->setFocus();
    for (int i = 0; i < groups->count() && groups->currentText() != QStringLiteral("收"); ++i)
        QTest::keyClick(groups, Qt::Key_Down);
    EXPECT_EQ(groups->currentText(), QStringLiteral("收"));
    TypeInto(dialog, "txtVchTpName", "October");
    // The count follows once the filter has settled.
    Rest(dialog, "settledTimer");
    EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("lblSelected"))->text(),
              QStringLiteral("将生成 2 个凭证模板编号（2 张凭证，4 条分录）"));
}

void ChooseEveryField(QDialog& dialog) {
    auto* list = dialog.findChild<QListWidget*>(QStringLiteral("ColList"));
    ASSERT_EQ(list->count(), kOptionalFieldCount);
    for (int row = 0; row < list->count(); ++row) {
        QTest::keyClick(list, Qt::Key_Space);
        QTest::keyClick(list, Qt::Key_Down);
    }
    Click(dialog, "Command0");
}

TEST_F(GenerationWayTest, FromVouchersThroughTheGridToAWorkbookAndBack) {
    const std::size_t nodes = window->Presenter().Nodes().size();
    WhenModal("frmAutoVch", [](QDialog& dialog) {
        FillIn(dialog);
        WhenModal("frmSetColume", ChooseEveryField);
        Click(dialog, "cmdCols");
        Click(dialog, "Command0");
    });
    Click(*window, "mnuAutoVchButton");
    EXPECT_THAT(TakeMessages(), ElementsAre("凭证生成凭证模板 October 成功！"));

    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));

    // In the tree, selected, its lines in the grid.
    EXPECT_EQ(window->Presenter().Nodes().size(), nodes + 1);
    EXPECT_EQ(NodeText(window->Presenter().SelectedNode()), "October");
    EXPECT_EQ(window->Presenter().TemplateName(), "October");
    ASSERT_EQ(window->Presenter().RowCount(), 4);
    EXPECT_EQ(window->Presenter().Grid().Text(1, column::kExplanation), "收到货款");
    EXPECT_EQ(window->Presenter().Grid().Text(1, column::kSettleName), "电汇");
    EXPECT_EQ(window->Presenter().Grid().Text(2, column::kItems), "C005");

    // A line edited by keyboard, then saved.
    const QModelIndex cell = window->Grid().Model().IndexOf({1, column::kExplanation});
    window->Grid().setFocus();
    window->Grid().scrollTo(cell);
    QTest::mouseClick(window->Grid().viewport(), Qt::LeftButton, {},
                      window->Grid().visualRect(cell).center());
    for (const char c : std::string("Received"))
        QTest::keyClick(QApplication::focusWidget(), c);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    QApplication::processEvents();
    EXPECT_EQ(window->Presenter().Grid().Text(1, column::kExplanation), "Received");
    Click(*window, "mnuSaveButton");
    EXPECT_THAT(TakeMessages(), ElementsAre("模板 October 保存成功！"));
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FExp = 'Received' and FID = " +
                     window->Presenter().TemplateId()),
              1);
    const std::vector<std::string> saved = Lines();

    surroundings.fileDialogs->choices = {folder.Path("Again.xlsx"), folder.Path("Again.xlsx")};
    Click(*window, "mnuExpButton");
    EXPECT_THAT(TakeMessages(), ElementsAre("模板引出成功！"));
    Click(*window, "mnuImpButton");
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Again 成功！"));
    EXPECT_EQ(window->Presenter().Nodes().size(), nodes + 2);
    EXPECT_EQ(NodeText(window->Presenter().SelectedNode()), "Again");
    EXPECT_EQ(Lines(), saved);
}

TEST_F(GenerationWayTest, OverTheStandardTemplateItIsThatOneThatIsShown) {
    ClickNode("ROOT");
    surroundings.messageBoxes->answers = {system::MessageResult::Yes};
    WhenModal("frmAutoVch", [](QDialog& dialog) {
        FillIn(dialog);
        auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("txtVchTpName"));
        name->selectAll();
        QInputMethodEvent typed;
        typed.setCommitString(QStringLiteral("标准模板"));
        QApplication::sendEvent(name, &typed);
        Click(dialog, "Command0");
    });
    Click(*window, "mnuAutoVchButton");
    EXPECT_EQ(TakeMessages().back(), "凭证生成凭证模板 标准模板 成功！");
    EXPECT_EQ(window->Presenter().TemplateId(), "0");
    EXPECT_EQ(window->Tree().SelectedKey(), "detail-0");
    EXPECT_EQ(window->Presenter().RowCount(), 4);
    EXPECT_TRUE(window->findChild<QAction*>("mnuSave")->isEnabled());
    EXPECT_TRUE(window->findChild<QAction*>("mnuExp")->isEnabled());
}

TEST_F(GenerationWayTest, WhatATemplateHasNoRoomForIsInTheListOfFaults) {
    const auto connection = ado::OpenConnection(host::FileConnectString(file));
    connection->Execute("alter table t_Account alter column FName nvarchar(200)");
    connection->Execute("update t_Account set FName = replicate('x', 161) where FNumber = '1122.01'");
    WhenModal("frmAutoVch", [](QDialog& dialog) {
        FillIn(dialog);
        Click(dialog, "Command0");
    });
    Click(*window, "mnuAutoVchButton");
    EXPECT_EQ(TakeMessages().size(), 1U);
    const std::vector<center::ReportedFault>& faults = window->Presenter().Faults().Reported();
    ASSERT_EQ(faults.size(), 2U);
    EXPECT_EQ(faults[0].kind, center::FaultSource::Vouchers);
    EXPECT_EQ(faults[0].source, "October");
    EXPECT_EQ(faults[0].fault.row, 2);
    EXPECT_EQ(faults[0].fault.header, "科目名称(*)");
    EXPECT_EQ(faults[0].fault.reason, "长度不能超过160个字符（凭证号 1）");
    EXPECT_EQ(NodeText("detail-10"), "no such node");
    connection->Execute("update t_Account set FName = 'x' where FNumber = '1122.01'");
    WhenModal("frmAutoVch", [](QDialog& dialog) {
        FillIn(dialog);
        Click(dialog, "Command0");
    });
    Click(*window, "mnuAutoVchButton");
    EXPECT_THAT(TakeMessages(), ElementsAre("凭证生成凭证模板 October 成功！"));
    EXPECT_TRUE(window->Presenter().Faults().Reported().empty());
}

TEST_F(GenerationWayTest, CancelledInTheDialogItLeavesEverythingAsItWas) {
    const std::int64_t templates = Number("select count(*) from t_VchTemplate");
    const std::vector<std::string> before = Lines();
    WhenModal("frmAutoVch", [](QDialog& dialog) {
        FillIn(dialog);
        Click(dialog, "Command2");
    });
    Click(*window, "mnuAutoVchButton");
    EXPECT_THAT(TakeMessages(), ElementsAre());
    EXPECT_EQ(Number("select count(*) from t_VchTemplate"), templates);
    EXPECT_EQ(Lines(), before);
}

class FilteredGenerationTest : public GenerationWayTest {
  protected:
    // The dialog with October's first vouchers of all groups, and the steps in it.
    void WithOctober(const std::function<void(QDialog&)>& steps) {
        WhenModal("frmAutoVch", [&](QDialog& dialog) {
            TypeInto(dialog, "txtPeriod0", "2026");
            TypeInto(dialog, "txtPeriod1", "10");
            TypeInto(dialog, "txtPeriod2", "1");
            TypeInto(dialog, "txtPeriod3", "4");
            steps(dialog);
        });
        ClickTool("mnuAutoVch");
    }
};

TEST_F(FilteredGenerationTest, VouchersThatWouldMergeAreWarnedOfAndOneGroupIsOffered) {
    WithOctober([](QDialog& dialog) {
        auto* warning = dialog.findChild<QLabel*>("lblMerged");
        auto* oneGroup = dialog.findChild<QPushButton*>("cmdOneGroup");
        Rest(dialog, "settledTimer");
        EXPECT_TRUE(warning->isVisible());
        EXPECT_TRUE(warning->text().startsWith("不同类别的凭证有相同的凭证号（1"))
            << warning->text().toStdString();
        EXPECT_TRUE(oneGroup->isVisible());
        Click(dialog, "cmdOneGroup");
        EXPECT_FALSE(warning->isVisible());
        EXPECT_FALSE(oneGroup->isVisible());
        EXPECT_NE(dialog.findChild<QComboBox*>("cmbCheckState")->currentIndex(), 0);
    });
}

TEST_F(FilteredGenerationTest, WhatIsNotTickedInThePreviewIsNotGenerated) {
    std::set<std::string> wanted;
    WithOctober([&](QDialog& dialog) {
        WhenModal("frmPatterns", [&](QDialog& patterns) {
            auto* table = patterns.findChild<QTableWidget*>("patterns");
            ASSERT_GT(table->rowCount(), 1);
            Click(patterns, "cmdNone");
            table->item(0, 0)->setCheckState(Qt::Checked);
            for (const QString& number : table->item(0, 1)->text().split(u'、'))
                wanted.insert(number.toStdString());
            Click(patterns, "cmdOK");
        });
        Click(dialog, "cmdPatterns");
        EXPECT_TRUE(dialog.findChild<QLabel*>("lblSelected")->text().contains("个不生成"));
        TypeInto(dialog, "txtVchTpName", "Picked");
        Click(dialog, "Command0");
    });
    EXPECT_EQ(window->Presenter().TemplateName(), "Picked");
    std::set<std::string> numbers;
    for (int row = 1; row <= window->Presenter().RowCount(); ++row)
        numbers.insert(Text(row, column::kNo));
    EXPECT_EQ(numbers, wanted);
}

}  // namespace
}  // namespace vicenter::ui
