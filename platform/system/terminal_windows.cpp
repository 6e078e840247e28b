#include "platform/system/terminal.h"
#include "platform/system/windows_text.h"

namespace vicenter::system {

namespace {

bool SetEcho(bool on) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD mode = 0;
    if (!GetConsoleMode(input, &mode)) return false;
    const DWORD changed =
        on ? mode | ENABLE_ECHO_INPUT | ENABLE_LINE_INPUT : mode & ~static_cast<DWORD>(ENABLE_ECHO_INPUT);
    return SetConsoleMode(input, changed) && (mode & ENABLE_ECHO_INPUT) != 0;
}

}  // namespace

HiddenTyping::HiddenTyping() : hidden_(SetEcho(false)) {}

HiddenTyping::~HiddenTyping() {
    if (hidden_) SetEcho(true);
}

}  // namespace vicenter::system
