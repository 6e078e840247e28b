// Each statement of the component that is asked again and again, as T-SQL text and as a statement of SQLite
// prepared by hand, in turn within one run. A recordset holds its values when the statement is done, so the
// statement by hand is timed twice: as it goes through its rows and looks at each value's text, and as it
// keeps the same values, of the same types and in the same order (the run compares them), which is what ours
// is held against. Both sides use connections without a mutex and the set's own order of texts.
//
// Then the component's save beside the same changes by prepared statements in one transaction, and joins of
// 100,000 rows on decimals and texts without an index, beside SQLite's own on integers. Processor time.
// Usage: tsql_component_bench [repeats] [rounds] [rows]

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "bench/account_set_bench.h"
#include "host/account_set.h"
#include "platform/ado/account_set/account_set_collation.h"
#include "store/template_batches.h"
#include "store/template_columns.h"
#include "tsql/types/collation.h"

namespace {

using namespace vicenter;
using automation::Variant;
using bench::Require;

struct Pair {
    const char* name;
    const char* tsql;
    const char* sqlite;
};

// What a window, a check, a save or a filter asks: the words of the component, and the same question by hand.
constexpr Pair kStatements[] = {
    {"list of templates",
     "select a.* from (select FID,FName from t_VchTemplate where fid <> 0 and FUserID = 16394\r\n union all "
     "\r\n "
     "select FID,FName from t_VchTemplate where FID = 0 ) a order by a.FID ",
     "SELECT FID, FName FROM t_VchTemplate WHERE FID <> 0 AND FUserID = 16394 UNION ALL SELECT FID, FName "
     "FROM "
     "t_VchTemplate WHERE FID = 0 ORDER BY 1"},
    {"column profile", "select FValue from t_VchTpProfile where FUserID = 1",
     "SELECT FValue FROM t_VchTpProfile WHERE FUserID = 1"},
    {"count of lines", "select count(*) as FCount from t_VchTemplateEntry where FID = 3",
     "SELECT count(*) FROM t_VchTemplateEntry WHERE FID = 3"},
    {"template by name", "select FID from t_VchTemplate where FName = 'it''s'",
     "SELECT FID FROM t_VchTemplate WHERE FName = 'it''s'"},
    {"highest number", "select Max(FID) as FID from t_VchTemplate ", "SELECT max(FID) FROM t_VchTemplate"},
    {"lines of a template", "select * from t_VchTemplateEntry where FID = 1 order by FNo,FEntryID ",
     "SELECT * FROM t_VchTemplateEntry WHERE FID = 1 ORDER BY FNo, FEntryID"},
    {"explanation by code",
     "select a.FExplanation,isnull(b.FAccountID,0) as FAccountID,isnull(b.FNumber,'') as "
     "FNumber,isnull(b.FName,'') "
     "as FName \r\n from t_VoucherExp a left join t_Account b on a.FAccountID = b.FAccountID where a.FNumber "
     "= '001'",
     "SELECT a.FExplanation, ifnull(b.FAccountID, 0), ifnull(b.FNumber, ''), ifnull(b.FName, '') FROM "
     "t_VoucherExp a "
     "LEFT JOIN t_Account b ON a.FAccountID = b.FAccountID WHERE a.FNumber = '001'"},
    {"account by number", "select FAccountID,FNumber,FName from t_Account where FNumber = '1001'",
     "SELECT FAccountID, FNumber, FName FROM t_Account WHERE FNumber = '1001'"},
    {"account with detail", "select * from t_Account where FNumber = '1001' and FDetail = 1",
     "SELECT * FROM t_Account WHERE FNumber = '1001' AND FDetail = 1"},
    {"currency by name", "select FCurrencyID from t_Currency where FName = '人民币'",
     "SELECT FCurrencyID FROM t_Currency WHERE FName = '人民币'"},
    {"unit of an account",
     " select FMeasureUnitID from t_MeasureUnit where FMeasureUnitID >0 and FUnitGroupID = (select "
     "FUnitGroupID from "
     "t_Account \r\n where FNumber = '1405.01' and FDetail = 1) and FName = '件'",
     "SELECT FMeasureUnitID FROM t_MeasureUnit WHERE FMeasureUnitID > 0 AND FUnitGroupID = (SELECT "
     "FUnitGroupID FROM "
     "t_Account WHERE FNumber = '1405.01' AND FDetail = 1) AND FName = '件'"},
    {"account by id", "select FName,FNumber from t_Account where FAccountID = 1001",
     "SELECT FName, FNumber FROM t_Account WHERE FAccountID = 1001"},
    {"control rows", "select FNo from t_VchTpControl where FIsCanUsed = 0 and FID = 3 order by fno",
     "SELECT FNo FROM t_VchTpControl WHERE FIsCanUsed = 0 AND FID = 3 ORDER BY FNo"},
    {"voucher words", "select FGroupID,FName from t_VoucherGroup order by FGroupID ",
     "SELECT FGroupID, FName FROM t_VoucherGroup ORDER BY FGroupID"},
    {"range of vouchers",
     "select isnull(MIN(FNumber),0) as FMinNum,isnull(MAX(FNumber),0) as FMaxNum from t_Voucher where FYear "
     "= 2026 "
     "and FPeriod = 1",
     "SELECT ifnull(min(FNumber), 0), ifnull(max(FNumber), 0) FROM t_Voucher WHERE FYear = 2026 AND FPeriod "
     "= 1"},
    {"vouchers to generate from",
     " select a.FNumber as FNo,b.FExplanation as FExp,b.FDC,b.FAccountID,c.FNumber as FAccountNumber,c.FName "
     "as "
     "FAccountName, \r\n b.FCurrencyID,e.FName as FCurrencyName,b.FExchangeRate as "
     "FRate,b.FAmountFor,b.FAmount\r\n "
     "from t_Voucher a\r\n inner join t_VoucherEntry b on a.FVoucherID = b.FVoucherID\r\n inner join "
     "t_Account c on "
     "b.FAccountID = c.FAccountID\r\n inner join t_Currency e on b.FCurrencyID = e.FCurrencyID\r\n Where "
     "a.FYear = "
     "2026 And a.FPeriod = 1 and a.FNumber >=1 and a.FNumber <=20\r\n and a.FTranType = 0\r\norder by "
     "b.FVoucherID,b.FEntryID",
     "SELECT a.FNumber, b.FExplanation, b.FDC, b.FAccountID, c.FNumber, c.FName, b.FCurrencyID, e.FName, "
     "b.FExchangeRate, b.FAmountFor, b.FAmount FROM t_Voucher a JOIN t_VoucherEntry b ON a.FVoucherID = "
     "b.FVoucherID "
     "JOIN t_Account c ON b.FAccountID = c.FAccountID JOIN t_Currency e ON b.FCurrencyID = e.FCurrencyID "
     "WHERE "
     "a.FYear = 2026 AND a.FPeriod = 1 AND a.FNumber >= 1 AND a.FNumber <= 20 AND a.FTranType = 0 ORDER BY "
     "b.FVoucherID, b.FEntryID"},
};

// The set's own order, which its indexes stand in.
int CompareTexts(void*, int sizeA, const void* a, int sizeB, const void* b) {
    return tsql::engine::CompareTexts(
        ado::AccountSetCollation(),
        std::string_view(static_cast<const char*>(a), static_cast<std::size_t>(sizeA)),
        std::string_view(static_cast<const char*>(b), static_cast<std::size_t>(sizeB)));
}

// A value as its column has it.
Variant ValueOf(sqlite3_stmt* query, int column, ado::DataType type) {
    if (sqlite3_column_type(query, column) == SQLITE_NULL) return Variant::Null();
    const auto text = [&] {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(query, column));
        return std::string_view(bytes, static_cast<std::size_t>(sqlite3_column_bytes(query, column)));
    };
    switch (type) {
        case ado::DataType::kBoolean:
            return Variant(sqlite3_column_int(query, column) != 0);
        case ado::DataType::kTinyInt:
        case ado::DataType::kSmallInt:
            return Variant(static_cast<std::int16_t>(sqlite3_column_int(query, column)));
        case ado::DataType::kInteger:
            return Variant(static_cast<std::int32_t>(sqlite3_column_int(query, column)));
        case ado::DataType::kBigInt:
            return Variant(static_cast<std::int64_t>(sqlite3_column_int64(query, column)));
        case ado::DataType::kDouble:
            return Variant(sqlite3_column_double(query, column));
        case ado::DataType::kCurrency:
        case ado::DataType::kNumeric:
            return Variant(automation::Decimal::Parse(text()).value());
        case ado::DataType::kTimeStamp:
            return Variant(automation::DateTime::Parse(text()).value());
        default:
            return Variant(std::string(text()));
    }
}

