#pragma once

// The window and every dialog over it, opened by real events on the demo account set and looked at: no text
// is cut off. With VICENTER_PICTURES set to a folder the pictures of docs/pictures/ are written there.

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QDialog>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QTableView>
#include <QTimer>

#include "host/window/look_up_window.h"
#include "tests/ui/demo_set_fixture.h"
#include "ui/window/center_commands.h"

namespace vicenter::ui {

// Labels and buttons that are narrower than their texts.
inline QStringList CutOff(const QWidget& root) {
    QStringList found;
    for (const QWidget* widget : root.findChildren<QWidget*>()) {
        QString text;
        if (const auto* label = qobject_cast<const QLabel*>(widget); label && !label->wordWrap())
            text = label->text();
        if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) text = button->text();
        text.remove(u'&');  // marks a key and takes no room
        if (text.isEmpty() || !widget->isVisibleTo(&root)) continue;
        const bool clipped = widget->fontMetrics().horizontalAdvance(text) > widget->width() ||
                             !root.rect().contains(QRect(widget->mapTo(&root, QPoint()), widget->size()));
        if (clipped) found << text;
    }
    return found;
}

// Cells and headings of lists that are narrower than their texts. The last column takes what is left of the
// width, and longer texts end in dots there.
inline QStringList CutOffInLists(const QWidget& root) {
    QStringList found;
    for (const QTableView* table : root.findChildren<QTableView*>()) {
        const bool grid = qobject_cast<const GridView*>(table) != nullptr;  // as wide as its user has it
        if (!table->isVisibleTo(&root) || grid) continue;
        const QAbstractItemModel& model = *table->model();
        for (int column = 0; column < model.columnCount(); ++column) {
            const int room = table->columnWidth(column);
            const QString heading = model.headerData(column, Qt::Horizontal).toString();
            if (table->fontMetrics().horizontalAdvance(heading) + 8 > room) found << heading;
            for (int row = 0; row < model.rowCount() && column + 1 < model.columnCount(); ++row) {
                const QString text = model.index(row, column).data().toString();
                if (table->fontMetrics().horizontalAdvance(text) > room) found << text;
            }
        }
        const QHeaderView& header = *table->horizontalHeader();
        if (header.length() != table->viewport()->width())
            found << table->objectName() + QString::number(header.length() - table->viewport()->width());
    }
    return found;
}

class PicturesTest : public DemoSetTest {
  protected:
    PicturesTest() {
        host::LookUpDialog::SetProcess(std::make_shared<host::QtLookUpDialog>());
        entry::WindowFactory::SetProcess(
            std::make_shared<QtWindowFactory>(std::make_shared<CenterCommands>()));
    }
    ~PicturesTest() override { host::LookUpDialog::SetProcess(nullptr); }

    void SetUp() override {
        session->ReadNames();
        Open();
        ClickNode("detail-1");
    }
    void Show(std::initializer_list<int> columns) {
        for (const int c : {7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20, 21})
            window->Presenter().Grid().SetColumnHidden(c, true);
        for (const int c : columns)
            window->Presenter().Grid().SetColumnHidden(c, false);
        QApplication::processEvents();
    }
    static QString Pictures() { return qEnvironmentVariable("VICENTER_PICTURES"); }
    static void Keep(const QString& stem, const QPixmap& picture) {
        EXPECT_TRUE(picture.save(QDir(Pictures()).filePath(stem + ".png")));
    }
    static void Picture(const QString& stem, QWidget& of, const QSize& size = {}) {
        QApplication::processEvents();
        if (Pictures().isEmpty() || stem.isEmpty()) return;
        Keep(stem, size.isValid() ? of.grab(QRect(QPoint(), size)) : of.grab());
    }
    // Opens a dialog, looks at it as `prepare` leaves it, and closes it with Esc; no picture without a stem.
    // What runs before the dialog comes up may take the events of its own.
    template <class Open, class Prepare>
    void Dialog(const QString& stem, Open open, Prepare prepare) {
        bool seen = false;
        const QPointer<QWidget> before = QApplication::activeModalWidget();
        QTimer watch;
        QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
            const QPointer<QDialog> dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || dialog == before || seen) return;
            seen = true;
            watch.stop();
            QApplication::processEvents();
            prepare(*dialog);
            QApplication::processEvents();
            if (!dialog || !dialog->isVisible()) return;
            EXPECT_EQ(CutOff(*dialog), QStringList()) << stem.toStdString();
            EXPECT_EQ(CutOffInLists(*dialog), QStringList()) << stem.toStdString();
            Picture(stem, *dialog);
            dialog->reject();
        });
        watch.start(0);
        open();
        EXPECT_TRUE(seen) << stem.toStdString();
        if (before) return;
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        QWidget* at = QApplication::focusWidget();
        QTest::keyClick(at == nullptr ? window->focusWidget() : at, key, modifiers);
        QApplication::processEvents();
    }
    std::string KeyOf(const std::string& name) {
        for (const center::TreeNode& node : window->Presenter().Nodes()) {
            if (node.text == name) return node.key;
        }
        return {};
    }
    // The menu of a node, and a click on one of its entries.
    void ChooseOfNode(const std::string& key, const char* entry) {
        bool chosen = false;
        QTimer chooser;
        QObject::connect(&chooser, &QTimer::timeout, &chooser, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!menu || chosen) return;
            chosen = true;
            auto* action = menu->findChild<QAction*>(QString::fromLatin1(entry));
            ASSERT_NE(action, nullptr) << entry;
            QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
        });
        chooser.start(1);
        QWidget* port = window->Tree().viewport();
        const QPoint at = window->Tree().visualItemRect(window->Tree().FindNode(key)).center();
        QTest::mouseClick(port, Qt::RightButton, {}, at);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, port->mapToGlobal(at));
        QApplication::sendEvent(port, &event);
        EXPECT_TRUE(chosen) << entry;
    }
    // As an input method enters it.
    static void Commit(const QString& text) {
        QInputMethodEvent typed;
        typed.setCommitString(text);
        QApplication::sendEvent(QApplication::focusWidget(), &typed);
    }
};

}  // namespace vicenter::ui
