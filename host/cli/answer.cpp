#include <ostream>

#include "host/cli/context.h"
#include "store/cls_vi_data.h"

namespace vicenter::host {

void PrintJson(const CliContext& context, const Variant& document) {
    context.streams.out << EncodeJson(document) << "\n";
}

int FinishSpeaking(const CliContext& context, bool ok, const Variant& data, const std::string& text) {
    if (!ok && context.messages.Shown().empty() && !store::clsVIData::LastFailure().empty()) {
        // The window leaves it at that; a terminal has to be told.
        Fail(context, "命令未能完成：" + store::clsVIData::LastFailure());
    }
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

int Fail(const CliContext& context, const std::string& text) {
    context.streams.err << "vicenter: " << text << "\n";
    return kExitFailed;
}

}  // namespace vicenter::host
