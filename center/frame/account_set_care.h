#pragma once

// Backing up and checking the file of an embedded account set, from the window. What stands on the screen and
// has not been saved is no part of either. User-interface thread only.

#include <string>
#include <vector>

namespace vicenter::center {

class AccountSetCare {
  public:
    // The account set that the host property string names is a file of this machine.
    static bool IsOffered();
    // Asks for a file name, backs up, tells and logs the outcome. unsaved: the window holds edits of its own.
    // The file that was written; empty when none was.
    static std::string BackUp(bool unsaved);
    // Looks for damage and tells what was found.
    static void Verify();
};

}  // namespace vicenter::center
