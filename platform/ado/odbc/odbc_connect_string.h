#pragma once

// A host's connect string, understood: keywords of OLE DB and of ODBC mapped to one set of values, and the
// string for a driver made of them. Plain values; knows no driver.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vicenter::ado {

struct OdbcSettings {
    std::string provider;  // of OLE DB, as named
    std::string driver;    // as named; empty: to be chosen
    std::string dataSourceName;
    std::string server;  // host, host\instance or host,port
    std::string failoverPartner;
    std::string database;
    std::string user;
    std::string password;
    bool trusted = false;
    std::string encrypt;           // empty: as the driver does
    std::string trustCertificate;  // likewise
    std::string application;
    std::string workstation;
    std::string language;
    std::string packetSize;
    std::string multiSubnet;  // yes or no; of the vendor's later drivers, as is the next
    std::string intent;
    int connectSeconds = 15;
    int commandSeconds = 0;  // 0: no limit
    int lockMilliseconds = -1;
    bool batchTransactions = true;
    bool pooled = true;
    // Keywords of a named driver, handed on as they are.
    std::vector<std::pair<std::string, std::string>> more;
};

// Throws automation::Error for a keyword that nobody knows or a value that cannot be meant.
OdbcSettings ReadOdbcSettings(const std::string& connectString);

// The driver's own connect string. `server` is one of the two that the settings name.
std::string DriverConnectString(const OdbcSettings& settings, const std::string& driver,
                                const std::string& server);

bool IsFreeTds(std::string_view driver);

// How good a driver is for SQL Server: the higher the better; 0: not for SQL Server at all.
int DriverRank(std::string_view name);

}  // namespace vicenter::ado
