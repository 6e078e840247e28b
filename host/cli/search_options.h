#pragma once

// The options of the commands that go through all templates, and of the operation log. Each command notes
// itself in the options once it is parsed.

#include "host/cli/options.h"

namespace CLI {
class App;
}

namespace vicenter::host {

void AddLogCommand(CLI::App& app, CliOptions& options);
void AddReplaceCommand(CLI::App& app, CliOptions& options);
void AddSearchCommand(CLI::App& app, CliOptions& options);

}  // namespace vicenter::host
