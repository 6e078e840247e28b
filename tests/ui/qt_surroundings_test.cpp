#include "ui/run/qt_surroundings.h"

#include <QApplication>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <stdexcept>

#ifdef __linux__
#include "tests/ui/watched_folder.h"
#endif

#include <gtest/gtest.h>

#include "automation/error.h"
#include "tests/fakes/fake_surroundings.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {
namespace {

TEST(QtMessageBox, ShowsPlainTextWithChineseButtonsAndLineBreaks) {
    QMessageBox box;
    FillMessageBox(box, "模板删除将无法还原，是否删除？\r\n\r\n凭证模板：<b>甲</b>",
                   system::MessageButtons::YesNo, system::MessageIcon::Information, "信息提示");
    EXPECT_EQ(box.windowTitle(), "信息提示");
    EXPECT_EQ(box.text(), "模板删除将无法还原，是否删除？\n\n凭证模板：<b>甲</b>");
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.icon(), QMessageBox::Information);
    EXPECT_EQ(box.button(QMessageBox::Yes)->text(), "是(&Y)");
    EXPECT_EQ(box.button(QMessageBox::No)->text(), "否(&N)");
    EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::Yes));
}

TEST(QtMessageBox, EscapeAndTheFrameDoNotAnswerBetweenYesAndNo) {
    using system::MessageButtons;
    const std::pair<MessageButtons, bool> expected[] = {
        {MessageButtons::YesNo, true}, {MessageButtons::OkCancel, false}, {MessageButtons::Ok, false}};
    for (const auto& [buttons, stays] : expected) {
        QMessageBox box;
        FillMessageBox(box, "当前凭证模板修改后未保存，您是否进行保存?", buttons,
                       system::MessageIcon::Information, "信息提示");
        box.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&box));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        EXPECT_EQ(box.isVisible(), stays);
        EXPECT_EQ(box.windowFlags().testFlag(Qt::WindowCloseButtonHint), !stays);
        box.hide();
    }
}

TEST(QtMessageBox, ALongTextScrollsWithinTheBoxAndTheScreen) {
    QString lines;
    for (int i = 1; i <= 200; ++i)
        lines +=
            QStringLiteral("第%1行，第C列值存在错误，第二行起的说明文字说明文字说明文字说明文字\r\n").arg(i);
    for (const QString& text : {lines, QString(3000, u'长')}) {
        QMessageBox box;
        FillMessageBox(box, text.toStdString(), system::MessageButtons::Ok, system::MessageIcon::Information,
                       "信息提示");
        box.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&box));
        const auto* whole = box.findChild<QPlainTextEdit*>("messageText");
        ASSERT_NE(whole, nullptr);
        const QRect bar(whole->verticalScrollBar()->mapTo(&box, QPoint(0, 0)),
                        whole->verticalScrollBar()->size());
        EXPECT_TRUE(box.rect().contains(bar)) << bar.right() << " of " << box.width();
        EXPECT_LE(box.width(), box.screen()->availableSize().width());
        EXPECT_LE(box.height(), box.screen()->availableSize().height());
    }
}

TEST(QtMessageBox, ALongTextHasRoomOnScreensOfEverySize) {
    QFont large = QApplication::font();
    large.setPointSizeF(16);
    for (const QFont& font : {QApplication::font(), large}) {
        const QFontMetrics metrics(font);
        for (const QSize screen : {QSize(1366, 768), QSize(1280, 720), QSize(1024, 768), QSize(800, 600)}) {
            const QSize text = ScrollingTextSize(metrics, screen);
            const int box = screen.width() <= 1024 ? screen.width() : std::min(screen.width() - 480, 1000);
            EXPECT_LE(text.width(), box - 120) << screen.width();
            EXPECT_LE(text.height(), screen.height() - 150) << screen.height();
            EXPECT_GT(text.width(), 300);
            EXPECT_GT(text.height(), 150);
        }
    }
}

