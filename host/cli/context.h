#pragma once

// What every command has at hand, and the way its answer leaves.

#include <functional>
#include <string>

#include "host/cli/cli.h"
#include "host/cli/console.h"
#include "host/cli/json.h"
#include "host/cli/options.h"
#include "host/components/host_session.h"
#include "store/template_outcome.h"

namespace vicenter::host {

struct CliContext {
    const CliOptions& options;
    const CliStreams& streams;
    const CliHooks& hooks;
    ConsoleMessages& messages;
    HostSessionRef session;
};

// Prints one JSON document and a line break.
void PrintJson(const CliContext& context, const Variant& document);

// The end of a command that lists: one JSON array, or, where the list is empty, the words for that on `err`,
// so that what is piped stays empty. What it holds has been printed. Returns the exit code.
int FinishListing(const CliContext& context, const VariantArray& list, const std::string& none);

// The end of a command that speaks to the user: one JSON document, or the messages (to `err` when it failed)
// and, when it did not fail, the text. `more`: further members of the document. Returns the exit code.
int FinishSpeaking(const CliContext& context, bool ok, const Variant& data, const std::string& text = {},
                   const JsonMembers& more = {});

// The end of a command that wrote a template: as above, and what no message has said of a failure on `err`.
int FinishWriting(const CliContext& context, const store::TemplateOutcome& outcome, const Variant& data);

// What went wrong, on `err`, of a command that goes on to its answer.
void TellFailure(const CliContext& context, const std::string& text);
// Ends a command that cannot do what it was asked for, as every error does: with the text on `err`, and with
// the document that --json promises.
[[noreturn]] void Refuse(const std::string& text);

// ---- commands, one source each
int RunAccountSetNew(const CliContext& context);
int RunAccountSetCopy(const CliContext& context);
int RunAccountSetBackup(const CliContext& context);
int RunAccountSetRestore(const CliContext& context);
int RunAccountSetVerify(const CliContext& context);
int RunAccountSetUpgrade(const CliContext& context);
int RunList(const CliContext& context);
int RunShow(const CliContext& context);
int RunNew(const CliContext& context);
int RunRename(const CliContext& context);
int RunDelete(const CliContext& context);
int RunCheck(const CliContext& context);
int RunLog(const CliContext& context);
int RunHistory(const CliContext& context);
int RunRestore(const CliContext& context);
int RunSave(const CliContext& context);
int RunSql(const CliContext& context);
int RunWindow(const CliContext& context);
int RunExport(const CliContext& context);
int RunImport(const CliContext& context);
int RunGenerate(const CliContext& context);
int RunReplace(const CliContext& context);
int RunSearch(const CliContext& context);
int RunDrivers(const CliContext& context);
int RunDoctor(const CliContext& context);
int RunPrint(const CliContext& context);

}  // namespace vicenter::host
