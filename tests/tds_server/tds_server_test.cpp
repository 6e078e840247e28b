// What drivers send that the product itself does not: prepared statements, parameters, transactions of the
// driver's, a statement that is taken back. Straight through ODBC.

#include <chrono>
#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

#include "tds_server/server.h"

namespace vicenter::tds_server {
namespace {

SQLCHAR* Chars(std::string& text) {
    return reinterpret_cast<SQLCHAR*>(text.data());
}

class TdsServerTest : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::create_directories(folder_);
        server_.AddDatabase("books", folder_ / "books.vas");
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
        SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION,
                      reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(SQL_OV_ODBC3)), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, environment_, &line_);
        const std::string address = server_.Address();
        std::string connect =
            "DRIVER=FreeTDS;SERVER=127.0.0.1;PORT=" + address.substr(address.find(',') + 1) +
            ";DATABASE=books;TDS_Version=7.4;ClientCharset=UTF-8;UID=sa;PWD={" +
            std::string(Server::kPassword) + "};";
        ASSERT_TRUE(SQL_SUCCEEDED(SQLDriverConnect(line_, nullptr, Chars(connect), SQL_NTS, nullptr, 0,
                                                   nullptr, SQL_DRIVER_NOPROMPT)));
        SQLAllocHandle(SQL_HANDLE_STMT, line_, &statement_);
        Run("create table t (a int, b nvarchar(20), c decimal(10,2))");
    }
    void TearDown() override {
        SQLFreeHandle(SQL_HANDLE_STMT, statement_);
        SQLDisconnect(line_);
        SQLFreeHandle(SQL_HANDLE_DBC, line_);
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    SQLRETURN Run(std::string text) {
        SQLFreeStmt(statement_, SQL_CLOSE);
        return SQLExecDirect(statement_, Chars(text), SQL_NTS);
    }
    // The first value of the result at hand.
    std::string Value() {
        if (!SQL_SUCCEEDED(SQLFetch(statement_))) return "no row";
        char text[200] = {};
        SQLLEN length = 0;
        SQLGetData(statement_, 1, SQL_C_CHAR, text, sizeof text, &length);
        return length == SQL_NULL_DATA ? "NULL" : std::string(text);
    }
    std::string Ask(const std::string& query) {
        if (!SQL_SUCCEEDED(Run(query))) return "failed";
        return Value();
    }

    std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                    ("vicenter_tds_test_" + std::to_string(std::random_device()()));
    Server server_;
    SQLHENV environment_ = nullptr;
    SQLHDBC line_ = nullptr;
    SQLHSTMT statement_ = nullptr;
};

TEST_F(TdsServerTest, RunsAStatementWithParameters) {
    SQLINTEGER number = 7;
    std::string text = "it's 现金";
    std::string amount = "12.50";
    SQLLEN textLength = SQL_NTS;
    SQLLEN amountLength = SQL_NTS;
    SQLBindParameter(statement_, 1, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 0, 0, &number, 0, nullptr);
    SQLBindParameter(statement_, 2, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_WVARCHAR, 20, 0, text.data(), 0,
                     &textLength);
    SQLBindParameter(statement_, 3, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_NUMERIC, 10, 2, amount.data(), 0,
                     &amountLength);
    EXPECT_TRUE(SQL_SUCCEEDED(Run("insert into t(a,b,c) values(?,?,?)")));
    SQLFreeStmt(statement_, SQL_RESET_PARAMS);
    EXPECT_EQ(Ask("select cast(a as varchar(9)) + '|' + b + '|' + cast(c as varchar(9)) from t"),
              "7|it's 现金|12.50");
}

TEST_F(TdsServerTest, PreparesOnceAndRunsAgain) {
    std::string text = "insert into t(a) values(?)";
    ASSERT_TRUE(SQL_SUCCEEDED(SQLPrepare(statement_, Chars(text), SQL_NTS)));
    SQLINTEGER number = 0;
    SQLBindParameter(statement_, 1, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 0, 0, &number, 0, nullptr);
    for (number = 1; number <= 3; ++number)
        EXPECT_TRUE(SQL_SUCCEEDED(SQLExecute(statement_))) << number;
    SQLFreeStmt(statement_, SQL_RESET_PARAMS);
    EXPECT_EQ(Ask("select sum(a) from t"), "6");
}

TEST_F(TdsServerTest, ManualCommitUndoesAndKeeps) {
    SQLSetConnectAttr(line_, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0);
    EXPECT_TRUE(SQL_SUCCEEDED(Run("insert into t(a) values(1)")));
    SQLFreeStmt(statement_, SQL_CLOSE);
    EXPECT_TRUE(SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, line_, SQL_ROLLBACK)));
    EXPECT_EQ(Ask("select count(*) from t"), "0");
    EXPECT_TRUE(SQL_SUCCEEDED(Run("insert into t(a) values(1)")));
    SQLFreeStmt(statement_, SQL_CLOSE);
    EXPECT_TRUE(SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, line_, SQL_COMMIT)));
    SQLSetConnectAttr(line_, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0);
    EXPECT_EQ(Ask("select count(*) from t"), "1");
}

TEST_F(TdsServerTest, AStatementThatIsTakenBackIsNotRun) {
    constexpr int kSeconds = 5;
    server_.Behave(std::make_shared<Slow>(kSeconds * 1000));
    const auto start = std::chrono::steady_clock::now();
    std::thread canceller([this] {
        while (server_.Batches().empty() || server_.Batches().back() != "insert into t(a) values(9)")
            std::this_thread::yield();
        SQLCancel(statement_);
    });
    EXPECT_EQ(Run("insert into t(a) values(9)"), SQL_ERROR);
    canceller.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(kSeconds));
    server_.BehaveWell();
    EXPECT_EQ(Ask("select count(*) from t"), "0");
}

}  // namespace
}  // namespace vicenter::tds_server
