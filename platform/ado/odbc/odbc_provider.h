#pragma once

// Account sets on SQL Server, through whichever ODBC driver is installed. No ODBC header is needed here.
//
// Connect strings as hosts write them: Provider=SQLOLEDB…, MSOLEDBSQL…, SQLNCLI… or MSDASQL with OLE DB's
// keywords, or Driver=/DSN= with the driver's. Beside those
//   Transactions=batch    a batch is one unit (default); none: each statement stands alone
//   Command Timeout=<s>   ends a statement that takes longer (default: none)
//   Lock Timeout=<ms>     how long to wait for another user's locks (default: the server's)
//   Pooling=no            connects anew each time; otherwise connections are kept and used again
// Process-wide, user-interface thread.

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace vicenter::ado {

// Registers the providers. Calling it again does no harm.
void RegisterOdbcProviders();

struct OdbcDriver {
    std::string name;
    bool forSqlServer = false;
    bool chosen = false;  // taken where a connect string names none
};

// The drivers that are registered on this machine, the best one for SQL Server first.
std::vector<OdbcDriver> OdbcDrivers();

// What to do when there is none.
std::string NoOdbcDriverText();

// Connections that are kept for their next use.
struct OdbcPooling {
    std::size_t most = 8;
    std::chrono::milliseconds pause{1'000};          // after which one is asked before it is used again
    std::chrono::milliseconds longestIdle{120'000};  // after which it is closed
};

OdbcPooling CurrentOdbcPooling();
void SetOdbcPooling(const OdbcPooling& pooling);

// Closes the kept connections, for instance before a database is dropped.
void CloseIdleOdbcConnections();

}  // namespace vicenter::ado
