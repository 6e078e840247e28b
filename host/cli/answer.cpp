#include <ostream>

#include "automation/error.h"
#include "host/cli/context.h"
#include "platform/ado/passwords.h"

namespace vicenter::host {

namespace {

Variant MessageJson(const ShownMessage& message) {
    JsonMembers members = {{"title", message.title}, {"text", message.text}};
    if (!message.file.empty()) members.emplace_back("file", message.file);
    return JsonObject(members);
}

}  // namespace

void PrintJson(const CliContext& context, const Variant& document) {
    context.streams.out << EncodeJson(document) << "\n";
}

int FinishListing(const CliContext& context, const VariantArray& list, const std::string& none) {
    if (context.options.json) {
        PrintJson(context, list);
    } else if (list.empty()) {
        context.streams.err << none << "\n";
    }
    return kExitDone;
}

int FinishSpeaking(const CliContext& context, bool ok, const Variant& data, const std::string& text,
                   const JsonMembers& more) {
    if (context.options.json) {
        VariantArray messages;
        for (const ShownMessage& message : context.messages.Shown())
            messages.push_back(MessageJson(message));
        JsonMembers members = {{"ok", ok}, {"messages", messages}, {"data", data}};
        members.insert(members.end(), more.begin(), more.end());
        PrintJson(context, JsonObject(members));
    } else {
        context.messages.Print(ok ? context.streams.out : context.streams.err);
        if (ok) context.streams.out << text;
    }
    return ok ? kExitDone : kExitFailed;
}

int FinishWriting(const CliContext& context, const store::TemplateOutcome& outcome, const Variant& data) {
    // The window leaves it at that; a terminal has to be told.
    if (!outcome && !outcome.untold.empty()) TellFailure(context, "命令未能完成：" + outcome.untold);
    return FinishSpeaking(context, !!outcome, data);
}

void TellFailure(const CliContext& context, const std::string& text) {
    // A connect string that was taken for something else must not show what it holds.
    context.streams.err << "vicenter: " << ado::PasswordsHidden(text) << "\n";
}

void Refuse(const std::string& text) {
    throw automation::Error(automation::error_number::kInvalidProcedureCall, text);
}

}  // namespace vicenter::host