TEST(QtFileDialog, ANameInAFolderThatIsNotThereKeepsTheDialogOpenAndIsTold) {
    const fakes::TemporaryFolder folder;
    system::FileRequest request;
    request.title = "指定引出文件名";
    request.flags = 0x80806;
    request.filters = {{"Database File Excel File (*.xlsx)", "*.xlsx"}};
    QStringList told;
    bool stayed = false;
    int turn = 0;
    const QObject here;  // no turn comes when the test is over
    // Comes again before it acts: what it does may open a further box, whose own loop then runs.
    const std::function<void()> watch = [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (turn < 3) QTimer::singleShot(0, &here, watch);
        if (auto* box = qobject_cast<QMessageBox*>(modal); box && turn == 1) {
            ++turn;
            told << box->text();
            box->accept();
        } else if (auto* dialog = qobject_cast<QFileDialog*>(modal); dialog && turn != 1) {
            auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            ASSERT_NE(name, nullptr);
            stayed = turn > 0;
            name->setText(QString::fromStdString(folder.File(turn == 0 ? "应收/应付" : "应收_应付")));
            ++turn;
            QTest::keyClick(name, Qt::Key_Return);
        }
    };
    QTimer::singleShot(0, &here, watch);
    const auto chosen = QtFileDialogs().ChooseFileToSave(request);
    EXPECT_TRUE(stayed);
    EXPECT_EQ(told, QStringList(QString::fromStdString("文件夹不存在，请重新输入文件名！\n\n" +
                                                       folder.File("应收"))));
    EXPECT_EQ(chosen, folder.File("应收_应付.xlsx"));
}

TEST(QtMessageBox, OffersOkAloneOrOkAndCancel) {
    QMessageBox one;
    FillMessageBox(one, "x", system::MessageButtons::Ok, system::MessageIcon::None, "t");
    EXPECT_EQ(one.buttons().size(), 1);
    EXPECT_EQ(one.button(QMessageBox::Ok)->text(), "确定");
    QMessageBox two;
    FillMessageBox(two, "x", system::MessageButtons::OkCancel, system::MessageIcon::Critical, "t");
    EXPECT_EQ(two.buttons().size(), 2);
    EXPECT_EQ(two.button(QMessageBox::Cancel)->text(), "取消");
    EXPECT_EQ(two.icon(), QMessageBox::Critical);
}

TEST(QtMessageBox, ALongListScrollsSoThatTheButtonsStayOnTheScreen) {
    std::string text = "引入模板失败！模板文件数据存在以下错误: ";
    for (int row = 2; row < 3000; ++row)
        text += "第" + std::to_string(row) + "行，第A列值存在错误，\r\n";
    QMessageBox box;
    FillMessageBox(box, text, system::MessageButtons::Ok, system::MessageIcon::Information, "Orbis提示");
    box.show();
    const auto* whole = box.findChild<QPlainTextEdit*>(QStringLiteral("messageText"));
    ASSERT_NE(whole, nullptr);
    EXPECT_TRUE(whole->isVisible());
    EXPECT_TRUE(whole->isReadOnly());
    EXPECT_EQ(whole->toPlainText(), box.text());
    EXPECT_TRUE(whole->toPlainText().endsWith(QStringLiteral("第2999行，第A列值存在错误，\n")));
    EXPECT_LT(box.height(), 600);
    EXPECT_LT(box.width(), 1000);
    const QWidget* ok = box.button(QMessageBox::Ok);
    EXPECT_TRUE(box.rect().contains(QRect(ok->mapTo(&box, QPoint()), ok->size())));
    EXPECT_EQ(box.defaultButton(), ok);
}

TEST(QtMessageBox, AShortMessageIsNoListToScroll) {
    QMessageBox box;
    FillMessageBox(box, "引入模板失败！\r\n第2行，第A列值存在错误，\r\n", system::MessageButtons::Ok,
                   system::MessageIcon::Information, "t");
    EXPECT_EQ(box.findChild<QPlainTextEdit*>(QStringLiteral("messageText")), nullptr);
}

system::FileRequest WorkbookRequest() {
    system::FileRequest request;
    request.title = "指定引出文件名";
    request.proposedName = "标准模板";
    request.filters = {{"Database File Excel File (*.xls)", "*.xls"}, {"工作簿", "*.xlsx"}};
    request.selectedFilter = 1;
    request.flags = 0x2;
    return request;
}

TEST(QtFileDialog, NamesEachPatternOnce) {
    EXPECT_EQ(NameFilters(WorkbookRequest()),
              QStringList({"Database File Excel File (*.xls)", "工作簿 (*.xlsx)"}));
}

TEST(QtFileDialog, PreselectsTheFilterAndAddsItsExtension) {
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    FillFileDialog(dialog, WorkbookRequest(), true);
    EXPECT_EQ(dialog.windowTitle(), "指定引出文件名");
    EXPECT_EQ(dialog.selectedNameFilter(), "工作簿 (*.xlsx)");
    EXPECT_EQ(dialog.defaultSuffix(), "xlsx");
    EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
    EXPECT_FALSE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
    emit dialog.filterSelected("Database File Excel File (*.xls)");
    EXPECT_EQ(dialog.defaultSuffix(), "xls");
}

