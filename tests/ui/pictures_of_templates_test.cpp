// The pictures of what goes through all templates, of whole patterns, of versions, vouchers and faults.

#include <QListWidget>
#include <QProcess>
#include <QTableWidget>
#include <filesystem>
#include <fstream>

#include "host/window/account_set_dialog.h"
#include "platform/system/files.h"
#include "tests/ui/pictures_fixture.h"

namespace vicenter::ui {
namespace {

// The window with what the host of this project adds to the tree's menu.
class HostCommands : public CenterCommands {
  public:
    std::vector<center::TreeMenuItem> MenuItems() override {
        return {{"mnuOpenAccountSet", "打开其他账套(&O)…\tCtrl+O", [] { host::ChooseAccountSet(); }}};
    }
};

class TemplatePicturesTest : public PicturesTest {
  protected:
    // Asks for the menu of a place, looks at it and closes it.
    template <class Look>
    void AtMenu(QWidget& where, const QPoint& at, Look look) {
        bool seen = false;
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, window, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu || seen) return;
            seen = true;
            watch.stop();
            look(*menu);
            menu->close();
        });
        watch.start(0);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, where.mapToGlobal(at));
        QApplication::sendEvent(&where, &event);
        EXPECT_TRUE(seen);
    }

    void SaveWith(int row, int gridColumn, const QString& text) {
        surroundings.clock->now =
            *automation::DateTime::Parse("2026-11-0" + std::to_string(++saves_) + " 09:14:26");
        ClickCell(row, gridColumn);
        Key(Qt::Key_F2);
        qobject_cast<QLineEdit*>(QApplication::focusWidget())->selectAll();
        Commit(text);
        Key(Qt::Key_Return);
        ClickTool("mnuSave");
    }
    // The window, with the menus that stand over it painted where they are.
    void PictureWithMenus(const QString& stem, const QSize& size) {
        QApplication::processEvents();
        if (Pictures().isEmpty()) return;
        QPixmap picture = window->grab(QRect(QPoint(), size));
        QPainter painter(&picture);
        for (QWidget* popup : QApplication::topLevelWidgets()) {
            if (qobject_cast<QMenu*>(popup) && popup->isVisible())
                painter.drawPixmap(window->mapFromGlobal(popup->pos()), popup->grab());
        }
        painter.end();
        Keep(stem, picture);
    }

  private:
    int saves_ = 0;
};

TEST_F(TemplatePicturesTest, TheSearchOverAllTemplates) {
    Show({9, 11, 20});
    Press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    auto* account = window->findChild<QLineEdit*>("searchAccount");
    account->setFocus();
    Type("1122");
    Key(Qt::Key_Return);
    const auto* hits = window->findChild<QTableWidget*>("lstHits");
    ASSERT_EQ(hits->rowCount(), 7);
    QTest::mouseClick(hits->viewport(), Qt::LeftButton, {}, hits->visualItemRect(hits->item(2, 3)).center());
    EXPECT_EQ(window->Presenter().TemplateName(), "销售与收款");
    EXPECT_EQ(CutOff(*window), QStringList());
    EXPECT_EQ(CutOffInLists(*window), QStringList());
    Picture("search-panel", *window);
}

TEST_F(TemplatePicturesTest, OneCodeForAnotherInAllTemplates) {
    Dialog(
        "replace-codes", [this] { Press(Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier); },
        [](QWidget& dialog) {
            QTest::keyClicks(dialog.findChild<QLineEdit*>("from"), "1002.01");
            QTest::keyClicks(dialog.findChild<QLineEdit*>("to"), "1002.05");
            QTest::keyClick(dialog.findChild<QLineEdit*>("to"), Qt::Key_Return);
            EXPECT_GT(dialog.findChild<QTableWidget*>("lines")->rowCount(), 3);
        });
}

