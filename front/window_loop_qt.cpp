// The windows on Qt. The application object is made when the first window is asked for, unless the host has
// one: a host with a Qt loop of its own needs nothing from here, one without pumps events through it.

#include <QApplication>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "automation/error.h"
#include "entry/window_factory.h"
#include "front/kept_loaded.h"
#include "front/lazy_message_boxes.h"
#include "front/message_handler.h"
#include "front/window_loop.h"
#include "platform/system/surroundings.h"
#include "ui/run/application.h"
#include "ui/run/display.h"
#include "ui/run/qt_surroundings.h"
#include "ui/run/window_call.h"
#include "ui/window/center_commands.h"
#include "ui/window/vicenter_window.h"
#include "ui/window/window_factory.h"

namespace vicenter::front {

using automation::Error;

namespace {

constexpr const char* kSource = "VelaVICenter";

// Windows live on the thread of the application object alone, also when that thread has ended.
bool IsOnWindowsThread() {
    const QCoreApplication* application = QCoreApplication::instance();
    return application == nullptr || application->thread() == QThread::currentThread();
}

std::vector<QPointer<ui::VICenterWindow>> Windows() {
    std::vector<QPointer<ui::VICenterWindow>> windows;
    if (qApp == nullptr || !IsOnWindowsThread()) return windows;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* window = dynamic_cast<ui::VICenterWindow*>(widget);
        if (window != nullptr && window->isVisible() && !window->IsClosed()) windows.emplace_back(window);
    }
    return windows;
}

class QtWindowLoop : public WindowLoop {
  public:
    QtWindowLoop();
    ~QtWindowLoop() override;

    void Process(int milliseconds) override {
        Ensure();
        if (milliseconds <= 0) {
            Pump(QEventLoop::AllEvents);
        } else {
            QTimer limit;
            limit.setSingleShot(true);
            limit.start(milliseconds);
            Pump(QEventLoop::WaitForMoreEvents);
        }
    }

    void Run() override {
        Ensure();
        while (OpenWindows() != 0)
            Pump(QEventLoop::WaitForMoreEvents);
    }

    std::size_t OpenWindows() const override { return Windows().size(); }

    void CloseAll() override {
        for (const QPointer<ui::VICenterWindow>& window : Windows()) {
            if (window) window->close();
        }
        DeleteClosed();
    }

    bool IsUnderWay() const override { return pumping_ != 0 || ui::WindowCall::IsUnderWay(); }

    // The application object: the host's, or one made here.
    void Ensure();
    // Somebody would see a box that is shown now.
    bool CanShow() const;

  private:
    void Pump(QEventLoop::ProcessEventsFlags which) {
        ++pumping_;
        QCoreApplication::processEvents(which);
        --pumping_;
        DeleteClosed();
    }
    // Windows delete themselves by a posted event, which pumping alone never delivers.
    static void DeleteClosed() {
        if (IsOnWindowsThread()) ui::DeleteClosed();
    }

    int argc_ = 1;
    char name_[9] = "vicenter";
    char* argv_[2] = {name_, nullptr};
    // Behind the application, whose code must not go before it.
    std::optional<KeptLoaded> loaded_;
    std::unique_ptr<QApplication> own_;
    std::shared_ptr<entry::WindowFactory> factory_;  // while it is the process's
    bool ready_ = false;
    int pumping_ = 0;
};

// In place from the start; makes the application object when the first window is asked for.
class LazyWindowFactory : public entry::WindowFactory {
  public:
    explicit LazyWindowFactory(QtWindowLoop& loop) : loop_(loop) {}
    void OpenVICenter() override {
        loop_.Ensure();
        ui::QtWindowFactory(commands_).OpenVICenter();
    }

  private:
    QtWindowLoop& loop_;
    std::shared_ptr<center::TemplateCommands> commands_ = std::make_shared<ui::CenterCommands>();
};

QtWindowLoop::QtWindowLoop() {
    system::Surroundings surroundings = system::Surroundings::Current();
    surroundings.messageBoxes = std::make_shared<LazyMessageBoxes>(
        [this]() -> std::shared_ptr<system::MessageBoxes> {
            if (!CanShow()) return nullptr;
            Ensure();
            return std::make_shared<ui::QtMessageBoxes>();
        },
        surroundings.messageBoxes);
    ReplaceSurroundings(std::move(surroundings));
    if (entry::WindowFactory::Process()) return;  // the host has windows of its own making
    factory_ = std::make_shared<LazyWindowFactory>(*this);
    entry::WindowFactory::SetProcess(factory_);
}

QtWindowLoop::~QtWindowLoop() {
    if (factory_ && entry::WindowFactory::Process() == factory_) entry::WindowFactory::SetProcess(nullptr);
    if (!ready_) return;
    if (!IsOnWindowsThread()) {
        static_cast<void>(own_.release());  // nobody can end it any more
        return;
    }
    for (const QPointer<ui::VICenterWindow>& window : Windows())
        delete window;
    DeleteClosed();
}

bool QtWindowLoop::CanShow() const {
    if (!IsOnWindowsThread()) return false;
    if (ready_) return true;
    if (QCoreApplication::instance() == nullptr) return ui::HasDisplay() && !ui::IsDisplayUnseen();
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

void QtWindowLoop::Ensure() {
    if (!IsOnWindowsThread()) {
        throw Error(automation::error_number::kCannotCreateObject,
                    "Windows are shown on the thread of the application object alone.", kSource);
    }
    if (ready_) return;
    if (QCoreApplication::instance() == nullptr) {
        if (!ui::HasDisplay()) {  // Qt would end the process
            throw Error(automation::error_number::kCannotCreateObject,
                        "No display is available to show the template center.", kSource);
        }
        loaded_.emplace();
        ui::PrepareDisplay();
        own_ = std::make_unique<QApplication>(argc_, argv_);
        QApplication::setQuitOnLastWindowClosed(false);
        ui::SetUpApplication(*own_);
    }
    if (qobject_cast<QApplication*>(QCoreApplication::instance()) == nullptr) {
        throw Error(automation::error_number::kCannotCreateObject,
                    "The host's application object cannot show windows.", kSource);
    }
    ReplaceSurroundings(ui::QtSurroundings(system::Surroundings::Current()));
    ready_ = true;
}

}  // namespace

std::unique_ptr<WindowLoop> WindowLoop::Create() {
    return std::make_unique<QtWindowLoop>();
}

}  // namespace vicenter::front
