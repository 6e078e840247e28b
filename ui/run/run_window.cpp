#include "ui/run/run_window.h"

#include <QApplication>
#include <QPointer>
#include <vector>

#include "ui/run/application.h"
#include "ui/run/display.h"
#include "ui/run/qt_surroundings.h"
#include "ui/run/window_call.h"
#include "ui/window/window_factory.h"

namespace vicenter::ui {

namespace {

// The factory of the process for the length of a scope.
class FactoryScope {
  public:
    explicit FactoryScope(std::shared_ptr<entry::WindowFactory> factory)
        : before_(entry::WindowFactory::Process()) {
        entry::WindowFactory::SetProcess(std::move(factory));
    }
    FactoryScope(const FactoryScope&) = delete;
    FactoryScope& operator=(const FactoryScope&) = delete;
    ~FactoryScope() { entry::WindowFactory::SetProcess(before_); }

  private:
    std::shared_ptr<entry::WindowFactory> before_;
};

void CloseAll() {
    std::vector<QPointer<QWidget>> windows;
    for (QWidget* window : QApplication::topLevelWidgets())
        windows.emplace_back(window);
    for (const QPointer<QWidget>& window : windows) {
        if (window) window->close();
    }
    DeleteClosed();
}

}  // namespace

int RunWindow(int argc, char** argv, const WindowRun& run) {
    PrepareDisplay();
    QApplication application(argc, argv);
    SetUpApplication(application);
    const system::SurroundingsScope surroundings(QtSurroundings(system::Surroundings::Current()));
    const FactoryScope factory(std::make_shared<QtWindowFactory>(run.commands));
    if (run.prepare) run.prepare();
    int code = 0;
    if (run.drive) {
        code = run.drive();
    } else {
        run.open();
        code = QApplication::exec();
    }
    CloseAll();
    return code;
}

}  // namespace vicenter::ui
