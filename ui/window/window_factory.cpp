#include "ui/window/window_factory.h"

#include <utility>

#include "ui/window/vicenter_window.h"

namespace vicenter::ui {

QtWindowFactory::QtWindowFactory(std::shared_ptr<center::TemplateCommands> commands)
    : commands_(std::move(commands)) {}

void QtWindowFactory::OpenVICenter() {
    auto window = std::make_unique<VICenterWindow>(commands_);
    window->Open();
    static_cast<void>(window.release());  // deletes itself when it is closed
}

}  // namespace vicenter::ui
