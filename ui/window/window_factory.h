#pragma once

// Opens the component's windows on Qt: registered with entry::WindowFactory by whoever runs a Qt event loop.
// Needs a QApplication. User-interface thread.

#include <memory>

#include "center/frame/template_commands.h"
#include "entry/window_factory.h"

namespace vicenter::ui {

class QtWindowFactory : public entry::WindowFactory {
  public:
    // The commands that live in other folders; without them those tools do nothing. Shared by all windows.
    explicit QtWindowFactory(std::shared_ptr<center::TemplateCommands> commands = nullptr);
    void OpenVICenter() override;

  private:
    std::shared_ptr<center::TemplateCommands> commands_;
};

}  // namespace vicenter::ui
