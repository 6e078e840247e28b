// A driver of another make: SQLite's has no wide entry points, so that the driver manager hands it the lower
// half of every Chinese character. It must not be worked with; FreeTDS never shows this.

#include <gmock/gmock.h>

#include "automation/error.h"
#include "both_back_ends.h"

namespace vicenter::ado_test {
namespace {

using automation::Error;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

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

// One that knows nothing of "host,port" would take the port for a second host and send its login there.
TEST(OtherDriverTest, AsksNobodyButTheServerAndThePortThatAreNamed) {
    ado::RegisterOdbcProviders();
    for (const std::string driver : {"PostgreSQL Unicode", "PostgreSQL ANSI"}) {
        try {
            ado::OpenConnection("Driver={" + driver +
                                "};Server=127.0.0.1;Port=1;Database=账套;UID=u;PWD=geheim;Pooling=no");
            ADD_FAILURE() << driver;
        } catch (const Error& error) {
            EXPECT_EQ(error.Number(), ado::error_number::kProviderError);
            EXPECT_THAT(error.Text(), StartsWith("不能连接到数据库服务器：")) << driver;
            EXPECT_THAT(error.Text(), HasSubstr("\"127.0.0.1\", port 1 failed")) << driver;
            EXPECT_THAT(error.Text(), Not(HasSubstr("0.0.0.1)"))) << driver;
            EXPECT_THAT(error.Text(), Not(HasSubstr("geheim"))) << driver;
        }
    }
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
