// vicenter save NAME < lines.json

#include <iterator>
#include <optional>

#include "center/template/template_fate.h"
#include "center/template/template_save.h"
#include "entry/host_services.h"
#include "host/cli/context.h"
#include "host/cli/line_input.h"
#include "host/cli/rights.h"
#include "host/cli/templates.h"

namespace vicenter::host {

namespace {

// False when the lines do not pass or an empty template is not to be saved; the user has been told.
bool Validate(const center::EntryGrid& grid, int count) {
    if (count == 0) return center::ConfirmEmptyTemplate();
    const std::optional<center::Finding> finding = center::ValidateLines(grid, count);
    if (finding) center::Tell(finding->text);
    return !finding;
}

// False when the template has been deleted since its name was looked up; the user has been told.
bool IsThere(const CliContext& context, const TemplateHead& head) {
    const center::NodeFate now =
        center::FateOfNode(head.id, head.name, std::to_string(context.options.userId));
    if (now.fate == center::TemplateFate::Gone) center::TellGone(head.name);
    return now.fate != center::TemplateFate::Gone;
}

}  // namespace

int RunSave(const CliContext& context) {
    const TemplateHead head = FindTemplate(context, context.options.name);
    const std::string input{std::istreambuf_iterator<char>(context.streams.in),
                            std::istreambuf_iterator<char>()};
    const Variant document = DecodeJson(input);

    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-保存模板 ");
    if (!CheckRight()) return FinishSpeaking(context, false, Variant::Null());
    center::EntryGrid grid;
    const int count = ReadLines(document, grid);
    store::TemplateOutcome outcome;
    if (Validate(grid, count) && IsThere(context, head))
        outcome = center::SendTemplate(grid, count, head.id, head.name);
    const Variant data =
        outcome ? JsonObject({{"FID", outcome.id}, {"FName", head.name}, {"lines", count}}) : Variant::Null();
    return FinishWriting(context, outcome, data);
}

}  // namespace vicenter::host
