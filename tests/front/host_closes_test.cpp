// A host that closes the windows, or shuts the library down, in the middle of what a window asks it: in every
// call in turn that real clicks and keys lead to.

#include <QAbstractItemView>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDialog>
#include <QMenu>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>

#include <unistd.h>

#include "tests/front/front_testing.h"

namespace vicenter::front {
namespace {

// All components of a host whose members do nothing but what a test wants done.
class Ledger {
  public:
    explicit Ledger(const std::string& file)
        : properties_("UserID=1;ConnectString={Provider=VelaAccountSet;Data Source=" + file + "};") {
        for (const char* progId : {"VelaPropsMgr.ShareProps", "VelaEBSBase.SecurityInfo",
                                   "VelaEBCGLView.GLData", "VelaEBCGLView.GLView", "VelaVchExp.ExpView"}) {
            vic_class definition{};
            definition.size = sizeof definition;
            definition.type_name = progId;
            definition.data = this;
            definition.create = [](void* data, void** instance) -> vic_status {
                *instance = data;
                return 0;
            };
            definition.invoke = [](void* instance, vic_kind, const char* name, vic_variant*, size_t,
                                   vic_variant* result) {
                return static_cast<Ledger*>(instance)->Answer(name, *result);
            };
            EXPECT_EQ(vic_register_class(progId, &definition), 0);
            progIds_.emplace_back(progId);
        }
        EXPECT_EQ(vic_set_message_handler(
                      [](void* data, const char*, vic_int32, vic_int32, const char*) -> vic_int32 {
                          static_cast<Ledger*>(data)->Happens("MessageBox");
                          return 6;
                      },
                      this),
                  0);
    }
    Ledger(const Ledger&) = delete;
    Ledger& operator=(const Ledger&) = delete;
    ~Ledger() {
        vic_set_message_handler(nullptr, nullptr);
        for (const std::string& progId : progIds_)
            vic_unregister_class(progId.c_str());
    }

    // From here on: `act` in the call of that number.
    void ActIn(int call, std::function<void()> act) {
        calls = 0;
        at_ = call;
        act_ = std::move(act);
    }

    int calls = 0;
    std::map<std::string, int> acted;  // by member, how often

  private:
    vic_status Answer(const std::string& name, vic_variant& result) {
        Happens(name);
        if (name == "GetProperty") return vic_set_text(&result, properties_.data(), properties_.size());
        result.type = VIC_BOOLEAN;
        result.value.boolean = -1;
        if (name == "AccessCheck" || name == "WriteLog") return 0;
        return vic_raise(1004, "nothing to look up", "Ledger");
    }
    void Happens(const std::string& name) {
        if (++calls != at_) return;
        ++acted[name];
        act_();
    }

    std::string properties_;
    std::vector<std::string> progIds_;
    int at_ = 0;
    std::function<void()> act_;
};

class HostCloses : public FrontTest {
  protected:
    static void SetUpTestSuite() {
        folder_ = std::filesystem::temp_directory_path() / ("vicenter-closes-" + std::to_string(getpid()));
        std::filesystem::create_directories(folder_);
        ASSERT_EQ(
            std::system(
                ("'" VICENTER_PROGRAM "' account-set new '" + File("demo") + "' --demo > /dev/null").c_str()),
            0);
    }
    static void TearDownTestSuite() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    static std::string File(const std::string& name) { return (folder_ / (name + ".vas")).string(); }
    // A copy of its own, so that nothing of another test is in it.
    static std::string NewSet() {
        static int number = 0;
        const std::string file = File(std::to_string(++number));
        std::filesystem::copy_file(File("demo"), file);
        return file;
    }

    static QWidget* Window() {
        if (qApp == nullptr) return nullptr;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QLatin1String("frmVICenter") && widget->isVisible()) return widget;
        }
        return nullptr;
    }
    static std::size_t OpenWindows() {
        std::size_t count = 99;
        EXPECT_EQ(vic_open_windows(&count), 0);
        return count;
    }

    // What a user does, a step at a time; the window may be gone behind each.
    static void Click(const char* tool) {
        if (QWidget* window = Window()) {
            QTest::mouseClick(window->findChild<QToolButton*>(QString::fromLatin1(tool) + "Button"),
                              Qt::LeftButton);
        }
    }
    static QWidget* Port(const char* view) {
        QWidget* window = Window();
        return window == nullptr
                   ? nullptr
                   : window->findChild<QAbstractItemView*>(QString::fromLatin1(view))->viewport();
    }
    static void ClickAt(const char* view, const QPoint& at) {
        if (QWidget* port = Port(view)) QTest::mouseClick(port, Qt::LeftButton, {}, at);
    }
    static void Keys(const char* text) {
        for (const char* c = text; *c != '\0'; ++c) {
            if (Window() == nullptr || QApplication::focusWidget() == nullptr) return;
            if (*c == '\t') {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            } else {
                QTest::keyClick(QApplication::focusWidget(), *c);
            }
        }
    }
    static void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        if (Window() != nullptr && QApplication::focusWidget() != nullptr)
            QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }

    // A morning's work in short: a node, a line with look-ups, save, new template with its name, delete.
    static void Work() {
        vic_process_events(1);
        ClickAt("trv", {60, 40});
        ClickAt("vsEntrys", {20, 60});
        Keys("7\tabc\tj\t");
        Key(Qt::Key_F7);
        Keys("1001\t");
        QTimer::singleShot(0, [] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) dialog->reject();
        });
        Key(Qt::Key_F9);
        Key(Qt::Key_Z, Qt::ControlModifier);
        Click("mnuSave");
        ClickAt("trv", {60, 12});
        vic_process_events(0);
        Click("mnuNew");
        Keys("xyz");
        Key(Qt::Key_Return);
        ClickAt("trv", {60, 12});
        Key(Qt::Key_Delete);
        Click("mnuQuit");
        vic_process_events(0);
    }

    static void Show() {
        Handle application("VelaVICenter.aplication");
        ASSERT_EQ(application.Call("ShowVICenter"), 0) << vic_error_description();
    }

    static std::filesystem::path folder_;
};

