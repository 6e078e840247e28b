#pragma once

// The options of export, import and generate, bound to a CliOptions.

namespace CLI {
class App;
}

namespace vicenter::host {

struct CliOptions;

// Each adds its command to the program's.
void AddExportCommand(CLI::App& app, CliOptions& options);
void AddImportCommand(CLI::App& app, CliOptions& options);
void AddGenerateCommand(CLI::App& app, CliOptions& options);

}  // namespace vicenter::host
