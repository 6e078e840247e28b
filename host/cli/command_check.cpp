// vicenter check NAME: one template against today's ledger, and the message with which it would not be saved.
// check --all: every template, for a job at night. Both by the rules of the window's list of faults.

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
    return text + "\t" + OneLine(finding.reason) + "\n";
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

// The cells that are red, by lines, and the state of the numbers.
Variant StoredState(const TemplateHead& head, const TemplateLines& lines, const VariantArray& findings) {
    VariantArray faultyLines;
    for (int row = 1; row <= lines.count; ++row) {
        VariantArray faulty;
        for (const std::string& field : FaultyFields(lines.grid, row))
            faulty.emplace_back(field);
        if (faulty.empty()) continue;
        const auto record = static_cast<std::size_t>(row - 1);
        faultyLines.push_back(
            JsonObject({{"FEntryID", lines.records->ValueAt(record, lines.records->ColumnIndex("FEntryID"))},
                        {"FNo", lines.records->ValueAt(record, lines.records->ColumnIndex("FNo"))},
                        {"faulty", faulty}}));
    }
    return JsonObject({{"FID", Variant(head.id).ToInt32()},
                       {"FName", head.name},
                       {"lines", faultyLines},
                       {"findings", findings},
                       {"control", ReadControlRows(head.id)}});
}

std::string LineOf(const center::TemplateFinding& finding) {
    std::string text = (IsFault(finding) ? "第 " : "提示：第 ") + std::to_string(finding.row) + " 行 ";
    text += finding.column == 0 ? finding.number + " 号" : std::string(center::Column(finding.column).header);
    if (!finding.value.empty()) text += " “" + OneLine(finding.value) + "”";
    return text + "：" + OneLine(finding.reason) + "\n";
}

}  // namespace

int RunCheck(const CliContext& context) {
    if (context.options.all) return RunCheckAll(context);
    const TemplateHead head = FindTemplate(context, context.options.name);
    TemplateLines lines;
    ReadLines(head, lines);
    // What the save would refuse it with.
    const std::optional<center::Finding> refusal = center::ValidateLines(lines.grid, lines.count);
    if (refusal) center::Tell(refusal->text);

    VariantArray findings;
    std::string text;
    int faults = 0;
    int hints = 0;
    for (const center::TemplateFinding& finding : center::TemplateCheck().Check(lines.grid, lines.count)) {
        (IsFault(finding) ? faults : hints) += 1;
        findings.push_back(FindingObject(finding));
        const bool told = refusal && refusal->row == finding.row && refusal->column == finding.column;
        if (!told) text += LineOf(finding);
    }
    text += findings.empty() ? "模板 " + OneLine(head.name) + " 未发现异常。\n"
                             : "模板 " + OneLine(head.name) + "：异常 " + std::to_string(faults) +
                                   " 处，提示 " + std::to_string(hints) + " 处。\n";
    // Its findings are the answer, whatever they are; whoever reads a document asks it first.
    FinishSpeaking(context, faults == 0 || !context.options.json, StoredState(head, lines, findings), text);
    return faults == 0 ? kExitDone : kExitFailed;
}

}  // namespace vicenter::host
