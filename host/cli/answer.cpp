#include <ostream>

#include "host/cli/context.h"

namespace vicenter::host {

void PrintJson(const CliContext& context, const Variant& document) {
    context.streams.out << EncodeJson(document) << "\n";
}

int FinishSpeaking(const CliContext& context, bool ok, const Variant& data, const std::string& text) {
    if (context.options.json) {
        VariantArray messages;
        for (const ShownMessage& message : context.messages.Shown())
            messages.push_back(JsonObject({{"title", message.title}, {"text", message.text}}));
        PrintJson(context, JsonObject({{"ok", ok}, {"messages", messages}, {"data", data}}));
    } else {
        context.messages.Print(ok ? context.streams.out : context.streams.err);
        if (ok) context.streams.out << text;
    }
    return ok ? kExitDone : kExitFailed;
}

int FinishWriting(const CliContext& context, const store::TemplateOutcome& outcome, const Variant& data) {
    // The window leaves it at that; a terminal has to be told.
    if (!outcome && !outcome.untold.empty()) Fail(context, "命令未能完成：" + outcome.untold);
    return FinishSpeaking(context, !!outcome, data);
}

int Fail(const CliContext& context, const std::string& text) {
    context.streams.err << "vicenter: " << text << "\n";
    return kExitFailed;
}

}  // namespace vicenter::host
