// Workbooks and the window by real events on the embedded demo account set: a file dropped on it, and imports
// and exports cancelled on the progress panel.

#include <QApplication>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDropEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "exchange/template_columns.h"
#include "platform/office/workbook_file.h"
#include "tests/ui/demo_set_fixture.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ExchangeWayTest : public DemoSetTest {
  protected:
    void SetUp() override { Open(); }

    // A template workbook of so many lines, all of one template number.
    std::string MakeWorkbook(const std::string& name, std::uint32_t lines,
                             const std::string& fileCount = "0") const {
        office::Workbook workbook;
        office::Sheet& sheet = workbook.AddSheet(exchange::kSheetName);
        const auto setText = [&](std::uint32_t row, std::uint32_t column, std::string_view text) {
            office::Cell& cell = sheet.At(row, column);
            cell.kind = office::CellKind::Text;
            cell.text = workbook.Texts().Intern(text);
        };
        const std::vector<std::string> values = {"1", "提现", "借", "1001", "库存现金", fileCount};
        for (std::uint32_t row = 0; row <= lines; ++row) {
            for (std::uint32_t column = 0; column < values.size(); ++column)
                setText(row, column, row == 0 ? exchange::kColumns[column].header : values[column]);
        }
        std::string path = folder.Path(name);
        office::WriteWorkbook(workbook, path, office::FileKind::Xlsx);
        return path;
    }
    void Drop(const std::vector<std::string>& files) {
        QMimeData data;
        QList<QUrl> urls;
        for (const std::string& path : files)
            urls.append(QUrl::fromLocalFile(QString::fromStdString(path)));
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window, &enter);
        accepted_ = enter.isAccepted();
        QDropEvent drop(QPointF(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window, &drop);
        QApplication::processEvents();
    }
    // Clicks Cancel as soon as the progress panel shows it.
    void CancelWhenPossible() {
        auto* watch = new QTimer(window);
        auto* button = window->findChild<QPushButton*>(QStringLiteral("cmdCancelProgress"));
        ASSERT_NE(button, nullptr);
        QObject::connect(watch, &QTimer::timeout, watch, [this, watch, button] {
            if (!button->isVisible()) return;
            cancelled_ = true;
            watch->stop();
            QTest::mouseClick(button, Qt::LeftButton);
        });
        watch->start(0);
    }
    // Waits for the comparison before the question and does there what is told; what is left of it is closed.
    void InPreview(const std::function<void(QDialog&)>& inDialog) {
        auto* watch = new QTimer(window);
        QObject::connect(watch, &QTimer::timeout, watch, [this, watch, inDialog] {
            auto* dialog = window->findChild<QDialog*>(QStringLiteral("frmImportPreview"));
            if (!dialog || !dialog->isVisible()) return;
            watch->stop();
            ++previews_;
            inDialog(*dialog);
            if (dialog->isVisible()) Press(*dialog, "cmdCancel");
        });
        watch->start(0);
    }
    static void Press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QString::fromLatin1(button)), Qt::LeftButton);
    }
    static QStringList Rows(QDialog& dialog, const char* name) {
        QStringList rows;
        const auto* table = dialog.findChild<QTableWidget*>(QString::fromLatin1(name));
        for (int row = 0; row < table->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < table->columnCount(); ++column)
                cells << table->item(row, column)->text();
            rows << cells.join(u'|');
        }
        return rows;
    }
    static QString Label(QDialog& dialog, const char* name) {
        const auto* label = dialog.findChild<QLabel*>(QString::fromLatin1(name));
        return label->isVisible() ? label->text() : QString();
    }
    void Click(const char* name) {
        QTest::mouseClick(window->findChild<QToolButton*>(QString::fromLatin1(name)), Qt::LeftButton);
    }
    std::int64_t Templates() { return Number("select count(*) from t_VchTemplate"); }
    bool PanelVisible() const { return window->findChild<QWidget*>(QStringLiteral("progress"))->isVisible(); }

    bool accepted_ = false;
    bool cancelled_ = false;
    int previews_ = 0;
};

