#pragma once

// Whole jobs done in the real window by real events, every key and click of them counted.
//
// One step is a key with its modifiers, a character (those of an input method too) or a click; a scroll to
// what is not in sight; an answer to a message. A file dialog is two steps, the file and the button. What the
// table of docs/benchmarks.md says of a job is compared with what was counted.

#include <QClipboard>
#include <QFile>
#include <QHeaderView>
#include <QInputMethodEvent>
#include <QRegularExpression>
#include <map>
#include <utility>

#include "tests/ui/tree_menu_fixture.h"

namespace vicenter::ui {

class JobsTest : public TreeMenuTest {
  protected:
    struct Typed {
        std::string keys;
        std::string text;  // what the cell then shows
    };
    using Row = std::map<int, Typed>;  // by column

    // The columns that the jobs are done in.
    void Show(std::initializer_list<int> columns) {
        for (int c = 1; c <= center::kColumnCount; ++c)
            window->Presenter().Grid().SetColumnHidden(c, true);
        for (const int c : columns)
            window->Presenter().Grid().SetColumnHidden(c, false);
        QApplication::processEvents();
    }
    // What types for the user and passes by cells.
    void SetHelps(bool on) {
        for (const auto aid : {center::EntryAid::Proposals, center::EntryAid::PassingBy})
            window->Presenter().Cells().SetOn(aid, on);
    }

    // --- steps

