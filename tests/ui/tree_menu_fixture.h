#pragma once

// A window on the demo set, and what its tree's menu and the dialogs behind it are driven by.

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

#include "tests/ui/demo_set_fixture.h"

namespace vicenter::ui {

class TreeMenuTest : public DemoSetTest {
  protected:
    TreeMenuTest() { Open(); }

    void OpenTemplate(const std::string& name) {
        ClickNode(KeyOf(name));
        ASSERT_EQ(window->Presenter().TemplateName(), name);
    }
    std::string KeyOf(const std::string& name) {
        for (const center::TreeNode& node : window->Presenter().Nodes()) {
            if (node.text == name) return node.key;
        }
        return {};
    }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        for (const center::TreeNode& node : window->Presenter().Nodes())
            names.push_back(node.text);
        return names;
    }
    void TypeInto(int row, int gridColumn, const char* text) {
        ClickCell(row, gridColumn);
        Type(text);
        Key(Qt::Key_Return);
    }
    // While `ask` runs: chooses in a menu that comes up, and does with the dialog what is told.
    void WithDialog(const QString& action, const QString& name, const std::function<void(QDialog&)>& inDialog,
                    const std::function<void()>& ask) {
        bool shown = false;
        QTimer chooser;
        QObject::connect(&chooser, &QTimer::timeout, window, [&] {
            if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
                auto* chosen = menu->findChild<QAction*>(action);
                ASSERT_NE(chosen, nullptr);
                QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(chosen).center());
            } else if (auto* dialog = window->findChild<QDialog*>(name); dialog && !shown) {
                shown = true;
                inDialog(*dialog);
                if (dialog->isVisible()) Press(*dialog, "cmdClose");
            }
        });
        chooser.start(1);
        ask();
        dialogShown_ = shown;
    }
    // Asks for the node's menu, chooses there, and does with the dialog what is told.
    void ChooseInMenu(const std::string& key, const QString& action,
                      const std::function<void(QDialog&)>& inDialog, const QString& name = "frmHistory") {
        WithDialog(action, name, inDialog, [&] { AskForMenu(key); });
    }
    void AskForMenu(const std::string& key) {
        const QRect rect = window->Tree().visualItemRect(window->Tree().FindNode(key));
        QTest::mouseClick(window->Tree().viewport(), Qt::RightButton, {}, rect.center());
        QContextMenuEvent event(QContextMenuEvent::Mouse, rect.center(),
                                window->Tree().viewport()->mapToGlobal(rect.center()));
        QApplication::sendEvent(window->Tree().viewport(), &event);
    }
    static void Press(QDialog& dialog, const char* button) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);
    }
    static QStringList Rows(QDialog& dialog, const char* name, int firstColumn) {
        QStringList rows;
        const auto* table = dialog.findChild<QTableWidget*>(name);
        for (int row = 0; row < table->rowCount(); ++row) {
            QStringList cells;
            for (int column = firstColumn; column < table->columnCount(); ++column)
                cells << table->item(row, column)->text();
            rows << cells.join(u'|');
        }
        return rows;
    }
    void Answer(system::MessageResult answer) { surroundings.messageBoxes->answers.push_back(answer); }

    bool dialogShown_ = false;
};

}  // namespace vicenter::ui