TEST_F(ExchangeWayTest, AWorkbookDroppedOnTheWindowIsImportedAndSelected) {
    const std::string path = MakeWorkbook("Dropped.xlsx", 3);
    Drop({path});
    EXPECT_TRUE(accepted_);
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Dropped 成功！"));
    EXPECT_EQ(window->Presenter().TemplateName(), "Dropped");
    EXPECT_EQ(window->Presenter().RowCount(), 3);
    // A second time it asks, and Cancel leaves everything.
    InPreview([](QDialog& dialog) { Press(dialog, "cmdOK"); });
    Drop({path});
    EXPECT_THAT(TakeMessages(),
                ElementsAre("模板[Dropped]已存在，引入将覆盖所有凭证模板，建议先引出原模板备份。"
                            "请确认是否引入？"));
}

TEST_F(ExchangeWayTest, AnImportOverTheStandardTemplateLightsAndOpensItWhateverWasLit) {
    ClickNode("ROOT");
    EXPECT_FALSE(window->findChild<QAction*>("mnuSave")->isEnabled());
    surroundings.messageBoxes->answers = {system::MessageResult::Ok};
    InPreview([](QDialog& dialog) { Press(dialog, "cmdOK"); });
    Drop({MakeWorkbook("标准模板.xlsx", 3)});
    EXPECT_EQ(TakeMessages().back(), "引入模板 标准模板 成功！");
    EXPECT_EQ(window->Presenter().TemplateId(), "0");
    EXPECT_EQ(window->Tree().SelectedKey(), "detail-0");
    EXPECT_EQ(window->Presenter().RowCount(), 3);
    EXPECT_TRUE(window->findChild<QAction*>("mnuSave")->isEnabled());
    EXPECT_TRUE(window->findChild<QAction*>("mnuExp")->isEnabled());
}

TEST_F(ExchangeWayTest, WhatKeepsAWorkbookOutIsInTheListOfFaultsUntilItComesIn) {
    const auto faults = [this] {
        std::vector<std::string> texts;
        for (const center::ReportedFault& fault : window->Presenter().Faults().Reported()) {
            texts.push_back(fault.source + " " + std::to_string(fault.fault.row) + "," + fault.fault.header +
                            "[" + fault.fault.value + "]" + fault.fault.reason);
        }
        return texts;
    };
    std::string path = MakeWorkbook("Faulty.xlsx", 2, "x");
    Drop({path});
    EXPECT_EQ(TakeMessages().size(), 1U);
    EXPECT_THAT(faults(), ElementsAre(path + " 2,附件数[x]必须是整数", path + " 3,附件数[x]必须是整数"));
    EXPECT_TRUE(window->findChild<QWidget*>(QStringLiteral("faultPanel"))->isVisible());
    EXPECT_EQ(window->findChild<QToolButton*>(QStringLiteral("cmdFaults"))->text(), "异常 2 处");
    std::ofstream(system::PathFromUtf8(path)) << "<html>";
    surroundings.fileDialogs->choices = {path};
    Click("mnuImpButton");
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板失败！"));
    EXPECT_THAT(faults(), ElementsAre(path + " 0,[]文件实际上是网页（HTML），不是 Excel 工作簿，请用 Excel "
                                             "打开后另存为“Excel 工作簿（.xlsx）”！"));
    // Who thinks better of it has mended nothing.
    surroundings.fileDialogs->choices = {std::nullopt};
    Click("mnuImpButton");
    EXPECT_EQ(faults().size(), 1U);
    Drop({MakeWorkbook("Faulty.xlsx", 2)});
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Faulty 成功！"));
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(ExchangeWayTest, WhatAnImportWouldChangeIsSeenBeforeItAsks) {
    Drop({MakeWorkbook("Looked.xlsx", 4)});
    TakeMessages();
    InPreview([](QDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "引入前后对比 - Looked");
        EXPECT_EQ(Label(dialog, "summary"),
                  "模板 Looked 现有分录 4 行，引入后 1 行：新增 0 行，删除 3 行，修改 1 行。");
        EXPECT_EQ(Label(dialog, "warnings"),
                  "注意：工作簿只有 1 行分录，现有模板有 4 行，请确认工作簿是否完整！");
        EXPECT_EQ(
            Rows(dialog, "changes"),
            (QStringList{"修改|1|1|附件数||5", "删除|1|2|整行|提现 借 1001 库存现金|",
                         "删除|1|3|整行|提现 借 1001 库存现金|", "删除|1|4|整行|提现 借 1001 库存现金|"}));
        EXPECT_EQ(Rows(dialog, "totals"), QStringList{"1|4 → 1|0.00|0.00|"});
        // What stands out is not passed by with Enter alone.
        QTest::keyClick(&dialog, Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible());
    });
    Drop({MakeWorkbook("Looked.xlsx", 1, "5")});
    EXPECT_EQ(previews_, 1);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(window->Presenter().RowCount(), 4);
    // By the keyboard alone to the question, whose text is the old one, and on.
    InPreview([](QDialog& dialog) {
        auto* goOn = dialog.findChild<QPushButton*>(QStringLiteral("cmdOK"));
        goOn->setFocus(Qt::TabFocusReason);
        QTest::keyClick(goOn, Qt::Key_Space);
    });
    surroundings.messageBoxes->answers = {system::MessageResult::Ok};
    Drop({MakeWorkbook("Looked.xlsx", 1, "5")});
    EXPECT_THAT(TakeMessages(),
                ElementsAre("模板[Looked]已存在，引入将覆盖所有凭证模板，建议先引出原模板备份。"
                            "请确认是否引入？",
                            "引入模板 Looked 成功！"));
    EXPECT_EQ(window->Presenter().RowCount(), 1);
}

