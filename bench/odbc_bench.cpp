// The ODBC back end beside bare ODBC on the loopback's test server: a save of 10,000 lines, point queries,
// 50,000 rows, a template of 1,000 lines at several times a trip, and eight users of one pool.
//
// Base and candidate take turns; every run checks its result. Usage: odbc_bench [rounds]

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <malloc.h>
#include <sql.h>
#include <sqlext.h>

#include "bench/account_set_bench.h"
#include "center/template/line_loader.h"
#include "entry/host_context.h"
#include "host/account_set.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "tests/host/demo_lines.h"
#include "tests/tds_server/server.h"

namespace {

using namespace vicenter;
using bench::Require;

constexpr int kSaved = 10'000;
constexpr int kQueries = 2'000;
constexpr int kRows = 50'000;
constexpr int kOpened = 1'000;

// A line to the server with nothing of ours in between.
class BareLine {
  public:
    explicit BareLine(const tds_server::Server& server) {
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
        SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION,
                      reinterpret_cast<SQLPOINTER>(static_cast<std::uintptr_t>(SQL_OV_ODBC3)), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, environment_, &line_);
        const std::string address = server.Address();
        std::string connect =
            "DRIVER=FreeTDS;SERVER=127.0.0.1;PORT=" + address.substr(address.find(',') + 1) +
            ";DATABASE=books;TDS_Version=7.4;ClientCharset=UTF-8;UID=sa;PWD={" +
            std::string(tds_server::Server::kPassword) + "};";
        Require(SQL_SUCCEEDED(SQLDriverConnect(line_, nullptr, reinterpret_cast<SQLCHAR*>(connect.data()),
                                               SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)),
                "a bare line");
    }
    BareLine(const BareLine&) = delete;
    BareLine& operator=(const BareLine&) = delete;
    ~BareLine() {
        SQLDisconnect(line_);
        SQLFreeHandle(SQL_HANDLE_DBC, line_);
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
    }
    SQLHDBC Line() const { return line_; }
    // The rows of all results.
    int Run(const std::string& batch) const {
        SQLHSTMT statement = nullptr;
        SQLAllocHandle(SQL_HANDLE_STMT, line_, &statement);
        std::string text = batch;
        int rows = 0;
        SQLRETURN code = SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS);
        for (; SQL_SUCCEEDED(code); code = SQLMoreResults(statement)) {
            SQLSMALLINT columns = 0;
            SQLNumResultCols(statement, &columns);
            if (columns == 0) continue;
            while (SQL_SUCCEEDED(SQLFetch(statement))) {
                ++rows;
                for (SQLSMALLINT column = 1; column <= columns; ++column) {
                    std::array<char, 512> value{};
                    SQLLEN length = 0;
                    SQLGetData(statement, static_cast<SQLUSMALLINT>(column), SQL_C_CHAR, value.data(),
                               value.size(), &length);
                }
            }
        }
        Require(code == SQL_NO_DATA, "a bare batch");
        SQLFreeHandle(SQL_HANDLE_STMT, statement);
        return rows;
    }
    // Four columns bound once and fetched.
    int Fetch(const std::string& query) const {
        SQLHSTMT statement = nullptr;
        SQLAllocHandle(SQL_HANDLE_STMT, line_, &statement);
        std::string text = query;
        SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS);
        SQLINTEGER number = 0;
        std::array<std::array<SQLWCHAR, 256>, 2> names{};
        std::array<char, 64> amount{};
        std::array<SQLLEN, 4> lengths{};
        SQLBindCol(statement, 1, SQL_C_SLONG, &number, 0, lengths.data());
        SQLBindCol(statement, 2, SQL_C_WCHAR, names[0].data(), sizeof names[0], &lengths[1]);
        SQLBindCol(statement, 3, SQL_C_WCHAR, names[1].data(), sizeof names[1], &lengths[2]);
        SQLBindCol(statement, 4, SQL_C_CHAR, amount.data(), amount.size(), &lengths[3]);
        int rows = 0;
        while (SQL_SUCCEEDED(SQLFetch(statement)))
            ++rows;
        SQLFreeHandle(SQL_HANDLE_STMT, statement);
        return rows;
    }

  private:
    SQLHENV environment_ = nullptr;
    SQLHDBC line_ = nullptr;
};

// Base and candidate in turn, by the clock and by the processor time of this process, server and driver
// included: on a machine that does other things as well the second says more.
struct Beside {
    const char* name;
    const char* unit;
    double perRun;  // units in a millisecond of one run
    std::function<void()> base;
    std::function<void()> ours;
};

double ProcessorMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

void Measure(const Beside& beside, int rounds) {
    std::array<std::vector<double>, 2> clock;
    std::array<std::vector<double>, 2> processor;
    for (int round = -1; round < rounds; ++round) {
        for (const std::size_t which : {0U, 1U}) {
            const double before = ProcessorMilliseconds();
            const double time = bench::Milliseconds(which == 0 ? beside.base : beside.ours);
            // One round to warm up.
            if (round < 0) continue;
            clock[which].push_back(time);
            processor[which].push_back(ProcessorMilliseconds() - before);
        }
    }
    const auto line = [&](const char* by, const std::array<std::vector<double>, 2>& times) {
        const double base = bench::Median(times[0]);
        const double ours = bench::Median(times[1]);
        const auto [low, high] = std::minmax_element(times[1].begin(), times[1].end());
        std::printf("%-28s by the %-9s bare %9.3f %s, ours %9.3f (spread %.3f), %.2f x\n", beside.name, by,
                    base / beside.perRun, beside.unit, ours / beside.perRun, (*high - *low) / beside.perRun,
                    ours / base);
    };
    line("clock", clock);
    line("processor", processor);
}

