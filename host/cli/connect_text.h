#pragma once

// Connect strings as a command line gives them: a password may come from elsewhere, so that it stands in no
// list of processes and in no shell's history.

#include <string>

#include "host/cli/context.h"

namespace vicenter::host {

// The demo set of this user, whether it has been made or not.
std::string DemoSetFile();

bool IsConnectString(const std::string& fileOrConnectString);

// Of a file, which must be there: throws Error 53 otherwise.
std::string ExistingFileConnectString(const std::string& file);

// The connect string with the password that the options name; as it is where it needs none. Throws Error when
// the password cannot be had.
std::string WithPassword(const CliContext& context, const std::string& connectString);

}  // namespace vicenter::host