TEST_F(ExchangeWayTest, FaultsThatTheComparisonFindsStayInTheListOfFaults) {
    Drop({MakeWorkbook("Looked.xlsx", 1)});
    TakeMessages();
    InPreview([](QDialog& dialog) {
        EXPECT_EQ(Rows(dialog, "faults"), QStringList{"2|附件数（F 列）|x|必须是整数"});
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    Drop({MakeWorkbook("Looked.xlsx", 1, "x")});
    EXPECT_EQ(previews_, 1);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(window->Presenter().Faults().Reported().size(), 1U);
    EXPECT_TRUE(window->findChild<QWidget*>(QStringLiteral("faultPanel"))->isVisible());
    // The same mended, and looked at: nothing is wrong with it any more, though it was not imported.
    InPreview([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    Drop({MakeWorkbook("Looked.xlsx", 1, "6")});
    EXPECT_THAT(window->Presenter().Faults().Reported(), IsEmpty());
}

class FaultMenuTest : public ExchangeWayTest {
  protected:
    QTableView& List() { return *window->findChild<QTableView*>(QStringLiteral("lstFaults")); }
    // A right click on the first row of the list, and a click on that entry of its menu.
    void ChooseForFirstFault(const char* name) {
        const QPoint at = List().visualRect(List().model()->index(0, 3)).center();
        QTest::mousePress(List().viewport(), Qt::RightButton, {}, at);
        bool chosen = false;
        QTimer chooser;
        QObject::connect(&chooser, &QTimer::timeout, window, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu || chosen) return;
            chosen = true;
            auto* action = menu->findChild<QAction*>(QString::fromLatin1(name));
            ASSERT_NE(action, nullptr);
            EXPECT_TRUE(action->isEnabled());
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
        });
        chooser.start(1);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, List().viewport()->mapToGlobal(at));
        QApplication::sendEvent(List().viewport(), &event);
        EXPECT_TRUE(chosen);
    }
    void SetCell(const std::string& name, std::uint32_t row, std::uint32_t column, std::string_view text) {
        const auto workbook = office::ReadWorkbook(name);
        office::Cell& cell = workbook->FindSheet(exchange::kSheetName)->At(row, column);
        cell.kind = office::CellKind::Text;
        cell.text = workbook->Texts().Intern(text);
        office::WriteWorkbook(*workbook, name, office::FileKind::Xlsx);
    }
};

TEST_F(FaultMenuTest, ARefusedWorkbookIsCopiedWithItsFaultsMarkedMendedAndImported) {
    Drop({MakeWorkbook("Faulty.xlsx", 1, "x")});
    TakeMessages();
    QApplication::processEvents();
    const std::string copy = folder.Path("Faulty(标错).xlsx");
    surroundings.fileDialogs->choices = {copy};
    ChooseForFirstFault("mnuMarkedCopy");
    ASSERT_EQ(surroundings.fileDialogs->requests.size(), 1U);
    EXPECT_EQ(surroundings.fileDialogs->requests[0].proposedName, copy);
    EXPECT_THAT(TakeMessages(), ElementsAre("标错副本已保存，有错误的单元格已着色，原因在最后一列。"
                                            "更正后可以直接引入！\r\n\r\n" +
                                            copy));
    SetCell(copy, 1, 5, "7");
    Drop({copy});
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Faulty 成功！"));
    EXPECT_EQ(Text(1, column::kFileCount), "7");
    // Its key, where the list has the keyboard.
    surroundings.fileDialogs->choices = {std::nullopt};
    List().setFocus();
    List().setCurrentIndex(List().model()->index(0, 3));
    QTest::keyClick(&List(), Qt::Key_M, Qt::ControlModifier);
    EXPECT_EQ(surroundings.fileDialogs->requests.size(), 2U);
}

TEST_F(FaultMenuTest, BlankRowsAreTidiedAwayOnRequest) {
    const std::string path = MakeWorkbook("Blank.xlsx", 3);
    for (std::uint32_t column = 0; column < 6; ++column)
        SetCell(path, 2, column, "");
    Drop({path});
    EXPECT_EQ(TakeMessages().size(), 1U);
    QApplication::processEvents();
    EXPECT_EQ(List().model()->index(0, 3).data().toString(), "整行为空，请删除这一行，或者整理后引入");
    ChooseForFirstFault("mnuImportTidily");
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Blank 成功！"));
    EXPECT_EQ(window->Presenter().RowCount(), 2);
    EXPECT_THAT(window->Presenter().Faults().Reported(), IsEmpty());
}

class SeveralFileDialogs : public fakes::ScriptedFileDialogs {
  public:
    std::vector<std::string> ChooseFilesToOpen(const system::FileRequest&) override { return several; }
    std::vector<std::string> several;
};

TEST_F(ExchangeWayTest, SeveralChosenWorkbooksEndInOneReport) {
    const auto dialogs = std::make_shared<SeveralFileDialogs>();
    dialogs->several = {MakeWorkbook("One.xlsx", 2), MakeWorkbook("Two.xlsx", 1, "x")};
    dialogs->choices = {folder.Path("report.xlsx")};
    system::Surroundings replaced = system::Surroundings::Current();
    replaced.fileDialogs = dialogs;
    const system::SurroundingsScope scope(replaced);
    bool shown = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, window, [&] {
        auto* dialog = window->findChild<QDialog*>(QStringLiteral("frmImportReport"));
        if (!dialog || !dialog->isVisible() || shown) return;
        shown = true;
        EXPECT_EQ(Label(*dialog, "summary"), "共 2 个文件：引入模板 1 个、分录 2 行，未引入 1 个");
        EXPECT_EQ(Rows(*dialog, "files"),
                  (QStringList{"One.xlsx|One|已引入|2|0|引入模板 One 成功！",
                               "Two.xlsx|Two|未引入|0|1|引入模板失败！模板文件数据存在以下错误: "
                               "第2行，第F列值存在错误，"}));
        Press(*dialog, "cmdSaveReport");
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    watch.start(1);
    Click("mnuImpButton");
    EXPECT_TRUE(shown);
    EXPECT_THAT(TakeMessages(), ElementsAre("引入报告已保存！\r\n\r\n" + folder.Path("report.xlsx")));
    EXPECT_TRUE(std::filesystem::exists(system::PathFromUtf8(folder.Path("report.xlsx"))));
    EXPECT_EQ(window->Presenter().Faults().Reported().size(), 1U);
}

// Two windows of one process: while one reads its workbooks, the other refuses a save and says so.
TEST_F(ExchangeWayTest, WhatAnotherWindowRefusesWhileSeveralComeInIsTold) {
    const QPointer<VICenterWindow> other = window;
    ClickCell(7, column::kExplanation);
    Type("x");
    Key(Qt::Key_Tab);
    window = nullptr;
    Open();
    ASSERT_NE(other.data(), window.data());
    bool clicked = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, window, [&] {
        if (auto* report = window->findChild<QDialog*>(QStringLiteral("frmImportReport"));
            report && report->isVisible())
            QTest::keyClick(report, Qt::Key_Escape);
        if (clicked || !PanelVisible()) return;
        clicked = true;
        QTest::mouseClick(other->findChild<QToolButton*>(QStringLiteral("mnuSaveButton")), Qt::LeftButton);
    });
    watch.start(0);
    Drop({MakeWorkbook("One.xlsx", 5000), MakeWorkbook("Two.xlsx", 1, "x")});
    EXPECT_TRUE(clicked);
    EXPECT_THAT(TakeMessages(), ElementsAre(::testing::HasSubstr("不允许为空")));
    if (other) other->close();
}

TEST_F(ExchangeWayTest, SeveralDroppedWorkbooksAreImportedAsSeveralChosenOnes) {
    const std::int64_t before = Templates();
    QStringList files;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, window, [&] {
        auto* dialog = window->findChild<QDialog*>(QStringLiteral("frmImportReport"));
        if (!dialog || !dialog->isVisible() || !files.isEmpty()) return;
        files = Rows(*dialog, "files");
        Press(*dialog, "cmdClose");
    });
    watch.start(0);
    Drop({MakeWorkbook("Two.xlsx", 1, "x"), MakeWorkbook("One.XLSX", 2)});
    EXPECT_TRUE(accepted_);
    ASSERT_EQ(files.size(), 2);
    EXPECT_TRUE(files[0].startsWith("One.XLSX|One|已引入|2|")) << files[0].toStdString();
    EXPECT_TRUE(files[1].startsWith("Two.xlsx|Two|未引入|0|1|")) << files[1].toStdString();
    EXPECT_THAT(TakeMessages(), IsEmpty()) << "the report tells it";
    EXPECT_EQ(Templates(), before + 1);
    EXPECT_EQ(window->Presenter().Faults().Reported().size(), 1U);
}