// Its rows, which outlive the statement.
std::vector<Variant> KeepAll(sqlite3_stmt* query, const std::vector<ado::DataType>& types) {
    std::vector<Variant> values;
    while (sqlite3_step(query) == SQLITE_ROW) {
        for (std::size_t i = 0; i < types.size(); ++i)
            values.push_back(ValueOf(query, static_cast<int>(i), types[i]));
    }
    sqlite3_reset(query);
    return values;
}

double Processor(const std::function<void()>& body) {
    const std::clock_t begin = std::clock();
    body();
    return 1e6 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

int ReadAll(sqlite3_stmt* query) {
    int rows = 0;
    std::size_t read = 0;
    while (sqlite3_step(query) == SQLITE_ROW) {
        ++rows;
        for (int column = 0; column < sqlite3_column_count(query); ++column) {
            const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(query, column));
            if (text != nullptr) read += std::char_traits<char>::length(text);
        }
    }
    sqlite3_reset(query);
    Require(rows == 0 || read > 0, "something read");
    return rows;
}

// The types of a recordset's columns, where the statement by hand gives the same values.
std::vector<ado::DataType> SameTypes(const ado::Recordset& ours, sqlite3_stmt* query, const char* name) {
    std::vector<ado::DataType> types;
    for (const ado::Column& column : ours.Columns())
        types.push_back(column.type);
    Require(sqlite3_column_count(query) == static_cast<int>(types.size()), name);
    const std::vector<Variant> kept = KeepAll(query, types);
    Require(kept.size() == static_cast<std::size_t>(ours.RecordCount()) * types.size(), name);
    for (std::size_t i = 0; i < kept.size(); ++i)
        Require(kept[i] == ours.ValueAt(i / types.size(), i % types.size()), name);
    return types;
}

