#include "entry/message_box.h"

namespace vicenter::entry {

namespace {

system::MessageResult Show(const std::string& text, system::MessageButtons buttons, const char* title) {
    return system::Surroundings::Current().messageBoxes->Show(text, buttons, system::MessageIcon::Information,
                                                              title);
}

}  // namespace

void Tell(const std::string& text, const char* title) {
    Show(text, system::MessageButtons::Ok, title);
}

system::MessageResult Ask(const std::string& text, system::MessageButtons buttons) {
    return Show(text, buttons, kMessageTitle);
}

}  // namespace vicenter::entry