std::filesystem::path HostCloses::folder_;

TEST_F(HostCloses, InEveryCallOfTheWindowInTurn) {
    std::map<std::string, int> acted;
    int in = 1;
    for (bool reached = true; reached; ++in) {
        Ledger ledger(NewSet());
        ledger.ActIn(in, [] {
            EXPECT_EQ(vic_close_windows(), 0);
            EXPECT_EQ(vic_process_events(0), 0);
            EXPECT_EQ(vic_run(), 0);
            EXPECT_EQ(OpenWindows(), 0U);
        });
        Show();
        Work();
        reached = ledger.calls >= in;
        for (const auto& [name, times] : ledger.acted)
            acted[name] += times;
        vic_close_windows();
        EXPECT_EQ(OpenWindows(), 0U);
    }
    // All kinds of calls have been met.
    for (const char* name : {"GetProperty", "WriteLog", "AccountLookup", "MessageBox"})
        EXPECT_GT(acted[name], 0) << name;
    EXPECT_GT(in, 30);
}

// A host with a loop of its own: no call of the library's functions is under way when it is asked.
TEST_F(HostCloses, AShutdownInACallOfTheWindowIsRefusedAndTheWindowStays) {
    Ledger ledger(NewSet());
    Show();
    vic_process_events(1);
    std::vector<vic_status> answers;
    ledger.ActIn(1, [&] { answers.push_back(vic_shutdown()); });
    Click("mnuSave");
    EXPECT_EQ(answers, std::vector<vic_status>{VIC_ERROR_INVALID_ARGUMENT});
    EXPECT_EQ(OpenWindows(), 1U);
    ledger.ActIn(1, [&] {
        EXPECT_EQ(vic_close_windows(), 0);
        answers.push_back(vic_shutdown());
    });
    Click("mnuSave");
    EXPECT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers.back(), VIC_ERROR_INVALID_ARGUMENT);
    EXPECT_EQ(OpenWindows(), 0U);
}

// As when the frame closes the window, its profile and its log are written, once the command has ended.
TEST_F(HostCloses, WhatTheWindowWritesAtItsEndComesBehindTheCommand) {
    Ledger ledger(NewSet());
    Show();
    vic_process_events(1);
    int logged = 0;
    ledger.ActIn(1, [&] {
        EXPECT_EQ(vic_close_windows(), 0);
        logged = ledger.calls;
    });
    Click("mnuSave");
    EXPECT_GT(ledger.calls, logged);  // the profile, and that it was closed
}

// Menus and boxes stand on the window with loops of their own.
TEST_F(HostCloses, WhileAMenuIsOpen) {
    Ledger ledger(NewSet());
    Show();
    vic_process_events(1);
    QTimer::singleShot(0, [] {
        EXPECT_NE(QApplication::activePopupWidget(), nullptr);
        EXPECT_EQ(vic_close_windows(), 0);
        EXPECT_EQ(vic_process_events(0), 0);
    });
    QWidget* port = Port("vsEntrys");
    QContextMenuEvent event(QContextMenuEvent::Mouse, {20, 60}, port->mapToGlobal(QPoint(20, 60)));
    QApplication::sendEvent(port, &event);
    EXPECT_EQ(OpenWindows(), 0U);
}

TEST_F(HostCloses, WhileADialogIsOpen) {
    Ledger ledger(NewSet());
    Show();
    vic_process_events(1);
    QTimer::singleShot(0, [] {
        EXPECT_NE(QApplication::activeModalWidget(), nullptr);
        EXPECT_EQ(vic_close_windows(), 0);
        EXPECT_EQ(vic_process_events(0), 0);
    });
    Click("mnuPrcFind");
    EXPECT_EQ(OpenWindows(), 0U);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(HostCloses, WhileABoxAsks) {
    Ledger ledger(NewSet());
    vic_set_message_handler(nullptr, nullptr);
    Show();
    vic_process_events(1);
    ClickAt("vsEntrys", {20, 60});
    Keys("7\t");
    QTimer::singleShot(0, [] {
        EXPECT_NE(QApplication::activeModalWidget(), nullptr);
        EXPECT_EQ(vic_close_windows(), 0);
        EXPECT_EQ(vic_process_events(0), 0);
    });
    Click("mnuNew");  // are the changes to be saved
    EXPECT_EQ(OpenWindows(), 0U);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

}  // namespace
}  // namespace vicenter::front