void ShowStatements(ado::Connection& connection, bench::RawDatabase& raw, int repeats, int rounds) {
    std::printf("%-28s %6s %12s %12s %12s %10s %10s\n", "statement", "rows", "read, us", "kept, us",
                "T-SQL, us", "of read", "of kept");
    for (const Pair& pair : kStatements) {
        sqlite3_stmt* query = raw.Prepare(pair.sqlite);
        const int rows = ReadAll(query);
        const std::vector<ado::DataType> types = SameTypes(*connection.Execute(pair.tsql), query, pair.name);
        std::vector<double> read;
        std::vector<double> kept;
        std::vector<double> candidate;
        for (int round = 0; round < rounds; ++round) {
            const auto time = [&](const auto& body) {
                return Processor([&] {
                    for (int i = 0; i < repeats; ++i)
                        body();
                });
            };
            read.push_back(time([&] { ReadAll(query); }));
            kept.push_back(time([&] { KeepAll(query, types); }));
            candidate.push_back(time([&] { connection.Execute(pair.tsql); }));
        }
        sqlite3_finalize(query);
        const double ours = bench::Median(candidate);
        std::printf("%-28s %6d %12.2f %12.2f %12.2f %8.2f x %8.2f x\n", pair.name, rows,
                    bench::Median(read) / repeats, bench::Median(kept) / repeats, ours / repeats,
                    ours / bench::Median(read), ours / bench::Median(kept));
    }
}

