// vicenter save NAME < lines.json

#include <iterator>
#include <optional>

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

constexpr const char* kNotSaved = "没有保存";

}  // namespace

int RunSave(const CliContext& context) {
    const TemplateHead head = FindTemplate(context, context.options.name);
    const store::SeenTemplate listed =
        store::SeenAs(head.id, std::to_string(context.options.userId), head.name);
    // What the user means is what is there now. Whoever makes the lines may take his time.
    const store::FoundTemplate seen = store::LookAgain(listed);
    const std::string input{std::istreambuf_iterator<char>(context.streams.in),
                            std::istreambuf_iterator<char>()};
    const Variant document = DecodeJson(input);

    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-保存模板 ");
    if (!CheckRight()) return FinishSpeaking(context, false, Variant::Null());
    center::EntryGrid grid;
    const int count = ReadLines(document, grid);
    using State = store::TemplateOutcome::State;
    store::TemplateOutcome outcome;
    if (Validate(grid, count)) {
        outcome.state = State::NotAsSeen;
        outcome.found = seen;
        if (seen.fate == store::TemplateFate::AsSeen) outcome = center::SendTemplate(grid, count, seen.now);
        if (outcome.state == State::NotAsSeen)
            center::Tell(store::WhyNotWritten(listed, outcome.found, kNotSaved));
    }
    const Variant data =
        outcome ? JsonObject({{"FID", outcome.id}, {"FName", head.name}, {"lines", count}}) : Variant::Null();
    return FinishWriting(context, outcome, data);
}

}  // namespace vicenter::host
