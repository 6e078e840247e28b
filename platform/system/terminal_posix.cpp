#include <termios.h>
#include <unistd.h>

#include "platform/system/terminal.h"

namespace vicenter::system {

namespace {

bool SetEcho(bool on) {
    termios settings{};
    if (tcgetattr(STDIN_FILENO, &settings) != 0) return false;
    const bool was = (settings.c_lflag & ECHO) != 0;
    settings.c_lflag = on ? settings.c_lflag | ECHO : settings.c_lflag & ~static_cast<tcflag_t>(ECHO);
    return tcsetattr(STDIN_FILENO, TCSAFLUSH, &settings) == 0 && was;
}

}  // namespace

HiddenTyping::HiddenTyping() : hidden_(SetEcho(false)) {}

HiddenTyping::~HiddenTyping() {
    if (hidden_) SetEcho(true);
}

}  // namespace vicenter::system