// A template's lines as the window hands them to a save: no items, four lines a number.
std::string CellText(int row, int c) {
    namespace column = store::column;
    switch (c) {
        case column::kNo:
            return std::to_string((row + 3) / 4);
        case column::kExplanation:
            return "支付第" + std::to_string(row) + "笔货款";
        case column::kDirection:
            return row % 2 == 0 ? "贷" : "借";
        case column::kAccountId:
        case column::kAccountNumber:
            return "1001";
        case column::kAccountName:
            return "库存现金";
        case column::kCurrencyName:
            return "人民币";
        case column::kAmount:
            return std::to_string(row) + ".25";
        default:
            return {};
    }
}

// The same changes by hand: rows as the engine stored them, statements prepared once, one transaction.
class SaveByHand {
  public:
    explicit SaveByHand(bench::RawDatabase& raw) : raw_(raw) {
        sqlite3_stmt* rows =
            raw.Prepare("SELECT * FROM t_VchTemplateEntry WHERE FID = 900 ORDER BY FEntryID");
        while (sqlite3_step(rows) == SQLITE_ROW) {
            lines_.emplace_back();
            for (int i = 0; i < sqlite3_column_count(rows); ++i)
                lines_.back().push_back(sqlite3_value_dup(sqlite3_column_value(rows, i)));
        }
        std::string marks = "?";
        for (int i = 1; i < sqlite3_column_count(rows); ++i)
            marks += ",?";
        sqlite3_finalize(rows);
        insert_ = Prepare("INSERT INTO t_VchTemplateEntry VALUES(" + marks + ")");
    }
    SaveByHand(const SaveByHand&) = delete;
    SaveByHand& operator=(const SaveByHand&) = delete;
    ~SaveByHand() {
        for (sqlite3_stmt* statement : prepared_)
            sqlite3_finalize(statement);
        for (const auto& line : lines_) {
            for (sqlite3_value* value : line)
                sqlite3_value_free(value);
        }
    }

    int Lines() const { return static_cast<int>(lines_.size()); }
    void Run() {
        Do(begin_);
        Do(clear_);
        std::string last;
        for (const auto& line : lines_) {
            const std::string number = reinterpret_cast<const char*>(sqlite3_value_text(line[2]));
            if (number != last) Control(line);
            last = number;
            for (std::size_t i = 0; i < line.size(); ++i)
                sqlite3_bind_value(insert_, static_cast<int>(i) + 1, line[i]);
            Do(insert_);
        }
        Do(forget_);
        Do(items_);
        Do(mark_);
        Do(commit_);
    }

  private:
    sqlite3_stmt* Prepare(const std::string& sql) {
        prepared_.push_back(raw_.Prepare(sql.c_str()));
        return prepared_.back();
    }
    static bool Do(sqlite3_stmt* statement) {
        const int code = sqlite3_step(statement);
        Require(code == SQLITE_ROW || code == SQLITE_DONE, "a step by hand");
        sqlite3_reset(statement);
        return code == SQLITE_ROW;
    }
    void Control(const std::vector<sqlite3_value*>& line) {
        sqlite3_bind_value(known_, 1, line[2]);
        sqlite3_stmt* change = Do(known_) ? update_ : add_;
        sqlite3_bind_value(change, 1, line[2]);
        sqlite3_bind_value(change, 2, line[3]);
        Do(change);
    }

