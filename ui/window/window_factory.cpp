#include "ui/window/window_factory.h"

#include <utility>

#include "ui/look/dialog_frame.h"
#include "ui/run/display.h"
#include "ui/window/vicenter_window.h"

namespace vicenter::ui {

QtWindowFactory::QtWindowFactory(std::shared_ptr<center::TemplateCommands> commands)
    : commands_(std::move(commands)) {}

void QtWindowFactory::OpenVICenter() {
    auto window = std::make_unique<VICenterWindow>(commands_);
    // On a small screen, or a large scale, it would end beyond the edge.
    if (!IsDisplayUnseen()) window->resize(window->size().boundedTo(RoomOnScreen(*window)));
    window->Open();
    static_cast<void>(window.release());  // deletes itself when it is closed
}

}  // namespace vicenter::ui
