#pragma once

// Message boxes for what a host is told before its first window: whoever can show them is looked for when
// there is something to tell. User-interface thread.

#include <functional>
#include <memory>
#include <utility>

#include "platform/system/surroundings.h"

namespace vicenter::front {

class LazyMessageBoxes : public system::MessageBoxes {
  public:
    // Makes the boxes that are to show a message; none where nobody would see it. May put others in the place
    // of this object.
    using Finder = std::function<std::shared_ptr<system::MessageBoxes>()>;

    LazyMessageBoxes(Finder find, std::shared_ptr<system::MessageBoxes> otherwise)
        : find_(std::move(find)), otherwise_(std::move(otherwise)) {}

    system::MessageResult Show(const std::string& text, system::MessageButtons buttons,
                               system::MessageIcon icon, const std::string& title) override {
        const Finder find = find_;
        const std::shared_ptr<system::MessageBoxes> otherwise = otherwise_;
        const std::shared_ptr<system::MessageBoxes> found = find();
        return (found ? found : otherwise)->Show(text, buttons, icon, title);
    }

  private:
    Finder find_;
    std::shared_ptr<system::MessageBoxes> otherwise_;
};

}  // namespace vicenter::front