TEST_F(TemplatePicturesTest, TextReplacedInTheGrid) {
    Dialog(
        "replace-dialog", [this] { Press(Qt::Key_H, Qt::ControlModifier); },
        [](QWidget& dialog) {
            dialog.findChild<QLineEdit*>("text")->setText("报销");
            dialog.findChild<QLineEdit*>("with")->setText("支付");
            EXPECT_EQ(dialog.findChild<QLabel*>("count")->text(), "共 2 处");
        });
}

TEST_F(TemplatePicturesTest, TheOperationLog) {
    SaveWith(1, column::kRemark, "附发票和清单");
    ClickNode(KeyOf("销售与收款"));
    SaveWith(1, column::kExplanation, "销售绿茶（散装）");
    const std::string workbook = folder.Path("杭州分公司.xlsx");
    surroundings.fileDialogs->choices = {workbook, workbook};
    ClickTool("mnuExp");
    ClickTool("mnuImp");
    Dialog(
        "operation-log", [this] { Press(Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier); },
        [](QWidget& dialog) { EXPECT_GT(dialog.findChild<QTableWidget*>("entries")->rowCount(), 4); });
}

TEST_F(TemplatePicturesTest, TheMenuOfAColumn) {
    Show({9, 11, 20});
    QHeaderView& header = *window->Grid().horizontalHeader();
    const QPoint at(header.sectionViewportPosition(column::kAccountNumber - 1) + 30, header.height() / 2);
    QTest::mouseClick(header.viewport(), Qt::RightButton, {}, at);
    AtMenu(*header.viewport(), at, [&](QMenu& menu) {
        EXPECT_EQ(menu.objectName(), "columnMenu");
        PictureWithMenus("column-menu", {window->width(), 620});
    });
}

TEST_F(TemplatePicturesTest, TheMenuOfAWholeNumber) {
    Show({9, 11, 20});
    ClickCell(2, column::kNo);
    const QPoint at = window->Grid().visualRect(window->Grid().currentIndex()).topLeft() + QPoint(2, 12);
    AtMenu(*window->Grid().viewport(), at, [&](QMenu& menu) {
        auto* patterns = window->Grid().findChild<QMenu*>("patternMenu");
        ASSERT_NE(patterns, nullptr);
        menu.setActiveAction(patterns->menuAction());
        QTest::keyClick(&menu, Qt::Key_Right);
        EXPECT_TRUE(patterns->isVisible());
        EXPECT_EQ(patterns->actions().size(), 6);
        PictureWithMenus("pattern-menu", {window->width(), 620});
        patterns->close();
    });
}

TEST_F(TemplatePicturesTest, TheVersionsOfATemplate) {
    SaveWith(1, column::kExplanation, "报销办公用品费");
    SaveWith(1, column::kRemark, "附发票和清单");
    SaveWith(3, column::kAmount, "2580.50");
    // Each on a day of its own.
    for (int version = 1; version <= 3; ++version) {
        session->Execute("update t_VchTpHistory set FKeptAt = '2026-10-" + std::to_string(10 + 6 * version) +
                         " 0" + std::to_string(7 + version / 2) + ":4" + std::to_string(2 * version) +
                         ":17' where FHistoryID = (select min(FHistoryID) from t_VchTpHistory) + " +
                         std::to_string(version - 1));
    }
    Dialog(
        "history-dialog", [this] { ChooseOfNode(KeyOf("日常费用"), "mnuHistory"); },
        [](QWidget& dialog) {
            auto* versions = dialog.findChild<QTableWidget*>("versions");
            ASSERT_EQ(versions->rowCount(), 3);
            QTest::mouseClick(versions->viewport(), Qt::LeftButton, {},
                              versions->visualItemRect(versions->item(2, 1)).center());
            EXPECT_EQ(dialog.findChild<QTableWidget*>("changes")->rowCount(), 3);
        });
}

