#pragma once

// A window on a copy of the embedded demo account set, opened as a host opens it and driven by real events.

#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QToolButton>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "host/components/components.h"
#include "platform/office/excel_server.h"
#include "store/component_classes.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/host/demo_set.h"
#include "ui/window/center_commands.h"
#include "ui/window/vicenter_window.h"
#include "ui/window/window_factory.h"

namespace vicenter::ui {

namespace column = center::column;

class DemoSetTest : public ::testing::Test {
  protected:
    DemoSetTest() { Enter(1); }
    ~DemoSetTest() override {
        Close();
        entry::WindowFactory::SetProcess(nullptr);
    }

    void Enter(std::int32_t user) {
        store::RegisterComponentClasses();
        session = host::RegisterHostComponents({host::FileConnectString(file), user});
        office::RegisterExcelServer();
        entry::WindowFactory::SetProcess(
            std::make_shared<QtWindowFactory>(std::make_shared<CenterCommands>()));
    }

    // As a host opens it.
    void Open() {
        const QWidgetList before = QApplication::topLevelWidgets();
        automation::CreateObject("VelaVICenter.aplication")->Call("ShowVICenter");
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* candidate = qobject_cast<VICenterWindow*>(widget);
            if (candidate && !before.contains(widget)) window = candidate;
        }
        ASSERT_FALSE(window.isNull());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    void Close() {
        if (window) window->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    std::string Text(int row, int gridColumn) {
        return std::string(window->Presenter().Grid().Text(row, gridColumn));
    }
    void ClickTool(const char* key) {
        QTest::mouseClick(window->findChild<QToolButton*>(QString(key) + "Button"), Qt::LeftButton);
    }
    void ClickNode(const std::string& key) {
        window->Tree().setFocus();
        const QRect rect = window->Tree().visualItemRect(window->Tree().FindNode(key));
        QTest::mouseClick(window->Tree().viewport(), Qt::LeftButton, {}, rect.center());
    }
    void ClickCell(int row, int gridColumn) {
        const QModelIndex index = window->Grid().Model().IndexOf({row, gridColumn});
        window->Grid().setFocus();
        window->Grid().scrollTo(index);
        QTest::mouseClick(window->Grid().viewport(), Qt::LeftButton, {},
                          window->Grid().visualRect(index).center());
    }
    void Type(const char* text) {
        for (const char* c = text; *c; ++c)
            QTest::keyClick(QApplication::focusWidget(), *c);
    }
    void Key(Qt::Key key) {
        QTest::keyClick(QApplication::focusWidget(), key);
        QApplication::processEvents();
    }
    // Types one line by keyboard alone: number, explanation, direction, account.
    void TypeLine(int row, const char* number, const char* explanation, const char* direction,
                  const char* account) {
        ClickCell(row, column::kNo);
        Type(number);
        Key(Qt::Key_Tab);
        Type(explanation);
        Key(Qt::Key_Tab);
        Type(direction);
        Key(Qt::Key_Tab);
        Type(account);
        Key(Qt::Key_Tab);
    }
    // The messages shown since the last time.
    std::vector<std::string> TakeMessages() {
        std::vector<std::string> texts = surroundings.messageBoxes->Texts();
        surroundings.messageBoxes->shown.clear();
        return texts;
    }
    // What the account set itself holds.
    std::int64_t Number(const std::string& query) {
        return ado::OpenConnection(host::FileConnectString(file))
            ->Execute(query)
            ->Value(std::size_t{0})
            .ToInt64();
    }
    std::vector<std::string> Contents() {
        std::vector<std::string> texts;
        for (int row = 1; row <= window->Presenter().RowCount(); ++row) {
            for (int c = 1; c <= center::kColumnCount; ++c)
                texts.push_back(Text(row, c));
        }
        return texts;
    }

    fakes::FakeSurroundings surroundings;
    // Behind all that has the account set open: Windows deletes no file that is.
    host::test::TestFolder folder;
    std::string file = host::test::CopySet(folder);
    automation::ClassRegistry::Restore restore;
    host::HostSessionRef session;
    QPointer<VICenterWindow> window;
};

}  // namespace vicenter::ui
