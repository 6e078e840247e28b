#include "autovch/generation_sql.h"

#include <cmath>

#include "entry/sql_text.h"
#include "store/column_room.h"
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

// What every generation fills.
constexpr int kFixedColumns[] = {
    store::column::kNo,        store::column::kExplanation,   store::column::kDirection,
    store::column::kAccountId, store::column::kAccountNumber, store::column::kAccountName};

// The query names the account's name without the table's misspelling.
std::string_view SourceField(int column) {
    return column == store::column::kAccountName ? "FAccountName" : store::Column(column).field;
}

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

// Where a value stands in the query, and the column of the line that it goes to.
struct Source {
    std::size_t place;
    int column;
};

// Found once for all rows.
std::vector<Source> FindSources(const ChosenColumns& chosen, const ado::Recordset& vouchers) {
    std::vector<Source> sources;
    for (const int column : kFixedColumns)
        sources.push_back({vouchers.ColumnIndex(SourceField(column)), column});
    for (const int column : OptionalFields(chosen))
        sources.push_back({vouchers.ColumnIndex(store::Column(column).field), column});
    return sources;
}

// Whether a value is so short or small that every column has room for it: nearly all are.
bool FitsAnyway(const store::ColumnSpec& spec, const Variant& value) {
    constexpr double kSmall = 1e9;
    switch (value.Type()) {
        case VariantType::Double:
        case VariantType::Int64:
        case VariantType::Decimal:
            return std::fabs(value.ToDouble()) < kSmall;
        case VariantType::Text:
            return value.AsText().size() <= static_cast<std::size_t>(spec.maxCharacters);
        default:
            return true;
    }
}

void TakeFault(std::int64_t row, const Source& source, const Variant& value, const Variant& number,
               std::vector<store::LineFault>& faults) {
    const store::ColumnSpec& spec = store::Column(source.column);
    if (FitsAnyway(spec, value)) return;
    std::string text = value.ToTextOrEmpty();
    const std::string why = store::WhyNoRoom(spec, text);
    if (why.empty()) return;
    faults.push_back({static_cast<std::int32_t>(row + 1), 0, std::string(spec.header), std::move(text),
                      why + "（凭证号 " + number.ToTextOrEmpty() + "）"});
}

}  // namespace

std::string EntryColumns(const ChosenColumns& chosen) {
    std::string columns;
    for (const int column : kFixedColumns)
        columns.append(columns.empty() ? "" : ",").append(store::Column(column).field);
    for (const int column : OptionalFields(chosen))
        columns.append(",").append(store::Column(column).field);
    return columns;
}

std::string GenerationBatch(const TemplateTarget& target, const ChosenColumns& chosen,
                            ado::Recordset& vouchers, const ItemsOf& itemsOf, const Progress& progress,
                            std::vector<store::LineFault>& faults, const LeftOut& without) {
    std::string batch;
    store::BeginTemplate(batch, target.overwriteId, target.name, target.userId);

    const std::vector<Source> sources = FindSources(chosen, vouchers);
    const store::LineInserts lines(EntryColumns(chosen));
    const std::int64_t all = vouchers.RecordCount();
    batch.reserve(batch.size() + static_cast<std::size_t>(all) * (lines.HeadLength() + sources.size() * 12));
    std::int64_t line = 0;
    for (std::int64_t row = 0; row < all; ++row) {
        if (progress && row % kProgressRows == 0 && !progress(row, all)) return {};
        const auto record = static_cast<std::size_t>(row);
        if (!without.empty() && without.contains(vouchers.ValueAt(record, sources[0].place).ToTextOrEmpty()))
            continue;
        lines.Begin(batch, ++line);
        for (const Source& source : sources) {
            const Variant& value = vouchers.ValueAt(record, source.place);
            if (&source != sources.data()) batch += ',';
            if (source.column == store::column::kItems) {
                const Variant items = itemsOf(value.ToTextOrEmpty());
                AppendSql(batch, items);
                TakeFault(row, source, items, vouchers.ValueAt(record, sources[0].place), faults);
            } else {
                AppendSql(batch, value);
                TakeFault(row, source, value, vouchers.ValueAt(record, sources[0].place), faults);
            }
        }
        store::LineInserts::End(batch);
    }
    if (progress && !progress(all, all)) return {};
    return faults.empty() ? batch + store::ControlRows(target.overwriteId) : std::string();
}

}  // namespace vicenter::autovch
