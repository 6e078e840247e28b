// A template generated from 50,000 posted entry lines with every optional field, beside the least that the
// same job takes in bare SQLite: the same query stepped once, its values bound to one prepared INSERT, the
// items texts asked for once per detail id, one row for the header and one per template number, all in one
// transaction.
//
// The vouchers are those of a month of the demo ledger, as often as it takes. Both results are compared row
// by row. Round trips are the batches that reach the connection. Usage: generation_bench [lines] [rounds]

#include <ctime>
#include <map>

#include "autovch/generation.h"
#include "bench/account_set_bench.h"
#include "entry/host_context.h"
#include "host/account_set.h"
#include "host/components/components.h"
#include "platform/system/surroundings.h"
#include "store/component_classes.h"

namespace {

using namespace vicenter;
using bench::Require;

constexpr const char* kGenerated = "generated";
constexpr const char* kBareId = "900";
constexpr const char* kColumns =
    "FNo,FExp,FDC,FAccountID,FAccountNumber,FAcctountName,FFileCount,FSettleID,FSettleName,FSettleNumber,"
    "FCurrencyID,FCurrencyName,FRate,FAmountFor,FUnitID,FUnitName,FQty,FPrice,FAmount,FItemsInfo";
constexpr int kInsertedColumns = 20;

class SilentBoxes : public system::MessageBoxes {
  public:
    system::MessageResult Show(const std::string& text, system::MessageButtons, system::MessageIcon,
                               const std::string&) override {
        std::fprintf(stderr, "%s\n", text.c_str());
        return system::MessageResult::No;
    }
};

// Counts what reaches the account set.
class CountingConnection : public ado::Connection {
  public:
    void Open(const std::string& text) override {
        inner_ = ado::OpenConnection(host::FileConnectString(ado::ConnectString(text).Value("Data Source")));
    }
    bool IsOpen() const override { return inner_ && inner_->IsOpen(); }
    ado::RecordsetRef Execute(std::string_view batch, std::int64_t* affected) override {
        ++count;
        const std::clock_t begin = std::clock();
        ado::RecordsetRef rows = inner_->Execute(batch, affected);
        const double taken = 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        const bool query = batch.find("from t_Voucher a") != batch.npos;
        times[query                           ? "voucher query"
              : batch.starts_with(" declare") ? "batch"
              : batch.starts_with("exec")     ? "pro_VchTpCanUsed"
                                              : "the others"] += taken;
        return rows;
    }
    void Close() override { inner_->Close(); }
    const std::vector<ado::DriverError>& Errors() const override { return inner_->Errors(); }

    static inline int count = 0;
    static inline std::map<std::string, double> times;  // processor time by kind of batch

