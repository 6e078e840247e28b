#include "host/cli/cli.h"

#include <cstddef>
#include <filesystem>
#include <new>
#include <optional>
#include <system_error>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "entry/host_context.h"
#include "host/account_set.h"
#include "host/cli/command_line.h"
#include "host/cli/connect_text.h"
#include "host/cli/console.h"
#include "host/cli/context.h"
#include "host/components/components.h"
#include "platform/com/installed_classes.h"
#include "platform/office/excel_server.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"
#include "platform/system/unfinished_file.h"
#include "platform/system/whole_path.h"
#include "store/cls_vi_data.h"
#include "store/component_classes.h"

namespace vicenter::host {

using automation::Error;
namespace fs = std::filesystem;

namespace {

constexpr const char* kCloudFolder = "cloud";
constexpr const char* kInstalled = "installed";  // the workbook server that the system has

// The account set to work on: as asked for, else the demo set of this user, made on first use.
std::string ChosenConnectString(const CliContext& context) {
    const CliOptions& options = context.options;
    if (!options.connectString.empty()) return WithPassword(context, options.connectString);
    if (!options.accountSet.empty()) return ExistingFileConnectString(options.accountSet);
    const std::string file = DemoSetFile();
    const fs::path path = system::PathFromUtf8(file);
    std::error_code failed;
    if (!fs::exists(path, failed)) {
        fs::create_directories(path.parent_path(), failed);
        try {
            CreateAccountSetFile(file, {true, 0});
        } catch (const Error& error) {
            // Another process has made it meanwhile.
            if (error.Number() != automation::error_number::kFileAlreadyExists) throw;
        }
    }
    return FileConnectString(file);
}

// How a command runs.
struct CommandEntry {
    int (*run)(const CliContext& context);
    CliCommand command;
    bool speaks;      // answers with messages, and gives its document even when it ends in an error
    bool hasSession;  // on the account set that is chosen
};

constexpr CommandEntry kCommands[] = {
    {RunWindow, CliCommand::Window, false, true},
    {RunAccountSetNew, CliCommand::AccountSetNew, true, false},
    {RunAccountSetCopy, CliCommand::AccountSetCopy, true, false},
    {RunAccountSetBackup, CliCommand::AccountSetBackup, true, false},
    {RunAccountSetRestore, CliCommand::AccountSetRestore, true, false},
    {RunAccountSetVerify, CliCommand::AccountSetVerify, true, false},
    {RunAccountSetUpgrade, CliCommand::AccountSetUpgrade, true, false},
    {RunList, CliCommand::List, false, true},
    {RunShow, CliCommand::Show, false, true},
    {RunNew, CliCommand::New, true, true},
    {RunRename, CliCommand::Rename, true, true},
    {RunDelete, CliCommand::Delete, true, true},
    {RunCheck, CliCommand::Check, true, true},
    {RunLog, CliCommand::Log, false, true},
    {RunHistory, CliCommand::History, false, true},
    {RunRestore, CliCommand::Restore, true, true},
    {RunSave, CliCommand::Save, true, true},
    {RunSql, CliCommand::Sql, false, true},
    {RunExport, CliCommand::Export, true, true},
    {RunImport, CliCommand::Import, true, true},
    {RunGenerate, CliCommand::Generate, true, true},
    {RunReplace, CliCommand::Replace, true, true},
    {RunSearch, CliCommand::Search, false, true},
    {RunDrivers, CliCommand::Drivers, false, false},
    {RunDoctor, CliCommand::Doctor, false, false},
    {RunPrint, CliCommand::Print, true, true},
};

// The table is in the order of the commands.
const CommandEntry& EntryOf(CliCommand command) {
    static_assert([] {
        std::size_t place = 0;
        for (const CommandEntry& entry : kCommands) {
            if (entry.command != static_cast<CliCommand>(place++)) return false;
        }
        return place == static_cast<std::size_t>(CliCommand::Print) + 1;
    }());
    return kCommands[static_cast<std::size_t>(command)];
}

int FailWithDocument(const CliContext& context, const std::string& text) {
    store::clsVIData::ForgetFailure();  // the text has it
    if (EntryOf(context.options.command).speaks) FinishSpeaking(context, false, Variant::Null());
    TellFailure(context, text);
    return kExitFailed;
}

// What killed runs have left where this one works.
void RemoveLeftBehind(const CliOptions& options) {
    system::Folders& folders = *system::Surroundings::Current().folders;
    try {
        system::RemoveLeftBehind(folders.Temporary());
    } catch (const Error&) {
        // Whoever needs a temporary folder will hear that there is none.
    }
    system::RemoveLeftBehind(folders.UserData());
    const bool isNew = options.command == CliCommand::AccountSetNew;
    if (const std::string& set = isNew ? options.file : options.accountSet; !set.empty()) {
        std::error_code failed;
        const fs::path file = system::WholePath(system::PathFromUtf8(set), failed);
        if (!failed) system::RemoveLeftBehind(system::PathToUtf8(file.parent_path()));
    }
}

int RunCommand(const CliOptions& options, const CliStreams& streams, const CliHooks& hooks) {
    // The session ends with the command, not with the process: its connection must not outlive what it is
    // kept in.
    const automation::ClassRegistry::Restore registry;
    // A window has boxes of its own; elsewhere the terminal takes their place.
    const bool windowed = options.command == CliCommand::Window;
    const auto messages = std::make_shared<ConsoleMessages>(
        streams.in, options.json ? streams.err : streams.out, options.answer, options.json);
    system::Surroundings surroundings = system::Surroundings::Current();
    if (!windowed) {
        surroundings.messageBoxes = messages;
        if (hooks.untilTold)
            surroundings.longWork = std::make_shared<ConsoleWait>(streams.err, *hooks.untilTold);
    }
    const system::SurroundingsScope scope(surroundings);

    std::optional<com::InstalledClasses> installed;  // beyond the session, which may hold objects of theirs
    CliContext context{options, streams, hooks, *messages, nullptr};
    const CommandEntry& entry = EntryOf(options.command);
    store::clsVIData::ForgetFailure();
    try {
        RemoveLeftBehind(options);
        RegisterProviders();
        store::RegisterComponentClasses();
        if (options.excelVersion == kInstalled) installed.emplace();
        if (options.excelVersion == "none" || installed) {
            office::UnregisterExcelServer();
        } else {
            office::RegisterExcelServer(options.excelVersion);
        }
        if (entry.hasSession) {
            const fs::path userData = system::PathFromUtf8(surroundings.folders->UserData());
            context.session = RegisterHostComponents(
                {ChosenConnectString(context), options.userId, system::PathToUtf8(userData / kCloudFolder)});
            entry::SetCurrentUserId(std::to_string(options.userId));
        }
        return entry.run(context);
    } catch (const Error& error) {
        std::string text = error.Text();
        for (const std::string& doing : error.Chain())
            text += "\n  " + doing;
        return FailWithDocument(context, text);
    } catch (const std::bad_alloc&) {
        return FailWithDocument(context, "内存不足，操作没有完成！");
    } catch (const std::exception& error) {
        return FailWithDocument(context, error.what());
    }
}

}  // namespace

int RunCli(const std::vector<std::string>& arguments, const CliStreams& streams, const CliHooks& hooks) {
    CliOptions options;
    const std::optional<int> parsed = ReadCommandLine(arguments, streams, options);
    const int code = parsed ? *parsed : RunCommand(options, streams, hooks);
    // An answer that never arrived, on a full disk for instance, is not done.
    if (streams.out.flush() || code != kExitDone) return code;
    streams.err << "vicenter: 输出无法写入。\n";
    return kExitFailed;
}

}  // namespace vicenter::host
