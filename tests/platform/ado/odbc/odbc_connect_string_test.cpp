#include "platform/ado/odbc/odbc_connect_string.h"

#include <gtest/gtest.h>

#include "automation/error.h"

namespace vicenter::ado {
namespace {

std::string Made(const std::string& host, const std::string& driver = "ODBC Driver 18 for SQL Server") {
    const OdbcSettings settings = ReadOdbcSettings(host);
    return DriverConnectString(settings, driver, settings.server);
}

std::string Refused(const std::string& host) {
    try {
        ReadOdbcSettings(host);
    } catch (const automation::Error& error) {
        return error.Text();
    }
    return "not refused";
}

TEST(OdbcConnectStringTest, TakesWhatHostsWrite) {
    EXPECT_EQ(
        Made("Provider=SQLOLEDB.1;Persist Security Info=True;User ID=sa;Password=abc;Initial "
             "Catalog=AIS20240101;Data Source=SRV\\SQL2019;Use Procedure for Prepare=1;Auto "
             "Translate=True;Packet Size=4096;Workstation ID=PC1;Use Encryption for Data=False;Tag with "
             "column collation when possible=False"),
        "DRIVER={ODBC Driver 18 for SQL "
        "Server};SERVER=SRV\\SQL2019;DATABASE=AIS20240101;Encrypt=no;WSID=PC1;Packet "
        "Size=4096;UID=sa;PWD=abc;");
    EXPECT_EQ(Made("Provider=MSOLEDBSQL;Server=tcp:10.0.0.1,1433;Database=a;Integrated "
                   "Security=SSPI;TrustServerCertificate=yes;Encrypt=Optional"),
              "DRIVER={ODBC Driver 18 for SQL "
              "Server};SERVER=10.0.0.1,1433;DATABASE=a;Encrypt=Optional;TrustServerCertificate=yes;Trusted_"
              "Connection=Yes;");
}

TEST(OdbcConnectStringTest, SpeaksEachDriversLanguage) {
    EXPECT_EQ(
        Made("Provider=SQLNCLI11;Data Source=h,99;Initial Catalog=a;UID=u;PWD=p", "FreeTDS"),
        "DRIVER={FreeTDS};SERVER=h;PORT=99;DATABASE=a;TDS_Version=7.4;ClientCharset=UTF-8;UID=u;PWD=p;");
    EXPECT_EQ(
        Made("Driver={PostgreSQL Unicode};Server=h;Port=99;Database=a;UID=u;PWD=p", "PostgreSQL Unicode"),
        "DRIVER={PostgreSQL Unicode};SERVER=h;PORT=99;DATABASE=a;UID=u;PWD=p;");
    EXPECT_EQ(
        Made("Provider=SQLNCLI11;Data Source=h;Encrypt=yes;UID=u;PWD=p", "FreeTDS"),
        "DRIVER={FreeTDS};SERVER=h;TDS_Version=7.4;ClientCharset=UTF-8;Encryption=require;UID=u;PWD=p;");
    EXPECT_EQ(Made("DSN=books;TDS_Version=7.3;UID=u", "FreeTDS"),
              "DSN=books;ClientCharset=UTF-8;TDS_Version=7.3;UID=u;");
}

TEST(OdbcConnectStringTest, TellsTheVendorsDriversOfGroupsOfServers) {
    const std::string host =
        "Provider=MSOLEDBSQL;Data Source=h;UID=u;PWD=p;MultiSubnetFailover=True;Application Intent=ReadOnly";
    EXPECT_EQ(Made(host),
              "DRIVER={ODBC Driver 18 for SQL Server};SERVER=h;Encrypt=no;MultiSubnetFailover=yes;"
              "ApplicationIntent=ReadOnly;UID=u;PWD=p;");
    EXPECT_EQ(Made(host, "SQL Server Native Client 11.0"),
              "DRIVER={SQL Server Native Client 11.0};SERVER=h;MultiSubnetFailover=yes;"
              "ApplicationIntent=ReadOnly;UID=u;PWD=p;");
    EXPECT_EQ(Made("DSN=books;UID=u;ApplicationIntent=readwrite;MultiSubnetFailover=no", ""),
              "DSN=books;MultiSubnetFailover=no;ApplicationIntent=readwrite;UID=u;");
    // Older ones and others do not know the words.
    for (const std::string driver : {"SQL Server", "FreeTDS"})
        EXPECT_EQ(Made(host, driver).find("ReadOnly"), std::string::npos) << driver;
    EXPECT_NE(Refused("Provider=MSOLEDBSQL;Data Source=h;Application Intent=Both"), "not refused");
}

TEST(OdbcConnectStringTest, EncryptsByItselfOnlyWhereTheProviderDid) {
    const auto encrypts = [](const std::string& host, const std::string& driver) {
        const std::string made = Made(host + ";Data Source=h;UID=u", driver);
        const std::size_t at = made.find("Encrypt=");
        return at == std::string::npos ? std::string() : made.substr(at, made.find(';', at) - at);
    };
    const std::string newest = "ODBC Driver 18 for SQL Server";
    for (const char* provider : {"SQLOLEDB", "SQLOLEDB.1", "SQLNCLI11", "MSOLEDBSQL", "MSOLEDBSQL.1"}) {
        EXPECT_EQ(encrypts("Provider=" + std::string(provider), newest), "Encrypt=no") << provider;
        EXPECT_EQ(encrypts("Provider=" + std::string(provider) + ";Encrypt=true", newest), "Encrypt=yes");
        EXPECT_EQ(encrypts("Provider=" + std::string(provider), "ODBC Driver 17 for SQL Server"), "");
    }
    for (const char* own : {"Provider=MSOLEDBSQL19", "Provider=MSOLEDBSQL19.1", "Provider=MSDASQL",
                            "Driver={ODBC Driver 18 for SQL Server}"})
        EXPECT_EQ(encrypts(own, newest), "") << own;
    EXPECT_EQ(encrypts("Provider=SQLOLEDB", "FreeTDS"), "");
}

TEST(OdbcConnectStringTest, FreeTdsIsNotAskedForLessThanTheHostWants) {
    EXPECT_THROW(Made("Provider=MSOLEDBSQL19;Data Source=h;Encrypt=Strict", "FreeTDS"), automation::Error);
    EXPECT_EQ(Made("Provider=MSOLEDBSQL19;Data Source=h;Encrypt=Strict;UID=u"),
              "DRIVER={ODBC Driver 18 for SQL Server};SERVER=h;Encrypt=Strict;UID=u;");
}

TEST(OdbcConnectStringTest, QuotesInBothWorlds) {
    const std::string host = "Provider=SQLOLEDB;Data Source=h;User ID=u;Password=\"a;\"\"b}'{c\"";
    EXPECT_EQ(ReadOdbcSettings(host).password, "a;\"b}'{c");
    EXPECT_EQ(Made(host),
              "DRIVER={ODBC Driver 18 for SQL Server};SERVER=h;Encrypt=no;UID=u;PWD={a;\"b}}'{c};");
    EXPECT_EQ(Made(host, "FreeTDS"),
              "DRIVER={FreeTDS};SERVER=h;TDS_Version=7.4;ClientCharset=UTF-8;UID=u;PWD={a;\"b}'{c};");
    EXPECT_EQ(ReadOdbcSettings("Driver={FreeTDS};Server=h;PWD={a}}b}").password, "a}b");
}

TEST(OdbcConnectStringTest, NeverNamesAPieceOfAPasswordAsAKeyword) {
    // Not quoted, as somebody may write it.
    const std::string said = Refused("Provider=SQLOLEDB;Data Source=h;User ID=u;Password=ab;Geheim1=c");
    EXPECT_EQ(said, "连接字符串中密码之后的内容无法识别；密码中有分号时，请把密码放在引号中。");
    EXPECT_EQ(Refused("Provider=SQLOLEDB;Data Source=h;Password=ab;User ID=u;Geheim1=c"),
              "连接字符串中有不认识的关键字：Geheim1");
}

TEST(OdbcConnectStringTest, ADriverForSomethingElseNeedsNoServer) {
    EXPECT_EQ(Refused("Driver={SQLite3};Database=a.db"), "not refused");
    EXPECT_NE(Refused("Driver={FreeTDS};Database=a"), "not refused");
}

TEST(OdbcConnectStringTest, KnowsThisMachineByAllItsNames) {
    EXPECT_EQ(ReadOdbcSettings("Provider=SQLOLEDB;Data Source=.").server, "localhost");
    EXPECT_EQ(ReadOdbcSettings("Provider=SQLOLEDB;Data Source=(local)\\X").server, "localhost\\X");
    EXPECT_EQ(ReadOdbcSettings("Driver=FreeTDS;Server=h;Port=1444").server, "h,1444");
}

TEST(OdbcConnectStringTest, ReadsTheDriversStringWithinOleDbs) {
    const OdbcSettings settings =
        ReadOdbcSettings("Provider=MSDASQL.1;Extended Properties=\"Driver={FreeTDS};Server=h;UID=u;PWD=p\"");
    EXPECT_EQ(settings.driver, "FreeTDS");
    EXPECT_EQ(settings.server, "h");
    EXPECT_EQ(settings.password, "p");
}

TEST(OdbcConnectStringTest, ReadsItsOwnWords) {
    const OdbcSettings settings = ReadOdbcSettings(
        "Provider=SQLOLEDB;Data Source=h;Transactions=none;Command Timeout=30;Lock Timeout=500;Connect "
        "Timeout=3;Pooling=no;Failover Partner=.");
    EXPECT_FALSE(settings.batchTransactions);
    EXPECT_EQ(settings.commandSeconds, 30);
    EXPECT_EQ(settings.lockMilliseconds, 500);
    EXPECT_EQ(settings.connectSeconds, 3);
    EXPECT_FALSE(settings.pooled);
    EXPECT_EQ(settings.failoverPartner, "localhost");
}

TEST(OdbcConnectStringTest, TellsWhatItDoesNotKnow) {
    EXPECT_EQ(Refused("Provider=SQLOLEDB;Data Source=h;Pasword=x"), "连接字符串中有不认识的关键字：Pasword");
    EXPECT_EQ(Refused("Provider=SQLOLEDB;Data Source=h;Connect Timeout=soon"),
              "连接字符串中“Connect Timeout”的值无法识别。");
    EXPECT_EQ(Refused("Provider=SQLOLEDB;User ID=sa"), "连接字符串没有指定服务器（Data Source）。");
    // A driver that is named has words of its own.
    EXPECT_EQ(ReadOdbcSettings("Driver=FreeTDS;Server=h;DumpFile=x").more.size(), 1U);
}

TEST(OdbcConnectStringTest, TheNewestDriverOfTheVendorIsBest) {
    EXPECT_GT(DriverRank("ODBC Driver 18 for SQL Server"), DriverRank("ODBC Driver 17 for SQL Server"));
    EXPECT_GT(DriverRank("ODBC Driver 13.1 for SQL Server"), DriverRank("ODBC Driver 13 for SQL Server"));
    EXPECT_GT(DriverRank("ODBC Driver 11 for SQL Server"), DriverRank("SQL Server Native Client 11.0"));
    EXPECT_GT(DriverRank("SQL Server Native Client 10.0"), DriverRank("FreeTDS"));
    EXPECT_GT(DriverRank("FreeTDS"), DriverRank("SQL Server"));
    EXPECT_EQ(DriverRank("SQLite3"), 0);
}

}  // namespace
}  // namespace vicenter::ado
