#pragma once

// The arguments of the program, read into what they ask for.

#include <optional>
#include <string>
#include <vector>

#include "host/cli/cli.h"
#include "host/cli/options.h"

namespace vicenter::host {

// Nothing when the command is to run; else the exit code: help or the version has been given, or what is
// wrong has been told on `err`, without passwords.
std::optional<int> ReadCommandLine(const std::vector<std::string>& arguments, const CliStreams& streams,
                                   CliOptions& options);

}  // namespace vicenter::host
