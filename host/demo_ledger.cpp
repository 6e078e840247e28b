#include "host/demo_ledger.h"

#include <algorithm>
#include <string>

#include "host/demo_master.h"
#include "host/demo_templates.h"
#include "host/demo_vouchers.h"
#include "host/sql_writer.h"
#include "store/template_columns.h"

namespace vicenter::host {

namespace {

void WriteUsers(SqlWriter& writer) {
    writer.Add("update t_User set FName = N'林晓岚', FDescription = N'会计主管' where FUserID = 1");
    writer.Add("insert into t_User(FUserID,FName,FDescription) values(2,N'陈静宜',N'会计')");
    writer.Add("insert into t_User(FUserID,FName,FDescription) values(3,N'周敏',N'出纳')");
    writer.Add("insert into t_UserRight(FUserID,FGroupType,FGroupID,FAccess) values(2,4,4,3145728)");
    // The cashier may see the ledger, but not change voucher templates.
    writer.Add("insert into t_UserRight(FUserID,FGroupType,FGroupID,FAccess) values(3,4,4,1)");
    writer.Add(
        "insert into t_UserCloud(FUserID,FCloudUserID,FCloudUserName,FCloudURL) "
        "values(1,'u100001',N'林晓岚','cloud://u100001')");
}

// The firm has shown the amounts, made room for its accounts' names, and left the remark what a window of its
// usual size has besides.
void WriteColumnProfiles(SqlWriter& writer) {
    constexpr int kAccountNameWidth = 2000;
    constexpr int kRemarkWidth = 1800;
    std::string profile;
    for (const store::ColumnSpec& spec : store::Columns()) {
        const bool hidden = spec.designedHidden && spec.column != store::column::kAmount;
        const int width = spec.column == store::column::kAccountName ? kAccountNameWidth
                          : spec.column == store::column::kRemark    ? kRemarkWidth
                                                                     : spec.designedWidth;
        if (!profile.empty()) profile += ',';
        profile += std::to_string(spec.column) + (hidden ? "|1|" : "|0|") + std::to_string(width);
    }
    for (const char* user : {"1", "2", "3"})
        writer.Add(std::string("insert into t_VchTpProfile(FUserID,FValue) values(") + user + "," +
                   SqlLiteral(profile) + ")");
}

void WriteCalendar(SqlWriter& writer) {
    writer.Add("update t_SystemProfile set FValue = '" + std::to_string(kDemoLastYear) +
               "' where FCategory = 'GL' and FKey = 'CurrentYear'");
    writer.Add("update t_SystemProfile set FValue = '" + std::to_string(kDemoLastPeriod) +
               "' where FCategory = 'GL' and FKey = 'CurrentPeriod'");
    writer.Add(
        "insert into t_SystemProfile(FCategory,FKey,FValue) "
        "values('GL','CompanyName',N'林氏茶礼商贸有限公司')");
    writer.Add("insert into t_VoucherGroup(FGroupID,FName) values(2,N'收')");
    writer.Add("insert into t_VoucherGroup(FGroupID,FName) values(3,N'付')");
    writer.Add("insert into t_VoucherGroup(FGroupID,FName) values(4,N'转')");
}

std::string TwoDigits(int value) {
    return (value < 10 ? "0" : "") + std::to_string(value);
}

void WriteEntry(SqlWriter& writer, const std::string& voucherId, std::size_t entryId,
                const DemoEntry& entry) {
    writer.Add(
        "insert into "
        "t_VoucherEntry(FVoucherID,FEntryID,FExplanation,FAccountID,FDC,FCurrencyID,FExchangeRate,"
        "FAmountFor,FAmount,FQuantity,FMeasureUnitID,FUnitPrice,FDetailID,FSettleTypeID,FSettleNo) values(" +
        voucherId + "," + std::to_string(entryId) + "," + SqlLiteral(entry.explanation) + "," +
        std::to_string(entry.account->id) + "," + (entry.debit ? "1" : "0") + "," +
        std::to_string(entry.currencyId) + "," + RateText(entry.rate) + "," + CentsText(entry.foreignCents) +
        "," + CentsText(entry.cents) + "," + std::to_string(entry.quantity) + "," +
        std::to_string(entry.quantity != 0 ? entry.account->unitId : 0) + "," + CentsText(entry.priceCents) +
        "," + std::to_string(entry.detailId) + "," + std::to_string(entry.settleId) + "," +
        SqlLiteral(entry.settleNumber) + ")");
}

void WriteVoucher(SqlWriter& writer, int id, const DemoVoucher& voucher) {
    std::int64_t total = 0;
    for (const DemoEntry& entry : voucher.entries)
        total += entry.debit ? entry.cents : 0;
    const std::string voucherId = std::to_string(id);
    writer.Add(
        "insert into t_Voucher(FVoucherID,FDate,FYear,FPeriod,FGroupID,FNumber,FExplanation,FAttachments,"
        "FEntryCount,FDebitTotal,FCreditTotal,FPosted,FPreparerID,FPosterID,FTranType) values(" +
        voucherId + ",'" + std::to_string(voucher.year) + TwoDigits(voucher.period) + TwoDigits(voucher.day) +
        "'," + std::to_string(voucher.year) + "," + std::to_string(voucher.period) + "," +
        std::to_string(static_cast<int>(voucher.group)) + "," + std::to_string(voucher.number) + "," +
        SqlLiteral(voucher.entries.front().explanation) + "," + std::to_string(voucher.attachments) + "," +
        std::to_string(voucher.entries.size()) + "," + CentsText(total) + "," + CentsText(total) + ",1," +
        (voucher.group == DemoGroup::Transfer ? "2" : "1") + ",1," +
        std::to_string(static_cast<int>(voucher.origin)) + ")");
    for (std::size_t i = 0; i < voucher.entries.size(); ++i)
        WriteEntry(writer, voucherId, i + 1, voucher.entries[i]);
}

std::int64_t CountVouchers(std::int64_t extra) {
    DemoMaster master = DemoMaster::Read();
    std::int64_t count = 0;
    DemoVouchers(master).Generate(extra, 0, [&](const DemoVoucher&) { ++count; });
    return count;
}

// How many vouchers beside the firm's own bring it close to a total, without going past it: found by runs
// that write nothing.
std::int64_t ExtraFor(std::int64_t total) {
    const std::int64_t own = CountVouchers(0);
    std::int64_t extra = std::max<std::int64_t>(0, total - own);
    while (extra > 0) {
        const std::int64_t count = CountVouchers(extra);
        if (count <= total) break;
        extra -= std::min(extra, count - total);
    }
    return extra;
}

}  // namespace

void PrepareDemo(ado::Connection& connection, const DemoOptions& options) {
    const std::int64_t extra = options.vouchers > 0 ? ExtraFor(options.vouchers) : 0;

    SqlWriter writer(connection);
    DemoMaster master = DemoMaster::Read();
    WriteUsers(writer);
    WriteColumnProfiles(writer);
    WriteCalendar(writer);
    master.Write(writer);
    int id = 0;
    DemoVouchers(master).Generate(extra, options.vouchers, [&](const DemoVoucher& voucher) {
        master.ItemDetails().WriteNew(writer);
        WriteVoucher(writer, ++id, voucher);
    });
    WriteDemoTemplates(master, writer);
    writer.Flush();
}

}  // namespace vicenter::host
