// A point query with a literal, as a typed cell sends it, beside the same statement prepared once and
// prepared each time. 5,000 accounts, an index on the number.

#include "bench/account_set_bench.h"

namespace {

using namespace vicenter;

constexpr int kAccounts = 5000;
constexpr int kQueries = 20000;
constexpr int kRounds = 7;

std::string Number(int i) {
    return std::to_string(100000 + i * 7919 % kAccounts);
}

}  // namespace

int main() {
    bench::TemporaryAccountSet accountSet;
    const std::string connectString = accountSet.ConnectString();
    const auto connection = ado::OpenConnection(connectString);
    connection->Execute(
        "create table t_Account (FAccountID int not null constraint PK_t_Account primary key, FNumber "
        "nvarchar(80) not "
        "null, FName nvarchar(160) not null, FDetail int not null, FDetailID int not null, FCurrencyID int "
        "not null, "
        "FIsBank int not null, FUnitGroupID int not null, FHelperCode nvarchar(80) null, FBalance "
        "decimal(28, 4) null)");
    connection->Execute("create unique index IX_Number on t_Account (FNumber)");
    std::string fill;
    for (int i = 0; i < kAccounts; ++i) {
        fill += "insert into t_Account values(" + std::to_string(i) + ",'" + std::to_string(100000 + i) +
                "','科目名称',1,0,1,0,0,'kmmc',12.5)\r\n";
    }
    connection->Execute(fill);
    bench::RawDatabase raw(accountSet.Path());

    const auto readRow = [](sqlite3_stmt* query) {
        int rows = 0;
        std::string texts;
        while (sqlite3_step(query) == SQLITE_ROW) {
            ++rows;
            for (int column = 0; column < sqlite3_column_count(query); ++column) {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(query, column));
                if (text != nullptr) texts += text;
            }
        }
        bench::Require(rows == 1, "one row");
    };
    std::vector<bench::Candidate> candidates;
    candidates.push_back(
        {"prepared once (base)", nullptr, [&] {
             sqlite3_stmt* query = raw.Prepare("SELECT * FROM t_Account WHERE FNumber = ?1 AND FDetail = ?2");
             for (int i = 0; i < kQueries; ++i) {
                 const std::string number = Number(i);
                 sqlite3_bind_text(query, 1, number.data(), static_cast<int>(number.size()), SQLITE_STATIC);
                 sqlite3_bind_int(query, 2, 1);
                 readRow(query);
                 sqlite3_reset(query);
             }
             sqlite3_finalize(query);
         }});
    candidates.push_back(
        {"prepared each time", nullptr, [&] {
             for (int i = 0; i < kQueries; ++i) {
                 sqlite3_stmt* query = raw.Prepare(
                     ("SELECT * FROM t_Account WHERE FNumber = '" + Number(i) + "' AND FDetail = 1").c_str());
                 readRow(query);
                 sqlite3_finalize(query);
             }
         }});
    candidates.push_back({"T-SQL text with a literal, one connection", nullptr, [&] {
                              for (int i = 0; i < kQueries; ++i) {
                                  const auto rows =
                                      connection->Execute("select * from t_Account where FNumber = '" +
                                                          Number(i) + "' and FDetail = 1");
                                  bench::Require(rows->RecordCount() == 1, "one record");
                              }
                          }});
    candidates.push_back({"the same, a fresh connection each time", nullptr, [&] {
                              for (int i = 0; i < kQueries; ++i) {
                                  const auto fresh = ado::OpenConnection(connectString);
                                  const auto rows =
                                      fresh->Execute("select * from t_Account where FNumber = '" + Number(i) +
                                                     "' and FDetail = 1");
                                  bench::Require(rows->RecordCount() == 1, "one record");
                              }
                          }});
    candidates.push_back({"if exists(select 1 …)", nullptr, [&] {
                              for (int i = 0; i < kQueries; ++i) {
                                  connection->Execute("if exists(select 1 from t_Account where FNumber = '" +
                                                      Number(i) + "') select 1 as a");
                              }
                          }});
    bench::RunInTurn(candidates, kRounds, kQueries / 1000.0, "us");
    return 0;
}
