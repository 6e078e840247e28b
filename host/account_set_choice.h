#pragma once

// Which account set to open next, and as whom: the files that were opened last, and the users of the one that
// is chosen. The rules of a window without a window. Passwords are none of its business: account sets in
// files have none. User-interface thread.

#include <cstdint>
#include <string>
#include <vector>

namespace vicenter::host {

struct LedgerUser {
    std::int32_t id = 0;
    std::string name;
    std::string duty;
};

class AccountSetChoice {
  public:
    // folder: the user's data, where the list is kept.
    explicit AccountSetChoice(const std::string& folder);

    // The newest first; files that are gone are left out.
    const std::vector<std::string>& Recent() const { return recent_; }
    // Reads the users of that file; none, and a note, when it cannot be opened or is no account set.
    void Choose(const std::string& file);
    const std::string& File() const { return file_; }
    const std::vector<LedgerUser>& Users() const { return users_; }
    const std::string& Note() const { return note_; }
    // Opens a window of its own for that user, in a process of its own: an account set belongs to a process.
    // False, and a note, when it could not be started.
    bool Open(std::size_t user);

    // Keeps a file at the head of the list. A list that cannot be written is no error.
    static void Remember(const std::string& folder, const std::string& file);

  private:
    std::vector<std::string> recent_;
    std::string file_;
    std::vector<LedgerUser> users_;
    std::string note_;
};

}  // namespace vicenter::host