    bench::RawDatabase& raw_;
    std::vector<std::vector<sqlite3_value*>> lines_;
    std::vector<sqlite3_stmt*> prepared_;
    sqlite3_stmt* insert_ = nullptr;
    sqlite3_stmt* begin_ = Prepare("BEGIN IMMEDIATE");
    sqlite3_stmt* commit_ = Prepare("COMMIT");
    sqlite3_stmt* clear_ = Prepare("DELETE FROM t_VchTemplateEntry WHERE FID = 900");
    sqlite3_stmt* known_ = Prepare("SELECT 1 FROM t_VchTpControl WHERE FID = 900 AND FNo = ?1");
    sqlite3_stmt* add_ = Prepare(
        "INSERT INTO t_VchTpControl(FID, FNo, FUseFrequency, FKey, FFileCount, FIsCanUsed) "
        "VALUES(900, ?1, 0, ?2, 0, 0)");
    sqlite3_stmt* update_ = Prepare("UPDATE t_VchTpControl SET FKey = ?2 WHERE FID = 900 AND FNo = ?1");
    sqlite3_stmt* forget_ = Prepare(
        "DELETE FROM t_VchTpControl WHERE FID = 900 AND FNo NOT IN (SELECT FNo FROM "
        "t_VchTemplateEntry WHERE FID = 900)");
    sqlite3_stmt* items_ =
        Prepare("SELECT 1 FROM t_VchTemplateEntry WHERE FID = 900 AND FItemsInfo <> '' LIMIT 1");
    sqlite3_stmt* mark_ = Prepare(
        "UPDATE t_VchTpControl SET FIsCanUsed = CASE WHEN FNo IN (SELECT e.FNo FROM t_VchTemplateEntry e "
        "WHERE "
        "e.FID = 900 AND (NOT EXISTS (SELECT 1 FROM t_Account a WHERE a.FNumber = "
        "trim(ifnull(e.FAccountNumber, "
        "'')) AND a.FDetail = 1) OR e.FSettleName <> '' AND NOT EXISTS (SELECT 1 FROM t_Settle s WHERE "
        "s.FName = "
        "trim(e.FSettleName)) OR e.FCurrencyName <> '' AND NOT EXISTS (SELECT 1 FROM t_Currency c, t_Account "
        "a "
        "WHERE c.FName = trim(e.FCurrencyName) AND a.FNumber = trim(e.FAccountNumber) AND a.FDetail = 1 AND "
        "(a.FCurrencyID <> 1 OR c.FCurrencyID = 1)) OR e.FUnitName <> '' AND NOT EXISTS (SELECT 1 FROM "
        "t_MeasureUnit u WHERE u.FMeasureUnitID > 0 AND u.FName = trim(e.FUnitName)))) THEN 0 ELSE 1 END "
        "WHERE "
        "FID = 900");
};

std::string StoredTemplate(ado::Connection& connection) {
    std::string text;
    for (const char* query : {"select * from t_VchTemplateEntry where FID = 900 order by FEntryID",
                              "select * from t_VchTpControl where FID = 900 order by FNo"}) {
        const auto rows = connection.Execute(query);
        for (std::size_t row = 0; row < static_cast<std::size_t>(rows->RecordCount()); ++row) {
            for (std::size_t column = 0; column < rows->ColumnCount(); ++column)
                text += rows->ValueAt(row, column).ToTextOrEmpty() + "|";
        }
    }
    return text;
}

