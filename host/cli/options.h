#pragma once

// What a command line asks for.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "center/search/template_search.h"
#include "store/operation_log.h"

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
    Replace,
    Search,
    Drivers,
    Doctor,
    Print
};

struct GenerateOptions {
    std::string year;
    std::string period;
    std::string from;   // empty: the period's lowest number
    std::string to;     // empty: its highest
    std::string group;  // empty: all groups
    bool includeSystem = false;
    std::vector<int> fields;           // grid columns of the optional fields
    std::vector<std::string> without;  // template numbers that are left out
};

// One code for another in all templates.
struct ReplaceOptions {
    std::string column;  // account, items, settlement, currency, unit
    std::string from;
    std::string to;
    bool standard = false;  // in the standard template as well
    bool undo = false;      // the last replacement taken back instead
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
    std::string number;   // print: of the one pattern
    std::string newName;  // rename
    std::string target;   // account-set copy, backup, restore: where to
    std::string file;     // account-set …, sql, export, import
    bool demo = false;
    bool dryRun = false;
    bool tidy = false;       // import: rows above the header and blank rows are passed over
    std::string markedCopy;  // import --marked-copy
    std::string report;      // import --report
    int vouchers = 0;
    std::string version;          // history, restore: of a template
    std::optional<int> keepDays;  // history: the rule
    std::optional<int> keepVersions;
    bool all = false;                   // check: every template
    bool deleted = false;               // history: of templates that are gone
    std::string windowFile;             // window: the account set, as a desktop names it
    std::string sessionFolder;          // window --offscreen-session
    std::string exportFolder;           // export --all
    std::string emptyWorkbook;          // export --empty
    std::string excelVersion = "16.0";  // of the workbook server; "none": not installed
    GenerateOptions generate;
    store::LogFilter log;
    center::SearchWish search;
    ReplaceOptions replace;
};

}  // namespace vicenter::host
