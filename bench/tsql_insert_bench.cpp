// One batch text of 10,000 literal INSERTs of 23 columns, as saving a large template sends it, beside a loop
// over one prepared statement in one transaction (the least that SQLite can take) and the same text through
// sqlite3_exec.

#include "bench/account_set_bench.h"

namespace {

using namespace vicenter;

constexpr int kRows = 10000;
constexpr int kRounds = 9;

constexpr const char* kTable =
    "create table t_VchTemplateEntry (FID int not null, FEntryID int not null, FNo int not null, FExp "
    "nvarchar(255) "
    "null, FDC int not null, FAccountID int null, FAccountNumber nvarchar(80) null, FAcctountName "
    "nvarchar(160) null, "
    "FSettleID int null, FSettleName nvarchar(80) null, FSettleNumber nvarchar(80) null, FCurrencyID int "
    "null, "
    "FCurrencyName nvarchar(80) null, FRate decimal(28, 10) null, FAmountFor decimal(28, 4) null, FAmount "
    "decimal(28, 4) "
    "null, FQty decimal(28, 10) null, FPrice decimal(28, 10) null, FUnitID int null, FUnitName nvarchar(80) "
    "null, "
    "FRemark nvarchar(255) null, FFileCount int null, FItemsInfo nvarchar(255) null, "
    "constraint PK_t_VchTemplateEntry primary key (FID, FEntryID))";

constexpr const char* kColumns =
    "(FID,FEntryID,FNo,FExp,FDC,FAccountID,FAccountNumber,FAcctountName,FSettleID,FSettleName,FSettleNumber,"
    "FCurrencyID,FCurrencyName,FRate,FAmountFor,FAmount,FQty,FPrice,FUnitID,FUnitName,FRemark,FFileCount,"
    "FItemsInfo)";

std::string Number(int row) {
    return std::to_string(1001 + row % 97);
}
std::string Amount(int row) {
    return std::to_string(row * 37 % 100000) + "." + std::to_string(10 + row % 90);
}

std::string BatchText(const char* separator) {
    std::string text;
    for (int row = 1; row <= kRows; ++row) {
        text += std::string("insert into t_VchTemplateEntry") + kColumns + " values(5," +
                std::to_string(row) + "," + std::to_string(row / 10) + ",'支付第" + std::to_string(row) +
                "笔货款'," + std::to_string(row % 2) + "," + Number(row) + ",'" + Number(row) +
                "','银行存款-工商银行',3,'支票','ZP" + std::to_string(row) + "',1,'人民币',1," + Amount(row) +
                "," + Amount(row) + ",0,0,0,'','备注',2,'001,002') " + separator + "\r\n";
    }
    return text;
}

void BindText(sqlite3_stmt* statement, int index, const std::string& text) {
    sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

}  // namespace

int main() {
    bench::TemporaryAccountSet accountSet;
    const auto connection = ado::OpenConnection(accountSet.ConnectString());
    connection->Execute(kTable);
    bench::RawDatabase raw(accountSet.Path());
    const std::string batch = BatchText("");
    const std::string sqliteText = "BEGIN;" + BatchText(";") + "COMMIT;";
    const auto empty = [&] { raw.Run("DELETE FROM t_VchTemplateEntry"); };

    std::vector<bench::Candidate> candidates;
    candidates.push_back({"prepared statement, one transaction (base)", empty, [&] {
                              sqlite3_stmt* insert =
                                  raw.Prepare((std::string("INSERT INTO t_VchTemplateEntry") + kColumns +
                                               " VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)")
                                                  .c_str());
                              raw.Run("BEGIN IMMEDIATE");
                              for (int row = 1; row <= kRows; ++row) {
                                  sqlite3_bind_int(insert, 1, 5);
                                  sqlite3_bind_int(insert, 2, row);
                                  sqlite3_bind_int(insert, 3, row / 10);
                                  BindText(insert, 4, "支付第" + std::to_string(row) + "笔货款");
                                  sqlite3_bind_int(insert, 5, row % 2);
                                  sqlite3_bind_int(insert, 6, 1001 + row % 97);
                                  BindText(insert, 7, Number(row));
                                  BindText(insert, 8, "银行存款-工商银行");
                                  sqlite3_bind_int(insert, 9, 3);
                                  BindText(insert, 10, "支票");
                                  BindText(insert, 11, "ZP" + std::to_string(row));
                                  sqlite3_bind_int(insert, 12, 1);
                                  BindText(insert, 13, "人民币");
                                  BindText(insert, 14, "1.0000000000");
                                  BindText(insert, 15, Amount(row) + "00");
                                  BindText(insert, 16, Amount(row) + "00");
                                  BindText(insert, 17, "0.0000000000");
                                  BindText(insert, 18, "0.0000000000");
                                  sqlite3_bind_int(insert, 19, 0);
                                  BindText(insert, 20, "");
                                  BindText(insert, 21, "备注");
                                  sqlite3_bind_int(insert, 22, 2);
                                  BindText(insert, 23, "001,002");
                                  bench::Require(sqlite3_step(insert) == SQLITE_DONE, "insert");
                                  sqlite3_reset(insert);
                              }
                              raw.Run("COMMIT");
                              sqlite3_finalize(insert);
                          }});
    candidates.push_back({"T-SQL batch of literal INSERTs", empty, [&] {
                              std::int64_t affected = 0;
                              connection->Execute(batch, &affected);
                              bench::Require(affected == kRows, "rows of the batch");
                          }});
    candidates.push_back({"the same text through sqlite3_exec", empty, [&] { raw.Run(sqliteText.c_str()); }});
    bench::RunInTurn(candidates, kRounds, 1, "ms");
    bench::Require(raw.Number("SELECT count(*) FROM t_VchTemplateEntry") == kRows, "row count");

    const auto sum = connection->Execute("select count(*) as n, sum(FAmount) as s from t_VchTemplateEntry");
    bench::Require(sum->Value("n").ToInt32() == kRows, "rows read back");
    empty();
    connection->Execute(batch);
    const auto again = connection->Execute("select sum(FAmount) as s from t_VchTemplateEntry");
    const auto first = connection->Execute("select top 1 FAmount as s from t_VchTemplateEntry");
    bench::Require(first->Value("s").ToDecimal().Scale() == 4, "scale of the amounts");
    std::printf("batch text: %.1f MB, sum of amounts %s\n", static_cast<double>(batch.size()) / 1e6,
                again->Value("s").ToText().c_str());
    return 0;
}
