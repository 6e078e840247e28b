#pragma once

// Account sets in databases that are there already: what is missing is made, what is there is left as it is.

#include <iosfwd>
#include <string>
#include <vector>

#include "host/account_set.h"
#include "platform/ado/connection.h"

namespace vicenter::host {

struct SetupReport {
    int made = 0;        // tables, indexes and procedures
    int present = 0;     // were there
    bool fresh = false;  // the first rows have been written
};

// Makes tables, indexes and procedures that the database lacks, the first rows where the tables are new, and
// the demo ledger on request; all of it or nothing. With a script nothing is done: the batches go there, GO
// between them. Throws Error 58 when a demo ledger is asked for and rows are there already.
SetupReport CompleteAccountSet(ado::Connection& connection, const AccountSetOptions& options,
                               std::ostream* script = nullptr);

// Makes the tables that later versions of the component keep beside the templates, where they are missing:
// the history of templates. Throws Error 32811 for a database that is no account set.
SetupReport UpgradeAccountSet(ado::Connection& connection);

// What an account set lacks of what the scripts make, for users: tables, columns, indexes, procedures. Of
// tables and columns first; empty when nothing is missing. Reads only.
struct StructureFaults {
    std::vector<std::string> tables;  // with these the templates cannot be read
    std::vector<std::string> others;
};
StructureFaults FindStructureFaults(ado::Connection& connection);

struct CopyReport {
    int tables = 0;
    std::int64_t rows = 0;
};

// Copies all rows of one account set into another one, which holds none yet and whose tables are made where
// they are missing, and reads them back: what does not come back as it was is an error, and nothing is left
// of the copy.
CopyReport CopyAccountSet(ado::Connection& from, ado::Connection& to);

}  // namespace vicenter::host
