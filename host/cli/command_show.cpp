// vicenter show NAME

#include <ostream>

#include "center/grid/columns.h"
#include "host/cli/context.h"
#include "host/cli/templates.h"

namespace vicenter::host {

namespace {

// A decimal without the zeros that its column's scale adds.
Variant LineValue(const Variant& value) {
    if (value.Type() == automation::VariantType::Decimal) return Variant(value.ToDecimal().ToShortText());
    return JsonValue(value);
}

Variant LineObject(const TemplateLines& lines, int row) {
    const auto object = std::make_shared<scripting::Dictionary>();
    const auto record = static_cast<std::size_t>(row - 1);
    for (std::size_t c = 0; c < lines.records->ColumnCount(); ++c)
        object->SetItem(lines.records->Columns()[c].name, LineValue(lines.records->ValueAt(record, c)));
    VariantArray faulty;
    // The grid shows a side that is neither debit nor credit as an empty cell.
    const Variant& side = lines.records->ValueAt(record, lines.records->ColumnIndex("FDC"));
    if (!side.IsNumeric() || (side.ToDouble() != 0 && side.ToDouble() != 1)) faulty.emplace_back("FDC");
    for (const std::string& field : FaultyFields(lines.grid, row))
        faulty.emplace_back(field);
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
            if (spec.kind != center::CellKind::Id) out << lines.grid.Text(row, spec.column) << "\t";
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
    ReadLines(head.id, lines);
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
