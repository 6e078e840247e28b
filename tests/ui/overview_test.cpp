// The last section of the user's guide: what is mostly asked of such a window. Every menu text named there
// stands in a menu, and every key named there does what the section says of it.

#include <QClipboard>
#include <QFile>
#include <QHeaderView>
#include <QKeySequence>
#include <QRegularExpression>
#include <QTableView>
#include <map>
#include <set>

#include "exchange/template_columns.h"
#include "host/window/account_set_dialog.h"
#include "platform/office/workbook_file.h"
#include "tests/ui/tree_menu_fixture.h"
#include "ui/panels/tree_filter.h"

namespace vicenter::ui {
namespace {

constexpr int kBehaviours = 25;
constexpr Qt::KeyboardModifiers kBoth = Qt::ControlModifier | Qt::ShiftModifier;

class HostCommands : public CenterCommands {
  public:
    std::vector<center::TreeMenuItem> MenuItems() override {
        return {{"mnuOpenAccountSet", "打开其他账套(&O)…\tCtrl+O", [] { host::ChooseAccountSet(); }}};
    }
};

// What a menu calls it, without what marks keys.
QString Plain(QString text) {
    text = text.section(u'\t', 0, 0);
    text.remove(QRegularExpression(QStringLiteral("\\(&.\\)")));
    return text.remove(u'…');
}

class OverviewTest : public TreeMenuTest {
  protected:
    OverviewTest() { Afresh(); }