  private:
    ado::ConnectionRef inner_;
};

// One period with that many lines of manual vouchers.
void CopyVouchers(bench::RawDatabase& raw, int lines) {
    const std::string from = " FROM t_Voucher v JOIN k WHERE v.FYear=2026 AND v.FPeriod=10 AND v.FTranType=0";
    const auto copies = [&](int count) {
        return "WITH RECURSIVE k(k) AS (SELECT 1 UNION ALL SELECT k+1 FROM k WHERE k<" +
               std::to_string(count) + ") ";
    };
    const auto month = raw.Number(
        "SELECT count(*) FROM t_VoucherEntry e JOIN t_Voucher v ON v.FVoucherID=e.FVoucherID WHERE "
        "v.FYear=2026 "
        "AND v.FPeriod=10 AND v.FTranType=0");
    const int count = static_cast<int>((lines + month - 1) / month);
    raw.Run("BEGIN");
    raw.Run(
        ("INSERT INTO "
         "t_VoucherEntry(FVoucherID,FEntryID,FExplanation,FAccountID,FDC,FCurrencyID,FExchangeRate,"
         "FAmountFor,FAmount,FQuantity,FMeasureUnitID,FUnitPrice,FDetailID,FSettleTypeID,FSettleNo) " +
         copies(count) +
         "SELECT v.FVoucherID+k*1000000,e.FEntryID,e.FExplanation,e.FAccountID,e.FDC,e.FCurrencyID,"
         "e.FExchangeRate,e.FAmountFor,e.FAmount,e.FQuantity,e.FMeasureUnitID,e.FUnitPrice,e.FDetailID,"
         "e.FSettleTypeID,e.FSettleNo FROM t_Voucher v JOIN t_VoucherEntry e ON e.FVoucherID=v.FVoucherID "
         "JOIN k WHERE v.FYear=2026 AND v.FPeriod=10 AND v.FTranType=0")
            .c_str());
    raw.Run(
        ("INSERT INTO t_Voucher(FVoucherID,FDate,FYear,FPeriod,FGroupID,FNumber,FExplanation,FAttachments,"
         "FEntryCount,FDebitTotal,FCreditTotal,FPosted,FPreparerID,FPosterID,FTranType) " +
         copies(count) +
         "SELECT v.FVoucherID+k*1000000,v.FDate,2027,1,v.FGroupID,v.FNumber+k*1000,v.FExplanation,"
         "v.FAttachments,v.FEntryCount,v.FDebitTotal,v.FCreditTotal,v.FPosted,v.FPreparerID,v.FPosterID,"
         "v.FTranType" +
         from)
            .c_str());
    raw.Run("COMMIT");
}

// The items text of a detail id in the two queries that it takes.
std::string ItemsText(bench::RawDatabase& raw, std::int64_t detailId) {
    const std::string id = std::to_string(detailId);
    std::string list;
    std::string joins;
    sqlite3_stmt* classes =
        raw.Prepare(("SELECT a.FItemClassID,b.FSQLTableName FROM t_ItemDetailV a JOIN t_ItemClass b ON "
                     "a.FItemClassID=b.FItemClassID WHERE a.FDetailID=" +
                     id + " AND b.FItemClassID>0 ORDER BY a.FItemClassID")
                        .c_str());
    while (sqlite3_step(classes) == SQLITE_ROW) {
        const std::string name = "F" + std::to_string(sqlite3_column_int(classes, 0));
        const std::string table = reinterpret_cast<const char*>(sqlite3_column_text(classes, 1));
        list += (list.empty() ? "" : "||','||") + ("ifnull(" + name + ".FNumber,'')");
        joins += " LEFT JOIN " + table + " " + name + " ON a." + name + "=" + name + ".FItemID";
    }
    sqlite3_finalize(classes);
    if (list.empty()) return {};
    sqlite3_stmt* items =
        raw.Prepare(("SELECT " + list + " FROM t_ItemDetail a" + joins + " WHERE a.FDetailID=" + id).c_str());
    std::string text;
    if (sqlite3_step(items) == SQLITE_ROW)
        text = reinterpret_cast<const char*>(sqlite3_column_text(items, 0));
    sqlite3_finalize(items);
    return text;
}

void GenerateBare(bench::RawDatabase& raw) {
    const std::string id = kBareId;
    raw.Run("BEGIN IMMEDIATE");
    raw.Run(("INSERT INTO t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) SELECT " + id +
             ",'bare',1,'',FDate FROM t_VchTemplate LIMIT 1")
                .c_str());
    sqlite3_stmt* query = raw.Prepare(
        "SELECT a.FNumber,b.FExplanation,b.FDC,b.FAccountID,c.FNumber,c.FName,a.FAttachments,b.FSettleTypeID,"
        "ifnull(d.FName,''),ifnull(d.FNumber,''),b.FCurrencyID,e.FName,b.FExchangeRate,b.FAmountFor,"
        "b.FMeasureUnitID,ifnull(f.FName,''),b.FQuantity,b.FUnitPrice,b.FAmount,b.FDetailID FROM t_Voucher a "
        "JOIN t_VoucherEntry b ON a.FVoucherID=b.FVoucherID JOIN t_Account c ON b.FAccountID=c.FAccountID "
        "LEFT JOIN t_Settle d ON b.FSettleTypeID=d.FItemID AND b.FSettleTypeID>0 "
        "JOIN t_Currency e ON b.FCurrencyID=e.FCurrencyID "
        "LEFT JOIN t_MeasureUnit f ON b.FMeasureUnitID=f.FMeasureUnitID AND b.FMeasureUnitID>0 "
        "WHERE a.FYear=2027 AND a.FPeriod=1 AND a.FNumber>=1 AND a.FNumber<=999999999 AND a.FTranType=0 "
        "ORDER BY b.FVoucherID,b.FEntryID");
    sqlite3_stmt* insert =
        raw.Prepare((std::string("INSERT INTO t_VchTemplateEntry(FID,FEntryID,") + kColumns + ") VALUES(" +
                     id + ",?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)")
                        .c_str());
    std::map<std::int64_t, std::string> items{{0, ""}};
    for (int line = 1; sqlite3_step(query) == SQLITE_ROW; ++line) {
        sqlite3_bind_int(insert, 1, line);
        for (int column = 0; column < kInsertedColumns - 1; ++column)
            sqlite3_bind_value(insert, column + 2, sqlite3_column_value(query, column));
        const std::int64_t detailId = sqlite3_column_int64(query, kInsertedColumns - 1);
        auto found = items.find(detailId);
        if (found == items.end()) found = items.emplace(detailId, ItemsText(raw, detailId)).first;
        sqlite3_bind_text(insert, kInsertedColumns + 1, found->second.data(),
                          static_cast<int>(found->second.size()), SQLITE_STATIC);
        Require(sqlite3_step(insert) == SQLITE_DONE, "insert");
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_finalize(query);
    raw.Run(("INSERT INTO t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount) SELECT "
             "FID,FNo,0,FExp,FFileCount FROM "
             "t_VchTemplateEntry WHERE FID=" +
             id +
             " AND FEntryID IN (SELECT min(FEntryID) FROM t_VchTemplateEntry "
             "WHERE FID=" +
             id + " GROUP BY FNo)")
                .c_str());
    raw.Run("COMMIT");
}

}  // namespace

int main(int argc, char** argv) {
    const int lines = argc > 1 ? std::atoi(argv[1]) : 50000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 7;
    bench::TemporaryAccountSet accountSet;
    host::CreateAccountSetFile(accountSet.Path(), {true, 0});
    store::RegisterComponentClasses();
    ado::RegisterProvider("Counted", [] { return std::make_shared<CountingConnection>(); });
    const auto session =
        host::RegisterHostComponents({"Provider=Counted;Data Source=" + accountSet.Path(), 1});
    entry::SetCurrentUserId("1");
    system::Surroundings surroundings = system::Surroundings::Current();
    surroundings.messageBoxes = std::make_shared<SilentBoxes>();
    const system::SurroundingsScope scope(surroundings);
    bench::RawDatabase raw(accountSet.Path());
    CopyVouchers(raw, lines);

    autovch::GenerationRequest request;
    request.filter.year = "2027";
    request.filter.period = "1";
    request.filter.from = "1";
    request.filter.to = "999999999";
    request.templateName = kGenerated;
    request.columns.insert(store::VoucherColumns().begin(), store::VoucherColumns().end());
    const auto clear = [&] {
        const std::string mine =
            " WHERE FID IN (SELECT FID FROM t_VchTemplate WHERE FName IN ('bare','generated'))";
        for (const char* table : {"t_VchTpControl", "t_VchTemplateEntry", "t_VchTemplate"})
            raw.Run(("DELETE FROM " + std::string(table) + mine).c_str());
    };
    const auto generate = [&] { Require(!!autovch::Generate(request).outcome, "the template is generated"); };
    const auto same = [&] {
        const std::string all = std::string("FEntryID,") + kColumns + " FROM t_VchTemplateEntry WHERE FID";
        Require(
            raw.Number(
                ("SELECT count(*) FROM (SELECT " + all + "=900 EXCEPT SELECT " + all + ">900)").c_str()) == 0,
            "the rows are the same");
        Require(raw.Number("SELECT count(*) FROM t_VchTemplateEntry WHERE FID=900") >= lines, "all lines");
        Require(raw.Number("SELECT (SELECT count(*) FROM t_VchTpControl WHERE FID=900)-(SELECT count(*) FROM "
                           "t_VchTpControl WHERE FID>900)") == 0,
                "one control row a number");
    };
    clear();
    GenerateBare(raw);
    generate();
    same();
    const std::int64_t count = raw.Number("SELECT count(*) FROM t_VchTemplateEntry WHERE FID=900");
    const std::int64_t numbers = raw.Number("SELECT count(*) FROM t_VchTpControl WHERE FID=900");
    const std::int64_t details = raw.Number(
        "SELECT count(DISTINCT FDetailID) FROM t_VoucherEntry e JOIN t_Voucher v ON "
        "v.FVoucherID=e.FVoucherID WHERE "
        "v.FYear=2027 AND e.FDetailID<>0");

    std::printf(
        "%lld lines, %lld template numbers, %lld detail ids, every optional field; %d rounds; milliseconds\n",
        static_cast<long long>(count), static_cast<long long>(numbers), static_cast<long long>(details),
        rounds);
    std::vector<double> processor[2];
    const auto timed = [&](int which, const std::function<void()>& body) {
        return [&processor, which, body] {
            const std::clock_t begin = std::clock();
            body();
            processor[which].push_back(1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
        };
    };
    std::vector<bench::Candidate> candidates{
        {"query and prepared inserts in bare SQLite (base)", clear, timed(0, [&] { GenerateBare(raw); })},
        {"the whole generation", clear, timed(1, generate)}};
    std::printf("wall time\n");
    bench::RunInTurn(candidates, rounds, 1, "ms");
    std::printf("processor time\n");
    for (int which = 0; which < 2; ++which) {
        processor[which].erase(processor[which].begin());  // the round to warm up
        candidates[which].times = processor[which];
    }
    bench::Print(candidates, 1, "ms");

    for (const char* to : {"3000", "999999999"}) {
        request.filter.to = to;
        clear();
        CountingConnection::count = 0;
        CountingConnection::times.clear();
        const std::clock_t begin = std::clock();
        generate();
        const double whole = 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        std::printf(
            "%d round trips for %lld lines\n", CountingConnection::count,
            static_cast<long long>(raw.Number(
                "SELECT count(*) FROM t_VchTemplateEntry WHERE FID=(SELECT max(FID) FROM t_VchTemplate)")));
        std::printf("  processor time: whole %.0f ms", whole);
        for (const auto& [kind, time] : CountingConnection::times)
            std::printf(", %s %.0f ms", kind.c_str(), time);
        std::printf("\n");
    }
    return 0;
}
