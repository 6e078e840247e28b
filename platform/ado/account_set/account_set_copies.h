#pragma once

// Backing up, restoring and checking the file of an embedded account set, while others work on it.
//
// Failures are automation::Error with a text for users; nothing has changed then.

#include <optional>
#include <string>
#include <vector>

namespace vicenter::ado {

// The file of an embedded account set's connect string; nothing for any other provider.
std::optional<std::string> AccountSetFile(const std::string& connectString);

// Writes the account set as of one moment into a file of its own, with a digest of its content. An existing
// file is replaced only when it is such a backup and nobody has it open.
void BackUpAccountSet(const std::string& file, const std::string& to);

// Puts a backup's content in the place of an account set's, or into a new file. A backup in which damage is
// found is refused, and so is a target that is no account set. Whoever has the account set open goes on with
// the new content.
void RestoreAccountSet(const std::string& from, const std::string& file);

// What is wrong with the file's structure and content, for users, and with a backup's digest; empty when
// nothing was found.
std::vector<std::string> FindAccountSetDamage(const std::string& file);

}  // namespace vicenter::ado
