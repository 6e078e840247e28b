// A driver of another make: SQLite's has no wide entry points, so that the driver manager hands it the lower
// half of every Chinese character. It must not be worked with; FreeTDS never shows this.

#include <gmock/gmock.h>

#include "automation/error.h"
#include "both_back_ends.h"

namespace vicenter::ado_test {
namespace {

using automation::Error;
using testing::HasSubstr;

TEST(OtherDriverTest, OneThatCannotCarryChineseIsRefusedByName) {
    ado::RegisterOdbcProviders();
    const Folder folder;
    for (const std::string more : {"", ";Pooling=no", ";Transactions=none"}) {
        try {
            ado::OpenConnection("Driver=SQLite3;Database=" + (folder.Path() / "books.db").string() + more);
            ADD_FAILURE() << more;
        } catch (const Error& error) {
            EXPECT_EQ(error.Number(), ado::error_number::kProviderError);
            EXPECT_EQ(
                error.Text(),
                "ODBC 驱动程序“SQLite3”不能传送中文（没有 Unicode 接口），请改用 Unicode 版本的驱动程序。");
        }
    }
    ado::CloseIdleOdbcConnections();
}

// It is no driver for SQL Server: never taken unless it is named.
TEST(OtherDriverTest, IsListedAndNotChosen) {
    int others = 0;
    for (const ado::OdbcDriver& driver : ado::OdbcDrivers()) {
        if (driver.forSqlServer) continue;
        ++others;
        EXPECT_FALSE(driver.chosen) << driver.name;
    }
    EXPECT_GT(others, 0);
}

}  // namespace
}  // namespace vicenter::ado_test