    // As the demo set's user has it, with a template of five numbers open.
    void Afresh() {
        Close();
        entry::WindowFactory::SetProcess(std::make_shared<QtWindowFactory>(std::make_shared<HostCommands>()));
        surroundings.messageBoxes->answers.clear();
        Open();
        OpenTemplate("日常费用");
        ClickCell(5, column::kExplanation);
        TakeMessages();
    }
    // The rows of the table: what, whether, how.
    static QList<QStringList> Behaviours() {
        QFile guide(QStringLiteral(VICENTER_DOCS "/user-guide.zh.md"));
        EXPECT_TRUE(guide.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(guide.readAll());
        const QString section = text.mid(text.lastIndexOf(QStringLiteral("\n## ")));
        QList<QStringList> rows;
        for (const QString& line : section.split(u'\n')) {
            if (!line.contains(QRegularExpression(QStringLiteral("^\\| [0-9]+ \\|")))) continue;
            QStringList cells = line.split(u'|');
            rows << cells.mid(2, 3);
        }
        return rows;
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* at = QApplication::focusWidget();
        QTest::keyClick(at == nullptr ? window->focusWidget() : at, key, modifiers);
        QApplication::processEvents();
    }
    bool Opens(const char* dialog, Qt::Key key, Qt::KeyboardModifiers modifiers) {
        dialogShown_ = false;
        WithDialog(
            {}, dialog, [](QDialog& shown) { shown.reject(); }, [&] { Press(key, modifiers); });
        return dialogShown_;
    }
    bool Changes(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        const std::vector<std::string> before = Contents();
        Press(key, modifiers);
        return Contents() != before;
    }
    int PlaceOf(int gridColumn) { return window->Grid().horizontalHeader()->visualIndex(gridColumn - 1); }
    std::string Proposed(int row, int gridColumn) {
        return window->Presenter().Cells().ProposedText({row, gridColumn});
    }
    void Swap() {
        window->Presenter().Grid().SetText(1, column::kNo, "4");
        window->Presenter().Grid().SetText(2, column::kNo, "4");
    }
    // A list with a workbook that was refused.
    QTableView& RefusedWorkbook() {
        office::Workbook workbook;
        office::Sheet& sheet = workbook.AddSheet(exchange::kSheetName);
        for (std::uint32_t row : {0U, 1U, 3U}) {  // a blank one between
            for (std::uint32_t c = 0; c < 6; ++c) {
                const std::vector<std::string> values = {"1", "提现", "借", "1001", "库存现金", "0"};
                office::Cell& cell = sheet.At(row, c);
                cell.kind = office::CellKind::Text;
                cell.text =
                    workbook.Texts().Intern(row == 0 ? std::string(exchange::kColumns[c].header) : values[c]);
            }
        }
        const std::string path = folder.Path("Refused.xlsx");
        office::WriteWorkbook(workbook, path, office::FileKind::Xlsx);
        surroundings.fileDialogs->choices = {path};
        ClickTool("mnuImp");
        auto* list = window->findChild<QTableView*>("lstFaults");
        EXPECT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount() > 0; }));
        surroundings.fileDialogs->requests.clear();
        TakeMessages();
        list->setFocus();
        list->setCurrentIndex(list->model()->index(0, 3));
        return *list;
    }
    // Texts of a menu that comes up, of its submenus too.
    std::set<QString> TextsOfMenu(QWidget& at, const QPoint& place) {
        std::set<QString> texts;
        QTimer reader;
        QObject::connect(&reader, &QTimer::timeout, &reader, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu) return;
            QList<QMenu*> menus = menu->findChildren<QMenu*>();
            menus << menu;
            // Submenus may hang on the widget.
            for (QAction* action : menu->actions()) {
                if (action->menu()) menus << action->menu();
            }
            for (const QMenu* each : menus) {
                for (const QAction* action : each->actions())
                    texts.insert(Plain(action->text()));
            }
            menu->close();
        });
        reader.start(1);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, at.mapToGlobal(place));
        QApplication::sendEvent(&at, &event);
        return texts;
    }
    std::set<QString> TextsOfMenus() {
        std::set<QString> texts;
        QWidget* tree = window->Tree().viewport();
        for (const std::string& key : {std::string("ROOT"), KeyOf("日常费用")}) {
            const QPoint place = window->Tree().visualItemRect(window->Tree().FindNode(key)).center();
            QTest::mouseClick(tree, Qt::RightButton, {}, place);
            texts.merge(TextsOfMenu(*tree, place));
        }
        GridView& grid = window->Grid();
        texts.merge(TextsOfMenu(*grid.viewport(), grid.visualRect(grid.currentIndex()).center()));
        QTableView& list = RefusedWorkbook();
        texts.merge(TextsOfMenu(*list.viewport(), list.visualRect(list.currentIndex()).center()));
        return texts;
    }
    using Probe = std::function<bool()>;
    std::map<QString, Probe> Probes();
    std::map<QString, Probe> ProbesOfRows();
};

