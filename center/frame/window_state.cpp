#include "center/frame/window_state.h"

#include "entry/message_box.h"

namespace vicenter::center {

void Tell(const std::string& text) {
    entry::Tell(text);
}

system::MessageResult Ask(const std::string& text, system::MessageButtons buttons) {
    return entry::Ask(text, buttons);
}

}  // namespace vicenter::center