void ShowSaves(ado::Connection& connection, bench::RawDatabase& raw, int rounds) {
    std::printf("\n%-28s %6s %12s %12s %8s\n", "save", "lines", "SQLite, us", "T-SQL, us", "ratio");
    for (const int lines : {1, 10, 100, 1000}) {
        std::map<std::pair<int, int>, std::string> cells;
        const std::string batch = store::SaveBatch("900", lines, [&](int row, int c) -> std::string_view {
            return cells.emplace(std::pair(row, c), CellText(row, c)).first->second;
        });
        connection.Execute(batch);
        const std::string stored = StoredTemplate(connection);
        SaveByHand byHand(raw);
        Require(byHand.Lines() == lines, "every line saved");
        byHand.Run();
        Require(StoredTemplate(connection) == stored, "the same by hand");
        const int repeats = std::max(1, 1000 / lines);
        std::vector<double> base;
        std::vector<double> candidate;
        for (int round = 0; round < rounds; ++round) {
            base.push_back(Processor([&] {
                for (int i = 0; i < repeats; ++i)
                    byHand.Run();
            }));
            candidate.push_back(Processor([&] {
                for (int i = 0; i < repeats; ++i)
                    connection.Execute(batch);
            }));
        }
        Require(StoredTemplate(connection) == stored, "the same again");
        std::printf("%-28s %6d %12.2f %12.2f %7.2f x\n", "a template's lines", lines,
                    bench::Median(base) / repeats, bench::Median(candidate) / repeats,
                    bench::Median(candidate) / bench::Median(base));
    }
}

// Two tables without an index, each value of the one once in the other.
void ShowJoins(ado::Connection& connection, bench::RawDatabase& raw, int rows, int rounds) {
    connection.Execute(
        "create table j_one (n int, d decimal(18,2), s nvarchar(20)) create table j_two (n int, d "
        "decimal(28,4), s "
        "varchar(30))");
    const std::string fill = "with c (i) as (select 1 union all select i + 1 from c where i < " +
                             std::to_string(rows) + ") insert into ";
    connection.Execute(
        fill + "j_one select i, i / 4.0, N'item ' + cast(i as nvarchar(10)) from c option (maxrecursion 0)");
    connection.Execute(
        fill + "j_two select i, i / 4.0, 'ITEM ' + cast(i as varchar(10)) from c option (maxrecursion 0)");
    sqlite3_stmt* query = raw.Prepare("SELECT count(*) FROM j_one a JOIN j_two b ON a.n = b.n");
    const char* const kColumns[] = {"n", "d", "s"};
    std::vector<double> base;
    std::vector<std::vector<double>> times(std::size(kColumns));
    for (int round = 0; round < rounds; ++round) {
        base.push_back(Processor([&] { ReadAll(query); }));
        for (std::size_t i = 0; i < std::size(kColumns); ++i) {
            const std::string column = kColumns[i];
            times[i].push_back(Processor([&] {
                const auto count = connection.Execute("select count(*) as n from j_one a join j_two b on a." +
                                                      column + " = b." + column);
                Require(count->Value(0).ToText() == std::to_string(rows), "every row joined");
            }));
        }
    }
    sqlite3_finalize(query);
    std::printf("\njoins of %d rows without an index\n%-28s %12.1f ms\n", rows, "SQLite on integers",
                bench::Median(base) / 1000);
    for (std::size_t i = 0; i < std::size(kColumns); ++i) {
        std::printf("T-SQL on %-19s %12.1f ms %7.2f x\n", kColumns[i], bench::Median(times[i]) / 1000,
                    bench::Median(times[i]) / bench::Median(base));
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int repeats = argc > 1 ? std::atoi(argv[1]) : 2000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 9;
    const int rows = argc > 3 ? std::atoi(argv[3]) : 100000;
    bench::TemporaryAccountSet set;
    host::RegisterProviders();
    host::CreateAccountSetFile(set.Path(), {true, 0});
    const auto connection = ado::OpenConnection("Provider=VelaAccountSet;Data Source=" + set.Path());
    bench::RawDatabase raw(set.Path());
    sqlite3_create_collation_v2(raw.Handle(), "ts_text", SQLITE_UTF8, nullptr, CompareTexts, nullptr);
    ShowStatements(*connection, raw, repeats, rounds);
    ShowSaves(*connection, raw, rounds);
    ShowJoins(*connection, raw, rows, rounds);
    return 0;
}
