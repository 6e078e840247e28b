#pragma once

// What can be done with an account set that is a file of this machine, whichever back end keeps it there:
// backing it up and looking for damage, while others work on it. Account sets on a server have none of this.
//
// Failures are automation::Error with a text for users; nothing has changed then. User-interface thread.

#include <optional>
#include <string>
#include <vector>

namespace vicenter::ado {

class FileCare {
  public:
    FileCare() = default;
    FileCare(const FileCare&) = delete;
    FileCare& operator=(const FileCare&) = delete;
    virtual ~FileCare() = default;

    // The file that the connect string names; nothing when its provider keeps none.
    virtual std::optional<std::string> FileOf(const std::string& connectString) const = 0;
    // Writes the account set as of one moment into a file of its own.
    virtual void BackUp(const std::string& file, const std::string& to) const = 0;
    // What is wrong with the file, for users; empty when nothing was found.
    virtual std::vector<std::string> FindDamage(const std::string& file) const = 0;
};

// Of the back end that keeps files, if one is registered; never destroyed.
const FileCare* RegisteredFileCare();
void RegisterFileCare(const FileCare& care);
// What that one says of a connect string; nothing without one.
std::optional<std::string> FileOf(const std::string& connectString);

}  // namespace vicenter::ado
