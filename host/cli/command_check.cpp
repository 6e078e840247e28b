// vicenter check NAME: the first line that keeps the template from being saved, and every cell that would be
// red. check --all: every template against today's ledger, for a job at night.

#include <optional>
#include <ostream>

#include "center/grid/columns.h"
#include "center/health/template_check.h"
#include "center/template/template_save.h"
#include "host/cli/context.h"
#include "host/cli/one_line.h"
#include "host/cli/templates.h"

namespace vicenter::host {

namespace {

bool IsFault(const center::TemplateFinding& finding) {
    return finding.kind == center::TemplateFinding::Kind::Fault;
}

std::string FindingText(const TemplateHead& head, const center::TemplateFinding& finding) {
    std::string text = OneLine(head.name) + "\t" + (IsFault(finding) ? "异常" : "提示") + "\t" +
                       finding.number + " 号\t行" + std::to_string(finding.row) + "\t";
    if (finding.column != 0) text.append(center::Column(finding.column).header);
    if (!finding.value.empty()) text += " “" + OneLine(finding.value) + "”";
    return text + "\t" + finding.reason + "\n";
}

Variant FindingObject(const center::TemplateFinding& finding) {
    return JsonObject(
        {{"kind", IsFault(finding) ? "fault" : "hint"},
         {"row", finding.row},
         {"FNo", finding.number},
         {"field", finding.column == 0 ? std::string() : std::string(center::Column(finding.column).field)},
         {"value", finding.value},
         {"reason", finding.reason}});
}

int RunCheckAll(const CliContext& context) {
    center::TemplateCheck check;
    VariantArray templates;
    int faults = 0;
    int hints = 0;
    for (const TemplateHead& head : ReadTemplates(context)) {
        TemplateLines lines;
        ReadLines(head, lines);
        VariantArray findings;
        for (const center::TemplateFinding& finding : check.Check(lines.grid, lines.count)) {
            (IsFault(finding) ? faults : hints) += 1;
            findings.push_back(FindingObject(finding));
            if (!context.options.json) context.streams.out << FindingText(head, finding);
        }
        templates.push_back(JsonObject({{"FID", Variant(head.id).ToInt32()},
                                        {"FName", head.name},
                                        {"lines", lines.count},
                                        {"findings", findings}}));
    }
    if (context.options.json) {
        PrintJson(context,
                  JsonObject({{"templates", templates},
                              {"totals", JsonObject({{"templates", static_cast<int>(templates.size())},
                                                     {"faults", faults},
                                                     {"hints", hints}})}}));
    } else {
        context.streams.out << "检查了 " << templates.size() << " 个模板：异常 " << faults << " 处，提示 "
                            << hints << " 处。\n";
    }
    return faults == 0 ? kExitDone : kExitFailed;
}

}  // namespace

int RunCheck(const CliContext& context) {
    if (context.options.all) return RunCheckAll(context);
    const TemplateHead head = FindTemplate(context, context.options.name);
    TemplateLines lines;
    ReadLines(head, lines);
    const std::optional<center::Finding> finding = center::ValidateLines(lines.grid, lines.count);
    if (finding) center::Tell(finding->text);

    VariantArray faultyLines;
    std::string text;
    for (int row = 1; row <= lines.count; ++row) {
        VariantArray faulty;
        for (const FaultyCell& cell : FaultyCells(lines.grid, row)) {
            faulty.emplace_back(cell.field);
            text += "第 " + std::to_string(row) + " 行 " + std::string(center::Column(cell.column).header) +
                    " “" + OneLine(lines.grid.Text(row, cell.column)) + "”：" + cell.reason + "\n";
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
