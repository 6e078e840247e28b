// Which drivers there are, and which one is taken.

#include <algorithm>

#include "platform/ado/odbc/odbc_connect_string.h"
#include "platform/ado/odbc/odbc_handles.h"
#include "platform/ado/odbc/odbc_provider.h"

namespace vicenter::ado {

std::vector<OdbcDriver> OdbcDrivers() {
    std::vector<OdbcDriver> drivers;
    SQLWCHAR name[256] = {};
    SQLWCHAR attributes[2048] = {};
    SQLSMALLINT nameLength = 0;
    SQLSMALLINT attributesLength = 0;
    for (SQLUSMALLINT where = SQL_FETCH_FIRST; SQL_SUCCEEDED(SQLDriversW(
             OdbcEnvironment(), where, name, 256, &nameLength, attributes, 2048, &attributesLength));
         where = SQL_FETCH_NEXT) {
        OdbcDriver driver;
        driver.name = OdbcNarrow(name, static_cast<std::size_t>(nameLength));
        driver.forSqlServer = DriverRank(driver.name) > 0;
        drivers.push_back(std::move(driver));
    }
    std::stable_sort(drivers.begin(), drivers.end(), [](const OdbcDriver& a, const OdbcDriver& b) {
        return DriverRank(a.name) > DriverRank(b.name);
    });
    if (!drivers.empty() && drivers.front().forSqlServer) drivers.front().chosen = true;
    return drivers;
}

std::string NoOdbcDriverText() {
#ifdef _WIN32
    return "没有安装 SQL Server 的 ODBC 驱动程序，请先安装 ODBC Driver for SQL Server。";
#else
    return "没有安装 SQL Server 的 ODBC 驱动程序，请先安装软件包 tdsodbc（apt install tdsodbc）。";
#endif
}

}  // namespace vicenter::ado
