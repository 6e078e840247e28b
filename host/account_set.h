#pragma once

// Creates account sets: schema, procedures and the first rows, by the T-SQL scripts of host/accountset/.
// Works on any connection, so that the same scripts prepare an account set of whatever server.

#include <functional>
#include <string>
#include <string_view>

#include "platform/ado/connection.h"

namespace vicenter::host {

// Makes the account-set back ends of this build known. Any number of calls.
void RegisterProviders();

// Runs a script batch by batch. An error names the script and the line within it on its chain.
void RunScript(ado::Connection& connection, std::string_view script, const std::string& name);

// An empty database becomes an account set without ledger data.
void CreateAccountSet(ado::Connection& connection);

// The connect string of an account set in a file.
std::string FileConnectString(const std::string& file);

struct AccountSetOptions {
    bool demo = false;
    int vouchers = 0;  // at least so many in the demo ledger
};

// Makes a new file: `fill` gets a connection to an empty account set beside it under a temporary name, which
// is moved to its place when whole. Throws Error 58 when the file exists, 76 when its folder does not.
void MakeAccountSetFile(const std::string& file,
                        const std::function<void(ado::Connection& connection)>& fill);

// Makes an account set in a new file: written beside it under a temporary name and moved there when whole, so
// that a process that ends half-way leaves nothing behind that looks like an account set.
// Throws Error 58 when the file exists, 76 when its folder does not.
void CreateAccountSetFile(const std::string& file, const AccountSetOptions& options);

}  // namespace vicenter::host
