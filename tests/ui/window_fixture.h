#pragma once

// A window on a small scripted ledger, driven by real key and mouse events.

#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QToolButton>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/ui/scripted_ledger.h"
#include "ui/window/vicenter_window.h"

namespace vicenter::ui {

using system::MessageResult;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::ScriptedLedger;

class WindowTest : public ::testing::Test {
  protected:
    void TearDown() override { Close(); }

    VICenterWindow& Open() {
        window = new VICenterWindow;
        window->Open();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        QApplication::processEvents();
        return *window;
    }
    void Close() {
        if (window) window->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    GridView& Grid() { return window->Grid(); }
    std::string Text(int row, int column) {
        return std::string(window->Presenter().Grid().Text(row, column));
    }
    bool Enabled(const char* key) { return window->findChild<QAction*>(key)->isEnabled(); }
    void ClickTool(const char* key) {
        QTest::mouseClick(window->findChild<QToolButton*>(QString(key) + "Button"), Qt::LeftButton);
    }
    QPoint NodeAt(const char* key) {
        return window->Tree().visualItemRect(window->Tree().FindNode(key)).center();
    }
    void ClickNode(const char* key) {
        window->Tree().setFocus();
        QTest::mouseClick(window->Tree().viewport(), Qt::LeftButton, {}, NodeAt(key));
    }
    // Moves the mouse over a node with the left button held.
    void DragOverNode(const char* key) {
        const QPoint at = NodeAt(key);
        QMouseEvent move(QEvent::MouseMove, at, window->Tree().viewport()->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(window->Tree().viewport(), &move);
    }
    void AskForMenuAt(const char* key) {
        const QPoint at = NodeAt(key);
        QWidget* port = window->Tree().viewport();
        QTest::mouseClick(port, Qt::RightButton, {}, at);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, port->mapToGlobal(at));
        QApplication::sendEvent(port, &event);
    }
    void DoubleClickNode(const char* key) {
        ClickNode(key);
        QTest::mouseDClick(window->Tree().viewport(), Qt::LeftButton, {}, NodeAt(key));
    }
    void ClickCell(int row, int column) {
        Grid().setFocus();
        const QModelIndex index = Grid().Model().IndexOf({row, column});
        QTest::mouseClick(Grid().viewport(), Qt::LeftButton, {}, Grid().visualRect(index).center());
    }
    QWidget* Focused() { return QApplication::focusWidget(); }
    void Type(const QString& text) {
        for (const QChar c : text)
            QTest::keyClick(Focused(), c.toLatin1());
    }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(Focused(), key, modifiers);
        QApplication::processEvents();
    }
    // Types another name into the label that is being edited, and sees it written and shown.
    void RenameTo(const std::string& name, const std::string& id) {
        ASSERT_TRUE(window->Tree().IsEditingLabel());
        qobject_cast<QLineEdit*>(Focused())->selectAll();
        Type(QString::fromStdString(name));
        Key(Qt::Key_Return);
        EXPECT_EQ(ledger->Sent("update t_VchTemplate set"),
                  "update t_VchTemplate set FName = '" + name + "' where FID = " + id);
        EXPECT_EQ(window->Tree().FindNode("detail-" + id)->text(0).toStdString(), name);
    }
    std::vector<std::string> Messages() { return ledger->surroundings.messageBoxes->Texts(); }

    std::unique_ptr<ScriptedLedger> ledger = std::make_unique<ScriptedLedger>();
    QPointer<VICenterWindow> window;
};

}  // namespace vicenter::ui
