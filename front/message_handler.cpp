#include "front/message_handler.h"

#include <utility>

#include "platform/system/unanswered.h"

namespace vicenter::front {

using system::MessageButtons;
using system::MessageIcon;
using system::MessageResult;
using system::Surroundings;

namespace {

vic_int32 CodeOf(MessageButtons buttons) {
    switch (buttons) {
        case MessageButtons::OkCancel:
            return 1;
        case MessageButtons::YesNo:
            return 4;
        case MessageButtons::Ok:
            break;
    }
    return 0;
}

vic_int32 CodeOf(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::Critical:
            return 16;
        case MessageIcon::Question:
            return 32;
        case MessageIcon::Exclamation:
            return 48;
        case MessageIcon::Information:
            return 64;
        case MessageIcon::None:
            break;
    }
    return 0;
}

MessageResult ResultOf(vic_int32 answer, MessageButtons buttons) {
    switch (answer) {
        case 1:
            return MessageResult::Ok;
        case 2:
            return MessageResult::Cancel;
        case 6:
            return MessageResult::Yes;
        case 7:
            return MessageResult::No;
        default:
            break;
    }
    return system::UnansweredResult(buttons);
}

}  // namespace

MessageResult HostMessageBoxes::Show(const std::string& text, MessageButtons buttons, MessageIcon icon,
                                     const std::string& title) {
    return ResultOf(handler_(data_, text.c_str(), CodeOf(buttons), CodeOf(icon), title.c_str()), buttons);
}

void SetMessageHandler(vic_message_handler handler, void* data) {
    auto& boxes = Surroundings::Current().messageBoxes;
    if (const auto host = std::dynamic_pointer_cast<HostMessageBoxes>(boxes)) boxes = host->Behind();
    if (handler != nullptr) boxes = std::make_shared<HostMessageBoxes>(handler, data, boxes);
}

void ReplaceSurroundings(Surroundings replacement) {
    auto& current = Surroundings::Current();
    const auto host = std::dynamic_pointer_cast<HostMessageBoxes>(current.messageBoxes);
    current = std::move(replacement);
    if (!host) return;
    host->SetBehind(current.messageBoxes);
    current.messageBoxes = host;
}

}  // namespace vicenter::front
