#pragma once

// What a person types at the terminal without its being shown, for passwords. Does nothing where standard
// input is no terminal.

namespace vicenter::system {

// Typing is hidden for as long as this lives.
class HiddenTyping {
  public:
    HiddenTyping();
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;
    ~HiddenTyping();

  private:
    bool hidden_ = false;
};

}  // namespace vicenter::system