#ifdef __linux__
TEST(QtFileDialog, OpensNoneOfTheFilesThatItLists) {
    const QTemporaryDir folder;
    const QStringList names = {"a.vas", "a.vas-shm", "a.vas-wal", "plain", "目录.xls", "x.xlsx"};
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("SQLite format 3");
    }
    ASSERT_TRUE(QDir(folder.path()).mkdir("folder"));
    const WatchedFolder watched(folder.path().toStdString());
    for (const bool saving : {true, false}) {
        system::FileRequest request = WorkbookRequest();
        request.filters.push_back({"所有文件", "*"});
        request.selectedFilter = 2;
        QFileDialog dialog;
        FillFileDialog(dialog, request, saving);
        dialog.setDirectory(folder.path());
        dialog.setViewMode(QFileDialog::Detail);
        dialog.show();
        auto* model = dialog.findChild<QFileSystemModel*>();
        ASSERT_NE(model, nullptr);
        const QModelIndex root = model->index(folder.path());
        ASSERT_TRUE(QTest::qWaitFor([&] { return model->rowCount(root) == names.size() + 1; }));
        for (int row = 0; row < model->rowCount(root); ++row) {
            // The kind comes with the icon, from the thread that reads the folder.
            const QModelIndex kind = model->index(row, 2, root);
            EXPECT_TRUE(QTest::qWaitFor([&] { return !kind.data().toString().isEmpty(); }));
            EXPECT_TRUE(kind.data().toString().contains("文件")) << kind.data().toString().toStdString();
            EXPECT_FALSE(model->index(row, 0, root).data(Qt::DecorationRole).value<QIcon>().isNull());
        }
        dialog.selectFile("a.vas");
        QApplication::processEvents();
    }
    EXPECT_EQ(watched.Opened(), std::vector<std::string>());
}
#endif

TEST(QtFileDialog, AsksAboutOverwritingOnlyWhenToldTo) {
    system::FileRequest request = WorkbookRequest();
    request.flags = 0;
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    FillFileDialog(dialog, request, true);
    EXPECT_TRUE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
}

TEST(QtScreen, ShowsTheWaitCursorUntilItIsSetBackHoweverOftenItWasSet) {
    QtScreen screen;
    screen.SetMousePointer(system::MousePointer::Hourglass);
    screen.SetMousePointer(system::MousePointer::Hourglass);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    screen.SetMousePointer(system::MousePointer::Default);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(QtSurroundings, KeepsTheSystemsOtherServices) {
    const system::Surroundings base = system::Surroundings::OfSystem();
    const system::Surroundings own = QtSurroundings(base);
    EXPECT_EQ(own.clock, base.clock);
    EXPECT_EQ(own.processes, base.processes);
    EXPECT_NE(dynamic_cast<QtMessageBoxes*>(own.messageBoxes.get()), nullptr);
    EXPECT_NE(dynamic_cast<QtFileDialogs*>(own.fileDialogs.get()), nullptr);
    EXPECT_NE(dynamic_cast<QtScreen*>(own.screen.get()), nullptr);
}

TEST(SlotGuard, TellsFailuresInAMessageBoxAndLetsNonePass) {
    const fakes::FakeSurroundings quiet;
    Guarded([] { throw automation::Error(429, "不能创建对象", "VelaEBCGLView.GLView"); });
    Guarded([] { throw std::runtime_error("plain"); });
    Guarded([] { throw 5; });
    ASSERT_EQ(quiet.messageBoxes->shown.size(), 3U);
    EXPECT_EQ(quiet.messageBoxes->shown[0].text, "不能创建对象\r\n\r\nVelaEBCGLView.GLView");
    EXPECT_EQ(quiet.messageBoxes->shown[1].text, "plain");
    EXPECT_EQ(quiet.messageBoxes->shown[2].text, "未知错误");
    EXPECT_EQ(quiet.messageBoxes->shown[0].title, "信息提示");
    EXPECT_EQ(GuardedOr(7, []() -> int { throw 5; }), 7);
    EXPECT_EQ(GuardedOr(7, [] { return 8; }), 8);
}

}  // namespace
}  // namespace vicenter::ui
