#pragma once

// What the window itself remembers of its user on this machine: how he likes to work. What the host keeps,
// its account set among it, knows nothing of it.
//
// One small file in the user's data folder, a line "user.key=value" each. Read anew at every question, so
// that windows side by side do not undo each other. Nothing is written for a window without a user, and a
// file that cannot be read or written is no error: what is not remembered has its default. User-interface
// thread.

#include <map>
#include <string>
#include <string_view>

namespace vicenter::center {

class OwnSettings {
  public:
    // Before that there is no user.
    void Open(const std::string& userId) { userId_ = userId; }

    // Empty when nothing has been put.
    std::string Text(std::string_view key) const;
    bool IsOn(std::string_view key, bool otherwise) const;
    // Keys and values without line ends; an empty value is forgotten.
    void Put(std::string_view key, const std::string& value) const;
    void PutOn(std::string_view key, bool on) const { Put(key, on ? "1" : "0"); }

  private:
    std::string userId_;
};

}  // namespace vicenter::center