TEST_F(ExchangeWayTest, OtherFilesAreNotTakenNorWhatIsAmongThem) {
    const std::string path = MakeWorkbook("a.xlsx", 1);
    const std::int64_t before = Templates();
    Drop({path, folder.Path("a.txt")});
    EXPECT_FALSE(accepted_);
    Drop({folder.Path("a.txt")});
    EXPECT_FALSE(accepted_);
    Drop({});
    EXPECT_FALSE(accepted_);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(Templates(), before);
}

TEST_F(ExchangeWayTest, ACancelledImportWritesNothingAndTheNextOneRuns) {
    const std::string path = MakeWorkbook("Long.xlsx", 1000);
    const std::int64_t before = Templates();
    CancelWhenPossible();
    Drop({path});
    EXPECT_TRUE(cancelled_);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(Templates(), before);
    EXPECT_FALSE(PanelVisible());
    Drop({path});
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Long 成功！"));
    EXPECT_EQ(Templates(), before + 1);
    EXPECT_FALSE(PanelVisible());
}

TEST_F(ExchangeWayTest, ACancelledExportLeavesNoFile) {
    Drop({MakeWorkbook("Long.xlsx", 1000)});
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Long 成功！"));
    const std::string target = folder.Path("out.xlsx");
    surroundings.fileDialogs->choices = {target, target};
    CancelWhenPossible();
    Click("mnuExpButton");
    EXPECT_TRUE(cancelled_);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(system::PathFromUtf8(target)));
    EXPECT_FALSE(PanelVisible());
    Click("mnuExpButton");
    EXPECT_THAT(TakeMessages(), ElementsAre("模板引出成功！"));
    EXPECT_TRUE(std::filesystem::exists(system::PathFromUtf8(target)));
}

}  // namespace
}  // namespace vicenter::ui
