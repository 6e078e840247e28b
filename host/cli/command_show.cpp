// vicenter show NAME

#include <algorithm>
#include <ostream>

#include "center/editing/cell_rules.h"
#include "center/grid/columns.h"
#include "host/cli/context.h"
#include "host/cli/one_line.h"
#include "host/cli/templates.h"

namespace vicenter::host {

namespace {

// A decimal without the zeros that its column's scale adds.
Variant LineValue(const Variant& value) {
    if (value.Type() == automation::VariantType::Decimal) return Variant(value.ToDecimal().ToShortText());
    return JsonValue(value);
}

// The grid does not show every value: a side that is neither debit nor credit is an empty cell there, and so
// is a rate without a currency.
bool IsOutsideOfColumn(const center::ColumnSpec& spec, const Variant& stored) {
    switch (spec.kind) {
        case center::CellKind::Direction:
            return !stored.IsNumeric() || (stored.ToDouble() != 0 && stored.ToDouble() != 1);
        case center::CellKind::TemplateNumber:
        case center::CellKind::Whole:
        case center::CellKind::Decimal: {
            const std::string text = LineValue(stored).ToTextOrEmpty();
            return !text.empty() && center::CheckTypedText(spec.column, text) != center::TextVerdict::Taken;
        }
        default:
            return false;
    }
}

Variant LineObject(const TemplateLines& lines, int row) {
    const auto object = std::make_shared<scripting::Dictionary>();
    const auto record = static_cast<std::size_t>(row - 1);
    for (std::size_t c = 0; c < lines.records->ColumnCount(); ++c)
        object->SetItem(lines.records->Columns()[c].name, LineValue(lines.records->ValueAt(record, c)));
    const std::vector<std::string> seen = FieldsToTakeBack(lines.grid, row);
    VariantArray faulty;
    for (const center::ColumnSpec& spec : center::Columns()) {
        const Variant& stored = lines.records->ValueAt(record, lines.records->ColumnIndex(spec.field));
        if (std::find(seen.begin(), seen.end(), spec.field) != seen.end() || IsOutsideOfColumn(spec, stored))
            faulty.emplace_back(std::string(spec.field));
    }
    object->SetItem("faulty", faulty);
    return object;
}

void PrintTable(const CliContext& context, const TemplateLines& lines) {
    std::ostream& out = context.streams.out;
    for (const center::ColumnSpec& spec : center::Columns()) {
        if (spec.kind != center::CellKind::Id) out << spec.header << "\t";
    }
    out << "异常\n";
    for (int row = 1; row <= lines.count; ++row) {
        for (const center::ColumnSpec& spec : center::Columns()) {
            if (spec.kind != center::CellKind::Id) out << OneLine(lines.grid.Text(row, spec.column)) << "\t";
        }
        std::string separator;
        for (const std::string& field : FaultyFields(lines.grid, row)) {
            out << separator << field;
            separator = ",";
        }
        out << "\n";
    }
}

}  // namespace

int RunShow(const CliContext& context) {
    const TemplateHead head = FindTemplate(context, context.options.name);
    TemplateLines lines;
    ReadLines(head, lines);
    if (!context.options.json) {
        PrintTable(context, lines);
        return kExitDone;
    }
    VariantArray list;
    for (int row = 1; row <= lines.count; ++row)
        list.push_back(LineObject(lines, row));
    PrintJson(context, JsonObject({{"FID", Variant(head.id).ToInt32()},
                                   {"FName", head.name},
                                   {"lines", list},
                                   {"control", ReadControlRows(head.id)}}));
    return kExitDone;
}

}  // namespace vicenter::host