// What each key does, by something that can be seen of it; true when it did.
std::map<QString, OverviewTest::Probe> OverviewTest::Probes() {
    return {
        {"Ctrl+H", [this] { return Opens("frmReplace", Qt::Key_H, Qt::ControlModifier); }},
        {"Ctrl+Shift+H", [this] { return Opens("frmReplaceCodes", Qt::Key_H, kBoth); }},
        {"Ctrl+Shift+S", [this] { return Opens("frmName", Qt::Key_S, kBoth); }},
        {"Ctrl+Shift+L", [this] { return Opens("frmLog", Qt::Key_L, kBoth); }},
        {"Ctrl+O", [this] { return Opens("frmAccountSet", Qt::Key_O, Qt::ControlModifier); }},
        {"F9", [this] { return Opens("frmVoucher", Qt::Key_F9, {}); }},
        {"F5", [this] { return Opens("frmAutoVch", Qt::Key_F5, {}); }},
        {"Ctrl+Shift+F",
         [this] {
             Press(Qt::Key_F, kBoth);
             return window->findChild<QWidget*>("searchPanel")->isVisible();
         }},
        {"Ctrl+P",
         [this] {
             window->Tree().setFocus();
             ClickTool("mnuNew");
             Key(Qt::Key_Escape);
             Press(Qt::Key_P, Qt::ControlModifier);
             return TakeMessages() == std::vector<std::string>{"当前没有可打印的分录！"};
         }},
        {"Ctrl+K",
         [this] {
             while (window->Presenter().Nodes().size() < 11) {
                 for (const center::TreeMenuItem& item : window->Presenter().Tree().MenuItems()) {
                     if (item.name == "mnuDuplicate") item.run();
                 }
             }
             Press(Qt::Key_K, Qt::ControlModifier);
             return qobject_cast<TreeFilter*>(QApplication::focusWidget()) != nullptr;
         }},
        {"Ctrl+F8",
         [this] {
             Press(Qt::Key_F8, Qt::ControlModifier);
             return window->findChild<QWidget*>("faultPanel")->isVisible();
         }},
        {"F8",
         [this] {
             OpenTemplate("外币业务（待核对）");
             ClickCell(1, column::kNo);
             Press(Qt::Key_F8);
             const center::CellAddress at = window->Presenter().Grid().ActiveCell();
             return window->Presenter().Grid().FaultyCheck(at.row, at.column) != 0;
         }},
        {"Ctrl+M",
         [this] {
             QTest::keyClick(&RefusedWorkbook(), Qt::Key_M, Qt::ControlModifier);
             return surroundings.fileDialogs->requests.size() == 1;
         }},
        {"Ctrl+T",
         [this] {
             QTest::keyClick(&RefusedWorkbook(), Qt::Key_T, Qt::ControlModifier);
             return window->Presenter().TemplateName() == "Refused";
         }},
        {"Ctrl+Shift+T",
         [this] {
             const bool before = window->Presenter().Cells().ShowsTotals();
             Press(Qt::Key_T, kBoth);
             return window->Presenter().Cells().ShowsTotals() != before;
         }},
        {"Ctrl+Shift+W",
         [this] {
             window->Grid().setColumnWidth(column::kExplanation - 1, 20);
             Press(Qt::Key_W, kBoth);
             return window->Grid().columnWidth(column::kExplanation - 1) > 40;
         }},
        {"Alt+←",
         [this] {
             Press(Qt::Key_Left, Qt::AltModifier);
             return PlaceOf(column::kExplanation) == 0;
         }},
        {"Alt+→",
         [this] {
             const int before = PlaceOf(column::kExplanation);
             Press(Qt::Key_Right, Qt::AltModifier);
             return PlaceOf(column::kExplanation) > before;
         }},
    };
}

std::map<QString, OverviewTest::Probe> OverviewTest::ProbesOfRows() {
    return {
        {"Ctrl+Shift+C", [this] { return Changes(Qt::Key_C, kBoth); }},
        {"Ctrl+Shift+R",
         [this] {
             Swap();
             return Changes(Qt::Key_R, kBoth);
         }},
        {"Ctrl+Shift+O",
         [this] {
             Swap();
             return Changes(Qt::Key_O, kBoth);
         }},
        {"Alt+↑", [this] { return Changes(Qt::Key_Up, Qt::AltModifier); }},
        {"Alt+↓", [this] { return Changes(Qt::Key_Down, Qt::AltModifier); }},
        {"Ctrl+C",
         [this] {
             QApplication::clipboard()->clear();
             Press(Qt::Key_C, Qt::ControlModifier);
             return QApplication::clipboard()->text() == "支付房租水电费";
         }},
        {"Ctrl+V",
         [this] {
             QApplication::clipboard()->setText("pasted");
             Press(Qt::Key_V, Qt::ControlModifier);
             return Text(5, column::kExplanation) == "pasted";
         }},
        {"Ctrl+Z",
         [this] {
             Press(Qt::Key_Delete);
             Press(Qt::Key_Z, Qt::ControlModifier);
             return Text(5, column::kExplanation) == "支付房租水电费";
         }},
        {"Tab",
         [this] {
             ClickCell(12, column::kNo);
             Press(Qt::Key_Tab);
             return Text(12, column::kNo) == "5";
         }},
        {"Enter",
         [this] {
             ClickCell(12, column::kNo);
             Press(Qt::Key_Return);
             return Text(12, column::kNo) == "5";
         }},
        {"Ctrl+Enter",
         [this] {
             ClickCell(12, column::kNo);
             Press(Qt::Key_Return, Qt::ControlModifier);
             return window->Presenter().Grid().ActiveCell() ==
                    center::CellAddress{12, column::kAccountNumber};
         }},
        {"Esc",
         [this] {
             ClickCell(12, column::kNo);
             EXPECT_EQ(Proposed(12, column::kNo), "5");
             Press(Qt::Key_Escape);
             return Proposed(12, column::kNo).empty();
         }},
        {"F4",
         [this] {
             window->Presenter().Grid().SetColumnHidden(column::kItems, false);
             ClickCell(3, column::kItems);
             QTest::keyClick(&window->Grid(), Qt::Key_F4);
             return window->findChild<QWidget*>("picItem")->isVisible();
         }},
    };
}

