#pragma once

// What a command line asks for.

#include <cstdint>
#include <optional>
#include <string>

namespace vicenter::host {

enum class CliCommand { Window, AccountSetNew, List, Show, New, Rename, Delete, Check, Log, Save, Sql };

struct CliOptions {
    CliCommand command = CliCommand::Window;
    std::string accountSet;     // --account-set
    std::string connectString;  // --connect
    std::int32_t userId = 1;
    bool json = false;
    std::optional<bool> answer;  // --yes, --no

    std::string name;     // of the template
    std::string newName;  // rename
    std::string file;     // account-set new, sql
    bool demo = false;
    int vouchers = 0;
    std::string sessionFolder;  // window --offscreen-session
};

}  // namespace vicenter::host
