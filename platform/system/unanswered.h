#pragma once

// What a message box comes to that was closed without an answer.

#include "platform/system/surroundings.h"

namespace vicenter::system {

inline MessageResult UnansweredResult(MessageButtons buttons) {
    if (buttons == MessageButtons::YesNo) return MessageResult::No;
    return buttons == MessageButtons::OkCancel ? MessageResult::Cancel : MessageResult::Ok;
}

}  // namespace vicenter::system