    QWidget* Focused() {
        if (QWidget* modal = QApplication::activeModalWidget()) return modal->focusWidget();
        if (QWidget* now = QApplication::focusWidget()) return now;
        // Without a window manager nobody gives the keyboard back after a dialog.
        return window->focusWidget();
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(Focused(), key, modifiers);
        QApplication::processEvents();
        ++steps;
    }
    void Write(const std::string& text) {
        for (const QChar c : QString::fromStdString(text)) {
            if (c.unicode() < 0x80) {
                QTest::keyClick(Focused(), c.toLatin1());
            } else {
                QInputMethodEvent typed;
                typed.setCommitString(c);
                QApplication::sendEvent(Focused(), &typed);
            }
            ++steps;
        }
    }
    void Click(QWidget& at, const QPoint& place, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(&at, Qt::LeftButton, modifiers, place);
        QApplication::processEvents();
        ++steps;
    }
    void Click(QWidget& parent, const char* name) {
        auto* button = parent.findChild<QWidget*>(QString::fromLatin1(name));
        ASSERT_NE(button, nullptr) << name;
        ASSERT_TRUE(button->isEnabled()) << name;
        Click(*button, button->rect().center());
    }
    void Tool(const char* key) { Click(*window, (std::string(key) + "Button").c_str()); }
    bool InSight(int row, int gridColumn) {
        const QRect cell = window->Grid().visualRect(window->Grid().Model().IndexOf({row, gridColumn}));
        return window->Grid().viewport()->rect().contains(cell.center());
    }
    void Cell(int row, int gridColumn) {
        const QModelIndex index = window->Grid().Model().IndexOf({row, gridColumn});
        if (!InSight(row, gridColumn)) {
            window->Grid().scrollTo(index);
            ++steps;
        }
        Click(*window->Grid().viewport(), window->Grid().visualRect(index).center());
        ASSERT_EQ(Active(), (center::CellAddress{row, gridColumn}));
    }
    // From the head of one row to that of another: all cells of them.
    void Rows(int first, int last) {
        QHeaderView& heads = *window->Grid().verticalHeader();
        for (const int row : {first, last}) {
            if (!InSight(row, column::kNo)) {
                window->Grid().scrollTo(window->Grid().Model().IndexOf({row, column::kNo}));
                ++steps;
            }
            const QPoint at(heads.width() / 2,
                            heads.sectionViewportPosition(row - 1) + heads.sectionSize(row - 1) / 2);
            Click(*heads.viewport(), at, row == first ? Qt::NoModifier : Qt::ShiftModifier);
            if (first == last) break;
        }
    }
    // Where a node is, scrolled to when it is out of sight.
    QPoint Seen(const std::string& key) {
        TemplateTree& tree = window->Tree();
        QTreeWidgetItem* node = tree.FindNode(key);
        if (!tree.viewport()->rect().contains(tree.visualItemRect(node).center())) {
            tree.scrollToItem(node);
            ++steps;
        }
        return tree.visualItemRect(node).center();
    }
    void Node(const std::string& key) { Click(*window->Tree().viewport(), Seen(key)); }
    // As a window manager does: the keyboard is the dialog's while it stands there, and then the window's.
    void InDialog(const QString& name, const std::function<void(QDialog&)>& inIt,
                  const std::function<void()>& ask) {
        WithDialog(
            {}, name,
            [&](QDialog& dialog) {
                EXPECT_TRUE(QTest::qWaitForWindowActive(&dialog));
                QApplication::processEvents();
                inIt(dialog);
            },
            ask);
        EXPECT_TRUE(dialogShown_) << name.toStdString();
        TakeBack();
    }
    void TakeBack() {
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    // A right click, and one on an entry of the menu.
    void OfNode(const std::string& key, const char* entry, const QString& dialog,
                const std::function<void(QDialog&)>& inDialog) {
        Seen(key);
        ChooseInMenu(key, entry, inDialog, dialog);
        TakeBack();
        steps += 2;
    }
    // What stood there since the last time: messages and file dialogs.
    std::vector<std::string> Boxes() {
        const std::vector<std::string> told = TakeMessages();
        steps += static_cast<int>(told.size() + 2 * surroundings.fileDialogs->requests.size());
        surroundings.fileDialogs->requests.clear();
        return told;
    }
    int Counted() {
        Boxes();
        return std::exchange(steps, 0);
    }

    // --- lines by keyboard

    center::CellAddress Active() { return window->Presenter().Grid().ActiveCell(); }
    // A new template and the cursor in its first cell; not counted.
    void NewTemplate(const char* name) {
        window->Tree().setFocus();
        QTest::keyClick(&window->Tree(), Qt::Key_N, Qt::ControlModifier);
        ASSERT_TRUE(window->Tree().IsEditingLabel());
        Write(name);
        Key(Qt::Key_Return);
        ClickCell(1, column::kNo);
        steps = 0;
    }
    // Through the columns that are shown, to the first one of the next row.
    void EnterRow(const Row& row) {
        const int at = Active().row;
        const auto proposed = [&](int c) { return window->Presenter().Cells().ProposedText({at, c}); };
        const auto isThere = [&](int c) {
            const auto wanted = row.find(c);
            return wanted == row.end() || wanted->second.text == Text(at, c) ||
                   wanted->second.text == proposed(c);
        };
        if (!proposed(column::kNo).empty() && isThere(column::kNo) && isThere(column::kExplanation) &&
            isThere(column::kDirection))
            Press(Qt::Key_Return, Qt::ControlModifier);
        while (Active().row == at) {
            const int c = Active().column;
            if (!isThere(c)) Write(row.at(c).keys);
            Press(Qt::Key_Tab);
            ASSERT_FALSE(HasFailure());
        }
    }
    void Save() {
        Press(Qt::Key_S, Qt::ControlModifier);
        const std::vector<std::string> told = Boxes();
        ASSERT_EQ(told.size(), 1U);
        EXPECT_THAT(told.front(), ::testing::HasSubstr("保存成功"));
    }

    // --- a bigger set

    // Copies of a template until the tree has so many that are the user's.
    void Multiply(const std::string& name, std::size_t count) {
        OpenTemplate(name);
        while (window->Presenter().Nodes().size() < count + 2) {  // the root and the standard template
            for (const center::TreeMenuItem& item : window->Presenter().Tree().MenuItems()) {
                if (item.name == "mnuDuplicate") item.run();
            }
        }
        TakeMessages();
    }
    // The keys of the user's own templates, as the tree has them.
    std::vector<std::string> OwnKeys() {
        std::vector<std::string> keys;
        for (const center::TreeNode& node : window->Presenter().Nodes()) {
            if (node.key != "ROOT" && node.key != "detail-0") keys.push_back(node.key);
        }
        return keys;
    }

    // What can be seen of every line.
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        for (int row = 1; row <= window->Presenter().RowCount(); ++row) {
            for (int c = 1; c <= center::kColumnCount; ++c) {
                if (center::Column(c).kind != center::CellKind::Id) lines.push_back(Text(row, c));
            }
        }
        return lines;
    }

    // Compares with the row of the table: "| 3 | what | before | after |". Fewer steps than the table has are
    // taken where it says what was proposed when they were counted.
    static void IsInTable(int job, int before, int after, bool orFewer = false) {
        QFile doc(QStringLiteral(VICENTER_DOCS "/benchmarks.md"));
        ASSERT_TRUE(doc.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(doc.readAll());
        const QString section =
            text.mid(text.indexOf(QStringLiteral("\n## Twelve jobs in keys and clicks\n")) + 1);
        const QStringList lines = section.left(section.indexOf(QStringLiteral("\n## "))).split(u'\n');
        const QStringList rows = lines.filter(QRegularExpression(QStringLiteral("^\\| %1 \\| ").arg(job)));
        ASSERT_EQ(rows.size(), 1) << job;
        const QStringList cells = rows.front().split(u'|');
        EXPECT_EQ(cells.value(3).trimmed().toInt(), before) << rows.front().toStdString();
        const int told = cells.value(4).trimmed().toInt();
        EXPECT_TRUE(told == after || (orFewer && after < told)) << after << rows.front().toStdString();
    }

    int steps = 0;
};

}  // namespace vicenter::ui
