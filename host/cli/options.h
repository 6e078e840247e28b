#pragma once

// What a command line asks for.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace vicenter::host {

enum class CliCommand {
    Window,
    AccountSetNew,
    AccountSetCopy,
    AccountSetBackup,
    AccountSetRestore,
    AccountSetVerify,
    AccountSetUpgrade,
    List,
    Show,
    New,
    Rename,
    Delete,
    Check,
    Log,
    History,
    Restore,
    Save,
    Sql,
    Export,
    Import,
    Generate,
    Drivers
};

struct GenerateOptions {
    std::string year;
    std::string period;
    std::string from;   // empty: the period's lowest number
    std::string to;     // empty: its highest
    std::string group;  // empty: all groups
    bool includeSystem = false;
    std::vector<int> fields;  // grid columns of the optional fields
};

// Which entries of the operation log; empty: all.
struct LogOptions {
    std::string from;  // yyyy-mm-dd, that day included
    std::string to;
    std::string user;
    std::string kind;          // 1 asked for, 2 closed, 3 done, 4 failed
    std::string templateName;  // named in the text
};

struct CliOptions {
    CliCommand command = CliCommand::Window;
    std::string accountSet;        // --account-set
    std::string connectString;     // --connect
    std::string passwordVariable;  // --password-env
    std::string passwordFile;      // --password-file
    bool askPassword = false;      // --ask-password
    std::int32_t userId = 1;
    bool json = false;
    std::optional<bool> answer;  // --yes, --no

    std::string name;     // of the template
    std::string newName;  // rename
    std::string target;   // account-set copy, backup, restore: where to
    std::string file;     // account-set …, sql, export, import
    bool demo = false;
    bool dryRun = false;
    int vouchers = 0;
    std::string version;          // history, restore: of a template
    std::optional<int> keepDays;  // history: the rule
    std::optional<int> keepVersions;
    bool all = false;                   // check: every template
    bool deleted = false;               // history: of templates that are gone
    std::string windowFile;              // window: the account set, as a desktop names it
    std::string sessionFolder;          // window --offscreen-session
    std::string exportFolder;           // export --all
    std::string excelVersion = "16.0";  // of the workbook server; "none": not installed
    GenerateOptions generate;
    LogOptions log;
};

}  // namespace vicenter::host
