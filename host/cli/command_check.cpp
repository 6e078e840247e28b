// vicenter check NAME: the first line that keeps the template from being saved, and every cell that would be
// red.

#include <optional>

#include "center/editing/fault_text.h"
#include "center/grid/columns.h"
#include "center/template/template_save.h"
#include "host/cli/context.h"
#include "host/cli/templates.h"

namespace vicenter::host {

int RunCheck(const CliContext& context) {
    const TemplateHead head = FindTemplate(context, context.options.name);
    TemplateLines lines;
    ReadLines(head.id, lines);
    const std::optional<center::Finding> finding = center::ValidateLines(lines.grid, lines.count);
    if (finding) center::Tell(finding->text);

    VariantArray faultyLines;
    std::string text;
    for (int row = 1; row <= lines.count; ++row) {
        VariantArray faulty;
        for (const center::ColumnSpec& spec : center::Columns()) {
            const std::string reason = center::FaultText(lines.grid, {row, spec.column});
            if (reason.empty()) continue;
            faulty.emplace_back(spec.field);
            text += "第 " + std::to_string(row) + " 行 " + std::string(spec.header) + " “" +
                    std::string(lines.grid.Text(row, spec.column)) + "”：" + reason + "\n";
        }
        if (faulty.empty()) continue;
        const auto record = static_cast<std::size_t>(row - 1);
        faultyLines.push_back(
            JsonObject({{"FEntryID", lines.records->ValueAt(record, lines.records->ColumnIndex("FEntryID"))},
                        {"FNo", lines.records->ValueAt(record, lines.records->ColumnIndex("FNo"))},
                        {"faulty", faulty}}));
    }
    if (text.empty() && !finding) text = "模板 " + head.name + " 未发现异常。\n";
    const Variant data = JsonObject({{"FID", Variant(head.id).ToInt32()},
                                     {"FName", head.name},
                                     {"lines", faultyLines},
                                     {"control", ReadControlRows(head.id)}});
    return FinishSpeaking(context, true, data, text);
}

}  // namespace vicenter::host