TEST_F(OverviewTest, NoLetterLeadsToTwoEntriesOfATreeMenu) {
    for (const std::string& key : {std::string("ROOT"), KeyOf("日常费用")}) {
        ClickNode(key);
        std::map<QString, std::string> letters;
        for (const center::TreeMenuItem& item : window->Presenter().Tree().MenuItems()) {
            const QString letter = QKeySequence::mnemonic(QString::fromStdString(item.text)).toString();
            if (letter.isEmpty()) continue;
            const auto [at, isNew] = letters.emplace(letter, item.name);
            EXPECT_TRUE(isNew) << letter.toStdString() << " of " << item.name << " and " << at->second;
        }
        EXPECT_GT(letters.size(), 5U);
    }
}

TEST_F(OverviewTest, AnswersTwentyFiveBehavioursAndNamesMenusThatAreThere) {
    const QList<QStringList> rows = Behaviours();
    ASSERT_EQ(rows.size(), kBehaviours);
    std::set<QString> offered;
    WithDialog(
        {}, "frmAutoVch",
        [&](QDialog& dialog) {
            for (const QPushButton* button : dialog.findChildren<QPushButton*>())
                offered.insert(Plain(button->text()));
            dialog.reject();
        },
        [&] { QTest::keyClick(&window->Grid(), Qt::Key_F5); });
    ASSERT_TRUE(dialogShown_);
    offered.merge(TextsOfMenus());
    const QRegularExpression quoted(QStringLiteral("“([^”]*)”"));
    for (const QStringList& row : rows) {
        const QString answer = row[1].trimmed();
        EXPECT_TRUE(answer == "有" || answer == "部分" || answer == "没有") << answer.toStdString();
        EXPECT_FALSE(row[2].trimmed().isEmpty()) << row[0].toStdString();
        auto found = quoted.globalMatch(row[2]);
        while (found.hasNext()) {
            const QString name = Plain(found.next().captured(1));
            EXPECT_TRUE(offered.contains(name)) << name.toStdString();
        }
    }
}

TEST_F(OverviewTest, EveryKeyThatItNamesDoesWhatItSays) {
    std::map<QString, Probe> probes = Probes();
    probes.merge(ProbesOfRows());
    const QRegularExpression chord(QStringLiteral("<kbd>[^<]*</kbd>(\\+<kbd>[^<]*</kbd>)*"));
    std::set<QString> named;
    for (const QStringList& row : Behaviours()) {
        auto found = chord.globalMatch(row[2]);
        while (found.hasNext())
            named.insert(found.next().captured(0).remove("<kbd>").remove("</kbd>"));
    }
    EXPECT_GT(named.size(), 20U);
    for (const QString& key : named) {
        const auto probe = probes.find(key);
        ASSERT_NE(probe, probes.end()) << key.toStdString() << " is named and not tried";
        EXPECT_TRUE(probe->second()) << key.toStdString();
        Afresh();
    }
}

}  // namespace
}  // namespace vicenter::ui
