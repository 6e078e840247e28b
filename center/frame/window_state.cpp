#include "center/frame/window_state.h"

#include "entry/sql_text.h"

namespace vicenter::center {

void Tell(const std::string& text) {
    Ask(text, system::MessageButtons::Ok);
}

system::MessageResult Ask(const std::string& text, system::MessageButtons buttons) {
    return system::Surroundings::Current().messageBoxes->Show(text, buttons, system::MessageIcon::Information,
                                                              entry::kMessageTitle);
}

}  // namespace vicenter::center
