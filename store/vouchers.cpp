#include "store/vouchers.h"

#include <algorithm>

#include "entry/sql_text.h"
#include "store/statements.h"

namespace vicenter::store {

using entry::kCrLf;
using entry::SqlQuote;

namespace {

std::string Conditions(const VoucherFilter& filter) {
    std::string sql = " Where a.FYear = " + filter.year + " And a.FPeriod = " + filter.period + kCrLf;
    if (!filter.group.empty()) {
        sql +=
            "and a.FGroupID = (select FGroupID from t_VoucherGroup where FName = " + SqlQuote(filter.group) +
            ") " + kCrLf;
    }
    sql += " and a.FNumber >=" + filter.from + " and a.FNumber <=" + filter.to + kCrLf;
    if (!filter.includeSystem) sql += std::string(" and a.FTranType = 0") + kCrLf;
    return sql;
}

std::string Joins() {
    return std::string("  from t_Voucher a") + kCrLf +
           " inner join t_VoucherEntry b on a.FVoucherID = b.FVoucherID" + kCrLf +
           " inner join t_Account c on b.FAccountID = c.FAccountID" + kCrLf +
           " left join t_Settle d on b.FSettleTypeID = d.FItemID and b.FSettleTypeID >0" + kCrLf +
           " inner join t_Currency e on b.FCurrencyID = e.FCurrencyID" + kCrLf +
           " left join t_MeasureUnit f on b.FMeasureUnitID = f.FMeasureUnitID and b.FMeasureUnitID >0" +
           kCrLf;
}

// The lines that the joins above leave out.
std::string MissingFrom(const VoucherFilter& filter) {
    return std::string(" from t_Voucher a") + kCrLf +
           " inner join t_VoucherEntry b on a.FVoucherID = b.FVoucherID" + kCrLf +
           " left join t_Account c on b.FAccountID = c.FAccountID" + kCrLf +
           " left join t_Currency e on b.FCurrencyID = e.FCurrencyID" + kCrLf + Conditions(filter) +
           " and (c.FAccountID is null or e.FCurrencyID is null)";
}

}  // namespace

bool IsWholeNumber(const std::string& text) {
    return !text.empty() && text.size() <= 18 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string VoucherQuery(const VoucherFilter& filter) {
    return std::string(
               " select a.FNumber as FNo,b.FExplanation as FExp,b.FDC,b.FAccountID,c.FNumber as "
               "FAccountNumber,c.FName "
               "as FAccountName, ") +
           kCrLf +
           " b.FSettleTypeID as FSettleID,isnull(d.FName,'') as FSettleName,ISNULL(d.FNumber,'') as "
           "FSettleNumber," +
           kCrLf +
           " b.FCurrencyID,e.FName as FCurrencyName,b.FExchangeRate as "
           "FRate,b.FAmountFor,b.FAmount,b.FQuantity as "
           "FQty," +
           kCrLf +
           " b.FUnitPrice as FPrice,b.FMeasureUnitID as FUnitID,ISNULL(f.FName,'') as FUnitName,'' as "
           "FRemark," +
           kCrLf + " a.FAttachments as FFileCount,b.FDetailID as FItemsInfo" + kCrLf + Joins() +
           Conditions(filter) + "order by b.FVoucherID,b.FEntryID";
}

std::string VoucherCountQuery(const VoucherFilter& filter) {
    std::string sql =
        "select count(distinct a.FNumber) as FNumbers,count(distinct a.FVoucherID) as FVouchers,"
        "count(*) as FLines,(select count(*)" +
        MissingFrom(filter) + ") as FMissing" + kCrLf + Joins() + Conditions(filter);
    return sql;
}

std::vector<std::string> ReadVoucherGroups() {
    std::vector<std::string> names;
    const ado::RecordsetRef groups =
        GetRecordset("select FGroupID,FName from t_VoucherGroup order by FGroupID ");
    if (!groups) return names;
    for (; !groups->AtEnd(); groups->MoveNext())
        names.push_back(groups->Value("FName").ToTextOrEmpty());
    return names;
}

VoucherNumbers ReadVoucherNumbers(const std::string& year, const std::string& period) {
    if (!IsWholeNumber(year) || !IsWholeNumber(period)) return {};
    const ado::RecordsetRef numbers = GetRecordset(
        "select isnull(MIN(FNumber),0) as FMinNum,isnull(MAX(FNumber),0) as FMaxNum from t_Voucher where "
        "FYear = " +
        year + " and FPeriod = " + period);
    if (!numbers || numbers->AtEnd()) return {};
    return {numbers->Value("FMinNum").ToTextOrEmpty(), numbers->Value("FMaxNum").ToTextOrEmpty()};
}

VoucherCount CountVouchers(const VoucherFilter& filter) {
    const ado::RecordsetRef counts = GetRecordset(VoucherCountQuery(filter));
    if (!counts || counts->AtEnd()) return {};
    return {counts->Value("FNumbers").ToInt64(), counts->Value("FVouchers").ToInt64(),
            counts->Value("FLines").ToInt64(), counts->Value("FMissing").ToInt64()};
}

std::vector<GroupOfNumber> ReadGroupsOfNumbers(const VoucherFilter& filter) {
    std::vector<GroupOfNumber> found;
    const ado::RecordsetRef rows = GetRecordset(
        "select a.FNumber as FNo,g.FName as FGroup,count(*) as FVouchers from t_Voucher a inner join "
        "t_VoucherGroup g on a.FGroupID = g.FGroupID" +
        std::string(kCrLf) + Conditions(filter) +
        " group by a.FNumber,g.FGroupID,g.FName order by a.FNumber,g.FGroupID");
    if (!rows) return found;
    for (; !rows->AtEnd(); rows->MoveNext()) {
        found.push_back({rows->Value("FNo").ToInt64(), rows->Value("FGroup").ToTextOrEmpty(),
                         rows->Value("FVouchers").ToInt64()});
    }
    return found;
}

MissingLines ReadMissingLines(const VoucherFilter& filter) {
    MissingLines missing;
    const ado::RecordsetRef rows =
        GetRecordset("select a.FNumber as FNo,count(*) as FMissing" + MissingFrom(filter) +
                     " group by a.FNumber order by a.FNumber");
    if (!rows) return missing;
    for (; !rows->AtEnd(); rows->MoveNext()) {
        missing.numbers.push_back(rows->Value("FNo").ToTextOrEmpty());
        missing.lines += rows->Value("FMissing").ToInt64();
    }
    return missing;
}

}  // namespace vicenter::store
