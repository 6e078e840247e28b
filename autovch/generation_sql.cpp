#include "autovch/generation_sql.h"

#include "entry/sql_text.h"
#include "store/template_batches.h"

namespace vicenter::autovch {

using automation::Variant;
using automation::VariantType;
using entry::AppendSqlQuoted;

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
