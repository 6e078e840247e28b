#include "autovch/generation_sql.h"

#include "entry/sql_text.h"
#include "store/template_batches.h"

namespace vicenter::autovch {

using automation::Variant;
using automation::VariantType;
using entry::AppendSqlQuoted;
using entry::kCrLf;
using entry::SqlQuote;

namespace {

// The chosen columns that a generation can fill, each behind the id that belongs to it. The items come last.
std::vector<int> OptionalFields(const ChosenColumns& chosen) {
    std::vector<int> fields;
    for (const int column : store::VoucherColumns()) {
        if (!chosen.contains(column) || column == store::column::kItems) continue;
        if (const int id = store::Column(column).idColumn; id != 0) fields.push_back(id);
        fields.push_back(column);
    }
    if (chosen.contains(store::column::kItems)) fields.push_back(store::column::kItems);
    return fields;
}

// The query names the account's name without the table's misspelling.
constexpr std::string_view kFixedSources[] = {"FNo",        "FExp",           "FDC",
                                              "FAccountID", "FAccountNumber", "FAccountName"};

// How often the progress is asked, in rows.
constexpr std::int64_t kProgressRows = 500;

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

// Numbers as plain decimals without loss, texts as literals, a missing value as the word Null.
void AppendSql(std::string& batch, const Variant& value) {
    switch (value.Type()) {
        case VariantType::Null:
        case VariantType::Empty:
            batch += "Null";
            return;
        case VariantType::Boolean:
            batch += value.ToBoolean() ? '1' : '0';
            return;
        case VariantType::Double:
            batch += value.ToDecimal().ToShortText();
            return;
        case VariantType::Int16:
        case VariantType::Int32:
        case VariantType::Int64:
        case VariantType::Decimal:
            batch += value.ToText();
            return;
        case VariantType::Text:
            AppendSqlQuoted(batch, std::get<std::string>(value.Raw()));
            return;
        default:
            AppendSqlQuoted(batch, value.ToTextOrEmpty());
    }
}

}  // namespace

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
        "count(*) as FLines" +
        std::string(kCrLf) + Joins() + Conditions(filter);
    return sql;
}

std::string EntryColumns(const ChosenColumns& chosen) {
    std::string columns = "FNo,FExp,FDC,FAccountID,FAccountNumber,FAcctountName";
    for (const int column : OptionalFields(chosen))
        columns.append(",").append(store::Column(column).field);
    return columns;
}

std::string GenerationBatch(const TemplateTarget& target, const ChosenColumns& chosen,
                            ado::Recordset& vouchers, const ItemsOf& itemsOf, const Progress& progress) {
    std::string batch;
    store::BeginTemplate(batch, target.overwriteId, target.name, target.userId);

    // Where each value stands in the query, found once for all rows.
    struct Source {
        std::size_t column;
        bool items;
    };
    std::vector<Source> sources;
    for (const std::string_view name : kFixedSources)
        sources.push_back({vouchers.ColumnIndex(name), false});
    for (const int column : OptionalFields(chosen)) {
        sources.push_back(
            {vouchers.ColumnIndex(store::Column(column).field), column == store::column::kItems});
    }

    const store::LineInserts lines(EntryColumns(chosen));
    const std::int64_t all = vouchers.RecordCount();
    batch.reserve(batch.size() + static_cast<std::size_t>(all) * (lines.HeadLength() + sources.size() * 12));
    for (std::int64_t row = 0; row < all; ++row) {
        if (progress && row % kProgressRows == 0 && !progress(row, all)) return {};
        lines.Begin(batch, row + 1);
        for (const Source& source : sources) {
            const Variant& value = vouchers.ValueAt(static_cast<std::size_t>(row), source.column);
            if (&source != sources.data()) batch += ',';
            if (source.items) {
                AppendSqlQuoted(batch, itemsOf(value.ToTextOrEmpty()));
            } else {
                AppendSql(batch, value);
            }
        }
        store::LineInserts::End(batch);
    }
    if (progress && !progress(all, all)) return {};
    return batch + store::ControlRows(target.overwriteId);
}

}  // namespace vicenter::autovch
