#pragma once

// A host's function in place of the message boxes. User-interface thread.

#include <memory>
#include <string>
#include <utility>

#include "front/include/vicenter/vicenter.h"
#include "platform/system/surroundings.h"

namespace vicenter::front {

class HostMessageBoxes : public system::MessageBoxes {
  public:
    HostMessageBoxes(vic_message_handler handler, void* data, std::shared_ptr<system::MessageBoxes> behind)
        : handler_(handler), data_(data), behind_(std::move(behind)) {}
    system::MessageResult Show(const std::string& text, system::MessageButtons buttons,
                               system::MessageIcon icon, const std::string& title) override;

    // The message boxes that the function stands in for.
    const std::shared_ptr<system::MessageBoxes>& Behind() const { return behind_; }
    void SetBehind(std::shared_ptr<system::MessageBoxes> behind) { behind_ = std::move(behind); }

  private:
    vic_message_handler handler_;
    void* data_;
    std::shared_ptr<system::MessageBoxes> behind_;
};

// Puts the function in place in the process's surroundings; none puts the message boxes back.
void SetMessageHandler(vic_message_handler handler, void* data);
// Puts surroundings in place and keeps a function that is set.
void ReplaceSurroundings(system::Surroundings replacement);

}  // namespace vicenter::front