TEST_F(TemplatePicturesTest, ThePatternAsAVoucher) {
    ClickNode("detail-3");
    ClickCell(6, column::kExplanation);
    Dialog(
        "voucher-dialog", [this] { Press(Qt::Key_F9, {}); },
        [](QWidget& dialog) { EXPECT_GT(dialog.findChild<QListWidget*>("voucherQuestions")->count(), 0); });
}

// The first page of the file, as another program shows it.
TEST_F(TemplatePicturesTest, ATemplateOnPaper) {
    const std::string pdf = folder.Path("日常费用.pdf");
    surroundings.fileDialogs->choices.push_back(pdf);
    ChooseOfNode(KeyOf("日常费用"), "mnuPdf");
    ASSERT_TRUE(std::filesystem::exists(system::PathFromUtf8(pdf)));
    if (Pictures().isEmpty()) return;
    const QString stem = QDir(Pictures()).filePath("print-page");
    EXPECT_EQ(QProcess::execute("pdftoppm", {"-png", "-singlefile", "-r", "80", "-f", "1",
                                             QString::fromStdString(pdf), stem}),
              0);
}

TEST_F(TemplatePicturesTest, TheFaultsOfAllTemplates) {
    // The ledger has gone on: an account is no longer to be used, and an amount is missing on one side.
    session->Execute("update t_Account set FDetail = 0 where FNumber = '5601.05'");
    session->Execute("update t_VchTemplateEntry set FAmount = 30900 where FID = 2 and FEntryID = 1");
    Show({9, 13, 20});
    ClickNode("detail-0");
    ChooseOfNode("ROOT", "mnuCheckTemplates");
    TakeMessages();
    auto* panel = window->findChild<QWidget*>("faultPanel");
    ASSERT_TRUE(panel->isVisible());
    auto* list = window->findChild<QTableView*>("lstFaults");
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount() > 4; }));
    // To the account that is no longer one.
    for (int row = 0; row < list->model()->rowCount(); ++row) {
        if (!list->model()->index(row, 2).data().toString().startsWith("5601.05")) continue;
        const QModelIndex found = list->model()->index(row, 3);
        list->scrollTo(found);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(found).center());
        break;
    }
    EXPECT_EQ(window->Presenter().TemplateName(), "日常费用");
    EXPECT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount() > 4; }));
    QApplication::processEvents();
    EXPECT_EQ(CutOff(*window), QStringList());
    EXPECT_EQ(CutOffInLists(*window), QStringList());
    Picture("fault-list", *window);
}

TEST_F(TemplatePicturesTest, AnotherAccountSet) {
    Close();
    entry::WindowFactory::SetProcess(std::make_shared<QtWindowFactory>(std::make_shared<HostCommands>()));
    Open();
    namespace fs = std::filesystem;
    // A folder whose name can be shown.
    const fs::path sets = Pictures().isEmpty() ? system::PathFromUtf8(folder.Path("账套"))
                                               : fs::temp_directory_path() / system::PathFromUtf8("账套");
    fs::create_directories(sets);
    fs::create_directories(system::PathFromUtf8(surroundings.folders->data));
    for (const char* name : {"杭州分公司.vas", "上海分公司.vas", "总公司.vas"}) {
        const fs::path set = sets / system::PathFromUtf8(name);
        fs::copy_file(system::PathFromUtf8(host::test::OriginalSet(true)), set,
                      fs::copy_options::overwrite_existing);
        host::AccountSetChoice::Remember(surroundings.folders->data, system::PathToUtf8(set));
    }
    Dialog(
        "account-set-dialog", [this] { Press(Qt::Key_O, Qt::ControlModifier); },
        [](QWidget& dialog) {
            EXPECT_EQ(dialog.findChild<QListWidget*>("lstFiles")->count(), 3);
            EXPECT_EQ(dialog.findChild<QListWidget*>("lstUsers")->count(), 3);
        });
    fs::remove_all(sets);
}

}  // namespace
}  // namespace vicenter::ui