std::string SaveText() {
    std::string batch = "delete t_VchTemplateEntry where FID = 901 \r\n";
    for (int line = 1; line <= kSaved; ++line) {
        batch +=
            "insert into "
            "t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC,FAccountID,FAccountNumber,FAcctountName,"
            "FSettleID,FSettleName,FSettleNumber,FCurrencyID,FCurrencyName,FRate,FAmountFor,FAmount,"
            "FQty,FPrice,FUnitID,FUnitName,FRemark,FFileCount,FItemsInfo) values(901," +
            std::to_string(line) + "," + std::to_string(line / 4 + 1) +
            ",'支付货款',1,1002,'1002.01','工商银行基本户',0,'','',1,'人民币',1,0,12.5,0,0,0,'','备注',0,'') "
            "\r\n";
    }
    return batch;
}

void Save(ado::Connection& connection, const BareLine& bare, int rounds) {
    const std::string text = SaveText();
    Measure({"a save of 10,000 lines", "ms", 1,
             [&] {
                 bare.Run("begin transaction");
                 bare.Run(text);
                 bare.Run("commit transaction");
             },
             [&] {
                 std::int64_t rows = 0;
                 connection.Execute(text, &rows);
                 Require(rows >= kSaved, "the lines are stored");
             }},
            rounds);
}

void Points(ado::Connection& connection, const BareLine& bare, int rounds) {
    const std::string query = "select * from t_Account where FNumber = '1002.01' and FDetail = 1";
    Measure({"a point query", "us", kQueries / 1000.0,
             [&] {
                 for (int i = 0; i < kQueries; ++i)
                     Require(bare.Run(query) == 1, "one account");
             },
             [&] {
                 for (int i = 0; i < kQueries; ++i)
                     Require(connection.Execute(query)->RecordCount() == 1, "one account");
             }},
            rounds);
}

void Rows(ado::Connection& connection, const BareLine& bare, int rounds) {
    std::string fill = "create table rows (a int, b nvarchar(80), c nvarchar(160), d decimal(28,4))\r\n";
    for (int i = 0; i < kRows; ++i) {
        fill += "insert into rows values(" + std::to_string(i) + ",'" + std::to_string(100'000 + i) +
                "','工商银行基本户','" + std::to_string(i) + ".2500')\r\n";
    }
    connection.Execute(fill);
    const std::string query = "select a,b,c,d from rows";
    Measure({"50,000 rows", "ms", 1, [&] { Require(bare.Fetch(query) == kRows, "all rows"); },
             [&] { Require(connection.Execute(query)->RecordCount() == kRows, "all rows"); }},
            rounds);
    const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
    const ado::RecordsetRef held = connection.Execute(query);
    const std::size_t after = mallinfo2().uordblks + mallinfo2().hblkhd;
    std::size_t values = 0;
    for (std::size_t row = 0; row < static_cast<std::size_t>(held->RecordCount()); ++row) {
        for (std::size_t column = 0; column < held->ColumnCount(); ++column) {
            const automation::Variant& value = held->ValueAt(row, column);
            values +=
                sizeof value + (value.IsText() && value.AsText().size() > 15 ? value.AsText().size() : 0);
        }
    }
    std::printf("memory of the recordset: %.1f MB, %.2f x its values\n",
                static_cast<double>(after - before) / 1e6,
                static_cast<double>(after - before) / static_cast<double>(values));
}

void Open(tds_server::Server& server, int rounds) {
    for (const int trip : {0, 1, 5, 20}) {
        server.Behave(std::make_shared<tds_server::Slow>(trip));
        std::vector<bench::Candidate> candidates;
        candidates.push_back({"1,000 lines opened at " + std::to_string(trip) + " ms a trip", nullptr, [&] {
                                  center::EntryGrid grid;
                                  Require(center::LoadLines(grid, "900") == kOpened, "all lines");
                              }});
        bench::RunInTurn(candidates, rounds, 1, "ms");
    }
    server.BehaveWell();
}

void Pool(const std::string& connectString) {
    for (const int users : {1, 8}) {
        const double time = bench::Milliseconds([&] {
            std::vector<std::thread> threads;
            for (int user = 0; user < users; ++user) {
                threads.emplace_back([&] {
                    for (int i = 0; i < 500; ++i) {
                        const auto connection = ado::OpenConnection(connectString);
                        Require(connection->Execute("select * from t_Account where FNumber = '1001'")
                                        ->RecordCount() == 1,
                                "one account");
                    }
                });
            }
            for (std::thread& thread : threads)
                thread.join();
        });
        std::printf("%d users of one pool: %.0f questions a second\n", users, users * 500 / time * 1000);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 5;
    const bench::TemporaryAccountSet folder;
    host::RegisterProviders();
    ado::RegisterOdbcProviders();
    std::filesystem::remove(folder.Path());
    host::CreateAccountSetFile(folder.Path(), {true, 0});
    tds_server::Server server;
    server.AddDatabase("books", folder.Path());
    const std::string connectString = server.ConnectText("books");
    std::string quoted;
    for (const char c : connectString) {
        quoted += c;
        if (c == '}') quoted += c;
    }
    entry::PresetPropsString("UserID=1;ConnectString={" + quoted + "};");
    {
        const ado::ConnectionRef connection = ado::OpenConnection(connectString);
        const BareLine bare(server);
        host::test::StoreDemoLines(*connection, "900", kOpened);
        Points(*connection, bare, rounds);
        Rows(*connection, bare, rounds);
        Save(*connection, bare, rounds);
    }
    Open(server, rounds);
    Pool(connectString);
    ado::CloseIdleOdbcConnections();
    return 0;
}
